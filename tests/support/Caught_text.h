// SPDX-License-Identifier: MIT
// What a handler sees of an error.
#ifndef PLEXOR_CAUGHT_TEXT_H
#define PLEXOR_CAUGHT_TEXT_H

#include <exception>
#include <string>

namespace cpm::test {

/// What the handler of a run sees: the text of a standard exception.
template <class Error> std::string Caught(Error const& error) {
    try {
        throw error;
    } catch (std::exception const& caught) {
        return caught.what();
    }
}

} // namespace cpm::test

#endif
