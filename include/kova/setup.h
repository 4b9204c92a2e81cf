/// The steps that a load is made of: the reader and the clearer of each list, the decoders of the maker blocks, and the
/// bounded cursor that they read through. `kvOpenKb` calls them all; only programs that read a part of a file by
/// themselves include this header.
#pragma once

#include "kova/kova.h"

namespace kova {

// --- The bounded cursor ----------------------------------------------------------------------------------------------

/// Why a read was refused.
enum class Fault : std::uint8_t {
  none,
  past_end, ///< it needs what lies outside the buffer
  no_memory ///< the memory for what is there cannot be had
};

/// A list that is read from its stream piece by piece; private to the library.
struct ListWindow;

/// A byte offset into a list of host-order words, which lies in memory or comes from a stream. Moving it is free, also
/// past the end; a read needs all of its words inside the list, and a read of nothing succeeds wherever the cursor
/// stands.
struct Cursor {
  const unsigned char *data = nullptr; ///< not owned; the whole list, unless it comes from a stream
  std::size_t size = 0;                ///< in bytes, as many as are really there
  std::uint64_t offset = 0;            ///< in bytes
  std::uint64_t zeroed = 0;            ///< records handed out so far that a count promised and the form does not store
  Fault fault = Fault::none;           ///< the first refusal
  ListWindow *window = nullptr;        ///< not owned; null for a list in memory
  // For findings: what is being read.
  const char *list = nullptr;       ///< the list's name
  std::uint64_t begin = NO_OFFSET;  ///< of the list in its file
  std::optional<Word> element = {}; ///< its position in the list
};

/// @return a cursor at the start of a block of words.
inline Cursor cursorOf(std::span<const Word> block) {
  return Cursor{reinterpret_cast<const unsigned char *>(block.data()), block.size_bytes()};
}

/// Reads `count` words into `destination`; all or nothing. @return 1, also for a count of 0; else 0.
KOVA_API int kvReadArray(Cursor &cursor, Words &destination, Word count);
KOVA_API int kvReadArray(Cursor &cursor, Indices &destination, Word count);
KOVA_API int kvReadArray(Cursor &cursor, Floats &destination, Word count);

/// The twin of `kvReadArray` for the inside of maker blocks: holds the words that lie inside the block, at most
/// `count`.
/// @return 0 only where memory cannot be had.
KOVA_API int kvSetupArray(Cursor &cursor, Words &destination, Word count);
KOVA_API int kvSetupArray(Cursor &cursor, Indices &destination, Word count);
KOVA_API int kvSetupArray(Cursor &cursor, Floats &destination, Word count);

/// Reads `rows` rows of `bytes_per_row` / 4 words each into `area`, which owns them. On return `destination` points
/// just past the copied words; the start is `area.data()`.
/// @return `destination`, which is not null, also where no word was asked for; null where the words are not all there
/// or memory cannot be had.
KOVA_API Word *kvReadArea(Cursor &cursor, Words &area, Word *&destination, Word bytes_per_row, Word rows);

/// Reads `van_size` / 4 words of maker block, then `usr_size` / 4 words of user block (sizes in bytes, remainders
/// dropped), replacing what `blk` held. Each block is held whole or not at all. @return 1, or 0 where one is not all
/// there.
KOVA_API int kvReadExtBlk1(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size);

/// The twin of `kvReadExtBlk1` that holds what is there, built on `kvSetupArray`.
KOVA_API int kvSetupExtBlk1(Cursor &cursor, ExtBlk &blk, Word van_size, Word usr_size);

/// Reads a run of pairs that is stored as `count` first members, then `count` second members; all or nothing.
/// @return 1, also for a count of 0; else 0.
KOVA_API int kvReadExternal(Cursor &cursor, std::vector<External> &destination, Word count);
KOVA_API int kvReadNodeIndex(Cursor &cursor, std::vector<NodeIndex> &destination, Word count);

/// The twin of `kvReadExternal` for the inside of maker blocks: pair i is held when its second member lies inside the
/// block. @return 0 only where memory cannot be had.
KOVA_API int kvSetupExternal(Cursor &cursor, std::vector<External> &destination, Word count);

// --- The steps of a load ---------------------------------------------------------------------------------------------

/// The first step of `kvOpenKb`: the header and the version-1 lists. The first list that fails ends it.
KOVA_API int kvOpenKb1(const char *path, Kis &kis);

/// The last step: opens the file again by the name in `kis` and reads the version-2 lists. Nothing but a regular file
/// or a block device is opened again, and the opening never waits. @return 1; 0 where the file cannot be opened
/// ("Input File Open Error\n"), is not the one that `kvOpenKb1` read ("Input File Has Changed\n": another device,
/// inode, size or time of change), or where a list fails.
KOVA_API int kvOpenKb2Ext(Kis &kis);

/// Reads the 100-byte header and its blocks from the stream's position, and makes all of its checks, each with its
/// message on standard error. Bytes that the file lacks are 0. Where the read itself fails, this is reported and no
/// check is made. The blocks of a file of unknown version are not read. @return 1 where every check passed.
KOVA_API int kvReadFileHeader(std::FILE *stream, Kis &kis);

/// Fills the version-2 size table of a 2.0 header from its maker block, words that the block lacks being 0.
/// @return 0 for a 2.0 header whose maker block is empty, else 1 (a 1.0 header is left as it is).
KOVA_API int kvSetupFileHeaderExt(FileHeader &header);

/// Reads the list called `name` ("SceneList" to "ExternalNameList"), which is `size` bytes long, from the stream's
/// position into its record in `kis`; a size of 0 reads nothing and clears the record. Memory is asked for by what the
/// stream holds, not by `size`. Prints on standard error what the list's reader prints, "%s runs past its end.\n" or
/// "%s: out of memory.\n" with the name, or "Input File Read Error\n" (once for a model). @return the reader's or
/// clearer's result; 0 for a name that no list has.
KOVA_API int kvReadList(std::FILE *stream, Word size, Kis &kis, const char *name);

// --- Scene, environments, cameras, lights, objects, shapes -----------------------------------------------------------

/// The list readers. Each takes a cursor at the first word of the list and fills the record anew. @return 1, or 0 after
/// a wrong tag ("irregular tag ! ..." on standard error), or 0 with the cursor's fault set where the list runs past its
/// end or memory cannot be had. What was read before stays in the record.
KOVA_API int kvSetupSceneList(Cursor &cursor, Scene &scene);
KOVA_API int kvSetupEnvList(Cursor &cursor, EnvList &list);
KOVA_API int kvSetupCamList(Cursor &cursor, CamList &list);
KOVA_API int kvSetupLightList(Cursor &cursor, LightList &list);
KOVA_API int kvSetupObjList(Cursor &cursor, ObjList &list);
KOVA_API int kvSetupShapeList(Cursor &cursor, ShapeList &list);

/// The clearers, for a list that the file leaves empty. Those of the version-1 lists leave the record as it is: a
/// fresh handle holds no elements. @return 1.
KOVA_API int kvSetScene0(Scene &scene);
KOVA_API int kvSetEnv0(EnvList &list);
KOVA_API int kvSetCam0(CamList &list);
KOVA_API int kvSetLight0(LightList &list);
KOVA_API int kvSetObj0(ObjList &list);
KOVA_API int kvSetShape0(ShapeList &list);

/// Decode the maker blocks of all records of one kind into their `ext`; `kvOpenKb` runs them on what the version-1 part
/// of a 2.0 file has left. @return 1; 0 where a record has no maker block (the others are still decoded; a list without
/// records is right), or where memory cannot be had ("%s: out of memory.\n" with the list's name on standard error).
KOVA_API int kvSetupSceneListExt(Scene &scene);
KOVA_API int kvSetupCamExt(CamList &list);
KOVA_API int kvSetupObjExt(ObjList &list);
KOVA_API int kvSetupShapeExt(ShapeList &list);

// --- Vertices, triangles, colours, normals, texture coordinates, parts -----------------------------------------------

/// The list readers; see `kvSetupSceneList`. The colour list reads as many vertex-colour groups as it counts
/// triangle-colour groups: its second count governs only the second size table.
KOVA_API int kvSetupVtxList(Cursor &cursor, VtxList &list);
KOVA_API int kvSetupTriList(Cursor &cursor, TriList &list);
KOVA_API int kvSetupColorList(Cursor &cursor, ColorList &list);
KOVA_API int kvSetupVectorList(Cursor &cursor, VectorList &list);
KOVA_API int kvSetupStList(Cursor &cursor, StList &list);
KOVA_API int kvSetupPartList(Cursor &cursor, PartList &list);

/// The clearers; see `kvSetScene0`.
KOVA_API int kvSetVtx0(VtxList &list);
KOVA_API int kvSetTri0(TriList &list);
KOVA_API int kvSetColor0(ColorList &list);
KOVA_API int kvSetVector0(VectorList &list);
KOVA_API int kvSetSt0(StList &list);
KOVA_API int kvSetPart0(PartList &list);

// --- Materials, textures, texture images -----------------------------------------------------------------------------

/// The list readers; see `kvSetupSceneList`.
KOVA_API int kvSetupMatList(Cursor &cursor, MatList &list);
KOVA_API int kvSetupTexList(Cursor &cursor, TexList &list);
KOVA_API int kvSetupTeximgList(Cursor &cursor, TeximgList &list);

/// The clearers; see `kvSetScene0`.
KOVA_API int kvSetMat0(MatList &list);
KOVA_API int kvSetTex0(TexList &list);
KOVA_API int kvSetTeximg0(TeximgList &list);

/// The maker-block decoders; see `kvSetupCamExt`.
KOVA_API int kvSetupMatExt(MatList &list);
KOVA_API int kvSetupTexExt(TexList &list);
KOVA_API int kvSetupTeximgExt(TeximgList &list);

// --- Animations, collisions, switches, names -------------------------------------------------------------------------

/// The list readers; see `kvSetupSceneList`. The name reader takes the tags of either name list, and its message is
/// "irregular tag ! %0#10x\n" with the list's tag, whichever tag was the wrong one.
KOVA_API int kvSetupAnimList(Cursor &cursor, AnimList &list);
KOVA_API int kvSetupCollList(Cursor &cursor, CollList &list);
KOVA_API int kvSetupSwitchList(Cursor &cursor, SwitchList &list);
KOVA_API int kvSetupNameList(Cursor &cursor, NameList &list);

/// The clearers; see `kvSetScene0`.
KOVA_API int kvSetAnim0(AnimList &list);
KOVA_API int kvSetColl0(CollList &list);
KOVA_API int kvSetSwitch0(SwitchList &list);
KOVA_API int kvSetName0(NameList &list);

/// The maker-block decoders; see `kvSetupCamExt`.
KOVA_API int kvSetupAnimGroupExt(AnimList &list);

/// Read `count` keyframes from inside a maker block and move past them; those that lie inside the block are held, and
/// an array that is cut leaves nothing for what follows. @return 0 only where memory cannot be had.
KOVA_API int kvSetupRotateE(Cursor &cursor, std::vector<RotateE> &destination, Word count);
KOVA_API int kvSetupScale(Cursor &cursor, std::vector<Scale> &destination, Word count);

// --- Colour-index images and palettes --------------------------------------------------------------------------------

/// The list readers; see `kvSetupSceneList`.
KOVA_API int kvSetupCiimgList(Cursor &cursor, CiImgList &list);
KOVA_API int kvSetupColorPaletteList(Cursor &cursor, ColorPaletteList &list);

/// The clearers of the version-2 lists set the element count to 0. @return 1.
KOVA_API int kvSetCiimg0(CiImgList &list);
KOVA_API int kvSetColorPalette0(ColorPaletteList &list);

// --- Envelopes, clusters, weights ------------------------------------------------------------------------------------

/// The list readers; see `kvSetupSceneList`. Parts, triangles, clusters and cluster triangles have tags that are not
/// tested.
KOVA_API int kvSetupEnvelopeList(Cursor &cursor, EnvelopeList &list);
KOVA_API int kvSetupClusterList(Cursor &cursor, ClusterList &list);
KOVA_API int kvSetupWeightList(Cursor &cursor, WeightList &list);

/// The clearers; see `kvSetCiimg0`.
KOVA_API int kvSetEnvelope0(EnvelopeList &list);
KOVA_API int kvSetCluster0(ClusterList &list);
KOVA_API int kvSetWeight0(WeightList &list);

/// Reads `count` records that are stored as one run for each of their five members; all or nothing.
/// @return 1, also for a count of 0; else 0 with the cursor's fault set.
KOVA_API int kvSetupVtxTriNvColor(Cursor &cursor, std::vector<VtxTriNvColor> &destination, std::uint64_t count);

// --- Chain roots, joints, effectors, external names ------------------------------------------------------------------

/// The list readers; see `kvSetupSceneList`. The external name list is read by the name list's reader, so it takes the
/// tags of either list.
KOVA_API int kvSetupChainRootList(Cursor &cursor, ChainRootList &list);
KOVA_API int kvSetupJointList(Cursor &cursor, JointList &list);
KOVA_API int kvSetupEffectorList(Cursor &cursor, EffectorList &list);
KOVA_API int kvSetupExternalNameList(Cursor &cursor, ExternalNameList &list);

/// The clearers; see `kvSetCiimg0`.
KOVA_API int kvSetChainRoot0(ChainRootList &list);
KOVA_API int kvSetJoint0(JointList &list);
KOVA_API int kvSetEffector0(EffectorList &list);
KOVA_API int kvSetExternalName0(ExternalNameList &list);

} // namespace kova
