// SPDX-License-Identifier: MIT
// Temp_dir: a directory of a test's own, in which the test runs. And whole files as strings.
#ifndef PLEXOR_TEMP_DIR_H
#define PLEXOR_TEMP_DIR_H

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <system_error>

namespace cpm {

/// Makes an empty directory and enters it; at the end goes back and removes it with all it holds.
class Temp_dir {
public:
    Temp_dir() : before_(std::filesystem::current_path()) {
        std::string pattern =
            (std::filesystem::canonical(std::filesystem::temp_directory_path()) / "plexor_XXXXXX")
                .string();
        if (::mkdtemp(pattern.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), "mkdtemp");
        }
        path_ = pattern;
        std::filesystem::current_path(path_);
    }
    Temp_dir(Temp_dir const&) = delete;
    Temp_dir& operator=(Temp_dir const&) = delete;
    ~Temp_dir() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
        std::filesystem::remove_all(path_, ignored);
    }

    /// Absolute, without a "/" at the end, free of symbolic links.
    std::string const& Path() const { return path_; }

private:
    std::filesystem::path before_;
    std::string path_;
};

inline void Write_file(std::string const& path, std::string const& text) {
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
}

inline std::string Read_file(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw std::runtime_error("cannot read " + path);
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace cpm

#endif
