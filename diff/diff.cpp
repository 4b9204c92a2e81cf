#include "diff/diff.h"

#include "common/text.h"
#include "diff/compare.h"

namespace kova::diff {

namespace {

Status compareFiles(const Rules &rules, Printer &printer) {
  const auto a = std::make_unique<Side>(), b = std::make_unique<Side>();
  a->source = openSource(printer.path_a);
  b->source = openSource(printer.path_b);
  if (sameBytes(a->source, b->source))
    return SAME;
  loadSide(*a);
  loadSide(*b);
  loadLike(*a, *b);
  loadLike(*b, *a);
  if (printer.look == Look::unified)
    printer.text =
        "--- " + showOf(printer.style)(printer.path_a) + "\n+++ " + showOf(printer.style)(printer.path_b) + '\n';
  const Listener listener = {
      [&](const Place &place, const std::vector<Change> &changes) { take(printer, place, changes); },
      [&](const char *list, const char *in_a, const char *in_b) { takeDamage(printer, list, in_a, in_b); },
      printer.look == Look::unified};
  const bool differ = compareSides(*a, *b, rules, listener);
  finish(printer);
  if (!differ)
    printer.text.clear();
  return differ ? DIFFERENT : SAME;
}

} // namespace

Status diffFiles(const Rules &rules, Printer &printer, std::string &reason) {
  try {
    return compareFiles(rules, printer);
  } catch (const Trouble &trouble) {
    reason = printable(trouble.path) + ": " + trouble.reason;
  } catch (const std::exception &) {
    reason = printable(printer.path_a) + ": not enough memory";
  }
  return TROUBLE;
}

} // namespace kova::diff
