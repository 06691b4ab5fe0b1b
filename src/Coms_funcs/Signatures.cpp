// SPDX-License-Identifier: MIT
// Takes    a list's signatures and what one clique asks of them.
// Leaves   the places worth a second look.
// Cost     per signature: about a nanosecond one by one; with AVX-512 what it takes to load it.
// Tested   Signatures_test.cpp (each scan against the definition).
#include "Coms_funcs/Signatures.h"

#include "support/Cpu_dispatch.h"

#include <bit>

#if PLEXOR_VECTOR_CODE
#include <immintrin.h>
#endif

namespace cpm {

Signature Signature_bit(Node node) {
    constexpr std::uint64_t bits_left = 56;
    return std::uint64_t{1} << (8 + (std::uint64_t{node * 0x9E3779B1U} * bits_left >> 32));
}

Signature Signature_bits(Node_set nodes) {
    Signature bits = 0;
    for (Node const node : nodes) {
        bits |= Signature_bit(node);
    }
    return bits;
}

Signature Signature_of(Node_set nodes) {
    return nodes.size() >= signature_size_mask ? signature_size_mask
                                               : nodes.size() | Signature_bits(nodes);
}

namespace {

// Nodes that the bits tell apart are different: the bits that the asker lacks are a lower bound of
// the nodes not shared.
inline bool Is_promising(Signature signature, Signature_query const& query) {
    auto const missing =
        static_cast<std::uint64_t>(std::popcount(signature & ~query.bits & ~signature_size_mask));
    std::uint64_t const size = signature & signature_size_mask;
    bool const unknown = size == signature_size_mask;
    return unknown | ((missing + query.min_shared <= size) & ((signature & query.needed) != 0));
}

// Without a branch per signature: which ones are promising cannot be predicted.
PLEXOR_COUNTS_BITS
std::size_t Scan_portable(Signature const* signatures, std::size_t count,
                          Signature_query const& query, std::uint32_t* places) {
    std::size_t found = 0;
    for (std::size_t i = 0; i < count; ++i) {
        places[found] = static_cast<std::uint32_t>(i);
        found += static_cast<std::size_t>(Is_promising(signatures[i], query));
    }
    return found;
}

#if PLEXOR_VECTOR_CODE

__attribute__((target("avx2"))) inline __m256i Four_times(Signature word) {
    return _mm256_set1_epi64x(static_cast<long long>(word));
}

// The number of set bits of each of the four words.
__attribute__((target("avx2"))) inline __m256i Count_bits(__m256i words) {
    __m256i const of_four_bits = _mm256_setr_epi8(0, 1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4, 0,
                                                  1, 1, 2, 1, 2, 2, 3, 1, 2, 2, 3, 2, 3, 3, 4);
    __m256i const low_half = _mm256_set1_epi8(0x0F);
    __m256i const low = _mm256_and_si256(words, low_half);
    __m256i const high = _mm256_and_si256(_mm256_srli_epi16(words, 4), low_half);
    __m256i const of_bytes = _mm256_add_epi8(_mm256_shuffle_epi8(of_four_bits, low),
                                             _mm256_shuffle_epi8(of_four_bits, high));
    return _mm256_sad_epu8(of_bytes, _mm256_setzero_si256());
}

__attribute__((target("avx2"))) std::size_t Scan_avx2(Signature const* signatures,
                                                      std::size_t count,
                                                      Signature_query const& query,
                                                      std::uint32_t* places) {
    __m256i const foreign = Four_times(~query.bits & ~signature_size_mask);
    __m256i const needed = Four_times(query.needed);
    __m256i const min_shared = Four_times(query.min_shared);
    __m256i const size_mask = Four_times(signature_size_mask);
    std::size_t found = 0;
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        __m256i const four = _mm256_loadu_si256(reinterpret_cast<__m256i const*>(signatures + i));
        __m256i const missing = Count_bits(_mm256_and_si256(four, foreign));
        __m256i const size = _mm256_and_si256(four, size_mask);
        __m256i const unknown = _mm256_cmpeq_epi64(size, size_mask);
        __m256i const too_few = _mm256_cmpgt_epi64(_mm256_add_epi64(missing, min_shared), size);
        __m256i const unneeded =
            _mm256_cmpeq_epi64(_mm256_and_si256(four, needed), _mm256_setzero_si256());
        __m256i const out = _mm256_andnot_si256(unknown, _mm256_or_si256(too_few, unneeded));
        auto rest = static_cast<unsigned>(_mm256_movemask_pd(_mm256_castsi256_pd(out))) ^ 0xFU;
        for (; rest != 0; rest &= rest - 1) {
            places[found++] =
                static_cast<std::uint32_t>(i) + static_cast<std::uint32_t>(std::countr_zero(rest));
        }
    }
    for (; i < count; ++i) {
        places[found] = static_cast<std::uint32_t>(i);
        found += static_cast<std::size_t>(Is_promising(signatures[i], query));
    }
    return found;
}

__attribute__((target("avx512f"))) inline __m512i Eight_times(Signature word) {
    return _mm512_set1_epi64(static_cast<long long>(word));
}

__attribute__((target("avx512f,avx512vl,avx512vpopcntdq,popcnt"))) std::size_t
Scan_avx512(Signature const* signatures, std::size_t count, Signature_query const& query,
            std::uint32_t* places) {
    __m512i const foreign = Eight_times(~query.bits & ~signature_size_mask);
    __m512i const needed = Eight_times(query.needed);
    __m512i const min_shared = Eight_times(query.min_shared);
    __m512i const size_mask = Eight_times(signature_size_mask);
    __m256i const step = _mm256_set1_epi32(8);
    __m256i here = _mm256_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7);
    std::size_t found = 0;
    for (std::size_t i = 0; i < count; i += 8) {
        std::size_t const left = count - i;
        auto const in_list = static_cast<__mmask8>(left >= 8 ? 0xFFU : (1U << left) - 1);
        __m512i const eight = _mm512_maskz_loadu_epi64(in_list, signatures + i);
        __m512i const missing = _mm512_popcnt_epi64(_mm512_and_si512(eight, foreign));
        __m512i const size = _mm512_and_si512(eight, size_mask);
        unsigned const unknown = _mm512_cmpeq_epi64_mask(size, size_mask);
        unsigned const enough =
            _mm512_cmple_epu64_mask(_mm512_add_epi64(missing, min_shared), size);
        unsigned const has_needed = _mm512_test_epi64_mask(eight, needed);
        unsigned const promising = (unknown | (enough & has_needed)) & in_list;
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(places + found),
                            _mm256_maskz_compress_epi32(static_cast<__mmask8>(promising), here));
        here = _mm256_add_epi32(here, step);
        found += static_cast<std::size_t>(std::popcount(promising));
    }
    return found;
}

#endif

} // namespace

std::vector<Signature_scan> All_scans() {
    std::vector<Signature_scan> scans{Scan_portable};
#if PLEXOR_VECTOR_CODE
    if (Cpu_has_avx2()) {
        scans.push_back(Scan_avx2);
    }
    if (Cpu_has_avx512_popcount()) {
        scans.push_back(Scan_avx512);
    }
#endif
    return scans;
}

Signature_scan Fastest_scan() {
    return All_scans().back();
}

} // namespace cpm
