#!/usr/bin/env bash
# Builds the libFuzzer targets (the fuzz preset) and runs each for SECONDS (default 60), as many
# at once as there are cores, each on a copy of its seed corpus in fuzz/corpus/, so that the
# repository is never changed:
#   scripts/fuzz.sh [SECONDS]
# Fails on any finding; the log and the input that failed are kept and named.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-60}
targets=${VESK_FUZZ_TARGETS:-"ubootenv custom_mode timing facade veskdm_args"}

scripts/build.sh fuzz

work=$(mktemp -d "${TMPDIR:-/tmp}/veskdm-fuzz-XXXXXX")

# fuzz TARGET: one target's run; its log is $work/TARGET.log, its status $work/TARGET.status.
fuzz() {
    local target=$1
    cp -r "fuzz/corpus/$target" "$work/$target"
    # -close_fd_mask=1: veskdm's callback receiver prints notifications on stdout.
    local status=0
    build/fuzz/bin/"fuzz_$target" -max_total_time="$seconds" -timeout=60 -rss_limit_mb=2048 \
        -close_fd_mask=1 -print_final_stats=1 -artifact_prefix="$work/$target-" \
        "$work/$target" >"$work/$target.log" 2>&1 || status=$?
    echo "$status" >"$work/$target.status"
}

# Each target runs on one core for its full time: as many at once as there are cores.
jobs=$(nproc)
running=0
for target in $targets; do
    if ((running == jobs)); then
        wait -n || true
        running=$((running - 1))
    fi
    echo "--- fuzz_$target: ${seconds} s"
    fuzz "$target" &
    running=$((running + 1))
done
wait

failed=""
for target in $targets; do
    log="$work/$target.log"
    if [ "$(cat "$work/$target.status")" = 0 ]; then
        echo "fuzz_$target: $(grep -E '^#[0-9]+[[:space:]]+DONE' "$log" || echo done)"
    else
        echo "fuzz_$target: FINDING (log $log)"
        grep -E 'ERROR|SUMMARY|runtime error|Test unit written' "$log" | head -20 || true
        failed="$failed $target"
    fi
done

if [ -n "$failed" ]; then
    echo "fuzz: findings in:$failed; logs and inputs in $work"
    exit 1
fi
rm -rf "$work"
echo "fuzz: no findings"
