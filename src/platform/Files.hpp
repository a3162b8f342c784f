#pragma once
// File system services: whole-file reads with the system's own wording of a
// failure, folder listings, existence tests, folder creation and atomic writes.

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace plakard {

struct FileRead {
    std::vector<std::uint8_t> bytes;
    // Empty on success; else the system's description ("No such file or
    // directory"), or "file is 2 GiB or larger".
    std::string error;
    bool ok() const { return error.empty(); }
};

// Reads the whole file in one piece (no memory mapping). A file of 2^31 bytes
// or more cannot be handed to the decoders, so it is an error like any other.
FileRead readFile(const std::filesystem::path& path);

// Up to `count` bytes from the start of the file: enough to tell its kind by
// its content without reading all of it.
FileRead readFileStart(const std::filesystem::path& path, std::size_t count);

struct FolderEntry {
    enum class Kind { folder, file, other };
    std::string name;
    Kind kind;
};

struct FolderListing {
    std::vector<FolderEntry> entries;
    std::string error;  // empty on success; else the system's description
    bool ok() const { return error.empty(); }
};

// A folder's entries sorted by name, byte by byte. A symbolic link counts as
// the file it points to, but a link to a folder as `other`, so a walk that
// descends only into `folder` entries cannot loop.
FolderListing listFolder(const std::filesystem::path& path);

// True when the path names a folder or a symbolic link to one.
bool isFolder(const std::filesystem::path& path);

// True when any file-system entry (file, folder, ...) exists at the path.
bool fileExists(const std::filesystem::path& path);

// Creates the folder and all missing parents; failures are ignored (the write
// that follows reports any real problem).
void createDirectories(const std::filesystem::path& path);

// Writes the bytes to a uniquely named temporary file created exclusively
// beside the destination, flushes it to disk and renames it over the
// destination, so the destination is either replaced whole or left
// byte-identical. Returns an empty string on success, else the system's
// description of the failure; the temporary file is removed on any failure.
std::string writeFileAtomically(const std::filesystem::path& destination,
                                std::span<const std::uint8_t> bytes);

}  // namespace plakard
