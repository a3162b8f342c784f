#!/usr/bin/env bash
# Makes the font seeds for fuzz_font in OUT_DIR/fuzz_font: small subsets of
# real faces from Debian's font packages (TrueType and CFF outlines, kern and
# GPOS kerning, ems of 1000 and 2048, a collection), each followed by the 32
# bytes of text the target sets. They are made at run time rather than
# committed, because they are the font makers' data, not ours.
#
#   fuzz/seed.sh OUT_DIR
set -euo pipefail

out="$1/fuzz_font"
mkdir -p "$out"
# Debian's own interpreter, which has python3-fonttools.
/usr/bin/python3 - "$out" <<'PY'
import io, logging, sys
from fontTools import subset
from fontTools.ttLib import TTFont, TTCollection

logging.disable(logging.WARNING)
out = sys.argv[1]
faces = {
    "dejavu-kern.ttf": "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
    "inter-cff-gpos.otf": "/usr/share/fonts/opentype/inter/Inter-Black.otf",
    "liberation-kern-space.ttf": "/usr/share/fonts/truetype/liberation/LiberationSans-Bold.ttf",
    "noto-em1000.ttf": "/usr/share/fonts/truetype/noto/NotoSansMono-Regular.ttf",
    "wqy-collection.ttc": "/usr/share/fonts/truetype/wqy/wqy-microhei.ttc",
}
text = "AVATAR WÉ wé fi 0123 ÆØ"
trailer = "AV To Wé\u00a0ﬁ😀".encode("utf-8").ljust(32, b" ")[:32]

def subsetted(font):
    options = subset.Options()
    options.layout_features = ["kern"]
    options.legacy_kern = True
    options.notdef_outline = True
    options.name_IDs = []
    options.drop_tables += ["DSIG", "GSUB", "GDEF", "post", "name", "OS/2", "gasp", "prep", "fpgm", "cvt "]
    subsetter = subset.Subsetter(options)
    subsetter.populate(text=text)
    subsetter.subset(font)
    return font

for name, path in faces.items():
    buffer = io.BytesIO()
    if path.endswith(".ttc"):
        collection = TTCollection(path)
        collection.fonts = [subsetted(f) for f in collection.fonts]
        collection.save(buffer)
    else:
        subsetted(TTFont(path)).save(buffer)
    with open(f"{out}/{name}", "wb") as f:
        f.write(buffer.getvalue() + trailer)
PY
ls -l "$out"
