// Hostile command lines: the words (one per line of the input) are parsed and
// every validator is run on the result; each either accepts or throws its
// message.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Headline.hpp"
#include "cli/Options.hpp"
#include "platform/PlakardError.hpp"
#include "raster/RGBA.hpp"

namespace {

std::vector<std::string> wordsOf(std::string_view input) {
    std::vector<std::string> words;
    while (true) {
        const std::size_t end = input.find('\n');
        words.emplace_back(input.substr(0, end));
        if (end == std::string_view::npos) return words;
        input.remove_prefix(end + 1);
    }
}

void attempt(const std::function<void()>& step) {
    try {
        step();
    } catch (const plakard::PlakardError&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::vector<std::string> words = wordsOf(std::string_view(reinterpret_cast<const char*>(data), size));
    plakard::ParsedOptions parsed;
    try {
        parsed = plakard::parseOptions(words);
    } catch (const plakard::PlakardError&) {
        // Validators still get to see whatever the words would have given.
        parsed.options.clear();
        for (std::size_t i = 0; i + 1 < words.size(); i += 2) parsed.options[words[i]] = words[i + 1];
    }
    const plakard::OptionTable& options = parsed.options;
    attempt([&] { plakard::parseSize(options); });
    attempt([&] { plakard::parseLayout(options); });
    attempt([&] { plakard::parseFit(options); });
    for (const char* key : {"--bg", "--fg"}) {
        if (const std::optional<std::string> value = plakard::optionalValue(options, key))
            attempt([&] { plakard::RGBA{std::string_view(*value)}; });
    }
    if (const std::optional<std::string> headline = plakard::optionalValue(options, "--headline"))
        attempt([&] { plakard::headlineLines(*headline); });
    for (const std::string& word : words) {
        attempt([&] { plakard::RGBA{std::string_view(word)}; });
        attempt([&] { plakard::headlineLines(word); });
    }
    return 0;
}
