// SPDX-License-Identifier: MIT
#include "Plexor_io/Switches.h"

#include "support/Errors.h"

namespace cpm {

// The constructors name the class: an overriding Construct() of a class under construction would
// not be called anyway.
Switches::Switches(int argc, char const* const* argv) {
    Switches::Construct(std::vector<std::string>(argv, argv + argc));
}

Switches::Switches(std::vector<std::string> const& arguments) {
    Switches::Construct(arguments);
}

Switches::Param_map Switches::Params() const {
    return params_;
}

std::string Switches::Prog_name() const {
    return prog_name_;
}

void Switches::Construct(std::vector<std::string> const& arguments) {
    if (arguments.empty()) {
        throw Xerror_msg(" program name missing in Switches...\n");
    }
    prog_name_ = arguments.front();
    params_.clear();
    std::string current = "---noname";
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        std::string const& argument = arguments[i];
        if (argument.size() > 1 && argument.front() == '-') {
            current = argument;
            params_[current].clear();
        } else {
            params_[current].push_back(argument);
        }
    }
}

} // namespace cpm
