/// The catalogue of findings: every message of the reader and of the checks, with its meaning. docs/findings.md shows
/// the same rows, and a test compares the two.
#pragma once

#include "kova/findings.h"

#include <string_view>

namespace kova {

inline constexpr FindingRow FINDING_ROWS[] = {
    // --- Opening the file ---
    {"input-open", Stage::load, Severity::error, INPUT_OPEN_ERROR, //
     "The file cannot be opened for reading.", "Check the path and the permissions; store a pipe in a regular file."},
    {"output-open", Stage::load, Severity::error, OUTPUT_OPEN_ERROR, //
     "A file cannot be opened for writing.", "Check that the folder exists and that you may write to it."},
    {"output-write", Stage::load, Severity::error, OUTPUT_WRITE_ERROR, //
     "A file that is being written does not take all of it.", "Make room on the disk, and save again."},
    {"input-read", Stage::load, Severity::error, INPUT_READ_ERROR, //
     "The file was opened, but reading it failed.", "Check the device and the path; a directory cannot be read."},
    {"input-changed", Stage::load, Severity::error, INPUT_HAS_CHANGED,
     "The file was replaced or changed between its first and its second opening.",
     "Wait until nothing writes to the file, then load it again."},

    // --- Loading the header ---
    {"version-unknown", Stage::load, Severity::error,
     "%8x\n"
     "Unknown version number.\n",
     "The low 16 bits of the version, shown in hexadecimal, are neither 0x100 nor 0x200.",
     "Check that it is a KOVA file, and its byte order."},
    {"file-size", Stage::load, Severity::error,
     "file size %d %d\n"
     "Data file size is incorrect - %s data.\n",
     "The real length of the file is not its size word.", "Transfer the file again in binary mode, or correct `size`."},
    {"header-size", Stage::load, Severity::error, "Incorrect file header size.\n",
     "`file_header_num` is not 100 plus the sizes of the two blocks.",
     "Correct `file_header_num` or the size of the block that was changed."},
    {"lists-sum", Stage::load, Severity::error,
     "file size=%d,sum of list=%d\n"
     "Some of list_num data is incorrect.\n",
     "In a 1.0 file, `size` is not the sum of the header and the nineteen lists.",
     "Find the list whose tag is not at its offset; correct the size word of the list before it."},
    {"header-tag", Stage::load, Severity::error, "tag error.\n", "The header tag is not 0.",
     "Without other findings about the header, set it to 0; otherwise it is probably not a KOVA file."},

    // --- Loading the lists ---
    {"tag", Stage::load, Severity::error, "irregular tag ! %0#10x != %0#10x\n",
     "The tag of a list or of an element is not the expected one.",
     "Check the counts and sizes of what stands before it; if they are right, correct the tag."},
    {"name-tag", Stage::load, Severity::error, "irregular tag ! %0#10x\n",
     "The tag of a name list or of a name is wrong; the list's tag is shown in both cases.",
     "Check the size of the name before it; if it is right, correct the tag."},
    {"list-runs-past-end", Stage::load, Severity::error, "%s runs past its end.\n",
     "The list needs more words than it has.",
     "Compare the counts and block sizes of the element with its size; then the list's own size."},
    {"out-of-memory", Stage::load, Severity::error, "%s: out of memory.\n",
     "There is no memory for the list or for the header's blocks.", "Raise the memory limit."},

    // --- Checking: all lists ---
    {"list-size", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "The size word of the header is not the size that the list stores.",
     "Look for a load error first; otherwise correct the size in the list header."},
    {"list-sum", Stage::check, Severity::error,
     "%s Some of size data is incorrect. %d != %d + %d * %d{ + %d} + %d + %d\n",
     "The size of a list is not the sum of its header, its size table, its elements and its blocks.",
     "Correct elements that are reported; otherwise correct `list_size`."},
    {"element-index", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "The index that an element stores is not its position.", "Set the stored index to the position."},
    {"element-size", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "The size in the list's size table is not the size that the element stores.",
     "Correct the size table, or the element's size if that is not the sum of its parts."},
    {"element-sum", Stage::check, Severity::error, "%s %d != %d + %d * %d + %d + %d\n",
     "The size of an element is not the sum of its fixed words, its items and its blocks.",
     "If the elements behind it are right, set the size to the sum; otherwise check its count and block sizes."},
    {"word-array-sum", Stage::check, Severity::error,
     "%s Some of size data is incorrect. %d != %d + %d * %d{ + %d} + %d + %d\n",
     "The size of an image, a palette or a weight group is not the sum of its fixed words, its words and its blocks.",
     "Set the size to the sum, or correct the words that the number of words follows from."},
    {"unequal-words", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "Two words that a program compared by itself are not equal.", "See what the label says."},

    // --- Checking: version-1 lists ---
    {"scene-sum", Stage::check, Severity::error,
     "Some of size data is incorrect. %d ! = %d + %d * (%d + %d + %d + %d) + %d + %d\n",
     "The size of the scene is not the sum of its header, its links and its blocks.",
     "Set `scene_size` to the sum, or correct a count."},
    {"directional-light-size", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "The size of a directional light is not the one that belongs to the light's type.",
     "Set the size to the number on the right; with 0 on the left, check `light_type` and `dir_light_num`."},
    {"object-sum", Stage::check, Severity::warning, "Obj[%d] size %d != %d + 4*(%d + %d + %d) + %d + %d\n",
     "The size of an object is not the sum of its fixed words, its levels of detail, its children and its blocks.",
     "Set `obj_size` and its entry in the size table to the sum."},
    {"triangle-group-sum", Stage::check, Severity::warning,
     "###### Warning!! ######:(TriGroup)Some of number/size is incorrect. "
     "%d != %d + (%d + %d + %d + %d + %d + %d){ +(%d+%d+%d)}\n",
     "The size of a triangle group is not the sum of its fixed words, its references and its triangles.",
     "Set `tri_group_size` and its entry in the size table to the sum."},
    {"two-kind-list-sum", Stage::check, Severity::error,
     "Some of size data is incorrect. %d != %d + %d * %d + %d * %d{ + %d}{ + %d} + %d + %d\n",
     "The size of the colour or vector list is not the sum of its parts, as for other lists.",
     "Correct elements that are reported; otherwise correct the list's size or one of its two counts."},

    // --- Checking: maker blocks ---
    {"maker-block-short", Stage::check, Severity::error,
     "vantor_extension_block_size is fewer. %d < %d\n"
     "This size must be more or equal to KOVA2.0 definition.\n",
     "The maker block of the header or of the scene is shorter than its layout.",
     "With 0 on the left, export the scene again as 2.0; otherwise check the counts in the block."},
    {"element-maker-block-short", Stage::check, Severity::error,
     "vantor_extension_block_size is fewer. %d < %d\n"
     "This size must be more or equal to KOVA2.0 definition.\n"
     "Error in %s[%d]\n",
     "The maker block of an element is shorter than its layout.",
     "With 0 on the left, export the scene again as 2.0; otherwise check the counts in the block."},
    {"all-lists-sum", Stage::check, Severity::error,
     "file size=%d,sum of list=%d\n"
     "Some of list_num data is incorrect.\n",
     "In a 2.0 file, `size` is not the sum of the header and all 28 lists.",
     "Find the list whose tag is not at its offset; correct the size word of the list before it."},
    {"version-2-list-missing", Stage::check, Severity::warning, "%-17s is nothing.\n",
     "A 2.0 file has no version-2 list of that name.", "None, if the scene does not need the list."},

    // --- Checking: version-2 lists ---
    {"external-name-tag", Stage::check, Severity::error, "irregular tag ! %0#10x != %0#10x\n",
     "The external name list or one of its names has a tag of the name list, which the reader accepts.",
     "Set the tag to the expected one."},
    {"chain-node-sum", Stage::check, Severity::error, "%s %d != %d + %d*%d + %d*%d + %d + %d\n",
     "The size of a chain root, joint or effector is not the sum of its fixed words, its objects and its blocks.",
     "Set `size` to the sum, or correct one of the two counts."},
    {"envelope-sum", Stage::check, Severity::error,
     "Envelope[%d] %d != %d : some of size data is wrong in Envelope\n"
     "or FullWeigtedPart/WeightedPart/MorphPart/EnvelopeTri\n",
     "The size of an envelope is not the sum of its fixed words, the sizes of its parts and its blocks.",
     "Correct parts that are reported; otherwise set `size` to the sum."},
    {"full-weighted-part-sum", Stage::check, Severity::error, "FullWeightedPart[%d] size : %d != %d + %d + %d\n",
     "The size of a full weighted part is not the sum of its fixed words and its blocks.",
     "Set `size` of the part to the sum, or correct a block size."},
    {"weighted-part-sum", Stage::check, Severity::error,
     "WeightedPart[%d] size : %d != %d + %d*%d + %d*%d + (%d+%d)*%d + (%d+%d)*%d + %d + %d\n",
     "The size of a weighted part is not the sum of its fixed words, its nodes and its blocks.",
     "Set `size` of the part to the sum, or correct one of its two counts."},
    {"morph-part-sum", Stage::check, Severity::error, "MorphPart[%d] size : %d != %d + %d * %d + %d + %d\n",
     "The size of a morph part is not the sum of its fixed words, its table and its blocks.",
     "Set `size` of the part to the sum, or correct `table_num`."},
    {"envelope-triangle-size", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "The size of a triangle of an envelope is not 116.", "Set the size to 116."},
    {"envelope-faulty", Stage::check, Severity::error, "--- Error in Envelope[%d]\n",
     "There are errors in the envelope; they are reported before this.", "Go back to the first error in the envelope."},
    {"cluster-shape-sum", Stage::check, Severity::error,
     "Cluster_Shape[%d] : some of size data is wrong.  %d = %d + %d * %d + %d * %d + %d +%d\n",
     "The size of a cluster shape is not the sum of its parts; the number on the left is the sum.",
     "Set `size` to the number on the left, or correct one of the two counts."},
    {"cluster-size", Stage::check, Severity::error, "%s is wrong. %d != %d\n", "The size of a cluster is not 56.",
     "Set the size to 56."},
    {"cluster-triangle-size", Stage::check, Severity::error, "%s is wrong. %d != %d\n",
     "The size of a triangle of a cluster shape is not 100.", "Set the size to 100."},
    {"cluster-shape-faulty", Stage::check, Severity::error, "--- Error in ClusterShape[%d]\n",
     "There are errors in the cluster shape; they are reported before this.",
     "Go back to the first error in the cluster shape."},
};

/// @return the row with that id. An id that no row has does not compile.
consteval const FindingRow &findingRow(std::string_view id) {
  for (const FindingRow &row : FINDING_ROWS)
    if (id == row.id)
      return row;
  throw "no finding has this id";
}

} // namespace kova
