// SPDX-License-Identifier: MIT
// Which instructions a run may use beyond those that every x86-64 has. Functions whose hot loops
// count bits or work on wide words are compiled once for each generation of processors; the dynamic
// loader chooses (target_clones), or, where the code differs, the program asks Cpu_has_...().
//
// PLEXOR_PORTABLE_ONLY turns all of it off: the path of machines that have nothing more, for tests.
// Debug builds and sanitizers do without clones, as they cannot run the loader's choice so early.
#ifndef PLEXOR_CPU_DISPATCH_H
#define PLEXOR_CPU_DISPATCH_H

#if defined(__x86_64__) && defined(__linux__) && !defined(PLEXOR_PORTABLE_ONLY)
#define PLEXOR_VECTOR_CODE 1
#else
#define PLEXOR_VECTOR_CODE 0
#endif

#if PLEXOR_VECTOR_CODE && defined(NDEBUG)
/// Counts the bits of words.
#define PLEXOR_COUNTS_BITS __attribute__((target_clones("popcnt", "default")))
/// Does logic on several words at a time, which newer machines do up to eight by eight.
#define PLEXOR_WIDE_WORDS __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define PLEXOR_COUNTS_BITS
#define PLEXOR_WIDE_WORDS
#endif

#if PLEXOR_VECTOR_CODE
namespace cpm {

inline bool Cpu_has_avx2() {
    return __builtin_cpu_supports("avx2") != 0;
}
/// AVX-512 with shorter vectors and with the counting of bits.
inline bool Cpu_has_avx512_popcount() {
    return __builtin_cpu_supports("avx512vl") != 0 &&
           __builtin_cpu_supports("avx512vpopcntdq") != 0 && __builtin_cpu_supports("popcnt") != 0;
}

} // namespace cpm
#endif

#endif
