#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "cli/Options.hpp"

namespace plakard {

// The whole program: answers usage requests, parses, dispatches, and is the
// one place where errors become messages and exit statuses (0, 1 or 2).
struct PlakardCLI {
    PlakardCLI() = delete;

    static int main(const std::vector<std::string>& arguments);

    static void runCompose(const OptionTable& options);
    static void runResize(const OptionTable& options);
    static void runProbe(const std::vector<std::string>& positionals);
    // True when every page passed and every path could be read.
    static bool runCheck(const ParsedOptions& parsed);

    // The one place a failure becomes a line on standard error, "plakard: "
    // and the message; returns status 1. `check` reports a path it cannot read
    // here and goes on with the others.
    static int reportFailure(std::string_view message);
};

// The usage text, without a trailing newline.
extern const std::string_view usageText;

}  // namespace plakard
