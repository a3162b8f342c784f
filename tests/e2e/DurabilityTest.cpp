// Writing the output: the destination is replaced whole or left as it was,
// whatever stops the run, and a failed write leaves no temporary file.

#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <deque>
#include <filesystem>
#include <iostream>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "e2e/Harness.hpp"
#include "e2e/MadeImages.hpp"

namespace plakard::test {
namespace {

// The uid and gid of "nobody", for the one test that needs permissions to
// hold while the tests run as root.
constexpr unsigned nobody = 65534;

class DurabilityTest : public EndToEnd {
protected:
    void SetUp() override {
        // Noise does not compress, so the output is as large as the input
        // (270 kB), which gives its write some length.
        provideBytes("noise.png", noisePNG(300, 300, 1));
        provideBytes("out.png", oldBytes);
    }

    std::vector<std::string> resizeTo(const std::string& out, const std::string& in = "noise.png") const {
        return {"resize", "--in", in, "--out", out, "--size", "300x300"};
    }

    // The bytes a finished run writes.
    std::string freshBytes() {
        const std::vector<std::string> arguments = resizeTo("fresh.png");
        expectRun(arguments, run(arguments), 0, (folder() / "fresh.png").string() + "\n", "");
        std::string bytes = readBytes(folder() / "fresh.png");
        std::filesystem::remove(folder() / "fresh.png");
        return bytes;
    }

    // A failed run: the message, nothing on standard output, and the folder
    // exactly as before, the old output included.
    void expectRefusedWrite(const std::vector<std::string>& arguments, const RunResult& result,
                            const std::string& path, const std::string& reason) const {
        const std::vector<std::string> before = folderEntries(folder());
        expectRun(arguments, result, 1, "", "plakard: cannot write " + path + ": " + reason + "\n");
        EXPECT_EQ(folderEntries(folder()), before);
    }

    const std::string oldBytes = zeroPNG(3, 2, pngRGB);
};

// Tells when entries appear in a folder, so that a kill can be aimed at the
// write itself rather than at the decoding and encoding before it.
class FolderWatch {
public:
    explicit FolderWatch(const std::filesystem::path& folder) : fd_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        if (fd_ < 0 || inotify_add_watch(fd_, folder.c_str(), IN_CREATE | IN_MOVED_TO) < 0) {
            throw std::runtime_error("cannot watch " + folder.string());
        }
    }
    ~FolderWatch() { close(fd_); }
    FolderWatch(const FolderWatch&) = delete;
    FolderWatch& operator=(const FolderWatch&) = delete;

    // Forgets what happened so far.
    void clear() {
        while (nextName(0)) {
        }
    }

