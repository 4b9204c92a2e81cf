/// What a hostile document can cost: memory, bytes written and time grow with its size and nothing else.
#include "records/derive.h"
#include "tests/allocations.h"
#include "json/tests/roundtrip.h"

#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>

namespace kova::json {
namespace {

/// Bytes for each byte of a document. A record whose words are those of all others stands as a row of three bytes.
constexpr std::size_t MEMORY = 200;
constexpr std::size_t WRITTEN = 60;
constexpr std::size_t SIZE = 50'000;

/// What is repeated, between a beginning and an end.
struct Hostile {
  std::string begin, unit, end;

  std::string document(std::size_t size) const {
    std::string text = R"({"FileHeader":{"version":"0x200"},)" + begin;
    while (text.size() < size)
      text += unit;
    return text + end;
  }
};

/// Records that stand as rows of nothing, since all of their words are equal.
template <class Head> Hostile emptyRows(const std::string &begin) {
  std::string all;
  for (const Slot &slot : SLOTS<WORDS<Head>>) {
    if (follows(slot.role))
      continue;
    std::string words = "0";
    for (std::size_t word = 1; word < slot.words; ++word)
      words += ",0";
    all.append(all.empty() ? "\"" : ",\"").append(slot.key).append("\":");
    all.append(slot.words > 1 ? '[' + words + ']' : words);
  }
  return {begin + R"(:{"all":{)" + all + R"(},"rows":[[])", ",[]", "]}}]}}"};
}

std::vector<Hostile> hostileDocuments() {
  const std::string names = R"("NameList":{"element":[)";
  std::vector<Hostile> all = {
      {names + R"({"text":""})", R"(,{"text":""})", "]}}"},
      {names + R"({"text":")", "a", "\"}]}}"},
      {names + R"({"text":")", R"(\\x41)", "\"}]}}"},
      {names, R"({"text":)", ""},
      {names + '[', "[", ""},
      {R"("behind":{"raw":")", "AAAA", "\"}}"},
      {R"("ObjList":{"obj_num":4294967295,"obj_num_byte":[0)", ",0", "]}}"},
      {R"("ObjList":{"usr_ext_blk_size":4294967295,"van":[0)", ",0", "]}}"},
      {"\"ObjList\":{\"", "x", "\":1}}"},
      {"\"ObjList\":", " ", "{}}"},
      {R"("SceneList":{"scene_cfg":)", "1", "}}"},
  };
  for (const char *const list : {"VectorList\":{\"vtx_group", "StList\":{\"element", "TeximgList\":{\"element"})
    all.push_back({'"' + std::string(list) + "\":[{}", ",{}", "]}}"});
  all.push_back(emptyRows<TriHead>(
      R"("TriList":{"element":[{"tri_group_name_index":0,"tri_anim_type":0,"vtx_group_index":0,"tri_color_group_index":0,)"
      R"("vtx_color_group_index":0,"tri_nv_group_index":0,"vtx_nv_group_index":0,"st_group_index":0,"tri")"));
  all.push_back(
      emptyRows<EnvelopeTri>(R"("EnvelopeList":{"element":[{"name_index":0,"envelope_type":0,"envelope_tri")"));
  all.push_back(emptyRows<FullWeightedPartHead>(
      R"("EnvelopeList":{"element":[{"name_index":0,"envelope_type":0,"full_weighted_part")"));
  all.push_back(emptyRows<Cluster>(R"("ClusterList":{"element":[{"name_index":0,"cluster_shape_type":0,"cluster")"));
  return all;
}

struct Cost {
  std::size_t memory;
  std::size_t written;
  double seconds;
};

Cost costOf(const std::string &document) {
  const Stream stream(::fmemopen(const_cast<char *>(document.data()), document.size(), "rb"));
  const Stream out(std::tmpfile());
  const std::size_t before = test::allocations.held;
  test::allocations.peak = before;
  const std::clock_t begin = std::clock();
  {
    const auto scene = std::make_unique<Document>();
    const bool is_scene = readScene(stream.get(), *scene).empty();
    EXPECT_EQ(is_scene ? writeScene(out.get(), *scene) : 1, 1);
  }
  return {test::allocations.peak - before, static_cast<std::size_t>(std::ftell(out.get())),
          static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC};
}

} // namespace

TEST(JsonBounds, HostileDocuments) {
  constexpr std::size_t BUFFERS = 1'000'000;
  for (const Hostile &hostile : hostileDocuments()) {
    const std::string small = hostile.document(SIZE), large = hostile.document(4 * SIZE);
    Cost quick = costOf(small), slow = costOf(large);
    EXPECT_LE(slow.memory, MEMORY * large.size() + BUFFERS) << hostile.begin;
    EXPECT_LE(slow.written, WRITTEN * large.size()) << hostile.begin;
    for (int round = 0; round < 4 && slow.seconds > 12 * quick.seconds + 0.002; ++round) {
      quick.seconds = std::min(quick.seconds, costOf(small).seconds);
      slow.seconds = std::min(slow.seconds, costOf(large).seconds);
    }
    EXPECT_LE(slow.seconds, 12 * quick.seconds + 0.002) << hostile.begin;
  }
}

/// Sizes that say more than a document holds are refused, however they are given; the file could have any size.
TEST(JsonBounds, SizesThatNothingFills) {
  const std::string scene = R"({"FileHeader":{"version":"0x100"},)";
  const std::string light = R"("light_name_index":0,"ambient_r":0,"ambient_g":0,"ambient_b":0,"light_type":)";
  for (const std::string &list :
       {std::string(R"("SceneList":{"scene_cfg":0,"scene_name_index":0,"scene_header_size":1000000000}})"),
        R"("LightList":{"element":[{)" + light + R"(1,"light_header_size":70000}]}})",
        R"("LightList":{"element":[{)" + light + R"(9,"light_header_size":4294967295}]}})",
        std::string(R"("CollList":{"element":[{"coll_group_name_index":0,"coll":[{"coll_name_index":0,)"
                    R"("coll_type":99,"coll_size":2000000000,"coll_header_size":0}]}]}})")}) {
    EXPECT_NE(fileOf(scene + list).wrong.find("leave most of the list empty"), std::string::npos) << list;
  }
  // Such a file comes back all the same: the list stands as raw bytes.
  Back small = fileOf(scene + R"("SceneList":{"scene_cfg":0,"scene_name_index":0,"scene_header_size":60000}})");
  ASSERT_EQ(small.wrong, "");
  EXPECT_EQ(brokenRoundTrips(small.file), "");
  Bytes large = small.file;
  large.resize(large.size() + 65536);
  for (const std::size_t at : {std::size_t{4}, std::size_t{16}, FILE_HEADER_BYTES + 4, FILE_HEADER_BYTES + 8})
    harness::setWordAt(large, at, harness::wordAt(large, at) + 65536);
  EXPECT_NE(documentOf(large).find("\"raw\""), std::string::npos);
  EXPECT_EQ(brokenRoundTrips(large), "");
}

} // namespace kova::json
