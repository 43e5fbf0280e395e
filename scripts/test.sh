#!/usr/bin/env bash
# Installs what is missing, then builds and runs every test: the release build, then the
# AddressSanitizer+UBSan and ThreadSanitizer builds. Set VESK_PRESETS to run fewer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

presets=${VESK_PRESETS:-"default asan tsan"}
for preset in $presets; do
    echo "=== $preset: build"
    scripts/build.sh "$preset"
    echo "=== $preset: test"
    ctest --preset "$preset" -j "$(nproc)" --timeout 300
done
