#!/usr/bin/env bash
# Installs what is missing, then checks the sources with clang-format and clang-tidy and compiles them
# with clang. Warnings are errors.
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${native_tools[@]}" "${test_tools[@]}" "${lint_tools[@]}"

sources=$(git ls-files '*.cpp' '*.hpp' '*.c' '*.h')
echo "== clang-format"
# shellcheck disable=SC2086
clang-format --dry-run --Werror $sources

echo "== clang: build"
cmake --preset linux-x64-clang >/dev/null
cmake --build --preset linux-x64-clang

echo "== clang-tidy"
git ls-files '*.cpp' | grep -v windows | while read -r source; do
  # clang-tidy needs a compile command, and only the sources of this build have one.
  grep -q "\"file\": \".*/$source\"" build/linux-x64-clang/compile_commands.json && echo "$source"
done | xargs -P "$(nproc)" -n 4 clang-tidy --quiet -p build/linux-x64-clang
echo "== clean"
