/// Damage as it happens to whole files: how often the original comes back, or everything outside the hole.

#include "samples/hurt.h"
#include "mend/diagnose.h"
#include "mend/tests/elements.h"

#include <cstdio>
#include <gtest/gtest.h>

namespace kova::mend {

namespace {

using samples::DamageKind;
using samples::Hurt;
using samples::Remedy;

/// A scene with some elements of most kinds, and with numbers like those of real ones.
Bytes anyScene(std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto some = [&](const char *element, std::size_t most) {
    std::string text;
    for (std::size_t i = random() % (most + 1); i != 0; --i) {
      text += element;
      for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%'))
        text = text.substr(0, at) + std::to_string(1 + random() % 40) + text.substr(at + 1);
    }
    return std::string(" { ").append(text).append("} ");
  };
  const Word version = seed % 2 == 0 ? VERSION_1 : VERSION_2;
  std::string text = "SceneList CamList" + some("Cam ", 3) + "LightList" + some("Light { DirLight0*2 } ", 2) +
                     (seed % 3 == 0 ? "ObjList U=8" : "ObjList") + some("Obj obj_child_num=% ", 12) + "ShapeList" +
                     some("Shape shape_part_num=% ", 6) + "VtxList" + some("VtxGroup vtx_num=% ", 8) + "TriList" +
                     some("TriGroup { Tri*% } ", 5) + "VectorList" + some("TriNvGroup tri_nv_num=% ", 3) + "StList" +
                     some("StGroup st_num=% ", 4) + "PartList" + some("Part part_tri_num=% ", 6) + "MatList" +
                     some("Mat tex_num=2 ", 6) + "TexList" + some("Tex { TexStill } ", 4) + "TeximgList" +
                     some("Teximg texels=16 ", 4) + "AnimList" + some("AnimGroup { AnimStep*% } ", 3) + "NameList" +
                     some("Name text=part~number~% ", 12);
  if (seed % 4 == 1)
    text += "EnvelopeList" + some("Envelope { WeightedPart affected_node_num=% EnvelopeTri*% } ", 2) + "WeightList" +
            some("WeightGroup weight_num=% ", 4) + "ExternalNameList" + some("Name text=other.kb ", 3);
  samples::File file = samples::build(version, text, samples::LinkWords::none);
  for (const samples::NamedWord &word : file.words)
    for (const char *const array : {"vtx[", "normal[", "st[", "weight["})
      if (word.field.starts_with(array)) { // now and then with a line end in it
        const auto number = static_cast<Word>(0x3f000000 + random() % 0x2000000 + (random() % 2 << 31));
        harness::setWordAt(file.bytes, word.offset, random() % 200 == 0 ? 0x3f0d0a00 + (number & 0xff) : number);
      }
  for (const samples::NamedWord &word : file.words)
    if (seed % 5 == 2 && word.field == "list_header_size") // some programs count the size table in
      harness::setWordAt(file.bytes, word.offset,
                         harness::wordAt(file.bytes, word.offset) + 4 * harness::wordAt(file.bytes, word.offset + 8));
  return file.bytes;
}

std::vector<Bytes> scenes() {
  std::vector<Bytes> files = {sampleFile("town"),         sampleFile("figure"),  sampleFile("every-form-1"),
                              sampleFile("every-form-2"), sampleFile("small-1"), sampleFile("small-2")};
  for (std::uint32_t seed = 0; seed < 30; ++seed)
    files.push_back(anyScene(seed));
  return files;
}

/// @return a damage that is told of a file with a hole and cannot be: it is elsewhere, or of another kind.
std::string falselyTold(const Bytes &original, const Hurt &hurt) {
  constexpr std::size_t NEAR = 16; // words that agree by chance
  const bool shorter = hurt.bytes.size() < original.size();
  const bool longer = hurt.bytes.size() > original.size();
  for (const Damage &damage : diagnose(hurt.bytes).damages) {
    const std::string_view kind = damage.kind;
    const bool is_near = damage.begin <= hurt.hole_end + NEAR && hurt.hole_begin <= damage.end + NEAR;
    const bool is_placed = kind == "missing" || kind == "too-many" || kind == "zeros" || kind == "strange";
    if ((is_placed && !is_near && damage.sure != Sure::possible) || (kind == "missing" && !shorter) ||
        (kind == "too-many" && !longer))
      return textOf(damage);
  }
  return "";
}

/// What became of the files with one kind of damage.
struct Rate {
  int total = 0, exact = 0, salvaged = 0, other = 0, falsely_told = 0;

