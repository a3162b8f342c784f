#include <gtest/gtest.h>

#include <string>

#include "platform/PlakardError.hpp"
#include "raster/RGBA.hpp"

namespace plakard {
namespace {

struct HexCase {
    const char* text;
    RGBA expected;
};

TEST(RGBAHex, ParsesSixHexDigitsWithOrWithoutHash) {
    const HexCase cases[] = {
        {"#000000", {0, 0, 0, 255}},
        {"ffffff", {255, 255, 255, 255}},
        {"#00ff7F", {0, 255, 127, 255}},
        {"#1E90FF", {0x1E, 0x90, 0xFF, 255}},
        {"1e90ff", {0x1E, 0x90, 0xFF, 255}},
    };
    for (const HexCase& c : cases) EXPECT_EQ(RGBA(std::string(c.text)), c.expected) << c.text;
}

TEST(RGBAHex, RefusesAnythingElseQuotingTheInputAsGiven) {
    const char* cases[] = {"", "#", "#FFF", "#1234567", "1E90FF80", "##12345", "+12345", "-12345",
                           " #123456", "#123456 ", "0x1234", "#12345g", "#１２３４５６", "#12345\xCC\x81"};
    for (const char* text : cases) {
        try {
            RGBA colour{std::string(text)};
            ADD_FAILURE() << "accepted '" << text << "'";
        } catch (const PlakardError& error) {
            EXPECT_EQ(error.description, "'" + std::string(text) + "' is not a #RRGGBB colour");
        }
    }
}

}  // namespace
}  // namespace plakard
