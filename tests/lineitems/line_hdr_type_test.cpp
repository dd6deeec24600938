#include "pelinor/line_hdr_type.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;

std::vector<std::string> Texts(const cLineHdrType& h) {
  return {h.Name, h.DisplayName, h.Pattern};
}

std::vector<int32_t> Numbers(const cLineHdrType& h) {
  return {h.DataType, h.DataFlags, h.InternalValidateLevel, h.Hidden,
          h.ReadOnly, h.PtnMode,   h.PtnAllowOverride};
}

TEST(LineHdrType, ReadsItsSection) {
  struct Case {
    std::string body;
    bool ok;
    std::string err;
    std::vector<std::string> texts;
    std::vector<int32_t> numbers;
  } cases[] = {
      {"Name:Qty\r\n", true, "", {"Qty", "Qty", ""}, {1, 0, -100, 0, 0, 0, 0}},
      {"Name:Price\r\nDisplayName:Unit price\r\nType:4\r\nFlags:6\r\n"
       "InternalValidateLevel:1\r\nHidden:1\r\nReadOnly:-1\r\n"
       "Pattern:[0-9.]+\r\nApplyPatternMatch:1\r\nAllowPatternOverride:1\r\n",
       true,
       "",
       {"Price", "Unit price", "[0-9.]+"},
       {4, 6, 1, 1, -1, 1, 1}},
      // Only "1" turns the pattern switches on.
      {"Name:Code\r\nApplyPatternMatch:TRUE\r\nAllowPatternOverride:true\r\n",
       true,
       "",
       {"Code", "Code", ""},
       {1, 0, -100, 0, 0, 0, 0}},
      {"DisplayName:Qty\r\nType:2\r\n",
       false,
       "Reading profile. Unable to find field name. ",
       {"", "", ""},
       {1, 0, 2, 0, 0, 0, 0}},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    WriteFile(dir.File("p.ini"), "[LineItemHdr1]\r\n" + c.body);
    cIniFile ini;
    cLineHdrType h;
    std::string err = "stale";
    EXPECT_EQ(h.ReadIniSettings("LineItemHdr1", ini, dir.File("p.ini"), err,
                                "ver1.00"),
              c.ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(Texts(h), c.texts);
    EXPECT_EQ(Numbers(h), c.numbers);
  }
}

TEST(LineHdrType, WritesTagFileLinesAndCopies) {
  cLineHdrType h;
  h.Name = "Price";
  h.DisplayName = "Unit price";
  h.DataType = 4;
  h.DataFlags = 6;
  h.InternalValidateLevel = -100;
  h.Hidden = 1;
  h.ReadOnly = 1;
  h.Pattern = "[0-9]+";
  h.PtnMode = 1;
  h.PtnAllowOverride = 1;
  TempDir dir;
  TextWriter w;
  ASSERT_TRUE(w.Create(dir.File("tags.txt")));
  std::string err = "stale";
  ASSERT_TRUE(h.WriteSettings(12, w, err));
  EXPECT_EQ(err, "");
  ASSERT_TRUE(w.Commit());
  EXPECT_EQ(testing::ReadFile(dir.File("tags.txt")),
            "LineItemHdr12Name:Price\r\nLineItemHdr12DisplayName:Unit price\r\n"
            "LineItemHdr12Type:4\r\nLineItemHdr12Flags:6\r\n"
            "LineItemHdr12InternalValidateLevel:-100\r\n");
  TextWriter closed;
  EXPECT_FALSE(h.WriteSettings(1, closed, err));
  EXPECT_EQ(err,
            "Error writing to document tags file, line item header section. ");

  cLineHdrType copy;
  h.Copy(copy);
  EXPECT_EQ(Texts(copy), Texts(h));
  EXPECT_EQ(Numbers(copy), Numbers(h));
}

}  // namespace
}  // namespace pelinor
