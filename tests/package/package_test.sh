#!/usr/bin/env bash
# Makes the package of a build and unpacks it into a directory with blanks and accents in its name.
# Builds and runs programs that use only the package, and runs the recipes of INSTALL.md.
#   package_test.sh BUILD SCRATCH CMAKE COMPILER TOOLCHAIN-FILE EMULATOR PYTHON PYTHON-WITH-NUMPY
# With an emulator the package is the one for Windows. TOOLCHAIN-FILE, EMULATOR and PYTHON-WITH-NUMPY may be
# empty.
set -euo pipefail
build=$1 scratch=$2 cmake=$3 compiler=$4 toolchain=$5 emulator=$6 python=$7 python_with_numpy=$8
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
export LC_ALL=C.UTF-8
# The package must work without the user's settings.
unset CMAKE_PREFIX_PATH PKG_CONFIG_PATH LD_LIBRARY_PATH

fail() {
  echo "FAILED: $*" >&2
  exit 1
}

# quietly COMMAND...: fails with the command's output if the command fails.
quietly() {
  "$@" >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
}

# Runs a program of the package's system and prints its output. Path arguments must come from
# windows_path. The output goes through a file, because Wine's own processes would keep a pipe open.
run() {
  local status=0
  ${emulator:+"$emulator"} "$@" >"$scratch/output" 2>&1 || status=$?
  tr -d '\r' <"$scratch/output"
  return "$status"
}
windows_path() {
  if [ -n "$emulator" ]; then printf 'Z:%s' "${1//\//\\}"; else printf '%s' "$1"; fi
}

# expect_start WHAT PATTERN PROGRAM ARGUMENT...: the output must begin as this regular expression says.
expect_start() {
  local what=$1 pattern=$2 output
  shift 2
  output=$(run "$@") || fail "$what: status $?: $output"
  [[ $output =~ ^$pattern ]] || fail "$what: wrote: $output"
  echo "-- $what: ${output%%$'\n'*}"
}

rm -rf "$scratch"
mkdir -p "$scratch"
scratch=$(cd "$scratch" && pwd -P)

echo "== pack, twice"
suffix=$([ -n "$emulator" ] && echo windows-x64.zip || echo linux-x64.tar.gz)
masks=(022 077) zones=(UTC Asia/Tokyo)
for number in 0 1; do
  (umask "${masks[number]}" && export SOURCE_DATE_EPOCH=1700000000 TZ=${zones[number]} &&
    quietly "$(dirname "$cmake")/cpack" --config "$build/CPackConfig.cmake" -B "$scratch/pack$number")
done
archive=$(echo "$scratch"/pack0/orvane-desktop-camera-*-"$suffix")
[ -f "$archive" ] || fail "no archive $archive"
cmp "$archive" "$scratch/pack1/$(basename "$archive")" || fail "two packages of one build differ"
echo "-- $(basename "$archive"): $(stat -c %s "$archive") bytes"

echo "== unpack"
away="$scratch/Prüfstand à part"
mkdir "$away"
case $archive in
  *.zip) unzip -q "$archive" -d "$away" ;;
  *) tar xzf "$archive" -C "$away" ;;
