// SPDX-License-Identifier: MIT
// Fuzzer of the link reader: the input is a link file. It is read without weights, with weights
// under one of several intervals, and sometimes after a comment that pushes it across the end of
// the reader's first block. The links, their weights to the last bit and the text of the error must
// be what the reader of the plain model says.
//
// Nothing explodes here: time and memory are proportional to the input.
#include "Plain_input.h"
#include "Plexor_io/Read_links.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using cpm::Weight_interval;

struct Verdict {
    cpm::model::Links links;
    std::string error; // up to its first NUL, as it would be printed; then `links` is empty
};

// --- What is right. ---

void Plain_read(Verdict& verdict, std::string const& text, bool weighted,
                Weight_interval const& interval) {
    cpm::model::Job job;
    if (weighted) {
        job.intensity = 0; // any: links then have weights
    }
    if (interval.lower_set) {
        job.lower = interval.lower;
    }
    if (interval.upper_set) {
        job.upper = interval.upper;
    }
    std::istringstream lines(text);
    verdict.links = cpm::model::Read_links(lines, job);
}

// --- What the program says. ---

// A file in memory. Its path leads to it for as long as it is open.
class Memory_file {
public:
    explicit Memory_file(std::string const& text) : descriptor_(::memfd_create("links", 0)) {
        if (descriptor_ < 0 ||
            ::write(descriptor_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            std::perror("a file in memory");
            std::abort();
        }
    }
    Memory_file(Memory_file const&) = delete;
    Memory_file& operator=(Memory_file const&) = delete;
    ~Memory_file() { ::close(descriptor_); }
    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

void Require(bool holds, char const* what) {
    if (!holds) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

void Program_read(Verdict& verdict, std::string const& text, bool weighted,
                  Weight_interval const& interval) {
    Memory_file const file(text);
    cpm::Link_map links;
    if (weighted) {
        Read_weighted_links(file.Path(), links, interval);
    } else {
        Read_unw_links(file.Path(), links);
    }
    for (std::size_t i = 1; i < links.names.size(); ++i) {
        Require(links.names[i - 1] < links.names[i], "names ascend");
    }
    for (std::size_t i = 0; i < links.links.size(); ++i) {
        auto const [source, target] = links.links[i];
        Require(i == 0 || links.links[i - 1] < links.links[i], "links ascend");
        verdict.links[{std::string(links.names[source]), std::string(links.names[target])}] =
            links.Weight(i);
    }
}

template <class Read>
Verdict Verdict_of(Read read, std::string const& text, bool weighted,
                   Weight_interval const& interval) {
    Verdict verdict;
    try {
        read(verdict, text, weighted, interval);
    } catch (std::logic_error const& error) {
        verdict = {{}, error.what()};
    }
    return verdict;
}

void Require_same(Verdict const& right, Verdict const& found) {
    if (right.error != found.error) {
        std::fprintf(stderr, "error '%s', but should be '%s'\n", found.error.c_str(),
                     right.error.c_str());
    }
    Require(right.error == found.error, "the same error");
    Require(right.links.size() == found.links.size(), "as many links");
    for (auto a = right.links.begin(), b = found.links.begin(); a != right.links.end(); ++a, ++b) {
        Require(a->first == b->first, "the same links");
        // By bits: 0 and -0 are written differently.
        Require(std::bit_cast<std::uint64_t>(a->second) == std::bit_cast<std::uint64_t>(b->second),
                "the same weights");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    std::string const text(reinterpret_cast<char const*>(data), size);
    Require_same(Verdict_of(Plain_read, text, false, {}),
                 Verdict_of(Program_read, text, false, {}));
    // Which interval, and below which block end, depends on the input only.
    constexpr std::array<Weight_interval, 3> intervals{
        {{false, 0, false, 0}, {true, 0.5, false, 0}, {true, -1, true, 2}}};
    Weight_interval const& interval = intervals[size % intervals.size()];
    Verdict const right = Verdict_of(Plain_read, text, true, interval);
    Require_same(right, Verdict_of(Program_read, text, true, interval));
    // The reader takes 2^18 bytes at first. A comment changes nothing, wherever that falls.
    constexpr std::size_t block = std::size_t{1} << 18;
    std::size_t const before = size == 0 ? 0 : (data[size / 2] * size) / 256;
    if (before % 4 == 1) {
        std::string const comment = "#" + std::string(block - before - 2, '.') + "\n";
        Require_same(right, Verdict_of(Program_read, comment + text, true, interval));
    }
    return 0;
}
