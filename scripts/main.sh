#!/usr/bin/env bash
# The main job: installs what is missing, builds the library and the vx tool (quietly: the build
# log is shown only when the build fails), runs `vx demo` on the synthetic sample project in
# data/demo (results in build/demo), and takes the sample points to the national grid and back.
set -euo pipefail
cd "$(dirname "$0")/.."
mkdir -p build
log=build/main-build.log
if ! { scripts/deps.sh && cmake --preset default &&
    cmake --build --preset default -j "$(nproc)" --target vx; } >"$log" 2>&1; then
    cat "$log" >&2
    echo "main.sh: the build failed; the log above is also in $log" >&2
    exit 1
fi
vx=build/default/tools/vx/vx
"$vx" demo build/demo
echo
echo "== ETRS89 (latitude, longitude, ellipsoidal height; data/sample_etrs89.txt)"
echo "   to the Dutch national grid RD (x, y) with the datum shift of 2008; without a geoid"
echo "   model the height is passed through unchanged, and vx says so"
rd=$(mktemp)
trap 'rm -f "$rd"' EXIT
"$vx" convert --to RDNAPTRANS2008 data/sample_etrs89.txt >"$rd"
cat "$rd"
echo "== and back from RD to ETRS89: the start again, within 1e-9 degrees (0.1 mm)"
"$vx" convert --from RDNAPTRANS2008 "$rd" 2>/dev/null
