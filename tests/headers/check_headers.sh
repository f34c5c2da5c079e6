#!/usr/bin/env bash
# Compiles the public headers as a program includes them: each header alone, and all of them in
# one unit with the system's headers before and after them, in every language level from C++17 on
# that the compiler has, as errors of every warning. Then checks that zel/zel.h includes every
# header and that no header defines or undefines a macro of the system's headers.
set -euo pipefail
compiler=$1
include=$2
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
flags=(-Wall -Wextra -Werror -I"$include" -I"$here/units")

standards=(c++17 c++20)
if "$compiler" -std=c++23 -x c++ -c /dev/null -o /dev/null 2>/dev/null; then standards+=(c++23); fi

status=0
compile() {  # unit, what to call it, further flags
  local unit=$1 name=$2
  shift 2
  if ! "$compiler" "${flags[@]}" "$@" -c "$unit" -o /dev/null 2>"$work/errors"; then
    echo "$name:"; head -n 20 "$work/errors"; status=1
  fi
}

headers=$(cd "$include" && ls zel/*.h)
for std in "${standards[@]}"; do
  for header in $headers; do
    echo "#include <$header>" >"$work/alone.cpp"
    compile "$work/alone.cpp" "$header alone, $std" -std="$std"
  done
  compile "$here/units/all_headers.cpp" "system headers first, $std" -std="$std" -DZEL_SYSTEM_FIRST=1
  compile "$here/units/all_headers.cpp" "system headers last, $std" -std="$std" -DZEL_SYSTEM_FIRST=0
done

for header in $headers; do
  [ "$header" = zel/zel.h ] || grep -q "#include <$header>" "$include/zel/zel.h" || {
    echo "zel/zel.h does not include $header"; status=1
  }
done

# Names that a header defines or undefines.
ours=$(sed -n 's/^[[:space:]]*#[[:space:]]*\(define\|undef\)[[:space:]]\{1,\}\([A-Za-z_0-9]*\).*/\2/p' "$include"/zel/*.h |
  sort -u)
system=$("$compiler" -std=c++17 -x c++ -dM -E "$here/units/system_headers.h" | awk '{ sub(/\(.*/, "", $2); print $2 }' | sort -u)
shared=$(comm -12 <(echo "$ours") <(echo "$system"))
if [ -n "$shared" ]; then
  echo "Macros of the system's headers that a header defines or undefines:"; echo "$shared"; status=1
fi

[ $status -eq 0 ] && echo "$(echo "$headers" | wc -w) headers clean in ${standards[*]}"
exit $status
