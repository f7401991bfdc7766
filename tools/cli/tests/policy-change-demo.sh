#!/usr/bin/env bash
# Changing a policy in three steps, on a copy of the repository: raise the authorization policy's
# version from 3 to 4 and its cases with it, run `ravo-orx policy build`, rebuild the runner. The
# rebuilt runner must pass its 13 checks and its benchmark checksum must move from 20000 to 25000
# (5000 authorizations of version 4 and 5000 sync nudges).
#
#   policy-change-demo.sh SOURCE_ROOT WORK_DIRECTORY RAVO_ORX [CMAKE ARGUMENTS...]
#
# The copy's build tree is build/test like the source's, so that ccache (with base_dir set) reuses the
# source tree's objects and only the changed policy and constants are compiled.
set -euo pipefail
source_root=$1 work=$2 ravo_orx=$3
shift 3

rm -rf "$work"
mkdir -p "$work"
tar -C "$source_root" --exclude=./build --exclude=./.git -cf - . | tar -C "$work" -xf -
cd "$work"

sed -i 's/(global $policyVersion i32 (i32.const 3))/(global $policyVersion i32 (i32.const 4))/' policies/player_authz.wat
sed -i -E 's/"emits": \[5201, (-?[0-9]+), (-?[0-9]+), (-?[0-9]+), 3\]/"emits": [5201, \1, \2, \3, 4]/' \
  policies/player_authz.manifest.json
grep -q 'i32.const 4))' policies/player_authz.wat

"$ravo_orx" policy test
"$ravo_orx" policy build
cmake -S . -B build/test -G Ninja -DCMAKE_BUILD_TYPE=Release -DORX_BUILD_TESTS=OFF -DORX_BUILD_BENCHMARKS=OFF "$@" \
  >/dev/null
cmake --build build/test --target RavoORXChecks | tail -n 1
build/test/checks/RavoORXChecks 2>/dev/null | tee checks.out
grep -qx '13/13 ORX runtime checks passed' checks.out
grep -q ' checksum 25000$' checks.out
# Building again from the same sources changes nothing.
"$ravo_orx" policy build | grep -qx 'artifacts and build constants unchanged'
echo "policy change demonstrated"
