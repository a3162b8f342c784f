// `plakard probe`: the decoded size of each image, one line each, in the order
// given. The first image that fails ends the run; the lines before it stay.

#include <string>

#include "cli/PlakardCLI.hpp"
#include "cli/StandardOutput.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

void PlakardCLI::runProbe(const std::vector<std::string>& positionals) {
    if (positionals.empty()) throw PlakardError("probe needs at least one image path");
    for (const std::string& pathText : positionals) {
        // The whole image is decoded, so a good header on a damaged body fails.
        const Canvas image(absolutePath(pathText));
        printLine(std::to_string(image.width) + "x" + std::to_string(image.height));
    }
}

}  // namespace plakard
