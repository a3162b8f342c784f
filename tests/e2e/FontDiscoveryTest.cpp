// Which face compose sets the headline in, decided where the program lives:
// each case runs its own copy of the built program in a folder of the test.

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "e2e/Harness.hpp"

namespace plakard::test {
namespace {

namespace fs = std::filesystem;

const std::string companion = "Inter-Black.ttf";

// Written out here rather than taken from the program, so a changed list fails.
const std::vector<std::string> systemFallbacks = {
    "/usr/share/fonts/inter/Inter-Black.otf",
    "/usr/share/fonts/inter/Inter-ExtraBold.otf",
    "/System/Library/Fonts/Supplemental/Arial Black.ttf",
    "/usr/share/fonts/dejavu/DejaVuSans-Bold.ttf",
    "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf",
};

std::optional<std::string> firstInstalledFallback() {
    for (const std::string& path : systemFallbacks) {
        if (fs::exists(path)) return path;
    }
    return std::nullopt;
}

// The face the build puts beside the program.
fs::path builtFace() { return fs::path(PLAKARD_BINARY).parent_path() / companion; }

std::string fallbackWarning(const fs::path& directory, const std::string& fallback) {
    return "plakard: Inter-Black.ttf is not beside the binary in " + directory.string() + "; composing with " +
           fallback + ", which will not match the sandbox\n";
}

std::string noUsableFont(const fs::path& directory) {
    return "plakard: no usable font: Inter-Black.ttf is missing from " + directory.string() +
           " and no system fallback is installed; pass --font PATH\n";
}

class FontDiscoveryTest : public EndToEnd {
protected:
    void SetUp() override {
        ASSERT_TRUE(fs::exists(builtFace())) << builtFace() << " is missing: install fonts-inter and rebuild";
        provide("e2e/capture-40x60.png", "raw/01.png");
    }

    static std::vector<std::string> page(const std::string& out, std::vector<std::string> extra = {}) {
        std::vector<std::string> arguments{"compose", "--size",       "120x200",   "--headline", "Face",
                                           "--out",   out,            "--bg",      "#204060",    "--screenshot",
                                           "raw/01.png"};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        return arguments;
    }

    // A copy of the built program in `directory`, alone unless asked for the face.
    fs::path installProgram(const std::string& directory, bool withFace) const {
        const fs::path where = folder() / directory;
        fs::create_directories(where);
        fs::copy_file(PLAKARD_BINARY, where / "plakard");
        fs::permissions(where / "plakard", fs::perms::owner_all, fs::perm_options::add);
        if (withFace) fs::copy_file(builtFace(), where / companion);
        return where / "plakard";
    }

    void writeFile(const std::string& name, const std::string& bytes) const {
        fs::create_directories((folder() / name).parent_path());
        std::ofstream(folder() / name, std::ios::binary) << bytes;
    }

    // A compose run that wrote `out` and printed its path, with `err` on standard error.
    void expectComposed(const std::vector<std::string>& arguments, const RunResult& result, const std::string& out,
                        const std::string& err) const {
        expectRun(arguments, result, 0, (folder() / out).string() + "\n", err);
    }

