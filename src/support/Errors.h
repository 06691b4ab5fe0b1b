// SPDX-License-Identifier: MIT
// The errors that end a run. Each carries its whole message; `main` prints it and nobody else
// catches it.
#ifndef PLEXOR_ERRORS_H
#define PLEXOR_ERRORS_H

#include <new>
#include <stdexcept>
#include <string>

namespace cpm {

/// A failure with a message of its own.
class Xerror_msg : public std::logic_error {
public:
    explicit Xerror_msg(std::string const& message) : std::logic_error(message) {}
};

/// There is more of something than its numbers can tell apart.
class Too_large : public Xerror_msg {
public:
    using Xerror_msg::Xerror_msg;
};

/// A set of nodes is asked for the weight of a link that is not there.
class Missing_link : public Xerror_msg {
public:
    using Xerror_msg::Xerror_msg;
};

/// The link file could be opened but not read.
class Xep_read_file : public std::logic_error {
public:
    Xep_read_file() : Xep_read_file(" the file I was reading") {}
    explicit Xep_read_file(std::string const& file)
        : Xep_read_file(file, "ERROR: Something went wrong when trying to read from " + file) {}
    char const* what() const noexcept override { return text_.c_str(); }
    std::string const& File() const { return file_; }

protected:
    Xep_read_file(std::string file, std::string text)
        : std::logic_error(""), file_(std::move(file)), text_(std::move(text)) {}

private:
    std::string file_;
    std::string text_;
};

/// The link file could not be opened.
class Xep_file_not_found : public Xep_read_file {
public:
    explicit Xep_file_not_found(std::string const& file)
        : Xep_read_file(file, "ERROR : File not found: '" + file + "' ") {}
};

/// A line of the link file lacks a field. The line is the one without blanks at its ends.
class Xep_wrong_line : public Xep_read_file {
public:
    explicit Xep_wrong_line(std::string const& line)
        : Xep_wrong_line(line, Xep_read_file().File()) {}
    Xep_wrong_line(std::string const& line, std::string const& file)
        : Xep_read_file(file, "ERROR: Wrong line found in '" + file + "' :\n" + line), line_(line) {
    }
    std::string const& Line() const { return line_; }

private:
    std::string line_;
};

/// The machine has no more memory to give. Derived from std::bad_alloc, so that it passes through
/// everything that knows how to deal with that, but with a text that helps.
class Out_of_memory : public std::bad_alloc {
public:
    char const* what() const noexcept override {
        return "ERROR: not enough memory for this network. Try a weight threshold (-w, -W), a time "
               "limit for the clique search (-t), or a machine with more memory.";
    }
    /// Makes every failed allocation of the program throw this error.
    static void Install() {
        std::set_new_handler([] { throw Out_of_memory(); });
    }
};

} // namespace cpm

#endif
