#pragma once
// Path services. Everything is lexical unless the name says it resolves links.

#include <filesystem>
#include <optional>
#include <string>

namespace plakard {

// The path made absolute against the working directory, otherwise as given
// (no component removed or resolved).
std::filesystem::path absolutePath(const std::filesystem::path& path);

// Absolute against the working directory, "." removed, ".." applied to the
// text, symbolic links not resolved, no trailing separator.
std::filesystem::path standardizedPath(const std::string& pathText);

// Every symbolic link among the components replaced by its target; the path
// unchanged when that fails.
std::filesystem::path resolvingSymlinks(const std::filesystem::path& path);

// The last component ("shot.png" of "raw/shot.png").
std::string lastComponent(const std::filesystem::path& path);

// The absolute path of the running executable, if the system knows it.
std::optional<std::filesystem::path> executablePath();

// The name under which the program was invoked (argv[0]), as the C library
// recorded it.
std::string invocationName();

}  // namespace plakard