  void count(const Bytes &original, const Hurt &hurt) {
    const Mending mending = mendAndCheck(hurt.bytes, true);
    EXPECT_EQ(mending.broken, "");
    ++total;
    if (mending.bytes == original)
      ++exact;
    else if (mending.result.outcome == Outcome::salvaged &&
             firstLost(original, {hurt.hole_begin, hurt.hole_end}, mending.bytes).empty())
      ++salvaged;
    else
      other += mending.result.outcome == Outcome::salvaged || mending.result.outcome == Outcome::mended;
    if (hurt.hole_begin != 0)
      falsely_told += !falselyTold(original, hurt).empty();
  }
};

TEST(Hurt, ComesBack) {
  const std::vector<Bytes> files = scenes();
  std::printf("%-16s %8s %8s %8s %8s %12s\n", "kind", "total", "exact", "salvaged", "other", "falsely told");
  for (const DamageKind &kind : samples::damageKinds()) {
    SCOPED_TRACE(kind.name);
    std::mt19937 random(7);
    Rate rate;
    for (int round = 0; round < 4; ++round)
      for (const Bytes &file : files) {
        const Hurt hurt = kind.inflict(file, random);
        if (!auditsOk(hurt.bytes))
          rate.count(file, hurt);
      }
    std::printf("%-16s %8d %8d %8d %8d %12d\n", kind.name, rate.total, rate.exact, rate.salvaged, rate.other,
                rate.falsely_told);
    EXPECT_LE(rate.falsely_told, rate.total / 50);
    EXPECT_GT(rate.total, 50);
    EXPECT_GE(rate.exact + (kind.remedy == Remedy::salvaged ? rate.salvaged : 0), kind.percent * rate.total / 100);
  }
}

/// One of two line feeds that stand near to each other lacks its return: either can be the one.
TEST(Hurt, EitherReturnIsPutBack) {
  samples::File file = samples::build(VERSION_1, "VtxList { VtxGroup vtx_num=60 }", samples::LinkWords::none);
  for (const samples::NamedWord &word : file.words)
    if (word.field.starts_with("vtx["))
      harness::setWordAt(file.bytes, word.offset, 0x3f123456);
  samples::setWord(file, "VtxGroup", 0, "vtx[30]", 0x3f0d0a11);
  samples::setWord(file, "VtxGroup", 0, "vtx[31]", 0x3f120a11);
  Bytes hurt = file.bytes;
  const std::size_t at = samples::offsetOf(file, "VtxGroup", 0, "vtx[30]") + 1;
  hurt.erase(hurt.begin() + static_cast<long>(at));
  const Mending mending = mendAndCheck(hurt, false);
  EXPECT_EQ(mending.broken, "");
  const std::string told = "carriage returns taken out before line feeds: 1 put back, one of them at ";
  EXPECT_EQ(storyOf(mending), "ambiguous; " + told + offsetText(at) + "; or " + told + offsetText(at + 4) + '\n');
  for (const std::size_t reading : {1U, 2U}) {
    Bytes mended = hurt;
    EXPECT_EQ(mendBytes(mended, {.reading = reading}).outcome, Outcome::mended);
    EXPECT_EQ(mended == file.bytes, reading == 1);
    EXPECT_EQ(mended[at + 4 * (reading - 1)], '\r');
  }
  EXPECT_EQ(mendAndCheck(hurt, true).result.outcome, Outcome::salvaged);
}

/// What is left out takes its number with it: links to those behind it lead to the same elements as before.
TEST(Hurt, ElementsAreLeftOut) {
  const auto fileOf = [](const char *more) {
    return samples::build(VERSION_1,
                          "ObjList { Obj*4 } ShapeList { Shape*4 shape_part_num=30 } CollList { CollGroup { "
                          "Coll*4 coll_type=0x10 { Terrain } } } " +
                              std::string(more),
                          samples::LinkWords::none);
  };
  const auto shapeAt = [](const samples::File &file, std::size_t number) {
    return samples::offsetOf(file, "Shape", number, "shape_tag");
  };
  constexpr std::pair<const char *, const char *> SHAPE_LINKS[] = {{"Obj", "obj_shape_link"},
                                                                   {"Terrain", "shape_list_index"}};
  for (const bool unclear : {false, true}) { // a link of which the list is not known may lead to a shape
    samples::File file = fileOf(unclear ? "SwitchList { Switch default_link_index=2 }" : "");
    for (Word i = 0; i < 4; ++i)
      for (const auto &[kind, link] : SHAPE_LINKS)
        samples::setWord(file, kind, i, link, 3 - i);
    Bytes hurt = file.bytes;
    std::fill(hurt.begin() + static_cast<long>(shapeAt(file, 1)), hurt.begin() + static_cast<long>(shapeAt(file, 2)),
              static_cast<unsigned char>(0));
    const Result result = mendBytes(hurt, {.salvage = true, .drop = true});
    ASSERT_EQ(result.outcome, Outcome::salvaged);
    EXPECT_TRUE(auditsOk(hurt));
    const Elements kept = elementsOf(hurt);
    ASSERT_EQ(kept.at({"ShapeList", 0}).size(), unclear ? 4U : 3U);
    const Word links[] = {2, 1, ~0U, 0};
    for (Word i = 0; i < 4; ++i)
      for (const auto &[kind, link] : SHAPE_LINKS) { // what is gone makes the file shorter
        const std::size_t at = samples::offsetOf(file, kind, i, link);
        const std::size_t less = kind == std::string("Obj") ? 0 : file.bytes.size() - hurt.size();
        EXPECT_EQ(harness::wordAt(hurt, at - less), unclear ? 3 - i : links[i]) << kind;
      }
  }
}

} // namespace

} // namespace kova::mend
