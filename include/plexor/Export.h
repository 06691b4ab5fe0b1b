// SPDX-License-Identifier: MIT
// PLEXOR_API marks what the shared library offers; everything else in it is hidden.
#ifndef PLEXOR_API_EXPORT_H
#define PLEXOR_API_EXPORT_H

#define PLEXOR_API __attribute__((visibility("default")))

#endif
