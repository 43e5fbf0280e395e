#!/usr/bin/env bash
# Installs what is missing, checks the formatting, runs the board check against an Android tree,
# then builds and runs every test: the release build, then the AddressSanitizer+UBSan and
# ThreadSanitizer builds, then the arm64 and 32-bit ARM cross builds with every test under
# qemu-user, then a short run of every fuzz target. Each stage's wall time is printed as it ends,
# and a table of all stages at the end.
#
# Set VESK_PRESETS to run fewer presets, VESK_FUZZ=0 to skip the fuzz stage and
# VESK_FUZZ_SECONDS for its length per target (default 30: a smoke run; long runs are
# scripts/fuzz.sh's own business). The board check reads $VESK_ANDROID_TREE, else
# ../shared/android13 beside the checkout; in CI ($CI set) that tree must be there.
set -euo pipefail
cd "$(dirname "$0")/.."

presets=${VESK_PRESETS:-"default asan tsan aarch64 armhf"}
# Every preset is built from scratch here: one unit per target's batch of sources is the least work.
export VESK_UNITY_BUILD=ON
# The platform's aidl and binder, built from the Android tree, once for all presets (minutes each).
export VESK_PLATFORM_TOOLS_DIR=$PWD/build/android-tree
# Most tests wait on other processes, pipes and files part of the time: twice as many tests as
# cores keep both cores busy.
test_jobs=$((2 * $(nproc)))

stage_names=()
stage_seconds=()
run_start=$SECONDS
print_table() {
    echo "=== stage times"
    local i
    for i in "${!stage_names[@]}"; do
        printf '%-28s %6d s\n' "${stage_names[$i]}" "${stage_seconds[$i]}"
    done
    printf '%-28s %6d s\n' "total" $((SECONDS - run_start))
}
trap print_table EXIT

# stage NAME COMMAND...: runs one stage and records its wall time.
stage() {
    local name=$1
    shift
    echo "=== $name"
    local start=$SECONDS
    "$@"
    stage_names+=("$name")
    stage_seconds+=($((SECONDS - start)))
    echo "--- $name: $((SECONDS - start)) s"
}

# Each test program on its own, all its tests in one process, shuffled: as many programs at once
# as there are cores; their outputs are shown in order when all have ended.
shuffled_runs() {
    local work program status=0
    work=$(mktemp -d "${TMPDIR:-/tmp}/veskdm-shuffled-XXXXXX")
    local programs=(build/default/bin/*_tests build/default/bin/Vts*Test)
    printf '%s\n' "${programs[@]}" | xargs -P "$(nproc)" -I{} sh -c '
        VESK_BOARD_JOURNAL= VESK_BOARD_SCRIPT= "$1" --gtest_shuffle --gtest_repeat=3 \
            --gtest_brief=1 >"$2/$(basename "$1").log" 2>&1 || echo "$1" >>"$2/failed"' sh {} "$work"
    for program in "${programs[@]}"; do cat "$work/$(basename "$program").log"; done
    if [ -f "$work/failed" ]; then
        echo "failed in their shuffled runs:" $(cat "$work/failed")
        status=1
    fi
    rm -rf "$work"
    return $status
}

board_check() {
    local tree=${VESK_ANDROID_TREE:-../shared/android13}
    if [ -z "${CI:-}" ] && [ ! -d "$tree" ]; then
        python3 scripts/board_check.py
        return
    fi
    python3 scripts/board_check.py "$tree"
    VESK_ANDROID_TREE=$(realpath "$tree") python3 -m unittest discover -s scripts/boardcheck/tests \
        -t scripts
}

case " $presets " in
    *" aarch64 "* | *" armhf "*) stage install scripts/install-deps.sh --cross ;;
    *) stage install scripts/install-deps.sh ;;
esac
stage lint scripts/lint.sh
stage board board_check

for preset in $presets; do
    stage "$preset: build" scripts/build.sh "$preset"
    stage "$preset: test" ctest --preset "$preset" -j "$test_jobs" --timeout 300
    if [ "$preset" = default ]; then
        stage "default: shuffled" shuffled_runs
    fi
done

if [ "${VESK_FUZZ:-1}" != "0" ]; then
    stage fuzz scripts/fuzz.sh "${VESK_FUZZ_SECONDS:-30}"
fi
