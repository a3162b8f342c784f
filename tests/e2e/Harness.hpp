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
};

// Runs the launcher, if any, then `executable` with `arguments`.
RunResult runPlakard(const std::vector<std::string>& arguments, const RunSettings& settings);

// A word quoted for the shell, between apostrophes.
std::string shellQuoted(const std::string& word);

// A shell-like rendering of the command line for failure messages.
std::string commandLine(const std::vector<std::string>& arguments);

std::string readBytes(const std::filesystem::path& path);

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
        return runWith({.environment = std::move(environment)}, arguments);
    }

    // As run, with the program, its launcher and environment from `settings`.
    RunResult runWith(RunSettings settings, const std::vector<std::string>& arguments) const {
        settings.workingDirectory = temp_.path();
        return runPlakard(arguments, settings);
    }

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
