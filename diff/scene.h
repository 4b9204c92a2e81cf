/// A file that is compared: its bytes, where its lists are, and its model as far as it can be read.
#pragma once

#include "common/file.h"
#include "diff/pieces.h"
#include "records/parts.h"

namespace kova::diff {

/// A file that is not there, cannot be read, or has changed while it was read.
struct Trouble {
  std::string path;
  std::string reason;
};

/// Bytes that are read where they are needed.
struct Source {
  /// What was read last, in two places: records and the table of their sizes are read in turns.
  struct Window {
    std::uint64_t at = 0;
    std::vector<unsigned char> bytes = {};
  };

  std::string path = {};
  Descriptor file = {};
  std::vector<unsigned char> held = {}; ///< of a pipe, which is read once; a regular file is not held
  bool is_held = false;
  std::uint64_t size = 0;
  mutable std::array<Window, 2> windows = {};
};

/// Opens a file. Throws `Trouble`.
Source openSource(const std::string &path);

/// Reads bytes that are in the file. Throws `Trouble`.
void readBytes(const Source &source, std::uint64_t at, std::span<unsigned char> to);

/// A list of a file.
struct LoadedList {
  std::uint64_t begin = 0;
  std::uint64_t bytes = 0;                  ///< 0: the file has no such list
  bool ok = false;                          ///< it was read whole
  bool is_cut = false;                      ///< there should be more of it than could be read
  const char *finding = nullptr;            ///< why it was not
  std::array<std::size_t, 2> elements = {}; ///< that were read whole, of both kinds
  std::uint64_t rest = 0;                   ///< where begins what no element takes in
};

struct Side {
  Source source = {};
  Parts parts = {};
  Kis kis = {};
  std::array<LoadedList, LIST_NUM> lists = {};
  Word version = 0;
  Word van_bytes = 0;     ///< of the header's maker block
  std::size_t failed = 0; ///< lists that could not be read whole
  bool is_scene = false;
  bool is_led = false; ///< where its lists are is taken from the other file
};

/// Loads the file that `side.source` is. What is wrong with it is in `lists`. Throws `Trouble`.
void loadSide(Side &side);

/// Loads a damaged file of the same length again, with lists where those of a good one are, if more of it can be read
/// so.
void loadLike(Side &damaged, const Side &good);

/// @return whether two files have the same bytes. Throws `Trouble`.
bool sameBytes(const Source &a, const Source &b);

} // namespace kova::diff
