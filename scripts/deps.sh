#!/usr/bin/env bash
# Installs the Debian packages the build, the tests and the tool need, when any is missing;
# `deps.sh fuzz` adds what the fuzz targets need.
set -euo pipefail
# proj-bin brings cs2cs, the peer of bench/convert_vs_cs2cs.sh.
packages=(cmake ninja-build g++ pkg-config libpugixml-dev libgtest-dev libgmock-dev
          libbenchmark-dev libproj-dev proj-bin proj-data libgeos-dev)
# The fuzz targets need clang and its libFuzzer runtime.
if [ "${1:-}" = fuzz ]; then
  packages+=(clang libclang-rt-dev)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg -s "$p" >/dev/null 2>&1 || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "Installing: ${missing[*]}"
  SUDO=""
  [ "$(id -u)" -eq 0 ] || SUDO="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $SUDO apt-get update -qq
  $SUDO apt-get install -y -qq "${missing[@]}"
fi
