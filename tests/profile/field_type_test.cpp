#include "pelinor/field_type.h"

#include <gtest/gtest.h>

#include <string>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;

struct Expected {
  std::string display_name;
  int32_t type, location, catagory, hidden, ptn_mode, allow, level;
  std::string anchor, pattern, caption, dflt, candidate;
};

TEST(FieldTypeIni, ReadsKeysWithTheirSectionDefaults) {
  struct Case {
    std::string body;
    Expected want;
  } cases[] = {
      {"Name:Amount\r\n",
       {"Amount", 1, 0, 1, 0, 0, 0, -100, "", "", "", "", ""}},
      {"Name:Total\r\nDisplayName:Invoice total\r\nType:4\r\nLocation:-6\r\n"
       "CaptionSearch:Total\r\nCatagory:2\r\nDefault:0.00\r\nHidden:1\r\n"
       "AnchorRef:TopLogo\r\nAnchorRef:Ignored\r\nPattern:[0-9]+\r\n"
       "ApplyPatternMatch:1\r\nAllowPatternOverride:true\r\n"
       "Candidate:last\r\nInternalValidateLevel:3\r\n",
       {"Invoice total", 4, -6, 2, 1, 3, 1, 3, "TopLogo", "[0-9]+", "Total",
        "0.00", "last"}},
      {"Name:A\r\nApplyPatternMatch:TRUE\r\nAllowPatternOverride:1\r\n",
       {"A", 1, 0, 1, 0, 3, 1, -100, "", "", "", "", ""}},
      {"Name:A\r\nApplyPatternMatch:yes\r\nAllowPatternOverride:-1\r\n",
       {"A", 1, 0, 1, 0, 0, 0, -100, "", "", "", "", ""}},
      {"Name:A\r\nApplyPatternMatch:-1\r\nType:abc\r\nDisplayName:\r\n",
       {"A", 1, 0, 1, 0, 0, 0, -100, "", "", "", "", ""}},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    const std::string path = dir.File("p.ini");
    WriteFile(path, "ver1.00\r\n[Field1]\r\n" + c.body + "[Field2]\r\n");
    cIniFile ini;
    cFieldType f;
    std::string err = "old";
    ASSERT_TRUE(f.ReadIniSettings("Field1", ini, path, err, "ver1.00"));
    EXPECT_EQ(f.DisplayName, c.want.display_name);
    EXPECT_EQ(f.DataType, c.want.type);
    EXPECT_EQ(f.DataLocation, c.want.location);
    EXPECT_EQ(f.Catagory, c.want.catagory);
    EXPECT_EQ(f.Hidden, c.want.hidden);
    EXPECT_EQ(f.PtnMode, c.want.ptn_mode);
    EXPECT_EQ(f.PtnAllowOverride, c.want.allow);
    EXPECT_EQ(f.InternalValidateLevel, c.want.level);
    EXPECT_EQ(f.Pattern, c.want.pattern);
    EXPECT_EQ(f.CaptionSearch, c.want.caption);
    EXPECT_EQ(f.Default, c.want.dflt);
    EXPECT_EQ(f.Candidate, c.want.candidate);
    if (c.want.anchor.empty()) {
      EXPECT_EQ(f.AnchorRefs.Count(), 0);
    } else {
      ASSERT_EQ(f.AnchorRefs.Count(), 1);
      EXPECT_EQ(f.AnchorRefs.Item(1)->Name, c.want.anchor);
    }
  }
}

TEST(FieldTypeIni, FailsWithoutName) {
  TempDir dir;
  const std::string path = dir.File("p.ini");
  WriteFile(path, "[Field1]\r\nName:\r\nType:4\r\n");
  struct Case {
    std::string file, section, err;
  } cases[] = {
      {path, "Field1", "Reading profile. Unable to find field name. "},
      {path, "Field9", "Reading profile. Unable to find field name. "},
      {path + ".none", "Field1",
       "Reading profile. Unable to find field name. Cannot find file " + path +
           ".none"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.section);
    cIniFile ini;
    cFieldType f;
    std::string err;
    EXPECT_FALSE(f.ReadIniSettings(c.section, ini, c.file, err, ""));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(f.DataType, 1);  // nothing after the name is read
  }
}

