/// Damage as it happens to whole files: by transfers, by other machines, and by what they were stored on.
#pragma once

#include "samples/builder.h"

#include <random>
#include <span>

namespace kova::samples {

/// A damaged file, and the part of the original that is not in it any more, from byte to byte.
struct Hurt {
  Bytes bytes;
  std::size_t hole_begin = 0;
  std::size_t hole_end = 0;
};

/// What can be made of a file with such damage.
enum class Remedy {
  undone,   ///< the original, to the byte
  salvaged, ///< a file with every element that lies outside the hole
  told      ///< it can only be said what happened
};

struct DamageKind {
  const char *name;
  Remedy remedy;
  int percent; ///< of the files that are refused then, at least so many
  /// Damages a file, which is longer than its header. The same random numbers give the same bytes everywhere.
  Hurt (*inflict)(const Bytes &file, std::mt19937 &random);
};

/// All kinds, those that can be undone first.
std::span<const DamageKind> damageKinds();

/// @return a small scene with such damage, the same bytes on every call.
Bytes hurtSample(const DamageKind &kind);

} // namespace kova::samples
