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

void replay(const std::filesystem::path& file) {
    std::ifstream in(file, std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A copy of exactly the file's length, so reads past its end are caught.
    std::vector<std::uint8_t> input(bytes.begin(), bytes.end());
    std::fprintf(stderr, "replaying %s (%zu bytes)\n", file.c_str(), input.size());
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path path = argv[i];
        if (std::filesystem::is_directory(path)) {
            std::vector<std::filesystem::path> files;
            for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
                if (entry.is_regular_file()) files.push_back(entry.path());
            }
            std::sort(files.begin(), files.end());
            for (const auto& file : files) replay(file);
            count += files.size();
        } else {
            replay(path);
            ++count;
        }
    }
    std::fprintf(stderr, "replayed %zu inputs\n", count);
    return 0;
}
