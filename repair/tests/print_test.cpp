#include "repair/print.h"

#include <gtest/gtest.h>

namespace kova::repair {

namespace {

/// What is printed about one file.
struct Case {
  const char *name;
  Result result;
  const char *output; ///< empty if it was not written
  const char *text;
  const char *json; ///< of the last line
};

const Change SIZE = {0x2f8, "ObjList", 2, "obj_size", 100, 96, "the sum of its parts"};
const Change TAG = {0x1'0000'0008, "FileHeader", {}, "header_tag", 0xffffffff, 0, "every header's"};
const Change INDEX = {12, "NameList", 0xffffffff, "links[1]", 0xffffffff, 0x7fffffff, "its position"};

std::vector<Case> cases() {
  return {
      {"good",
       {},
       "out",
       "nothing to mend; out audits OK\n",
       R"({"outcome":"good","input":"in\n","output":"out","written":true,"undone":0,"changes":0,"losses":0,"reason":null})"},
      {"good, not written",
       {},
       "",
       "nothing to mend; in\\x0a audits OK\n",
       R"({"outcome":"good","input":"in\n","output":null,"written":false,"undone":0,"changes":0,"losses":0,"reason":null})"},
      {"mended",
       {.outcome = Outcome::mended, .changes = {SIZE}},
       "o\x1b\xff",
       "mended: 1 word changed, o\\x1b\\xff audits OK\n",
       R"({"outcome":"mended","input":"in\n","output":"o\u001b\\xff","written":true,"undone":0,"changes":1,"losses":0,"reason":null})"},
      {"mended, not written",
       {.outcome = Outcome::mended, .changes = {SIZE, TAG}},
       "",
       "can be mended: 2 words to change\n",
       R"({"outcome":"mended","input":"in\n","output":null,"written":false,"undone":0,"changes":2,"losses":0,"reason":null})"},
      {"salvaged",
       {.outcome = Outcome::salvaged, .losses = {{}, {}}},
       "out",
       "salvaged: 0 words changed, 2 losses, out audits OK\n",
       R"({"outcome":"salvaged","input":"in\n","output":"out","written":true,"undone":0,"changes":0,"losses":2,"reason":null})"},
      {"ambiguous",
       {.outcome = Outcome::ambiguous, .changes = {SIZE}, .alternative = {TAG}},
       "",
       "two readings, nothing changed; nothing written\n",
       R"({"outcome":"ambiguous","input":"in\n","output":null,"written":false,"undone":0,"changes":0,"losses":0,"reason":null})"},
      {"ambiguous, written",
       {.outcome = Outcome::ambiguous, .changes = {SIZE}, .alternative = {TAG}},
       "out",
       "two readings, nothing changed; out is a copy\n",
       R"({"outcome":"ambiguous","input":"in\n","output":"out","written":true,"undone":0,"changes":0,"losses":0,"reason":null})"},
      {"hopeless",
       {.outcome = Outcome::hopeless, .reason = "a\nb"},
       "",
       "cannot be mended: a\\x0ab; nothing written\n",
       R"({"outcome":"hopeless","input":"in\n","output":null,"written":false,"undone":0,"changes":0,"losses":0,"reason":"a\nb"})"},
      {"hopeless, in part",
       {.outcome = Outcome::hopeless, .changes = {SIZE}, .reason = "no"},
       "out",
       "cannot be mended: no; 1 word changed, out does not audit OK\n",
       R"({"outcome":"hopeless","input":"in\n","output":"out","written":true,"undone":0,"changes":1,"losses":0,"reason":"no"})"},
  };
}

TEST(RepairPrint, TheLastLineTellsTheOutcome) {
  for (const Case &a : cases()) {
    SCOPED_TRACE(a.name);
    const Ending ending = {a.result, "in\n", a.output};
    EXPECT_EQ(endingLine(ending, Form::text), a.text);
    EXPECT_EQ(endingLine(ending, Form::json), a.json + std::string("\n"));
  }
}

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
