#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "platform/Files.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

TEST(ReadFile, ReadsEveryByte) {
    test::TempDir dir;
    std::string binary("\x89PNG\r\n\x1a\n\0\xff", 10);
    for (const std::string& contents : {std::string(), std::string("x"), binary, std::string(100000, 'q')}) {
        test::writeText(dir / "f", contents);
        FileRead read = readFile(dir / "f");
        EXPECT_TRUE(read.ok()) << read.error;
        EXPECT_EQ(read.bytes, bytesOf(contents));
    }
}

TEST(ReadFile, ReadsToTheEndWhenTheSizeIsUnknown) {
    // Files under /proc report a size of 0 and still have contents.
    FileRead read = readFile("/proc/self/status");
    ASSERT_TRUE(read.ok()) << read.error;
    EXPECT_NE(std::string(read.bytes.begin(), read.bytes.end()).find("Name:"), std::string::npos);
}

TEST(ReadFile, DescribesFailuresInTheSystemsWords) {
    test::TempDir dir;
    test::writeText(dir / "file", "x");
    const struct {
        std::filesystem::path path;
        const char* error;
    } cases[] = {
        {dir / "missing", "No such file or directory"},
        {dir.path(), "Is a directory"},
        {dir / "file" / "inner", "Not a directory"},
        {"", "No such file or directory"},
    };
    for (const auto& c : cases) {
        FileRead read = readFile(c.path);
        EXPECT_FALSE(read.ok()) << c.path;
        EXPECT_EQ(read.error, c.error) << c.path;
        EXPECT_TRUE(read.bytes.empty());
    }
}

TEST(ReadFileDeathTest, AFileTooBigForTheDecodersStopsTheProgram) {
    test::TempDir dir;
    // Sparse: 2^31 bytes that take no room, refused before anything is read.
    test::writeText(dir / "huge", "");
    std::filesystem::resize_file(dir / "huge", std::uintmax_t{1} << 31);
    EXPECT_DEATH(readFile(dir / "huge"), "");
}

TEST(FileExists, SeesAnyEntry) {
    test::TempDir dir;
    test::writeText(dir / "file", "x");
    std::filesystem::create_symlink(dir / "nowhere", dir / "dangling");
    EXPECT_TRUE(fileExists(dir / "file"));
    EXPECT_TRUE(fileExists(dir.path()));
    EXPECT_TRUE(fileExists(dir / "dangling"));
    EXPECT_FALSE(fileExists(dir / "missing"));
    EXPECT_FALSE(fileExists(dir / "file" / "inner"));
    EXPECT_FALSE(fileExists(""));
}

TEST(CreateDirectories, MakesMissingParentsAndIgnoresFailure) {
    test::TempDir dir;
    createDirectories(dir / "a" / "b" / "c");
    EXPECT_TRUE(std::filesystem::is_directory(dir / "a" / "b" / "c"));
    createDirectories(dir / "a" / "b");  // already there
    test::writeText(dir / "file", "x");
    createDirectories(dir / "file" / "sub");  // cannot be made; nothing thrown
    EXPECT_EQ(test::readBytes(dir / "file"), "x");
}

TEST(WriteFileAtomically, WritesANewFileOrReplacesTheOldOneWhole) {
    test::TempDir dir;
    for (const std::string& contents : {std::string(70000, 'z') + "end", std::string("new")}) {
        EXPECT_EQ(writeFileAtomically(dir / "out.png", bytesOf(contents)), "");
        EXPECT_EQ(test::readBytes(dir / "out.png"), contents);
        EXPECT_EQ(test::folderEntries(dir.path()), std::vector<std::string>{"out.png"});
    }
}

TEST(WriteFileAtomically, GivesTheNewFilePermissionsByUmask) {
    test::TempDir dir;
    for (mode_t mask : {mode_t{022}, mode_t{077}, mode_t{0}}) {
        mode_t previous = ::umask(mask);
        std::string error = writeFileAtomically(dir / "out.png", bytesOf("x"));
        ::umask(previous);
        ASSERT_EQ(error, "");
        struct stat status;
        ASSERT_EQ(::stat((dir / "out.png").c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0666 & ~mask) << std::oct << mask;
    }
}

TEST(WriteFileAtomically, HandlesTheLongestFileName) {
    test::TempDir dir;
    const std::string name(255, 'n');
    EXPECT_EQ(writeFileAtomically(dir / name, bytesOf("x")), "");
    EXPECT_EQ(test::folderEntries(dir.path()), std::vector<std::string>{name});
}

TEST(WriteFileAtomically, FailsLeavingNothingBehind) {
    test::TempDir dir;
    test::writeText(dir / "file", "keep");
    std::filesystem::create_directory(dir / "folder");
    test::writeText(dir / "folder" / "inside", "keep too");
    const struct {
        std::filesystem::path destination;
        const char* error;
    } cases[] = {
        {dir / "missing" / "out.png", "No such file or directory"},
        {dir / "file" / "out.png", "Not a directory"},
        {dir / "folder", "Is a directory"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(writeFileAtomically(c.destination, bytesOf("new")), c.error) << c.destination;
        EXPECT_EQ(test::folderEntries(dir.path()), (std::vector<std::string>{"file", "folder"}));
        EXPECT_EQ(test::folderEntries(dir / "folder"), std::vector<std::string>{"inside"});
        EXPECT_EQ(test::readBytes(dir / "file"), "keep");
        EXPECT_EQ(test::readBytes(dir / "folder" / "inside"), "keep too");
    }
}

}  // namespace
}  // namespace plakard
