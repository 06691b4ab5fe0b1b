// SPDX-License-Identifier: MIT
#include "Plain_text.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <limits>
#include <sstream>

namespace cpm::model {

std::string Fixed(double value, unsigned digits) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(static_cast<int>(digits)) << value;
    return out.str();
}

bool Read(std::string const& text, double& value) {
    std::istringstream in(text);
    double number = 0;
    std::string more;
    bool const good = in >> number && !(in >> more);
    value = good ? number : value;
    return good;
}

bool Read(std::string const& text, unsigned& value) {
    double number = 0;
    bool const good = Read(text, number) && number >= 0 &&
                      std::round(number) <= std::numeric_limits<unsigned>::max();
    value = good ? static_cast<unsigned>(std::round(number)) : value;
    return good;
}

bool Read(std::string const& text, std::string& value) {
    value = text;
    return true;
}

std::string Underlined(std::string const& line) {
    return std::string(line.size(), '_') + "\n" + line + "\n";
}

std::string Progress(std::vector<std::string> const& titles, std::string const& what,
                     unsigned to_do, unsigned total) {
    std::size_t width = 0;
    std::string lines;
    for (auto const& title : titles) {
        width = std::max(width, title.size());
        lines += title + "\n";
    }
    double const percent = 100.0 * (total - to_do) / total;
    return std::string(width, '_') + "\n" + lines + " " + std::to_string(to_do) + " of " +
           std::to_string(total) + " " + what + " to do (" + Fixed(percent, 2) + "% done)\n";
}

std::string Altogether(std::string const& what, std::size_t count) {
    return Underlined(" Altogether " + std::to_string(count) + " " + what + " found.");
}

} // namespace cpm::model
