/// Carriage returns that a transfer of text took out before line feeds. What lies between two places that were found
/// again tells how many of them are missing there; where more line feeds than that stand between, the words decide
/// before which ones they stood: with a byte too few or too many before it, a word is hardly one that a file holds.
#pragma once

#include "mend/gaps.h"
#include "mend/transform.h"

namespace kova::mend {

/// @return whether the bytes that are missing can be carriage returns before line feeds: none is left in the file, and
/// each gap has at least as many line feeds as bytes are missing there.
bool canLackReturns(BytesView file, const std::vector<Gap> &gaps);

/// The ways are numbered by their value, from 1, if there are two; else it is 0.
extern const Transformation LOST_RETURNS;

/// @return the two ways to put them back if there are two, and both lead to a file that is accepted; else none.
std::vector<Undoing> eitherReturns(BytesView file, const std::function<bool(Bytes &)> &accepts);

} // namespace kova::mend
