#!/usr/bin/env bash
# The main job on the default device root: ask the service for a 1920x1080 output mode on the
# simulated board (model 8470, whose mode the service computes itself), read back what is
# configured, and show what was stored for the boot loader and published as a property. Each
# step says what it does as it starts, and each result what it means.
set -euo pipefail
cd "$(dirname "$0")/.."
top=$(pwd)
say() { printf 'demo: %s\n' "$*"; }
# A result line, then what it means, indented under it.
means() { fold -s -w 96 <<<"$*" | sed 's/^/      /'; }
started=$SECONDS

say "checking the Debian packages the build needs (scripts/install-deps.sh installs any missing)"
scripts/install-deps.sh

# A build of its own: only what the demo runs, optimised, without debug information, its sources
# compiled in batches (a third less work from scratch), so that it leaves build/default as it is.
build=build/demo
say "configuring $build (the tool, the service's library and the simulated board only)"
mkdir -p "$build"
if ! cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_UNITY_BUILD=ON \
    -DVESK_BUILD_TESTS=OFF -DVESK_BUILD_BENCHMARKS=OFF >"$build/configure.log" 2>&1; then
    cat "$build/configure.log"
    exit 1
fi
say "building veskdm, vesk.hardware.veskdevicemanager@1.0-impl and libvesksdk on $(nproc) cores"
cmake --build "$build" -j "$(nproc)" --target veskdm veskdevicemanager_impl vesksdk
say "built, $((SECONDS - started)) s after the start"

veskdm=$top/$build/bin/veskdm
say "device root: ${VESK_ROOT:-${XDG_STATE_HOME:-$HOME/.local/state}/veskdm/root}" \
    "(made by the first command that writes in it)"

step() {
    say "$1"
    shift
    printf '$ veskdm %s\n' "$*"
    "$veskdm" "$@"
}

step "1/5 ask the service for a 1920x1080 output at 30 Hz" \
    call calculateResolutionParameters 1920 1080 30
means "The simulated board is model 8470, whose output mode the service works out itself: it" \
    "took 1920x1080 (status 1: checked, stored and selected) at 59 Hz and not the 30 asked," \
    "because its output-mode control computes every mode as a CVT reduced-blanking timing for" \
    "60 Hz, and that timing (138.5 MHz over 2080 x 1111 pixels) runs at 59.934 Hz, truncated."

step "2/5 read back the output mode the service has configured" call getResolutionParameters
means "The mode read back from the boot loader's environment: the same size, and 59 Hz from the" \
    "stored field rate of 59934 thousandths of a hertz."

step "3/5 the custom mode stored for the boot loader" env get custom_mode
means "The 22 numbers of the custom mode: line frequency 66587 Hz, field rate 59.934 Hz, pixel" \
    "clock 138500 kHz, the line's total, blank, front porch, sync, back porch and active pixels," \
    "the frame's in lines, fixed flags, and the picture's aspect ratio 16:9."

step "4/5 the output mode the boot loader selects" env get hdmimode
means "999p60hz is the name under which the custom mode above is selected, here and by the mode" \
    "tool the service ran (/vendor/bin/hdmimode 999p60hz)."

step "5/5 the description the service published as a property" prop get persist.vesk.custom.mode
means "Width x height @ the field rate the timing really has, in hertz."

say "done in $((SECONDS - started)) s. The tool is $veskdm; for example:"
say "  $veskdm timing 1920 1080 --format modeline"
say "  export PATH=\"$top/$build/bin:\$PATH\"   # then: veskdm methods, veskdm call getCpuStatus"
