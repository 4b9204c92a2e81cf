/// The name by which parts of the survey still know a `FileResult`.
#pragma once

#include "survey/file_result.h"

namespace kova::survey {

using Record = FileResult;

} // namespace kova::survey
