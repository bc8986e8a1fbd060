#!/usr/bin/env bash
# Builds everything and runs every test. Installs missing Debian packages first.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/deps.sh
bash scripts/build.sh
ctest --test-dir build --output-on-failure -j "$(nproc)" "$@"
