#include "survey/deep.h"

#include "survey/deep_check.h"

namespace kova::survey {

namespace deep {

namespace {

/// @return the number of elements of a list; unknown where the file has more than could be read.
template <class Record> std::uint64_t known(Word bytes, Word tag, Word num, const std::vector<Record> &records) {
  const bool was_read = bytes == 0 || (tag != 0 && records.size() >= num);
  return was_read ? records.size() : UNKNOWN;
}

template <class Record> std::uint64_t known(Word bytes, const List<Record> &list) {
  return known(bytes, list.list_tag, list.num, list.element);
}

void countVersion1(Check &check, const FileHeader &bytes, const Kis &kis) {
  check[Target::env] = known(bytes.env_list_num, kis.env);
  check[Target::cam] = known(bytes.cam_list_num, kis.cam);
  check[Target::light] = known(bytes.light_list_num, kis.light);
  check[Target::obj] = known(bytes.obj_list_num, kis.obj);
  check[Target::shape] = known(bytes.shape_list_num, kis.shape);
  check[Target::vtx] = known(bytes.vtx_list_num, kis.vtx);
  check[Target::tri] = known(bytes.tri_list_num, kis.tri);
  const ColorList &color = kis.color; // as many groups of vertex colours are read as of triangle colours
  check[Target::tri_color] = known(bytes.color_list_num, color.list_tag, color.tri_group_num, color.tri_group);
  check[Target::vtx_color] = known(bytes.color_list_num, color.list_tag, color.tri_group_num, color.vtx_group);
  const VectorList &vector = kis.vector;
  check[Target::tri_nv] = known(bytes.vector_list_num, vector.list_tag, vector.tri_group_num, vector.tri_group);
  check[Target::vtx_nv] = known(bytes.vector_list_num, vector.list_tag, vector.vtx_group_num, vector.vtx_group);
  check[Target::st] = known(bytes.st_list_num, kis.st);
  check[Target::part] = known(bytes.part_list_num, kis.part);
  check[Target::mat] = known(bytes.mat_list_num, kis.mat);
  check[Target::tex] = known(bytes.tex_list_num, kis.tex);
  check[Target::teximg] = known(bytes.tex_img_list_num, kis.teximg);
  check[Target::anim] = known(bytes.anim_list_num, kis.anim);
  check[Target::coll] = known(bytes.coll_list_num, kis.coll);
  check[Target::name] = known(bytes.name_list_num, kis.name);
}

void countVersion2(Check &check, const FileHeader &bytes, const Kis &kis) {
  check[Target::color_palette] = known(bytes.color_palette_list_num, kis.color_palette);
  check[Target::weight] = known(bytes.weight_list_num, kis.weight);
  check[Target::chain_root] = known(bytes.chain_root_list_num, kis.chain_root);
  check[Target::joint] = known(bytes.joint_list_num, kis.joint);
  check[Target::effector] = known(bytes.effector_list_num, kis.effector);
  check[Target::external_name] = known(bytes.external_name_list_num, kis.external_name);
  const std::uint64_t ci_images = known(bytes.ci_img_list_num, kis.ci_img);
  check[Target::image] = std::max(check[Target::teximg], ci_images); // unknown is more than any number
}

Check checkOf(const Kis &kis, FileResult &result) {
  const FileHeader &bytes = kis.file_header;
  Check check{result};
  check.number.fill(UNKNOWN);
  countVersion1(check, bytes, kis);
  countVersion2(check, bytes, kis);
  const auto lists = std::span(check.number).first(static_cast<std::size_t>(Target::any));
  check[Target::any] =
      std::max({*std::max_element(lists.begin(), lists.end()), known(bytes.switch_list_num, kis.switch_),
                known(bytes.envelope_list_num, kis.envelope), known(bytes.cluster_list_num, kis.cluster)});
  return check;
}

} // namespace

} // namespace deep

void deepCheck(const Kis &kis, FileResult &result) {
  using namespace deep;
  Check check = checkOf(kis, result);
  const GroupSizes sizes = groupSizes(kis);
  checkSceneLists(check, kis);
  checkGeometryLists(check, sizes, kis);
  checkMaterialLists(check, kis);
  checkBehaviorLists(check, kis);
  checkPaletteLists(check, kis);
  checkSkinningLists(check, sizes, kis);
  checkChainLists(check, kis);
  if (check[Target::obj] != UNKNOWN) // else links to objects that were not read look like contradictions
    checkTree(check, kis.obj.element);
}

std::span<const FindingRow> deepRows() { return deep::ROWS; }

} // namespace kova::survey
