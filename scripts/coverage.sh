#!/usr/bin/env bash
# Builds the coverage preset (gcc --coverage), runs every test, and reports with lcov the line
# and function coverage of the service code (default/), with the functions of default/ that no
# test reaches. The HTML report is written to build/coverage/html.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

build=build/coverage
scripts/build.sh coverage
find "$build" -name '*.gcda' -delete
status=0
ctest --preset coverage -j "$(nproc)" --timeout 300 || status=$?

lcov --quiet --capture --directory "$build" --output-file "$build/all.info"
lcov --quiet --extract "$build/all.info" "$PWD/default/*" --output-file "$build/default.info"
echo "=== coverage of default/"
lcov --summary "$build/default.info" 2>&1 | grep -E 'lines|functions'
echo "=== functions of default/ never reached"
# FN:<line>,<name> and FNDA:<count>,<name> per source file; the variants of one function (a
# constructor's complete and base object forms, template instances) share its line, which counts
# as reached when any of them is.
awk -F'[:,]' '
    /^SF:/ { file = substr($0, 4); sub(/.*\/default\//, "default/", file) }
    /^FN:/ { key = file ":" $2; if (!(key in name)) name[key] = $3; line[file, $3] = key }
    /^FNDA:/ { key = line[file, $3]; seen[key] = 1; if ($2 > 0) reached[key] = 1 }
    END { for (key in seen) if (!(key in reached)) print key " " name[key] }
' "$build/default.info" | sort -t: -k1,1 -k2,2n | c++filt
genhtml --quiet "$build/default.info" --output-directory "$build/html"
exit "$status"
