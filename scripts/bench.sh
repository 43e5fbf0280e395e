#!/usr/bin/env bash
# Builds and runs every benchmark program and prints their tables.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh default >/dev/null
for bench in build/default/bin/*_bench; do
    [[ -x $bench ]] || continue
    echo "=== $(basename "$bench")"
    "$bench" --benchmark_min_time=0.2 "$@"
done
