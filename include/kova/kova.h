/// The KOVA reader: loads a binary scene file, version 1.0 or 2.0, into an in-memory model.
///
/// The main header of the reader. To read a file, call
///
///     kova::KisHandle kis = kova::kvNewKis();
///     int ok = kis && kova::kvOpenKb("scene.kb", *kis);
///
/// and go over the lists of `kis`. After a failed load the model holds what was read before the fault. Counts are
/// what the file states; the containers hold what was there. No function here throws.
///
/// Threads: nothing in the library is shared between models. Any number of threads may each load, check and dump models
/// of their own at the same time, and several may read one model at the same time. A `FindingReceiver` receives only
/// the findings of its own thread; findings that are printed go to the standard streams of the process one by one.
///
/// Errors are findings (kova/findings.h): where a comment here says that something is printed, a receiver gets it
/// instead, if the thread has one.
#pragma once

#include "kova/behavior.h"
#include "kova/chain.h"
#include "kova/findings.h"
#include "kova/geometry.h"
#include "kova/material.h"
#include "kova/palette.h"
#include "kova/scene.h"
#include "kova/skinning.h"
#include "kova/version.h"

namespace kova {

inline constexpr Word VERSION_1 = 0x100;
inline constexpr Word VERSION_2 = 0x200;

/// The 25 words that a file begins with. Every ..._list_num is a size in bytes, in spite of its name; and the header
/// counts tri after st, although the TriList follows the VtxList in the file.
struct FileHeaderHead {
  Word version; ///< 0x100 or 0x200 in the low 16 bits
  Word size;    ///< bytes of the file
  Word header_tag;
  Word file_header_num; ///< bytes of the header with its blocks
  Word scene_list_num;
  Word env_list_num;
  Word cam_list_num;
  Word light_list_num;
  Word obj_list_num;
  Word shape_list_num;
  Word vtx_list_num;
  Word color_list_num;
  Word vector_list_num;
  Word st_list_num;
  Word tri_list_num;
  Word part_list_num;
  Word mat_list_num;
  Word tex_list_num;
  Word tex_img_list_num;
  Word anim_list_num;
  Word coll_list_num;
  Word switch_list_num;
  Word name_list_num;
  Word van_ext_blk_size;
  Word usr_ext_blk_size;
};
inline constexpr std::size_t FILE_HEADER_BYTES = 100;
static_assert(sizeof(FileHeaderHead) == FILE_HEADER_BYTES);

/// The nine words that the header's maker block begins with in a 2.0 file: bytes of the version-2 lists, in file order.
struct Version2Sizes {
  Word ci_img_list_num;
  Word color_palette_list_num;
  Word envelope_list_num;
  Word cluster_list_num;
  Word weight_list_num;
  Word chain_root_list_num;
  Word joint_list_num;
  Word effector_list_num;
  Word external_name_list_num;
};
inline constexpr std::size_t VERSION_2_SIZES_BYTES = 36;
static_assert(sizeof(Version2Sizes) == VERSION_2_SIZES_BYTES);

/// The nine sizes are zeros until they are read.
struct FileHeader : FileHeaderHead, Version2Sizes {
  ExtBlk ext_blk;
  std::size_t held = 0; ///< of the header's 100 bytes, as many as the file has; words behind them are 0
};

/// What is known of the file that a model was read from: which one it is, so that its second opening can be compared
/// with the first, and whether a read of it failed.
struct InputFile {
  bool known = false; ///< only a regular file or a block device is
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::uint64_t size = 0; ///< bytes
  std::int64_t change_seconds = 0;
  std::int64_t change_nanoseconds = 0;
  bool read_error = false; ///< a read failed, and this was reported

  /// @return whether all that is known of two files is equal.
  bool operator==(const InputFile &) const = default;
};

/// The model of one loaded file, lists in file order.
struct Kis {
  std::string file_name;
  InputFile input_file;
  FileHeader file_header{};

  Scene scene{};
  EnvList env;
  CamList cam;
  LightList light;
  ObjList obj;
  ShapeList shape;
  VtxList vtx;
  TriList tri;
  ColorList color;
  VectorList vector;
  StList st;
  PartList part;
  MatList mat;
  TexList tex;
  TeximgList teximg;
  AnimList anim;
  CollList coll;
  SwitchList switch_;
  NameList name;

