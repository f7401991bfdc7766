#!/usr/bin/env bash
# Builds the policy artifacts: assembles each module in policies/ with wat2wasm, runs the package check
# (tools/package_check) and writes artifacts/*.wasm, *.package-check.json and evidence.json, then prints
# the build constants to copy into runtime/OrxBuildConstants.cpp. Deterministic: unchanged sources and
# the same wat2wasm reproduce every byte.
set -euo pipefail
cd "$(dirname "$0")/.."
wat2wasm=$(command -v wat2wasm)
version=$("$wat2wasm" --version)

cmake -S . -B build/tools -G Ninja -DCMAKE_BUILD_TYPE=Release -DORX_BUILD_TESTS=OFF -DORX_BUILD_BENCHMARKS=OFF \
  -DORX_PRECOMPILED=OFF >/dev/null
cmake --build build/tools --target orx_package_check >/dev/null

mkdir -p artifacts
for module in player_authz sync_correction cinema_admission; do
  "$wat2wasm" "policies/$module.wat" -o "artifacts/$module.wasm"
done
build/tools/tools/orx_package_check policies artifacts "$wat2wasm" "$version" tools/build_orx.sh
