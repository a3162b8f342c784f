#!/usr/bin/env bash
# Regenerates the colour-profile and orientation test images in this folder
# and colour-expected.txt. Needs gcc, liblcms2-dev, liblcms2-utils (transicc,
# the independent reference for the converted colours), libjpeg-turbo-progs.
set -euo pipefail
cd "$(dirname "$0")"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT

# Display P3 (P3 primaries, D65, the sRGB curve), a grey profile and P3 with a
# gamma of 1.8 (which moves greys too), all made by lcms2 itself.
cat > "$tmp/profiles.c" <<'C'
#include <lcms2.h>
int main(void) {
    cmsCIExyY d65 = {0.3127, 0.3290, 1.0};
    cmsCIExyYTRIPLE p3 = {{0.680, 0.320, 1.0}, {0.265, 0.690, 1.0}, {0.150, 0.060, 1.0}};
    double srgb[5] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    cmsToneCurve* curve = cmsBuildParametricToneCurve(NULL, 4, srgb);
    cmsToneCurve* curves[3] = {curve, curve, curve};
    cmsHPROFILE display = cmsCreateRGBProfile(&d65, &p3, curves);
    cmsMLU* name = cmsMLUalloc(NULL, 1);
    cmsMLUsetASCII(name, "en", "US", "Display P3");
    cmsWriteTag(display, cmsSigProfileDescriptionTag, name);
    cmsSaveProfileToFile(display, "p3.icc");
    cmsSaveProfileToFile(cmsCreateGrayProfile(&d65, cmsBuildGamma(NULL, 2.2)), "grey.icc");
    cmsToneCurve* flat = cmsBuildGamma(NULL, 1.8);
    cmsToneCurve* flats[3] = {flat, flat, flat};
    cmsSaveProfileToFile(cmsCreateRGBProfile(&d65, &p3, flats), "gamma18.icc");
    return 0;
}
C
gcc "$tmp/profiles.c" -o "$tmp/profiles" -llcms2
(cd "$tmp" && ./profiles)
# Without their creation dates, so that a rerun gives the same bytes.
for f in p3 grey gamma18; do dd if=/dev/zero of="$tmp/$f.icc" bs=1 seek=24 count=12 conv=notrunc status=none; done
cp /usr/share/color/icc/colord/sRGB.icc "$tmp/srgb.icc"

# 32x16: eight flat 8x8 blocks, so that JPEG keeps each block's colour and
# lossless transforms of it decode to exactly the same pixels. The first two
# are a red and a green card as a P3 capture holds them.
colours="235,30,45 40,205,65 128,128,128 255,255,255 0,0,0 30,90,200 250,200,40 120,60,160"
python3 - "$tmp" $colours <<'PY'
import struct, subprocess, sys, zlib
tmp, colours = sys.argv[1], [tuple(map(int, c.split(','))) for c in sys.argv[2:]]
rows = [bytes(v for bx in range(4) for _ in range(8) for v in colours[by * 4 + bx]) for by in range(2) for _ in range(8)]
def chunk(kind, data): return struct.pack('>I', len(data)) + kind + data + struct.pack('>I', zlib.crc32(kind + data))
def png(name, extra=b'', pixels=rows):
    ihdr = struct.pack('>IIBBBBB', len(pixels[0]) // 3, len(pixels), 8, 2, 0, 0, 0)
    idat = zlib.compress(b''.join(b'\0' + r for r in pixels))
    open(name, 'wb').write(b'\x89PNG\r\n\x1a\n' + chunk(b'IHDR', ihdr) + extra + chunk(b'IDAT', idat) + chunk(b'IEND', b''))
def iccp(profile): return chunk(b'iCCP', b'icc\0\0' + zlib.compress(profile))
p3 = open(f'{tmp}/p3.icc', 'rb').read()
png('blocks.png')
png('p3.png', iccp(p3))
png('srgb-profile.png', iccp(open(f'{tmp}/srgb.icc', 'rb').read()))
png('grey-profile.png', iccp(open(f'{tmp}/grey.icc', 'rb').read()))
png('damaged-profile.png', iccp(p3[:128] + b'\xff' * 4 + p3[132:]))  # a tag count beyond the profile
png('huge-profile.png', iccp(p3 + bytes(8 << 20)))  # inflates beyond any real profile
def run(*args, input=None): return subprocess.run(args, input=input, check=True, capture_output=True).stdout
jpeg = run('cjpeg', '-quality', '100', '-sample', '1x1', input=b'P6\n32 16\n255\n' + b''.join(rows))
open('blocks.jpg', 'wb').write(jpeg)
def segment(marker, data): return b'\xff' + bytes([marker]) + struct.pack('>H', len(data) + 2) + data
def after_soi(name, source, *segments): open(name, 'wb').write(source[:2] + b''.join(segments) + source[2:])
# The profile in two APP2 segments, the second one first in the file.
half = len(p3) // 2
after_soi('p3.jpg', jpeg, segment(0xE2, b'ICC_PROFILE\0\2\2' + p3[half:]), segment(0xE2, b'ICC_PROFILE\0\1\2' + p3[:half]))
# A sequence that repeats a number is ignored, like any other broken one.
after_soi('repeated-segment.jpg', jpeg, *[segment(0xE2, b'ICC_PROFILE\0' + bytes([n, 2]) + part)
                                          for n, part in ((1, p3[:half]), (1, p3[:half]), (2, p3[half:]))])
# An RGB profile on a one-channel JPEG does not describe its pixels.
gamma18 = open(f'{tmp}/gamma18.icc', 'rb').read()
grey = run('cjpeg', '-quality', '100', '-grayscale', input=b'P6\n32 16\n255\n' + b''.join(rows))
open('grey-blocks.jpg', 'wb').write(grey)
after_soi('grey-rgb-profile.jpg', grey, segment(0xE2, b'ICC_PROFILE\0\1\1' + gamma18))
def tiff(orientation, entries=1):
    ifd = struct.pack('>HHHIHH', entries, 0x0112, 3, 1, orientation, 0) + bytes(4)
    return b'MM\0*' + struct.pack('>I', 8) + ifd
def exif(orientation, entries=1): return segment(0xE1, b'Exif\0\0' + tiff(orientation, entries))
# Stored so that each orientation shows the upright blocks.
stored = ['', '-flip horizontal', '-rotate 180', '-flip vertical', '-transpose', '-rotate 270', '-transverse', '-rotate 90']
for orientation, transform in enumerate(stored, 1):
    after_soi(f'orientation-{orientation}.jpg', run('jpegtran', '-perfect', '-copy', 'none', *transform.split(), 'blocks.jpg'), exif(orientation))
# A PNG turned by its eXIf chunk: stored a quarter turn anticlockwise, shown upright.
png('orientation-6.png', chunk(b'eXIf', tiff(6)), [bytes(v for x in range(16) for v in rows[x][93 - 3 * y:96 - 3 * y]) for y in range(32)])
# An orientation entry behind a directory that claims more entries than fit.
after_soi('damaged-exif.jpg', jpeg, exif(6, 5000))
PY

# The reference conversion: relative colorimetric with black-point compensation.
for c in $colours; do
  echo "${c//,/ }" | transicc -i "$tmp/p3.icc" -o '*sRGB' -t1 -b -s -c0 -n 2>/dev/null | grep -o '[0-9.]*' | tr '\n' ' '
  echo
done > colour-expected.txt
