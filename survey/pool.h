/// Many files at a time.
#pragma once

#include "survey/audit.h"
#include "survey/progress.h"

#include <functional>

namespace kova::survey {

/// How a run of the workers is done.
struct Run {
  std::size_t workers = 1;
  Questions asked = {};
  bool show_progress = false;                      ///< on standard error
  std::function<void(FileResult &&result)> take{}; ///< called in any order, by several threads at once; must not throw
};

/// Audits the files, each once, and hands on their results.
void auditAll(std::vector<Input> inputs, const Run &run);

} // namespace kova::survey
