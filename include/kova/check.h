/// The consistency checker: recomputes every size and index that a KOVA file declares about itself, and reports each
/// disagreement.
///
/// For a verdict on a loaded model, call
///
///     const int ok = kova::checkKOVA(kis);
///
/// Every check only reads the model, asks for no memory, prints its findings on standard output, or gives them to the
/// thread's `FindingReceiver` (kova/findings.h), and returns its verdict: 1 for consistent, 0 for inconsistent.
/// Verdicts are folded by multiplication, and every check runs, also after one has failed, so that one run reports
/// everything. A model that was only partly read is checked as far as it goes: loops go over the records held, never
/// more than their count.
///
/// Sizes, counts and indices are words: their sums wrap at 32 bits, and messages show them as signed decimals.
#pragma once

#include "kova/kova.h"

namespace kova {

// --- The drivers ----------------------------------------------------------------------------------------------------

/// Runs all checks that a file of its version calls for: `checkKOVA1`, and for version 2.0 also `checkKOVA2`.
KOVA_API int checkKOVA(const Kis &kis);

/// Runs the nineteen version-1 list checks in the order in which the lists stand in the file. Prints nothing of its
/// own.
KOVA_API int checkKOVA1(const Kis &kis);

/// Runs the checks of the header's and the records' maker blocks, then those of the version-2 lists whose size in the
/// header is not 0. Prints nothing of its own. Only a file of version 2.0 has these.
KOVA_API int checkKOVA2(const Kis &kis);

// --- The primitives -------------------------------------------------------------------------------------------------
//
// `declared` is the size that the file gives, in bytes; `header` the bytes before the elements; `ext1` and `ext2` are
// the bytes of the maker block and of the user block. A size table that is not there is an empty span.

/// @return 1 where equal; else 0 after "%s is wrong. %d != %d\n" (label, a, b).
KOVA_API int checksame(const char *label, Word a, Word b);

/// @return 1 where equal; else 0 after "irregular tag ! %0#10x != %0#10x\n" (found, expected).
KOVA_API int checkTag(Word found, Word expected);

/// @return 1 for a value that is not 0; else 0 after "%-17s is nothing.\n" (name).
KOVA_API int checkZero(Word value, const char *name);

/// A maker block may be longer than the format defines, never shorter; sizes are compared unsigned.
/// @return 1, or 0 after "vantor_extension_block_size is fewer. %d < %d\n" (declared, required) and
/// "This size must be more or equal to KOVA2.0 definition.\n".
KOVA_API int checkExtsize(Word declared, Word required);

/// `checkExtsize` of record `number`; a 0 also prints "Error in %s[%d]\n" (name, number).
KOVA_API int checkExtsizeI(Word declared, Word required, Word number, const char *name);

/// For what holds `count` elements of one size: declared must be header + element_size * count + ext1 + ext2.
/// @return 1, or 0 after "%s %d != %d + %d * %d + %d + %d\n" (label, then the arguments in order).
KOVA_API int check_whole_area_size(const char *label, Word declared, Word header, Word element_size, Word count,
                                   Word ext1, Word ext2);

/// For lists with a size table: declared must be header + 4 * count + the first `count` entries of `sizes` + ext1
/// + ext2. Entries are taken while their number is below `count`, compared signed, and only as far as the table is
/// held; a negative count takes none, and 4 * count is added all the same.
/// @return 1, or 0 after "%s Some of size data is incorrect. %d != %d + %d * %d" (label, declared, header, 4, count),
/// " + %d" for each entry taken and " + %d + %d\n" (ext1, ext2), on one line.
KOVA_API int check_whole_structured_size(const char *label, Word declared, Word header, std::span<const Word> sizes,
                                         Word count, Word ext1, Word ext2);

/// As `check_whole_structured_size` for a list of two kinds of element with a size table each. The message has no
/// label: "Some of size data is incorrect. %d != %d + %d * %d + %d * %d" (declared, header, 4, count1, 4, count2),
/// " + %d" for each entry taken of the first table and of the second, " + %d + %d\n".
KOVA_API int check_color_list_size(Word declared, Word header, std::span<const Word> sizes1, Word count1,
                                   std::span<const Word> sizes2, Word count2, Word ext1, Word ext2);

/// For what holds `count4` items of 4 bytes and `count8` items of 8: declared must be header + 4 * count4 + 8 * count8
/// + ext1 + ext2. @return 1, or 0 after "%s %d != %d + %d*%d + %d*%d + %d + %d\n" (label, declared, header, count4, 4,
/// count8, 8, ext1, ext2).
KOVA_API int checkChainRoot(const char *label, Word declared, Word header, Word count4, Word count8, Word ext1,
                            Word ext2);

/// `checksame` under "%s[%d] index" of the element's position and the index it stores, then under "%s[%d] size" of its
/// entry in the size table and the size it stores; both always.
KOVA_API int check_index_size(const char *name, Word number, Index stored_index, Word table_size, Word record_size);

/// @return the sum of one member over all `records`.
template <class Record, class Holder> Word sumofMemberVal(std::span<const Record> records, Word Holder::*member) {
  Word sum = 0;
  for (const Record &record : records)
    sum += record.*member;
  return sum;
}

/// @return the sum of the `size` members of `records`.
template <class Record> Word sumofElementSize(std::span<const Record> records) {
  return sumofMemberVal(records, &Record::size);
}

// --- Version-1 lists ------------------------------------------------------------------------------------------------
//
// Each prints its heading, compares the list's size with the header's word for it and with the sum of its parts, each
// element's index with its position and each element's size with the size table and, where the format checks it, with
// the sum of the element's own parts. A list that the file lacks has a header of zeros and fails, but for the scene.

/// The scene goes by its own header size:
/// "Some of size data is incorrect. %d ! = %d + %d * (%d + %d + %d + %d) + %d + %d\n".
KOVA_API int checkSceneList(const Kis &kis);
KOVA_API int checkEnvList(const Kis &kis);
KOVA_API int checkCamList(const Kis &kis);
/// Also compares the size of each directional light with that of the light's type, under "Light[%d].dirlight size".
KOVA_API int checkLightList(const Kis &kis);
/// A wrong object size is reported and leaves the verdict as it is:
/// "Obj[%d] size %d != %d + 4*(%d + %d + %d) + %d + %d\n".
KOVA_API int checkObjList(const Kis &kis);
KOVA_API int checkShapeList(const Kis &kis);
KOVA_API int checkVtxList(const Kis &kis);
/// A group size that does not follow from its references and triangles is warned of, one line that begins
/// "###### Warning!! ######:(TriGroup)", and leaves the verdict as it is. The warnings come after the checks of all
/// groups.
KOVA_API int checkTriList(const Kis &kis);
KOVA_API int checkColorList(const Kis &kis);
KOVA_API int checkVectorList(const Kis &kis);
KOVA_API int checkStList(const Kis &kis);
KOVA_API int checkPartList(const Kis &kis);
KOVA_API int checkMatList(const Kis &kis);
KOVA_API int checkTexList(const Kis &kis);
/// Of each image only the index is looked at, under "Teximg".
KOVA_API int checkTeximgList(const Kis &kis);
/// A group whose type stores no records is measured with the record size of the group before it, 0 for the first.
KOVA_API int checkAnimList(const Kis &kis);
KOVA_API int checkCollList(const Kis &kis);
KOVA_API int checkSwitchList(const Kis &kis);
/// Names are not checked. @return 1, printing nothing.
KOVA_API int checkNameList(const Kis &kis);

// --- Maker blocks of a 2.0 file -------------------------------------------------------------------------------------
//
// Each prints its heading and tests the declared size of every maker block against the block's fixed words and, where
// it has arrays, against what its counts call for. A record without a decoded block counts as one whose words are 0.

/// Also adds up the header and all lists: "file size=%d,sum of list=%d\nSome of list_num data is incorrect.\n". A
/// missing version-2 list is reported through `checkZero` and leaves the verdict as it is.
KOVA_API int checkFileHeaderExt(const FileHeader &header);
KOVA_API int checkSceneListExt(const Scene &scene);
KOVA_API int checkCamExt(const CamList &list);
/// Leaves the links to chain roots out of what the counts call for.
KOVA_API int checkObjExt(const ObjList &list);
KOVA_API int checkShapeExt(const ShapeList &list);
KOVA_API int checkMatExt(const MatList &list);
/// Takes one of an external image's two references into what the counts call for.
KOVA_API int checkTexExt(const TexList &list);
KOVA_API int checkTeximgExt(const TeximgList &list);
KOVA_API int checkAnimGroupExt(const AnimList &list);

// --- Version-2 lists ------------------------------------------------------------------------------------------------
//
// As the version-1 lists. `checkKOVA2` leaves out the lists that the file lacks.

KOVA_API int checkCiimgList(const Kis &kis);
KOVA_API int checkColorPaletteList(const Kis &kis);
/// An envelope whose size does not follow from its parts:
/// "Envelope[%d] %d != %d : some of size data is wrong in Envelope\n" and
/// "or FullWeigtedPart/WeightedPart/MorphPart/EnvelopeTri\n". After anything found in an envelope:
/// "--- Error in Envelope[%d]\n".
KOVA_API int checkEnvelopeList(const Kis &kis);
/// A shape of the wrong size, of which the message shows the right one and not the stored one:
/// "Cluster_Shape[%d] : some of size data is wrong.  %d = %d + %d * %d + %d * %d + %d +%d\n". After anything found in a
/// shape: "--- Error in ClusterShape[%d]\n".
KOVA_API int checkClusterList(const Kis &kis);
KOVA_API int checkWeightList(const Kis &kis);
KOVA_API int checkChainRootList(const Kis &kis);
KOVA_API int checkJointList(const Kis &kis);
KOVA_API int checkEffectorList(const Kis &kis);
/// Takes the external name list's own tags only, although its reader also takes those of the name list.
KOVA_API int checkExternalNameList(const Kis &kis);

// The parts of an envelope, each against the size that its counts call for. The messages carry the index that the
// part stores, not its position; after the size they show the terms whose sum it should be.

/// "FullWeightedPart[%d] size : %d != %d + %d + %d\n".
KOVA_API int checkFullWeightedPart(const FullWeightedPart &part);
/// "WeightedPart[%d] size : %d != %d + %d*%d + %d*%d + (%d+%d)*%d + (%d+%d)*%d + %d + %d\n".
KOVA_API int checkWeightedPart(const WeightedPart &part);
/// "MorphPart[%d] size : %d != %d + %d * %d + %d + %d\n".
KOVA_API int checkMorphPart(const MorphPart &part);
/// `checksame` under "EnvelopeTri[%d]".
KOVA_API int checkEnvelopeTri(const EnvelopeTri &tri);

} // namespace kova
