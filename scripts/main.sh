#!/usr/bin/env bash
# Installs what is missing, builds the library and the vx tool, and runs the main job:
# the tool's version and its self test.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --preset default >/dev/null
cmake --build --preset default -j "$(nproc)" --target vx
vx=build/default/tools/vx/vx
"$vx" --version
"$vx" selftest
