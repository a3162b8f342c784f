#pragma once
// Runs the real plakard binary the way a shell would: given arguments, a
// working folder and environment, capturing both streams and the exit status.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/TestSupport.hpp"

namespace plakard::test {

struct RunResult {
    int status = -1;  // the exit status, or 128 + signal number
    std::string out;
    std::string err;
};

struct RunSettings {
    std::filesystem::path workingDirectory{};
    // Set (a value) or removed (nullopt) on top of the test's own environment.
    // PLAKARD_FONT is always removed unless set here.
    std::map<std::string, std::optional<std::string>> environment{};
    // The program run: the built binary, or a copy of it or a link to it.
    std::filesystem::path executable = PLAKARD_BINARY;
    // Words before the program that start it, such as a command that runs it
    // in a private mount namespace; the first is an absolute path.
    std::vector<std::string> launcher{};
    // Limits set in the child before it starts plakard: the largest file it
    // may write (RLIMIT_FSIZE; SIGXFSZ is left at its default) and its address
    // space (RLIMIT_AS), in bytes.
    std::optional<std::uint64_t> fileSizeLimit{};
    std::optional<std::uint64_t> addressSpaceLimit{};
    // Run as this user and group (the test must be root to switch).
    std::optional<unsigned> userAndGroup{};
};

// Exit statuses of a child that never became plakard: it could not set its
// limits or user, enter the working folder, or start the binary.
constexpr int statusLimitsFailed = 125;
constexpr int statusFolderFailed = 126;
constexpr int statusExecFailed = 127;

// A plakard that runs while the test goes on; wait() reaps it.
class RunningPlakard {
public:
    RunningPlakard(const std::vector<std::string>& arguments, const RunSettings& settings);
    ~RunningPlakard();
    RunningPlakard(const RunningPlakard&) = delete;
    RunningPlakard& operator=(const RunningPlakard&) = delete;

    void kill(int signal) const;
    // Collects both streams to their end and the exit status.
    RunResult wait();

private:
    int pid_ = -1;
    int out_ = -1;
    int err_ = -1;
};

// Runs the launcher, if any, then `executable` with `arguments` to its end.
RunResult runPlakard(const std::vector<std::string>& arguments, const RunSettings& settings);

// A word quoted for the shell, between apostrophes.
std::string shellQuoted(const std::string& word);

// Whether the tests (and so the binary) are built with AddressSanitizer,
// which reserves far more address space than any limit a test would set.
bool sanitizedBuild();

// A shell-like rendering of the command line for failure messages.
std::string commandLine(const std::vector<std::string>& arguments);

// The fields of a PNG's header that callers care about.
struct PNGHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    int colourType = -1;  // 2 = RGB, 6 = RGBA
};
std::optional<PNGHeader> pngHeader(const std::filesystem::path& path);

// Each test runs in a fresh, empty temporary folder.
class EndToEnd : public ::testing::Test {
protected:
    // The folder as the child sees it from getcwd: links resolved.
    std::filesystem::path folder() const { return std::filesystem::canonical(temp_.path()); }

    RunResult run(const std::vector<std::string>& arguments,
                  std::map<std::string, std::optional<std::string>> environment = {}) const {
        RunSettings here = settings();
        here.environment = std::move(environment);
        return runPlakard(arguments, here);
    }

    // As run, with the program, its launcher and environment from `settings`.
    RunResult runWith(RunSettings settings, const std::vector<std::string>& arguments) const {
        settings.workingDirectory = temp_.path();
        return runPlakard(arguments, settings);
    }

    // Settings for a run in the test's folder, to add limits to.
    RunSettings settings() const {
        RunSettings here;
        here.workingDirectory = temp_.path();
        return here;
    }

    // Writes `bytes` into the run folder under `name`.
    void provideBytes(const std::string& name, const std::string& bytes) const;

    // Copies a committed input into the run folder under `name`.
    void provide(const std::string& dataName, const std::string& name) const;

    // Checks status and both streams exactly, naming the command on mismatch.
    static void expectRun(const std::vector<std::string>& arguments, const RunResult& result, int status,
                          const std::string& out, const std::string& err);

    // A failure: status 1, nothing on standard output, one line on standard error.
    void expectFailure(const std::vector<std::string>& arguments, const std::string& message,
                       std::map<std::string, std::optional<std::string>> environment = {}) const {
        expectRun(arguments, run(arguments, std::move(environment)), 1, "", "plakard: " + message + "\n");
    }

private:
    TempDir temp_;
};

}  // namespace plakard::test
