// SPDX-License-Identifier: MIT
#include "Plain_text.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <sstream>

namespace cpm::model {

std::string Fixed(double value, unsigned digits) {
    std::ostringstream out;
    out.setf(std::ios::fixed);
    out.precision(static_cast<int>(digits));
    out << value;
    return out.str();
}

bool Read_number(std::string const& text, double& value) {
    std::istringstream in(text);
    double number = 0;
    std::string more;
    if (!(in >> number) || in >> more) {
        return false;
    }
    value = number;
    return true;
}

bool Read_unsigned(std::string const& text, unsigned& value) {
    double number = 0;
    if (!Read_number(text, number) || number < 0) {
        return false;
    }
    double rounded = std::trunc(number) - 1;
    for (double candidate : {rounded + 1, rounded + 2}) {
        if (std::abs(candidate - number) <= std::abs(rounded - number)) {
            rounded = candidate;
        }
    }
    if (rounded > std::numeric_limits<unsigned>::max()) {
        return false;
    }
    value = static_cast<unsigned>(rounded);
    return true;
}

std::string Underline(std::size_t width) {
    return std::string(width, '_') + "\n";
}

std::string Progress(std::vector<std::string> const& titles, std::string const& what,
                     unsigned to_do, unsigned total) {
    std::size_t width = 0;
    std::string text;
    for (auto const& title : titles) {
        width = std::max(width, title.size());
        text += title + "\n";
    }
    double const percent = 100.0 * (total - to_do) / total;
    return Underline(width) + text + " " + std::to_string(to_do) + " of " + std::to_string(total) +
           " " + what + " to do (" + Fixed(percent, 2) + "% done)\n";
}

std::string Altogether(std::string const& what, std::size_t count) {
    std::string const number = std::to_string(count);
    return Underline(number.size() + what.size() + 20) + " Altogether " + number + " " + what +
           " found.\n";
}

} // namespace cpm::model
