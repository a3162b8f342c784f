#include "platform/Files.hpp"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

#include "platform/Require.hpp"

namespace plakard {

namespace {

// Files handed to the decoders are counted in a signed 32-bit int.
constexpr std::size_t largestReadableFile = 0x7fffffff;
constexpr const char* fileTooLarge = "file is 2 GiB or larger";

std::string systemDescription(int error) { return std::generic_category().message(error); }

// Owns one file descriptor; close() reports the error that ~Descriptor ignores.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }
    // 0 or the errno of a failed close. The descriptor is gone either way
    // (Linux releases it even when close reports EINTR), so it is never retried.
    int close() {
        int result = ::close(fd_);
        fd_ = -1;
        return result == 0 ? 0 : errno;
    }

private:
    int fd_;
};

int openRetryingInterrupts(const char* path, int flags, mode_t mode = 0) {
    int fd;
    do fd = ::open(path, flags, mode);
    while (fd < 0 && errno == EINTR);
    return fd;
}

// 0 when every byte went out, else the errno of the failing write.
int writeAll(int fd, const std::uint8_t* data, std::size_t count) {
    while (count > 0) {
        ssize_t written = ::write(fd, data, count);
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        // A regular file that takes nothing has no room left.
        if (written == 0) return ENOSPC;
        data += written;
        count -= static_cast<std::size_t>(written);
    }
    return 0;
}

// Twelve characters from the kernel's random source, so the temporary name
// cannot be predicted (and pre-created or linked) by another user.
std::string randomSuffix() {
    static constexpr char alphabet[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_";
    std::uint8_t random[12];
    std::size_t filled = 0;
    while (filled < sizeof random) {
        ssize_t got = ::getrandom(random + filled, sizeof random - filled, 0);
        if (got < 0) {
            require(errno == EINTR);
            continue;
        }
        filled += static_cast<std::size_t>(got);
    }
    std::string suffix;
    for (std::uint8_t byte : random) suffix += alphabet[byte & 63];
    return suffix;
}

// ".<name>.plakard-<random>" beside the destination, shortened so that it
// stays within the 255-byte limit of a file name even for a long <name>.
std::filesystem::path temporaryPath(const std::filesystem::path& destination) {
    static constexpr std::size_t nameLimit = 255;
    const std::string tag = ".plakard-" + randomSuffix();
    std::string name = destination.filename().string();
    name.resize(std::min(name.size(), nameLimit - 1 - tag.size()));
    return destination.parent_path() / ("." + name + tag);
}

}  // namespace

FileRead readFile(const std::filesystem::path& path) {
    FileRead result;
    Descriptor file(openRetryingInterrupts(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) {
        result.error = systemDescription(errno);
        return result;
    }
    struct stat status;
    if (::fstat(file.get(), &status) != 0) {
        result.error = systemDescription(errno);
        return result;
    }
    // Refused before a byte is read: a sparse file of any size costs nothing.
    if (static_cast<std::uint64_t>(status.st_size) > largestReadableFile) {
        result.error = fileTooLarge;
        return result;
    }
    // The size is a hint: a file that grows (or a pipe, which reports 0) is
    // read to its end all the same.
    std::vector<std::uint8_t>& bytes = result.bytes;
    bytes.resize(static_cast<std::size_t>(status.st_size) + 1);
    std::size_t filled = 0;
    for (;;) {
        if (filled == bytes.size()) bytes.resize(std::min(bytes.size() * 2, largestReadableFile + 1));
        ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (got < 0) {
            if (errno == EINTR) continue;
            result.error = systemDescription(errno);
            bytes.clear();
            return result;
        }
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        // A file that grew past its size, or a device that never ends.
        if (filled > largestReadableFile) {
            result.error = fileTooLarge;
            bytes.clear();
            return result;
        }
    }
    bytes.resize(filled);
    return result;
}

FileRead readFileStart(const std::filesystem::path& path, std::size_t count) {
    FileRead result;
    Descriptor file(openRetryingInterrupts(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.get() < 0) {
        result.error = systemDescription(errno);
        return result;
    }
    result.bytes.resize(count);
    std::size_t filled = 0;
    while (filled < count) {
        ssize_t got = ::read(file.get(), result.bytes.data() + filled, count - filled);
        if (got < 0) {
            if (errno == EINTR) continue;
            result.error = systemDescription(errno);
            result.bytes.clear();
            return result;
        }
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    result.bytes.resize(filled);
    return result;
}

FolderListing listFolder(const std::filesystem::path& path) {
    namespace fs = std::filesystem;
    FolderListing listing;
    std::error_code error;
    fs::directory_iterator entries(path, error);
    for (; !error && entries != fs::directory_iterator(); entries.increment(error)) {
        const fs::directory_entry& entry = *entries;
        std::error_code ignored;
        FolderEntry::Kind kind = FolderEntry::Kind::other;
        if (entry.symlink_status(ignored).type() == fs::file_type::directory) {
            kind = FolderEntry::Kind::folder;
        } else if (entry.is_regular_file(ignored)) {
            kind = FolderEntry::Kind::file;
        }
        listing.entries.push_back({entry.path().filename().string(), kind});
    }
    if (error) {
        listing.entries.clear();
        listing.error = systemDescription(error.value());
        return listing;
    }
    std::ranges::sort(listing.entries, {}, &FolderEntry::name);
    return listing;
}

bool isFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

bool fileExists(const std::filesystem::path& path) {
    // lstat: a symbolic link is an entry even when its target is missing.
    struct stat status;
    return ::lstat(path.c_str(), &status) == 0;
}

void createDirectories(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::create_directories(path, ignored);
}

std::string writeFileAtomically(const std::filesystem::path& destination, std::span<const std::uint8_t> bytes) {
    std::filesystem::path temporary;
    int fd = -1;
    // O_EXCL with a fresh random name: a clash with an existing entry (even a
    // planted symbolic link) fails instead of writing through it.
    for (int attempt = 0; attempt < 16; ++attempt) {
        temporary = temporaryPath(destination);
        // Mode 0666 lets the umask decide the permissions, as for any new file.
        fd = openRetryingInterrupts(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST) break;
    }
    if (fd < 0) return systemDescription(errno);

    Descriptor file(fd);
    int error = writeAll(file.get(), bytes.data(), bytes.size());
    if (error == 0 && ::fsync(file.get()) != 0) error = errno;
    if (int closeError = file.close(); error == 0) error = closeError;
    if (error == 0 && ::rename(temporary.c_str(), destination.c_str()) != 0) error = errno;
    if (error != 0) {
        ::unlink(temporary.c_str());
        return systemDescription(error);
    }

    // Make the rename itself durable. The file is in place by now, so a
    // folder that cannot be opened or synced (no read permission, a file
    // system without directory fsync) does not turn the write into a failure.
    std::filesystem::path folder = destination.parent_path();
    Descriptor directory(openRetryingInterrupts(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() >= 0) ::fsync(directory.get());
    return {};
}

}  // namespace plakard
