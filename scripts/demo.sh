#!/usr/bin/env bash
# Composes the sample captures into store pages with a built plakard, as a demonstration:
# each capture at 1290x2796 in both layouts and at the 13-inch iPad size 2064x2752 in hero;
# the tablet capture in a drawn tablet at 2064x2752, the landscape capture at 2796x1290 and
# a frameless page (--device); plus one plain resize of a capture to 1290x2796. The binary
# prints every path it writes.
#
#   scripts/demo.sh BINARY OUTDIR
set -euo pipefail

if [[ $# -ne 2 ]]; then
  echo "usage: scripts/demo.sh BINARY OUTDIR" >&2
  exit 2
fi
binary="$1"
outdir="$2"
samples="$(cd "$(dirname "${BASH_SOURCE[0]}")/../samples" && pwd)"

[[ -x "$binary" ]] || { echo "demo.sh: '$binary' is not an executable" >&2; exit 1; }
for capture in "$samples/capture-1.png" "$samples/capture-2.png" "$samples/capture-tablet.png" \
  "$samples/capture-landscape.png"; do
  [[ -f "$capture" ]] || { echo "demo.sh: missing sample $capture" >&2; exit 1; }
done
mkdir -p "$outdir"

phone=1290x2796
ipad=2064x2752

# name  capture  background  foreground  headline
pages=(
  "subscriptions|capture-1.png|#1F1F23|#FFFFFF|TRACK|EVERY SUBSCRIPTION"
  "insights|capture-2.png|#5B4CF0|#FFFFFF|SEE WHERE|YOUR MONEY GOES"
)

compose() { # name capture bg fg headline size layout
  "$binary" compose --bg "$3" --fg "$4" --headline "$5" \
    --screenshot "$samples/$2" --out "$outdir/$1-$7-$6.png" --size "$6" --layout "$7"
}

for page in "${pages[@]}"; do
  IFS='|' read -r name capture bg fg headline <<<"$page"
  compose "$name" "$capture" "$bg" "$fg" "$headline" "$phone" hero
  compose "$name" "$capture" "$bg" "$fg" "$headline" "$phone" device-top
  compose "$name" "$capture" "$bg" "$fg" "$headline" "$ipad" hero
done

"$binary" compose --bg '#5B4CF0' --headline 'EVERY SUBSCRIPTION|AT A GLANCE' --device tablet \
  --screenshot "$samples/capture-tablet.png" --out "$outdir/overview-tablet-$ipad.png" --size "$ipad"
"$binary" compose --bg '#1F1F23' --headline 'SEE WHERE|YOUR MONEY GOES' --device phone \
  --screenshot "$samples/capture-landscape.png" --out "$outdir/insights-landscape-2796x1290.png" --size 2796x1290
"$binary" compose --bg '#E8E4DA' --fg '#1F1F23' --headline 'TRACK|EVERY SUBSCRIPTION' --device none \
  --screenshot "$samples/capture-1.png" --out "$outdir/subscriptions-frameless-$phone.png" --size "$phone"

"$binary" resize --in "$samples/capture-1.png" --out "$outdir/subscriptions-resized-$phone.png" --size "$phone"
