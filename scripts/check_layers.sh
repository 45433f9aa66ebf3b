#!/usr/bin/env bash
# Checks that the library's folders include one another one way only: a folder may include its
# own headers and those of folders of a lower rank (docs/ARCHITECTURE.md). Prints the count of
# includes between each pair of folders with -v, and every upward include; exits 1 on any.
set -euo pipefail
cd "$(dirname "$0")/.."

declare -A rank=([platform]=0 [foundation]=1 [storage]=2 [persist]=3 [text]=4 [geometry]=4
                 [instrument]=4 [host]=5 [transform]=5 [geodesy]=5 [device]=6)
verbose=0
[ "${1:-}" = "-v" ] && verbose=1

declare -A count=()
bad=0
for dir in "${!rank[@]}"; do
  [ -d "$dir" ] || continue
  while IFS=: read -r file line target; do
    [ -n "$file" ] || continue
    to=${target%%/*}
    [ "$to" = "$dir" ] && continue
    if [ -z "${rank[$to]+x}" ]; then
      echo "$file:$line: includes \"$target\", outside the library's folders"
      bad=1
      continue
    fi
    count["$dir -> $to"]=$(( ${count["$dir -> $to"]:-0} + 1 ))
    if (( rank[$to] >= rank[$dir] )); then
      echo "$file:$line: $dir (rank ${rank[$dir]}) includes $target (rank ${rank[$to]})"
      bad=1
    fi
  done < <(grep -HnoE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"[a-z]+/[^"]+"' \
             "$dir"/*.h "$dir"/*.cpp 2>/dev/null |
           sed -E 's/^([^:]+):([0-9]+):.*"([^"]+)"$/\1:\2:\3/')
done
if (( verbose )); then
  for k in "${!count[@]}"; do printf '%5d  %s\n' "${count[$k]}" "$k"; done | sort -k2
fi
if (( bad )); then
  echo "check_layers: upward includes found (see docs/ARCHITECTURE.md)"
  exit 1
fi
echo "check_layers: every include runs downward"
