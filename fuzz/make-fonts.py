#!/usr/bin/python3
# Builds small faces of our own from scratch (Debian's python3-fonttools), so
# the font fuzzer's committed seeds and the font crash files carry no font
# maker's data:
#   fuzz/corpus/fuzz_font/          TrueType (simple and composite glyphs, a
#                                   kern table, cmap formats 4 and 12), CFF
#                                   with GPOS kerning, and a collection, each
#                                   followed by the 32 bytes of text the
#                                   target sets
#   tests/data/crashers/fuzz_font/  copies damaged the way the fuzzer's
#                                   crashing inputs were, one defect each
# Run from anywhere; it writes beside itself. A rerun gives the same bytes.
import io
import os
import struct
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.t2CharStringPen import T2CharStringPen
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import TTCollection, TTFont, newTable
from fontTools.ttLib.tables._k_e_r_n import KernTable_format_0

here = os.path.dirname(os.path.abspath(__file__))
seeds = os.path.join(here, "corpus", "fuzz_font")
crashers = os.path.join(here, "..", "tests", "data", "crashers", "fuzz_font")

ORDER = [".notdef", "space", "A", "V", "O", "Aring"]
CMAP = {0x20: "space", 0x41: "A", 0x56: "V", 0x4F: "O", 0xC5: "Aring", 0x1F170: "A"}
ADVANCES = {".notdef": 500, "space": 250, "A": 640, "V": 620, "O": 700, "Aring": 640}
TEXT = "AV AO\u00c5 \U0001F170".encode("utf-8").ljust(32, b" ")


def outline(pen, name):
    if name == ".notdef":
        pen.moveTo((50, 0)); pen.lineTo((50, 700)); pen.lineTo((450, 700)); pen.lineTo((450, 0)); pen.closePath()
    elif name == "A":
        pen.moveTo((0, 0)); pen.lineTo((320, 720)); pen.lineTo((640, 0)); pen.lineTo((500, 0))
        pen.lineTo((320, 420)); pen.lineTo((140, 0)); pen.closePath()
    elif name == "V":
        pen.moveTo((0, 720)); pen.lineTo((310, 0)); pen.lineTo((620, 720)); pen.closePath()
    elif name == "O":
        pen.moveTo((350, 0)); pen.qCurveTo((700, 0), (700, 360)); pen.qCurveTo((700, 720), (350, 720))
        pen.qCurveTo((0, 720), (0, 360)); pen.qCurveTo((0, 0), (350, 0)); pen.closePath()


def start(fb):
    fb.updateHead(created=0, modified=0)
    fb.setupGlyphOrder(ORDER)
    fb.setupCharacterMap(CMAP)


def finish(fb, name):
    fb.setupHorizontalMetrics({g: (ADVANCES[g], 0) for g in ORDER})
    fb.setupHorizontalHeader(ascent=800, descent=-200)
    fb.setupNameTable({"familyName": name, "styleName": "Regular"})
    fb.setupOS2(sTypoAscender=800, sTypoDescender=-200, usWinAscent=800, usWinDescent=200)
    fb.setupPost()


def truetype(name="PlakardTest", lone_point=False):
    fb = FontBuilder(1024, isTTF=True)
    start(fb)
    glyphs = {}
    for glyph in ORDER:
        pen = TTGlyphPen(glyphs)
        if glyph == "Aring":
            pen.addComponent("A", (1, 0, 0, 1, 0, 0))
            pen.addComponent("O", (0.25, 0, 0, 0.25, 230, 760))
        else:
            outline(pen, glyph)
        glyphs[glyph] = pen.glyph()
        if glyph == "V" and lone_point:
            # A last contour of one off-curve point (pens drop such contours).
            glyphs[glyph].coordinates.append((310, 360))
            glyphs[glyph].flags.append(0)
            glyphs[glyph].endPtsOfContours.append(len(glyphs[glyph].coordinates) - 1)
            glyphs[glyph].numberOfContours += 1
    fb.setupGlyf(glyphs)
    finish(fb, name)
    kern = newTable("kern")
    kern.version = 0
    pairs = KernTable_format_0()
    pairs.version, pairs.format, pairs.coverage, pairs.tupleIndex = 0, 0, 1, 0
    pairs.kernTable = {("A", "V"): -80, ("A", "space"): -20, ("space", "V"): -10}
    kern.kernTables = [pairs]
    fb.font["kern"] = kern
    return fb.font


def compact():
    fb = FontBuilder(1000, isTTF=False)
    start(fb)
    charStrings = {}
    for glyph in ORDER:
        pen = T2CharStringPen(ADVANCES[glyph], None)
        outline(pen, "A" if glyph == "Aring" else glyph)
        charStrings[glyph] = pen.getCharString()
    fb.setupCFF("PlakardTestCFF", {"FullName": "PlakardTestCFF"}, charStrings, {})
    finish(fb, "PlakardTestCFF")
    fb.addOpenTypeFeatures("feature kern { pos A V -80; pos A space -20; } kern;")
    return fb.font


