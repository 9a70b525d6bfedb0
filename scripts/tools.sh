# The Debian packages that each job needs; sourced by the other scripts.
build_tools=(cmake ninja-build)
windows_tools=(g++-mingw-w64-x86-64-posix wine wine64)
native_tools=(g++)
host_headers=(libcli11-dev nlohmann-json3-dev libstb-dev)
test_tools=(googletest)
binding_tools=(python3 python3-numpy mono-mcs mono-runtime)
package_tools=(zip unzip pkg-config)
lint_tools=(clang clang-format clang-tidy)
