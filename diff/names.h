/// The names of fields, made of what the format says.
#pragma once

#include <string_view>

namespace kova::diff {

/// @return whether a record has a word, an array and so on of this name, as `Rules::ignored` has it.
bool isFieldName(std::string_view name);

} // namespace kova::diff
