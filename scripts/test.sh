#!/usr/bin/env bash
# Installs what is missing, checks the formatting, then builds and runs every test: the release
# build, then the AddressSanitizer+UBSan and ThreadSanitizer builds, then a short run of every
# fuzz target. Set VESK_PRESETS to run fewer presets, VESK_FUZZ=0 to skip the fuzz stage and
# VESK_FUZZ_SECONDS for its length per target (default 60).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

echo "=== lint"
scripts/lint.sh

presets=${VESK_PRESETS:-"default asan tsan"}
for preset in $presets; do
    echo "=== $preset: build"
    scripts/build.sh "$preset"
    echo "=== $preset: test"
    ctest --preset "$preset" -j "$(nproc)" --timeout 300
done

if [ "${VESK_FUZZ:-1}" != "0" ]; then
    echo "=== fuzz"
    scripts/fuzz.sh "${VESK_FUZZ_SECONDS:-60}"
fi
