// SPDX-License-Identifier: MIT
#include "Plexor_io/My_string_to_d.h"

#include <locale>
#include <sstream>

namespace cpm {

bool stringtodouble(std::string const& text, double& value) {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    double number = 0;
    std::string word;
    if (!(stream >> number) || stream >> word) {
        return false;
    }
    value = number;
    return true;
}

} // namespace cpm
