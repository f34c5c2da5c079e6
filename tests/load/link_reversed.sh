#!/usr/bin/env bash
# Links the library's objects in the reverse of the build's order into DIR/libZelBL70KT.so.0, beside
# links to the library's resource files and code tables, so that a program can load that copy.
#   link_reversed.sh DIR LIBRARY VERSION_SCRIPT COMPILER [LINK FLAGS...] -- OBJECTS...
set -euo pipefail
dir=$1 library=$2 script=$3 compiler=$4
shift 4
flags=()
while [ $# -gt 0 ] && [ "$1" != "--" ]; do flags+=("$1"); shift; done
shift
objects=()
for object in "$@"; do objects=("$object" "${objects[@]}"); done

mkdir -p "$dir"
"$compiler" -shared -fPIC "${flags[@]}" -Wl,-soname,libZelBL70KT.so.0 -Wl,--version-script="$script" -Wl,-Bsymbolic-functions \
  -o "$dir/libZelBL70KT.so.0" "${objects[@]}" -lpthread -ldl
for beside in "$(dirname "$library")"/libZelBL70KT.{KOR,ENU,JPN} "$(dirname "$library")/Code"; do
  ln -sfn "$beside" "$dir/$(basename "$beside")"
done
