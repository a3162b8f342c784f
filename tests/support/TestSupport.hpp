#pragma once
// Helpers shared by the test programs.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace plakard::test {

// Folder of committed test inputs.
std::filesystem::path dataPath(const std::string& name);

// A whole file's bytes ("" when it cannot be read), and a file written whole.
std::string readBytes(const std::filesystem::path& path);
void writeText(const std::filesystem::path& path, std::string_view bytes);

// The names in a folder, sorted.
std::vector<std::string> folderEntries(const std::filesystem::path& folder);

// A fresh empty folder, removed when the object goes.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

}  // namespace plakard::test
