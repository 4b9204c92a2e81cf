#include "survey/json_line.h"

#include "common/text.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
#include <span>

namespace kova::survey {

namespace {

/// A value that is neither an object nor an array.
struct Scalar {
  enum Kind { null, boolean, number, text, other } kind = other; ///< number: one that is whole and not negative
  std::uint64_t value = 0;                                       ///< of a number or boolean
  const std::string *string = nullptr;                           ///< not owned
};

// --- Taking values --------------------------------------------------------------------------------------------------

template <class Enum> bool takeEnum(const Scalar &from, std::span<const char *const> names, Enum &value) {
  if (from.kind != Scalar::text)
    return false;
  const auto at = std::find(names.begin(), names.end(), *from.string);
  value = static_cast<Enum>(at - names.begin());
  return at != names.end();
}

/// The same where null stands for the first name.
template <class Enum> bool takeEnumOrNull(const Scalar &from, std::span<const char *const> names, Enum &value) {
  return from.kind == Scalar::null || (takeEnum(from, names, value) && value != Enum{});
}

bool takeText(const Scalar &from, std::string &text) {
  const std::optional<std::string> bytes = from.kind == Scalar::text ? unescaped(*from.string) : std::nullopt;
  text = bytes.value_or("");
  return bytes.has_value();
}

/// A path without NUL, which no file has: it would be two of a list.
bool takePath(const Scalar &from, std::string &path) {
  return takeText(from, path) && !path.empty() && path.find('\0') == path.npos;
}

bool takeShortText(const Scalar &from, std::string &text) { return takeText(from, text) && text.size() <= MOST_TEXT; }

bool takeTime(const Scalar &from, std::optional<FileTime> &time) {
  if (from.kind == Scalar::text)
    time = timeOf(*from.string);
  return from.kind == Scalar::null || time;
}

template <class Number> bool takeNumber(const Scalar &from, Number &number) {
  number = static_cast<Number>(from.value);
  return from.kind == Scalar::number && from.value <= std::numeric_limits<Number>::max();
}

template <class Number> bool takeNumberOrNull(const Scalar &from, std::optional<Number> &number) {
  if (from.kind == Scalar::null)
    return true;
  return takeNumber(from, number.emplace());
}

/// Letters and digits of ASCII; in an id no capitals, but single hyphens between them.
bool isName(std::string_view name, bool is_id) {
  const auto fits = [&](char c) {
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || (is_id ? c == '-' : c >= 'A' && c <= 'Z');
  };
  return !name.empty() && name.size() <= MOST_NAME && std::all_of(name.begin(), name.end(), fits) &&
         name.front() != '-' && name.back() != '-' && name.find("--") == name.npos;
}

bool takeName(const Scalar &from, bool is_id, std::string &name) {
  if (from.kind != Scalar::text || !isName(*from.string, is_id))
    return false;
  name = *from.string;
  return true;
}

// --- The members ----------------------------------------------------------------------------------------------------

struct Line {
  FileResult result = {};
  std::optional<std::uint64_t> repair_words = {};
};

template <class Of> struct Member {
  const char *name;
  bool (*take)(const Scalar &from, Of &of); ///< null for an object or an array
};

/// The last ones, from `repair` on, may be absent.
constexpr Member<Line> LINE[] = {
    {"path", [](const Scalar &from, Line &line) { return takePath(from, line.result.path); }},
    {"bytes", [](const Scalar &from, Line &line) { return takeNumber(from, line.result.bytes); }},
    {"modified", [](const Scalar &from, Line &line) { return takeTime(from, line.result.modified); }},
    {"version",
     [](const Scalar &from, Line &line) { return takeEnumOrNull(from, VERSION_NAMES, line.result.version); }},
    {"verdict", [](const Scalar &from, Line &line) { return takeEnum(from, VERDICT_NAMES, line.result.verdict); }},
    {"reason", [](const Scalar &from, Line &line) { return takeEnumOrNull(from, REASON_NAMES, line.result.reason); }},
    {"detail", [](const Scalar &from,
                  Line &line) { return from.kind == Scalar::null || takeShortText(from, line.result.detail); }},
    {"deep",
     [](const Scalar &from, Line &line) {
       line.result.deep = from.value != 0;
       return from.kind == Scalar::boolean;
     }},
    {"counts", nullptr},
    {"findings", nullptr},
    {"repair",
     [](const Scalar &from, Line &line) {
       line.result.repair = Repair::needless;
       return from.kind == Scalar::null ||
              (takeEnum(from, REPAIR_NAMES, line.result.repair) && line.result.repair > Repair::needless);
     }},
    {"repair_words", [](const Scalar &from, Line &line) { return takeNumberOrNull(from, line.repair_words); }},
    {"repair_undone",
     [](const Scalar &from, Line &line) { return takeNumber(from, line.result.repair_undone) && from.value != 0; }},
    {"repair_changes", nullptr}, // where there are damages, earlier reports have them in this
    {"repair_damages", nullptr},
};
constexpr unsigned LINE_NEEDS = (1U << (std::size(LINE) - 5)) - 1;

constexpr Member<KeptFinding> FINDING[] = {
    {"id", [](const Scalar &from, KeptFinding &finding) { return takeName(from, true, finding.id); }},
    {"stage", [](const Scalar &from, KeptFinding &finding) { return takeEnum(from, STAGE_NAMES, finding.stage); }},
    {"severity",
     [](const Scalar &from, KeptFinding &finding) { return takeEnum(from, SEVERITY_NAMES, finding.severity); }},
    {"list", [](const Scalar &from,
                KeptFinding &finding) { return from.kind == Scalar::null || takeName(from, false, finding.list); }},
    {"element", [](const Scalar &from, KeptFinding &finding) { return takeNumberOrNull(from, finding.element); }},
    {"offset", [](const Scalar &from, KeptFinding &finding) { return takeNumberOrNull(from, finding.offset); }},
    {"found", [](const Scalar &from, KeptFinding &finding) { return takeNumberOrNull(from, finding.found); }},
    {"expected", [](const Scalar &from, KeptFinding &finding) { return takeNumberOrNull(from, finding.expected); }},
    {"text", [](const Scalar &from, KeptFinding &finding) { return takeShortText(from, finding.text); }},
};
constexpr unsigned FINDING_NEEDS = (1U << std::size(FINDING)) - 1;

/// @return whether the members of a line agree with one another.
bool agrees(const Line &line, bool repair, bool repair_words) {
  const FileResult &result = line.result;
  const bool judged = result.verdict != Verdict::none;
  return judged == (result.reason == Reason::has_verdict) && (!judged || result.version != Version::unknown) &&
         repair == repair_words && mayHaveRepair(result) &&
         (result.repair == Repair::mended) == (line.repair_words.value_or(0) != 0) &&
         line.repair_words.value_or(1) != 0 && result.repair_undone <= line.repair_words.value_or(0) &&
         (result.repair > Repair::mended || result.repair_lines.size() <= line.repair_words.value_or(0)) &&
         findingCount(result) >= result.findings.size();
}

// --- The parser's events --------------------------------------------------------------------------------------------

/// Takes a line from the events of the parser. A function that returns false ends it. Members that are not known are
/// left out; one that stands there twice is wrong.
struct LineReader {
  enum class In { nothing, line, counts, findings, finding, changes };

