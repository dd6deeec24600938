#include "pelinor/table_extract.h"

#include <gtest/gtest.h>

#include <string>

#include "pelinor/extract_zone.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::TempDir;

std::string Anchors(const Collection<std::shared_ptr<cAnchorRef>>& anchors) {
  std::string s;
  for (const auto& a : anchors) {
    s += a->Name + "@" + std::to_string(a->XOffset) + "," +
         std::to_string(a->YOffset) + ";";
  }
  return s;
}

std::string Summary(const cTableExtract& t) {
  std::string s =
      std::to_string(t.Left) + "," + std::to_string(t.Top) + "," +
      std::to_string(t.Width) + "," + std::to_string(t.Height) + "|" +
      Anchors(t.TopAnchorRefs) + "|" + Anchors(t.BottomAnchorRefs) + "|" +
      std::to_string(t.Location) + "|" + std::to_string(t.PageExtract) + "|";
  for (int32_t p : t.IgnorePages) s += std::to_string(p) + ";";
  s += "|" + std::to_string(t.SheetNo) + "|";
  for (const auto& c : t.Columns) {
    s += c->Name + "@" + std::to_string(c->Left) + "+" +
         std::to_string(c->Width) + ";";
  }
  return s;
}

std::string Write(const cTableExtract& t, int32_t tabidx) {
  TempDir dir;
  TextWriter w;
  EXPECT_TRUE(w.Create(dir.File("t")));
  std::string err = "stale";
  EXPECT_TRUE(t.WriteSettings(w, tabidx, err));
  EXPECT_EQ(err, "");
  EXPECT_TRUE(w.Commit());
  return ReadFile(dir.File("t"));
}

cTableExtract SampleTable(int32_t location) {
  cTableExtract t;
  t.Left = 100;
  t.Top = 900;
  t.Width = 2200;
  t.Height = 1500;
  t.Location = location;
  auto top = t.CreateTopAnchorRef();
  top->Name = "Description";
  top->XOffset = 110;
  top->YOffset = 880;
  t.CreateTopAnchorRef()->Name = "Second";  // only the first is stored
  t.PageExtract = 1;
  t.IgnorePages.Add(2);
  t.IgnorePages.Add(4);
  t.SheetNo = 3;
  auto c1 = t.CreateColumn();
  c1->Left = 100;
  c1->Width = 1200;
  c1->Name = "Description";
  c1->TransferTo = "not stored";
  auto c2 = t.CreateColumn();
  c2->Left = 1300;
  c2->Width = 400;
  c2->Name = "Qty";
  return t;
}

TEST(TableExtract, WritesItsLines) {
  EXPECT_EQ(Write(SampleTable(5), 1),
            "Table1Left:100\r\nTable1Top:900\r\nTable1Width:2200\r\n"
            "Table1Height:1500\r\nTable1TopAnchorRef:Description:110:880\r\n"
            "Table1BottomAnchorRef:\r\nTable1Location:5\r\n"
            "Table1PageExtract:1\r\nTable1IgnorePagesCount:2\r\n"
            "Table1IgnorePage 1:2\r\nTable1IgnorePage 2:4\r\n"
            "Table1SheetNo:3\r\nTable1ColsCount:2\r\n"
            "Table1Col1Left:100\r\nTable1Col1Width:1200\r\n"
            "Table1Col1Name:Description\r\nTable1Col2Left:1300\r\n"
            "Table1Col2Width:400\r\nTable1Col2Name:Qty\r\n");
}

TEST(TableExtract, LocationsRoundTripAsWordsOrNumbers) {
  struct Case {
    int32_t location;
    std::string word;
  } cases[] = {{0, "FRONT"}, {-1, "BACK"}, {-6, "ALL"},
               {-7, "MID"},  {5, "5"},     {-3, "-3"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.word);
    const cTableExtract t = SampleTable(c.location);
    const std::string text = Write(t, 2);
    EXPECT_NE(text.find("Table2Location:" + c.word + "\r\n"),
              std::string::npos);
    TextReader r;
    r.OpenText(text + "NEXT\r\n");
    cTableExtract back;
    std::string err;
    EXPECT_TRUE(back.ReadSettings(r, err, "ver0.946"));
    // Only the first top anchor comes back.
    EXPECT_EQ(back.TopAnchorRefs.Count(), 1);
    EXPECT_EQ(back.Columns.Item(1)->TransferTo, "");
    EXPECT_EQ(Summary(back),
              "100,900,2200,1500|Description@110,880;||" +
                  std::to_string(c.location) +
                  "|1|2;4;|3|Description@100+1200;Qty@1300+400;");
    std::string rest;
    EXPECT_TRUE(r.ReadLine(rest));
    EXPECT_EQ(rest, "NEXT");
  }
}

