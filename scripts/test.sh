#!/usr/bin/env bash
# Installs what is missing, then builds and tests everything: the Windows library through Wine, the
# Linux build, and the Linux build under the sanitizers.
#   test.sh [PRESET...]      windows-x64, linux-x64, linux-x64-sanitize; default: all
. "$(dirname "${BASH_SOURCE[0]}")/tools.sh"
scripts/install_tools.sh "${build_tools[@]}" "${windows_tools[@]}" "${native_tools[@]}" \
  "${test_tools[@]}" "${binding_tools[@]}" "${package_tools[@]}"

[ $# -gt 0 ] || set -- windows-x64 linux-x64 linux-x64-sanitize
summary=()
started_again="${WINEPREFIX:-build/wine-prefix}/started-again.log"
rm -f "$started_again"
# Prints the starts that cmake/run_with_wine.sh retried, so that nobody overlooks them.
show_started_again() {
  [ -s "$started_again" ] || return 0
  echo "== retried under Wine: the first run printed nothing"
  cat "$started_again"
}
for preset in "$@"; do
  echo "== $preset: build"
  quietly cmake --preset "$preset"
  cmake --build --preset "$preset"
  echo "== $preset: test"
  # Many tests wait for frames, so there are more of them at a time than processors.
  ctest --preset "$preset" --progress -j "$(($(nproc) * 2))" || {
    status=$?
    echo "== $preset: failed tests, run again with their output"
    ctest --preset "$preset" --rerun-failed --extra-verbose || true
    show_started_again
    exit "$status"
  }
  summary+=("$preset: $(ctest --preset "$preset" -N | tail -n 1)")
done
show_started_again
echo "== all passed"
printf '%s\n' "${summary[@]}"
