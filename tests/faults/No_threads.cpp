// SPDX-License-Identifier: MIT
// Preloaded, ends a process that starts a second thread.
#include <cstdlib>
#include <pthread.h>

extern "C" int pthread_create(pthread_t*, pthread_attr_t const*, void* (*)(void*), void*) {
    std::abort();
}
