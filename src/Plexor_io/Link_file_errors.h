// SPDX-License-Identifier: MIT
// What can be wrong with a link file. Each error carries its whole message.
#ifndef PLEXOR_LINK_FILE_ERRORS_H
#define PLEXOR_LINK_FILE_ERRORS_H

#include <stdexcept>
#include <string>
#include <utility>

namespace cpm {

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

} // namespace cpm

#endif
