#!/usr/bin/env bash
# The library's entry is its only constructor: no file of it may carry a dynamic initialiser, which
# the compiler gathers into a function named after the file.
set -euo pipefail
found=$(nm "$1" | grep '_GLOBAL__sub_I_' || true)
if [ -n "$found" ]; then
  echo "Initialisers that run in an order of the link's choosing:"; echo "$found"; exit 1
fi
echo "no dynamic initialisers"
