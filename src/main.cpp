// The process entry, also exported as the C symbol PlakardCLI_main: one
// function under two names.

#include <csignal>
#include <string>
#include <vector>

#include "cli/PlakardCLI.hpp"

extern "C" int PlakardCLI_main(int argc, char** argv) {
    // Beyond a file-size limit (ulimit -f) the kernel would kill the process
    // mid-write, leaving its temporary file behind; ignored, the write fails
    // with "File too large" and is reported and cleaned up like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    std::vector<std::string> arguments(argv, argv + argc);
    return plakard::PlakardCLI::main(arguments);
}

extern "C" int main(int argc, char** argv) __attribute__((alias("PlakardCLI_main")));
