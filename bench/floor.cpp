// SPDX-License-Identifier: MIT
// The floor under the time of a run: a plain program that reads the same input and writes as many
// bytes into as many files, and does nothing else.
//
//   floor INPUT DIRECTORY < LIST
//
// A line of LIST is a size in bytes and the path of a file in DIRECTORY, which must be absent.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr std::size_t block_size = std::size_t{1} << 16;

void Read(char const* path, std::vector<char>& block) {
    std::ifstream input(path, std::ios::binary);
    if (!input) {
        throw std::runtime_error(std::string("cannot read ") + path);
    }
    while (input.read(block.data(), static_cast<std::streamsize>(block.size()))) {
    }
}

void Write(std::filesystem::path const& path, std::size_t bytes, std::vector<char> const& block) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream output(path, std::ios::binary);
    while (bytes > 0 && output) {
        std::size_t const piece = bytes < block.size() ? bytes : block.size();
        output.write(block.data(), static_cast<std::streamsize>(piece));
        bytes -= piece;
    }
    if (!output.flush()) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: floor INPUT DIRECTORY < LIST\n";
        return 2;
    }
    try {
        std::vector<char> block(block_size, 'x');
        Read(argv[1], block);
        std::size_t bytes = 0;
        std::string path;
        while (std::cin >> bytes && std::cin.get() && std::getline(std::cin, path)) {
            Write(std::filesystem::path(argv[2]) / path, bytes, block);
        }
    } catch (std::exception const& error) {
        std::cerr << "floor: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
