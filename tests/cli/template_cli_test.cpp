#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

std::string Example(const std::string& name) {
  return std::string(PELINOR_SOURCE_DIR) + "/examples/" + name;
}

const char kSmall[] =
    "ver0.930\r\nCaf\xE9 invoice\r\n\r\nscanner\r\nInvoices\r\nX:1\r\n"
    "Y:2\r\nUserData:\r\nUserDataPrimary:0\r\nExtractType:0\r\n"
    "Disambiguate:0\r\nLineLevel:1\r\nOCRAllPages:1\r\nFlattenDuplex:0\r\n"
    "DocEndMark:End\r\nDocEndMarkInclusive:1\r\nDocEndMarkSideMode:0\r\n"
    "ExpectedAttachments:0\r\nFieldCount:0\r\nPseudoFieldCount:0\r\n"
    "LineTableCount:0\r\nLineLevelRules:0\r\nLineDataPartition:1\r\n"
    "LineLevelStartExpr:1\r\nExpr1:Qty:NOT EMPTY\r\n";

TEST(TemplateCli, ShowsTemplates) {
  TempDir dir;
  WriteFile(dir.File("small.tpl"), kSmall);
  WriteFile(dir.File("short.tpl"), "ve\r\n");
  WriteFile(dir.File("bad.tpl"), "ver0.946\r\nID\r\n");
  const std::string shown =
      "Version: 0.93\nTemplateIdentifier: Café invoice\n"
      "TemplateDisambiguatedID: 0\nScannerProfile: scanner\n"
      "PelinorProfile: Invoices\nTemplateIDDatumX: 1\nTemplateIDDatumY: 2\n"
      "UserData:\nUserDataPrimary: 0\nExtractType: 0\nDisambiguate: 0\n"
      "LineLevel: 1\nOCRPages: 1\nFlattenDuplex: 0\nDocEndMarks (1):\n"
      "  [1]\n    Name: End\n    XOffset: 0\n    YOffset: 0\n"
      "DocEndMarkInclusive: 1\nDocEndMarkSideMode: 0\n"
      "ExpectedAttachments: 0\nUserName:\nTimeLastModified:\n"
      "FieldZoneRefs (0)\nPseudoFieldZoneRefs (0)\nLineTables (0)\n"
      "ColLineDataRules (0)\nLineDataPartition: 1\n"
      "LineDataDiscardStart: 0\nLineDataDiscardEnd: 0\n"
      "LineDataEntitySpaceMax:\nLineDataRowSpaceMax:\n"
      "LineDataConditions (1):\n  [1]\n    Name: Qty\n"
      "    Operation: NOT EMPTY\nLineDataEndConditions (0)\n"
      "LineDataRptConditions (0)\nLineHeaders (0)\n"
      "DAInvoicesOverride: -1\nContentReuseOverride: -1\n";
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string out, err;
  } cases[] = {
      {{"template", "show", dir.File("small.tpl")}, 0, shown, ""},
      {{"template", "show", dir.File("none.tpl")},
       1,
       "",
       "pelinor: " + dir.File("none.tpl") +
           ": cannot read: No such file or directory\n"},
      {{"template", "show", dir.File("short.tpl")},
       1,
       "",
       "pelinor: " + dir.File("short.tpl") +
           ": has no version line (\"ver...\"), not a configuration file\n"},
      {{"template", "show", dir.File("bad.tpl")},
       1,
       "",
       "pelinor: " + dir.File("bad.tpl") +
           ": Error reading template file. Incorrect parameter\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args.back());
    const CommandResult r = RunPelinor(c.args);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
  }
}

TEST(TemplateCli, ShowsInheritedValuesAndMarkers) {
  struct Case {
    std::vector<std::string> extra;
    int flatten, entity_space;  // from the file / the profile / nothing
  } cases[] = {
      {{}, 1, 0},
      {{"--profile", Example("profiles/Invoices.ini")}, 1, 120},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args = {
        "template", "show", Example("templates/AcmeSupplies.tpl"), "--json"};
    args.insert(args.end(), c.extra.begin(), c.extra.end());
    SCOPED_TRACE(args.size());
    const CommandResult r = RunPelinor(args);
    ASSERT_EQ(r.status, 0) << r.err;
    const nlohmann::json j = nlohmann::json::parse(r.out);
    EXPECT_EQ(j["FlattenDuplex"], c.flatten);
    EXPECT_EQ(j["LineDataEntitySpaceMax"], "120");
    EXPECT_EQ(j["DAInvoicesOverride"], 0);  // the .neverDA marker
    EXPECT_EQ(j["FieldZoneRefs"][0]["AnchorRefs"][0]["XOffset"], 1650);
    EXPECT_EQ(j["LineTables"][0]["Location"], "ALL");
    EXPECT_EQ(j["LineDataEndConditions"][0]["value"], "Carried forward");
    EXPECT_FALSE(j["LineDataRptConditions"][0].contains("value"));
  }
  // An old template inherits what it does not store.
  const CommandResult r =
      RunPelinor({"template", "show", Example("templates/NorthwindOld.tpl"),
                  "--profile", Example("profiles/Invoices.ini"), "--json"});
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["Version"], "0.92");
  EXPECT_EQ(j["FlattenDuplex"], 1);
  EXPECT_EQ(j["LineDataRowSpaceMax"], "70");
}

TEST(TemplateCli, UpgradesOldTemplates) {
  TempDir dir;
  const std::string old = Example("templates/NorthwindOld.tpl");
  struct Case {
    std::vector<std::string> extra;
    std::string switches;  // the stored switches of the written file
  } cases[] = {
      {{},
       "LineLevel:0\r\nOCRAllPages:0\r\nFlattenDuplex:0\r\nDocEndMark:\r\n"
       "DocEndMarkInclusive:0\r\n"},
      {{"--profile", Example("profiles/Invoices.ini")},
       "LineLevel:1\r\nOCRAllPages:1\r\nFlattenDuplex:1\r\nDocEndMark:\r\n"
       "DocEndMarkInclusive:1\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.switches);
    const std::string out = dir.File("new.tpl");
    std::vector<std::string> args = {"template", "upgrade", old, out};
    args.insert(args.end(), c.extra.begin(), c.extra.end());
    const CommandResult r = RunPelinor(args);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(r.out, "Wrote " + out + " (ver0.946, read from version 0.92)\n");
    const std::string text = ReadFile(out);
    EXPECT_EQ(text.substr(0, 10), "ver0.946\r\n");
    EXPECT_NE(text.find(c.switches), std::string::npos);
    // The upgraded file reads back with the same fields.
    const CommandResult again = RunPelinor({"template", "show", out, "--json"});
    ASSERT_EQ(again.status, 0) << again.err;
    const nlohmann::json j = nlohmann::json::parse(again.out);
    EXPECT_EQ(j["Version"], "0.946");
    EXPECT_EQ(j["FieldZoneRefs"][0]["PatternOverride"], "NW00000");
    EXPECT_EQ(j["FieldZoneRefs"][0]["AnchorRefs"][0]["YOffset"], 300);
  }
  const CommandResult r =
      RunPelinor({"template", "upgrade", old, dir.File("no/new.tpl")});
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "pelinor: Cannot create file " + dir.File("no/new.tpl") +
                       ": No such file or directory\n");
}

}  // namespace
}  // namespace pelinor::testing
