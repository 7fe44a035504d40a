#!/usr/bin/env bash
# A program outside the tree builds against the installed library and runs.
set -euo pipefail
source_dir=$1 build_dir=$2 compiler=$3 libdir=$4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export KL_APP_DATA_DIR=$work

cmake --install "$build_dir" --prefix "$work/prefix" >/dev/null
mkdir "$work/program"
# The indented block behind a heading of the README.
program_of() {
    awk -v heading="## $1" '/^## /{inside = ($0 == heading)} inside && /^(    .*)?$/{print substr($0, 5)}' "$source_dir/README.md"
}
program_of 'A program over media' >"$work/program/main.cpp"
program_of 'A palette' >"$work/palette.cpp"
grep -q 'int main' "$work/program/main.cpp"
cat >"$work/program/CMakeLists.txt" <<'EOF'
cmake_minimum_required(VERSION 3.22)
project(Program LANGUAGES CXX)
find_package(ZVLib 1 REQUIRED)
add_executable(program main.cpp)
target_link_libraries(program PRIVATE ZVLib::ZVLib)
EOF
cmake -S "$work/program" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build "$work/build" >/dev/null
[ "$("$work/build/program")" = "error 12" ]

export PKG_CONFIG_PATH=$work/prefix/$libdir/pkgconfig
# shellcheck disable=SC2046  # the flags are words
"$compiler" -std=c++20 "$work/program/main.cpp" -o "$work/by-pkg-config" $(pkg-config --cflags --libs zvlib)
[ "$(LD_LIBRARY_PATH=$work/prefix/$libdir "$work/by-pkg-config")" = "error 12" ]
# shellcheck disable=SC2046
"$compiler" -std=c++20 -Wall -Werror "$work/palette.cpp" -o "$work/palette" $(pkg-config --cflags --libs zvlib)

# A format module builds outside the tree, and is loaded only while an application reads a picture of its format.
cp -r "$source_dir/examples/graymap" "$work/graymap"
cmake -S "$work/graymap" -B "$work/module" -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$compiler" >/dev/null
cmake --build "$work/module" >/dev/null
mkdir -p "$work/application/Plugins/more"
cp "$work/module/graymap.ifm" "$work/application/Plugins/more"
# shellcheck disable=SC2046
"$compiler" -std=c++20 "$source_dir/tests/install/ModuleHost.cpp" -o "$work/application/host" $(pkg-config --cflags --libs zvlib)
printf 'P5 2 1 255\n\100\200' >"$work/picture.pgm"
host() { LD_LIBRARY_PATH=$work/prefix/$libdir "$work/application/host" "Root:${work//\//\\}\\picture.pgm"; }
[ "$(host | tr '\n' ';')" = "Portable Greymap;claimed: not loaded;2 x 1, 64;read: loaded;let go: not loaded;2 x 1, 64;\
read: loaded;let go: not loaded;end: not loaded;" ]

# One that was built with other records is refused.
cp -r "$work/prefix/include/zvlib" "$work/other"
sed -i 's/^    long ImageModes;/    long Another;\n&/' "$work/other/ZVFormat.h"
"$compiler" -std=c++20 -shared -fPIC "-I$work/other" "$work/graymap/Graymap.cpp" -o "$work/application/Plugins/more/graymap.ifm"
[ "$(host | head -n 2 | tr '\n' ';')" = "no module;claimed: not loaded;" ]

# The installed tool finds its library and its texts.
"$work/prefix/bin/zvclip" --help >/dev/null
[ -s "$work/prefix/share/zvlib/Locale/ZVLibStr.txt" ]

# And the modules that are installed with the library.
if [ -e "$build_dir/$libdir/zvlib/Plugins/Pictures.ifm" ]; then
    ffmpeg -v fatal -f lavfi -i color=s=8x6 -frames:v 1 "$work/picture.png"
    "$work/prefix/bin/zvclip" info "$work/picture.png" | grep -q 'format  Pictures'
fi
