#include "pelinor/extract_zone.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::TempDir;

// Writes through a real TextWriter and returns the bytes of the file.
template <typename Fn>
std::string Written(Fn write) {
  TempDir dir;
  TextWriter w;
  EXPECT_TRUE(w.Create(dir.File("t")));
  write(w);
  EXPECT_TRUE(w.Commit());
  return ReadFile(dir.File("t"));
}

std::string Summary(const cExtractZones& e) {
  std::string s = e.FieldName + "|" + std::to_string(e.DataTypeOverride) + "|" +
                  std::to_string(e.DataLocationOverride) + "|" +
                  e.PatternOverride + "|" +
                  std::to_string(e.PatternModeOverride) + "|" +
                  std::to_string(e.AutoTemplate) + "|";
  for (const auto& a : e.AnchorRefs) {
    s += a->Name + "@" + std::to_string(a->XOffset) + "," +
         std::to_string(a->YOffset) + ";";
  }
  s += "|";
  for (const auto& z : e.Zones) {
    s +=
        z->Left() + "," + z->Top() + "," + z->Width() + "," + z->Height() + ";";
  }
  return s;
}

TEST(ExtractZone, CoordinatesAreIntegersShownAsText) {
  struct Case {
    std::string assigned;
    std::string shown;
  } cases[] = {
      {"120", "120"}, {" 42 ", "42"}, {"2.5", "2"},
      {"3.5", "4"},   {"-7", "-7"},   {"abc", "9"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.assigned);
    cExtractZone z;
    z.Left("9");
    z.Left(c.assigned);
    EXPECT_EQ(z.Left(), c.shown);
  }
}

