#!/usr/bin/env bash
# Composes the bundled sample capture the way a store listing needs it: the
# 6.9-inch iPhone size in both layouts, one 13-inch iPad size, and a plain
# resize of the capture to the iPhone size.
#
#   scripts/demo.sh PLAKARD_BINARY OUTDIR
set -euo pipefail

plakard=${1:?usage: scripts/demo.sh PLAKARD_BINARY OUTDIR}
out=${2:?usage: scripts/demo.sh PLAKARD_BINARY OUTDIR}
here=$(cd "$(dirname "$0")/.." && pwd)
capture="$here/samples/capture-1.png"

"$plakard" probe "$capture"
"$plakard" compose --size 1290x2796 --bg '#1F1F23' --headline 'Track|every subscription' \
  --screenshot "$capture" --out "$out/iphone-hero.png"
"$plakard" compose --size 1290x2796 --bg '#5B4CF0' --headline 'Never miss|a renewal again' \
  --screenshot "$capture" --out "$out/iphone-device-top.png" --layout device-top
"$plakard" compose --size 2064x2752 --bg '#0F9F6E' --fg '#FFFFFF' --headline 'All your plans|in one calm place' \
  --screenshot "$capture" --out "$out/ipad-hero.png"
"$plakard" resize --in "$capture" --out "$out/iphone-resized.png" --size 1290x2796
