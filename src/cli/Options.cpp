#include "cli/Options.hpp"

#include <cstddef>
#include <limits>
#include <optional>
#include <string_view>

#include "platform/PlakardError.hpp"
#include "platform/Unicode.hpp"

namespace plakard {

namespace {

constexpr std::int64_t maximumSide = 20000;

bool isOptionWord(std::string_view word) { return word.starts_with("--"); }

// An optional single sign, then one or more ASCII digits, within int64.
std::optional<std::int64_t> decimalInteger(std::string_view text) {
    bool negative = false;
    if (!text.empty() && (text.front() == '+' || text.front() == '-')) {
        negative = text.front() == '-';
        text.remove_prefix(1);
    }
    if (text.empty()) return std::nullopt;
    // Accumulate towards the negative side, which has room for int64's minimum.
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    std::int64_t value = 0;
    for (char c : text) {
        if (c < '0' || c > '9') return std::nullopt;
        const std::int64_t digit = c - '0';
        if (value < (lowest + digit) / 10) return std::nullopt;
        value = value * 10 - digit;
    }
    if (negative) return value;
    if (value == lowest) return std::nullopt;
    return -value;
}

// The pieces between the separators, empty pieces dropped.
std::vector<std::string_view> nonEmptyPieces(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        const std::size_t end = text.find(separator);
        const std::string_view piece = text.substr(0, end);
        if (!piece.empty()) pieces.push_back(piece);
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return pieces;
}

std::optional<OutputSize> sizeFromText(const std::string& value) {
    const std::string lowered = asciiLowerCased(value);
    const std::vector<std::string_view> pieces = nonEmptyPieces(lowered, 'x');
    if (pieces.size() != 2) return std::nullopt;
    const std::optional<std::int64_t> width = decimalInteger(pieces[0]);
    const std::optional<std::int64_t> height = decimalInteger(pieces[1]);
    const auto inRange = [](std::optional<std::int64_t> side) {
        return side && *side >= 1 && *side <= maximumSide;
    };
    if (!inRange(width) || !inRange(height)) return std::nullopt;
    return OutputSize{*width, *height};
}

}  // namespace

ParsedOptions parseOptions(const std::vector<std::string>& words) {
    ParsedOptions parsed;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const std::string& word = words[index];
        if (!isOptionWord(word)) {
            parsed.positionals.push_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        if (equals != std::string::npos) {
            parsed.options[word.substr(0, equals)] = word.substr(equals + 1);
            continue;
        }
        if (index + 1 == words.size()) throw PlakardError(word + " needs a value");
        // The next word is the value whatever it looks like, even "--size".
        parsed.options[word] = words[index + 1];
        ++index;
    }
    return parsed;
}

std::optional<std::string> optionalValue(const OptionTable& options, const std::string& key) {
    const auto found = options.find(key);
    if (found == options.end()) return std::nullopt;
    return found->second;
}

const std::string& required(const OptionTable& options, const std::string& key) {
    const auto found = options.find(key);
    if (found == options.end()) throw PlakardError("missing " + key);
    return found->second;
}

OutputSize parseSize(const OptionTable& options) {
    const std::string& value = required(options, "--size");
    if (std::optional<OutputSize> size = sizeFromText(value)) return *size;
    throw PlakardError("--size must be WxH in pixels up to " + std::to_string(maximumSide) +
                       " a side, for example 1284x2778 (got '" + value + "')");
}

Layout parseLayout(const OptionTable& options) {
    if (std::optional<Layout> layout = layoutNamed(optionalValue(options, "--layout").value_or("hero"))) {
        return *layout;
    }
    std::string message = "--layout must be one of ";
    for (std::size_t i = 0; i < allLayouts.size(); ++i) {
        if (i > 0) message += ", ";
        message += layoutText(allLayouts[i]);
    }
    throw PlakardError(message);
}

Fit parseFit(const OptionTable& options) {
    const std::string text = optionalValue(options, "--fit").value_or("cover");
    if (text == "cover") return Fit::cover;
    if (text == "stretch") return Fit::stretch;
    throw PlakardError("--fit must be one of cover, stretch");
}

Store parseStore(const OptionTable& options) {
    if (std::optional<Store> store = storeNamed(optionalValue(options, "--store").value_or("app-store"))) return *store;
    throw PlakardError("--store must be one of app-store, play");
}

std::optional<Device> parseDevice(const OptionTable& options) {
    const std::optional<std::string> text = optionalValue(options, "--device");
    if (!text) return std::nullopt;
    if (std::optional<Device> device = deviceNamed(*text)) return device;
    std::string message = "--device must be one of ";
    for (std::size_t i = 0; i < allDevices.size(); ++i) {
        if (i > 0) message += ", ";
        message += deviceText(allDevices[i]);
    }
    throw PlakardError(message);
}

}  // namespace plakard
