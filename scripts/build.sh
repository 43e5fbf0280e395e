#!/usr/bin/env bash
# Configures and builds one preset (default: "default"): scripts/build.sh [PRESET] [TARGET...]
# With targets, builds only those (and what they need). VESK_UNITY_BUILD=ON builds each target's
# sources as a few large units (CMAKE_UNITY_BUILD): about a third less work for a build from
# scratch, which scripts/test.sh does, but a change to one source recompiles its whole unit, so
# the presets themselves build file by file. VESK_PLATFORM_TOOLS_DIR names a folder where the
# platform's aidl and binder (built from the Android tree, cmake/AndroidTree.cmake) are built for
# every preset that shares it, instead of in each build folder.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-default}
shift || true
# A build folder made by an older checkout with another generator is configured anew.
cache=build/$preset/CMakeCache.txt
if [ -f "$cache" ] && ! grep -q '^CMAKE_GENERATOR:INTERNAL=Ninja$' "$cache"; then
    rm -rf "$cache" "build/$preset/CMakeFiles"
fi
tools=()
if [ -n "${VESK_PLATFORM_TOOLS_DIR:-}" ]; then tools=(-DVESK_PLATFORM_TOOLS_DIR="$VESK_PLATFORM_TOOLS_DIR"); fi
cmake --preset "$preset" -DCMAKE_UNITY_BUILD="${VESK_UNITY_BUILD:-OFF}" "${tools[@]}" >/dev/null
targets=()
for target in "$@"; do targets+=(--target "$target"); done
cmake --build --preset "$preset" -j "$(nproc)" "${targets[@]}"
