# Compiles for Windows x64 with clang and mingw-w64's headers, to have a second compiler read the sources for
# Windows. It does not link: clang does not find the runtime libraries of Debian's mingw-w64.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# Nor does clang find the headers of GCC's C++ library. Those of this computer's own system must not be found.
execute_process(COMMAND x86_64-w64-mingw32-g++-posix -print-file-name=include/c++
  OUTPUT_VARIABLE cxx_headers OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(c_headers "-nostdlibinc -idirafter /usr/x86_64-w64-mingw32/include")
set(CMAKE_C_FLAGS_INIT "${c_headers}")
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ ${c_headers} -isystem ${cxx_headers} \
-isystem ${cxx_headers}/x86_64-w64-mingw32 -isystem ${cxx_headers}/backward")

set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
