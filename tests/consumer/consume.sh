#!/bin/sh
# Installs a build into an empty tree, moves the tree, and uses it as another project would: through CMake and through
# pkg-config, from C (the program of the README) and from C++.
# usage: consume.sh SOURCE_DIR BUILD_DIR
set -eu
source=$1
build=$2
work=$build/consumer
rm -rf "$work"
mkdir -p "$work/source"

cmake --install "$build" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/installed"
cp "$source/tests/consumer/CMakeLists.txt" "$source/tests/consumer/row.cpp" "$work/source"
awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source/README.md" >"$work/source/row.c"

echo "CMake package"
cmake -G Ninja -S "$work/source" -B "$work/build" -DCMAKE_PREFIX_PATH="$work/installed" >"$work/configure.log"
cmake --build "$work/build" >"$work/build.log"
"$work/build/row_c"
"$work/build/row_cpp"

echo "pkg-config"
libdir=$(dirname "$(find "$work/installed" -name libzorj.so)")
export PKG_CONFIG_PATH="$libdir/pkgconfig" LD_LIBRARY_PATH="$libdir"
cc -std=c99 -Wall -Wextra -Werror "$work/source/row.c" -o "$work/row_c" $(pkg-config --cflags --libs zorj)
c++ -std=c++17 "$work/source/row.cpp" -o "$work/row_cpp" $(pkg-config --cflags --libs zorj zorcore)
"$work/row_c"
"$work/row_cpp"
