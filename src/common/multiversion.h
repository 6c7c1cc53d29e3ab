// Run-time choice of instruction set for hot loops.
#pragma once

// Compiles a function three times, for plain x86-64 and for the levels v3 (AVX2) and v4 (AVX-512); the loader picks
// one. Floating results do not change with the level: no addition is reordered and nothing is fused. Builds that
// define LMF_NO_MULTIVERSION have the plain form alone, so that tests compare both.
#if defined(LMF_NO_MULTIVERSION) || !defined(__x86_64__) || !defined(__ELF__) || !defined(__GNUC__) ||                 \
    defined(__clang__)
#define LMF_MULTIVERSION
#define LMF_HAS_MULTIVERSION 0
#else
#define LMF_HAS_MULTIVERSION 1
#define LMF_MULTIVERSION __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#endif
