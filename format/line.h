/// Texts as template arguments.
#pragma once

#include <algorithm>
#include <cstddef>

namespace kova {

/// A string literal as a template argument.
template <std::size_t N> struct Format {
  char text[N];
  consteval Format(const char (&literal)[N]) { std::copy_n(literal, N, text); }
};

} // namespace kova
