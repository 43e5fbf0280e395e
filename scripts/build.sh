#!/usr/bin/env bash
# Configures and builds one preset (default: "default"): scripts/build.sh [PRESET] [TARGET...]
# With targets, builds only those (and what they need). VESK_UNITY_BUILD=ON builds each target's
# sources as a few large units (CMAKE_UNITY_BUILD): about a third less work for a build from
# scratch, which scripts/test.sh does, but a change to one source recompiles its whole unit, so
# the presets themselves build file by file.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-default}
shift || true
# A build folder made by an older checkout with another generator is configured anew.
cache=build/$preset/CMakeCache.txt
if [ -f "$cache" ] && ! grep -q '^CMAKE_GENERATOR:INTERNAL=Ninja$' "$cache"; then
    rm -rf "$cache" "build/$preset/CMakeFiles"
fi
cmake --preset "$preset" -DCMAKE_UNITY_BUILD="${VESK_UNITY_BUILD:-OFF}" >/dev/null
targets=()
for target in "$@"; do targets+=(--target "$target"); done
cmake --build --preset "$preset" -j "$(nproc)" "${targets[@]}"
