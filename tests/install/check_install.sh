#!/usr/bin/env bash
# Installs the build into a temporary prefix and builds an application against it twice: with the
# CMake package and with pkg-config.
set -euo pipefail
build=$1
source=$(cd "$(dirname "$0")" && pwd)/consumer
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZEL_REGISTRY_DIR="$work/registry" XDG_RUNTIME_DIR="$work/run"

cmake --install "$build" --prefix "$work/prefix" >/dev/null
cmake -S "$source" -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
LD_LIBRARY_PATH="$work/prefix/lib" "$work/cmake/consumer"

libdir=$(ls -d "$work"/prefix/lib*/pkgconfig | head -n 1)
flags=$(PKG_CONFIG_PATH="$libdir" pkg-config --cflags --libs ZelBL70KT)
# shellcheck disable=SC2086
g++ "$source/consumer.cpp" $flags -o "$work/consumer-pc"
LD_LIBRARY_PATH="$(dirname "$libdir")" "$work/consumer-pc"
