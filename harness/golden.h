/// Golden files: texts that a test makes, held against what is committed.
#pragma once

#include <string>

namespace kova::harness {

/// @return where two texts differ first: the number of the line, the last heading before it, which begins with "<" or
/// "==", and both lines; empty where they are equal.
std::string firstDifference(const std::string &found, const std::string &expected);

/// The same for a text and a file. With KOVA_RENEW in the environment the file is written anew first.
std::string differsFromGolden(const std::string &path, const std::string &found);

} // namespace kova::harness
