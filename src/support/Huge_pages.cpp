// SPDX-License-Identifier: MIT
#include "support/Huge_pages.h"

#include <cstdint>
#include <sys/mman.h>

namespace cpm {

// The small pages that an array begins and ends in are asked for with the others: memory of which
// only a part is wanted in another way could not be moved as a whole when the array grows.
void Ask_for_huge_pages(void* data, std::size_t bytes) noexcept {
    constexpr std::size_t page = std::size_t{1} << 12;
    if (bytes < huge_page) {
        return;
    }
    std::size_t const before = reinterpret_cast<std::uintptr_t>(data) % page;
    std::size_t const pages = (before + bytes + page - 1) / page;
    ::madvise(static_cast<char*>(data) - before, pages * page, MADV_HUGEPAGE);
}

} // namespace cpm
