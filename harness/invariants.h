/// What holds of every model, whatever file it came from.
#pragma once

#include "kova/kova.h"

namespace kova::harness {

/// Walks a whole model. Held must never be above a count; an array is held whole or not at all; only the last element
/// of a list, where a failed read ended, may lack something; blocks are never longer than their sizes say; records of
/// zeros are counted only where the form stores none.
/// @return a line for every violation: empty where all is well.
std::string brokenInvariants(const Kis &kis);

} // namespace kova::harness
