// SPDX-License-Identifier: MIT
// Reading the values of switches. Each overload returns true when the text can be read as the type
// of its target, which is set only then.
#ifndef PLEXOR_MY_CONVERT_FROM_STRING_H
#define PLEXOR_MY_CONVERT_FROM_STRING_H

#include <string>
#include <vector>

namespace cpm {

/// The whole number nearest to `number`; of two, the larger one. It must fit an int.
int gRound(double const& number);

/// The text must be a number. There is never a warning.
bool Convert_from_string(std::string const& text, double& value, bool& warning);

/// The text must be a number, which is rounded as gRound() does; the result must fit the type, and
/// for an unsigned the number must not be negative. The warning tells that the text does not look
/// like a whole number (it holds a "." or an "e") or cannot be read.
bool Convert_from_string(std::string const& text, int& value, bool& warning);
bool Convert_from_string(std::string const& text, unsigned& value, bool& warning);

/// The text must be yes, no, true or false, in small letters, in capitals or with one capital in
/// front. There is never a warning.
bool Convert_from_string(std::string const& text, bool& value, bool& warning);
bool Convert_from_string(std::string const& text, std::vector<bool>::reference value,
                         bool& warning);

/// Every text will do. There is never a warning.
bool Convert_from_string(std::string const& text, std::string& value, bool& warning);

} // namespace cpm

#endif
