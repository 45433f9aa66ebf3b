#!/usr/bin/env bash
# Installs what is missing, builds the library and the vx tool, and runs the main job: the
# tool's version, its self test, and a round trip of the sample points through a projection.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target vx
vx=build/default/tools/vx/vx
"$vx" --version
"$vx" selftest
echo "== ETRS89 to the Dutch national grid (data/sample_etrs89.txt)"
"$vx" convert --to RDNAPTRANS2008 < data/sample_etrs89.txt
echo "== and back to ETRS89"
"$vx" convert --to RDNAPTRANS2008 < data/sample_etrs89.txt | "$vx" convert --from RDNAPTRANS2008
