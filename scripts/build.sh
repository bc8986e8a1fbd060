#!/usr/bin/env bash
# Configures (once) and builds the tree in build/. Extra arguments name the targets to build.
set -euo pipefail
cd "$(dirname "$0")/.."
if [ ! -f build/build.ninja ]; then
    cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
fi
if [ $# -gt 0 ]; then
    targets=()
    for t in "$@"; do targets+=(--target "$t"); done
    cmake --build build "${targets[@]}"
else
    cmake --build build
fi
