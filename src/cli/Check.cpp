// `plakard check`: holds every PNG and JPEG page of the files and folders
// given to a store's rules. Folders are walked in name order; in them, files
// are taken by their content and anything else is passed over. Each problem is
// one line, "PATH: what is wrong; what to do", a summary line ends the run,
// and a path that cannot be read is reported as a failure while the others
// are still checked.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "cli/PageRules.hpp"
#include "cli/PlakardCLI.hpp"
#include "cli/StandardOutput.hpp"
#include "cli/StoreRules.hpp"
#include "platform/Files.hpp"
#include "platform/Paths.hpp"
#include "platform/PlakardError.hpp"
#include "platform/Unicode.hpp"
#include "raster/Decode.hpp"
#include "raster/ImageHeader.hpp"

namespace plakard {

namespace {

namespace fs = std::filesystem;

// Enough of a file to tell a PNG's or a JPEG's signature.
constexpr std::size_t signatureBytes = 8;

// One folder, one localisation: its pages are counted against the store's
// limits once every path has been checked.
struct Folder {
    std::string shown;
    SlotCounts slots;
    int pages = 0;
};

class ListingCheck {
public:
    explicit ListingCheck(Store store) : store_(store) {}

    void checkPath(const std::string& text) {
        const fs::path full = absolutePath(text);
        if (!isFolder(full)) {
            const std::string folder = fs::path(text).parent_path().string();
            checkFile(text, full, folder.empty() ? "." : folder, true);
            return;
        }
        const std::int64_t foundBefore = found_;
        const std::int64_t failedBefore = failed_;
        walk(text, full);
        if (found_ == foundBefore && failed_ == failedBefore) fail("'" + text + "' holds no PNG or JPEG image");
    }

    // The folders' problems, then the summary line; true when every page passed
    // and every path was read.
    bool finish() {
        for (const Folder& folder : folders_) {
            for (const std::string& problem : folderProblems(folder.slots, folder.pages, store_)) {
                report(folder.shown, problem);
            }
        }
        std::string summary = "checked " + counted(checked_, "image") + " in " +
                              counted(static_cast<std::int64_t>(folders_.size()), "folder") + ": ";
        if (problems_ == 0 && failed_ == 0) {
            summary += "all acceptable for " + std::string(storeTitle(store_));
            if (store_ == Store::appStore) summary += " (sizes as of " + std::string(appStoreSizesDate) + ")";
        } else if (problems_ == 0) {
            summary += counted(failed_, "path") + " not checked";
        } else {
            summary += counted(problems_, "problem");
            if (failed_ > 0) summary += ", " + counted(failed_, "path") + " not checked";
        }
        printLine(summary);
        return problems_ == 0 && failed_ == 0;
    }

private:
    void walk(const fs::path& shown, const fs::path& full) {
        const FolderListing listing = listFolder(full);
        if (!listing.ok()) return fail("cannot read " + full.string() + ": " + listing.error);
        for (const FolderEntry& entry : listing.entries) {
            if (entry.kind == FolderEntry::Kind::folder) walk(shown / entry.name, full / entry.name);
            if (entry.kind == FolderEntry::Kind::file) {
                checkFile((shown / entry.name).string(), full / entry.name, shown.string(), false);
            }
        }
    }

    void checkFile(const std::string& shown, const fs::path& full, const std::string& folder, bool named) {
        const FileRead start = readFileStart(full, signatureBytes);
        if (!start.ok()) return fail("cannot read " + full.string() + ": " + start.error);
        const bool image = imageFormat(start.bytes) != ImageFormat::unknown;
        if (!image && !named) return;
        ++found_;
        // A page reached twice (a folder and a file in it) is checked once.
        if (!seen_.insert(standardizedPath(full.string())).second) return;
        ++checked_;
        Folder& tally = folderOf(folder);
        if (!image) return report(shown, "is neither PNG nor JPEG; export it as one of them");

        const FileRead file = readFile(full);
        if (!file.ok()) return fail("cannot read " + full.string() + ": " + file.error);
        ++tally.pages;
        // Decoded in full, so a good header on a damaged body fails here.
        const DecodeResult decodedPage = decoded(file.bytes);
        if (!decodedPage.image) return report(shown, "cannot be decoded (" + decodedPage.failure + "); export it again");
        const PageFacts page{
            .header = imageHeader(file.bytes),
            .width = decodedPage.image->width,
            .height = decodedPage.image->height,
            .extension = asciiLowerCased(fs::path(shown).extension().string()),
            .fileBytes = static_cast<std::int64_t>(file.bytes.size()),
        };
        const std::vector<std::string_view> slots = appStoreSlots(page.width, page.height);
        if (!slots.empty()) countSlots(tally, slots);
        for (const std::string& problem : pageProblems(page, store_)) report(shown, problem);
    }

    Folder& folderOf(const std::string& shown) {
        const fs::path key = standardizedPath(shown);
        for (std::size_t i = 0; i < folderKeys_.size(); ++i) {
            if (folderKeys_[i] == key) return folders_[i];
        }
        folderKeys_.push_back(key);
        return folders_.emplace_back(Folder{.shown = shown, .slots = {}, .pages = 0});
    }

    static void countSlots(Folder& folder, const std::vector<std::string_view>& slots) {
        for (auto& [fits, count] : folder.slots) {
            if (fits == slots) {
                ++count;
                return;
            }
        }
        folder.slots.emplace_back(slots, 1);
    }

    void report(const std::string& path, const std::string& problem) {
        ++problems_;
        printLine(path + ": " + problem);
    }

    void fail(const std::string& message) {
        ++failed_;
        PlakardCLI::reportFailure(message);
    }

    Store store_;
    std::set<fs::path> seen_;
    std::vector<fs::path> folderKeys_;
    std::vector<Folder> folders_;
    std::int64_t found_ = 0;
    std::int64_t checked_ = 0;
    std::int64_t problems_ = 0;
    std::int64_t failed_ = 0;
};

}  // namespace

bool PlakardCLI::runCheck(const ParsedOptions& parsed) {
    const Store store = parseStore(parsed.options);
    if (parsed.positionals.empty()) throw PlakardError("check needs at least one file or folder");
    ListingCheck check(store);
    for (const std::string& text : parsed.positionals) check.checkPath(text);
    return check.finish();
}

}  // namespace plakard
