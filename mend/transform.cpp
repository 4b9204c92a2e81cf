#include "mend/transform.h"

#include "format/versions.h"
#include "mend/returns.h"

#include <algorithm>
#include <array>

namespace kova::mend {

namespace {

/// How many transformations can lie one upon the other: a mail header, line ends and a tail, for instance.
constexpr std::size_t MOST_STEPS = 3;
/// How much can stand in front of a file.
constexpr std::uint64_t MOST_IN_FRONT = 64 << 10;

std::string counted(std::uint64_t number, const char *one, const char *more) {
  return std::to_string(number) + ' ' + (number == 1 ? one : more);
}

Bytes part(BytesView file, std::uint64_t begin, std::uint64_t end) {
  return Bytes(file.begin() + static_cast<std::ptrdiff_t>(begin), file.begin() + static_cast<std::ptrdiff_t>(end));
}

// --- The version word -----------------------------------------------------------------------------------------------

void findVersion(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways) {
  for (const VersionRow &version : VERSIONS)
    if (!isVersion(facts.version & 0xffff) && headerFacts({file}, version.number).isHeader())
      ways.push_back({.count = facts.version, .value = version.number});
}

Bytes setVersion(BytesView file, const Undoing &way) {
  Bytes bytes(file.begin(), file.end());
  for (std::size_t i = 0; i < sizeof(Word); ++i)
    bytes[i] = static_cast<unsigned char>(way.value >> (24 - 8 * i));
  return bytes;
}

std::string tellVersion(const Undoing &way) {
  return std::string("the version is gone: it is ") + versionRow(static_cast<Word>(way.value))->name +
         ", under which all agrees";
}

// --- The order of bytes ---------------------------------------------------------------------------------------------

struct Order {
  std::uint64_t mask; ///< as in `Ordered`
  const char *text;
};
constexpr Order ORDERS[] = {
    {3, "the four bytes of each word stood in reverse order: turned back"},
    {1, "the two bytes of each half of a word stood in reverse order: turned back"},
    {2, "the two halves of each word stood in reverse order: turned back"},
    {7, "the eight bytes of each pair of words stood in reverse order: turned back"},
    {4, "the two words of each pair stood in reverse order: turned back"},
};

void findOrder(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways) {
  if (facts.isHeader())
    return;
  for (const Order &order : ORDERS)
    if (headerFacts({file, order.mask}).isHeader())
      ways.push_back({.count = file.size(), .value = order.mask});
}

Bytes putInOrder(BytesView file, const Undoing &way) {
  const Ordered ordered = {file, way.value};
  Bytes bytes(file.size());
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = file[static_cast<std::size_t>(ordered.place(i))];
  return bytes;
}

std::string tellOrder(const Undoing &way) {
  return std::find_if(std::begin(ORDERS), std::end(ORDERS), [&](const Order &order) { return order.mask == way.value; })
      ->text;
}

// --- What stands around ---------------------------------------------------------------------------------------------

void findBehind(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways) {
  if (!facts.isHeader())
    return;
  for (const std::uint64_t end : {facts.sum, facts.stated})
    if (end >= FILE_HEADER_BYTES && end < file.size() && (ways.empty() || ways.back().at != end))
      ways.push_back({.at = end, .count = file.size() - end});
}

Bytes leaveOutBehind(BytesView file, const Undoing &way) { return part(file, 0, way.at); }

std::string tellBehind(const Undoing &way) {
  return counted(way.count, "byte", "bytes") + " behind the last list: left out";
}

/// @return the next place from `at` on where a version could stand; `end` if there is none before.
std::uint64_t nextVersion(BytesView file, std::uint64_t at, std::uint64_t end) {
  const auto last =
      static_cast<std::size_t>(std::min<std::uint64_t>(end, file.size() - std::min<std::size_t>(file.size(), 3)));
  for (auto i = static_cast<std::size_t>(at); i < last; ++i)
    if (file[i] == 0 && file[i + 1] == 0 && file[i + 3] == 0 && (file[i + 2] == 1 || file[i + 2] == 2))
      return i;
  return end;
}

void findFront(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways) {
  if (facts.isHeader())
    return;
  const std::uint64_t end = std::min<std::uint64_t>(file.size(), MOST_IN_FRONT + 1);
  int most = ENOUGH_FACTS;
  for (std::uint64_t at = nextVersion(file, 1, end); at < end; at = nextVersion(file, at + 1, end)) {
    const HeaderFacts behind = headerFacts({file.subspan(static_cast<std::size_t>(at))});
    if (behind.holding < most)
      continue;
    if (behind.holding > most)
      ways.clear();
    most = behind.holding;
    ways.push_back({.count = at});
    if (ways.size() == 4) // all but one of them are chance
      return;
  }
}

Bytes leaveOutFront(BytesView file, const Undoing &way) { return part(file, way.count, file.size()); }

std::string tellFront(const Undoing &way) {
  return counted(way.count, "byte", "bytes") + " in front of the header: left out";
}

// --- Transfers of text ----------------------------------------------------------------------------------------------

/// Each line feed has a carriage return before it.
void findLineEnds(BytesView file, const HeaderFacts &, std::vector<Undoing> &ways) {
  Undoing way;
  for (std::size_t i = 0; i < file.size(); ++i) {
    if (file[i] != '\n')
      continue;
    if (i == 0 || file[i - 1] != '\r')
      return;
    way.at = way.count++ == 0 ? i - 1 : way.at;
  }
  if (way.count != 0)
    ways.push_back(way);
}

Bytes takeReturns(BytesView file, const Undoing &way) {
  Bytes bytes;
  bytes.reserve(file.size() - static_cast<std::size_t>(way.count));
  for (std::size_t i = 0; i < file.size(); ++i)
    if (i + 1 == file.size() || file[i + 1] != '\n')
      bytes.push_back(file[i]);
  return bytes;
}

std::string tellLineEnds(const Undoing &way) {
  return "carriage returns put in before line feeds: " + std::to_string(way.count) + " removed";
}

/// The characters that some systems have for the bytes from 80 to 9f, instead of control characters.
struct Character {
  std::uint32_t code;
  unsigned char byte;
};
constexpr Character CHARACTERS[] = {
    {0x20ac, 0x80}, {0x201a, 0x82}, {0x0192, 0x83}, {0x201e, 0x84}, {0x2026, 0x85}, {0x2020, 0x86}, {0x2021, 0x87},
    {0x02c6, 0x88}, {0x2030, 0x89}, {0x0160, 0x8a}, {0x2039, 0x8b}, {0x0152, 0x8c}, {0x017d, 0x8e}, {0x2018, 0x91},
    {0x2019, 0x92}, {0x201c, 0x93}, {0x201d, 0x94}, {0x2022, 0x95}, {0x2013, 0x96}, {0x2014, 0x97}, {0x02dc, 0x98},
    {0x2122, 0x99}, {0x0161, 0x9a}, {0x203a, 0x9b}, {0x0153, 0x9c}, {0x017e, 0x9e}, {0x0178, 0x9f},
};

/// A byte as it was before it was written as UTF-8, and how many bytes were written; none if it was no such byte.
struct Decoded {
  std::size_t bytes = 0;
  unsigned char byte = 0;
};

Decoded decode(BytesView file, std::size_t at) {
  const auto continued = [&](std::size_t i) { return i < file.size() && (file[i] & 0xc0) == 0x80; };
  const unsigned char first = file[at];
  if (first < 0x80)
    return {1, first};
  if (!continued(at + 1))
    return {};
  std::uint32_t code = (first & 0x1fU) << 6 | (file[at + 1] & 0x3fU);
  if ((first & 0xe0) == 0xc0 && code >= 0x80 && code <= 0xff)
    return {2, static_cast<unsigned char>(code)};
  std::size_t length = 2;
  if ((first & 0xf0) == 0xe0 && continued(at + 2)) {
    code = (first & 0x0fU) << 12 | (file[at + 1] & 0x3fU) << 6 | (file[at + 2] & 0x3fU);
    length = 3;
  } else if ((first & 0xe0) != 0xc0) {
    return {};
  }
  const auto *const found = std::find_if(std::begin(CHARACTERS), std::end(CHARACTERS),
                                         [&](const Character &character) { return character.code == code; });
  return found != std::end(CHARACTERS) ? Decoded{length, found->byte} : Decoded{};
}

/// What such programs write in front of a text.
constexpr std::array<unsigned char, 3> BYTE_ORDER_MARK = {0xef, 0xbb, 0xbf};

std::size_t markBytes(BytesView file) {
  const BytesView begins = file.first(std::min(file.size(), BYTE_ORDER_MARK.size()));
  return std::equal(begins.begin(), begins.end(), BYTE_ORDER_MARK.begin(), BYTE_ORDER_MARK.end()) ? begins.size() : 0;
}

void findUtf8(BytesView file, const HeaderFacts &, std::vector<Undoing> &ways) {
  Undoing way;
  for (std::size_t i = markBytes(file); i < file.size();) {
    const Decoded decoded = decode(file, i);
    if (decoded.bytes == 0)
      return;
    if (decoded.bytes > 1)
      way.at = way.count++ == 0 ? i : way.at;
    i += decoded.bytes;
  }
  if (way.count != 0)
    ways.push_back(way);
}

Bytes decodeUtf8(BytesView file, const Undoing &) {
  Bytes bytes;
  bytes.reserve(file.size());
  for (std::size_t i = markBytes(file); i < file.size();) {
    const Decoded decoded = decode(file, i);
    bytes.push_back(decoded.byte);
    i += decoded.bytes;
  }
  return bytes;
}

std::string tellUtf8(const Undoing &way) {
  return "bytes from 80 to ff taken for text and written as UTF-8: " + std::to_string(way.count) + " turned back";
}

// --- A block that is there twice ------------------------------------------------------------------------------------

/// Fewer bytes can be equal by chance.
constexpr std::uint64_t LEAST_DOUBLED = 16;
/// More places at which so many bytes are repeated are not looked at.
constexpr std::size_t MOST_DOUBLED = 8;

/// The file is too long by what stands twice in it, one behind the other.
void findDoubled(BytesView file, const HeaderFacts &facts, std::vector<Undoing> &ways) {
  if (!facts.isHeader() || facts.sum != facts.stated || file.size() < facts.sum + LEAST_DOUBLED)
    return;
  const std::uint64_t length = file.size() - facts.sum;
  std::uint64_t equal = 0; // bytes in a row that stand `length` bytes further, too
  for (std::size_t i = 0; i + length < file.size() && ways.size() < MOST_DOUBLED; ++i) {
    equal = file[i] == file[i + static_cast<std::size_t>(length)] ? equal + 1 : 0;
    if (equal == length) // whichever of those in the row is taken out, the rest is the same
      ways.push_back({.at = i + 1 - length, .count = length});
  }
}

Bytes takeOut(BytesView file, const Undoing &way) {
  Bytes bytes = part(file, 0, way.at);
  const BytesView rest = file.subspan(static_cast<std::size_t>(way.at + way.count));
  bytes.insert(bytes.end(), rest.begin(), rest.end());
  return bytes;
}

std::string tellDoubled(const Undoing &way) {
  return "a block of " + counted(way.count, "byte", "bytes") + " stood twice, one behind the other: taken out once";
}

// --- All of them ----------------------------------------------------------------------------------------------------

constexpr Transformation VERSION = {"version", findVersion, setVersion, tellVersion};
constexpr Transformation ORDER = {"byte-order", findOrder, putInOrder, tellOrder};
constexpr Transformation DOUBLED = {"doubled", findDoubled, takeOut, tellDoubled};
constexpr Transformation BEHIND = {"behind", findBehind, leaveOutBehind, tellBehind};
constexpr Transformation FRONT = {"front", findFront, leaveOutFront, tellFront};
constexpr Transformation LINE_ENDS = {"line-ends", findLineEnds, takeReturns, tellLineEnds};
constexpr Transformation UTF_8 = {"utf-8", findUtf8, decodeUtf8, tellUtf8};

/// The cheapest first.
constexpr const Transformation *TRANSFORMATIONS[] = {&VERSION, &ORDER,     &DOUBLED, &BEHIND,
                                                     &FRONT,   &LINE_ENDS, &UTF_8,   &LOST_RETURNS};

/// A search for what a file was before.
struct Search {
  const Accepts &accepts;
  std::vector<Undoing> steps = {}; ///< to the file that is looked at
  std::vector<Undoing> found = {};
  std::size_t original = 0; ///< the hash of the file found
  bool several = false;
};

/// @return whether the steps differ in the version that they set, and in nothing else.
bool differInVersion(const std::vector<Undoing> &a, const std::vector<Undoing> &b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](Undoing one, Undoing other) {
    if (setsVersion(one))
      one.value = other.value;
    return one == other;
  });
}

