// SPDX-License-Identifier: MIT
// Writing whole numbers, also after a text or with zeros in front.
#ifndef PLEXOR_MY_INT2STRING_H
#define PLEXOR_MY_INT2STRING_H

#include <string>

namespace cpm {

/// The plain decimal number.
std::string int2string(unsigned const& value);
std::string int2string(int const& value);

/// The decimal number with zeros in front, after the sign if there is one, up to `width` digits. A
/// longer number stays whole; the number 0 is `width` zeros. An unsigned is taken as an int.
std::string int2string(int const& value, unsigned const& width);
std::string int2string(unsigned const& value, unsigned const& width);

/// The text followed by the decimal number.
std::string operator+(std::string const& text, unsigned const& number);
std::string operator+(std::string const& text, int const& number);

} // namespace cpm

#endif
