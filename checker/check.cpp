#include "kova/check.h"

#include "checker/steps.h"
#include "format/versions.h"

namespace kova {

namespace {

struct ListCheck {
  const char *list;
  int (*check)(const Kis &);
};

constexpr auto CHECKS = inListOrder<ListCheck>({
    {"SceneList", checkSceneList},
    {"EnvList", checkEnvList},
    {"CamList", checkCamList},
    {"LightList", checkLightList},
    {"ObjList", checkObjList},
    {"ShapeList", checkShapeList},
    {"VtxList", checkVtxList},
    {"TriList", checkTriList},
    {"ColorList", checkColorList},
    {"VectorList", checkVectorList},
    {"StList", checkStList},
    {"PartList", checkPartList},
    {"MatList", checkMatList},
    {"TexList", checkTexList},
    {"TeximgList", checkTeximgList},
    {"AnimList", checkAnimList},
    {"CollList", checkCollList},
    {"SwitchList", checkSwitchList},
    {"NameList", checkNameList},
    {"CiImgList", checkCiimgList},
    {"ColorPaletteList", checkColorPaletteList},
    {"EnvelopeList", checkEnvelopeList},
    {"ClusterList", checkClusterList},
    {"WeightList", checkWeightList},
    {"ChainRootList", checkChainRootList},
    {"JointList", checkJointList},
    {"EffectorList", checkEffectorList},
    {"ExternalNameList", checkExternalNameList},
});

constexpr std::span<const ListRow> VERSION_2_LISTS = std::span(LISTS).subspan(VERSION_1_LIST_NUM);

} // namespace

int checkKOVA(const Kis &kis) {
  int ok = checkKOVA1(kis);
  if (hasVersion2(kvKOVAver(kis.file_header)))
    ok *= checkKOVA2(kis);
  return ok;
}

int checkKOVA1(const Kis &kis) {
  int ok = 1;
  for (std::size_t list = 0; list < VERSION_1_LIST_NUM; ++list)
    ok *= CHECKS[list].check(kis);
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
  for (std::size_t list = VERSION_1_LIST_NUM; list < LIST_NUM; ++list)
    if (kis.file_header.*LISTS[list].size != 0)
      ok *= CHECKS[list].check(kis);
  return ok;
}

int checkFileHeaderExt(const FileHeader &header) {
  checkHeading("FileHeader Vantor Extension Block");
  int ok = checkBlockSize(headerWord(header, &FileHeader::van_ext_blk_size), header.van_ext_blk_size,
                          fixedBytes<Version2Sizes>);

  Word sum = kvSizeofKOVA1file(header);
  for (const ListRow &list : VERSION_2_LISTS)
    sum += header.*list.size;
  if (header.size != sum)
    ok = report<"all-lists-sum">(headerWord(header, &FileHeader::size), {header.size, sum}, header.size, sum);

  // A 2.0 file need not have these lists: a missing one is reported and leaves the verdict as it is.
  for (const ListRow &list : VERSION_2_LISTS)
    if (header.*list.size == 0)
      report<"version-2-list-missing">(sizeWordPlace(header, list), {}, list.name);
  return ok;
}

} // namespace kova
