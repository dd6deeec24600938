#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

const char kProfile[] =
    "ver1.00\r\n[Main]\r\nValidateScript:v.vbs\r\nExportScript:e.vbs\r\n"
    "TemplatesConfig:t.ini\r\nDisplayName:Factures re\xE7ues\r\n"
    "[Permissions]\r\nAllowed:ann \"Bob Smith\"\r\n"
    "[States]\r\nSTATE3:Fixed\r\nSTATE120:Checked:Held\r\n"
    "[HoldReasons]\r\nNo PO\r\n"
    "[Field1]\r\nName:Total\r\nType:4\r\nAnchorRef:TotalCaption\r\n"
    "[Field2]\r\nName:Ref\r\nCatagory:2\r\n"
    "[LineItemHdr1]\r\nName:Qty\r\nType:2\r\n";

struct Case {
  std::vector<std::string> args;
  int status;
  std::string out, err;
};

void RunCases(const std::vector<Case>& cases) {
  for (const Case& c : cases) {
    std::string trace;
    for (const std::string& a : c.args) trace += a + " ";
    SCOPED_TRACE(trace);
    const CommandResult r = RunPelinor(c.args);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
  }
}

TEST(ProfileCli, ShowsProfilesAndReportsReadErrors) {
  TempDir dir;
  const std::string file = dir.File("Invoices.ini");
  WriteFile(file, kProfile);
  WriteFile(dir.File("short.ini"), "ve\r\n");
  WriteFile(dir.File("nomain.ini"), "ver0.946\r\n[Other]\r\n");
  // The text form of a small profile: scalars, a list and nested objects.
  WriteFile(dir.File("small.ini"),
            "ver1\r\n[Main]\r\nValidateScript:v\r\nExportScript:e\r\n"
            "TemplatesConfig:t\r\nDisplayName:Re\xE7us\r\n[HoldReasons]\r\n"
            "No PO\r\n[LineItemHdr1]\r\nName:Qty\r\n");
  const std::string shown =
      "Name: small\nVersion: 1\nDisplayName: Reçus\nValidateScript: v\n"
      "ExportScript: e\nTemplateConfig: t\nRejectScript:\nDeleteScript:\n"
      "OnEntryScript:\nTemplateDir:\nQueueDirRemote:\nQueueDirLocal:\n"
      "DeletePrompt: 1\nLastClientViewMode: 0\nInternalValidateLevel: 2\n"
      "FlattenDuplex: 1\nOCRPages: 1\nOutputPagesText: 0\nLineLevel: 1\n"
      "LineDataRowSpaceMax: 0\nLineDataEntitySpaceMax: 0\n"
      "DocEndMarkInclusive: 1\nDocEndMarkSideMode: 0\n"
      "ExpectedAttachments: 0\nInvalidState: 1\nTemplateDetectPages:\n"
      "LineLevelEnabled: 1\nOCREnabled: 1\nAllowed (0)\n"
      "PelinorStates (0)\nOnHoldReasons (1):\n  - No PO\n"
      "DeleteReasons (0)\nFieldTypes (0)\nPseudoFieldTypes (0)\n"
      "LineItemHdrs (1):\n  [1]\n    Name: Qty\n    DisplayName: Qty\n"
      "    DataType: 1\n    DataFlags: 0\n    InternalValidateLevel: -100\n"
      "    Hidden: 0\n    ReadOnly: 0\n    Pattern:\n    PtnMode: 0\n"
      "    PtnAllowOverride: 0\n";
  RunCases({
      {{"profile", "show", dir.File("small.ini")}, 0, shown, ""},
      {{"profile", "show", dir.File("none.ini")},
       1,
       "",
       "pelinor: " + dir.File("none.ini") +
           ": cannot read: No such file or directory\n"},
      {{"profile", "show", dir.File("short.ini")},
       1,
       "",
       "pelinor: " + dir.File("short.ini") +
           ": has no version line (\"ver...\"), not a configuration file\n"},
      {{"profile", "show", dir.File("nomain.ini")},
       1,
       "",
       "pelinor: Reading profile. Unable to find validation script. \n"},
  });

  const CommandResult r =
      RunPelinor({"profile", "show", file, "--name", "Café", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["Name"], "Café");
  EXPECT_EQ(j["DisplayName"], "Factures reçues");
  EXPECT_EQ(j["Allowed"], nlohmann::json({"ann", "Bob Smith"}));
  EXPECT_EQ(j["FieldTypes"][0]["AnchorRefs"][0]["Name"], "TotalCaption");
  EXPECT_EQ(j["FieldTypes"][0]["InternalValidateLevel"], -100);
  EXPECT_EQ(j["PseudoFieldTypes"][0]["Catagory"], 2);
  EXPECT_EQ(j["LineItemHdrs"][0]["DataType"], 2);
  EXPECT_EQ(j["PelinorStates"][0]["State"], 120);
}

TEST(ProfileCli, WritesTheRecordForm) {
  TempDir dir;
  WriteFile(dir.File("p.ini"), kProfile);
  const std::string out = dir.File("record.txt");
  RunCases({
      {{"profile", "write-record", dir.File("p.ini"), out},
       0,
       "Wrote " + out + " (record form, 1 field types)\n",
       ""},
      {{"profile", "write-record", dir.File("p.ini"), dir.File("no/r.txt")},
       1,
       "",
       "pelinor: Cannot create file " + dir.File("no/r.txt") + "\n"},
  });
  EXPECT_EQ(ReadFile(out),
            "\"ver0.946\"\r\n\"ValidateScript:v.vbs\"\r\n"
            "\"ExportScript:e.vbs\"\r\n\"TemplatesConfig:t.ini\"\r\n"
            "\"FieldsCount:1\"\r\n\"Field1Name:Total\"\r\n"
            "\"Field1DisplayName:Total\"\r\n\"Field1Type:4\"\r\n"
            "\"Field1PageNo:0\"\r\n\"Field1CaptionSearch:\"\r\n"
            "\"Field1InternalValidateLevel:-100\"\r\n");
}

TEST(ProfileCli, ReadsTheBundledExamples) {
  const std::string examples = std::string(PELINOR_SOURCE_DIR) + "/examples/";
  CommandResult r = RunPelinor(
      {"profile", "show", examples + "profiles/Invoices.ini", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["Name"], "Invoices");
  EXPECT_EQ(j["FieldTypes"].size(), 13u);
  EXPECT_EQ(j["PseudoFieldTypes"].size(), 1u);
  EXPECT_EQ(j["LineItemHdrs"].size(), 3u);
  EXPECT_EQ(j["PelinorStates"].size(), 6u);
  EXPECT_EQ(j["Allowed"][1], "Bob Smith");

  r = RunPelinor(
      {"detect", "show", examples + "detect/TemplateDetect.ini", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(nlohmann::json::parse(r.out)["Types"].size(), 4u);
  r = RunPelinor({"scan", "show", examples + "scan/Colour300.ini", "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["RegularPasses"].size(), 2u);
  EXPECT_EQ(j["DotMatrixPasses"].size(), 1u);
}

TEST(DetectAndScanCli, ShowSettings) {
  TempDir dir;
  WriteFile(dir.File("detect.ini"),
            "[MAIN]\r\nDiscardCount:1\r\nDiscard1:COPY\r\n"
            "[TYPE1]\r\nFormat:VAT\r\nMinLength:-1\r\nSearchCount:1\r\n"
            "Search1:VAT No\r\n[TYPE2]\r\nLocate:1\r\n");
  WriteFile(dir.File("scan.ini"),
            "[Main]\r\nPerformOCR:0\r\nRegularPass1:Fast\r\n"
            "[Fast]\r\nType:OCR\r\nDescription:Fast pass\r\n");
  RunCases({
      {{"scan", "show", dir.File("scan.ini")},
       0,
       "UnpackedFormat: 1\nOCRFromMaster: 1\nPerformOCR: 0\nExtractType: 1\n"
       "trustDecimalPoint: 1\nRegularPasses (1):\n  [1]\n"
       "    EngineSettings:\n    EngineType: OCR\n    EngineSubType:\n"
       "    EngineDescription: Fast pass\nDotMatrixPasses (0)\n",
       ""},
      {{"detect", "show", dir.File("detect.ini")},
       1,
       "",
       "pelinor: Reading template detection config. Unable to find format. "
       "\n"},
      {{"scan", "show", dir.File("none.ini")},
       1,
       "",
       "pelinor: " + dir.File("none.ini") +
           ": cannot read: No such file or directory\n"},
  });
  WriteFile(dir.File("detect.ini"),
            "[MAIN]\r\nDiscardCount:1\r\nDiscard1:COPY\r\n"
            "[TYPE1]\r\nFormat:VAT\r\nMinLength:-1\r\nSearchCount:1\r\n"
            "Search1:VAT No\r\n[TYPE256]\r\nFormat:256\r\n");
  const CommandResult r =
      RunPelinor({"detect", "show", dir.File("detect.ini"), "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["Validate"], 1);
  EXPECT_EQ(j["Discard"], nlohmann::json({"COPY"}));
  ASSERT_EQ(j["Types"].size(), 2u);
  EXPECT_EQ(j["Types"][0]["MinDigits"], 5);
  EXPECT_EQ(j["Types"][0]["SearchStrings"], nlohmann::json({"VAT No"}));
  EXPECT_EQ(j["Types"][1]["TemplateType"], "256");
  EXPECT_EQ(j["Types"][1]["FloatDistanceConst"], 100);
}

}  // namespace
}  // namespace pelinor::testing
