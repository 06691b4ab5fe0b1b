// SPDX-License-Identifier: MIT
#include "Plain_tree.h"

#include <cerrno>
#include <climits>
#include <stdexcept>
#include <utility>
#include <vector>

namespace cpm::model {

namespace {

constexpr int max_links = 40; // the kernel's own limit on links met on one path

/// The texts between the "/"s, the empty ones included.
std::vector<std::string> Split(std::string const& path) {
    std::vector<std::string> parts(1);
    for (char c : path) {
        if (c == '/') {
            parts.emplace_back();
        } else {
            parts.back() += c;
        }
    }
    return parts;
}

std::string Parent(std::string const& canonical) {
    auto const slash = canonical.rfind('/');
    return slash == 0 ? "/" : canonical.substr(0, slash);
}

/// The sentence for each error number that a tree in memory can give.
std::string Error_sentence(int error) {
    switch (error) {
    case ENOENT:
        return "A component of the path file_name does not exist.";
    case EEXIST:
        return "pathname already exists.";
    case ENOTDIR:
        return "A component of the path is not a directory.";
    case ENAMETOOLONG:
        return "pathname too long.";
    case ELOOP:
        return "Too  many symbolic links encountered while traversing the path.";
    default:
        return " Other error occured, errno=" + std::to_string(error);
    }
}

} // namespace

std::string Join(std::string const& directory, std::string const& name) {
    return directory == "/" ? "/" + name : directory + "/" + name;
}

std::string Total_path(std::string const& path, std::string const& cwd) {
    std::vector<std::string> parts;
    if (!path.empty() && path.front() != '/') {
        parts = Split(cwd);
        if (parts.back().empty()) {
            parts.pop_back();
        }
    }
    auto const walked = Split(path);
    for (std::size_t i = 0; i + 1 < walked.size(); ++i) {
        if (walked[i] == ".." && !parts.empty()) {
            parts.pop_back();
        } else if (walked[i] != ".") {
            parts.push_back(walked[i]);
        }
    }
    // Deliberate: what follows the last "/" is taken as it stands, even "." and "..".
    if (!walked.back().empty()) {
        parts.push_back(walked.back());
    }
    std::string total;
    for (auto const& part : parts) {
        total += part + "/";
    }
    if (total.size() > 1) {
        total.pop_back();
    }
    return total;
}

Disk::Disk(Tree tree, std::string cwd) : tree_(std::move(tree)), cwd_(std::move(cwd)) {}

Disk::Place Disk::Look_up(std::string const& path, bool follow_last) const {
    if (path.empty()) {
        return {ENOENT, ""};
    }
    if (path.size() >= PATH_MAX) {
        return {ENAMETOOLONG, ""};
    }
    return Walk(path.front() == '/' ? "/" : cwd_, path, follow_last, 0);
}

Disk::Place Disk::Walk(std::string at, std::string const& path, bool follow_last, int links) const {
    auto const parts = Split(path);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        std::string const& part = parts[i];
        bool const last = i + 1 == parts.size();
        if (tree_.at(at).kind != Entry::Kind::directory) {
            return {ENOTDIR, ""};
        }
        if (part.empty() || part == ".") {
            continue;
        }
        if (part == "..") {
            at = Parent(at);
            continue;
        }
        if (part.size() > NAME_MAX) {
            return {ENAMETOOLONG, ""};
        }
        std::string next = Join(at, part);
        auto const found = tree_.find(next);
        if (found == tree_.end()) {
            return {ENOENT, last ? next : ""};
        }
        if (found->second.kind == Entry::Kind::symlink && (follow_last || !last)) {
            if (links == max_links) {
                return {ELOOP, ""};
            }
            std::string const& target = found->second.content;
            Place const end = Walk(target.front() == '/' ? "/" : at, target, true, links + 1);
            if (end.error != 0) {
                return {end.error, last ? next : ""};
            }
            next = end.where;
        }
        at = next;
    }
    return {0, at};
}

void Disk::Refuse_non_empty(std::string const& path) const {
    Place const place = Look_up(path);
    if (place.error != 0 || At(place).kind != Entry::Kind::directory) {
        return;
    }
    bool empty = true;
    std::string const inside = Join(place.where, "");
    for (auto const& [name, entry] : tree_) {
        if (name.starts_with(inside) && name.size() > inside.size() &&
            Parent(name) == place.where) {
            empty = false;
            std::string const full = path + "/" + name.substr(inside.size());
            if (int const error = Look_up(full).error; error != 0) {
                throw std::logic_error("ERROR: problem with " + full + " in List_dir():\n" +
                                       Error_sentence(error));
            }
        }
    }
    if (!empty) {
        throw std::logic_error("ERROR: the output directory already exists and it is non-empty.\n");
    }
}

void Disk::Prepare_dir(std::string const& path) {
    Place const place = Look_up(path);
    if (place.error == 0 && At(place).kind == Entry::Kind::directory) {
        return;
    }
    if (place.error == 0) {
        Move_aside(path);
    }
    Make_dir(path);
}

void Disk::Make_dir(std::string const& path) {
    std::string prefix;
    bool first = true;
    auto parts = Split(path);
    if (parts.back().empty()) {
        parts.pop_back();
    }
    for (auto const& part : parts) {
        prefix += (first ? "" : "/") + part;
        first = false;
        if (prefix.empty()) { // the root
            continue;
        }
        Place const place = Look_up(prefix);
        if (place.error == 0) {
            continue;
        }
        bool const dangling = tree_.contains(place.where);
        if (place.error != ENOENT || dangling) {
            throw std::logic_error("ERROR: Make_dir() called with " + prefix + " and \n" +
                                   Error_sentence(dangling ? EEXIST : place.error));
        }
        tree_[place.where] = {Entry::Kind::directory, ""};
    }
}

void Disk::Move_aside(std::string const& path) {
    unsigned n = 1;
    while (Look_up(path + std::to_string(n)).error == 0) {
        ++n;
    }
    std::string const candidate = path + std::to_string(n);
    Place const from = Look_up(path, false);
    Place const to = Look_up(candidate, false);
    if (to.where.empty()) {
        throw std::logic_error("ERROR: Rename_the_path() called with " + path + " and " +
                               candidate + " and \n" + Error_sentence(to.error));
    }
    tree_[to.where] = tree_.at(from.where);
    tree_.erase(from.where);
}

bool Disk::Write(std::string const& path, std::string text) {
    Place const place = Look_up(path);
    bool const writable = place.error == 0 ? At(place).kind == Entry::Kind::file
                                           : place.error == ENOENT && !place.where.empty();
    if (writable) {
        tree_[place.where] = {Entry::Kind::file, std::move(text)};
    }
    return writable;
}

} // namespace cpm::model
