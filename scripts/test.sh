#!/usr/bin/env bash
# Installs what is missing, builds the given preset (default: "default") and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
preset="${1:-default}"
scripts/deps.sh
# VX_CMAKE_ARGS: extra configure options (CI passes -DVX_WERROR=ON).
# shellcheck disable=SC2086
cmake --preset "$preset" ${VX_CMAKE_ARGS:-} >/dev/null
cmake --build --preset "$preset" -j "$(nproc)"
ctest --preset "$preset"