/// Tries a file that results, which is not needed any more.
void tryFile(Bytes &file, const HeaderFacts &facts, Search &search) {
  if (!facts.isHeader())
    return;
  const std::size_t hash = std::hash<std::string_view>()({reinterpret_cast<const char *>(file.data()), file.size()});
  const bool is_judged = std::any_of(search.steps.begin(), search.steps.end(),
                                     [](const Undoing &step) { return step.transformation->is_judged; });
  if (!search.accepts(file, facts, is_judged))
    return;
  // Without version-2 lists, what is right under 2.0 is so under 1.0, too, which is tried before. The reverse is not
  // so: 2.0 asks for more.
  if (search.found.empty() || differInVersion(search.found, search.steps)) {
    search.found = search.steps;
    search.original = hash;
  } else {
    search.several |= hash != search.original;
  }
}

void searchFrom(BytesView file, Search &search) {
  const HeaderFacts facts = headerFacts({file});
  for (const Transformation *const transformation : TRANSFORMATIONS) {
    std::vector<Undoing> ways;
    transformation->find(file, facts, ways);
    for (Undoing &way : ways) {
      way.transformation = transformation;
      Bytes before = undo(file, way);
      const HeaderFacts before_facts = headerFacts({before});
      search.steps.push_back(way);
      if (!before_facts.isWhole() && search.steps.size() < MOST_STEPS)
        searchFrom(before, search);
      tryFile(before, before_facts, search);
      search.steps.pop_back();
    }
  }
}

