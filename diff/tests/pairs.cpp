#include "diff/tests/pairs.h"

#include "diff/print.h"
#include "harness/scratch.h"

#include <algorithm>

namespace kova::diff {

namespace {

bool isRenumbered(const Side &a, const Side &b, const Rules &rules) {
  if (!a.is_scene || !b.is_scene)
    return false;
  const Matching matching = matchElements(a, b, rules);
  return !std::all_of(matching.begin(), matching.end(), [](const Space &space) { return space.is_identity; });
}

} // namespace

SeenAll differencesOf(std::span<const unsigned char> a, std::span<const unsigned char> b, const Rules &rules,
                      bool *is_renumbered) {
  const harness::ScratchFile file_a(a), file_b(b);
  const auto side_a = std::make_unique<Side>(), side_b = std::make_unique<Side>();
  side_a->source = openSource(file_a.path);
  side_b->source = openSource(file_b.path);
  loadSide(*side_a);
  loadSide(*side_b);
  loadLike(*side_a, *side_b);
  loadLike(*side_b, *side_a);
  SeenAll all;
  const Listener listener = {[&](const Place &place, const std::vector<Change> &changes) {
                               for (const Change &change : changes)
                                 all.push_back({place, change});
                             },
                             [](const char *, const char *, const char *) {}};
  compareSides(*side_a, *side_b, rules, listener);
  if (is_renumbered != nullptr)
    *is_renumbered = isRenumbered(*side_a, *side_b, rules);
  return all;
}

Seen mirrored(Seen seen) {
  std::swap(seen.place.a, seen.place.b);
  std::swap(seen.change.old_value, seen.change.new_value);
  std::swap(seen.change.counts[0], seen.change.counts[1]);
  if (seen.change.what == What::only_a || seen.change.what == What::only_b)
    seen.change.what = seen.change.what == What::only_a ? What::only_b : What::only_a;
  return seen;
}

std::string linesOf(const SeenAll &all) {
  std::vector<std::string> lines;
  for (const Seen &seen : all) {
    Printer printer;
    take(printer, seen.place, {seen.change});
    finish(printer);
    lines.push_back(printer.text);
  }
  std::sort(lines.begin(), lines.end());
  std::string text;
  for (const std::string &line : lines)
    text += line;
  return text;
}

std::string brokenPair(std::span<const unsigned char> a, std::span<const unsigned char> b) {
  std::string broken;
  const bool are_same = std::equal(a.begin(), a.end(), b.begin(), b.end());
  for (const auto &[file, name] : {std::pair{a, "A"}, std::pair{b, "B"}})
    if (const SeenAll all = differencesOf(file, file); !all.empty())
      broken += std::string(name) + " differs from itself:\n" + linesOf(all);
  bool is_renumbered = false;
  const SeenAll forth = differencesOf(a, b, {}, &is_renumbered), back = differencesOf(b, a);
  if (forth.empty() != back.empty())
    broken += "A against B:\n" + linesOf(forth) + "B against A:\n" + linesOf(back);
  if (forth.empty() && !are_same && !is_renumbered)
    broken += "no difference is found\n";
  Printer json{.look = Look::json}, unified{.look = Look::unified};
  for (const Seen &seen : forth) {
    take(json, seen.place, {seen.change});
    take(unified, seen.place, {seen.change});
  }
  finish(json);
  finish(unified);
  for (const std::string &text : {json.text, unified.text})
    if (std::any_of(text.begin(), text.end(), [](unsigned char byte) { return byte < ' ' && byte != '\n'; }))
      broken += "control bytes are printed\n";
  return broken;
}

} // namespace kova::diff
