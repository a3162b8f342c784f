#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plakard {

// A headline as the lines to set, top first: split at '|', each piece trimmed
// of blanks (Unicode Zs and tab) and upper-cased (by the rules of `language`,
// a BCP 47 tag, when one is given), empty ones dropped; perhaps none. With
// `composed`, each line is then in normalisation form C, so typed marks
// become the precomposed letters the face draws.
std::vector<std::string> splitHeadline(std::string_view headline, std::string_view language = {},
                                       bool composed = false);

// The --headline option's lines, as splitHeadline gives them. Throws
// "--headline is empty; pass lines separated by '|'" when none is left.
std::vector<std::string> headlineLines(std::string_view headline, std::string_view language = {},
                                       bool composed = false);

}  // namespace plakard
