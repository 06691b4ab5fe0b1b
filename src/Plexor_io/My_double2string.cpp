// SPDX-License-Identifier: MIT
#include "Plexor_io/My_double2string.h"

#include "Plexor_io/Text_sink.h"

namespace cpm {

std::string double2string(double const& value, unsigned const& digits) {
    Text text;
    text.Put_fixed(value, digits);
    return std::string(text.View());
}

} // namespace cpm
