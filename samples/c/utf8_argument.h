#ifndef UTF8_ARGUMENT_H
#define UTF8_ARGUMENT_H

#if defined(_WIN32)
#  include <windows.h>
#endif

/* A program's argument in UTF-8, because the library takes all text in UTF-8. On Windows the
 * arguments of main() are in the system's code page, and `buffer` receives the converted text. */
static inline const char* utf8Argument(const char* argument, char* buffer, int length) {
#if defined(_WIN32)
  wchar_t wide[1024];
  if (MultiByteToWideChar(CP_ACP, 0, argument, -1, wide, 1024) == 0 ||
      WideCharToMultiByte(CP_UTF8, 0, wide, -1, buffer, length, NULL, NULL) == 0) {
    return "";
  }
  return buffer;
#else
  (void)buffer;
  (void)length;
  return argument;
#endif
}

#endif