TEST(TableExtract, ReadsOlderVersionsAndAnchorForms) {
  const std::string head = "L:1\r\nT:2\r\nW:3\r\nH:4\r\n";
  struct Case {
    std::string ver;
    std::string body;
    std::string expected;
  } cases[] = {
      {"ver0.922",
       head + "TA:Top\r\nBA:\r\nLoc:mid\r\nC:1\r\nL:5\r\nW:6\r\nN:Qty\r\n",
       "1,2,3,4|Top@0,0;||-7|0||0|Qty@5+6;"},
      {"ver0.923",
       head + "TA:Top:a:b\r\nBA:End:7:8\r\nLoc:BACK\r\nPE:2\r\nIC:1\r\n"
              "IP:9\r\nC:0\r\n",
       "1,2,3,4||End@7,8;|-1|2|9;|0|"},
      {"ver0.924",
       head + "TA:\r\nBA:\r\nLoc:ALL\r\nPE:0\r\nIC:0\r\nS:4\r\nC:0\r\n",
       "1,2,3,4|||-6|0||4|"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ver);
    TextReader r;
    r.OpenText(c.body + "NEXT\r\n");
    cTableExtract t;
    std::string err = "stale";
    EXPECT_TRUE(t.ReadSettings(r, err, c.ver));
    EXPECT_EQ(err, "");
    EXPECT_EQ(Summary(t), c.expected);
    std::string rest;
    EXPECT_TRUE(r.ReadLine(rest));
    EXPECT_EQ(rest, "NEXT");
  }
}

TEST(TableExtract, RejectsMalformedTables) {
  const std::string head = "L:1\r\nT:2\r\nW:3\r\nH:4\r\nTA:\r\nBA:\r\n";
  struct Case {
    std::string ver;
    std::string body;
    std::string err;
    std::string kept;
  } cases[] = {
      {"v", head, "Invalid version number", "0,0,0,0|||0|0||0|"},
      {"ver0.946", "L:1\r\nT:x\r\n", kTemplateIncorrectParameter,
       "1,0,0,0|||0|0||0|"},
      {"ver0.946", head + "Loc:SIDE\r\n", kTemplateIncorrectParameter,
       "1,2,3,4|||0|0||0|"},
      {"ver0.946", head + "Loc:5\r\nPE:1\r\nIC:2\r\nIP:3\r\n",
       kTemplateIncorrectParameter, "1,2,3,4|||5|1|3;|0|"},
      {"ver0.946",
       head + "Loc:5\r\nPE:1\r\nIC:0\r\nS:1\r\nC:2\r\nL:1\r\nW:2\r\nN:A\r\n"
              "L:1\r\nW:wide\r\n",
       kTemplateIncorrectParameter, "1,2,3,4|||5|1||1|A@1+2;"},
      {"ver0.946", "", kTemplateIncorrectParameter, "0,0,0,0|||0|0||0|"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    TextReader r;
    r.OpenText(c.body);
    cTableExtract t;
    std::string err;
    EXPECT_FALSE(t.ReadSettings(r, err, c.ver));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(Summary(t), c.kept);
  }
}

TEST(TableExtract, CopyIsIndependent) {
  const cTableExtract t = SampleTable(-7);
  std::shared_ptr<cTableExtract> copy;
  t.Copy(copy);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(Summary(*copy), Summary(t));
  EXPECT_EQ(copy->Columns.Item(1)->TransferTo, "not stored");
  const std::string before = Summary(t);
  copy->TopAnchorRefs.Item(1)->Name = "changed";
  copy->Columns.Item(2)->Name = "changed";
  copy->IgnorePages.Add(7);
  copy->CreateColumn();
  EXPECT_EQ(Summary(t), before);
}

}  // namespace
}  // namespace pelinor
