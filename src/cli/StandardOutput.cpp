#include "cli/StandardOutput.hpp"

#include <cstdio>

namespace plakard {

void printLine(std::string_view text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    std::fputc('\n', stdout);
}

void flushStandardOutput() { std::fflush(stdout); }

}  // namespace plakard
