#pragma once
// What every test file shares: committed inputs, throwaway folders, and runs of
// the command line, in this process (streams captured) or as a real process.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "cli/PlakardCLI.hpp"

namespace plakard::test {
namespace fs = std::filesystem;

inline fs::path dataPath(const std::string& name) { return fs::path(PLAKARD_TEST_DATA) / name; }

inline std::string readBytes(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

inline void writeBytes(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
}

// Every entry under a folder with its bytes: what "left as it was" compares.
inline std::map<std::string, std::string> snapshot(const fs::path& folder) {
    std::map<std::string, std::string> entries;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        entries[entry.path().lexically_relative(folder).string()] = entry.is_regular_file() ? readBytes(entry) : "/";
    return entries;
}

struct TempDir {
    fs::path path;
    TempDir() {
        std::string name = (fs::temp_directory_path() / "plakard-test-XXXXXX").string();
        path = fs::canonical(::mkdtemp(name.data()));
    }
    ~TempDir() { fs::remove_all(path); }
    fs::path operator/(const std::string& name) const { return path / name; }
};

struct Outcome {
    int status = -1;  // the exit status, or 128 + the signal that ended it
    std::string out, err;
};

// PlakardCLI::main with the working folder and descriptors 1 and 2 swapped
// for the run, as the shell would hand them to the process.
inline Outcome runInProcess(const std::vector<std::string>& words, const fs::path& folder) {
    const TempDir streams;
    const fs::path before = fs::current_path();
    fs::current_path(folder);
    std::fflush(stdout);
    const int saved[2] = {::dup(1), ::dup(2)};
    for (int fd : {1, 2}) {
        const int file = ::open((streams / std::to_string(fd)).c_str(), O_WRONLY | O_CREAT, 0600);
        ::dup2(file, fd);
        ::close(file);
    }
    std::vector<std::string> arguments{"plakard"};
    arguments.insert(arguments.end(), words.begin(), words.end());
    Outcome outcome;
    outcome.status = PlakardCLI::main(arguments);
    std::fflush(stdout);
    for (int fd : {1, 2}) ::dup2(saved[fd - 1], fd), ::close(saved[fd - 1]);
    fs::current_path(before);
    outcome.out = readBytes(streams / "1");
    outcome.err = readBytes(streams / "2");
    return outcome;
}

struct Launch {
    fs::path folder;
    std::map<std::string, std::optional<std::string>> environment{{"PLAKARD_FONT", std::nullopt}};
    fs::path program = PLAKARD_BINARY;
    std::vector<std::string> before{};  // words that start the program, such as a tracer
    rlim_t fileSize = RLIM_INFINITY, addressSpace = RLIM_INFINITY;
};

// Starts the program with its streams going to files named by the process id.
inline pid_t spawn(const std::vector<std::string>& words, const Launch& launch) {
    std::vector<std::string> all = launch.before;
    all.push_back(launch.program.string());
    all.insert(all.end(), words.begin(), words.end());
    const pid_t pid = ::fork();
    if (pid != 0) return pid;
    const std::string streams = "/tmp/plakard-run-" + std::to_string(::getpid());
    for (int fd : {1, 2}) {
        const int file = ::open((streams + "." + std::to_string(fd)).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        ::dup2(file, fd);
    }
    for (const auto& [name, value] : launch.environment)
        value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    const rlimit fileSize{launch.fileSize, launch.fileSize}, space{launch.addressSpace, launch.addressSpace};
    if (::chdir(launch.folder.c_str()) != 0 || ::setrlimit(RLIMIT_FSIZE, &fileSize) != 0 ||
        ::setrlimit(RLIMIT_AS, &space) != 0)
        ::_exit(125);
    std::vector<char*> argv;
    for (std::string& word : all) argv.push_back(word.data());
    argv.push_back(nullptr);
    ::execv(argv[0], argv.data());
    ::_exit(127);
}

inline Outcome reap(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    Outcome outcome;
    outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    const std::string streams = "/tmp/plakard-run-" + std::to_string(pid);
    outcome.out = readBytes(streams + ".1");
    outcome.err = readBytes(streams + ".2");
    fs::remove(streams + ".1");
    fs::remove(streams + ".2");
    return outcome;
}

inline Outcome runProcess(const std::vector<std::string>& words, const Launch& launch) {
    return reap(spawn(words, launch));
}

}  // namespace plakard::test
