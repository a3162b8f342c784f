// Image files the image fuzz target found, each named after its defect,
// replayed through decoding as `probe`, `resize` and `compose` run it.

#include <gtest/gtest.h>

#include <string>

#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

std::string decodeOutcome(const std::string& name) {
    try {
        const Canvas image{test::dataPath("crashers/fuzz_image/" + name)};
        return "decoded " + std::to_string(image.width) + "x" + std::to_string(image.height);
    } catch (const PlakardError& error) {
        return error.description;
    }
}

// stb names an unknown critical chunk by its four type bytes, straight from
// the file; the message must stay one printable line whatever they are.
// chunk-type-with-line-break.png is plain.png with an empty chunk of type
// "\n\x1b[J" after its header; the other two are the fuzzer's own inputs (the
// first also starts its image data with an empty IDAT chunk, which stb copies
// from a null buffer).
TEST(ImageCrashers, DecoderReasonsFromTheFileShowOnlyPrintableText) {
    const struct {
        const char* file;
        const char* message;
    } cases[] = {
        {"empty-idat-then-unknown-chunk.png",
         "cannot decode empty-idat-then-unknown-chunk.png: @i}? PNG chunk not known (PNG and JPEG only)"},
        {"chunk-type-with-line-break.png",
         "cannot decode chunk-type-with-line-break.png: ??[J PNG chunk not known (PNG and JPEG only)"},
        {"chunk-type-of-control-bytes.png", "cannot decode chunk-type-of-control-bytes.png: ? (PNG and JPEG only)"},
    };
    for (const auto& c : cases) EXPECT_EQ(decodeOutcome(c.file), c.message) << c.file;
}

}  // namespace
}  // namespace plakard
