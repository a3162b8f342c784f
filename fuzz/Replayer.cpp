// Without libFuzzer (any compiler but clang) each fuzz target is built with
// this main instead: it runs every file of the folders and files named on the
// command line through the target once, so corpora and crash files replay
// under gdb or a plain sanitizer build.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

bool replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        std::fprintf(stderr, "cannot read %s\n", file.c_str());
        return false;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A copy of exactly the file's length, so reads past its end are caught.
    std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    std::fprintf(stderr, "replaying %s (%zu bytes)\n", file.c_str(), input.size());
    LLVMFuzzerTestOneInput(input.data(), input.size());
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path = argv[i];
        if (!std::filesystem::is_directory(path)) {
            files.push_back(path);
            continue;
        }
        std::vector<std::filesystem::path> inside;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) inside.push_back(entry.path());
        }
        std::sort(inside.begin(), inside.end());
        files.insert(files.end(), inside.begin(), inside.end());
    }
    std::size_t replayed = 0;
    for (const auto& file : files) replayed += replay(file) ? 1 : 0;
    std::fprintf(stderr, "replayed %zu of %zu inputs\n", replayed, files.size());
    return replayed == files.size() ? 0 : 1;
}
