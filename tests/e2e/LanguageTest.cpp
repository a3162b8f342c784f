// Capitals by the headline's language (--lang), and the refusal of a tag ICU
// cannot use, checked after every other option so no other message changes.
#include <string>
#include <vector>

#include "cli/Headline.hpp"
#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

struct Casing {
    const char* headline;
    const char* language;
    const char* capitals;
};

const Casing casings[] = {
    {"istediğin gibi", "", "ISTEDIĞIN GIBI"},   {"istediğin gibi", "tr", "İSTEDİĞİN GİBİ"},
    {"istediğin gibi", "az", "İSTEDİĞİN GİBİ"}, {"κάθε συνδρομή", "", "ΚΆΘΕ ΣΥΝΔΡΟΜΉ"},
    {"κάθε συνδρομή", "el", "ΚΑΘΕ ΣΥΝΔΡΟΜΗ"},   {"i\u0307\u0300", "", "I\u0307\u0300"},
    {"i\u0307\u0300", "lt", "I\u0300"},         {"straße", "de", "STRASSE"},
};

TEST(LanguageTest, UpperCasesByTheHeadlinesLanguage) {
    for (const Casing& c : casings) {
        EXPECT_EQ(headlineLines(c.headline, c.language), std::vector<std::string>{c.capitals}) << c.language;
    }
}

class LanguageOptionTest : public EndToEnd {};

TEST_F(LanguageOptionTest, RefusesATagICUCannotUseAfterEveryOtherCheck) {
    provide("e2e/capture-40x60.png", "raw.png");
    const std::string dejaVu = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
    const std::vector<std::string> page{"compose", "--size", "300x500", "--headline", "istediğin",    "--out",
                                        "o.png",   "--bg",   "#1F1F23", "--font",     dejaVu, "--screenshot"};
    for (const std::string tag : {"xx", "en_US", "", "und"}) {
        std::vector<std::string> arguments = page;
        arguments.insert(arguments.end(), {"missing.png", "--lang", tag});
        expectFailure(arguments, "cannot read " + (folder() / "missing.png").string() + ": No such file or directory");
        arguments[arguments.size() - 3] = "raw.png";
        expectFailure(arguments, "--lang must be a language tag ICU knows, such as tr, el or ar (got '" + tag + "')");
    }
    std::vector<std::string> arguments = page;
    arguments.insert(arguments.end(), {"raw.png", "--lang", "tr"});
    expectRun(arguments, run(arguments), 0, (folder() / "o.png").string() + "\n", "");
}

}  // namespace
}  // namespace plakard::test
