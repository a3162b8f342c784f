// `plakard compose`: validates everything a page needs, has the page composer
// draw it and writes it as an opaque PNG. The order of the steps decides which
// message a run with several faults gets.

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/Headline.hpp"
#include "cli/HeadlineFont.hpp"
#include "cli/MatchFile.hpp"
#include "cli/PlakardCLI.hpp"
#include "cli/StandardOutput.hpp"
#include "compose/ComposeRequest.hpp"
#include "compose/PageComposer.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Unicode.hpp"
#include "raster/Canvas.hpp"
#include "raster/RGBA.hpp"
#include "type/FallbackFaces.hpp"
#include "type/Font.hpp"

namespace plakard {

void PlakardCLI::runCompose(const OptionTable& options) {
    const OutputSize size = parseSize(options);
    const std::string& headline = required(options, "--headline");
    std::vector<std::string> lines = headlineLines(headline);
    const std::string& outText = required(options, "--out");
    const std::filesystem::path out = absolutePath(outText);
    const RGBA background(required(options, "--bg"));
    const RGBA foreground(optionalValue(options, "--fg").value_or("#FFFFFF"));
    Canvas screenshot(absolutePath(required(options, "--screenshot")));
    const Layout layout = parseLayout(options);
    // An empty --font is still a font path, and fails as one.
    const std::optional<std::string> fontOption = optionalValue(options, "--font");
    std::shared_ptr<const Font> font = headlineFont(fontOption);
    // Checked last, so every run without --lang fails as it always has.
    std::optional<std::string> language = optionalValue(options, "--lang");
    // --lang without a chosen face brings the installed faces for whatever
    // the headline face lacks, and reads "en_US" as "en-US".
    const bool fallback = language && !fontChosen(fontOption);
    if (language) {
        std::string tag = *language;
        if (fallback) std::replace(tag.begin(), tag.end(), '_', '-');
        if (!isKnownLanguageTag(tag))
            throw PlakardError(
                "--lang must be a language tag ICU knows, such as tr, "
                "el or ar (got '" +
                *language + "')");
        language = tag;
        lines = headlineLines(headline, *language, fallback);
    }
    // After --lang, so every run without --match fails as it always has.
    std::vector<std::vector<std::string>> setHeadlines;
    if (const std::optional<std::string> match = optionalValue(options, "--match"))
        setHeadlines = matchFileHeadlines(*match, language.value_or(""), fallback);
    // After --match, so every run without --device fails as it always has.
    const std::optional<Device> device = parseDevice(options);

    // The request, and the capture in it, is gone before the write, whose
    // peak holds the page and stb's copy of it.
    Canvas page = composePage(ComposeRequest{
        .width = size.width,
        .height = size.height,
        .background = background,
        .foreground = foreground,
        .lines = std::move(lines),
        .screenshot = std::move(screenshot),
        .layout = layout,
        .font = std::move(font),
        .language = language.value_or(""),
        .setHeadlines = std::move(setHeadlines),
        .device = device,
        .fallback = fallback ? std::make_shared<FallbackFaces>(*language) : nullptr,
    });
    writePNG(std::move(page), out, true);
    printLine(standardizedPath(outText).string());
}

}  // namespace plakard
