#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "platform/Paths.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

// Runs the test body in another working directory and goes back afterwards.
class InDirectory {
public:
    explicit InDirectory(const std::filesystem::path& path) : previous_(std::filesystem::current_path()) {
        std::filesystem::current_path(path);
    }
    ~InDirectory() { std::filesystem::current_path(previous_); }

private:
    std::filesystem::path previous_;
};

TEST(StandardizedPath, IsAbsoluteNormalAndWithoutTrailingSeparator) {
    test::TempDir dir;
    std::filesystem::create_directories(dir / "work" / "sub");
    const std::filesystem::path cwd = std::filesystem::canonical(dir / "work");
    InDirectory inside(cwd);
    const struct {
        const char* text;
        std::filesystem::path expected;
    } cases[] = {
        {"", cwd},
        {".", cwd},
        {"./", cwd},
        {"..", cwd.parent_path()},
        {"final/01.png", cwd / "final" / "01.png"},
        {"./final/./01.png", cwd / "final" / "01.png"},
        {"sub/../x.png", cwd / "x.png"},
        {"missing/../../x.png", cwd.parent_path() / "x.png"},
        {"out/", cwd / "out"},
        {"/a/./b/../c/", "/a/c"},
        {"//a//b", "/a/b"},
        {"/", "/"},
        {"/..", "/"},
        {"/../x", "/x"},
    };
    for (const auto& c : cases) EXPECT_EQ(standardizedPath(c.text), c.expected) << "'" << c.text << "'";
}

TEST(ResolvingSymlinks, ReplacesLinksByTheirTargets) {
    test::TempDir dir;
    const std::filesystem::path real = std::filesystem::canonical(dir.path()) / "real";
    std::filesystem::create_directory(real);
    std::filesystem::create_directory_symlink(real, dir / "link");
    std::ofstream(real / "plakard").put('x');
    std::filesystem::create_symlink(real / "plakard", dir / "plakard-link");
    EXPECT_EQ(resolvingSymlinks(dir / "link" / "plakard"), real / "plakard");
    EXPECT_EQ(resolvingSymlinks(dir / "plakard-link"), real / "plakard");
    // Components that do not exist are kept as they are, after the resolved part.
    EXPECT_EQ(resolvingSymlinks(dir / "link" / "missing.ttf"), real / "missing.ttf");
}

TEST(LastComponent, IsTheNameAfterTheLastSeparator) {
    const struct {
        const char* path;
        const char* expected;
    } cases[] = {
        {"raw/shot.png", "shot.png"}, {"/a/b/shot.gif", "shot.gif"}, {"shot.png", "shot.png"},
        {"raw/shot.png/", "shot.png"}, {"/", "/"}, {"", ""}, {"a/..", ".."},
    };
    for (const auto& c : cases) EXPECT_EQ(lastComponent(c.path), c.expected) << "'" << c.path << "'";
}

TEST(ExecutablePath, NamesThisTestProgram) {
    std::optional<std::filesystem::path> path = executablePath();
    ASSERT_TRUE(path.has_value());
    EXPECT_TRUE(path->is_absolute());
    EXPECT_EQ(path->filename(), "test_platform");
}

}  // namespace
}  // namespace plakard
