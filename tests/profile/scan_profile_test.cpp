#include "pelinor/scan_profile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;
using Strings = std::vector<std::string>;

Strings Passes(const Collection<std::shared_ptr<cOCRProps>>& passes) {
  Strings out;
  for (const auto& p : passes) {
    out.push_back(p->EngineDescription + "|" + p->EngineType + "|" +
                  p->EngineSubType + "|" + p->EngineSettings);
  }
  return out;
}

TEST(ScanProfile, ReadsNumbersAndPassLists) {
  struct Case {
    std::string data;
    std::vector<int32_t> numbers;
    Strings regular, dot_matrix;
  } cases[] = {
      {"[Main]\r\n", {1, 1, 1, 1, 1}, {}, {}},
      {"[Main]\r\nUnpackedFormat:0\r\nOCRFromMaster:2\r\nPerformOCR:x\r\n"
       "ExtractType:3\r\nTrustDecimalPoint:0\r\nRegularPass1:Fast\r\n"
       "RegularPass2:Accurate\r\nRegularPass3:Missing\r\nRegularPass4:Fast\r\n"
       "DotMatrixPass1:Dots\r\n"
       "[Fast]\r\nSettings:speed=1\r\nType:OCR\r\nSubType:A\r\n"
       "Description:Fast pass\r\n[Accurate]\r\nDescription:Accurate pass\r\n"
       "[Dots]\r\nType:DM\r\n",
       {0, 2, 1, 3, 0},
       {"Fast pass|OCR|A|speed=1", "Accurate pass|||"},
       {"|DM||"}},
      {"[Main]\r\nRegularPass1:\r\nRegularPass2:Fast\r\n[Fast]\r\n",
       {1, 1, 1, 1, 1},
       {},
       {}},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    WriteFile(dir.File("s.ini"), c.data);
    cScanProfile s;
    std::string err = "stale";
    ASSERT_TRUE(s.ReadSettings(dir.File("s.ini"), err));
    EXPECT_EQ(err, "");
    EXPECT_EQ(
        (std::vector<int32_t>{s.UnpackedFormat, s.OCRFromMaster, s.PerformOCR,
                              s.ExtractType, s.trustDecimalPoint()}),
        c.numbers);
    EXPECT_EQ(Passes(s.RegularPasses), c.regular);
    EXPECT_EQ(Passes(s.DotMatrixPasses), c.dot_matrix);
  }
}

TEST(ScanProfile, ReportsMissingFiles) {
  TempDir dir;
  const std::string missing = dir.File("none.ini");
  cScanProfile s;
  std::string err;
  EXPECT_FALSE(s.ReadSettings(missing, err));
  EXPECT_EQ(err, "Cannot find file " + missing);
  EXPECT_EQ(s.UnpackedFormat, 0);

  cIniFile ini;
  cOCRProps pass;
  EXPECT_FALSE(pass.ReadSettings("Fast", missing, ini, err));
  EXPECT_EQ(err, "Cannot find file " + missing);
}

}  // namespace
}  // namespace pelinor
