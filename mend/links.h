/// Links into what a salvage has taken out of a file.
#pragma once

#include "mend/cut_record.h"
#include "mend/mend.h"
#include "mend/reading.h"

namespace kova::mend {

/// Where the lists of a file are; those that are not there end at 0.
using Spans = std::array<Decision, LIST_NUM>;

/// Links the spans of the lists that there are, each to the one before it. @return the last one; null if there is none.
const Decision *linkSpans(Spans &spans);

/// An element that is there in part, and how much its table held.
struct CutElement {
  To to = To::nothing;
  Word number = 0;
  Remaining entries = {};
};

/// What is gone, or in part.
struct Gone {
  std::array<Remaining, TO_NUM> left = {}; ///< by what links lead to
  std::vector<CutElement> cut = {};
  /// Of lists of which elements were left out: the number that each element has in their place; NO_LINK: it was left
  /// out.
  std::array<std::vector<Word>, TO_NUM> numbers = {};

  Remaining &operator[](To to) { return left[static_cast<std::size_t>(to)]; }
};

/// @return what a link leads to that leads to elements of that kind.
To toKind(std::size_t list, bool second);

/// Sets the links into what is gone to none, and tells of them. Those to elements with another number are renumbered.
/// @return false where that cannot be done: a link may lead into several lists, of which one has lost elements.
bool cutLinks(FileBytes &file, const Spans &spans, Gone gone, std::vector<Loss> &losses);

} // namespace kova::mend
