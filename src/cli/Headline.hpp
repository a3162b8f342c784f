#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plakard {

// The headline option as the lines to set, top first: split at '|', each piece
// trimmed of blanks (Unicode Zs and tab) and upper-cased (by the rules of
// `language`, a BCP 47 tag, when one is given), empty ones dropped.
// Throws "--headline is empty; pass lines separated by '|'" when none is left.
std::vector<std::string> headlineLines(std::string_view headline, std::string_view language = {});

}  // namespace plakard
