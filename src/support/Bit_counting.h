// SPDX-License-Identifier: MIT
// Functions whose hot loops count bits are compiled twice. Machines of the last fifteen years count
// the bits of a word in one instruction, which portable code may not assume: which of the two runs
// is chosen when the program starts. (Sanitizers cannot run code that early.)
#ifndef PLEXOR_BIT_COUNTING_H
#define PLEXOR_BIT_COUNTING_H

#if defined(__x86_64__) && defined(__linux__) && defined(NDEBUG)
#define PLEXOR_COUNTS_BITS __attribute__((target_clones("popcnt", "default")))
/// The same for logic on several words at a time, which newer machines do up to eight by eight.
#define PLEXOR_WIDE_WORDS __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define PLEXOR_COUNTS_BITS
#define PLEXOR_WIDE_WORDS
#endif

#endif
