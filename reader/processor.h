/// What the processor can do, where not all of its architecture can.
///
/// The C library asks the processor whenever a program starts, and is asked here. `__builtin_cpu_supports` would have
/// the compiler's library ask it once more at each start, needed or not; in a virtual machine each question is slow.
#pragma once

#ifdef __x86_64__

#if __has_include(<sys/platform/x86.h>) && !defined(__clang__) // which has no _Bool in C++
#include <sys/platform/x86.h>
#endif

namespace kova {

#ifdef CPU_FEATURE_ACTIVE
inline bool hasAvx2() { return CPU_FEATURE_ACTIVE(AVX2); }
inline bool hasAvx512() { return CPU_FEATURE_ACTIVE(AVX512BW) && CPU_FEATURE_ACTIVE(AVX512CD); }
inline bool hasAvx512Vbmi() { return CPU_FEATURE_ACTIVE(AVX512_VBMI); }
#else
inline bool hasAvx2() { return __builtin_cpu_supports("avx2") != 0; }
inline bool hasAvx512() { return __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512cd") != 0; }
inline bool hasAvx512Vbmi() { return __builtin_cpu_supports("avx512vbmi") != 0; }
#endif

} // namespace kova

#endif
