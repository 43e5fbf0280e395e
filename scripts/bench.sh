#!/usr/bin/env bash
# Builds and runs every benchmark program and prints their tables, then one table of the work
# that waits for the disk and one of the ratios against the anchors measured in this run
# (scripts/bench_table.py). Arguments go to every program (e.g. --benchmark_filter=Load).
# Benchmarks timed as a whole run five times in random order (medians are compared); those timed
# run by run (bench/SyncSamples.h) run once, their pieces in turns.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh default >/dev/null
reports=$(mktemp -d)
trap 'rm -rf "$reports"' EXIT
for bench in build/default/bin/*_bench; do
    [[ -x $bench ]] || continue
    name=$(basename "$bench")
    echo "=== $name"
    "$bench" --benchmark_min_time=0.2 --benchmark_repetitions=5 \
        --benchmark_enable_random_interleaving=true --benchmark_display_aggregates_only=true \
        --benchmark_out="$reports/$name.json" --benchmark_out_format=json "$@"
done
echo
python3 scripts/bench_table.py "$reports"/*.json
