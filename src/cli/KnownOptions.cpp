// The options each command reads, in one place. They matter only under
// PLAKARD_STRICT: by default an option no command reads is ignored, so a new
// option goes into its driver and into this table.

#include "cli/KnownOptions.hpp"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

#include "platform/PlakardError.hpp"

namespace plakard {

namespace {

const std::map<std::string_view, std::vector<std::string_view>> knownOptions{
    {"compose",
     {"--size", "--headline", "--out", "--bg", "--fg", "--screenshot", "--layout", "--font", "--lang", "--match",
      "--device"}},
    {"resize", {"--size", "--out", "--in", "--fit"}},
    // probe takes image paths and reads no option at all.
    {"probe", {}},
    {"check", {"--store"}},
};

}  // namespace

void refuseUnknownOptions(const std::string& command, const OptionTable& options) {
    const auto known = knownOptions.find(command);
    if (known == knownOptions.end()) return;
    for (const auto& [key, value] : options) {
        if (std::ranges::find(known->second, key) == known->second.end())
            throw PlakardError("unknown option '" + key + "' for " + command +
                               " (refused because PLAKARD_STRICT is set)");
    }
}

}  // namespace plakard
