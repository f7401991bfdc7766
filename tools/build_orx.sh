#!/usr/bin/env bash
# Builds the policy artifacts and the build constants that approve them: `ravo-orx policy build` (see
# tools/README.md), with a ravo-orx of its own. That tree is interpreter-only, so it builds even while
# the artifacts and the build constants in artifacts/ disagree.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/tools -G Ninja -DCMAKE_BUILD_TYPE=Release -DORX_BUILD_TESTS=OFF -DORX_BUILD_BENCHMARKS=OFF \
  -DORX_PRECOMPILED=OFF >/dev/null
cmake --build build/tools --target ravo-orx >/dev/null
exec build/tools/checks/ravo-orx policy build "$@"
