#!/usr/bin/env bash
# Makes the package of a build and unpacks it into a directory with blanks and accents in its name.
# Builds and runs programs that use only the package.
#   package_test.sh BUILD SCRATCH CMAKE COMPILER TOOLCHAIN-FILE EMULATOR PYTHON
# With an emulator the package is the one for Windows. The last three may be empty.
set -euo pipefail
build=$1 scratch=$2 cmake=$3 compiler=$4 toolchain=$5 emulator=$6 python=$7
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
for file in INSTALL.md README.md LICENSE include/orvane_desktop_camera.h simulated-sdks/simulator_control.h \
  include/orvane_desktop_camera.hpp include/orvane_desktop_camera_loader.h lib/pkgconfig/orvane_desktop_camera.pc \
  bindings/python/orvane_desktop_camera.py bindings/python/pyproject.toml \
  bindings/csharp/OrvaneDesktopCamera.cs; do
  [ -f "$package/$file" ] || fail "the package lacks $file"
done
! grep -rIl -e '@PROJECT_' -e "$build" "$package" || fail "files that were not filled in, or name the build"
sdks=$(windows_path "$package/simulated-sdks")
names=$ORVANE_SDKS

echo "== programs"
exe=$([ -n "$emulator" ] && echo .exe || true)
expect_start "oc_capture" "Libraries: $names" "$package/bin/oc_capture$exe" list --sdk "$sdks"

echo "== a CMake project"
project="$away/a host's project"
cp -r "$package/samples/c" "$project"
configure() {
  "$cmake" -G Ninja -D CMAKE_C_COMPILER="$compiler" -D CMAKE_PREFIX_PATH="$package" \
    ${toolchain:+-D CMAKE_TOOLCHAIN_FILE="$toolchain" -D CMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH} "$@"
}
quietly configure -S "$project" -B "$project/build"
quietly "$cmake" --build "$project/build"
library=$(windows_path "$(find "$package/bin" "$package/lib" -name 'orvane_desktop_camera.dll' \
  -o -name 'liborvane_desktop_camera.so')")
expect_start "list" "SDKs: $names" "$project/build/list$exe" "$sdks"
cd "$away"
expect_start "snap" "picture.pgm: 640 x 480" "$project/build/snap$exe" "$sdks" picture.pgm
[ "$(stat -c %s "$away/picture.pgm")" -eq $((15 + 640 * 480)) ] || fail "the picture's size"
expect_start "load_at_run_time" "SDKs: $names" "$project/build/load_at_run_time$exe" "$library" "$sdks"

echo "== a CMake project in C++"
cp -r "$package/samples" "$away/in C++"
quietly configure -S "$away/in C++/cpp" -B "$away/in C++/build"
quietly "$cmake" --build "$away/in C++/build"
expect_start "capture" "[1-9][0-9]* frames of 1280 x 960," "$away/in C++/build/capture$exe" "$sdks" 0

echo "== versions that fit and do not"
version=$(sed -n 's/^Version: //p' "$package/lib/pkgconfig/orvane_desktop_camera.pc")
grep -q "^version = \"$version\"\$" "$package/bindings/python/pyproject.toml" ||
  fail "pyproject.toml states another version than $version"
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

echo "== a C file, with pkg-config"
cp "$project/list.c" "$project/sample.h" "$project/utf8_argument.h" "$away/"
flags=$(PKG_CONFIG_PATH="$package/lib/pkgconfig" pkg-config --cflags --libs orvane_desktop_camera)
if [ -n "$emulator" ]; then
  eval "\"$compiler\" -std=c11 \"$away/list.c\" $flags -o \"$package/bin/list.exe\""
else
  eval "\"$compiler\" \"$away/list.c\" $flags \"-Wl,-rpath,\$package/lib\" -o \"$package/bin/list\""
fi
expect_start "list" "SDKs: $names" "$package/bin/list$exe" "$sdks"

echo "== the commands of INSTALL.md"
rm "$package/bin/list$exe"
# The commands for this system, except the one that unpacks.
opening=$([ -n "$emulator" ] && echo '^unzip ' || echo '^tar xzf ')
commands=$(sed -n "/$opening/,/^\`\`\`/p" "$package/INSTALL.md" | grep -v -e "$opening" -e '^cd ' -e '^```')
[ "$(echo "$commands" | wc -l)" -eq 2 ] || fail "INSTALL.md: commands: $commands"
wine() { run "$@"; }
winepath() { windows_path "$(realpath "$2")"; }
output=$(cd "$package" && eval "$commands") || fail "INSTALL.md: $commands: $output"
[ "${output%%$'\n'*}" = "SDKs: $names" ] || fail "INSTALL.md: wrote: $output"
echo "-- $(echo "$output" | sed -n 2p)"

if [ -n "$emulator" ]; then
  echo "== an import library of the .def file"
  "${compiler%%-gcc*}-dlltool" -d "$package/lib/orvane_desktop_camera.def" -l "$away/made.lib"
  "$compiler" "$away/list.c" -I"$package/include" "$away/made.lib" -o "$package/bin/list.exe"
  expect_start "list" "SDKs: $names" "$package/bin/list.exe" "$sdks"
fi
if [ -z "$emulator" ] && [ -n "$python" ]; then
  echo "== the Python module finds its package's library"
  expect_start "list_cameras" "SDKs: $names" \
    "$python" -B "$package/bindings/python/samples/list_cameras.py" "$sdks"
fi
echo "== the package serves"
