#!/usr/bin/env bash
# Runs a program of the build on the library linked in reverse order: its start and end must not
# depend on the order in which the objects' initialisers run.
#   run_reversed.sh DIR PROGRAM ARGS...
set -euo pipefail
dir=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export ZEL_REGISTRY_DIR="$work/registry" XDG_RUNTIME_DIR="$work/run" TMP="$work/tmp" TEMP="$work/tmp"
mkdir -p "$work/run" "$work/tmp" && chmod 700 "$work/run"
loaded=$(LD_LIBRARY_PATH="$dir" LD_TRACE_LOADED_OBJECTS=1 "$1" | grep 'libZelBL70KT' || true)
case "$loaded" in
  *"$dir/libZelBL70KT.so.0"*) ;;
  *) echo "the program does not load the reversed library: $loaded"; exit 1 ;;
esac
cd "$work"
LD_LIBRARY_PATH="$dir" "$@"
