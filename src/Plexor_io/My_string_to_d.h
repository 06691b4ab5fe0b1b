// SPDX-License-Identifier: MIT
// Reading a number strictly: the whole text must be one.
#ifndef PLEXOR_MY_STRING_TO_D_H
#define PLEXOR_MY_STRING_TO_D_H

#include <string>

namespace cpm {

/// True when the text is a number, as the standard streams read one, with nothing but white space
/// around it. `value` is set only then.
bool stringtodouble(std::string const& text, double& value);

} // namespace cpm

#endif
