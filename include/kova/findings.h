/// Findings: what the reader and the checks report about a file, as data.
///
/// Without a receiver every finding is printed where it is made: those of stage `load` on standard error, those of
/// stage `check` on standard output. To get them as data, make a receiver, which works for the calling
/// thread until it is destroyed:
///
///     std::vector<std::string> ids;
///     const kova::FindingReceiver receiver([&](const kova::Finding &finding) { ids.push_back(finding.row->id); });
///     const int loaded = kova::kvOpenKb(path, *kis);
///     const int verdict = loaded * kova::checkKOVA(*kis);
///
/// Meanwhile the library prints neither findings nor the headings of the checks. Other threads are not affected.
#pragma once

#include "kova/words.h"

#include <functional>
#include <optional>
#include <utility>

namespace kova {

enum class Stage : std::uint8_t {
  load, ///< made by the reader
  check ///< made by the checks
};

enum class Severity : std::uint8_t {
  error,  ///< fails the load or the verdict
  warning ///< leaves the verdict as it is
};

/// One kind of finding: a row of the catalogue.
struct FindingRow {
  const char *id; ///< in kebab case; the same in every version
  Stage stage;
  Severity severity;
  /// The text with its printf conversions. A part in braces is repeated, once for each of the finding's terms.
  const char *format;
  const char *meaning;   ///< one line: what it says about the file
  const char *next_step; ///< one line: what to do about it
};

/// @return the catalogue: all rows, each with an id of its own.
KOVA_API std::span<const FindingRow> kvFindingRows();

/// @return the row with that id; null if there is none.
KOVA_API const FindingRow *kvFindingRow(const char *id);

/// What the text of a finding is made from; private to the library.
struct FindingText;

/// A finding. It and everything that it points to is valid until the receiver's function returns, the row and the
/// list's name for ever.
struct Finding {
  const FindingRow *row;
  const char *list;            ///< "SceneList" and so on, or "FileHeader"; null if it is about none of them
  std::optional<Word> element; ///< the element's position in its list, from 0
  /// In the file: of the wrong word, or of the record with the wrong sum. None where the file lacks it.
  std::optional<std::uint64_t> offset;
  std::optional<Word> found;    ///< if two numbers were compared: the one in the file
  std::optional<Word> expected; ///< and the one that was expected
  const FindingText *text;
};

/// @return the text exactly as it is printed, line ends included. It can be as long as the list. Empty if there is no
/// memory for it.
KOVA_API std::string kvFindingText(const Finding &finding);

/// Writes the same text to a stream without asking for memory. @return 1; 0 if the stream fails.
KOVA_API int kvPrintFinding(std::FILE *stream, const Finding &finding);

struct FindingReceiver;

/// Makes `receiver`, which may be null, the one that gets the findings of the calling thread; a `FindingReceiver` calls
/// it itself. @return the receiver until now; null if there was none.
KOVA_API FindingReceiver *kvSetFindingReceiver(FindingReceiver *receiver);

/// Receives the findings of the calling thread from its construction to its destruction. Receivers may be nested: the
/// innermost one gets the findings. `receive` must not throw.
struct FindingReceiver {
  /// @param function called for each finding; it must not throw
  explicit FindingReceiver(std::function<void(const Finding &)> function)
      : receive(std::move(function)), outer(kvSetFindingReceiver(this)) {}
  FindingReceiver(const FindingReceiver &) = delete;
  FindingReceiver &operator=(const FindingReceiver &) = delete;
  ~FindingReceiver() { kvSetFindingReceiver(outer); }

  std::function<void(const Finding &)> receive;
  FindingReceiver *outer; ///< the receiver that this one replaces; null if there is none
};

} // namespace kova
