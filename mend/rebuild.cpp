#include "mend/rebuild.h"

#include "mend/list_view.h"
#include "mend/locate.h"
#include "mend/reading.h"

#include <algorithm>

namespace kova::mend {

namespace {

/// Fewer lists in a row may be chance.
constexpr std::size_t FEWEST_LISTS = 3;
/// If more is gone than that, or than half of the file, what is left is hardly worth a header.
constexpr std::uint64_t MOST_GONE = 64 << 10;
/// How many records may be gone over for each byte of the file.
constexpr std::uint64_t GO_OVER = 4;

/// What is left of the lists.
struct Chain {
  std::array<Word, LIST_NUM> sizes = {}; ///< of the lists of the chain, and of that of which elements are left
  std::size_t first = LIST_NUM;          ///< list of the chain
  std::uint64_t begin = 0;               ///< of what is left
  bool has_version_2_lists = false;
};

class Rebuilder {
public:
  explicit Rebuilder(BytesView bytes)
      : copy(bytes.begin(), bytes.end()), file(copy), steps_left(GO_OVER * copy.size()) {}

  std::optional<Rebuilt> rebuild();

private:
  bool beginsList(std::size_t list, std::uint64_t at) const;
  bool followChain(std::uint64_t at);
  bool findChain();
  std::uint64_t endOfElements(const RecordLayout &kind, std::uint64_t at, Word number);
  bool findElements();
  Rebuilt makeFile(Word version) const;
  bool is20(const Rebuilt &made) const;

