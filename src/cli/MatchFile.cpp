#include "cli/MatchFile.hpp"

#include <filesystem>
#include <utility>

#include "cli/Headline.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Unicode.hpp"

namespace plakard {

std::vector<std::vector<std::string>> matchFileHeadlines(const std::string& pathText, std::string_view language,
                                                         bool composed) {
    const std::filesystem::path path = absolutePath(pathText);
    const FileRead file = readFile(path);
    if (!file.ok()) throw PlakardError("cannot read --match file " + path.string() + ": " + file.error);
    const std::string_view text(reinterpret_cast<const char*>(file.bytes.data()), file.bytes.size());
    return matchHeadlines(text, lastComponent(pathText), language, composed);
}

std::vector<std::vector<std::string>> matchHeadlines(std::string_view text, const std::string& name,
                                                     std::string_view language, bool composed) {
    // Some editors start a UTF-8 file with a byte-order mark.
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    std::vector<std::vector<std::string>> headlines;
    for (std::size_t number = 1;; ++number) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.ends_with('\r')) line.remove_suffix(1);
        // A NUL is how a UTF-16 file without a byte-order mark shows itself.
        if (!isUtf8Text(line))
            throw PlakardError("--match file " + name + " is not UTF-8 text (line " + std::to_string(number) + ")");
        // Only a '#' in the first column makes a comment, so a headline that
        // starts with one can still be listed after a blank.
        if (!line.starts_with('#')) {
            std::vector<std::string> lines = splitHeadline(line, language, composed);
            if (!lines.empty()) headlines.push_back(std::move(lines));
        }
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    if (headlines.empty())
        throw PlakardError("--match file " + name + " holds no headline; write one a line, its lines separated by '|'");
    return headlines;
}

}  // namespace plakard
