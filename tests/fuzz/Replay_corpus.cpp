// SPDX-License-Identifier: MIT
// Takes the fuzzer's place where there is none: gives every file of the named directories, and
// every named file, to the target once, in the order of their names.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int argc, char** argv) {
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i) {
        // Absolute: a target may go to a directory of its own.
        auto const path = std::filesystem::absolute(argv[i]);
        if (!std::filesystem::is_directory(path)) {
            files.push_back(path);
            continue;
        }
        for (auto const& entry : std::filesystem::directory_iterator(path)) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    for (auto const& path : files) {
        std::ifstream file(path, std::ios::binary);
        std::vector<char> const bytes{std::istreambuf_iterator<char>(file), {}};
        if (!file) {
            std::cerr << "cannot read " << path << "\n";
            return 1;
        }
        // Flushed, so that a crash follows the name of its file.
        std::cout << path.filename().string() << std::endl;
        LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
    }
    std::cout << files.size() << " files replayed\n";
    return files.empty() ? 1 : 0;
}
