#!/usr/bin/env bash
# Builds the program that prints digests with two compilers, with and without optimisation, and compares what they print.
# usage: compare_builds.sh SOURCE_DIR BUILD_DIR
set -euo pipefail
source=$1 build=$2 first=
for compilers in gcc:g++ clang:clang++; do
  for level in O3 O0; do
    name=${compilers%:*}-$level
    cmake -S "$source" -B "$build/$name" -G Ninja -D CMAKE_C_COMPILER="${compilers%:*}" -D CMAKE_CXX_COMPILER="${compilers#*:}" \
      -D CMAKE_BUILD_TYPE=Compared -D CMAKE_C_FLAGS_COMPARED="-$level" -D CMAKE_CXX_FLAGS_COMPARED="-$level -DHWY_IS_DEBUG_BUILD=0" \
      -D ZORJ_TESTS=ON -D ZORJ_EXAMPLES=ON >"$build/$name.configure.log"
    cmake --build "$build/$name" -j "$(nproc)" --target digests
    "$build/$name/bin/digests" >"$build/$name.txt" || failed=$name
    [ -z "${failed-}" ] || { echo "$failed: not the same at all instruction-set levels and numbers of threads" >&2; exit 1; }
    first=${first:-$name}
    diff "$build/$first.txt" "$build/$name.txt" || { echo "$name and $first do not do the same" >&2; exit 1; }
    echo "$name: $(wc -l <"$build/$name.txt") digests, those of $first"
  done
done
