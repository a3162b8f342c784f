// How paths are shown: the printed output path and the file name in messages.
#include <gtest/gtest.h>

#include "platform/Paths.hpp"
#include "support/Support.hpp"

namespace plakard::test {
namespace {

TEST(Paths, StandardizedAndLastComponents) {
    const std::string here = fs::current_path().string();
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"/", "/", "/"}, {"//", "/", "/"}, {"a/b/", here + "/a/b", "b"}, {"/x/./y/../z.png", "/x/z.png", "z.png"},
        {"shot.png", here + "/shot.png", "shot.png"}, {"raw/shot.png//", here + "/raw/shot.png", "shot.png"}};
    for (const auto& [path, standardized, last] : cases) {
        EXPECT_EQ(standardizedPath(path).string(), standardized) << path;
        EXPECT_EQ(lastComponent(path), last) << path;
    }
}

}  // namespace
}  // namespace plakard::test
