/// An earlier survey, with which this one is compared.
#pragma once

#include "survey/path_lines.h"
#include "survey/walk.h"

#include <functional>
#include <mutex>

namespace kova::survey {

struct Baseline {
  std::string path = {}; ///< of the report; empty if nothing is compared
  Shard shard = {};      ///< the part of its files that is surveyed
  bool merged = false;   ///< the files are those of other reports, and need not be on this machine
  std::mutex mutex = {}; ///< of what follows, while there are several threads
  LineStore store = {};
  PathLines lines = {store};
};

/// Reads the report. @return what is wrong with it, for people; empty if nothing is, or no report was asked for.
std::string openBaseline(Baseline &baseline);

/// Says in a result what has become of the file. Several threads may call this at once.
///
/// A file is worse or better by its verdict, OK before ERR before none, or if that is the same, by its errors: worse if
/// there are more of any kind, else better if there are fewer. It has changed if its other findings or their places
/// are not those that they were. Warnings of the deep checks are compared only where both surveys made these.
void compare(Baseline &baseline, FileResult &result);

/// Hands on the files of the baseline that are not there any more: those that were not compared, and have no file on
/// this machine. @return whether the lines could be read
bool eachGone(Baseline &baseline, const std::function<void(FileResult &&result)> &take);

} // namespace kova::survey
