// Runs of the real binary where the process itself is the subject: where it
// lives, its environment, its limits, the system calls of its write, and being
// killed or raced while it writes.
#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <regex>

#include "raster/Canvas.hpp"
#include "support/Support.hpp"

namespace plakard::test {
namespace {

const std::string capture = dataPath("e2e/capture-40x60.png").string();
const fs::path face = fs::path(PLAKARD_BINARY).parent_path() / "Inter-Black.ttf";

std::vector<std::string> page(const std::string& out) {
    return {"compose", "--size", "200x400", "--headline", "A", "--bg", "#102030", "--screenshot", capture, "--out", out};
}

void expectRun(const Outcome& run, int status, const std::string& out, const std::string& err) {
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.out, out);
    EXPECT_EQ(run.err, err);
}

TEST(Process, TheUsageTextComesOutOfTheBinaryWhole) {
    const TempDir dir;
    expectRun(runProcess({}, {.folder = dir.path}), 2, readBytes(dataPath("e2e/usage.txt")), "");
}

TEST(Process, TheFaceIsTheOptionThenTheVariableThenBesideTheResolvedBinaryThenASystemOne) {
    const TempDir dir;
    for (const char* folder : {"bin", "lone"}) {
        fs::create_directory(dir / folder);
        fs::copy_file(PLAKARD_BINARY, dir / folder / "plakard");
    }
    fs::copy_file(face, dir / "bin/Inter-Black.ttf");
    fs::create_directory(dir / "link");
    fs::create_symlink(dir / "bin/plakard", dir / "link/plakard");
    const std::string fallback = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
    const std::string warning = "plakard: Inter-Black.ttf is not beside the binary in " + (dir / "lone").string() +
                                "; composing with " + fallback + ", which will not match the sandbox\n";
    for (const char* folder : {"bin", "link"})
        expectRun(runProcess(page("a.png"), {.folder = dir.path, .program = dir / folder / "plakard"}), 0,
                  (dir / "a.png").string() + "\n", "");
    expectRun(runProcess(page("b.png"), {.folder = dir.path, .program = dir / "lone/plakard"}), 0,
              (dir / "b.png").string() + "\n", warning);
    // The variable wins over a face beside the binary and one in the working folder.
    writeBytes(dir / "Inter-Black.ttf", "not a face");
    for (const char* value : {"", "missing.ttf"})
        expectRun(runProcess(page("c.png"), {.folder = dir.path, .environment = {{"PLAKARD_FONT", value}},
                                             .program = dir / "bin/plakard"}),
                  1, "", "plakard: font not found: " + std::string(value) + " (from PLAKARD_FONT)\n");
    std::vector<std::string> chosen = page("d.png");
    chosen.insert(chosen.end(), {"--font", face.string()});
    expectRun(runProcess(chosen, {.folder = dir.path, .environment = {{"PLAKARD_FONT", "missing.ttf"}}}), 0,
              (dir / "d.png").string() + "\n", "");
    // With an empty file system over the system fonts (a private mount), or
    // a broken face as the first fallback, which still explains itself first.
    const std::pair<std::string, std::string> systems[] = {
        {"", "plakard: no usable font: Inter-Black.ttf is missing from " + (dir / "lone").string() +
                 " and no system fallback is installed; pass --font PATH\n"},
        {"mkdir /usr/share/fonts/inter; echo x > /usr/share/fonts/inter/Inter-Black.otf",
         "plakard: Inter-Black.ttf is not beside the binary in " + (dir / "lone").string() +
             "; composing with /usr/share/fonts/inter/Inter-Black.otf, which will not match the sandbox\n"
             "plakard: Inter-Black.otf is too small to be a font\n"}};
    for (const auto& [setup, err] : systems) {
        const std::string script = "mount -t tmpfs none /usr/share/fonts || exit 125\n" + setup + "\nexec \"$@\"";
        const Outcome run = runProcess(page("e.png"), {.folder = dir.path, .program = dir / "lone/plakard",
                                                       .before = {"/usr/bin/unshare", "--mount", "/bin/sh", "-c", script, "sh"}});
        if (run.status == 125) GTEST_SKIP() << "cannot mount in a private namespace here";
        expectRun(run, 1, "", err);
    }
}

TEST(Process, AnImageIsReadWholeFromAPipe) {
    const TempDir dir;
    const std::vector<std::string> piped = {"/bin/sh", "-c", "cat \"$0\" | \"$@\"", dataPath("images/capture.jpg")};
    expectRun(runProcess({"probe", "/dev/stdin"}, {.folder = dir.path, .before = piped}), 0, "400x867\n", "");
}

TEST(Process, TheWriteIsAnExclusiveNoFollowTemporarySyncedRenamedAndItsFolderSynced) {
    const TempDir dir;
    const std::vector<std::string> strace = {"/usr/bin/strace", "-qq", "-o", "/dev/null"};
    const Outcome probe = runProcess({}, {.folder = dir.path, .program = "/bin/true", .before = strace});
    // Containers and hardened kernels may forbid ptrace, which strace needs.
    if (probe.status != 0)
        GTEST_SKIP() << "strace cannot trace /bin/true here (status " << probe.status << "): " << probe.err;
    const Outcome run = runProcess({"resize", "--in", capture, "--out", "o.png", "--size", "5x5"},
                                   {.folder = dir.path,
                                    // LeakSanitizer cannot work under a tracer.
                                    .environment = {{"PLAKARD_FONT", std::nullopt}, {"ASAN_OPTIONS", "detect_leaks=0"}},
                                    .before = {"/usr/bin/strace", "-qq", "-o", "trace", "-e", "trace=openat,fsync,rename"}});
    ASSERT_EQ(run.status, 0) << run.err;
    const std::regex write("openat\\(AT_FDCWD, \"" + dir.path.string() +
                           "/\\.o\\.png\\.plakard-[-_a-zA-Z0-9]{12}\", O_WRONLY\\|O_CREAT\\|O_EXCL\\|O_NOFOLLOW\\|O_CLOEXEC, 0666\\) = (\\d+)\n"
                           "fsync\\(\\1\\) += 0\nrename\\([^\n]*\\) += 0\nopenat\\(AT_FDCWD, \"" + dir.path.string() +
                           "\", O_RDONLY\\|O_CLOEXEC\\|O_DIRECTORY\\) = (\\d+)\nfsync\\(\\2\\) += 0\n");
    EXPECT_TRUE(std::regex_search(readBytes(dir / "trace"), write)) << readBytes(dir / "trace");
}

TEST(Process, LimitsOfMemoryAndFileSizeFailWithOneLineAndLeaveTheFolderAsItWas) {
    const TempDir dir;
    fs::copy_file(dataPath("e2e/grey-7x5.png"), dir / "out.png");
    const auto before = snapshot(dir.path);
    expectRun(runProcess({"resize", "--in", capture, "--out", "out.png", "--size", "300x300"}, {.folder = dir.path, .fileSize = 512}),
              1, "", "plakard: cannot write " + (dir / "out.png").string() + ": File too large\n");
    EXPECT_EQ(snapshot(dir.path), before);
#if !defined(__SANITIZE_ADDRESS__)
    std::vector<std::string> huge = page("out.png");
    huge[2] = "20000x20000";
    expectRun(runProcess(huge, {.folder = dir.path, .environment = {{"PLAKARD_FONT", face.string()}}, .addressSpace = 1u << 30}),
              1, "", "plakard: not enough memory for images this large\n");
    EXPECT_EQ(snapshot(dir.path), before);
#endif
}

TEST(Process, AnInputOf2GiBOrAFullStandardOutputFailsWithOneLineAndWritesNothing) {
    const TempDir dir, elsewhere;  // the big file is kept out of the snapshots
    const std::string big = (elsewhere / "big.png").string();
    writeBytes(big, "");
    fs::resize_file(big, 2200u << 20);  // sparse: no disk, no time
    const auto before = snapshot(dir.path);
    std::vector<std::string> font = page("out.png");
    font.insert(font.end(), {"--font", big});
    std::vector<std::string> screenshot = page("out.png");
    screenshot[8] = big;
    const std::pair<std::vector<std::string>, std::string> runs[] = {
        {{"probe", capture, big}, "cannot read "},
        {{"resize", "--in", big, "--out", "out.png", "--size", "5x5"}, "cannot read "},
        {screenshot, "cannot read "},
        {font, "cannot read font "}};
#if defined(__SANITIZE_ADDRESS__)
    const rlim_t space = RLIM_INFINITY;  // ASan reserves terabytes of address space
#else
    const rlim_t space = 1u << 30;  // the file is refused unread, not read until memory runs out
#endif
    for (const auto& [words, reading] : runs) {
        expectRun(runProcess(words, {.folder = dir.path, .addressSpace = space}), 1,
                  words[0] == "probe" ? "40x60\n" : "", "plakard: " + reading + big + ": file is 2 GiB or larger\n");
        EXPECT_EQ(snapshot(dir.path), before);
    }
    // 1000 lines overflow the buffer: the run stops at the first lost line, before missing.png.
    std::vector<std::string> many(1000, capture);
    many.front() = "probe";
    many.push_back("missing.png");
    const std::vector<std::string> full = {"/bin/sh", "-c", "exec \"$@\" >/dev/full", "sh"};
    for (const std::vector<std::string>& words : {std::vector<std::string>{"probe", capture}, many,
                                                  {"resize", "--in", capture, "--out", "r.png", "--size", "5x5"},
                                                  {"help"}})
        expectRun(runProcess(words, {.folder = dir.path, .before = full}), 1, "",
                  "plakard: cannot write to standard output: No space left on device\n");
}

// Scripts opt in to having an option the command does not read refused, before
// anything is read or written; asking for help and unknown commands come first.
TEST(Process, PlakardStrictRefusesOptionsTheCommandDoesNotRead) {
    const TempDir dir;
    std::vector<std::string> typo = page("out.png");
    typo.insert(typo.end(), {"--fgg", "#000000"});
    const auto strict = [&](const std::string& value) {
        return Launch{.folder = dir.path, .environment = {{"PLAKARD_FONT", face.string()}, {"PLAKARD_STRICT", value}}};
    };
    const std::string why = " (refused because PLAKARD_STRICT is set)\n";
    expectRun(runProcess(typo, strict("1")), 1, "", "plakard: unknown option '--fgg' for compose" + why);
    expectRun(runProcess({"resize", "--in", capture, "--size=5x5", "--out", "o.png", "--Fit", "stretch"}, strict("1")), 1,
              "", "plakard: unknown option '--Fit' for resize" + why);
    expectRun(runProcess({"probe", "--size=5x5", "missing.png"}, strict("yes")), 1, "",
              "plakard: unknown option '--size' for probe" + why);
    EXPECT_TRUE(fs::is_empty(dir.path));
    expectRun(runProcess({"probe", "--size=5x5", "--help"}, strict("1")), 0, readBytes(dataPath("e2e/usage.txt")), "");
    expectRun(runProcess({"frobnicate", "--size=5x5"}, strict("1")), 1, "",
              "plakard: unknown command 'frobnicate'; try `plakard help`\n");
    for (const char* value : {"", "0"})
        expectRun(runProcess(typo, strict(value)), 0, (dir / "out.png").string() + "\n", "");
    typo.resize(typo.size() - 2);
    typo.insert(typo.end(), {"--fg", "#000000", "--layout", "hero", "--font", face.string(), "--lang", "de", "--match",
                             dataPath("e2e/match-set.txt").string(), "--device", "phone"});
    expectRun(runProcess(typo, strict("1")), 0, (dir / "out.png").string() + "\n", "");
    expectRun(runProcess({"resize", "--in", capture, "--size=5x5", "--out", "o.png", "--fit", "stretch"}, strict("1")), 0,
              (dir / "o.png").string() + "\n", "");
}

// Killed at a random moment, or racing another run for the same path, the
// destination is always a whole image: the old one or one of the new ones.
TEST(Process, KilledOrRacedWritesLeaveAWholeImage) {
    const TempDir dir;
    std::mt19937 random(5);
    const Launch launch{.folder = dir.path};
    const auto resize = [](const char* size) { return std::vector<std::string>{"resize", "--in", capture, "--out", "o.png", "--size", size}; };
    for (int round = 0; round < 12; ++round) {
        fs::copy_file(dataPath("e2e/grey-7x5.png"), dir / "o.png", fs::copy_options::overwrite_existing);
        const pid_t pid = spawn(resize("1200x1800"), launch);
        ::usleep(random() % 150000);
        ::kill(pid, SIGKILL);
        reap(pid);
        const Canvas image(dir / "o.png");
        EXPECT_TRUE(image.width == 7 || (image.width == 1200 && image.height == 1800)) << image.width;
    }
    for (int round = 0; round < 3; ++round) {
        const pid_t first = spawn(resize("600x900"), launch), second = spawn(resize("900x600"), launch);
        EXPECT_EQ(reap(first).status + reap(second).status, 0);
        const Canvas image(dir / "o.png");
        EXPECT_EQ(image.width + image.height, 1500);
    }
}

}  // namespace
}  // namespace plakard::test
