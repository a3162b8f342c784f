// `plakard resize`: one image brought to an exact size and written as an
// opaque PNG. The order of the checks decides which message a run with several
// faults gets: the fit is checked only after the input has decoded.

#include <filesystem>
#include <utility>

#include "cli/PlakardCLI.hpp"
#include "cli/StandardOutput.hpp"
#include "platform/Paths.hpp"
#include "raster/Canvas.hpp"

namespace plakard {

void PlakardCLI::runResize(const OptionTable& options) {
    const OutputSize size = parseSize(options);
    const std::string& outText = required(options, "--out");
    const std::filesystem::path out = absolutePath(outText);
    const std::filesystem::path in = absolutePath(required(options, "--in"));
    // The input is gone before the write, whose peak holds the result and
    // stb's copy of it: an input can be as large as any result.
    Canvas result = [&] {
        const Canvas image(in);
        const Fit fit = parseFit(options);
        return image.fitted(size.width, size.height, fit);
    }();
    writePNG(std::move(result), out, true);
    printLine(standardizedPath(outText).string());
}

}  // namespace plakard
