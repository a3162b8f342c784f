#!/usr/bin/env bash
# Regenerates the sample captures samples/capture-N.png from the HTML screens in samples/html/,
# the tablet and landscape captures beside them, and the two real-input fixtures of the
# end-to-end tests made from them:
#   tests/data/images/browser-screenshot.png  a plain browser screenshot, 390x844 at scale 1
#   tests/data/images/capture.jpg             capture-1 as a 400 px wide JPEG, quality 85
# A phone screen is 393x852 points; at a device scale of 3 that is a 1179x2556 capture. A 13-inch
# tablet's is 1032x1376 points at a scale of 2 (2064x2752), and the phone on its side 932x430
# points at a scale of 3 (2796x1290).
# Needs Debian's chromium, optipng, imagemagick and python3 (sample tooling, not a build dependency).
set -euo pipefail

here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
fixtures="$(cd "$here/.." && pwd)/tests/data/images"
chrome="$(command -v chromium || command -v chromium-browser || true)"
[[ -n "$chrome" ]] || { echo "render.sh: chromium not found (apt-get install chromium)" >&2; exit 1; }
command -v optipng >/dev/null || { echo "render.sh: optipng not found (apt-get install optipng)" >&2; exit 1; }
command -v convert >/dev/null || { echo "render.sh: convert not found (apt-get install imagemagick)" >&2; exit 1; }

profile="$(mktemp -d)"
trap 'rm -rf "$profile"' EXIT

render() { # html-file out-png css-width css-height scale
  local page="$1" out="$2" width="$3" height="$4" scale="$5"
  rm -f "$out"
  "$chrome" --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$profile" --hide-scrollbars --force-device-scale-factor="$scale" \
    --window-size="$width,$height" --screenshot="$out" "file://$page" 2>/dev/null
  [[ -s "$out" ]] || { echo "render.sh: chromium wrote no $out" >&2; exit 1; }
  optipng -quiet -o2 -strip all "$out"
  python3 - "$out" "$((width * scale))" "$((height * scale))" <<'PY'
import struct, sys
path, want_w, want_h = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
with open(path, "rb") as f:
    head = f.read(29)
w, h, depth, colour = struct.unpack(">IIBB", head[16:26])
if (w, h) != (want_w, want_h) or depth != 8 or colour not in (2, 6):
    sys.exit(f"render.sh: {path} is {w}x{h}, depth {depth}, colour type {colour}; want {want_w}x{want_h} 8-bit RGB(A)")
PY
  echo "$out"
}

render "$here/html/subscriptions.html" "$here/capture-1.png" 393 852 3
render "$here/html/insights.html"      "$here/capture-2.png" 393 852 3
render "$here/html/tablet.html"        "$here/capture-tablet.png" 1032 1376 2
render "$here/html/landscape.html"     "$here/capture-landscape.png" 932 430 3

mkdir -p "$fixtures"
render "$here/html/insights.html" "$fixtures/browser-screenshot.png" 390 844 1
# -strip keeps the JPEG free of profiles and dates, so a re-run gives the same bytes.
convert "$here/capture-1.png" -resize 400x -strip -quality 85 "$fixtures/capture.jpg"
echo "$fixtures/capture.jpg"
