// SPDX-License-Identifier: MIT
// The texts of a run: numbers as they are read and written, the progress lines and the two help
// texts.
#ifndef PLEXOR_PLAIN_TEXT_H
#define PLEXOR_PLAIN_TEXT_H

#include <string>
#include <vector>

namespace cpm::model {

/// `value` in fixed notation with `digits` decimals.
std::string Fixed(double value, unsigned digits);

/// Reads a number followed by nothing but white space; `value` is set only then.
bool Read(std::string const& text, double& value);

/// The same, not negative, rounded to the nearest whole number with halves upwards.
bool Read(std::string const& text, unsigned& value);

/// Any text is a text.
bool Read(std::string const& text, std::string& value);

/// The line, ended, below as many underscores.
std::string Underlined(std::string const& line);

/// Titles, underlined above, and the line that counts what is left to do.
std::string Progress(std::vector<std::string> const& titles, std::string const& what,
                     unsigned to_do, unsigned total);

/// The summary of a finished search.
std::string Altogether(std::string const& what, std::size_t count);

/// The short usage below its error text, and the detailed help without its closing banner.
std::string Usage(std::string const& program_name);
std::string Help(std::string const& program_name);

} // namespace cpm::model

#endif
