/// Records that hold nothing, for the place of others that are gone.
#pragma once

#include "mend/cut_record.h"

namespace kova::mend {

/// @return a record of a kind, with its tag, its number and its sizes, that holds nothing and links to nothing.
Bytes emptyRecord(const RecordLayout &kind, Word number, bool version_2);

} // namespace kova::mend
