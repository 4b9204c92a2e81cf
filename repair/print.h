/// What kbrepair prints: a line for each transformation that was undone, each changed word and each loss, and a last
/// line with the outcome; as text, or as a JSON object each.
#pragma once

#include "mend/diagnose.h"

namespace kova::repair {

using mend::Change;
using mend::Loss;
using mend::Outcome;
using mend::Result;
using mend::Undoing;

enum class Form { text, json };

/// @param reading the number of the reading that the word is changed in, from 1, if there are two; else 0
/// @return the line, with its line break, as the next two
std::string changeLine(const Change &change, Form form, int reading = 0);

/// @return what was undone of what was done to the whole file. @param reading as above
std::string undoneLine(const Undoing &undone, Form form, int reading = 0);

std::string lossLine(const Loss &loss, Form form);

/// @return what was found out about a file: a line for each damage, and one with what can be done.
std::string diagnosisLines(const mend::Diagnosis &diagnosis, const std::string &input, Form form);

/// What is known at the end.
struct Ending {
  const Result &result;
  std::string input;
  std::string output = {}; ///< empty if it was not written
};

std::string endingLine(const Ending &ending, Form form);

} // namespace kova::repair
