// SPDX-License-Identifier: MIT
// The errors that end a search or a run. Each carries its whole message.
#ifndef PLEXOR_ERRORS_H
#define PLEXOR_ERRORS_H

#include <stdexcept>
#include <string>

namespace cpm {

/// A failure with a message of its own.
class Xerror_msg : public std::logic_error {
public:
    explicit Xerror_msg(std::string const& message) : std::logic_error(message) {}
};

/// There is more of something than its numbers can tell apart.
class Too_large : public Xerror_msg {
public:
    using Xerror_msg::Xerror_msg;
};

/// A set of nodes is asked for the weight of a link that is not there.
class Missing_link : public Xerror_msg {
public:
    using Xerror_msg::Xerror_msg;
};

} // namespace cpm

#endif