    // Waits for an entry whose name starts with `prefix`; false after a
    // minute without one.
    bool waitFor(const std::string& prefix) {
        for (;;) {
            const std::optional<std::string> name = nextName(60'000);
            if (!name) return false;
            if (name->starts_with(prefix)) return true;
        }
    }

private:
    std::optional<std::string> nextName(int timeoutMilliseconds) {
        if (pending_.empty()) {
            pollfd ready{fd_, POLLIN, 0};
            if (poll(&ready, 1, timeoutMilliseconds) <= 0) return std::nullopt;
            alignas(inotify_event) char buffer[4096];
            const ssize_t count = read(fd_, buffer, sizeof buffer);
            for (ssize_t at = 0; at < count;) {
                const auto* event = reinterpret_cast<const inotify_event*>(buffer + at);
                pending_.emplace_back(event->len > 0 ? event->name : "");
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
            if (pending_.empty()) return std::nullopt;
        }
        std::string name = std::move(pending_.front());
        pending_.pop_front();
        return name;
    }

    int fd_;
    std::deque<std::string> pending_;
};

TEST_F(DurabilityTest, AKilledRunLeavesTheOldFileOrTheWholeNewOne) {
    const std::string fresh = freshBytes();
    ASSERT_NE(fresh, oldBytes);
    const std::string temporaryPrefix = ".out.png.plakard-";
    FolderWatch watch(folder());

    // How long a write takes, from the temporary file's creation to its
    // rename over the destination: the median of a few.
    std::vector<std::chrono::steady_clock::duration> writes;
    for (int i = 0; i < 5; ++i) {
        watch.clear();
        RunningPlakard running(resizeTo("out.png"), settings());
        ASSERT_TRUE(watch.waitFor(temporaryPrefix));
        const auto created = std::chrono::steady_clock::now();
        ASSERT_TRUE(watch.waitFor("out.png"));
        writes.push_back(std::chrono::steady_clock::now() - created);
        ASSERT_EQ(running.wait().status, 0);
    }
    std::ranges::nth_element(writes, writes.begin() + 2);
    const auto writing = writes[2];

    // Kills at random moments from the temporary file's creation to a little
    // past the rename: most land inside the write, some after it.
    constexpr int runs = 100;
    std::mt19937 random(20240601);
    std::uniform_int_distribution<long long> delay(
        0, std::chrono::duration_cast<std::chrono::microseconds>(writing).count() * 5 / 4);
    int keptOld = 0;
    int replaced = 0;
    for (int i = 0; i < runs; ++i) {
        provideBytes("out.png", oldBytes);
        watch.clear();
        RunningPlakard running(resizeTo("out.png"), settings());
        ASSERT_TRUE(watch.waitFor(temporaryPrefix));
        std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
        running.kill(SIGKILL);
        const RunResult result = running.wait();
        SCOPED_TRACE("run " + std::to_string(i) + ", status " + std::to_string(result.status));
        ASSERT_TRUE(result.status == 0 || result.status == 128 + SIGKILL);

        const std::string now = readBytes(folder() / "out.png");
        ASSERT_TRUE(now == oldBytes || now == fresh) << "a damaged output of " << now.size() << " bytes";
        (now == fresh ? replaced : keptOld) += 1;
        // Only a killed run leaves its temporary file: nothing can remove it.
        for (const std::string& name : folderEntries(folder())) {
            if (!name.starts_with(temporaryPrefix)) continue;
            EXPECT_EQ(result.status, 128 + SIGKILL) << "a finished run left " << name;
            EXPECT_EQ(name.size(), temporaryPrefix.size() + 12) << name;
            std::filesystem::remove(folder() / name);
        }
        EXPECT_EQ(folderEntries(folder()), (std::vector<std::string>{"noise.png", "out.png"}));
    }
    std::cout << "of " << runs << " runs killed while writing (which takes about "
              << std::chrono::duration_cast<std::chrono::microseconds>(writing).count() << " us), " << keptOld
              << " left the old file (and their temporary file) and " << replaced << " the new one\n";
}

TEST_F(DurabilityTest, AFullDiskFailsTheWriteAndLeavesTheOldFile) {
    // A file-size limit stands in for a full disk. SIGXFSZ is left at its
    // default, which would kill a program that does not ignore it.
    RunSettings limited = settings();
    limited.fileSizeLimit = 64 * 1024;
    const std::vector<std::string> arguments = resizeTo("out.png");
    expectRefusedWrite(arguments, runPlakard(arguments, limited), (folder() / "out.png").string(),
                       "File too large");
    EXPECT_EQ(readBytes(folder() / "out.png"), oldBytes);
}

TEST_F(DurabilityTest, AFolderWithoutWritePermissionIsLeftAlone) {
    std::filesystem::create_directory(folder() / "locked");
    provideBytes("locked/out.png", oldBytes);
    RunSettings settings = this->settings();
    if (geteuid() == 0) {
        // Root writes anywhere: run as nobody, who needs to reach the folder.
        settings.userAndGroup = nobody;
        ASSERT_EQ(chmod(folder().c_str(), 0755), 0);
    }
    ASSERT_EQ(chmod((folder() / "locked").c_str(), 0555), 0);
    const std::vector<std::string> arguments = resizeTo("locked/out.png");
    const RunResult result = runPlakard(arguments, settings);
    chmod((folder() / "locked").c_str(), 0755);
    if (result.status == statusExecFailed || result.status == statusFolderFailed) {
        GTEST_SKIP() << "running as root, and nobody cannot reach " << PLAKARD_BINARY << " or " << folder();
    }
    expectRefusedWrite(arguments, result, (folder() / "locked/out.png").string(), "Permission denied");
    EXPECT_EQ(folderEntries(folder() / "locked"), std::vector<std::string>{"out.png"});
    EXPECT_EQ(readBytes(folder() / "locked/out.png"), oldBytes);
}

TEST_F(DurabilityTest, ADestinationThatIsAFolderIsLeftAlone) {
    std::filesystem::create_directory(folder() / "shots");
    provideBytes("shots/inside.png", oldBytes);
    const std::vector<std::string> arguments = resizeTo("shots");
    expectRefusedWrite(arguments, run(arguments), (folder() / "shots").string(), "Is a directory");
    EXPECT_EQ(folderEntries(folder() / "shots"), std::vector<std::string>{"inside.png"});
    EXPECT_EQ(readBytes(folder() / "shots/inside.png"), oldBytes);
}

// The new file takes the link's place; whatever the link pointed to is never
// written through.
TEST_F(DurabilityTest, ASymbolicLinkIsReplacedNotWrittenThrough) {
    const std::string fresh = freshBytes();
    std::filesystem::create_directory(folder() / "folder");
    provideBytes("target.png", oldBytes);
    for (const char* target : {"target.png", "missing.png", "folder"}) {
        SCOPED_TRACE(target);
        std::filesystem::remove(folder() / "out.png");
        std::filesystem::create_symlink(target, folder() / "out.png");
        const std::vector<std::string> arguments = resizeTo("out.png");
        expectRun(arguments, run(arguments), 0, (folder() / "out.png").string() + "\n", "");
        EXPECT_FALSE(std::filesystem::is_symlink(folder() / "out.png"));
        EXPECT_EQ(readBytes(folder() / "out.png"), fresh);
        EXPECT_EQ(readBytes(folder() / "target.png"), oldBytes);
        EXPECT_EQ(folderEntries(folder() / "folder"), std::vector<std::string>{});
        EXPECT_EQ(folderEntries(folder()),
                  (std::vector<std::string>{"folder", "noise.png", "out.png", "target.png"}));
    }
}

TEST_F(DurabilityTest, TwoRunsWritingOnePathLeaveOneWholeImage) {
    provideBytes("other.png", noisePNG(300, 300, 2));
    const std::string fresh = freshBytes();
    const std::vector<std::string> other = resizeTo("fresh.png", "other.png");
    ASSERT_EQ(run(other).status, 0);
    const std::string otherFresh = readBytes(folder() / "fresh.png");
    std::filesystem::remove(folder() / "fresh.png");

    const std::string printed = (folder() / "out.png").string() + "\n";
    for (int round = 0; round < 10; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        provideBytes("out.png", oldBytes);
        RunningPlakard first(resizeTo("out.png"), settings());
        RunningPlakard second(resizeTo("out.png", "other.png"), settings());
        expectRun(resizeTo("out.png"), first.wait(), 0, printed, "");
        expectRun(resizeTo("out.png", "other.png"), second.wait(), 0, printed, "");
        const std::string now = readBytes(folder() / "out.png");
        EXPECT_TRUE(now == fresh || now == otherFresh) << "a mixed output of " << now.size() << " bytes";
        EXPECT_EQ(folderEntries(folder()), (std::vector<std::string>{"noise.png", "other.png", "out.png"}));
    }
}

}  // namespace
}  // namespace plakard::test
