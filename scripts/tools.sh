# The other scripts begin with this file: they run in the project's directory and end at the first failure.
set -eu
cd "$(dirname "${BASH_SOURCE[0]}")/.."

# The Debian packages that each job needs.
build_tools=(cmake ninja-build libboost-dev libcli11-dev nlohmann-json3-dev libstb-dev)
windows_tools=(g++-mingw-w64-x86-64-posix wine wine64)
native_tools=(g++)
test_tools=(googletest python3)
screen_tools=(xvfb xdotool imagemagick ffmpeg fonts-liberation)
binding_tools=(python3 python3-numpy python3-venv mono-mcs mono-runtime)
package_tools=(zip unzip pkg-config python3 make)
lint_tools=(clang clang-format clang-tidy)
document_tools=(doxygen)

# quietly COMMAND...: runs the command. If it fails, prints its output and ends the script.
quietly() {
  local output
  output=$("$@" 2>&1) || { echo "$output"; exit 1; }
}
