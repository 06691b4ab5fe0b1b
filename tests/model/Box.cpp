// SPDX-License-Identifier: MIT
#include "Box.h"

#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <stdexcept>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace cpm::model {

namespace {

[[noreturn]] void Fail(std::string const& what, std::string const& path) {
    throw std::runtime_error("cannot " + what + " '" + path + "': " + std::strerror(errno));
}

class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    int Get() const { return fd_; }

private:
    int fd_;
};

Descriptor Open(int at, std::string const& name, int flags) {
    int const fd = ::openat(at, name.c_str(), flags | O_CLOEXEC, 0644);
    if (fd < 0) {
        Fail("open", name);
    }
    return Descriptor(fd);
}

std::string Read_all(int fd) {
    std::string text;
    std::vector<char> buffer(1 << 16);
    for (;;) {
        ssize_t const n = ::read(fd, buffer.data(), buffer.size());
        if (n < 0) {
            Fail("read", "a file");
        }
        if (n == 0) {
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(n));
    }
}

std::vector<std::string> Names_in(int fd) {
    int const copy = ::openat(fd, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    DIR* const directory = copy < 0 ? nullptr : ::fdopendir(copy);
    if (directory == nullptr) {
        Fail("list", "a directory");
    }
    std::vector<std::string> names;
    while (dirent const* const entry = ::readdir(directory)) {
        std::string_view const name = static_cast<char const*>(entry->d_name);
        if (name != "." && name != "..") {
            names.emplace_back(name);
        }
    }
    ::closedir(directory);
    return names;
}

mode_t Mode_of(int at, std::string const& name) {
    struct stat status {};
    if (::fstatat(at, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        Fail("look at", name);
    }
    return status.st_mode;
}

void Add_below(int fd, std::string const& prefix, Tree& tree) {
    for (auto const& name : Names_in(fd)) {
        mode_t const mode = Mode_of(fd, name);
        Entry& entry = tree[prefix + name];
        if (S_ISDIR(mode)) {
            Add_below(Open(fd, name, O_RDONLY | O_DIRECTORY).Get(), prefix + name + "/", tree);
        } else if (S_ISLNK(mode)) {
            std::vector<char> target(1 << 12);
            ssize_t const n = ::readlinkat(fd, name.c_str(), target.data(), target.size());
            if (n < 0) {
                Fail("read the link", name);
            }
            entry = {Entry::Kind::symlink, std::string(target.data(), static_cast<std::size_t>(n))};
        } else if (S_ISFIFO(mode)) {
            entry = {Entry::Kind::pipe, ""};
        } else {
            entry = {Entry::Kind::file, Read_all(Open(fd, name, O_RDONLY).Get())};
        }
    }
}

void Delete_below(int fd) {
    for (auto const& name : Names_in(fd)) {
        bool const directory = S_ISDIR(Mode_of(fd, name));
        if (directory) {
            Delete_below(Open(fd, name, O_RDONLY | O_DIRECTORY).Get());
        }
        if (::unlinkat(fd, name.c_str(), directory ? AT_REMOVEDIR : 0) != 0) {
            Fail("delete", name);
        }
    }
}

Descriptor Directory(int at, std::string const& name) {
    if (::mkdirat(at, name.c_str(), 0755) != 0 && errno != EEXIST) {
        Fail("make", name);
    }
    return Open(at, name, O_RDONLY | O_DIRECTORY);
}

void Make(int at, std::string const& name, Entry const& entry) {
    switch (entry.kind) {
    case Entry::Kind::directory:
        Directory(at, name);
        break;
    case Entry::Kind::symlink:
        if (::symlinkat(entry.content.c_str(), at, name.c_str()) != 0) {
            Fail("link", name);
        }
        break;
    case Entry::Kind::pipe:
        if (::mkfifoat(at, name.c_str(), 0644) != 0) {
            Fail("make the pipe", name);
        }
        break;
    case Entry::Kind::file: {
        Descriptor const file = Open(at, name, O_WRONLY | O_CREAT | O_TRUNC);
        auto const size = static_cast<ssize_t>(entry.content.size());
        if (::write(file.Get(), entry.content.data(), entry.content.size()) != size) {
            Fail("write", name);
        }
        break;
    }
    }
}

} // namespace

void Fill(std::string const& root, Tree const& tree) {
    for (Descriptor const top = Directory(AT_FDCWD, root); auto const& [path, entry] : tree) {
        Descriptor at = Open(top.Get(), ".", O_RDONLY | O_DIRECTORY);
        std::size_t start = 0;
        for (auto slash = path.find('/'); slash != std::string::npos;
             slash = path.find('/', start)) {
            at = Directory(at.Get(), path.substr(start, slash - start));
            start = slash + 1;
        }
        Make(at.Get(), path.substr(start), entry);
    }
}

Tree Look_into(std::string const& root) {
    Tree tree;
    Add_below(Open(AT_FDCWD, root, O_RDONLY | O_DIRECTORY).Get(), "", tree);
    return tree;
}

void Delete(std::string const& root) {
    if (::access(root.c_str(), F_OK) == 0) {
        Delete_below(Open(AT_FDCWD, root, O_RDONLY | O_DIRECTORY).Get());
        if (::rmdir(root.c_str()) != 0) {
            Fail("delete", root);
        }
    }
}

} // namespace cpm::model
