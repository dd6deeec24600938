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

std::vector<std::string> Env(const TempDir& dir) {
  return {"PELINOR_REGISTRY=" + dir.File("none.reg")};
}

std::vector<std::string> Args(std::vector<std::string> extra) {
  std::vector<std::string> args = {
      "capture", "--profile", Example("profiles/Invoices.ini"), "--template",
      Example("templates/AcmeSupplies.tpl")};
  args.insert(args.end(), extra.begin(), extra.end());
  return args;
}

TEST(CaptureCli, CleansValidatesAndWritesEachDocument) {
  TempDir dir;
  WriteFile(dir.File("in.tag"), ReadFile(Example("documents/INV0003.tag")));
  // A missing output directory is created.
  CommandResult r = RunPelinor(
      Args({"--out-dir", dir.File("out"), dir.File("in.tag")}), Env(dir));
  EXPECT_FALSE(ReadFile(dir.File("out/in.tag")).empty()) << r.err;
  // An output "directory" that is a file: the write fails, the table shows.
  r = RunPelinor(Args({"--out-dir", dir.File("in.tag"), dir.File("in.tag")}),
                 Env(dir));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("cannot write"), std::string::npos);

  r = RunPelinor(Args({"--in-place", dir.File("in.tag")}), Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  struct Case {
    const char* shown;   // a row of the table
    const char* stored;  // the same value in the written tag file
  } cases[] = {
      {"InvoiceDate       3. M\xC3\xA4rz 2004  03/03/2004  ok",
       "Field2Value:03/03/2004\r\n"},
      {"SupplierPostCode  M1 IAA        M1 1AA      ok",
       "Field4Value:M1 1AA\r\nField4Status:0\r\nField4Message:\r\n"},
      {"TotalAmount       \xC2\xA3 96.0O       96.00       ok",
       "Field3Value:96.00\r\n"},
      {"DueDate           1.2.03        01/02/2003  ok",
       "Field6Value:01/02/2003\r\n"},
      {"VATNumber         GB12345678    GB12345678  FAIL: Value does not "
       "match the pattern GB000000000(000)",
       "Field5Status:2\r\nField5Message:Value does not match the pattern "
       "GB000000000(000)\r\n"},
      {"in.tag: status 2, 1 value is not valid: VATNumber",
       "DocStatus:2\r\nDocMessage:1 value is not valid: VATNumber\r\n"},
  };
  const std::string written = ReadFile(dir.File("in.tag"));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shown);
    EXPECT_NE(r.out.find(c.shown), std::string::npos) << r.out;
    EXPECT_NE(written.find(c.stored), std::string::npos) << written;
  }
}

TEST(CaptureCli, PrintsJsonAndReportsBadInput) {
  TempDir dir;
  WriteFile(dir.File("bad.tag"), "ve\r\n");
  CommandResult r = RunPelinor(
      Args({"--json", Example("documents/INV0002.tag"), dir.File("bad.tag")}),
      Env(dir));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("Invalid version number"), std::string::npos);
  const nlohmann::json j = nlohmann::json::parse(r.out);
  ASSERT_EQ(j.size(), 2u);
  EXPECT_EQ(j[0]["status"], 0);
  EXPECT_EQ(j[0]["values"][3]["value"], "EC1A 1BB");
  EXPECT_EQ(j[1]["error"], "Invalid version number");

  struct Case {
    std::vector<std::string> args;
    const char* err;
  } cases[] = {
      {Args({"--in-place", "--out-dir", dir.path(), dir.File("bad.tag")}),
       "--out-dir and --in-place cannot be used together"},
      {{"capture", "--profile", dir.File("none.ini"), "--template",
        Example("templates/AcmeSupplies.tpl"), dir.File("bad.tag")},
       "Cannot find file"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    r = RunPelinor(c.args, Env(dir));
    EXPECT_NE(r.status, 0);
    EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
  }
}

TEST(DocumentCli, ShowsAndUpgradesTagFiles) {
  TempDir dir;
  const std::vector<std::string> resolve = {
      "--profile", Example("profiles/Invoices.ini"), "--template",
      Example("templates/AcmeSupplies.tpl")};
  std::vector<std::string> args = {"document", "upgrade",
                                   Example("documents/INV0002.tag"),
                                   dir.File("new.tag")};
  args.insert(args.end(), resolve.begin(), resolve.end());
  CommandResult r = RunPelinor(args, Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  const std::string upgraded = ReadFile(dir.File("new.tag"));
  const char* expected[] = {
      "ver0.946\r\n",
      "Field2DataLocation:1\r\nField2DataType:101\r\n",  // template type
      "Field3DataLocation:-6\r\nField3DataType:4\r\n",
      "Field1Name:SupplierId\r\nField1Value:NWND02\r\n",
      ("LLAnchorCount:0\r\nDocEndMarksCount:0\r\nLineCount:0\r\n"
       "ColumnCount:0\r\n"),
  };
  for (const char* e : expected) {
    EXPECT_NE(upgraded.find(e), std::string::npos) << e;
  }

  r = RunPelinor({"document", "show", "--json", dir.File("new.tag")}, Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["Fields"][1]["DataType"], 101);  // frozen by the upgrade
  EXPECT_EQ(j["PseudoFields"][0]["value"], "NWND02");

  r = RunPelinor({"document", "show", dir.File("missing.tag")}, Env(dir));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("Error reading document tags file. Incorrect "
                       "parameter"),
            std::string::npos);
}

}  // namespace
}  // namespace pelinor::testing