TEST(ExtractZones, WritesOrdinaryEntries) {
  struct Case {
    const char* name;
    int32_t type, location, mode;
    std::string pattern;
    bool anchor;
    std::string expected;
  } cases[] = {
      {"no overrides", -100, -100, -100, kUseDefaultProperty, false,
       "Field3FieldName:Total\r\nField3AnchorRef:\r\nField3OverrideCount:0\r\n"
       "Field3AutoTemplate:1\r\nField3ZoneCount:1\r\n"
       "Field3Zone1Left:10\r\nField3Zone1Top:20\r\nField3Zone1Width:30\r\n"
       "Field3Zone1Height:40\r\n"},
      {"all overrides", 4, 0, 3, "[0-9]+", true,
       "Field3FieldName:Total\r\nField3AnchorRef:TotalCaption\r\n"
       "Field3OverrideCount:4\r\nField3Type:4\r\nField3Location:0\r\n"
       "Field3Pattern:[0-9]+\r\nField3PatternMode:3\r\n"
       "Field3AutoTemplate:1\r\nField3ZoneCount:1\r\n"
       "Field3Zone1Left:10\r\nField3Zone1Top:20\r\nField3Zone1Width:30\r\n"
       "Field3Zone1Height:40\r\n"},
      {"empty pattern is an override", -100, -100, -100, "", false,
       "Field3FieldName:Total\r\nField3AnchorRef:\r\nField3OverrideCount:1\r\n"
       "Field3Pattern:\r\nField3AutoTemplate:1\r\nField3ZoneCount:1\r\n"
       "Field3Zone1Left:10\r\nField3Zone1Top:20\r\nField3Zone1Width:30\r\n"
       "Field3Zone1Height:40\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    cExtractZones e;
    e.FieldName = "Total";
    e.DataTypeOverride = c.type;
    e.DataLocationOverride = c.location;
    e.PatternModeOverride = c.mode;
    e.PatternOverride = c.pattern;
    if (c.anchor) e.CreateAnchorRef()->Name = "TotalCaption";
    auto z = e.CreateExtractZone();
    z->Left("10");
    z->Top("20");
    z->Width("30");
    z->Height("40");
    std::string err = "stale";
    EXPECT_EQ(Written([&](TextWriter& w) {
                EXPECT_TRUE(e.WriteSettings(3, w, err));
              }),
              c.expected);
    EXPECT_EQ(err, "");
    // Reading it back gives the same entry and the anchor takes the first
    // zone's position.
    TextReader r;
    r.OpenText(c.expected + "NEXT\r\n");
    cExtractZones back;
    EXPECT_TRUE(back.ReadSettings(3, r, err, "ver0.946"));
    std::string rest;
    EXPECT_TRUE(r.ReadLine(rest));
    EXPECT_EQ(rest, "NEXT");
    if (c.anchor) e.AnchorRefs.Item(1)->XOffset = 10;
    if (c.anchor) e.AnchorRefs.Item(1)->YOffset = 20;
    EXPECT_EQ(Summary(back), Summary(e));
  }
}

TEST(ExtractZones, ReadsEachVersionsLines) {
  struct Case {
    std::string ver;
    std::string body;
    std::string expected;
  } cases[] = {
      {"ver0.900",
       "F1FieldName:Date\r\nF1ZoneCount:1\r\nL:1\r\nT:2\r\nW:3\r\nH:4\r\n",
       "Date|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1||1,2,3,4;"},
      {"ver0.901",
       "F1FieldName:Date\r\nF1OverrideCount:1\r\nF1Type:3\r\nF1ZoneCount:0\r\n",
       "Date|3|-100|##USE_DEFAULT_PROPERTY##|-100|1||"},
      {"ver0.917",
       "F1FieldName:Date\r\nF1AnchorRef:Cap\r\nF1OverrideCount:0\r\n"
       "F1ZoneCount:1\r\nL:5\r\nT:6\r\nW:7\r\nH:8\r\n",
       "Date|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1|Cap@5,6;|5,6,7,8;"},
      {"ver0.938",
       "F1FieldName:Date\r\nF1AnchorRef:Cap\r\nF1OverrideCount:0\r\n"
       "F1ZoneCount:0\r\n",
       "Date|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1|Cap@0,0;|"},
      {"ver0.939",
       "F1FieldName:Date\r\nF1AnchorRef:\r\nF1OverrideCount:0\r\n"
       "F1AutoTemplate:0\r\nF1ZoneCount:0\r\n",
       "Date|-100|-100|##USE_DEFAULT_PROPERTY##|-100|0||"},
      // Override labels are tested in order, case-sensitively; an
      // unmatched line still counts.
      {"ver0.946",
       "F1FieldName:Date\r\nF1AnchorRef:\r\nF1OverrideCount:4\r\n"
       "F1PatternMode:2\r\nF1Other:9\r\nF1type:5\r\nF1Pattern:a,b\r\n"
       "F1AutoTemplate:1\r\nF1ZoneCount:0\r\n",
       "Date|-100|-100|a,b|2|1||"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ver + " " + c.body);
    TextReader r;
    r.OpenText(c.body + "NEXT\r\n");
    cExtractZones e;
    std::string err = "stale";
    EXPECT_TRUE(e.ReadSettings(1, r, err, c.ver));
    EXPECT_EQ(err, "");
    EXPECT_EQ(Summary(e), c.expected);
    std::string rest;
    EXPECT_TRUE(r.ReadLine(rest));
    EXPECT_EQ(rest, "NEXT");
  }
}

TEST(ExtractZones, RejectsMalformedEntries) {
  struct Case {
    std::string ver;
    std::string body;
    std::string err;
    std::string kept;
  } cases[] = {
      {"ver", "F1FieldName:Date\r\n", "Invalid version number",
       "|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1||"},
      {"ver0.946", "", kTemplateIncorrectParameter,
       "|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1||"},
      {"ver0.946", "NoDelimiter\r\n", kTemplateIncorrectParameter,
       "|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1||"},
      {"ver0.946", "F1FieldName:Date\r\nF1AnchorRef:\r\nF1OverrideCount:x\r\n",
       kTemplateIncorrectParameter,
       "Date|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1||"},
      {"ver0.946",
       "F1FieldName:Date\r\nF1AnchorRef:\r\nF1OverrideCount:2\r\n"
       "F1Type:3\r\nF1Location:front\r\n",
       kTemplateIncorrectParameter,
       "Date|3|-100|##USE_DEFAULT_PROPERTY##|-100|1||"},
      {"ver0.946",
       "F1FieldName:Date\r\nF1AnchorRef:\r\nF1OverrideCount:0\r\n"
       "F1AutoTemplate:1\r\nF1ZoneCount:2\r\nL:1\r\nT:2\r\nW:3\r\nH:4\r\n"
       "L:5\r\n",
       kTemplateIncorrectParameter,
       "Date|-100|-100|##USE_DEFAULT_PROPERTY##|-100|1||1,2,3,4;"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ver + " " + c.body);
    TextReader r;
    r.OpenText(c.body);
    cExtractZones e;
    std::string err;
    EXPECT_FALSE(e.ReadSettings(1, r, err, c.ver));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(Summary(e), c.kept);
  }
}

TEST(ExtractZones, CopyIsIndependent) {
  cExtractZones e;
  e.FieldName = "Total";
  e.PatternOverride = "";
  e.CreateAnchorRef()->Name = "first";
  e.CreateAnchorRef()->Name = "second";  // replaces the first
  ASSERT_EQ(e.AnchorRefs.Count(), 1);
  e.CreateExtractZone()->Top("5");
  std::shared_ptr<cExtractZones> copy;
  e.Copy(copy);
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(Summary(*copy), Summary(e));
  const std::string before = Summary(e);
  copy->AnchorRefs.Item(1)->Name = "changed";
  copy->Zones.Item(1)->Top("99");
  copy->CreateExtractZone();
  EXPECT_EQ(Summary(e), before);
}

}  // namespace
}  // namespace pelinor
