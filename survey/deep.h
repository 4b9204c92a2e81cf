/// The deep checks: what the verdict does not look at, as warnings.
#pragma once

#include "kova/kova.h"
#include "survey/file_result.h"

namespace kova::survey {

/// Checks a model that was loaded: links, the tree of objects, triangles, floats, keys and names. The warnings go into
/// the result. Takes time and memory in proportion to the model.
void deepCheck(const Kis &kis, FileResult &result);

/// @return the rows of the catalogue that only these checks use.
std::span<const FindingRow> deepRows();

} // namespace kova::survey
