#include "e2e/Harness.hpp"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <stdexcept>

extern char** environ;

namespace plakard::test {

namespace {

struct Pipe {
    int read = -1;
    int write = -1;
    Pipe() {
        int ends[2];
        if (pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("pipe failed");
        read = ends[0];
        write = ends[1];
    }
};

std::vector<std::string> childEnvironment(const std::map<std::string, std::optional<std::string>>& changes) {
    std::map<std::string, std::optional<std::string>> effective{{"PLAKARD_FONT", std::nullopt}};
    for (const auto& [name, value] : changes) effective[name] = value;
    std::vector<std::string> entries;
    for (char** entry = environ; *entry; ++entry) {
        const std::string text(*entry);
        if (!effective.contains(text.substr(0, text.find('=')))) entries.push_back(text);
    }
    for (const auto& [name, value] : effective) {
        if (value) entries.push_back(name + "=" + *value);
    }
    return entries;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

// Drains both pipes together so a child filling one of them never blocks.
void collect(int outFd, int errFd, std::string& out, std::string& err) {
    pollfd fds[2] = {{outFd, POLLIN, 0}, {errFd, POLLIN, 0}};
    std::string* sinks[2] = {&out, &err};
    int remaining = 2;
    char buffer[65536];
    while (remaining > 0) {
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR) continue;
            throw std::runtime_error("poll failed");
        }
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0) continue;
            const ssize_t count = ::read(fds[i].fd, buffer, sizeof buffer);
            if (count > 0) {
                sinks[i]->append(buffer, static_cast<std::size_t>(count));
            } else if (count == 0 || errno != EINTR) {
                close(fds[i].fd);
                fds[i].fd = -1;
                --remaining;
            }
        }
    }
}

bool setLimit(int resource, std::optional<std::uint64_t> bytes) {
    if (!bytes) return true;
    const rlimit limit{*bytes, *bytes};
    return setrlimit(resource, &limit) == 0;
}

// In the child, between fork and exec: only async-signal-safe calls.
bool applyLimits(const RunSettings& settings) {
    if (settings.fileSizeLimit && signal(SIGXFSZ, SIG_DFL) == SIG_ERR) return false;
    if (!setLimit(RLIMIT_FSIZE, settings.fileSizeLimit) || !setLimit(RLIMIT_AS, settings.addressSpaceLimit)) {
        return false;
    }
    if (settings.userAndGroup) {
        const unsigned id = *settings.userAndGroup;
        if (setgroups(0, nullptr) != 0 || setgid(id) != 0 || setuid(id) != 0) return false;
    }
    return true;
}

}  // namespace

RunningPlakard::RunningPlakard(const std::vector<std::string>& arguments, const RunSettings& settings) {
    // Everything the child needs is built before fork: after it, only
    // async-signal-safe calls.
    std::vector<std::string> argvTexts = settings.launcher;
    argvTexts.push_back(settings.executable.string());
    argvTexts.insert(argvTexts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> envTexts = childEnvironment(settings.environment);
    std::vector<char*> argv = pointers(argvTexts);
    std::vector<char*> envp = pointers(envTexts);
    const std::string directory = settings.workingDirectory.string();

    Pipe out;
    Pipe err;
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child == 0) {
        const int nothing = open("/dev/null", O_RDONLY);
        if (nothing < 0 || dup2(nothing, 0) < 0 || dup2(out.write, 1) < 0 || dup2(err.write, 2) < 0) {
            _exit(statusFolderFailed);
        }
        if (!applyLimits(settings)) _exit(statusLimitsFailed);
        if (chdir(directory.c_str()) != 0) _exit(statusFolderFailed);
        execve(argv[0], argv.data(), envp.data());
        _exit(statusExecFailed);
    }
    close(out.write);
    close(err.write);
    pid_ = child;
    out_ = out.read;
    err_ = err.read;
}

RunningPlakard::~RunningPlakard() {
    // A test that failed before waiting must not leave a process behind.
    if (pid_ <= 0) return;
    kill(SIGKILL);
    try {
        wait();
    } catch (const std::exception&) {
    }
}

void RunningPlakard::kill(int signal) const {
    if (pid_ > 0) ::kill(pid_, signal);
}

RunResult RunningPlakard::wait() {
    RunResult result;
    collect(out_, err_, result.out, result.err);
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0) {
        if (errno != EINTR) throw std::runtime_error("waitpid failed");
    }
    pid_ = -1;
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return result;
}

std::string shellQuoted(const std::string& word) {
    std::string quoted = "'";
    for (char c : word) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

RunResult runPlakard(const std::vector<std::string>& arguments, const RunSettings& settings) {
    return RunningPlakard(arguments, settings).wait();
}

bool sanitizedBuild() {
#if defined(__SANITIZE_ADDRESS__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
    return true;
#else
    return false;
#endif
#else
    return false;
#endif
}

std::string commandLine(const std::vector<std::string>& arguments) {
    std::string line = "plakard";
    for (const std::string& argument : arguments) {
        line += ' ';
        line += shellQuoted(argument);
    }
    return line;
}

std::optional<PNGHeader> pngHeader(const std::filesystem::path& path) {
    const std::string bytes = readBytes(path);
    if (bytes.size() < 33 || bytes.compare(0, 8, "\x89PNG\r\n\x1a\n") != 0 || bytes.compare(12, 4, "IHDR") != 0) {
        return std::nullopt;
    }
    const auto byte = [&](std::size_t i) { return static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[i])); };
    const auto big32 = [&](std::size_t i) { return byte(i) << 24 | byte(i + 1) << 16 | byte(i + 2) << 8 | byte(i + 3); };
    return PNGHeader{big32(16), big32(20), static_cast<int>(byte(25))};
}

void EndToEnd::provide(const std::string& dataName, const std::string& name) const {
    const std::filesystem::path destination = temp_.path() / name;
    std::filesystem::create_directories(destination.parent_path());
    std::filesystem::copy_file(dataPath(dataName), destination, std::filesystem::copy_options::overwrite_existing);
}

void EndToEnd::provideBytes(const std::string& name, const std::string& bytes) const {
    const std::filesystem::path destination = temp_.path() / name;
    std::filesystem::create_directories(destination.parent_path());
    writeText(destination, bytes);
}

void EndToEnd::expectRun(const std::vector<std::string>& arguments, const RunResult& result, int status,
                         const std::string& out, const std::string& err) {
    SCOPED_TRACE(commandLine(arguments));
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.out, out);
    EXPECT_EQ(result.err, err);
}

}  // namespace plakard::test
