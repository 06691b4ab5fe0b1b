// SPDX-License-Identifier: MIT
// Large pages: the kernel brings memory in by pages, at the first touch of each, and for large
// arrays that takes longer than filling them. With pages 512 times as large it hardly counts.
#ifndef PLEXOR_HUGE_PAGES_H
#define PLEXOR_HUGE_PAGES_H

#include <cstddef>

namespace cpm {

/// The bytes of a large page.
constexpr std::size_t huge_page = std::size_t{1} << 21;

/// Asks for large pages for an array that can fill one. This is a hint: nothing depends on whether
/// the kernel follows it.
void Ask_for_huge_pages(void* data, std::size_t bytes) noexcept;

} // namespace cpm

#endif
