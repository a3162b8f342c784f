#include "cli/FileLocation.hpp"

namespace plakard {

std::filesystem::path fileLocation(const std::string& pathText) {
    const std::filesystem::path path(pathText);
    if (path.is_absolute()) return path;
    return std::filesystem::current_path() / path;
}

}  // namespace plakard
