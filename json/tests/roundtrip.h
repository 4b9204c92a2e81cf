/// A file to a document and back, in memory. Shared by the tests and the fuzz target.
#pragma once

#include "harness/bytes.h"
#include "json/scene.h"

#include <string>

namespace kova::json {

using harness::Bytes;

std::string documentOf(std::span<const unsigned char> file, const Shape &shape = {});

/// A document that was read.
struct Back {
  std::string wrong; ///< what was wrong with it; empty if nothing was
  Bytes file;
};
Back fileOf(const std::string &document);

/// Turns a file into documents of all kinds, and each of them back.
/// @return what is not as it was, a line for each; empty where all is well
std::string brokenRoundTrips(std::span<const unsigned char> file);

/// Reads any text as a document. If it is one, its file has to come back, too. @return as above
std::string brokenDocument(std::string_view text);

} // namespace kova::json
