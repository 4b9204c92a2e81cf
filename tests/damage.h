/// Damage on a large scale: the variants of a file that the sweeps go through.
#pragma once

#include "samples/builder.h"

#include <functional>

namespace kova::test {

using namespace harness;
using namespace samples;

/// Takes one variant and what it is, as "cut to 12".
using Visit = std::function<void(const Bytes &bytes, const std::string &what)>;

/// The file cut at every byte.
void everyCut(const File &file, const Visit &visit);

/// The file cut at every word from the end of its header on, the header told of it: the list that is cut is as short as
/// what is left of it, later lists are absent. So the load gets to that list, which then ends too early. What is cut
/// between two lists is "whole".
void everyCutOfAList(const File &file, const Visit &visit);

/// The file with every byte turned into some other values, and with every word.
void everyByte(const File &file, const Visit &visit);
void everyWord(const File &file, const Visit &visit);

} // namespace kova::test
