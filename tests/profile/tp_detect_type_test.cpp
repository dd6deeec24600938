#include "pelinor/tp_detect_type.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;
using Strings = std::vector<std::string>;

Strings ToVector(const Collection<std::string>& c) {
  return Strings(c.begin(), c.end());
}

TEST(TpDetectType, ReadsDefaultsAndClamps) {
  struct Case {
    std::string section, body;
    Strings texts;  // type, display, format, country, country format, delims
    std::vector<int32_t> numbers;  // locate, distance, min, max, spaces
    Strings searches;
  } cases[] = {
      {"TYPE1",
       "Format:12\r\n",
       {"1", "", "12", "", "", ""},
       {0, 0, 5, 9, 0},
       {}},
      {"Type7",
       "Format:VAT\r\nDisplayName:VAT number\r\nLocate:2\r\n"
       "DistanceConst:40\r\nCountry:GB\r\nCountryFormat:GB999\r\n"
       "MinLength:6\r\nMaxLength:3\r\nDelimitersAllowed:- \r\n"
       "SuppressSpaces:True\r\nSearchCount:3\r\nSearch1:VAT Reg\r\n"
       "Search3:VAT No\r\n",
       {"7", "VAT number", "VAT", "GB", "GB999", "-"},
       {2, 0, 6, 6, 1},
       {"VAT Reg", "", "VAT No"}},
      {"TYPE256",
       "Format:256\r\nMinLength:-2\r\nMaxLength:4\r\n",
       {"256", "", "256", "", "", ""},
       {0, 100, 5, 5, 0},
       {}},
      {"TYPE256",
       "Format:256\r\nDistanceConst:40\r\nSuppressSpaces:yes\r\n",
       {"256", "", "256", "", "", ""},
       {0, 40, 5, 9, 0},
       {}},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    WriteFile(dir.File("d.ini"), "[" + c.section + "]\r\n" + c.body);
    cIniFile ini;
    cTpDetectType t;
    std::string err = "stale";
    ASSERT_TRUE(t.ReadIniSettings(c.section, ini, dir.File("d.ini"), err, ""));
    EXPECT_EQ(err, "");
    EXPECT_EQ((Strings{t.TemplateType(), t.DisplayName(), t.Format(),
                       t.Country(), t.CountryFormat(), t.DelimsAllowed()}),
              c.texts);
    EXPECT_EQ(
        (std::vector<int32_t>{t.Locate(), t.FloatDistanceConst(), t.MinDigits(),
                              t.MaxDigits(), t.SpacesAllowed() ? 1 : 0}),
        c.numbers);
    EXPECT_EQ(ToVector(t.SearchStrings()), c.searches);
  }
}

TEST(TpDetectTypes, ReadsMainAndNumberedTypes) {
  struct Case {
    std::string data;
    bool ok;
    std::string err;
    Strings types;
    int32_t validate;
    std::string skip;
    Strings discard;
  } cases[] = {
      {"[TYPE1]\r\nFormat:1\r\n[TYPE2]\r\nFormat:2\r\n[TYPE4]\r\nFormat:4\r\n"
       "[TYPE256]\r\nFormat:256\r\n",
       true,
       "",
       {"1", "2", "256"},
       0,
       "",
       {}},
      {"[Main]\r\nDiscardCount:3\r\nDiscard1:COPY\r\nDiscard3:DRAFT\r\n",
       true,
       "",
       {},
       1,
       "0",
       {"COPY", "DRAFT"}},
      {"[MAIN]\r\nValidate:false\r\nSkipFirstNoPages:2\r\n"
       "DiscardCount:2000000000\r\nDiscard2:X\r\n",
       true,
       "",
       {},
       0,
       "2",
       {"X"}},
      {"[MAIN]\r\nValidate:TRUE\r\n[TYPE1]\r\nFormat:1\r\n",
       true,
       "",
       {"1"},
       1,
       "0",
       {}},
      {"[TYPE1]\r\nFormat:1\r\n[TYPE2]\r\nFormat:2\r\n[TYPE3]\r\nLocate:1\r\n"
       "[TYPE256]\r\nFormat:256\r\n",
       false,
       "Reading template detection config. Unable to find format. ",
       {"1", "2"},
       0,
       "",
       {}},
      {"[TYPE256]\r\nDisplayName:x\r\n",
       false,
       "Reading template detection config. Unable to find format. ",
       {},
       0,
       "",
       {}},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    WriteFile(dir.File("d.ini"), c.data);
    cTpDetectTypes d;
    std::string err = "stale";
    EXPECT_EQ(d.ReadSettings(dir.File("d.ini"), err), c.ok);
    EXPECT_EQ(err, c.err);
    Strings types;
    for (const auto& t : d.Types) types.push_back(t->TemplateType());
    EXPECT_EQ(types, c.types);
    EXPECT_EQ(d.Validate, c.validate);
    EXPECT_EQ(d.SkipFirstNoPages, c.skip);
    EXPECT_EQ(ToVector(d.Discard), c.discard);
  }
}

TEST(TpDetectTypes, ReportsBadTypesAndMissingFiles) {
  TempDir dir;
  WriteFile(dir.File("d.ini"), "[TYPE]\r\nFormat:1\r\n");
  cIniFile ini;
  cTpDetectType t;
  std::string err = "stale";
  EXPECT_FALSE(t.ReadIniSettings("TYPE", ini, dir.File("d.ini"), err, ""));
  EXPECT_EQ(err, "Reading template detection config. Invalid type.");

  cTpDetectTypes d;
  EXPECT_FALSE(d.ReadSettings(dir.File("none.ini"), err));
  EXPECT_EQ(err, "Cannot find file " + dir.File("none.ini"));
}

}  // namespace
}  // namespace pelinor