esac
package="$away/$(basename "$archive" ".${suffix#*x64.}")"
(cd "$package" && sha256sum --quiet -c SHA256SUMS) || fail "the sums do not fit"
[ "$(cd "$package" && find . -type f | wc -l)" -eq "$(($(wc -l <"$package/SHA256SUMS") + 1))" ] ||
  fail "files without a sum"
for file in INSTALL.md README.md LICENSE THIRD-PARTY-NOTICES simulated-sdks/simulator_control.h \
  include/orvane_desktop_camera.h include/orvane_desktop_camera.hpp include/orvane_desktop_camera_loader.h \
  lib/pkgconfig/orvane_desktop_camera.pc bindings/python/orvane_desktop_camera.py \
  bindings/csharp/OrvaneDesktopCamera.cs; do
  [ -f "$package/$file" ] || fail "the package lacks $file"
done
! grep -rIl -e '@PROJECT_' -e "$build" "$package" || fail "files that were not filled in, or name the build"
"$python" -B "$here/../checks/markdown_links.py" "$package" || fail "links that lead nowhere in the package"
sdks=$(windows_path "$package/simulated-sdks")
names=$ORVANE_SDKS

echo "== programs"
exe=$([ -n "$emulator" ] && echo .exe || true)
expect_start "oc_capture" "Libraries: $names" "$package/bin/oc_capture$exe" list --sdk "$sdks"

echo "== the recipes of INSTALL.md"
recipe_dir="Rezepte à part"
mkdir "$scratch/$recipe_dir"
"$python" -B "$here/install_recipes.py" "$package/INSTALL.md" "$archive" \
  "$([ -n "$emulator" ] && echo windows || echo linux)" "$scratch/$recipe_dir" "$names" "$emulator" "$python_with_numpy"

echo "== the samples that the recipe for CMake has built"
samples="$scratch/$recipe_dir/$(basename "$package")/samples-build"
library_file=$(find "$package/bin" "$package/lib" -name 'orvane_desktop_camera.dll' -o -name 'liborvane_desktop_camera.so')
cd "$away"
expect_start "snap" "picture.pgm: 640 x 480" "$samples/snap$exe" "$sdks" picture.pgm
[ "$(stat -c %s "$away/picture.pgm")" -eq $((15 + 640 * 480)) ] || fail "the picture's size"
expect_start "load_at_run_time" "SDKs: $names" "$samples/load_at_run_time$exe" "$(windows_path "$library_file")" "$sdks"

echo "== a CMake project in C++, with the toolchain file"
configure() {
  "$cmake" -G Ninja -D CMAKE_C_COMPILER="$compiler" -D CMAKE_PREFIX_PATH="$package" \
    ${toolchain:+-D CMAKE_TOOLCHAIN_FILE="$toolchain" -D CMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH} "$@"
}
cp -r "$package/samples" "$away/a host's project"
quietly configure -S "$away/a host's project/cpp" -B "$away/a host's project/build"
quietly "$cmake" --build "$away/a host's project/build"
expect_start "capture" "[1-9][0-9]* frames of 1280 x 960," "$away/a host's project/build/capture$exe" "$sdks" 0

echo "== versions that fit and do not"
version=$(sed -n 's/^Version: //p' "$package/lib/pkgconfig/orvane_desktop_camera.pc")
mkdir "$away/versions"
# wants MSVC VERSION: configures a project that requires this version.
wants() {
  printf '%s\n' "cmake_minimum_required(VERSION 3.16)" "project(versions LANGUAGES C)" \
    "set(MSVC $1)" "find_package(orvane_desktop_camera $2 CONFIG REQUIRED)" \
    >"$away/versions/CMakeLists.txt"
  configure -S "$away/versions" -B "$away/versions/build" >"$scratch/versions.log" 2>&1
}
wants 0 "$version" || fail "version $version is refused: $(cat "$scratch/versions.log")"
! wants 0 $((${version%%.*} + 1)).0 || fail "a later first number is accepted"
! wants 0 "${version%%.*}.$(($(echo "$version" | cut -d. -f2) + 1))" || fail "a later second number is accepted"
if [ -n "$emulator" ]; then
  ! wants 1 "$version" || fail "MSVC without an import library is accepted"
  tr -s ' \n' ' ' <"$scratch/versions.log" | grep -q "Make MSVC's import library first, in $package/lib: lib /def:orvane_desktop_camera.def /machine:x64" ||
    fail "what MSVC has to do is not said: $(cat "$scratch/versions.log")"
fi

echo "== the wheel"
"$python" -B "$here/wheel_contents.py" "$package" "$version"

echo "== symbols"
symbols="$package/symbols/$(basename "$library_file").debug"
tools=$([ -n "$emulator" ] && echo "${compiler%%gcc*}" || true)
# Windows has no source lines.
if [ -n "$emulator" ]; then
  place=$("${tools}nm" -C "$symbols" | sed -n 's/.* t \(orvane::closeCamera()\)$/\1/p')
  expected='orvane::closeCamera()'
else
  place=$(addr2line -f -e "$symbols" "0x$(nm "$symbols" | sed -n 's/ T oc_apply$//p')" | tr '\n' ' ')
  expected='oc_apply *src/api/exports.cpp:[1-9]*'
fi
# shellcheck disable=SC2053
[[ $place == $expected ]] || fail "symbols: $place"
! grep -q "$build" "$symbols" || fail "the symbols name the build"
"${tools}objdump" -s -j .gnu_debuglink "$library_file" >/dev/null || fail "the library does not name its symbols"
echo "-- $place, $(stat -c %s "$symbols") bytes"

if [ -n "$emulator" ]; then
  echo "== an import library of the .def file"
  "${compiler%%-gcc*}-dlltool" -d "$package/lib/orvane_desktop_camera.def" -l "$away/made.lib"
  "$compiler" "$package/samples/c/list.c" -I"$package/include" "$away/made.lib" -o "$package/bin/list.exe"
  expect_start "list" "SDKs: $names" "$package/bin/list.exe" "$sdks"
fi
echo "== the package serves"
