#pragma once
// Standard output belongs to the command line alone: the usage text and the
// drivers' success lines. It is buffered; PlakardCLI::main flushes it before it
// returns or reports a failure, so earlier lines always come first.

#include <string_view>

namespace plakard {

// The text and one newline.
void printLine(std::string_view text);

void flushStandardOutput();

}  // namespace plakard
