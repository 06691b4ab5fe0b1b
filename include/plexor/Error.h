// SPDX-License-Identifier: MIT
// The one exception type of the library.
#ifndef PLEXOR_API_ERROR_H
#define PLEXOR_API_ERROR_H

#include <plexor/Export.h>

#include <stdexcept>
#include <string>

namespace plexor {

/// What every function of the library throws when it cannot do what it is asked for. Nothing that
/// was computed before is lost: values that exist stay valid. (Memory that runs out is no such
/// error: that is std::bad_alloc, as everywhere in C++.)
class PLEXOR_API Error : public std::runtime_error {
public:
    enum class Kind {
        bad_argument, ///< a value that a function does not take, or two that do not go together
        too_large,    ///< more nodes, links, cliques or k-cliques than 32 bits can number
        missing_link, ///< an intensity asks for a link that is not there: k = 2
    };

    Error(Kind kind, std::string const& text) : std::runtime_error(text), kind_(kind) {}
    ~Error() override; // defined in the library: the type is one in every part of a program

    Kind What_kind() const noexcept { return kind_; }

private:
    Kind kind_;
};

/// Thrown out of a search or a level that its Progress has cancelled.
class PLEXOR_API Cancelled : public std::exception {
public:
    ~Cancelled() override;
    char const* what() const noexcept override;
};

} // namespace plexor

#endif
