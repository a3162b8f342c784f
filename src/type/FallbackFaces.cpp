#include "type/FallbackFaces.hpp"

#include <algorithm>
#include <cstring>

#include <fontconfig/fontconfig.h>
#include <unicode/locid.h>

#include "platform/Owned.hpp"
#include "platform/PlakardError.hpp"
#include "type/FontFace.hpp"

namespace plakard {

namespace {

// Fontconfig names Chinese by region: the script a tag gives (or implies,
// "zh-TW" is Traditional) decides between the mainland's and Taiwan's forms;
// Hong Kong and Macau keep theirs.
std::string fontconfigLanguage(std::string_view tag) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale = icu::Locale::forLanguageTag(icu::StringPiece(tag.data(), static_cast<int>(tag.size())), status);
    std::string language = locale.getLanguage();
    if (language != "zh") return language;
    const std::string region = locale.getCountry();
    locale.addLikelySubtags(status);
    if (std::strcmp(locale.getScript(), "Hant") != 0) return "zh-cn";
    if (region == "HK" || region == "MO") return "zh-" + std::string(region == "HK" ? "hk" : "mo");
    return "zh-tw";
}

// Faces stb_truetype can draw: TrueType and CFF outlines, not bitmaps or Type 1.
bool drawableFormat(FcPattern* font) {
    FcChar8* format = nullptr;
    if (FcPatternGetString(font, FC_FONTFORMAT, 0, &format) != FcResultMatch) return false;
    const std::string_view name(reinterpret_cast<const char*>(format));
    return name == "TrueType" || name == "CFF";
}

std::string_view family(FcPattern* font) {
    FcChar8* name = nullptr;
    if (FcPatternGetString(font, FC_FAMILY, 0, &name) != FcResultMatch) return {};
    return reinterpret_cast<const char*>(name);
}

bool serif(std::string_view family) {
    return family.find("Serif") != std::string_view::npos && family.find("Sans") == std::string_view::npos;
}

double weight(FcPattern* font) {
    int whole = 0;
    if (FcPatternGetInteger(font, FC_WEIGHT, 0, &whole) == FcResultMatch) return whole;
    double value = 0;
    return FcPatternGetDouble(font, FC_WEIGHT, 0, &value) == FcResultMatch ? value : 0;
}

struct Candidate {
    FcPattern* font;
    int languageFit;  // 2: the language itself, 1: another region of it, 0: neither
    double weight;
    bool sans;  // named a sans: Kufi, Naskh and the like are display and book styles
    // Made for other scripts than Latin: a face that covers many scripts
    // (DejaVu) draws most of them as an afterthought.
    bool ownScript;
};

bool better(const Candidate& a, const Candidate& b) {
    if (a.languageFit != b.languageFit) return a.languageFit > b.languageFit;
    if (a.weight != b.weight) return a.weight > b.weight;
    if (a.sans != b.sans) return a.sans;
    return a.ownScript && !b.ownScript;
}

}  // namespace

struct FallbackFaces::Config {
    Owned<FcConfig, FcConfigDestroy> config;
};

FallbackFaces::FallbackFaces(std::string_view language)
    : language_(language), fontconfigLanguage_(fontconfigLanguage(language)) {}

FallbackFaces::~FallbackFaces() = default;

const Font* FallbackFaces::faceFor(char32_t c) {
    if (const auto known = chosen_.find(c); known != chosen_.end()) return known->second;
    const Font* face = nullptr;
    for (const std::shared_ptr<const Font>& used : faces_)
        if (stbtt_FindGlyphIndex(&used->face().info, static_cast<int>(c)) != 0) {
            face = used.get();
            break;
        }
    if (!face) face = search(c);
    chosen_.emplace(c, face);
    return face;
}

const Font* FallbackFaces::search(char32_t c) {
    if (!searched_) {
        searched_ = true;
        config_ = std::make_unique<Config>(Config{Owned<FcConfig, FcConfigDestroy>(FcInitLoadConfigAndFonts())});
    }
    FcConfig* config = config_->config.get();
    if (!config) return nullptr;

    const Owned<FcPattern, FcPatternDestroy> pattern(FcPatternCreate());
    const Owned<FcCharSet, FcCharSetDestroy> wanted(FcCharSetCreate());
    const auto* languageName = reinterpret_cast<const FcChar8*>(fontconfigLanguage_.c_str());
    FcCharSetAddChar(wanted.get(), static_cast<FcChar32>(c));
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>("sans-serif"));
    FcPatternAddString(pattern.get(), FC_LANG, languageName);
    FcPatternAddCharSet(pattern.get(), FC_CHARSET, wanted.get());
    FcConfigSubstitute(config, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    FcResult result = FcResultNoMatch;
    const Owned<FcFontSet, FcFontSetDestroy> sorted(FcFontSort(config, pattern.get(), FcFalse, nullptr, &result));
    if (!sorted) return nullptr;

    // Among the faces that cover the character, the language's heaviest
    // wins; fontconfig's order (the language's own forms first, as the
    // collection member for zh-Hans or ja) settles the rest.
    std::vector<Candidate> candidates;
    for (int i = 0; i < sorted->nfont; ++i) {
        FcPattern* font = sorted->fonts[i];
        FcCharSet* covered = nullptr;
        if (FcPatternGetCharSet(font, FC_CHARSET, 0, &covered) != FcResultMatch ||
            !FcCharSetHasChar(covered, static_cast<FcChar32>(c)) || !drawableFormat(font) || serif(family(font)))
            continue;
        FcLangSet* languages = nullptr;
        int fit = 0;
        if (FcPatternGetLangSet(font, FC_LANG, 0, &languages) == FcResultMatch) {
            const FcLangResult has = FcLangSetHasLang(languages, languageName);
            fit = has == FcLangEqual ? 2 : has == FcLangDifferentTerritory ? 1 : 0;
        }
        candidates.push_back({font, fit, weight(font), family(font).find("Sans") != std::string_view::npos,
                              !FcCharSetHasChar(covered, U'A')});
    }
    std::stable_sort(candidates.begin(), candidates.end(), better);
    for (const Candidate& candidate : candidates) {
        FcChar8* file = nullptr;
        int index = 0;
        if (FcPatternGetString(candidate.font, FC_FILE, 0, &file) != FcResultMatch) continue;
        FcPatternGetInteger(candidate.font, FC_INDEX, 0, &index);
        // A damaged or unreadable face is someone else's problem: the next one will do.
        try {
            std::shared_ptr<const Font> face = Font::load(reinterpret_cast<const char*>(file), index, OutlineCheck::asUsed);
            if (!face->face().shaperFont || stbtt_FindGlyphIndex(&face->face().info, static_cast<int>(c)) == 0)
                continue;
            faces_.push_back(std::move(face));
            return faces_.back().get();
        } catch (const PlakardError&) {
        }
    }
    return nullptr;
}

}  // namespace plakard
