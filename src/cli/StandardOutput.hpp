#pragma once
// Standard output belongs to the command line alone: the usage text and the
// drivers' success lines. It is buffered; PlakardCLI::main flushes it before it
// returns or reports a failure, so earlier lines always come first.

#include <string_view>

namespace plakard {

// The text and one newline. Throws "cannot write to standard output: <reason>"
// when the stream refuses them, so no later image is read for a lost line.
void printLine(std::string_view text);

// Sends what is buffered; throws like printLine when it cannot, so a run
// whose lines never arrived does not end as a success.
void finishStandardOutput();

// Sends what is buffered before a failure is reported, which is the failure
// that matters: a second one here is not reported.
void flushStandardOutput();

}  // namespace plakard
