// Compiled for its precompiled headers only, which all test programs use.
int main() {
  return 0;
}
