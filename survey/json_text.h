/// The text of JSON, put together piece by piece.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kova::survey {

/// Appends bytes as a string: what is not valid UTF-8, and each backslash, as `escaped` shows it. Asks for no memory
/// but that of the text.
void appendString(std::string &json, std::string_view bytes);

void appendNumber(std::string &json, std::uint64_t number);

/// Appends a number, or null.
template <class Number> void appendNumber(std::string &json, const std::optional<Number> &number) {
  if (number)
    appendNumber(json, std::uint64_t{*number});
  else
    json += "null";
}

} // namespace kova::survey
