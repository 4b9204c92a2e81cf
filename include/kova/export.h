#pragma once

#if __cplusplus < 202002L
#error "kova needs C++20: compile with -std=c++20"
#include "kova/needs-c++20" // there is no such file: compilation ends here
#endif

/// Marks what the shared library shows; everything else stays hidden in it.
#if defined(__GNUC__)
#define KOVA_API __attribute__((visibility("default")))
#else
#define KOVA_API
#endif
