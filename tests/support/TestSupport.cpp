#include "support/TestSupport.hpp"

#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace plakard::test {

std::filesystem::path dataPath(const std::string& name) { return std::filesystem::path(PLAKARD_TEST_DATA) / name; }

TempDir::TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "plakard-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

}  // namespace plakard::test
