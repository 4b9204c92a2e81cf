#include "reader/findings.h"

#include <charconv>
#include <cstring>
#include <exception>
#include <utility>

namespace kova {

namespace {

/// The one thing that is not handed on by argument: who receives the findings of this thread.
thread_local FindingReceiver *innermost_receiver = nullptr;

/// Collects pieces of text for a stream, so that a short message is one write.
struct StreamText {
  std::FILE *stream;
  int ok = 1;
  std::size_t held = 0;
  char bytes[1024];

  explicit StreamText(std::FILE *to) : stream(to) {}

  void flush() {
    ok *= std::fwrite(bytes, 1, held, stream) == held;
    held = 0;
  }

  void append(std::string_view piece) {
    while (!piece.empty()) {
      if (held == sizeof bytes)
        flush();
      const std::size_t taken = std::min(piece.size(), sizeof bytes - held);
      std::memcpy(bytes + held, piece.data(), taken);
      held += taken;
      piece.remove_prefix(taken);
    }
  }
};

template <class Text> void appendSigned(Text &text, Word word) {
  char digits[12];
  text.append(std::string_view(
      digits, static_cast<std::size_t>(
                  std::to_chars(std::begin(digits), std::end(digits), static_cast<Index>(word)).ptr - digits)));
}

/// @param conversion "%d", "%8x" or "%0#10x"
template <class Text> void appendNumber(Text &text, std::string_view conversion, Word word) {
  if (conversion == "%d")
    return appendSigned(text, word);
  char digits[12];
  std::snprintf(digits, sizeof digits, conversion == "%8x" ? "%8x" : "%0#10x", word);
  text.append(std::string_view(digits));
}

/// @param conversion "%s" or "%-17s"
template <class Text> void appendLabel(Text &text, std::string_view conversion, const Label &label) {
  const std::string_view name = label.name;
  text.append(name);
  if (label.number) {
    text.append(std::string_view("["));
    appendSigned(text, *label.number);
    text.append(std::string_view("]"));
    text.append(std::string_view(label.what));
  }
  constexpr std::string_view BLANKS = "                 ";
  if (conversion == "%-17s" && name.size() < BLANKS.size())
    text.append(BLANKS.substr(name.size()));
}

/// @param part a part of a format in braces
template <class Text> void appendTerms(Text &text, std::string_view part, const AnyTerms &terms) {
  const std::string_view each = part.substr(1, part.size() - 2);
  for (std::size_t term = 0; term < terms.count; ++term) {
    int column = 0;
    std::string_view rest = each;
    for (std::string_view piece = firstPiece(rest); !piece.empty(); piece = firstPiece(rest)) {
      if (piece[0] == '%')
        appendNumber(text, piece, terms.word(terms.records, term, column++));
      else
        text.append(piece);
      rest.remove_prefix(piece.size());
    }
  }
}

template <class Text> void appendArgument(Text &text, std::string_view piece, const Argument &argument) {
  if (const Word *const word = std::get_if<Word>(&argument))
    appendNumber(text, piece, *word);
  else if (const char *const *const name = std::get_if<const char *>(&argument))
    appendLabel(text, piece, *name);
  else if (const Label *const *const label = std::get_if<const Label *>(&argument))
    appendLabel(text, piece, **label);
  else if (const AnyTerms *const *const terms = std::get_if<const AnyTerms *>(&argument))
    appendTerms(text, piece, **terms);
}

/// Appends the text of a finding piece by piece to `text`, which has `append(std::string_view)`.
template <class Text> void appendFinding(Text &text, const FindingText &finding) {
  std::string_view format = finding.format;
  std::size_t used = 0;
  for (std::string_view piece = firstPiece(format); !piece.empty(); piece = firstPiece(format)) {
    if (piece[0] == '%' || piece[0] == '{')
      appendArgument(text, piece, finding.arguments[used++]);
    else
      text.append(piece);
    format.remove_prefix(piece.size());
  }
}

int print(std::FILE *stream, const FindingText &finding) {
  StreamText text(stream);
  ::flockfile(stream); // a long message goes out in several writes, and those of other threads not in between
  appendFinding(text, finding);
  text.flush();
  ::funlockfile(stream);
  return text.ok;
}

} // namespace

std::span<const FindingRow> kvFindingRows() { return FINDING_ROWS; }

const FindingRow *kvFindingRow(const char *id) {
  for (const FindingRow &row : FINDING_ROWS)
    if (std::strcmp(row.id, id) == 0)
      return &row;
  return nullptr;
}

std::string kvFindingText(const Finding &finding) {
  try {
    std::string text;
    appendFinding(text, *finding.text);
    return text;
  } catch (const std::exception &) {
    return {};
  }
}

int kvPrintFinding(std::FILE *stream, const Finding &finding) { return print(stream, *finding.text); }

FindingReceiver *kvSetFindingReceiver(FindingReceiver *receiver) { return std::exchange(innermost_receiver, receiver); }

int deliver(const FindingRow &row, const Place &place, const Compared &compared, std::span<const Argument> arguments) {
  const FindingText text = {row.format, arguments};
  if (innermost_receiver == nullptr) {
    print(row.stage == Stage::load ? stderr : stdout, text);
    return 0;
  }
  const auto offset = place.offset == NO_OFFSET ? std::nullopt : std::optional(place.offset);
  innermost_receiver->receive({&row, place.list, place.element, offset, compared.found, compared.expected, &text});
  return 0;
}

void checkHeading(const char *name) {
  if (innermost_receiver == nullptr)
    std::printf("---- checking %s ----\n", name);
}

} // namespace kova
