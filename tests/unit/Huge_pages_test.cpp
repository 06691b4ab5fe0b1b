// SPDX-License-Identifier: MIT
#include "support/Huge_pages.h"

#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/mman.h>

namespace cpm::test {
namespace {

constexpr std::size_t huge_page = std::size_t{1} << 21;

// Memory of its own that begins at a large page.
class Area {
public:
    explicit Area(std::size_t size) : size_(size + huge_page) {
        memory_ =
            ::mmap(nullptr, size_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    Area(Area const&) = delete;
    Area& operator=(Area const&) = delete;
    ~Area() { ::munmap(memory_, size_); }
    char* Begin() const {
        return static_cast<char*>(memory_) + -reinterpret_cast<std::uintptr_t>(memory_) % huge_page;
    }

private:
    std::size_t size_;
    void* memory_;
};

// Whether the kernel lists this byte's memory as wanting large pages.
bool Is_wanted(char const* byte) {
    auto const address = reinterpret_cast<std::uintptr_t>(byte);
    std::ifstream maps("/proc/self/smaps");
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        std::istringstream words(line);
        std::uintptr_t begin = 0;
        std::uintptr_t end = 0;
        char dash = 0;
        if (words >> std::hex >> begin >> dash >> end && dash == '-') {
            inside = begin <= address && address < end;
        } else if (inside && line.starts_with("VmFlags:")) {
            return line.find(" hg") != std::string::npos;
        }
    }
    return false;
}

class Huge_pages : public testing::Test {
protected:
    void SetUp() override {
        if (!std::ifstream("/sys/kernel/mm/transparent_hugepage/enabled")) {
            GTEST_SKIP() << "this kernel has no large pages";
        }
    }
};

TEST_F(Huge_pages, An_array_gets_them_with_all_pages_that_it_lies_in) {
    Area const area(4 * huge_page);
    char* const begin = area.Begin() + huge_page;
    Ask_for_huge_pages(begin + 16, huge_page);
    EXPECT_FALSE(Is_wanted(begin - 1)) << "before its first page";
    EXPECT_TRUE(Is_wanted(begin)) << "in its first page";
    EXPECT_TRUE(Is_wanted(begin + huge_page + 4095)) << "in its last page";
    EXPECT_FALSE(Is_wanted(begin + huge_page + 4096)) << "after its last page";
}

TEST_F(Huge_pages, A_smaller_array_is_left_alone) {
    Area const area(huge_page);
    Ask_for_huge_pages(area.Begin(), huge_page - 1);
    Ask_for_huge_pages(area.Begin(), 0);
    EXPECT_FALSE(Is_wanted(area.Begin()));
}

// Memory that is wanted in two ways cannot be moved as a whole: it would be copied.
TEST_F(Huge_pages, An_array_with_memory_of_its_own_still_grows_without_a_copy) {
    Area const area(4 * huge_page);
    char* const begin = area.Begin();
    Ask_for_huge_pages(begin + 16, 2 * huge_page - 16);
    void* const moved = ::mremap(begin, 2 * huge_page, 8 * huge_page, MREMAP_MAYMOVE);
    ASSERT_NE(moved, MAP_FAILED);
    ::munmap(moved, 8 * huge_page);
}

} // namespace
} // namespace cpm::test
