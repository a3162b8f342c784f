// The process entry, also exported as the C symbol PlakardCLI_main: one
// function under two names.

#include <string>
#include <vector>

#include "cli/PlakardCLI.hpp"

extern "C" int PlakardCLI_main(int argc, char** argv) {
    std::vector<std::string> arguments(argv, argv + argc);
    return plakard::PlakardCLI::main(arguments);
}

extern "C" int main(int argc, char** argv) __attribute__((alias("PlakardCLI_main")));
