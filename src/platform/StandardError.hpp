#pragma once

#include <string_view>

namespace plakard {

// Writes the text's bytes to standard error in one unbuffered write, adding
// nothing and reporting nothing.
void writeStandardError(std::string_view text);

}  // namespace plakard