  Line line = {};
  In in = In::nothing;
  bool ended = false;
  std::size_t ignored = 0;                        ///< depth in a member that is not known
  std::size_t member = 0;                         ///< the last key: a row of the table
  std::string id = {};                            ///< or in the counts, an id
  unsigned line_members = 0, finding_members = 0; ///< bits of those that were there

  template <class Of> bool takeMember(std::span<const Member<Of>> members, const Scalar &from, Of &of) const {
    return member == members.size() || (members[member].take != nullptr && members[member].take(from, of));
  }
  bool takeScalar(const Scalar &from) {
    if (ignored != 0)
      return true;
    switch (in) {
    case In::line:
      return takeMember<Line>(LINE, from, line);
    case In::finding:
      return takeMember<KeptFinding>(FINDING, from, line.result.findings.back());
    case In::counts:
      return isName(id, true) && takeNumber(from, line.result.counts[id]) && from.value != 0;
    case In::changes:
      return takeChange(from);
    default:
      return false;
    }
  }
  bool takeChange(const Scalar &from) {
    std::vector<std::string> &lines = line.result.repair_lines;
    return lines.size() < MOST_CHANGES && takeShortText(from, lines.emplace_back());
  }

  bool null() { return takeScalar({.kind = Scalar::null}); }
  bool boolean(bool value) { return takeScalar({.kind = Scalar::boolean, .value = value}); }
  bool number_unsigned(std::uint64_t value) { return takeScalar({.kind = Scalar::number, .value = value}); }
  bool number_integer(std::int64_t) { return takeScalar({}); } // a negative one
  bool number_float(double, const std::string &) { return takeScalar({}); }
  bool string(std::string &value) { return takeScalar({.kind = Scalar::text, .string = &value}); }
  bool binary(std::vector<std::uint8_t> &) { return false; }

