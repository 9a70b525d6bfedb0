// Compiled only for its precompiled header, which all test programs use.
int main() {
  return 0;
}
