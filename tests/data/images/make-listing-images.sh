#!/usr/bin/env bash
# Regenerates the store pages under listing/ (ImageMagick 6) that `plakard
# check` is tested on. Flat colours at the real upload sizes: a 1-bit palette
# PNG of 1290x2796 is half a kilobyte.
set -euo pipefail
cd "$(dirname "$0")"
rm -rf listing
mkdir -p listing/good listing/bad listing/colour listing/eleven listing/shared listing/text \
  listing/play-good listing/play-bad
# -strip leaves out time stamps, so a rerun gives the same bytes.
im() { local last=${*: -1}; /usr/bin/convert "${@:1:$#-1}" -strip "$last"; }
flat() { im -size "$1" xc:'#1F1F23' "${@:2}"; }
palette() { flat "$1" -define png:color-type=3 -define png:bit-depth=1 "$2"; }
rgb() { flat "$1" -define png:color-type=2 -define png:compression-level=9 "$2"; }

# Five App Store sizes, PNG and JPEG, one landscape (an iPad page turned);
# a text file the walk skips.
palette 1290x2796 listing/good/1.png
palette 2752x2064 listing/good/2.png
rgb 368x448 listing/good/3.png
flat 312x390 -quality 90 listing/good/4.JPG
flat 422x514 -quality 90 listing/good/5.jpeg
printf 'headlines for the pages\n' > listing/good/notes.txt

# One fault each: an opaque alpha channel, a pixel too tall, a size in points,
# a JPEG named .png, and a PNG cut short inside its image data.
flat 1280x800 -define png:color-type=6 listing/bad/alpha.png
palette 1290x2797 listing/bad/tall.png
palette 390x844 listing/bad/points.png
flat 312x390 -quality 90 JPG:listing/bad/photo.png
palette 1290x2796 /tmp/plakard-whole.png
head -c 300 /tmp/plakard-whole.png > listing/bad/cut.png

# Colours, at a size both stores take: grey PNG and JPEG, CMYK JPEG, a
# palette with transparency, 16-bit RGB, and a good PNG without an extension.
flat 410x502 -colorspace Gray -depth 8 -define png:color-type=0 listing/colour/grey.png
flat 410x502 -colorspace Gray -quality 90 listing/colour/grey.jpg
flat 410x502 -colorspace CMYK -quality 90 listing/colour/cmyk.jpg
flat 410x502 -alpha set -channel A -fx 'i==0&&j==0?0:1' +channel -type PaletteAlpha listing/colour/clear.png
flat 410x502 -depth 16 PNG48:listing/colour/deep.png
rgb 410x502 PNG:listing/colour/page

# Eleven pages for one slot; eleven for two slots that share their size.
palette 3840x2160 /tmp/plakard-tv.png
for n in 01 02 03 04 05 06 07 08 09 10 11; do
  cp listing/good/1.png listing/eleven/$n.png
  cp /tmp/plakard-tv.png listing/shared/$n.png
done
printf 'no pages here\n' > listing/text/notes.txt

# Google Play: both at its limits (a 320 side, a 2:1 ratio, a 3840 side).
rgb 320x640 listing/play-good/1.png
rgb 3840x1920 listing/play-good/2.png
flat 480x800 -quality 90 listing/play-good/3.jpg
# One past each limit.
rgb 319x600 listing/play-bad/narrow.png
rgb 320x641 listing/play-bad/long.png
rgb 3841x320 listing/play-bad/wide.png
