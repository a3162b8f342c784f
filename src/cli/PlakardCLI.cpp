#include "cli/PlakardCLI.hpp"

namespace plakard {

int PlakardCLI::main(const std::vector<std::string>&) { return 2; }

}  // namespace plakard
