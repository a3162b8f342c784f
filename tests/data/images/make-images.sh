#!/usr/bin/env bash
# Regenerates the decoder test images in this folder (ImageMagick 6).
# Each one holds the same small, known pixels in a different encoding, so the
# tests can check exact values after decoding.
set -euo pipefail
cd "$(dirname "$0")"
# -strip leaves out time stamps, so a rerun gives the same bytes.
im() { local last=${*: -1}; /usr/bin/convert "${@:1:$#-1}" -strip "$last"; }

# 4x2 grey: 0 64 128 255 / 10 20 30 40
printf 'P5\n4 2\n255\n\x00\x40\x80\xff\x0a\x14\x1e\x28' > /tmp/plakard-grey.pgm
# 2x2 grey + alpha: (0,255) (100,128) (200,0) (255,64)
printf 'P7\nWIDTH 2\nHEIGHT 2\nDEPTH 2\nMAXVAL 255\nTUPLTYPE GRAYSCALE_ALPHA\nENDHDR\n\x00\xff\x64\x80\xc8\x00\xff\x40' > /tmp/plakard-grey-alpha.pam
# 3x2 RGBA: red, green, blue / half-transparent white, transparent, (10,20,30,255)
printf 'P7\nWIDTH 3\nHEIGHT 2\nDEPTH 4\nMAXVAL 255\nTUPLTYPE RGB_ALPHA\nENDHDR\n\xff\x00\x00\xff\x00\xff\x00\xff\x00\x00\xff\xff\xff\xff\xff\x80\x00\x00\x00\x00\x0a\x14\x1e\xff' > /tmp/plakard-rgba.pam

im /tmp/plakard-grey.pgm -define png:color-type=0 -define png:bit-depth=8 grey.png
im /tmp/plakard-grey-alpha.pam -define png:color-type=4 -define png:bit-depth=8 grey-alpha.png
# A 4-bit palette with a full alpha table (tRNS).
im /tmp/plakard-rgba.pam -type PaletteAlpha palette.png
im /tmp/plakard-rgba.pam -depth 16 PNG64:sixteen-bit.png
# Adam7 interlacing, checked against the same pixels stored plainly.
im -seed 3 -size 13x11 plasma: -alpha set -channel A -fx 'i/w' +channel -depth 8 /tmp/plakard-plasma.pam
im /tmp/plakard-plasma.pam PNG32:plain.png
im /tmp/plakard-plasma.pam -interlace PNG PNG32:interlaced.png

# Photographic content for the JPEGs: flat colour blocks survive compression
# closely enough to check colours within a tolerance.
im -size 32x16 xc:'rgb(200,100,50)' -quality 95 rgb.jpg
im -size 32x16 xc:'rgb(20,140,220)' -quality 95 -interlace JPEG progressive.jpg
im /tmp/plakard-rgba.pam not-an-image.gif
# A capture far wider than tall: the phone around it is shorter than its corners.
im -size 40x600 gradient:'#1e90ff'-'#ff8c00' -rotate 270 PNG24:wide-600x40.png

# A PNG whose header and first chunks are intact but whose image data stops
# half way: noise does not compress, so the IDAT is large enough to cut.
im -seed 7 -size 64x64 xc: +noise Random PNG24:/tmp/plakard-noise.png
size=$(stat -c %s /tmp/plakard-noise.png)
head -c $((size / 2)) /tmp/plakard-noise.png > truncated.png

# Cut right after the header chunk, so the next chunk reads as nothing.
head -c 33 plain.png > header-only.png
# Intact chunks around a deflate stream with garbage in it.
cp plain.png bad-deflate.png
idat=$(grep -obUa IDAT bad-deflate.png | head -1 | cut -d: -f1)
printf '\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff' |
  dd of=bad-deflate.png bs=1 seek=$((idat + 6)) conv=notrunc status=none
# A JPEG that stops before its frame header.
head -c 150 rgb.jpg > cut.jpg

: > empty.png
printf 'this is not an image\n' > text.png

rm -f /tmp/plakard-grey.pgm /tmp/plakard-grey-alpha.pam /tmp/plakard-rgba.pam /tmp/plakard-plasma.pam \
      /tmp/plakard-noise.png
