#!/usr/bin/env bash
# Installs what is missing, builds the library, the programs and the simulated SDKs for Windows and for
# Linux, and makes a package for each in build/<preset>-package/packages/. The files have the time of the last
# commit, so that the same commit always gives the same archives.
#   package.sh [PRESET...]      windows-x64, linux-x64; default: both
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${native_tools[@]}" \
  "${package_tools[@]}" git

export SOURCE_DATE_EPOCH="${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}"
[ $# -gt 0 ] || set -- windows-x64 linux-x64
archives=()
for preset in "$@"; do
  echo "== $preset: build"
  build=build/$preset-package
  quietly cmake --preset "$preset" -B "$build" -D ORVANE_BUILD_TESTS=OFF -D ORVANE_BUILD_BENCHMARKS=OFF
  cmake --build "$build"
  echo "== $preset: pack"
  rm -rf "$build/packages"
  quietly cpack --config "$build/CPackConfig.cmake" -B "$PWD/$build/packages"
  rm -rf "$build/packages/_CPack_Packages"
  archives+=("$build"/packages/*)
done
echo "== packages"
sha256sum "${archives[@]}"
