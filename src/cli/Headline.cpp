#include "cli/Headline.hpp"

#include <utility>

#include "platform/PlakardError.hpp"
#include "platform/Unicode.hpp"

namespace plakard {

std::vector<std::string> splitHeadline(std::string_view headline, std::string_view language, bool composed) {
    std::vector<std::string> lines;
    while (!headline.empty()) {
        const std::size_t bar = headline.find('|');
        // Empty pieces vanish here and blank ones after trimming, so "A||B",
        // "|A|" and "A| |B" all give two lines.
        std::string line = upperCased(trimmingBlanks(headline.substr(0, bar)), language);
        if (composed) line = composedForm(line);
        if (!line.empty()) lines.push_back(std::move(line));
        if (bar == std::string_view::npos) break;
        headline.remove_prefix(bar + 1);
    }
    return lines;
}

std::vector<std::string> headlineLines(std::string_view headline, std::string_view language, bool composed) {
    std::vector<std::string> lines = splitHeadline(headline, language, composed);
    if (lines.empty()) throw PlakardError("--headline is empty; pass lines separated by '|'");
    return lines;
}

}  // namespace plakard
