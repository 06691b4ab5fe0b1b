// SPDX-License-Identifier: MIT
// The engine's errors as those of the library.
#ifndef PLEXOR_PUBLIC_ERRORS_H
#define PLEXOR_PUBLIC_ERRORS_H

#include "support/Errors.h"

#include <plexor/Error.h>

namespace plexor::detail {

/// Does the action; an error of the engine becomes the library's.
template <class Action> auto Rethrow_as_public(Action const& action) {
    try {
        return action();
    } catch (cpm::Too_large const& error) {
        throw Error(Error::Kind::too_large, error.what());
    } catch (cpm::Missing_link const& error) {
        throw Error(Error::Kind::missing_link, error.what());
    }
}

} // namespace plexor::detail

#endif
