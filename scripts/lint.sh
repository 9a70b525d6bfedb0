#!/usr/bin/env bash
# Installs what is missing, then checks the sources with clang-format and clang-tidy and compiles them
# with clang, for Linux and for Windows. Warnings are errors.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${native_tools[@]}" \
  "${test_tools[@]}" "${lint_tools[@]}"

sources=$(git ls-files '*.cpp' '*.hpp' '*.c' '*.h')
echo "== clang-format"
# shellcheck disable=SC2086
clang-format --dry-run --Werror $sources

echo "== clang: build"
cmake --preset linux-x64-clang >/dev/null
cmake --build --preset linux-x64-clang

echo "== clang-tidy"
# The sources for Windows only: GCC's and those of every compiler.
for_windows=$(git ls-files '*windows*.cpp' '*mingw*.cpp' '*microsoft*.cpp')
git ls-files '*.cpp' | grep -vxF "$for_windows" | while read -r source; do
  # clang-tidy needs a compile command, and only the sources of this build have one.
  grep -q "\"file\": \".*/$source\"" build/linux-x64-clang/compile_commands.json && echo "$source"
done | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/linux-x64-clang

echo "== clang for Windows: compile"
cmake --preset windows-x64-clang >/dev/null
scripts/compile_only.py build/windows-x64-clang src simulators hosts samples

echo "== clang-tidy for Windows"
# Windows passes pointers as integers and has macros with small suffixes; its runtime libraries have reserved
# names and lists of pointers. A file that is not in this build gets the command of its neighbour.
checks=-performance-no-int-to-ptr,-cert-dcl16-c,-bugprone-sizeof-expression
checks+=,-bugprone-reserved-identifier
xargs -P "$(nproc)" -n 2 clang-tidy --quiet "--checks=$checks" -p build/windows-x64-clang <<<"$for_windows"
echo "== clean"
