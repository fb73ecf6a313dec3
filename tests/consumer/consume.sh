#!/bin/sh
# Uses the installed library as other projects would: through CMake and through pkg-config, from C89, C99 (the programs of
# the README and of the first page), C++ and Python, with the recipes of the documentation.
# usage: consume.sh SOURCE_DIR TREE WORK_DIR [TOOLCHAIN]
# TREE is the prefix of an unpacked package, or a build, which is installed into an empty tree that is then moved. With a
# CMake toolchain file the programs are built for another platform, and run by `wine`.
set -eu
source=$1
tree=$2
work=$3
toolchain=${4-}
rm -rf "$work"
mkdir -p "$work/source"
if [ -e "$tree/CMakeCache.txt" ]; then
  cmake --install "$tree" --prefix "$work/first" >"$work/install.log"
  mv "$work/first" "$work/installed"
  tree=$work/installed
fi

cp "$source"/tests/consumer/CMakeLists.txt "$source"/tests/consumer/*.c "$source"/tests/consumer/*.cpp "$work/source"
c_blocks() { awk '/^```c$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$1"; }
c_blocks "$source/README.md" >"$work/source/row.c"
c_blocks "$source/docs/getting-started.md" >"$work/first.c"
python3 "$source/tools/recipes.py" "$source/docs/recipes.md" "$work/source"

echo "CMake package"
cmake -G Ninja -S "$work/source" -B "$work/build" -DCMAKE_PREFIX_PATH="$tree" -DCMAKE_BUILD_TYPE=Release \
  ${toolchain:+-DCMAKE_TOOLCHAIN_FILE="$toolchain" -DCMAKE_FIND_ROOT_PATH="$tree"} >"$work/configure.log"
cmake --build "$work/build" >"$work/build.log" || {
  cat "$work/build.log" >&2
  exit 1
}
if [ -n "$toolchain" ]; then
  cp "$tree"/bin/*.dll "$work/build"
  for program in "$work"/build/*.exe; do WINEDEBUG=-all wine "$program"; done
  exit
fi
for program in version_c89 row_c row_cpp recipes; do "$work/build/$program"; done

echo "pkg-config"
libdir=$(dirname "$(find "$tree" -name libzorj.so)")
export PKG_CONFIG_PATH="$libdir/pkgconfig" LD_LIBRARY_PATH="$libdir"
cc -std=c99 -Wall -Wextra -Werror "$work/source/row.c" -o "$work/row_c" $(pkg-config --cflags --libs zorj)
cc -std=c99 -Wall -Wextra -Werror "$work/first.c" -o "$work/first" $(pkg-config --cflags --libs zorj)
c++ -std=c++17 "$work/source/row.cpp" -o "$work/row_cpp" $(pkg-config --cflags --libs zorj zorcore)
"$work/row_c"
"$work/first"
"$work/row_cpp"

echo "Python"
python3 "$source/tests/consumer/convert.py" "$libdir/libzorj.so" "$tree/share/zorj/exports.json"
