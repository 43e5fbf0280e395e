#!/usr/bin/env bash
# The main job on the default device root: ask the service for a 1920x1080 output mode on the
# simulated board (model 8470, whose mode the service computes itself), read back what is
# configured, and show what was stored for the boot loader and published as a property.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
# Only what the demo runs: the tool, the implementation library it loads and the simulated board.
scripts/build.sh default veskdm veskdevicemanager_impl vesksdk >/dev/null
veskdm=build/default/bin/veskdm

set -x
"$veskdm" call calculateResolutionParameters 1920 1080 30
"$veskdm" call getResolutionParameters
"$veskdm" env get custom_mode
"$veskdm" env get hdmimode
"$veskdm" prop get persist.vesk.custom.mode