  Bytes copy;
  FileBytes file;
  std::uint64_t steps_left;
  Chain chain = {};
};

// --- Lists ----------------------------------------------------------------------------------------------------------

Word headBytes(std::size_t list) { return LAYOUT[list].head_bytes; }

bool Rebuilder::beginsList(std::size_t list, std::uint64_t at) const {
  const Word size = file[at + list_at::SIZE];
  return isListTag(list, file[at]) && size >= headBytes(list) && size <= file.size() - at;
}

/// Follows the lists from one on. @return whether the last one ends with the file.
bool Rebuilder::followChain(std::uint64_t at) {
  Chain found = {.begin = at};
  std::size_t number = 0;
  for (std::size_t list = 0; list < LIST_NUM && at < file.size(); ++list) {
    if (!beginsList(list, at))
      continue;
    found.first = std::min(found.first, list);
    found.sizes[list] = file[at + list_at::SIZE];
    found.has_version_2_lists |= list >= VERSION_1_LIST_NUM;
    at += file[at + list_at::SIZE];
    ++number;
  }
  if (at != file.size() || number < FEWEST_LISTS)
    return false;
  chain = found;
  return true;
}

bool Rebuilder::findChain() {
  constexpr Word NOT_IN_TAGS = [] {
    Word bits = 0;
    for (const ListRow &list : LISTS)
      bits |= list.tag;
    return ~bits;
  }();
  for (std::uint64_t at = 0; file.holds(at); ++at)
    if (const Word tag = file[at]; tag != 0 && (tag & NOT_IN_TAGS) == 0 && followChain(at))
      return true;
  return false;
}

// --- Elements of a list whose head is gone --------------------------------------------------------------------------

/// @return where the elements end that begin at a place, one with each number; 0 where one is not sound.
std::uint64_t Rebuilder::endOfElements(const RecordLayout &kind, std::uint64_t at, Word number) {
  while (at < chain.begin && isElementTag(kind, file[at]) && file[at + kind.index_at] == number++) {
    Walk walk(file, hasVersion2(file.version()), nullptr, steps_left);
    const std::uint64_t end = walk.over({&kind, at});
    if (walk.broken || end > chain.begin || (file[at + kind.size_at] & ~Word{3}) != end - at)
      return 0;
    at = end;
  }
  return at;
}

/// Looks for the elements between what is gone and the chain. They belong to one list in front of it, whose blocks may
/// stand behind them.
bool Rebuilder::findElements() {
  for (std::uint64_t at = 0; at < std::min(chain.begin, MOST_GONE) && steps_left != 0; ++at)
    for (std::size_t list = 1; list < chain.first; ++list)
      for (const RecordLayout *const kind : {LAYOUT[list].first, LAYOUT[list].second}) {
        if (kind == nullptr || !isElementTag(*kind, file[at]))
          continue;
        std::uint64_t end = endOfElements(*kind, at, file[at + kind->index_at]);
        if (end != 0 && end < chain.begin && kind == LAYOUT[list].first && LAYOUT[list].second != nullptr)
          end = endOfElements(*LAYOUT[list].second, end, 0);
        if (end == 0)
          continue;
        chain.sizes[list] = headBytes(list) + static_cast<Word>(chain.begin - at);
        chain.first = list;
        chain.begin = at;
        return true;
      }
  return false;
}

// --- The header -----------------------------------------------------------------------------------------------------

/// Makes the file with a header of a version. Lists in front of what is left get room for their heads alone.
Rebuilt Rebuilder::makeFile(Word version) const {
  const bool has_scene = chain.first == 0;
  std::uint64_t header = FILE_HEADER_BYTES + (hasVersion2(version) ? std::uint64_t{VERSION_2_SIZES_BYTES} : 0);
  if (has_scene && chain.begin >= FILE_HEADER_BYTES && (!chain.has_version_2_lists || chain.begin >= header))
    header = chain.begin; // its blocks are there
  std::array<Word, LIST_NUM> sizes = chain.sizes;
  std::uint64_t room = header;
  for (std::size_t list = 0; list < chain.first; ++list)
    room += sizes[list] = headBytes(list);
  const bool lacks_head = !has_scene && !beginsList(chain.first, chain.begin);
  room += lacks_head ? headBytes(chain.first) : 0;
  Rebuilt made = {.gone = chain.begin, .first = chain.first, .moved = static_cast<std::int64_t>(room - chain.begin)};
  if (header == chain.begin)
    made.bytes.assign(copy.begin(), copy.begin() + static_cast<std::ptrdiff_t>(header));
  made.bytes.resize(static_cast<std::size_t>(room));
  const auto left = file.between(chain.begin, file.size());
  made.bytes.insert(made.bytes.end(), left.begin(), left.end());
  FileBytes written(made.bytes);
  written.set(0, version);
  written.set(header_at::SIZE, static_cast<Word>(made.bytes.size()));
  written.set(header_at::TAG, 0);
  written.set(header_at::HEADER_SIZE, static_cast<Word>(header));
  setBlockSizes(written, header_at::BLOCKS, {header - FILE_HEADER_BYTES, 0});
  for (std::size_t list = 0; list < (hasVersion2Lists(written) ? LIST_NUM : VERSION_1_LIST_NUM); ++list)
    written.set(LAYOUT[list].header_word_at, sizes[list]);
  return made;
}

/// @return whether all records with maker blocks are as those of version 2.0, and there are such.
bool Rebuilder::is20(const Rebuilt &made) const {
  Bytes bytes = made.bytes;
  bool some = false;
  for (const FoundList &list : locate(FileBytes(bytes)).lists)
    for (const std::size_t second : {std::size_t{0}, std::size_t{1}})
      for (const FoundElement &element : list.elements[second]) {
        if (!element.isFound() || !hasMaker(elementLayout(list.list, second != 0)))
          continue;
        if (!element.whole)
          return false;
        some = true;
      }
  return some;
}

std::optional<Rebuilt> Rebuilder::rebuild() {
  if (!findChain())
    return std::nullopt;
  if (chain.first != 0)
    findElements();
  if (chain.begin > std::min(MOST_GONE, file.size() / 2))
    return std::nullopt;
  const Word known = file[0];
  if (!chain.has_version_2_lists && known == VERSION_1)
    return makeFile(VERSION_1);
  Rebuilt made = makeFile(VERSION_2);
  return chain.has_version_2_lists || hasVersion2(known) || is20(made) ? std::move(made) : makeFile(VERSION_1);
}

} // namespace

std::optional<Rebuilt> rebuildHeader(BytesView file) { return Rebuilder(file).rebuild(); }

} // namespace kova::mend