    // Without a face beside the program in `directory`: the first installed
    // fallback with a warning, or the refusal when none is installed. With a
    // fallback, the page is the one that face sets.
    void expectNoFaceFound(const std::vector<std::string>& arguments, const RunResult& result, const fs::path& directory,
                           const std::string& out) const {
        const std::optional<std::string> fallback = firstInstalledFallback();
        if (!fallback) {
            expectRun(arguments, result, 1, "", noUsableFont(directory));
            return;
        }
        expectComposed(arguments, result, out, fallbackWarning(directory, *fallback));
        const std::string reference = "reference-" + out;
        ASSERT_EQ(run(page(reference, {"--font", *fallback})).status, 0);
        EXPECT_EQ(readBytes(folder() / out), readBytes(folder() / reference)) << "not set in " << *fallback;
    }
};

TEST_F(FontDiscoveryTest, TheFaceBesideTheProgramIsUsedSilently) {
    const fs::path program = installProgram("bin", true);
    const std::vector<std::string> arguments = page("beside.png");
    expectComposed(arguments, runWith({.executable = program}, arguments), "beside.png", "");
    ASSERT_EQ(run(page("given.png", {"--font", builtFace().string()})).status, 0);
    EXPECT_EQ(readBytes(folder() / "beside.png"), readBytes(folder() / "given.png"));
}

TEST_F(FontDiscoveryTest, OnlyTheExactNameBesideTheProgramCounts) {
    // Beside each program: nothing, or the face under a name that is not the one looked for.
    const std::vector<std::optional<std::string>> besides = {std::nullopt, "Inter-Black.otf", "inter-black.ttf",
                                                            "Inter-Black.ttf.bak"};
    for (std::size_t i = 0; i < besides.size(); ++i) {
        SCOPED_TRACE(besides[i].value_or("nothing"));
        const std::string directory = "bin" + std::to_string(i);
        const fs::path program = installProgram(directory, false);
        if (besides[i]) fs::copy_file(builtFace(), folder() / directory / *besides[i]);
        const std::string out = "page" + std::to_string(i) + ".png";
        const std::vector<std::string> arguments = page(out);
        expectNoFaceFound(arguments, runWith({.executable = program}, arguments), folder() / directory, out);
    }
}

TEST_F(FontDiscoveryTest, AnythingNamedLikeTheFaceEndsTheSearch) {
    // A folder under the face's name is found, fails to load, and no fallback is tried.
    const fs::path program = installProgram("bin", false);
    fs::create_directory(folder() / "bin" / companion);
    const std::vector<std::string> arguments = page("page.png");
    expectRun(arguments, runWith({.executable = program}, arguments), 1, "",
              "plakard: cannot read font " + (folder() / "bin" / companion).string() + ": Is a directory\n");
    EXPECT_FALSE(fs::exists(folder() / "page.png"));
}

TEST_F(FontDiscoveryTest, AProgramReachedThroughALinkLooksBesideTheTarget) {
    // The face beside the target and none beside the link: found.
    const fs::path withFace = installProgram("real", true);
    fs::create_directory(folder() / "linked");
    fs::create_symlink(withFace, folder() / "linked/plakard");
    const std::vector<std::string> found = page("found.png");
    expectComposed(found, runWith({.executable = folder() / "linked/plakard"}, found), "found.png", "");

    // The face beside the link only: not found, and the target's folder is named.
    const fs::path withoutFace = installProgram("real-bare", false);
    fs::create_directory(folder() / "linked-face");
    fs::create_symlink(withoutFace, folder() / "linked-face/plakard");
    fs::copy_file(builtFace(), folder() / "linked-face" / companion);
    const std::vector<std::string> missed = page("missed.png");
    expectNoFaceFound(missed, runWith({.executable = folder() / "linked-face/plakard"}, missed),
                      folder() / "real-bare", "missed.png");
}

TEST_F(FontDiscoveryTest, TheOptionThenTheVariableThenTheFolderBesideTheProgram) {
    struct Case {
        std::string name;
        bool faceBeside;
        std::vector<std::string> option;
        std::optional<std::string> variable;
        std::string err;  // empty: the page is composed
    };
    const std::string face = builtFace().string();
    const std::vector<Case> cases = {
        // The variable wins over the missing face beside the program, silently.
        {"variable", false, {}, face, ""},
        // A variable naming nothing fails even with the face beside the program.
        {"empty-variable", true, {}, "", "plakard: font not found:  (from PLAKARD_FONT)\n"},
        // The option alone counts: the variable is not even looked at.
        {"option", false, {"--font", face}, "missing.ttf", ""},
        {"option-over-empty", false, {"--font", face}, "", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const fs::path program = installProgram(c.name, c.faceBeside);
        const std::string out = c.name + ".png";
        const std::vector<std::string> arguments = page(out, c.option);
        const RunResult result = runWith({.environment = {{"PLAKARD_FONT", c.variable}}, .executable = program},
                                         arguments);
        if (c.err.empty()) {
            expectComposed(arguments, result, out, "");
        } else {
            expectRun(arguments, result, 1, "", c.err);
            EXPECT_FALSE(fs::exists(folder() / out));
        }
    }
}

TEST_F(FontDiscoveryTest, AChosenFileThatIsNoFontFailsWithItsOwnMessage) {
    writeFile("fonts/eleven.ttf", "0123456789A");
    writeFile("fonts/twelve.ttf", "0123456789AB");
    struct Case {
        std::vector<std::string> option;
        std::optional<std::string> variable;
        std::string message;
    };
    const std::string notAFont = " is not a TrueType or OpenType font, or is truncated";
    const std::vector<Case> cases = {
        // Read errors name the absolute path; format errors only the file's name.
        {{"--font", "fonts"}, std::nullopt, "cannot read font " + (folder() / "fonts").string() + ": Is a directory"},
        {{"--font", "raw/01.png"}, std::nullopt, "01.png" + notAFont},
        {{"--font", "fonts/eleven.ttf"}, std::nullopt, "eleven.ttf is too small to be a font"},
        {{"--font", "fonts/twelve.ttf"}, std::nullopt, "twelve.ttf" + notAFont},
        // A missing font is named as typed, not tidied.
        {{"--font", "./fonts/../gone.ttf"}, std::nullopt, "font not found: ./fonts/../gone.ttf"},
        {{"--font", "raw/01.png"}, "fonts/eleven.ttf", "01.png" + notAFont},
        {{}, "fonts", "cannot read font " + (folder() / "fonts").string() + ": Is a directory"},
        {{}, "fonts/eleven.ttf", "eleven.ttf is too small to be a font"},
    };
    for (const Case& c : cases) {
        expectFailure(page("page.png", c.option), c.message, {{"PLAKARD_FONT", c.variable}});
    }
    EXPECT_FALSE(fs::exists(folder() / "page.png"));
}

// The system fallbacks are arranged in a private mount namespace: an empty
// file system is mounted over /usr/share/fonts for that one run, where only
// the files a case asks for exist. Nothing outside the namespace changes.
class SystemFallbackTest : public FontDiscoveryTest {
protected:
    void SetUp() override {
        FontDiscoveryTest::SetUp();
        if (fs::exists(systemFallbacks[2])) GTEST_SKIP() << systemFallbacks[2] << " lies outside /usr/share/fonts";
        if (!fs::exists("/usr/bin/unshare") || !fs::is_directory("/usr/share/fonts")) {
            GTEST_SKIP() << "needs /usr/bin/unshare and /usr/share/fonts";
        }
        // Root may make a mount namespace directly; others need their own user namespace too.
        for (const std::vector<std::string>& flags :
             {std::vector<std::string>{"--mount"}, std::vector<std::string>{"--mount", "--map-root-user"}}) {
            unshare_ = {"/usr/bin/unshare"};
            unshare_.insert(unshare_.end(), flags.begin(), flags.end());
            const RunResult probe = runWith({.executable = "/bin/sh", .launcher = launcher("")},
                                            {"-c", "test ! -e " + shellQuoted(systemFallbacks.back())});
            if (probe.status == 0) return;
        }
        GTEST_SKIP() << "cannot mount in a private namespace here, so the system fallbacks cannot be arranged";
    }

    // Runs the program after `setup`, a shell command that arranges /usr/share/fonts.
    std::vector<std::string> launcher(const std::string& setup) const {
        std::vector<std::string> words = unshare_;
        const std::string script = "mount -t tmpfs plakard-test-fonts /usr/share/fonts || exit 125\n" + setup +
                                   "\nexec \"$@\"";
        words.insert(words.end(), {"/bin/sh", "-e", "-c", script, "sh"});
        return words;
    }

private:
    std::vector<std::string> unshare_;
};

TEST_F(SystemFallbackTest, OnlyTheFirstExistingFallbackIsTriedAndTheWarningComesFirst) {
    const fs::path program = installProgram("bin", false);
    const fs::path directory = folder() / "bin";
    writeFile("eleven.otf", "0123456789A");
    const auto install = [](const fs::path& source, const std::string& target) {
        return "mkdir -p " + shellQuoted(fs::path(target).parent_path().string()) + "\ncp " + shellQuoted(source.string()) +
               " " + shellQuoted(target) + "\n";
    };
    const fs::path face = builtFace();
    const fs::path broken = folder() / "eleven.otf";
    struct Case {
        std::string name;
        std::string setup;
        int status;
        std::string err;
    };
    const std::vector<Case> cases = {
        {"none", "", 1, noUsableFont(directory)},
        {"second-and-fourth", install(face, systemFallbacks[1]) + install(face, systemFallbacks[3]), 0,
         fallbackWarning(directory, systemFallbacks[1])},
        // The first is broken: the warning names it, its loading error follows,
        // and the good second one is never tried.
        {"broken-first", install(broken, systemFallbacks[0]) + install(face, systemFallbacks[1]), 1,
         fallbackWarning(directory, systemFallbacks[0]) + "plakard: Inter-Black.otf is too small to be a font\n"},
        {"folder-first", "mkdir -p " + shellQuoted(systemFallbacks[0]) + "\n" + install(face, systemFallbacks[1]), 1,
         fallbackWarning(directory, systemFallbacks[0]) + "plakard: cannot read font " + systemFallbacks[0] +
             ": Is a directory\n"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const std::string out = c.name + ".png";
        const std::vector<std::string> arguments = page(out);
        const RunResult result = runWith({.executable = program, .launcher = launcher(c.setup)}, arguments);
        expectRun(arguments, result, c.status, c.status == 0 ? (folder() / out).string() + "\n" : "", c.err);
        EXPECT_EQ(fs::exists(folder() / out), c.status == 0);
    }
}

}  // namespace
}  // namespace plakard::test
