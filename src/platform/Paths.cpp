#include "platform/Paths.hpp"

#include <errno.h>

#include <system_error>

namespace plakard {

namespace {

std::filesystem::path workingDirectory() {
    std::error_code error;
    std::filesystem::path cwd = std::filesystem::current_path(error);
    return error ? std::filesystem::path() : cwd;
}

}  // namespace

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    return path.is_relative() ? workingDirectory() / path : path;
}

std::filesystem::path standardizedPath(const std::string& pathText) {
    std::string text = absolutePath(pathText).lexically_normal().string();
    // lexically_normal keeps a trailing separator ("a/b/" stays "a/b/").
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    return text;
}

std::filesystem::path resolvingSymlinks(const std::filesystem::path& path) {
    std::error_code error;
    std::filesystem::path resolved = std::filesystem::weakly_canonical(path, error);
    return error ? path : resolved;
}

std::string lastComponent(const std::filesystem::path& path) {
    // "raw/shot.png/" still names shot.png; "/" is its own last component.
    std::string text = path.string();
    while (text.size() > 1 && text.back() == '/') text.pop_back();
    std::size_t slash = text.rfind('/');
    return slash == std::string::npos || text.size() == 1 ? text : text.substr(slash + 1);
}

std::optional<std::filesystem::path> executablePath() {
    std::error_code error;
    std::filesystem::path path = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error || path.empty()) return std::nullopt;
    return path;
}

std::string invocationName() { return program_invocation_name ? program_invocation_name : ""; }

}  // namespace plakard
