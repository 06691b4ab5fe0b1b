// SPDX-License-Identifier: MIT
#include "support/Large_pages.h"

#include <cstdint>
#include <sys/mman.h>

namespace cpm {

// Only whole large pages: what lies around the array is not meant.
void Ask_for_large_pages(void* data, std::size_t bytes) noexcept {
    constexpr std::uintptr_t page = std::uintptr_t{1} << 21;
    auto const begin = reinterpret_cast<std::uintptr_t>(data);
    std::uintptr_t const skipped = -begin % page;
    if (bytes < skipped + page) {
        return;
    }
    ::madvise(static_cast<char*>(data) + skipped, (bytes - skipped) / page * page, MADV_HUGEPAGE);
}

} // namespace cpm
