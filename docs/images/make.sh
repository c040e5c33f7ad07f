#!/bin/sh
# Makes the pictures of this folder anew, but for belt.png, from a simulated camera: docs/images/make.sh build/release/bin/kiv
# Needs Xvfb for the window.
set -eu
kiv=$1
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'kill $screen 2>/dev/null || true; rm -rf "$work"' EXIT
mkfifo "$work/number"
Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp 5>"$work/number" 2>/dev/null &
screen=$!
DISPLAY=:$(head -n 1 "$work/number")
export DISPLAY
export KIV_SIM_CONFIG=built-in KIV_SIM_STATE="$work/state"

"$kiv" view 0 -n 60 --histogram --size 900x700 --screenshot "$here/view.jpg" --jpeg-quality 80
"$kiv" view 0 -n 60 --histogram --size 900x700 --screenshot "$work/window.raw"
"$kiv" convert "$work/window.raw" -o "$here/histogram.png" --process "crop 549 12 276 142"

# As a camera sends it that does not balance by itself.
"$kiv" set 0 BalanceRatioSelector=Red BalanceRatio=1
"$kiv" set 0 BalanceRatioSelector=Blue BalanceRatio=1
"$kiv" grab 0 -n 1 -o "$work" --format raw
"$kiv" convert "$work/frame_000001.raw" -o "$here/raw.jpg" --quality best --process "scale 0.2" --jpeg-quality 85
"$kiv" convert "$work/frame_000001.raw" -o "$here/balanced.jpg" --quality best --white-balance --process "scale 0.2" --jpeg-quality 85
