#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds an application against it twice: with the
# CMake package, in the newest language level that the compiler has and under AddressSanitizer,
# run with leak detection; and with pkg-config at the compiler's default level.
set -euo pipefail
build=$1
source=$(cd "$(dirname "$0")" && pwd)/consumer
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZEL_REGISTRY_DIR="$work/registry" XDG_RUNTIME_DIR="$work/run"
compiler=$(sed -n 's/^CMAKE_CXX_COMPILER:[A-Z]*=//p' "$build/CMakeCache.txt")

cmake --install "$build" --prefix "$work/prefix" >/dev/null
libdir=$(dirname "$(ls -d "$work"/prefix/lib*/pkgconfig | head -n 1)")

# What the application searches and reads.
mkdir -p "$work/files/data"
printf alpha >"$work/files/data/a.txt"
printf beta >"$work/files/data/b.txt"
printf gamma >"$work/files/data/c.dat"
run() {  # program, component library
  (cd "$work/files" && LD_LIBRARY_PATH="$libdir" "$@")
}

standard=17
for candidate in 23 20; do
  if "$compiler" -std=c++$candidate -x c++ -c /dev/null -o /dev/null 2>/dev/null; then
    standard=$candidate
    break
  fi
done
cmake -S "$source" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_CXX_STANDARD=$standard -DCONSUMER_SANITIZE=ON >/dev/null
cmake --build "$work/cmake" >"$work/build.log" || { cat "$work/build.log"; exit 1; }
ASAN_OPTIONS=detect_leaks=1 run "$work/cmake/consumer" "$work/cmake/libconsumer_plugin.so"

flags=$(PKG_CONFIG_PATH="$libdir/pkgconfig" pkg-config --cflags --libs ZelBL70KT)
# shellcheck disable=SC2086
"$compiler" -Wall -Wextra -Werror "$source/consumer.cpp" $flags -o "$work/consumer-pc"
"$compiler" -Wall -Wextra -Werror -shared -fPIC "$source/plugin.cpp" -o "$work/plugin.so"
run "$work/consumer-pc" "$work/plugin.so"
