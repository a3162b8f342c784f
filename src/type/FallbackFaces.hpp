#pragma once
// Faces for the characters the headline face lacks, found among the installed
// fonts with fontconfig: for the headline's language, the heaviest sans-serif
// face that covers the character. Fontconfig reads its configuration and
// caches on the first lookup, so a line the headline face covers costs
// nothing; each face is loaded once and lives as long as this object, which
// must outlive every line laid out with it.

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "type/Font.hpp"

namespace plakard {

class FallbackFaces {
public:
    // `language` is a BCP 47 tag ICU knows.
    explicit FallbackFaces(std::string_view language);
    FallbackFaces(const FallbackFaces&) = delete;
    FallbackFaces& operator=(const FallbackFaces&) = delete;
    ~FallbackFaces();

    // A face with a glyph for `c`, or null when no installed face has one. A
    // face already in use is asked first, so a script's characters stay in
    // one face; a face file that fails to load is passed over.
    const Font* faceFor(char32_t c);

    const std::string& language() const { return language_; }

private:
    const Font* search(char32_t c);

    std::string language_;
    // Fontconfig's name for the language: "zh-cn" for zh-Hans, "zh-tw" for zh-Hant.
    std::string fontconfigLanguage_;
    struct Config;
    std::unique_ptr<Config> config_;
    bool searched_ = false;
    std::vector<std::shared_ptr<const Font>> faces_;
    std::map<char32_t, const Font*> chosen_;
};

}  // namespace plakard