// --- Several scenes -------------------------------------------------------------------------------------------------

Bytes leaveOthersOut(BytesView file, const Undoing &way) { return part(file, way.at, way.at + way.count); }

std::string tellPart(const Undoing &way) {
  return "scene " + std::to_string(way.value) + " of several: its " + counted(way.count, "byte", "bytes") +
         " are taken";
}

constexpr Transformation PART = {"part", nullptr, leaveOthersOut, tellPart};

} // namespace

Bytes undo(BytesView file, const Undoing &way) { return way.transformation->undo(file, way); }

bool setsVersion(const Undoing &way) { return way.transformation->undo == setVersion; }

std::vector<Undoing> findOriginal(BytesView file, const Accepts &accepts) {
  Search search = {.accepts = accepts};
  searchFrom(file, search);
  return search.several ? std::vector<Undoing>() : std::move(search.found);
}

std::vector<Part> findParts(BytesView file) {
  std::vector<Part> parts;
  for (std::uint64_t at = nextVersion(file, 0, file.size()); at < file.size();) {
    const HeaderFacts facts = headerFacts({file.subspan(static_cast<std::size_t>(at))});
    std::uint64_t next = at + 1;
    if (facts.holding >= HEADER_FACTS - 1) {
      if (!parts.empty())
        parts.back().end = std::min(parts.back().end, at);
      const bool knows_end = facts.sum == facts.stated;
      parts.push_back({at, knows_end ? std::min<std::uint64_t>(at + facts.sum, file.size()) : file.size()});
      next = knows_end ? parts.back().end : at + FILE_HEADER_BYTES;
    }
    at = nextVersion(file, next, file.size());
  }
  return parts;
}

Undoing takePart(const std::vector<Part> &parts, std::size_t number) {
  const Part &taken = parts.at(number - 1);
  return {.transformation = &PART, .at = taken.begin, .count = taken.end - taken.begin, .value = number};
}

} // namespace kova::mend
