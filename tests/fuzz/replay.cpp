#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/temporary_directory.h"

/// Goes through stored inputs of a fuzz target, where the fuzzer itself is not linked.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

/// The files of a directory in the order of their names; none if there is no directory.
std::vector<std::string> files_in(const std::string& directory) {
    std::vector<std::string> paths;
    if (std::filesystem::exists(directory)) {
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            paths.push_back(entry.path().string());
        }
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

}  // namespace

/// @return 0 if there were inputs; one that breaks the target ends the process
int main(int argc, char** argv) {
    std::size_t replayed = 0;
    for (int i = 1; i < argc; ++i) {
        for (const std::string& path : files_in(argv[i])) {
            // Flushed, so that the last one named is the one that broke it.
            std::printf("%s\n", path.c_str());
            std::fflush(stdout);
            const std::string input = ovik::test::read_file(path);
            const std::vector<std::uint8_t> bytes(input.begin(), input.end());
            LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
            ++replayed;
        }
    }
    std::printf("%zu inputs\n", replayed);
    return replayed > 0 ? 0 : 1;
}
