#!/usr/bin/env bash
# Installs what is missing, checks the formatting, then builds and runs every test: the release
# build, then the AddressSanitizer+UBSan and ThreadSanitizer builds, then the arm64 and 32-bit
# ARM cross builds with every test under qemu-user, then a short run of every fuzz target.
# Set VESK_PRESETS to run fewer presets, VESK_FUZZ=0 to skip the fuzz stage and
# VESK_FUZZ_SECONDS for its length per target (default 30: a smoke run; long runs are
# scripts/fuzz.sh's own business).
set -euo pipefail
cd "$(dirname "$0")/.."

presets=${VESK_PRESETS:-"default asan tsan aarch64 armhf"}
case " $presets " in
    *" aarch64 "* | *" armhf "*) scripts/install-deps.sh --cross ;;
    *) scripts/install-deps.sh ;;
esac

echo "=== lint"
scripts/lint.sh

for preset in $presets; do
    echo "=== $preset: build"
    scripts/build.sh "$preset"
    echo "=== $preset: test"
    ctest --preset "$preset" -j "$(nproc)" --timeout 300
    if [ "$preset" = default ]; then
        echo "=== default: each test program on its own, all its tests in one process, shuffled"
        for program in build/default/bin/*_tests build/default/bin/Vts*Test; do
            VESK_BOARD_JOURNAL= VESK_BOARD_SCRIPT= "$program" --gtest_shuffle --gtest_repeat=3 \
                --gtest_brief=1
        done
    fi
done

if [ "${VESK_FUZZ:-1}" != "0" ]; then
    echo "=== fuzz"
    scripts/fuzz.sh "${VESK_FUZZ_SECONDS:-30}"
fi
