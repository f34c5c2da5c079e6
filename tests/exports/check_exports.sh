#!/usr/bin/env bash
# Checks the dynamic symbol table of the library: every name listed in *.txt beside this script is
# exported, and no other name of the library's own is.
set -euo pipefail
library=$1
here=$(cd "$(dirname "$0")" && pwd)

expected=$(cat "$here"/*.txt | sed -e 's/#.*//' -e 's/[[:space:]]*$//' | grep -v '^$' | sort -u)
exported=$(nm -DC --defined-only "$library" \
  | awk '$2 ~ /^[TWDBVRi]$/ { $1 = ""; $2 = ""; sub(/^  /, ""); print }' \
  | sed -e 's/(.*$//' \
  | grep -v -E '^(_init|_fini|_edata|_end|__bss_start)$' \
  | sort -u)

missing=$(comm -23 <(echo "$expected") <(echo "$exported"))
extra=$(comm -13 <(echo "$expected") <(echo "$exported"))
status=0
if [ -n "$missing" ]; then
  echo "Not exported:"; echo "$missing"; status=1
fi
if [ -n "$extra" ]; then
  echo "Exported but not part of the interface:"; echo "$extra"; status=1
fi
[ $status -eq 0 ] && echo "$(echo "$expected" | wc -l) names exported, none more"
exit $status
