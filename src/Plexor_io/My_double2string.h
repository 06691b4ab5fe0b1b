// SPDX-License-Identifier: MIT
// Writing a threshold with a chosen number of decimals.
#ifndef PLEXOR_MY_DOUBLE2STRING_H
#define PLEXOR_MY_DOUBLE2STRING_H

#include <string>

namespace cpm {

/// Fixed notation with exactly `digits` decimals; 0 digits give no decimal point.
std::string double2string(double const& value, unsigned const& digits);

} // namespace cpm

#endif
