/// Writing one list of a model, for whoever puts a file together by itself.
#pragma once

#include "kova/kova.h"
#include "writer/output.h"

namespace kova {

/// Writes a list, by its place in `LISTS`, between `beginList` and `endList`. In a 2.0 file maker blocks are written
/// from what is decoded of them, if anything is.
void writeList(Output &out, const Kis &kis, std::size_t list);

} // namespace kova
