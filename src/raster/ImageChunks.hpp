#pragma once
// The building blocks of a PNG or JPEG file, found without decoding any image
// data: a PNG's chunks and a JPEG's marker segments up to its first scan.
// Every offset is checked against the file's end; a walk stops quietly at the
// first block that runs past it, so damaged files give what comes before.

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace plakard {

using Bytes = std::span<const std::uint8_t>;

bool startsWith(Bytes bytes, std::string_view prefix);

bool isPNG(Bytes file);
bool isJPEG(Bytes file);

struct PNGChunk {
    Bytes type;  // four bytes, e.g. "IHDR"
    Bytes data;
};

// From the one after the signature up to IEND, which is included.
std::vector<PNGChunk> pngChunks(Bytes file);

struct JPEGSegment {
    std::uint8_t marker;  // the byte after 0xFF
    Bytes data;           // without the marker and the length
};

// The segments that carry a length, up to the first scan; fill bytes and
// markers without a length are passed over.
std::vector<JPEGSegment> jpegSegments(Bytes file);

// SOF0 to SOF15: the segment that declares the frame (0xC4, 0xC8 and 0xCC
// share the range but are not frames).
bool isFrameHeader(std::uint8_t marker);

}  // namespace plakard
