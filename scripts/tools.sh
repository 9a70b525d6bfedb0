# The Debian packages that each job needs; sourced by the other scripts.
build_tools=(cmake ninja-build)
windows_tools=(g++-mingw-w64-x86-64-posix wine wine64)
native_tools=(g++)
host_headers=(libcli11-dev nlohmann-json3-dev libstb-dev)
test_tools=(googletest python3)
screen_tools=(xvfb xdotool imagemagick ffmpeg fonts-liberation)
lint_tools=(clang clang-format clang-tidy)
document_tools=(doxygen)
