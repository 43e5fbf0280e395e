#!/usr/bin/env bash
# Style and static checks:
#   scripts/lint.sh          every C/C++ file is as clang-format (.clang-format) writes it, and
#                            every Android.bp as bpfmt writes it, and the SELinux policy covers
#                            every path, program and property the service uses on the board,
#                            and every Android.bp module builds what its CMake target builds
#   scripts/lint.sh --tidy   and clang-tidy (.clang-tidy) finds nothing in the service (both front
#                            ends), the host stand-ins, the simulated board and the tool (needs
#                            build/default; the AIDL service's sources where it has a tree)
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files '*.c' '*.cpp' '*.h')
echo "clang-format: ${#sources[@]} files"
clang-format --dry-run -Werror "${sources[@]}"

mapfile -t blueprints < <(git ls-files '*Android.bp')
echo "bpfmt: ${#blueprints[@]} files"
unformatted=$(bpfmt -l "${blueprints[@]}")
if [ -n "$unformatted" ]; then
    echo "not in bpfmt's format (bpfmt -w FILE):"
    echo "$unformatted"
    bpfmt -d "${blueprints[@]}"
    exit 1
fi

echo "sepolicy: sepolicy/check_policy.py"
python3 sepolicy/check_policy.py
echo "Android.bp vs CMake: scripts/check_bp_parity.py"
python3 scripts/check_bp_parity.py

if [ "${1:-}" = "--tidy" ]; then
    # Only what the build compiles: without an Android tree there is no AIDL service.
    mapfile -t units < <(git ls-files 'default/*.cpp' 'host/*.cpp' 'vesksdk/*.cpp' 'tools/*.cpp' \
        'interface/veskdevicemanager/aidl/default/*.cpp' |
        while read -r unit; do
            if grep -qF "\"file\": \"$PWD/$unit\"" build/default/compile_commands.json; then
                echo "$unit"
            fi
        done)
    echo "clang-tidy: ${#units[@]} files"
    printf '%s\n' "${units[@]}" |
        xargs -P "$(nproc)" -n 4 clang-tidy --quiet --warnings-as-errors='*' -p build/default
fi
echo "lint: clean"
