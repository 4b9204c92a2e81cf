#pragma once

/// Marks what the shared library shows; everything else stays hidden in it.
#if defined(__GNUC__)
#define KOVA_API __attribute__((visibility("default")))
#else
#define KOVA_API
#endif