TEST(FieldTypeRecord, WritesSixQuotedLinesAndReadsBackFour) {
  TempDir dir;
  const std::string path = dir.File("f.txt");
  cFieldType f;
  f.Name = "Total";
  f.DisplayName = "Invoice, total";
  f.DataType = 4;
  f.DataLocation = -6;
  f.CaptionSearch = "Total due";
  f.InternalValidateLevel = -100;
  TextWriter w;
  ASSERT_TRUE(w.Create(path));
  std::string err = "old";
  ASSERT_TRUE(f.WriteSettings(3, w, err));
  EXPECT_EQ(err, "");
  ASSERT_TRUE(w.Commit());
  EXPECT_EQ(testing::ReadFile(path),
            "\"Field3Name:Total\"\r\n\"Field3DisplayName:Invoice, total\"\r\n"
            "\"Field3Type:4\"\r\n\"Field3PageNo:-6\"\r\n"
            "\"Field3CaptionSearch:Total due\"\r\n"
            "\"Field3InternalValidateLevel:-100\"\r\n");

  // "PageNo" is not the label the reader takes, so the location stays and
  // the reader runs off the end looking for its fourth line.
  TextReader r;
  ASSERT_TRUE(r.Open(path));
  cFieldType back;
  EXPECT_FALSE(back.ReadSettings(3, r, err, "ver0.946"));
  EXPECT_EQ(err, "Error reading profile settings file. Incorrect parameter");
  EXPECT_EQ(back.Name, "Total");
  EXPECT_EQ(back.DisplayName, "Invoice, total");
  EXPECT_EQ(back.DataType, 4);
  EXPECT_EQ(back.DataLocation, 0);

  TextWriter closed;
  EXPECT_FALSE(f.WriteSettings(1, closed, err));
  EXPECT_EQ(err, "Error writing to profile settings file, field section. ");
}

TEST(FieldTypeRecord, ReadsAcceptedLinesByVersion) {
  struct Case {
    std::string ver, data;
    bool ok;
    std::string err, name, display;
    int32_t type, location;
    std::string rest;  // the next item left in the file
  } cases[] = {
      {"ver0.946",
       "Field2Location:7\r\nfield2name:B\r\nNoDelimiter\r\nField1Type:9\r\n"
       "Field2DisplayName:Bee\r\nField2PageNo:5\r\nFIELD2TYPE:3\r\nnext\r\n",
       true, "", "B", "Bee", 3, 7, "next"},
      {"ver0.900", "Field2Name:B\r\nField2DisplayName:Bee\r\nField2Type:3\r\n",
       true, "", "B", "Bee", 1, 0, "Field2Type:3"},
      {"ver0.901", "Field2Name:B\r\nField2DisplayName:Bee\r\nField2Type:3\r\n",
       false, "Error reading profile settings file. Incorrect parameter", "B",
       "Bee", 3, 0, ""},
      {"ver0.946", "Field2Name:B\r\nField2Type:x3\r\nnext\r\n", false,
       "Error reading profile settings file. Incorrect parameter", "B", "", 1,
       0, "next"},
      {"ver0.946", "Field2Location:1e12\r\n", false,
       "Error reading profile settings file. Incorrect parameter", "", "", 1, 0,
       ""},
      {"ve", "Field2Name:B\r\n", false, "Invalid version number", "", "", 1, 0,
       "Field2Name:B"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.ver + " " + c.data);
    TextReader r;
    r.OpenText(c.data);
    cFieldType f;
    std::string err = "old";
    EXPECT_EQ(f.ReadSettings(2, r, err, c.ver), c.ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(f.Name, c.name);
    EXPECT_EQ(f.DisplayName, c.display);
    EXPECT_EQ(f.DataType, c.type);
    EXPECT_EQ(f.DataLocation, c.location);
    std::string rest;
    r.ReadItem(rest);
    EXPECT_EQ(rest, c.rest);
  }
}

}  // namespace
}  // namespace pelinor
