#!/bin/bash
# Installs a built tree into a folder of its own and builds the outside project tests/consumer against it, once by
# find_package and once by pkg-config. The program it builds is the example of the README.
# usage: consumer.sh [BUILD DIR]
build=$(realpath "${1:-$(dirname "$0")/../build/release}")
. "$(dirname "$0")/common.sh"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# The README shows the class and the program as they are compiled here.
awk '/^```cpp/ { on = 1; next } /^```/ { on = 0 } on' README.md > "$work/readme.cpp"
sed -n '/^\/\/\/ <person/,$p' tests/consumer/Person.h | cat - tests/consumer/main.cpp | diff -u - "$work/readme.cpp" ||
    { echo "consumer.sh: README.md differs from Person.h and main.cpp" >&2; exit 1; }

cmake --install "$build" --prefix "$work/prefix" > "$work/install.log"
cp -r tests/consumer "$work/source"

echo "consumer.sh: find_package"
cmake -S "$work/source" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/prefix" > "$work/configure.log" ||
    { cat "$work/configure.log"; exit 1; }
cmake --build "$work/build"
"$work/build/consumer"

echo "consumer.sh: loading at run time"
shared=$(find "$work/prefix" -name libQzXmlLib16.so)
"$work/build/load" "$work/build/libplugin.so"
"$work/build/load" "$shared" "$work/build/libplugin.so"
python3 -c 'import ctypes, sys; [ctypes.CDLL(name, ctypes.RTLD_GLOBAL) for name in sys.argv[1:]][-1].RoundTrip() and sys.exit(1)' \
    "$shared" "$work/build/libplugin.so"

echo "consumer.sh: pkg-config"
export PKG_CONFIG_PATH
PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name QzXmlLib16.pc)")
libdir=$(pkg-config --variable=libdir QzXmlLib16)
${CXX:-c++} -std=c++17 -Wall -Wextra -Werror $(pkg-config --cflags QzXmlLib16) "$work/source/main.cpp" \
    -o "$work/consumer" $(pkg-config --libs QzXmlLib16) "-Wl,-rpath,$libdir"
"$work/consumer"
[[ $(readelf -d "$work/consumer") == *"[libQzXmlLib16.so.16]"* ]] ||
    { echo "consumer.sh: the program is not linked to libQzXmlLib16.so.16" >&2; exit 1; }
