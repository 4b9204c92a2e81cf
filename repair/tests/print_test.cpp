#include "repair/print.h"

#include <gtest/gtest.h>

namespace kova::repair {

namespace {

const Change SIZE = {0x2f8, "ObjList", 2, "obj_size", 100, 96, "the sum of its parts"};
const Change TAG = {0x1'0000'0008, "FileHeader", {}, "header_tag", 0xffffffff, 0, "every header's"};
const Change INDEX = {12, "NameList", 0xffffffff, "links[1]", 0xffffffff, 0x7fffffff, "its position"};

TEST(RepairPrint, WordsAreTold) {
  EXPECT_EQ(changeLine(SIZE, Form::text), "0x000002f8 ObjList[2] obj_size: 100 -> 96 (the sum of its parts)\n");
  EXPECT_EQ(changeLine(TAG, Form::text, 2),
            "reading 2: 0x100000008 FileHeader header_tag: 0xffffffff -> 0x00000000 (every header's)\n");
  EXPECT_EQ(changeLine(INDEX, Form::text),
            "0x0000000c NameList[4294967295] links[1]: -1 -> 2147483647 (its position)\n");
  EXPECT_EQ(changeLine(INDEX, Form::json),
            R"({"offset":12,"list":"NameList","element":4294967295,"field":"links[1]","old":4294967295,)"
            R"("new":2147483647,"why":"its position"})"
            "\n");
  EXPECT_EQ(changeLine(TAG, Form::json, 1),
            R"({"offset":4294967304,"list":"FileHeader","element":null,"field":"header_tag","old":4294967295,"new":0,)"
            R"("why":"every header's","reading":1})"
            "\n");
}

TEST(RepairPrint, LossesAreTold) {
  const Loss loss = {"VtxList", 3, "cut to 8 of 90 vertices"};
  EXPECT_EQ(lossLine(loss, Form::text), "lost: VtxList[3]: cut to 8 of 90 vertices\n");
  EXPECT_EQ(lossLine(loss, Form::json), "{\"loss\":\"cut to 8 of 90 vertices\",\"list\":\"VtxList\",\"element\":3}\n");
  EXPECT_EQ(lossLine({"MatList", 0, "zeros", true}, Form::text), "added: MatList[0]: zeros\n");
  EXPECT_EQ(lossLine({"MatList", 0, "zeros", true}, Form::json),
            "{\"added\":\"zeros\",\"list\":\"MatList\",\"element\":0}\n");
  EXPECT_EQ(lossLine({"TexList", {}, "12 of 20 elements"}, Form::text), "lost: TexList: 12 of 20 elements\n");
}

} // namespace

} // namespace kova::repair
