// The extract and process verbs on the bundled sample invoice: its PDF
// (text layer) and the OCR of its scan, stored as a TSV page file.

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/cli_test_util.h"
#include "test_util.h"

namespace pelinor {
namespace {

using json = nlohmann::json;
using testing::RunPelinor;

std::string Source(const std::string& rel) {
  return std::string(PELINOR_SOURCE_DIR) + "/" + rel;
}

std::vector<std::string> Env() {
  return {"PELINOR_REGISTRY=" + Source("examples/registry.reg")};
}

const std::string& Profile() {
  static const std::string p = Source("examples/profiles/Coolblue.ini");
  return p;
}

std::map<std::string, json> ByName(const json& report) {
  std::map<std::string, json> out;
  for (const json& f : report["fields"]) out[f["name"]] = f;
  return out;
}

// The published values of the samples (examples/samples/NAME.json) in the
// form the capture run cleans them to: dates day/month/year (the GB
// locale), amounts with a point and two decimals.
const std::map<std::string, std::string>& Published(const std::string& name) {
  static const std::map<std::string, std::map<std::string, std::string>>
      values = {
          {"coolblue1",
           {{"InvoiceNumber", "993548900"},
            {"InvoiceDate", "19/04/2014"},
            {"TotalAmount", "717.97"},
            {"NetAmount", "593.36"},
            {"VATNumber", "NL810433941B01"},
            {"IBAN", "NL50INGB0683251309"},
            {"ChamberOfCommerce", "24330087"},
            {"BIC", "INGBNL2A"}}},
          {"AzureInterior",
           {{"InvoiceNumber", "INV/2023/03/0008"},
            {"InvoiceDate", "20/03/2023"},
            {"DueDate", "04/04/2023"},
            {"Reference", "CUSTREF123"},
            {"NetAmount", "262.90"},
            {"TaxAmount", "16.94"},
            {"TotalAmount", "279.84"},
            {"IBAN", "US1234567890"},
            {"PaymentReference", "202309097001"},
            {"SupplierZip", "94538"}}},
      };
  return values.at(name);
}

TEST(ExtractCliTest, ExtractsTheSamplePdf) {
  testing::TempDir dir;
  const std::string out = dir.File("coolblue1.tag");
  const auto r = RunPelinor(
      {"extract", "--profile", Profile(),
       Source("examples/samples/coolblue1.pdf"), "--out", out, "--json"},
      Env());
  ASSERT_EQ(r.status, 0) << r.err;
  const json report = json::parse(r.out);
  EXPECT_TRUE(report["identified"]);
  EXPECT_EQ(report["pages"], 1);
  EXPECT_EQ(report["template"]["score"], 1.0);
  EXPECT_EQ(report["template"]["shift"], json::array({0, 0}));
  EXPECT_EQ(report["written"], out);
  struct Want {
    std::string name, value, how;
    std::vector<int> box;
  };
  const std::vector<Want> wants = {
      {"InvoiceNumber", "993548900", "zone", {465, 648, 171, 45}},
      {"InvoiceDate", "19 april 2014", "caption right", {435, 766, 201, 45}},
      {"TotalAmount",
       "\xE2\x82\xAC 717,97",
       "anchored zone",
       {615, 2536, 132, 45}},
      {"NetAmount",
       "\xE2\x82\xAC 593,36",
       "caption right",
       {615, 2412, 132, 45}},
      {"VATNumber", "NL810433941B01", "search", {1935, 604, 274, 45}},
      {"IBAN", "NL50INGB0683251309", "anchored zone", {1941, 663, 354, 45}},
      {"ChamberOfCommerce", "24330087", "anchored zone", {2098, 544, 152, 45}},
      {"BIC", "INGBNL2A", "caption right", {1916, 723, 166, 45}},
      {"OrderNumber", "12572103", "caption right", {437, 826, 152, 45}},
  };
  auto fields = ByName(report);
  for (const Want& w : wants) {
    SCOPED_TRACE(w.name);
    EXPECT_EQ(fields[w.name]["value"], w.value);
    EXPECT_EQ(fields[w.name]["how"], w.how);
    EXPECT_EQ(fields[w.name]["box"], json(w.box));
    EXPECT_EQ(fields[w.name]["confidence"], 100);
  }
  // The tag file holds the raw values, not yet validated.
  const std::string tag = testing::ReadFile(out);
  EXPECT_NE(tag.find("Field3Value:\x80 717,97\r\nField3Status:1\r\n"
                     "Field3Message:Tag has not been validated\r\n"
                     "Field3DataLocation:-1\r\nField3DataType:4\r\n"
                     "Field3Coords:615:2536:132:45\r\n"),
            std::string::npos)
      << tag;
}

TEST(ExtractCliTest, ProcessCleansTheSamples) {
  struct Case {
    std::string sample;
    std::string profile;  // and template
    std::string page;     // under the source tree
    std::vector<int> shift;
  };
  const std::vector<Case> cases = {
      {"coolblue1",
       "Coolblue",
       "tests/data/extract/coolblue1-scan.tsv",
       {42, 30}},
      {"coolblue1", "Coolblue", "examples/samples/coolblue1.pdf", {0, 0}},
      {"AzureInterior",
       "AzureInterior",
       "tests/data/extract/AzureInterior-scan.tsv",
       {36, 11}},
      {"AzureInterior",
       "AzureInterior",
       "examples/samples/AzureInterior.pdf",
       {0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.page);
    testing::TempDir dir;
    const std::string out = dir.File("doc.tag");
    const auto r =
        RunPelinor({"process", "--profile",
                    Source("examples/profiles/" + c.profile + ".ini"),
                    Source(c.page), "--out", out, "--json"},
                   Env());
    ASSERT_EQ(r.status, 0) << r.err;
    const json report = json::parse(r.out);
    EXPECT_EQ(report["status"], 0);
    EXPECT_EQ(report["template"]["file"],
              Source("examples/templates/" + c.profile + ".tpl"));
    EXPECT_EQ(report["template"]["shift"], json(c.shift));
    auto fields = ByName(report);
    for (const auto& [name, value] : Published(c.sample)) {
      SCOPED_TRACE(name);
      EXPECT_EQ(fields[name]["value"], value);
      EXPECT_EQ(fields[name]["status"], 0);
    }
  }
}

TEST(ExtractCliTest, ProcessRepairsOcrMisreads) {
  testing::TempDir dir;
  const std::string out = dir.File("scan.tag");
  const auto r = RunPelinor(
      {"process", "--profile", Profile(),
       testing::DataPath("extract/coolblue1-scan.tsv"), "--out", out},
      Env());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_NE(r.out.find("  IBAN                 NLSOINGB0683251309 "
                       "NL50INGB0683251309 90   anchored zone ok\n"),
            std::string::npos)
      << r.out;
  EXPECT_NE(testing::ReadFile(out).find("Field6Value:NL50INGB0683251309\r\n"
                                        "Field6Status:0\r\n"),
            std::string::npos);
}

TEST(ExtractCliTest, JobsKeepThePageOrder) {
  // Two page files: the first page identifies the template, the last-page
  // fields come from the second file whatever thread read it.
  for (const char* jobs : {"1", "2"}) {
    SCOPED_TRACE(jobs);
    testing::TempDir dir;
    const auto r =
        RunPelinor({"extract", "--profile", Profile(), "--jobs", jobs,
                    Source("examples/samples/coolblue1.pdf"),
                    testing::DataPath("extract/AzureInterior-scan.tsv"),
                    "--out", dir.File("two.tag"), "--json"},
                   Env());
    ASSERT_EQ(r.status, 0) << r.err;
    const json report = json::parse(r.out);
    EXPECT_EQ(report["pages"], 2);
    auto fields = ByName(report);
    EXPECT_EQ(fields["InvoiceNumber"]["page"], 1);
    EXPECT_EQ(fields["InvoiceNumber"]["value"], "993548900");
    // TotalAmount and NetAmount are last-page fields.
    EXPECT_EQ(fields["TotalAmount"]["page"], 0);
    EXPECT_EQ(fields["TotalAmount"]["how"], "not found");
    EXPECT_EQ(testing::ReadFile(dir.File("two.tag"))
                  .find("Coolblue\r\nLastSheetIndex:2\r\n"),
              36u);
  }
}

TEST(ExtractCliTest, SavesThePageModel) {
  testing::TempDir dir;
  const std::string notes = dir.File("notes.txt");
  testing::WriteFile(notes, "my notes\n");
  const std::string model = dir.File("model.tsv");
  const std::string pdf = Source("examples/samples/coolblue1.pdf");
  // A file that is not a TSV page file is left alone.
  auto r = RunPelinor({"extract", "--profile", Profile(), pdf, "--save-model",
                       notes, "--out", dir.File("a.tag")},
                      Env());
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.err, "pelinor: cannot write " + notes + "\n");
  EXPECT_EQ(testing::ReadFile(notes), "my notes\n");
  EXPECT_FALSE(std::filesystem::exists(dir.File("a.tag")));
  // The saved model reads back into the same document.
  for (int run = 0; run < 2; ++run) {
    r = RunPelinor({"extract", "--profile", Profile(), pdf, "--save-model",
                    model, "--out", dir.File("pdf.tag")},
                   Env());
    ASSERT_EQ(r.status, 0) << r.err;
  }
  EXPECT_EQ(testing::ReadFile(model).substr(0, 6), "level\t");
  r = RunPelinor(
      {"extract", "--profile", Profile(), model, "--out", dir.File("tsv.tag")},
      Env());
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(testing::ReadFile(dir.File("tsv.tag")),
            testing::ReadFile(dir.File("pdf.tag")));
}

TEST(ExtractCliTest, FailuresLeaveNoTagFile) {
  testing::TempDir dir;
  const std::string other_tpls = dir.File("tpls");
  std::filesystem::create_directories(other_tpls);
  std::filesystem::copy_file(Source("examples/templates/AcmeSupplies.tpl"),
                             other_tpls + "/AcmeSupplies.tpl");
  const std::string notes = dir.File("notes.txt");
  testing::WriteFile(notes, "my notes\n");
  const std::string bad = dir.File("bad.pdf");
  testing::WriteFile(bad, "%PDF-1.4 truncated");
  const std::string pdf = Source("examples/samples/coolblue1.pdf");
  struct Case {
    std::string name;
    std::vector<std::string> args;
    std::string out;
    int status;
    std::string err;
  };
  const std::vector<Case> cases = {
      {"unidentified",
       {"--templates", other_tpls, pdf},
       dir.File("u.tag"),
       2,
       "pelinor: page not identified: no template's identifier text was "
       "found (best " +
           other_tpls + "/AcmeSupplies.tpl, score 0.32)\n"},
      {"unreadable pdf",
       {bad},
       dir.File("b.tag"),
       1,
       "pelinor: Cannot read PDF " + bad + "\n"},
      {"not a tag file",
       {pdf},
       notes,
       1,
       "pelinor: " + notes +
           " exists and is not a document tag file; not overwritten\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    for (const char* verb : {"extract", "process"}) {
      std::vector<std::string> args = {verb, "--profile", Profile()};
      args.insert(args.end(), c.args.begin(), c.args.end());
      args.insert(args.end(), {"--out", c.out});
      const auto r = RunPelinor(args, Env());
      EXPECT_EQ(r.status, c.status);
      EXPECT_EQ(r.err, c.err);
      if (c.out == notes) {
        EXPECT_EQ(testing::ReadFile(notes), "my notes\n");
      } else {
        EXPECT_FALSE(std::filesystem::exists(c.out));
      }
    }
  }
  // Nothing but the files the test made.
  EXPECT_EQ(testing::FileNames(dir.path()).size(), 3u);
}

}  // namespace
}  // namespace pelinor
