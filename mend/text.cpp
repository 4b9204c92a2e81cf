#include "mend/mend.h"

#include "mend/transform.h"

#include <cstdio>

namespace kova::mend {

namespace {

/// Whether a word is read best in hexadecimal. All others are sizes, counts and indices.
bool isTag(std::string_view field) {
  field = field.substr(0, field.find('['));
  return field.ends_with("tag") || field == "version";
}

std::string wordText(Word word, bool tag) {
  char text[16];
  std::snprintf(text, sizeof text, tag ? "0x%08x" : "%d", word);
  return text;
}

} // namespace

std::string offsetText(std::uint64_t offset) {
  char text[24];
  std::snprintf(text, sizeof text, "0x%08llx", static_cast<unsigned long long>(offset));
  return text;
}

std::string placeText(const char *list, const std::optional<Word> &element) {
  return element ? list + ('[' + std::to_string(*element) + ']') : list;
}

std::string textOf(const Change &change) {
  const bool tag = isTag(change.field);
  return offsetText(change.offset) + ' ' + placeText(change.list, change.element) + ' ' + change.field + ": " +
         wordText(change.old_value, tag) + " -> " + wordText(change.new_value, tag) + " (" + change.why + ')';
}

std::string textOf(const Undoing &undone) { return undone.transformation->tell(undone); }

} // namespace kova::mend
