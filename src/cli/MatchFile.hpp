#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace plakard {

// The headlines of a compose --match file, each as the lines to set: UTF-8
// text (a leading byte-order mark and CRLF line ends allowed), one headline a
// line in --headline's syntax, upper-cased by the rules of `language` (a BCP
// 47 tag, or empty). Lines starting with '#' and lines that hold no headline
// are skipped. Throws "cannot read --match file <full path>: ...",
// "--match file <name> is not UTF-8 text (line N)" or "--match file <name>
// holds no headline; ...".
std::vector<std::vector<std::string>> matchFileHeadlines(const std::string& pathText, std::string_view language,
                                                         bool composed = false);

// The same from the file's text; `name` is the file name the messages use.
std::vector<std::vector<std::string>> matchHeadlines(std::string_view text, const std::string& name,
                                                     std::string_view language, bool composed = false);

}  // namespace plakard