  CiImgList ci_img;
  ColorPaletteList color_palette;
  EnvelopeList envelope;
  ClusterList cluster;
  WeightList weight;
  ChainRootList chain_root;
  JointList joint;
  EffectorList effector;
  ExternalNameList external_name;
};
using KisHandle = std::unique_ptr<Kis>;

/// Calls `visit(name, list)` for each of the 28 lists in file order, with its name as `kvListNames` tells it. `kis` may
/// be constant. The lists are of different types: the scene is one record, a `TwoKindList` has two kinds of group,
/// every other one is a `List`.
template <class Model, class Visitor>
requires std::same_as<std::remove_const_t<Model>, Kis>
void kvVisitLists(Model &kis, Visitor &&visit) {
  visit("SceneList", kis.scene);
  visit("EnvList", kis.env);
  visit("CamList", kis.cam);
  visit("LightList", kis.light);
  visit("ObjList", kis.obj);
  visit("ShapeList", kis.shape);
  visit("VtxList", kis.vtx);
  visit("TriList", kis.tri);
  visit("ColorList", kis.color);
  visit("VectorList", kis.vector);
  visit("StList", kis.st);
  visit("PartList", kis.part);
  visit("MatList", kis.mat);
  visit("TexList", kis.tex);
  visit("TeximgList", kis.teximg);
  visit("AnimList", kis.anim);
  visit("CollList", kis.coll);
  visit("SwitchList", kis.switch_);
  visit("NameList", kis.name);
  visit("CiImgList", kis.ci_img);
  visit("ColorPaletteList", kis.color_palette);
  visit("EnvelopeList", kis.envelope);
  visit("ClusterList", kis.cluster);
  visit("WeightList", kis.weight);
  visit("ChainRootList", kis.chain_root);
  visit("JointList", kis.joint);
  visit("EffectorList", kis.effector);
  visit("ExternalNameList", kis.external_name);
}

/// @return the text of the name that an index of a record leads to, as `kvGetName` gives it; empty if it leads nowhere.
/// Names of other files are in `kis.external_name`: `kvNameOf(kis.external_name, ext->external_mat.name)`.
inline std::string kvNameOf(const NameList &names, Index index) {
  const Name *const name = kvElement(names, index);
  return name != nullptr ? kvGetName(*name) : std::string();
}
inline std::string kvNameOf(const Kis &kis, Index index) { return kvNameOf(kis.name, index); }

/// @return a new model: an empty file name, a header of zeros, no elements; null where memory cannot be had.
KOVA_API KisHandle kvNewKis();

/// Loads the file at `path`, which may be `kis.file_name`, forgetting what `kis` held. Prints what is wrong on standard
/// error; a read that fails is reported once, as "Input File Read Error\n".
/// @return 1 where the file was read whole and its header is consistent; else 0.
KOVA_API int kvOpenKb(const char *path, Kis &kis);

/// As `kvOpenKb` for a file that is in memory, or mapped there. Nothing is opened, and nothing of the model refers to
/// `bytes` afterwards. `name` is what `kis` holds as the file's name; it may be `kis.file_name`.
KOVA_API int kvOpenKbMemory(std::span<const unsigned char> bytes, const char *name, Kis &kis);

/// As `kvOpenKb` for a file that is open: `stream` stands at its start, and is read from there and nowhere else, so
/// that nothing can be put in the place of the file meanwhile. The stream, which stays open, has to be one that can be
/// moved: a pipe has no length, so its load fails behind the header. `name` is what `kis` holds as the file's name.
KOVA_API int kvOpenKbStream(std::FILE *stream, const char *name, Kis &kis);

/// @return the 28 list names in file order.
KOVA_API std::span<const char *const> kvListNames();

/// Keeps `name` in the handle. @return 1; 0 where memory cannot be had, the name then being empty.
KOVA_API int kvSetFilename(const char *name, Kis &kis);

/// @return the low 16 bits of the header's version.
inline Word kvKOVAver(const FileHeaderHead &header) { return header.version & 0xffff; }

/// @return the bytes of the header and the nineteen version-1 lists, which is where the version-2 lists start (wraps at
/// 32 bits).
KOVA_API Word kvSizeofKOVA1file(const FileHeader &header);

/// Keeps the size words consistent after a list or an element changed its size by `delta` bytes: the file's `size`; and
/// with a list tag, the list's size and its word in the header (or in the version-2 table); with an element tag (list
/// tag + 0x100), also entry `index` of the list's size table and the element's own size. The scene has a list tag only;
/// the colour and vector lists adjust their first kind of element; the external name list goes by its own two tags. Any
/// other tag, or an index that no element has, changes nothing beyond the file's size.
KOVA_API void kvAdjustListSizeData(Kis &kis, Word index, Index delta, Word tag);

} // namespace kova
