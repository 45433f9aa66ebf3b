#!/usr/bin/env bash
# Installs what is missing, builds the given preset (default: "default") and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
scripts/deps.sh
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" -j "$(nproc)"
ctest --preset "$preset"