def saved(font):
    font.recalcTimestamp = False
    buffer = io.BytesIO()
    font.save(buffer)
    return bytearray(buffer.getvalue())


def tables(data, start=0):
    count = struct.unpack_from(">H", data, start + 4)[0]
    found = {}
    for i in range(count):
        tag, _, offset, length = struct.unpack_from(">4sIII", data, start + 12 + 16 * i)
        found[tag.decode("latin-1")] = (offset, length)
    return found


def glyph_offset(data, name):
    t = tables(data)
    long_loca = struct.unpack_from(">h", data, t["head"][0] + 50)[0] == 1
    i = ORDER.index(name)
    loca = t["loca"][0]
    where = struct.unpack_from(">I", data, loca + 4 * i)[0] if long_loca else 2 * struct.unpack_from(">H", data, loca + 2 * i)[0]
    return t["glyf"][0] + where


def write(folder, name, data, text=b""):
    with open(os.path.join(folder, name), "wb") as f:
        f.write(bytes(data) + text)


os.makedirs(seeds, exist_ok=True)
os.makedirs(crashers, exist_ok=True)
ttf = saved(truetype())
otf = saved(compact())
collection = TTCollection()
collection.fonts = [TTFont(io.BytesIO(bytes(face)), recalcTimestamp=False)
                    for face in (ttf, saved(truetype("PlakardTestTwo")))]
ttc = io.BytesIO()
collection.save(ttc)
write(seeds, "truetype-kern.ttf", ttf, TEXT)
write(seeds, "cff-gpos.otf", otf, TEXT)
write(seeds, "collection.ttc", ttc.getvalue(), TEXT)

# stb sized A's bitmap from a box whose top lies below its bottom: a negative
# allocation.
damaged = bytearray(ttf)
g = glyph_offset(damaged, "A")
y_min, y_max = struct.unpack_from(">hh", damaged, g + 4)[0], struct.unpack_from(">hh", damaged, g + 8)[0]
struct.pack_into(">h", damaged, g + 4, y_max)
struct.pack_into(">h", damaged, g + 8, y_min)
write(crashers, "inverted-glyph-box.ttf", damaged, TEXT)

# A's last contour claims 30000 points: stb read flags and coordinates far
# past the glyph and the file.
damaged = bytearray(ttf)
g = glyph_offset(damaged, "A")
contours = struct.unpack_from(">h", damaged, g)[0]
struct.pack_into(">H", damaged, g + 10 + 2 * (contours - 1), 30000)
write(crashers, "glyph-points-past-glyph.ttf", damaged, TEXT)

# The charstrings INDEX claims 32767 entries with 4-byte offsets: stbtt_InitFont
# skipped that far and read its last offset past the table and the file.
damaged = bytearray(otf)
cff = tables(damaged)["CFF "][0]
charstrings = TTFont(io.BytesIO(bytes(otf)))["CFF "].cff.topDictIndex[0].rawDict["CharStrings"]
struct.pack_into(">HB", damaged, cff + charstrings, 0x7FFF, 4)
write(crashers, "cff-index-past-table.otf", damaged, TEXT)

# Aring's first component is Aring itself: stb recursed until the stack ran
# out.
damaged = bytearray(ttf)
struct.pack_into(">H", damaged, glyph_offset(damaged, "Aring") + 12, ORDER.index("Aring"))
write(crashers, "composite-cycle.ttf", damaged, TEXT)

# Aring's first component is placed by matching points, on which stb asserts.
damaged = bytearray(ttf)
g = glyph_offset(damaged, "Aring") + 10
struct.pack_into(">H", damaged, g, struct.unpack_from(">H", damaged, g)[0] & ~2)
write(crashers, "composite-point-matching.ttf", damaged, TEXT)

# V's last contour is a single off-curve point: stb read the point after it,
# one past its buffer.
write(crashers, "off-curve-last-point.ttf", saved(truetype(lone_point=True)), TEXT)

# The charstrings INDEX counts one glyph fewer than the face has, so the
# character map gives Aring, which has no charstring: stb asserts.
damaged = bytearray(otf)
struct.pack_into(">H", damaged, cff + charstrings, len(ORDER) - 1)
write(crashers, "cff-glyph-without-charstring.otf", damaged, TEXT)

# O's header puts its box below the baseline while its ring stands above it:
# stb made a bitmap whose first row is the baseline's, met edges wholly above
# that row and asserted.
damaged = bytearray(ttf)
g = glyph_offset(damaged, "O")
struct.pack_into(">h", damaged, g + 4, -720)
struct.pack_into(">h", damaged, g + 8, 0)
write(crashers, "glyph-ink-above-its-box.ttf", damaged, TEXT)
