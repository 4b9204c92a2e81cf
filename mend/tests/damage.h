/// Damage by structure: what a scene file is like when programs, disks and people have been at its words.
#pragma once

#include "samples/builder.h"

#include <random>

namespace kova::mend {

/// @return whether the lengths or the order of things depend on the word.
bool isStructure(const samples::NamedWord &word);

/// The files of the builder in which nothing is wrong.
const std::vector<samples::Sample> &madeFiles();

/// Cuts a file at a place, and makes all sizes around that place and of the file agree that it ends there.
void endAt(samples::File &file, std::size_t place);

/// One of the made files: counts, sizes, tags and indices set to other values; cut, often inside a maker block, and
/// often so that its sizes agree with that. The same file for the same number.
harness::Bytes damagedFile(std::uint32_t seed);

} // namespace kova::mend
