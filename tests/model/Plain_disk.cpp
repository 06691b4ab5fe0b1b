// SPDX-License-Identifier: MIT
#include "Plain_disk.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace cpm::model {

namespace {

/// What each "/" ends, the empty texts included, and what follows the last one.
std::vector<std::string> Components(std::string const& path) {
    std::vector<std::string> components;
    std::istringstream in(path);
    for (std::string component; std::getline(in, component, '/');) {
        components.push_back(component);
    }
    return components;
}

bool Is_there(std::string const& path) {
    return ::access(path.c_str(), F_OK) == 0;
}

/// True when the path has anything at all, be it a link that leads nowhere.
bool Is_taken(std::string const& path) {
    struct stat ignored {};
    return ::lstat(path.c_str(), &ignored) == 0;
}

bool Is_directory(std::string const& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

/// Throws the sentence for the last system call's error after `text`. The errors are those that
/// the test cases can bring about.
[[noreturn]] void Fail(std::string const& text) {
    static std::map<int, std::string> const sentences{
        {ENOENT, "A component of the path file_name does not exist."},
        {EEXIST, "pathname already exists."},
        {ENOTDIR, "A component of the path is not a directory."},
        {ENAMETOOLONG, "pathname too long."},
        {ELOOP, "Too  many symbolic links encountered while traversing the path."}};
    auto const sentence = sentences.find(errno);
    throw std::logic_error(text + (sentence != sentences.end()
                                       ? sentence->second
                                       : " Other error occured, errno=" + std::to_string(errno)));
}

} // namespace

std::string Total_path(std::string const& path, std::string const& cwd) {
    std::vector<std::string> total;
    if (!path.empty() && path.front() != '/') {
        total = Components(cwd);
    }
    auto const components = Components(path);
    for (std::size_t i = 0; i < components.size(); ++i) {
        // Deliberate: what follows the last "/" is taken as it stands, even "." and "..".
        bool const as_it_stands = i + 1 == components.size() && !path.ends_with('/');
        if (!as_it_stands && components[i] == ".." && !total.empty()) {
            total.pop_back();
        } else if (as_it_stands || components[i] != ".") {
            total.push_back(components[i]);
        }
    }
    std::string text;
    for (auto const& component : total) {
        text += component + "/";
    }
    return text.size() > 1 ? text.substr(0, text.size() - 1) : text;
}

void Refuse_non_empty(std::string const& path) {
    if (!Is_directory(path)) {
        return;
    }
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(path)) {
        names.insert(entry.path().filename());
    }
    for (auto const& name : names) {
        if (!Is_there(path + "/" + name)) { // a link that leads nowhere
            Fail("ERROR: problem with " + path + "/" + name + " in List_dir():\n");
        }
    }
    if (!names.empty()) {
        throw std::logic_error("ERROR: the output directory already exists and it is non-empty.\n");
    }
}

void Prepare_dir(std::string const& path) {
    if (Is_directory(path)) {
        return;
    }
    if (Is_there(path)) {
        unsigned n = 1;
        while (Is_taken(path + std::to_string(n))) {
            ++n;
        }
        std::string const aside = path + std::to_string(n);
        if (std::rename(path.c_str(), aside.c_str()) != 0) {
            Fail("ERROR: Rename_the_path() called with " + path + " and " + aside + " and \n");
        }
    }
    std::string prefix;
    for (auto const& component : Components(path)) {
        prefix += component;
        if (!prefix.empty() && !Is_there(prefix) && ::mkdir(prefix.c_str(), 0755) != 0) {
            Fail("ERROR: Make_dir() called with " + prefix + " and \n");
        }
        prefix += "/";
    }
    // By now the path may lead to a directory that was out of reach before.
    Refuse_non_empty(path);
}

bool Write_new(std::string const& path, std::string const& text) {
    if (Is_taken(path)) {
        return false;
    }
    std::ofstream file(path, std::ios::binary);
    file << text << std::flush;
    return file.good();
}

} // namespace cpm::model
