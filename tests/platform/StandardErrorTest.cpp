#include <gtest/gtest.h>
#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <string>

#include "platform/StandardError.hpp"
#include "support/TestSupport.hpp"

namespace plakard {
namespace {

TEST(WriteStandardError, WritesTheBytesAsTheyAre) {
    test::TempDir dir;
    const std::filesystem::path captured = dir / "stderr";
    int file = ::open(captured.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ASSERT_GE(file, 0);
    int saved = ::dup(STDERR_FILENO);
    ::dup2(file, STDERR_FILENO);
    const std::string big(200000, 'e');
    writeStandardError("plakard: caf\xC3\xA9\n");
    writeStandardError("");
    writeStandardError(std::string_view("a\0b", 3));
    writeStandardError(big);
    ::dup2(saved, STDERR_FILENO);
    ::close(saved);
    ::close(file);

    std::ifstream in(captured, std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(in), {});
    EXPECT_EQ(text, "plakard: caf\xC3\xA9\n" + std::string("a\0b", 3) + big);
}

}  // namespace
}  // namespace plakard
