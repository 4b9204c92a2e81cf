/// Builds KOVA files, for the bundled samples and for tests, and counts for them.
///
/// A file is written down as a tree of records in a small notation:
///
///     LightList U=8 { Light light_type=0 { DirLight0*2 }  Light light_type=2 dir_light_num=3 }
///
/// Tags, indices, header sizes, sizes, size tables, counts of children and the words of the file header follow from the
/// tree; whatever a test states itself stands as it states it. Any other word holds its own position within its record
/// (as a float where the format has one), so that words that change places show; links do so, too, or are -1, as the
/// caller wishes; counts and words that choose a form are 0. V and U are the bytes of a record's maker and user block.
/// The eight records with decoded maker blocks take these as a child (`Obj { ObjExt external_obj_num=1 }`); in a 2.0
/// file a record that has none gets one without arrays. The text of a name (`Name text=a~b`) has ~ for a blank. Lists
/// that the text does not name are there without elements, version-2 lists not at all; `absent=1` leaves one out.
#pragma once

#include "harness/bytes.h"

#include <string>
#include <vector>

namespace kova::samples {

using harness::Bytes;

/// One word of a built file under the name by which a test speaks of it.
struct NamedWord {
  std::string kind;   ///< of the record: "Obj", "ObjExt", "ObjList", "FileHeader"
  std::size_t number; ///< position among the file's records of this kind
  std::string field;  ///< "obj_size", "LOD_dist[1]", "num_byte[0]", "van[0]"
  std::size_t offset; ///< in the file
};

struct File {
  Bytes bytes;
  std::vector<NamedWord> words; ///< every word but text and texels
};

/// What links and indices hold that the text does not state.
enum class LinkWords {
  positions, ///< their position, as other words; most of them lead nowhere
  none       ///< -1, which leads nowhere on purpose
};

/// Builds a file of version 0x100 or 0x200. Throws at a text that it does not understand.
File build(Word version, const std::string &text, LinkWords links = LinkWords::positions);

/// The word of that name, which must exist. Setting it changes nothing else.
Word getWord(const File &file, const std::string &kind, std::size_t number, const std::string &field);
void setWord(File &file, const std::string &kind, std::size_t number, const std::string &field, Word value);
std::size_t offsetOf(const File &file, const std::string &kind, std::size_t number, const std::string &field);

/// The file after edits like "Env 1 env_size +4 fog 1; EnvList 0 num_byte[1] 60": words of a record are set, or changed
/// by a signed number.
File edited(File file, const std::string &edits);

/// Files with every list and every form of every record, in which nothing is wrong.
File goodFile1(LinkWords links = LinkWords::positions);
File goodFile2(LinkWords links = LinkWords::positions);

struct Sample {
  std::string name;
  File file;
};

/// Small files in which nothing is wrong, each about one matter; together they reach every list and every form.
std::vector<Sample> smallSamples();

/// The two files with everything in them, and the small ones.
std::vector<Sample> goodSamples();

} // namespace kova::samples
