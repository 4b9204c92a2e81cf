#include "survey/survey.h"

#include "common/text.h"
#include "survey/output.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>

namespace kova::survey {

namespace {

const char *stageName(const FindingRow &row) { return STAGE_NAMES[static_cast<std::size_t>(row.stage)]; }

std::string severityName(const FindingRow &row, const Style &style) {
  return coloured(style, row.severity == Severity::error ? RED : YELLOW,
                  SEVERITY_NAMES[static_cast<std::size_t>(row.severity)]);
}

/// What `kbaudit` or the deep checks print of a finding, as it can stand there.
struct Example {
  std::string_view id;
  const char *text;
};
constexpr Example EXAMPLES[] = {
    {"version-unknown", "     300\nUnknown version number."},
    {"file-size", "file size 1094 2188\nData file size is incorrect - missing data."},
    {"lists-sum", "file size=580,sum of list=576\nSome of list_num data is incorrect."},
    {"tag", "irregular tag ! 0000000000 != 0x00100100"},
    {"name-tag", "irregular tag ! 0x00110000"},
    {"list-runs-past-end", "ObjList runs past its end."},
    {"out-of-memory", "ObjList: out of memory."},
    {"list-size", "list size is wrong. 24 != 0"},
    {"list-sum", " Some of size data is incorrect. 0 != 24 + 4 * 0 + 0 + 0"},
    {"element-index", "Obj[5] index is wrong. 5 != 6"},
    {"element-size", "Shape[3] size is wrong. 48 != 40"},
    {"element-sum", "Light[0] size 120 != 48 + 36 * 1 + 0 + 0"},
    {"word-array-sum", "Ciimg[0] size Some of size data is incorrect. 104 != 84 + 4 * 4 + 0 + 0"},
    {"unequal-words", "The number of lights is wrong. 3 != 2"},
    {"scene-sum", "Some of size data is incorrect. 60 ! = 44 + 4 * (1 + 0 + 1 + 1) + 0 + 0"},
    {"directional-light-size", "Light[0].dirlight size is wrong. 0 != 44"},
    {"object-sum", "Obj[1] size 92 != 88 + 4*(1 + 1 + 0) + 0 + 0"},
    {"triangle-group-sum", "###### Warning!! ######:(TriGroup)Some of number/size is incorrect. "
                           "208 != 4 + (4 + 4 + 4 + 4 + 4 + 32) +(76+0+0) +(76+0+3)"},
    {"two-kind-list-sum", "Some of size data is incorrect. 124 != 28 + 4 * 1 + 4 * 1 + 36 + 56 + 0 + 0"},
    {"maker-block-short", "vantor_extension_block_size is fewer. 32 < 36\n"
                          "This size must be more or equal to KOVA2.0 definition."},
    {"element-maker-block-short", "vantor_extension_block_size is fewer. 12 < 28\n"
                                  "This size must be more or equal to KOVA2.0 definition.\nError in Obj[0]"},
    {"all-lists-sum", "file size=9508,sum of list=9424\nSome of list_num data is incorrect."},
    {"version-2-list-missing", "CiImgList         is nothing."},
    {"external-name-tag", "irregular tag ! 0x00110000 != 0x00270000"},
    {"chain-node-sum", "ChainRoot[0] 52 != 44 + 1*4 + 0*8 + 0 + 0"},
    {"envelope-sum", "Envelope[0] 472 != 476 : some of size data is wrong in Envelope\n"
                     "or FullWeigtedPart/WeightedPart/MorphPart/EnvelopeTri"},
    {"full-weighted-part-sum", "FullWeightedPart[0] size : 68 != 64 + 0 + 0"},
    {"weighted-part-sum", "WeightedPart[0] size : 72 != 36 + 1*8 + 0*8 + (1+0)*4 + (1+0)*20 + 0 + 0"},
    {"morph-part-sum", "MorphPart[0] size : 88 != 64 + 1 * 20 + 0 + 0"},
    {"envelope-triangle-size", "EnvelopeTri[8] is wrong. 120 != 116"},
    {"envelope-faulty", "--- Error in Envelope[0]"},
    {"cluster-shape-sum", "Cluster_Shape[1] : some of size data is wrong.  92 = 36 + 1 * 56 + 0 * 100 + 0 +0"},
    {"cluster-size", "Cluster[1] is wrong. 57 != 56"},
    {"cluster-triangle-size", "ClusterTri[0] is wrong. 0 != 100"},
    {"cluster-shape-faulty", "--- Error in ClusterShape[0]"},
    {"float-not-finite", "WARN : CamList[2] : cam_near_clip is not a finite number"},
    {"keys-out-of-order", "WARN : TriList[6] : vtx_anim_key : key 10 behind key 15"},
    {"object-parent", "WARN : ObjList[5] : its parent is 2, but it is a child of 3"},
    {"object-twice-child", "WARN : ObjList[5] : a child of 2, and again of 3"},
    {"object-circle", "WARN : ObjList[5] is its own ancestor"},
    {"name-control-byte", "WARN : NameList[5] : control byte 0x0000001b in the name"},
};

/// @return a text of the catalogue as it could be printed. Of the many links, which have one text for all fields, it is
/// that text with dots.
std::string exampleText(const FindingRow &row) {
  for (const Example &example : EXAMPLES)
    if (example.id == row.id)
      return example.text;
  std::string text;
  for (std::string_view format = row.format; !format.empty();) {
    const std::size_t end = format[0] == '%' ? format.find_first_of("dsx") + 1 : 1;
    text += format[0] == '%' ? "..." : format.substr(0, 1);
    format.remove_prefix(end);
  }
  return text;
}

} // namespace

Status listFindings(Colour colour) {
  constexpr std::size_t ID_WIDTH = 32, STAGE_WIDTH = 5, SEVERITY_WIDTH = 7;
  const Style style = styleOf(STDOUT_FILENO, colour);
  const auto padding = [](std::string_view text, std::size_t width) {
    return std::string(width - std::min(width, text.size()) + 2, ' ');
  };
  Output output;
  openOutput(output, "-");
  for (const FindingRow *const row : allRows())
    write(output, row->id + padding(row->id, ID_WIDTH) + stageName(*row) + padding(stageName(*row), STAGE_WIDTH) +
                      severityName(*row, style) + padding(severityName(*row, {}), SEVERITY_WIDTH) + row->meaning +
                      '\n');
  return finish(output) ? ALL_OK : FAILED;
}

Status explainFinding(const std::string &id, Colour colour) {
  const FindingRow *const row = rowOf(id.c_str());
  if (row == nullptr) {
    std::fprintf(stderr, "kbsurvey: there is no finding called %s. See kbsurvey --list-findings.\n",
                 printable(id).c_str());
    return FAILED;
  }
  Output output;
  openOutput(output, "-");
  write(output, std::string(row->id) + " (" + stageName(*row) + ", " +
                    severityName(*row, styleOf(STDOUT_FILENO, colour)) + ")\n\n");
  write(output, "Example:    " + oneLine(exampleText(*row)) + '\n');
  write(output, std::string("Meaning:    ") + row->meaning + '\n');
  write(output, std::string("Next step:  ") + row->next_step + '\n');
  return finish(output) ? ALL_OK : FAILED;
}

} // namespace kova::survey
