#pragma once
// The command line's option table and its validators. Every failure is a
// PlakardError with its exact message.

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/StoreRules.hpp"
#include "compose/Device.hpp"
#include "compose/Layout.hpp"
#include "raster/Fit.hpp"

namespace plakard {

// Option words exactly as typed ("--size"), the last occurrence winning.
using OptionTable = std::map<std::string, std::string>;

struct ParsedOptions {
    OptionTable options;
    std::vector<std::string> positionals;
};

struct OutputSize {
    std::int64_t width;
    std::int64_t height;
};

// `--name value` and `--name=value`; words not starting with "--" are positional.
ParsedOptions parseOptions(const std::vector<std::string>& words);

// The option's value if it was given (an empty value counts as given).
std::optional<std::string> optionalValue(const OptionTable& options, const std::string& key);

// The option's value; throws "missing <key>".
const std::string& required(const OptionTable& options, const std::string& key);

OutputSize parseSize(const OptionTable& options);
Layout parseLayout(const OptionTable& options);
Fit parseFit(const OptionTable& options);
Store parseStore(const OptionTable& options);
// The --device value, if given.
std::optional<Device> parseDevice(const OptionTable& options);

}  // namespace plakard
