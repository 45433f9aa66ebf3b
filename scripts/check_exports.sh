#!/usr/bin/env bash
# Checks that every public header of the library exports what it declares: its namespace opens
# as `namespace vx VX_API {` (platform/VXExport.h). Internal headers (VX_INTERNAL_HEADERS in the
# top CMakeLists.txt) are left alone. With --fix, rewrites the headers that miss it.
set -euo pipefail
cd "$(dirname "$0")/.."
fix=0
[ "${1:-}" = "--fix" ] && fix=1

internal=$(sed -n '/^set(VX_INTERNAL_HEADERS/,/)/p' CMakeLists.txt | tr ' ()' '\n\n\n' | grep '\.h$' || true)
folders="platform foundation storage persist text geometry instrument host transform geodesy device"
bad=0
for dir in $folders; do
  for h in "$dir"/*.h; do
    [ -e "$h" ] || continue
    [ "$h" = platform/VXExport.h ] && continue
    grep -qxF "$h" <<<"$internal" && continue
    if grep -qE '^namespace vx(::[A-Za-z]+)? \{' "$h"; then
      if (( fix )); then
        sed -i -E 's/^namespace vx \{/namespace vx VX_API {/' "$h"
        if ! grep -q '#include "platform/VXExport.h"' "$h"; then
          sed -i '0,/^#pragma once$/s//#pragma once\n\n#include "platform\/VXExport.h"/' "$h"
        fi
        echo "fixed: $h"
      else
        echo "$h: opens namespace vx without VX_API (run scripts/check_exports.sh --fix)"
        bad=1
      fi
    fi
  done
done
if (( bad )); then exit 1; fi
echo "check_exports: every public header exports its namespace"
