#include "checker/steps.h"

namespace kova {

namespace {

// --- Maker blocks ---

// The fixed words of a record's decoded maker block; zeros where it has none.
template <class Head, class Record> Head decoded(const Record &record) {
  return record.ext ? static_cast<const Head &>(*record.ext) : Head{};
}

// The maker blocks of all records of a list: each against `least`, the bytes of its fixed words.
template <class Node> int checkFixedExt(const List<Node> &list, Word least, const char *heading, const char *name) {
  checkHeading(heading);
  return checkElements({}, counted(list.num, list.element), [=](Word number, Word, const Node &node) {
    return checkExtsizeI(node.van_ext_blk_size, least, number, name);
  });
}

// As `checkFixedExt` for blocks with arrays: each also against `required(node)`. Both tests always run, so a block
// shorter than its fixed words is reported twice.
template <class Node, class Required>
int checkCountedExt(const List<Node> &list, Word least, const char *heading, const char *name, Required required) {
  checkHeading(heading);
  return checkElements({}, counted(list.num, list.element), [=](Word number, Word, const Node &node) {
    int ok = checkExtsizeI(node.van_ext_blk_size, least, number, name);
    ok *= checkExtsizeI(node.van_ext_blk_size, required(node), number, name);
    return ok;
  });
}

// --- Lists ---

// The two steps that elements of all version-2 lists share.
int checkIndexSize(const char *name, Word number, Word table_size, const ElementHead &element) {
  return check_index_size(name, number, element.this_index, table_size, element.size);
}

// An image or a palette: a head and an array of words. Its own size is checked under the label of the size step.
template <class Head> int checkWords(const char *name, Word number, Word table_size, const Head &image, Word words) {
  int ok = checkIndexSize(name, number, table_size, image);
  ok *= check_whole_structured_size(elementLabel(name, number, " size").text, image.size, fixedBytes<Head>, {}, words,
                                    image.van_ext_blk_size, image.usr_ext_blk_size);
  return ok;
}

// A chain root, a joint or an effector.
template <class Head> int checkChainNode(const char *name, Word number, Word table_size, const Head &node) {
  int ok = checkIndexSize(name, number, table_size, node);
  ok *= checkChainRoot(elementLabel(name, number, "").text, node.size, fixedBytes<Head>, node.obj_num,
                       node.external_obj_num, node.van_ext_blk_size, node.usr_ext_blk_size);
  return ok;
}

template <class Record, class Check> int checkAll(std::span<const Record> records, Check check) {
  int ok = 1;
  for (const Record &record : records)
    ok *= check(record);
  return ok;
}

// An envelope's verdict takes in everything below it, and a last line names the envelope after all of that.
int checkEnvelope(Word number, Word table_size, const Envelope &envelope) {
  int ok = checkIndexSize("Envelope", number, table_size, envelope);

  const auto full_weighted_parts = counted(envelope.full_weighted_part_num, envelope.full_weighted_part);
  const auto weighted_parts = counted(envelope.weighted_part_num, envelope.weighted_part);
  const auto morph_parts = counted(envelope.morph_part_num, envelope.morph_part);
  const auto triangles = counted(envelope.envelope_tri_num, envelope.envelope_tri);
  const Word sum = fixedBytes<EnvelopeHead> + sumofElementSize(full_weighted_parts) + sumofElementSize(weighted_parts) +
                   sumofElementSize(morph_parts) + sumofMemberVal(triangles, &EnvelopeTri::envelope_tri_size) +
                   envelope.van_ext_blk_size + envelope.usr_ext_blk_size;
  if (envelope.size != sum) {
    std::printf("Envelope[%d] %d != %d : some of size data is wrong in Envelope\n"
                "or FullWeigtedPart/WeightedPart/MorphPart/EnvelopeTri\n",
                shown(number), shown(envelope.size), shown(sum));
    ok = 0;
  }

  ok *= checkAll(full_weighted_parts, checkFullWeightedPart);
  ok *= checkAll(weighted_parts, checkWeightedPart);
  ok *= checkAll(morph_parts, checkMorphPart);
  ok *= checkAll(triangles, checkEnvelopeTri);
  if (!ok)
    std::printf("--- Error in Envelope[%d]\n", shown(number));
  return ok;
}

// As an envelope. The size message shows what the size should be, and not what it is: meant so.
int checkClusterShape(Word number, Word table_size, const ClusterShape &shape) {
  int ok = checkIndexSize("ClusterShape", number, table_size, shape);

  const Word expected = fixedBytes<ClusterShapeHead> + fixedBytes<Cluster> * shape.cluster_num +
                        fixedBytes<ClusterTri> * shape.cluster_tri_num + shape.van_ext_blk_size +
                        shape.usr_ext_blk_size;
  if (shape.size != expected) {
    std::printf("Cluster_Shape[%d] : some of size data is wrong.  %d = %d + %d * %d + %d * %d + %d +%d\n",
                shown(number), shown(expected), shown(fixedBytes<ClusterShapeHead>), shown(shape.cluster_num),
                shown(fixedBytes<Cluster>), shown(shape.cluster_tri_num), shown(fixedBytes<ClusterTri>),
                shown(shape.van_ext_blk_size), shown(shape.usr_ext_blk_size));
    ok = 0;
  }

  // These two go by position, where the parts of an envelope go by the index that they store.
  ok *= checkElements({}, counted(shape.cluster_num, shape.cluster), [](Word j, Word, const Cluster &cluster) {
    return checksame(elementLabel("Cluster", j, "").text, cluster.size, fixedBytes<Cluster>);
  });
  ok *= checkElements({}, counted(shape.cluster_tri_num, shape.cluster_tri), [](Word j, Word, const ClusterTri &tri) {
    return checksame(elementLabel("ClusterTri", j, "").text, tri.cluster_tri_size, fixedBytes<ClusterTri>);
  });
  if (!ok)
    std::printf("--- Error in ClusterShape[%d]\n", shown(number));
  return ok;
}

struct Version2List {
  const char *name;
  Word FileHeader::*size;
  int (*check)(const Kis &);
};

// In file order.
constexpr Version2List VERSION_2_LISTS[] = {
    {"CiImgList", &FileHeader::ci_img_list_num, checkCiimgList},
    {"ColorPaletteList", &FileHeader::color_palette_list_num, checkColorPaletteList},
    {"EnvelopeList", &FileHeader::envelope_list_num, checkEnvelopeList},
    {"ClusterList", &FileHeader::cluster_list_num, checkClusterList},
    {"WeightList", &FileHeader::weight_list_num, checkWeightList},
    {"ChainRootList", &FileHeader::chain_root_list_num, checkChainRootList},
    {"JointList", &FileHeader::joint_list_num, checkJointList},
    {"EffectorList", &FileHeader::effector_list_num, checkEffectorList},
    {"ExternalNameList", &FileHeader::external_name_list_num, checkExternalNameList},
};
static_assert(sizeof(VERSION_2_LISTS) / sizeof(Version2List) == VERSION_2_SIZES_BYTES / sizeof(Word));

} // namespace

int checkFileHeaderExt(const FileHeader &header) {
  checkHeading("FileHeader Vantor Extension Block");
  int ok = checkExtsize(header.van_ext_blk_size, fixedBytes<Version2Sizes>);

  Word sum = kvSizeofKOVA1file(header);
  for (const Version2List &list : VERSION_2_LISTS)
    sum += header.*list.size;
  if (header.size != sum) {
    std::printf("file size=%d,sum of list=%d\n"
                "Some of list_num data is incorrect.\n",
                shown(header.size), shown(sum));
    ok = 0;
  }

  // A 2.0 file need not have these lists: a missing one is told, not counted.
  for (const Version2List &list : VERSION_2_LISTS)
    checkZero(header.*list.size, list.name);
  return ok;
}

int checkSceneListExt(const Scene &scene) {
  checkHeading("SceneList Vantor Extension Block");
  int ok = checkExtsize(scene.van_ext_blk_size, fixedBytes<SceneListExtHead>);
  ok *= checkExtsize(scene.van_ext_blk_size, kvSizeofSceneListExt(decoded<SceneListExtHead>(scene)));
  return ok;
}

int checkCamExt(const CamList &list) {
  return checkFixedExt(list, fixedBytes<CamExt>, "CamNode Vantor Extension Block", "Cam");
}

// Asks for less than the block holds: the links to chain roots are left out, meant so.
int checkObjExt(const ObjList &list) {
  return checkCountedExt(list, fixedBytes<ObjExtHead>, "ObjNode Vantor Extension Block", "Obj", [](const Obj &obj) {
    const auto ext = decoded<ObjExtHead>(obj);
    return fixedBytes<ObjExtHead> + fixedBytes<float> * ext.external_lod_obj_num +
           fixedBytes<External> * (ext.external_lod_obj_num + ext.external_obj_num);
  });
}

int checkShapeExt(const ShapeList &list) {
  return checkFixedExt(list, fixedBytes<ShapeExt>, "ShapeNode Vantor Extension Block", "Shape");
}

int checkMatExt(const MatList &list) {
  return checkCountedExt(list, fixedBytes<MatExtHead>, "MatNode Vantor Extension Block", "Mat",
                         [](const Mat &mat) { return kvSizeofMatExt(decoded<MatExtHead>(mat)); });
}

// Asks for less than the block holds: an external texture image has two references and is counted with the 8 bytes of
// one, meant so. A tile does have 8.
int checkTexExt(const TexList &list) {
  return checkCountedExt(list, fixedBytes<TexExtHead>, "TexNode Vantor Extension Block", "Tex", [](const Tex &tex) {
    return fixedBytes<TexExtHead> + 8 * (decoded<TexExtHead>(tex).external_tex_img_num + kvCiTileNum(tex));
  });
}

int checkTeximgExt(const TeximgList &list) {
  return checkCountedExt(list, fixedBytes<TeximgExtHead>, "TeximgNode Vantor Extension Block", "Teximg",
                         [](const Teximg &image) { return kvSizeofTeximgExt(decoded<TeximgExtHead>(image)); });
}

int checkAnimGroupExt(const AnimList &list) {
  return checkCountedExt(list, fixedBytes<AnimGroupExtHead>, "AnimNode Vantor Extension Block", "AnimGroup",
                         [](const AnimGroup &group) { return kvSizeofAnimGroupExt(decoded<AnimGroupExtHead>(group)); });
}

int checkCiimgList(const Kis &kis) {
  return checkList("CiImgList", kis.file_header.ci_img_list_num, kis.ci_img,
                   [](Word number, Word table_size, const CiImgHead &image) {
                     return checkWords("Ciimg", number, table_size, image, kvSizeofPixelIndexArray(image));
                   });
}

int checkColorPaletteList(const Kis &kis) {
  return checkList("ColorPaletteList", kis.file_header.color_palette_list_num, kis.color_palette,
                   [](Word number, Word table_size, const ColorPaletteHead &palette) {
                     return checkWords("ColorPalette", number, table_size, palette, palette.color_num >> 1);
                   });
}

int checkEnvelopeList(const Kis &kis) {
  return checkList("EnvelopeList", kis.file_header.envelope_list_num, kis.envelope, checkEnvelope);
}

int checkFullWeightedPart(const FullWeightedPart &part) {
  if (part.size == fixedBytes<FullWeightedPartHead> + part.van_ext_blk_size + part.usr_ext_blk_size)
    return 1;
  std::printf("FullWeightedPart[%d] size : %d != %d + %d + %d\n", part.this_index, shown(part.size),
              shown(fixedBytes<FullWeightedPartHead>), shown(part.van_ext_blk_size), shown(part.usr_ext_blk_size));
  return 0;
}

int checkWeightedPart(const WeightedPart &part) {
  const Word nodes = part.affected_node_num;
  const Word externals = part.external_affected_obj_num;
  constexpr Word HEAD = fixedBytes<WeightedPartHead>;
  constexpr Word PAIR = fixedBytes<NodeIndex>;
  constexpr Word WEIGHT_GROUP = fixedBytes<Index>;
  constexpr Word GROUPS = fixedBytes<VtxTriNvColor>;
  static_assert(PAIR == fixedBytes<External>);
  if (part.size ==
      HEAD + (PAIR + WEIGHT_GROUP + GROUPS) * (nodes + externals) + part.van_ext_blk_size + part.usr_ext_blk_size)
    return 1;
  std::printf("WeightedPart[%d] size : %d != %d + %d*%d + %d*%d + (%d+%d)*%d + (%d+%d)*%d + %d + %d\n", part.this_index,
              shown(part.size), shown(HEAD), shown(nodes), shown(PAIR), shown(externals), shown(PAIR), shown(nodes),
              shown(externals), shown(WEIGHT_GROUP), shown(nodes), shown(externals), shown(GROUPS),
              shown(part.van_ext_blk_size), shown(part.usr_ext_blk_size));
  return 0;
}

int checkMorphPart(const MorphPart &part) {
  if (part.size == fixedBytes<MorphPartHead> + fixedBytes<VtxTriNvColor> * part.table_num + part.van_ext_blk_size +
                       part.usr_ext_blk_size)
    return 1;
  std::printf("MorphPart[%d] size : %d != %d + %d * %d + %d + %d\n", part.this_index, shown(part.size),
              shown(fixedBytes<MorphPartHead>), shown(part.table_num), shown(fixedBytes<VtxTriNvColor>),
              shown(part.van_ext_blk_size), shown(part.usr_ext_blk_size));
  return 0;
}

int checkEnvelopeTri(const EnvelopeTri &tri) {
  return checksame(elementLabel("EnvelopeTri", static_cast<Word>(tri.this_envelope_tri_index), "").text,
                   tri.envelope_tri_size, fixedBytes<EnvelopeTri>);
}

int checkClusterList(const Kis &kis) {
  return checkList("ClusterList", kis.file_header.cluster_list_num, kis.cluster, checkClusterShape);
}

int checkWeightList(const Kis &kis) {
  return checkList("WeightList", kis.file_header.weight_list_num, kis.weight,
                   [](Word number, Word table_size, const WeightGroup &group) {
                     int ok = checkIndexSize("WeightGroup", number, table_size, group);
                     ok *= check_whole_structured_size(elementLabel("WeightGroup", number, "").text, group.size,
                                                       fixedBytes<WeightGroupHead>, {}, group.weight_num,
                                                       group.van_ext_blk_size, group.usr_ext_blk_size);
                     return ok;
                   });
}

int checkChainRootList(const Kis &kis) {
  return checkList("ChainRootList", kis.file_header.chain_root_list_num, kis.chain_root,
                   [](Word number, Word table_size, const ChainRootHead &root) {
                     return checkChainNode("ChainRoot", number, table_size, root);
                   });
}

int checkJointList(const Kis &kis) {
  return checkList("JointList", kis.file_header.joint_list_num, kis.joint,
                   [](Word number, Word table_size, const JointHead &joint) {
                     return checkChainNode("Joint", number, table_size, joint);
                   });
}

int checkEffectorList(const Kis &kis) {
  return checkList("EffectorList", kis.file_header.effector_list_num, kis.effector,
                   [](Word number, Word table_size, const EffectorHead &effector) {
                     return checkChainNode("Effector", number, table_size, effector);
                   });
}

// The tags of the list and of each name are tested first; a name's own size is compared with the size table only.
int checkExternalNameList(const Kis &kis) {
  const ExternalNameList &list = kis.external_name;
  checkHeading("ExternalNameList");
  int ok = checkTag(list.list_tag, EXTERNAL_NAME_LIST_TAG);
  ok *= checkListSizes(kis.file_header.external_name_list_num, list, list.num_byte);
  ok *=
      checkElements(list.num_byte, counted(list.num, list.element), [](Word number, Word table_size, const Name &name) {
        int fine = checkTag(name.name_tag, EXTERNAL_NAME_LIST_TAG + ELEMENT_KIND);
        fine *= check_index_size("ExternalName", number, name.this_name_index, table_size, name.name_size);
        return fine;
      });
  return ok;
}

int checkKOVA2(const Kis &kis) {
  int ok = checkFileHeaderExt(kis.file_header);
  ok *= checkSceneListExt(kis.scene);
  ok *= checkCamExt(kis.cam);
  ok *= checkObjExt(kis.obj);
  ok *= checkShapeExt(kis.shape);
  ok *= checkMatExt(kis.mat);
  ok *= checkTexExt(kis.tex);
  ok *= checkTeximgExt(kis.teximg);
  ok *= checkAnimGroupExt(kis.anim);
  for (const Version2List &list : VERSION_2_LISTS)
    if (kis.file_header.*list.size != 0)
      ok *= list.check(kis);
  return ok;
}

} // namespace kova