  template <class Of> bool findMember(std::span<const Member<Of>> members, const std::string &name, unsigned &were) {
    member = 0;
    while (member < members.size() && name != members[member].name)
      ++member;
    const unsigned bit = 1U << member;
    const bool twice = member < members.size() && (were & bit) != 0;
    were |= bit;
    return !twice;
  }
  bool key(const std::string &name) {
    if (ignored != 0)
      return true;
    if (in == In::line)
      return findMember<Line>(LINE, name, line_members);
    if (in == In::finding)
      return findMember<KeptFinding>(FINDING, name, finding_members);
    id = name;
    return !line.result.counts.contains(id);
  }

  bool isAt(const char *name) const { return member < std::size(LINE) && std::string_view(LINE[member].name) == name; }
  bool isUnknown() const {
    return (in == In::line && member == std::size(LINE)) || (in == In::finding && member == std::size(FINDING));
  }
  bool start_object(std::size_t) {
    if (ignored != 0 || isUnknown())
      return ++ignored != 0;
    if (in == In::nothing && !ended)
      in = In::line;
    else if (in == In::line && isAt("counts"))
      in = In::counts;
    else if (in == In::findings && line.result.findings.size() < MOST_FINDINGS) {
      in = In::finding;
      finding_members = 0;
      line.result.findings.emplace_back();
    } else
      return false;
    return true;
  }
  bool end_object() {
    if (ignored != 0) {
      --ignored;
      return true;
    }
    if (in == In::finding) {
      in = In::findings;
      return (finding_members & FINDING_NEEDS) == FINDING_NEEDS;
    }
    ended = in == In::line;
    in = in == In::counts ? In::line : In::nothing;
    return true;
  }
  bool start_array(std::size_t) {
    if (ignored != 0 || isUnknown())
      return ++ignored != 0;
    if (in != In::line || !(isAt("findings") || isAt("repair_changes") || isAt("repair_damages")))
      return false;
    in = isAt("findings") ? In::findings : In::changes;
    return true;
  }
  bool end_array() {
    if (ignored != 0) {
      --ignored;
      return true;
    }
    in = In::line;
    return true;
  }
  bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) { return false; }
};

bool wasThere(unsigned members, const char *name) {
  for (std::size_t i = 0; i < std::size(LINE); ++i)
    if (std::string_view(LINE[i].name) == name)
      return (members >> i & 1) != 0;
  return false;
}

} // namespace

std::optional<FileResult> resultOf(std::string_view line) {
  LineReader reader;
  if (!nlohmann::json::sax_parse(line.begin(), line.end(), &reader) || !reader.ended ||
      (reader.line_members & LINE_NEEDS) != LINE_NEEDS)
    return std::nullopt;
  const bool whole =
      agrees(reader.line, wasThere(reader.line_members, "repair"), wasThere(reader.line_members, "repair_words"));
  reader.line.result.repair_words = reader.line.repair_words.value_or(0);
  return whole ? std::optional(std::move(reader.line.result)) : std::nullopt;
}

} // namespace kova::survey
