#include "cli/StandardOutput.hpp"

#include <cerrno>
#include <cstdio>
#include <system_error>

#include "platform/PlakardError.hpp"

namespace plakard {

namespace {

[[noreturn]] void writeFailure(int error) {
    throw PlakardError("cannot write to standard output: " + std::generic_category().message(error));
}

}  // namespace

void printLine(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fputc('\n', stdout) == EOF)
        writeFailure(errno);
}

void finishStandardOutput() {
    if (std::fflush(stdout) != 0) writeFailure(errno);
}

void flushStandardOutput() { std::fflush(stdout); }

}  // namespace plakard
