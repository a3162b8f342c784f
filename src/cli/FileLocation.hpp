#pragma once

#include <filesystem>
#include <string>

namespace plakard {

// The path text made absolute against the working directory and otherwise
// left as typed: "." and ".." stay for the system to resolve, so a ".." after
// a symbolic link leads where the shell would have gone.
std::filesystem::path fileLocation(const std::string& pathText);

}  // namespace plakard
