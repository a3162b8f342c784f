#pragma once

#include <string>

#include "cli/Options.hpp"

namespace plakard {

// For scripts that set PLAKARD_STRICT: throws "unknown option '<key>' for
// <command> (...)" naming the first option, in byte order, that the command
// does not read. A command the table does not know is left to dispatch.
void refuseUnknownOptions(const std::string& command, const OptionTable& options);

}  // namespace plakard
