#include "pelinor/capture_run.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <filesystem>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "capture/capture_corpus.h"
#include "pelinor/document_data.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

std::string Example(const std::string& name) {
  return std::string(PELINOR_SOURCE_DIR) + "/examples/" + name;
}

std::shared_ptr<const cSettingsSnapshot> Settings(const char* locale) {
  return cSettingsSnapshot::Make(std::string(locale), Example("profiles"));
}

// The example profile and template, read once for the whole program.
struct Models {
  std::shared_ptr<cProfile> profile = std::make_shared<cProfile>();
  std::shared_ptr<cTemplate> tpl = cTemplate::New();
  Models() {
    std::string err;
    EXPECT_TRUE(profile->ReadSettings("Invoices",
                                      Example("profiles/Invoices.ini"), err))
        << err;
    tpl->Profile = profile;
    EXPECT_TRUE(tpl->ReadSettings(Example("templates/AcmeSupplies.tpl"), err))
        << err;
  }
};

const Models& TheModels() {
  static const Models* models = new Models();
  return *models;
}

// Reads the tag file text `tag`, captures it and returns the written bytes.
std::string CaptureBytes(const TempDir& dir, const std::string& tag,
                         const cSettingsSnapshot& settings, bool recheck,
                         cCaptureReport* report = nullptr,
                         bool review = false) {
  WriteFile(dir.File("in.tag"), tag);
  auto doc = cDocumentData::New();
  std::string err;
  EXPECT_TRUE(doc->ReadSettings(dir.File("in.tag"), err)) << err;
  doc->Profile = TheModels().profile;
  doc->Template = TheModels().tpl;
  cCaptureOptions options;
  options.Recheck = recheck;
  options.ReviewGuess = review;
  cCaptureReport r = CaptureDocument(*doc, options, &settings);
  if (report != nullptr) *report = r;
  EXPECT_TRUE(doc->WriteSettings(dir.File("out.tag"), err)) << err;
  return ReadFile(dir.File("out.tag"));
}

// "" when `a` and `b` are equal, else their first differing line.
std::string FirstDifference(const std::string& a, const std::string& b) {
  if (a == b) return "";
  size_t at = 0;
  while (at < a.size() && at < b.size() && a[at] == b[at]) ++at;
  const size_t newline = at == 0 ? std::string::npos : a.rfind('\n', at - 1);
  const size_t start = newline == std::string::npos ? 0 : newline + 1;
  std::ostringstream out;
  out << '"' << a.substr(start, a.find('\n', at) - start) << "\" vs \""
      << b.substr(start, b.find('\n', at) - start) << '"';
  return out.str();
}

const cCaptureValue* Find(const cCaptureReport& r, const std::string& name) {
  for (const cCaptureValue& v : r.Values) {
    if (v.Name == name) return &v;
  }
  return nullptr;
}

TEST(CaptureDocument, CapturesTheExampleInvoices) {
  TempDir dir;
  struct Case {
    const char* doc;
    const char* name;
    const char* raw;
    const char* result;
    int32_t status;
    const char* message;
  } cases[] = {
      {"INV0001", "InvoiceNumber", "INV-0O1234", "INV-001234", 0, ""},
      {"INV0001", "InvoiceDate", "12 0CT 2003", "12/10/2003", 0, ""},
      {"INV0001", "TotalAmount",
       "\xA3"
       "1,234.5O",
       "1234.50", 0, ""},
      {"INV0001", "SupplierPostCode", "SW1A1AA", "SW1A 1AA", 0, ""},
      {"INV0001", "VATAmount", "S5", ".55", 0, ""},
      {"INV0001", "PurchaseOrder", "P0-004521", "PO-004521", 0, ""},
      {"INV0001", "Line 1 Quantity", "1O", "10", 0, ""},
      {"INV0001", "Line 3 UnitPrice", "7.5O", "7.50", 0, ""},
      {"INV0003", "InvoiceDate", "3. M\xE4rz 2004", "03/03/2004", 0, ""},
      {"INV0003", "VATNumber", "GB12345678", "GB12345678", 2,
       "Value does not match the pattern GB000000000(000)"},
      {"INV0003", "DueDate", "1.2.03", "01/02/2003", 0, ""},
      {"INV0003", "SortCode", "2O-45-l7", "20-45-17", 0, ""},
  };
  const auto gb = Settings("GB");
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.doc) + " " + c.name);
    cCaptureReport report;
    CaptureBytes(dir, ReadFile(Example("documents/") + c.doc + ".tag"), *gb,
                 false, &report);
    const cCaptureValue* v = Find(report, c.name);
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->Raw, c.raw);
    EXPECT_EQ(v->Result, c.result);
    EXPECT_EQ(v->Status, c.status);
    EXPECT_EQ(v->Message, c.message);
  }

  struct DocCase {
    const char* doc;
    int32_t status;
    const char* message;
    const char* stored;  // a part of the written file
  } docs[] = {
      {"INV0001", 0, "", "DocStatus:0\r\nDocMessage:\r\n"},
      {"INV0002", 0, "", "Field2Value:14/05/2004\r\nField2Status:0\r\n"},
      {"INV0003", 2, "1 value is not valid: VATNumber",
       "DocStatus:2\r\nDocMessage:1 value is not valid: VATNumber\r\n"},
  };
  for (const DocCase& c : docs) {
    SCOPED_TRACE(c.doc);
    cCaptureReport report;
    const std::string written =
        CaptureBytes(dir, ReadFile(Example("documents/") + c.doc + ".tag"), *gb,
                     false, &report);
    EXPECT_EQ(report.Status, c.status);
    EXPECT_EQ(report.Message, c.message);
    EXPECT_EQ(report.InvalidCount, c.status == 0 ? 0 : 1);
    EXPECT_NE(written.find(c.stored), std::string::npos) << written;
  }
}

TEST(CaptureDocument, MarksRowsWithAnInvalidCell) {
  TempDir dir;
  // Row 1 has a quantity no cleaning repairs; row 2 is clean.
  const std::string tag = CorpusDocument(1, 0);
  std::string doc = tag.substr(0, tag.find("LineCount:"));
  doc +=
      "LineCount:2\r\nColumnCount:1\r\n"
      "Line1Status:1\r\nLine1Message:\r\nLine1Coords:1:1:1:1\r\n"
      "Line1DataLocation:1\r\nLine1Col1Name:Quantity\r\nLine1Col1Value:x\r\n"
      "Line1Col1Status:1\r\nLine1Col1Message:\r\n"
      "Line2Status:1\r\nLine2Message:\r\nLine2Coords:1:1:1:1\r\n"
      "Line2DataLocation:1\r\nLine2Col1Name:Quantity\r\nLine2Col1Value:12\r\n"
      "Line2Col1Status:1\r\nLine2Col1Message:\r\n";
  const std::string written = CaptureBytes(dir, doc, *Settings("GB"), false);
  struct Case {
    const char* stored;
  } cases[] = {
      {"Line1Status:2\r\nLine1Message:A value of the line is not valid\r\n"},
      {"Line1Col1Value:x\r\nLine1Col1Status:2\r\nLine1Col1Message:Number "
       "expected, for example 1234.5\r\n"},
      {"Line2Status:0\r\nLine2Message:\r\n"},
      {"Line2Col1Value:12\r\nLine2Col1Status:0\r\nLine2Col1Message:\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.stored);
    EXPECT_NE(written.find(c.stored), std::string::npos) << written;
  }
}

// Capturing a captured document, with or without Recheck, writes the
// same bytes: for every data type, in every locale.
// Also with guesses sent to review: a value under review that is checked
// again and still passes keeps its status and message.
TEST(CaptureDocument, RecaptureWritesTheSameBytes) {
  TempDir dir;
  for (const bool review : {false, true}) {
    for (const char* locale : {"GB", "US", "JP"}) {
      const auto settings = Settings(locale);
      int valid = 0, invalid = 0, to_check = 0;
      for (uint32_t i = 0; i < 150; ++i) {
        SCOPED_TRACE(std::string(locale) + (review ? " review" : "") +
                     " document " + std::to_string(i));
        cCaptureReport report;
        const std::string once = CaptureBytes(
            dir, CorpusDocument(7, i), *settings, false, &report, review);
        for (const cCaptureValue& v : report.Values) {
          (v.Status == 0                      ? valid
           : v.Status == kCaptureReviewStatus ? to_check
                                              : invalid)++;
        }
        for (const bool recheck : {false, true}) {
          EXPECT_EQ(FirstDifference(CaptureBytes(dir, once, *settings, recheck,
                                                 nullptr, review),
                                    once),
                    "")
              << (recheck ? "rechecked" : "");
        }
      }
      // The corpus exercises every outcome.
      EXPECT_GT(valid, review ? 700 : 1000) << locale;
      EXPECT_GT(invalid, 800) << locale;
      EXPECT_GT(to_check, review ? 150 : -1) << locale;
    }
  }
}

TEST(CaptureDocument, DatesKeepTheirOrderWhenCheckedAgain) {
  TempDir dir;
  // The example template reads the invoice date as a US date; stored
  // dates follow the locale and must not be read in the template's order
  // again.
  struct Case {
    const char* locale;
    const char* raw;
    const char* stored;
  } cases[] = {
      {"GB", "12 0CT 2003", "12/10/2003"}, {"US", "12 0CT 2003", "10/12/2003"},
      {"JP", "12 0CT 2003", "2003/10/12"}, {"GB", "10/12/2003", "12/10/2003"},
      {"GB", "5.6.04", "06/05/2004"},
  };
  const std::string example = ReadFile(Example("documents/INV0001.tag"));
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.locale) + " " + c.raw);
    std::string tag = example;
    const std::string from = "Field2Value:12 0CT 2003";
    tag.replace(tag.find(from), from.size(),
                std::string("Field2Value:") + c.raw);
    const auto settings = Settings(c.locale);
    std::string bytes = tag;
    for (int pass = 0; pass < 3; ++pass) {
      cCaptureReport report;
      bytes = CaptureBytes(dir, bytes, *settings, true, &report);
      const cCaptureValue* v = Find(report, "InvoiceDate");
      ASSERT_NE(v, nullptr);
      EXPECT_EQ(v->Result, c.stored) << "pass " << pass;
      EXPECT_EQ(v->Status, 0);
    }
  }
}

TEST(CaptureDocument, LeavesValidValuesAloneUnlessRechecked) {
  TempDir dir;
  struct Case {
    const char* status;  // the stored status of VATAmount ("S5")
    bool recheck;
    const char* value;
    const char* stored_status;
  } cases[] = {
      {"0", false, "S5", "0"},   // accepted before: kept as it is
      {"0", true, ".55", "0"},   // checked again: not an amount, cleaned
      {"1", false, ".55", "0"},  // never checked
      {"2", false, ".55", "0"},  // invalid before: checked again
  };
  const std::string example = ReadFile(Example("documents/INV0001.tag"));
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.status) + (c.recheck ? " recheck" : ""));
    std::string tag = example;
    const std::string from = "Field6Status:1";
    tag.replace(tag.find(from), from.size(),
                std::string("Field6Status:") + c.status);
    const std::string written =
        CaptureBytes(dir, tag, *Settings("GB"), c.recheck);
    EXPECT_NE(written.find(std::string("Field6Value:") + c.value +
                           "\r\nField6Status:" + c.stored_status + "\r\n"),
              std::string::npos)
        << written;
  }
}

TEST(CaptureDocument, NeverCallsAFieldTheProfileDoesNotKnowValid) {
  // A profile that lost a field type (a truncated or edited file) leaves
  // no data type or pattern to check the value against.
  TempDir dir;
  struct Case {
    const char* status;  // the stored status of the renamed field
    bool recheck;
  } cases[] = {{"0", false}, {"0", true}, {"1", false}, {"2", false}};
  const std::string example = ReadFile(Example("documents/INV0001.tag"));
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.status) + (c.recheck ? " recheck" : ""));
    std::string tag = example;
    const std::string name = "Field6Name:VATAmount";
    tag.replace(tag.find(name), name.size(), "Field6Name:NoSuchField");
    const std::string status = "Field6Status:1";
    tag.replace(tag.find(status), status.size(),
                std::string("Field6Status:") + c.status);
    cCaptureReport report;
    const std::string written =
        CaptureBytes(dir, tag, *Settings("GB"), c.recheck, &report);
    const cCaptureValue* v = Find(report, "NoSuchField");
    ASSERT_NE(v, nullptr);
    EXPECT_EQ(v->Status, kCaptureInvalidStatus);
    EXPECT_EQ(v->Message, kUnknownFieldMessage);
    EXPECT_EQ(v->Result, "S5");  // nothing to clean it by
    EXPECT_NE(report.Status, 0);
    EXPECT_NE(written.find(std::string("Field6Status:2\r\nField6Message:") +
                           kUnknownFieldMessage + "\r\n"),
              std::string::npos)
        << written;
    // Capturing the result again changes nothing.
    EXPECT_EQ(CaptureBytes(dir, written, *Settings("GB"), c.recheck), written);
  }
}

// A field the caller pinned keeps its pin through the capture, which
// checks it by what the pin holds; the capture leaves no pin of its own.
TEST(CaptureDocument, KeepsTheCallersPinsAndLeavesNoneOfItsOwn) {
  TempDir dir;
  WriteFile(dir.File("in.tag"), ReadFile(Example("documents/INV0001.tag")));
  auto doc = cDocumentData::New();
  std::string err;
  ASSERT_TRUE(doc->ReadSettings(dir.File("in.tag"), err)) << err;
  // A profile of its own, changed under the pin below.
  auto profile = std::make_shared<cProfile>();
  ASSERT_TRUE(
      profile->ReadSettings("Invoices", Example("profiles/Invoices.ini"), err))
      << err;
  doc->Profile = profile;
  doc->Template = TheModels().tpl;
  std::shared_ptr<cFieldData> total, net;
  int32_t index = 0;
  ASSERT_TRUE(doc->Find("TotalAmount", index, total));
  ASSERT_TRUE(doc->Find("NetAmount", index, net));
  total->PinResolution();
  // Made a date type after the pin: the pinned field is still an amount,
  // the unpinned one is now a date its value is not.
  for (const auto& type : profile->FieldTypes) {
    if (type && (type->Name == "TotalAmount" || type->Name == "NetAmount")) {
      type->DataType = 3;
    }
  }
  const cCaptureReport r =
      CaptureDocument(*doc, cCaptureOptions(), Settings("GB").get());
  EXPECT_TRUE(total->ResolutionPinned());
  EXPECT_EQ(Find(r, "TotalAmount")->Status, 0);
  EXPECT_EQ(total->value, "1234.50");
  EXPECT_EQ(Find(r, "NetAmount")->Status, kCaptureInvalidStatus);
  for (const auto& f : doc->Fields) {
    if (f && f != total) {
      EXPECT_FALSE(f->ResolutionPinned()) << f->Name;
    }
  }
}

// ---------------------------------------------------------------------------
// cCaptureRun
// ---------------------------------------------------------------------------

cCaptureRunOptions RunOptions(const std::string& out_dir, int32_t jobs) {
  cCaptureRunOptions o;
  o.ProfileFile = Example("profiles/Invoices.ini");
  o.TemplateFile = Example("templates/AcmeSupplies.tpl");
  o.OutDir = out_dir;
  o.Jobs = jobs;
  return o;
}

TEST(CaptureRun, ParallelRunsKeepInputOrderAndBytes) {
  TempDir dir;
  std::vector<std::string> files;
  for (uint32_t i = 0; i < 60; ++i) {
    files.push_back(dir.File("in/doc" + std::to_string(i) + ".tag"));
  }
  std::filesystem::create_directories(dir.File("in"));
  for (uint32_t i = 0; i < files.size(); ++i) {
    WriteFile(files[i], CorpusDocument(11, i));
  }
  const auto settings = Settings("GB");
  std::vector<std::vector<std::string>> reports;
  for (const int32_t jobs : {1, 2, 4}) {
    SCOPED_TRACE(jobs);
    std::string err;
    const std::string out = dir.File("out" + std::to_string(jobs));
    auto run = cCaptureRun::Open(RunOptions(out, jobs), settings, err);
    ASSERT_NE(run, nullptr) << err;
    std::vector<std::string> seen;
    size_t expected_index = 0;
    EXPECT_TRUE(run->Run(files, [&](const cCaptureFileResult& r) {
      EXPECT_EQ(r.Index, expected_index++);
      EXPECT_EQ(r.File, files[r.Index]);
      EXPECT_TRUE(r.Captured);
      EXPECT_EQ(r.Written, run->OutputPath(r.File));
      std::string line = r.File + " " + std::to_string(r.Report.Status);
      for (const cCaptureValue& v : r.Report.Values) line += "|" + v.Result;
      seen.push_back(line);
      return true;
    }));
    EXPECT_EQ(expected_index, files.size());
    reports.push_back(seen);
  }
  EXPECT_EQ(reports[0], reports[1]);
  EXPECT_EQ(reports[0], reports[2]);
  TempDir scratch;
  for (uint32_t i = 0; i < files.size(); ++i) {
    const std::string name = "doc" + std::to_string(i) + ".tag";
    SCOPED_TRACE(name);
    const std::string one = ReadFile(dir.File("out1/" + name));
    // The same bytes as one document captured and written by hand.
    EXPECT_EQ(FirstDifference(one, CaptureBytes(scratch, CorpusDocument(11, i),
                                                *settings, false)),
              "");
    EXPECT_EQ(ReadFile(dir.File("out2/" + name)), one);
    EXPECT_EQ(ReadFile(dir.File("out4/" + name)), one);
  }
}

// A run again over what a run wrote replaces no file: each already holds
// the bytes the run would write. A file that differs is replaced.
TEST(CaptureRun, LeavesFilesThatHoldTheCaptureUntouched) {
  TempDir dir;
  std::filesystem::create_directories(dir.File("docs"));
  std::vector<std::string> files;
  for (uint32_t i = 0; i < 12; ++i) {
    files.push_back(dir.File("docs/doc" + std::to_string(i) + ".tag"));
    WriteFile(files.back(), CorpusDocument(13, i));
  }
  const auto settings = Settings("GB");
  cCaptureRunOptions options = RunOptions("", 2);
  options.InPlace = true;
  std::string err;
  auto run = cCaptureRun::Open(options, settings, err);
  ASSERT_NE(run, nullptr) << err;
  const auto inode = [](const std::string& path) {
    struct stat st {};
    EXPECT_EQ(stat(path.c_str(), &st), 0);
    return st.st_ino;
  };
  const auto unchanged = [&](std::vector<ino_t>* inodes) {
    std::vector<bool> flags;
    EXPECT_TRUE(run->Run(files, [&](const cCaptureFileResult& r) {
      EXPECT_EQ(r.Written, r.File);
      flags.push_back(r.Unchanged);
      if (inodes != nullptr) inodes->push_back(inode(r.File));
      return true;
    }));
    return flags;
  };
  EXPECT_EQ(unchanged(nullptr), std::vector<bool>(files.size(), false));
  std::vector<ino_t> first, second;
  EXPECT_EQ(unchanged(&first), std::vector<bool>(files.size(), true));
  // One document changed by hand: only it is written again.
  const std::string edited = ReadFile(files[3]);
  std::string by_hand = edited;
  const size_t status = by_hand.find("DocStatus:");
  ASSERT_NE(status, std::string::npos);
  by_hand.insert(status + 10, "7");
  WriteFile(files[3], by_hand);
  std::vector<bool> expected(files.size(), true);
  expected[3] = false;
  EXPECT_EQ(unchanged(nullptr), expected);
  EXPECT_EQ(ReadFile(files[3]), edited);
  EXPECT_EQ(unchanged(&second), std::vector<bool>(files.size(), true));
  for (size_t i = 0; i < files.size(); ++i) {
    if (i != 3) {
      EXPECT_EQ(first[i], second[i]) << files[i];
    }
  }
}

TEST(CaptureRun, StopsWhenTheCallerSaysSo) {
  TempDir dir;
  std::vector<std::string> files;
  for (uint32_t i = 0; i < 40; ++i) {
    std::string name = "d";
    name += std::to_string(i);
    name += ".tag";
    files.push_back(dir.File(name));
    WriteFile(files.back(), CorpusDocument(3, i));
  }
  for (const int32_t jobs : {1, 3}) {
    SCOPED_TRACE(jobs);
    std::string err;
    auto run = cCaptureRun::Open(RunOptions("", jobs), Settings("GB"), err);
    ASSERT_NE(run, nullptr) << err;
    size_t calls = 0;
    EXPECT_FALSE(run->Run(files, [&](const cCaptureFileResult& r) {
      EXPECT_EQ(r.Index, calls);
      return ++calls < 5;
    }));
    EXPECT_EQ(calls, 5u);
  }
}

TEST(CaptureRun, WorkersStayAFewDocumentsAheadOfASlowCaller) {
  TempDir dir;
  std::vector<std::string> files;
  // More than the workers may run ahead, so that the bound shows.
  for (uint32_t i = 0; i < 160; ++i) {
    files.push_back(dir.File("in/d" + std::to_string(i) + ".tag"));
  }
  std::filesystem::create_directories(dir.File("in"));
  for (uint32_t i = 0; i < files.size(); ++i) {
    WriteFile(files[i], CorpusDocument(7, i));
  }
  for (const int32_t jobs : {2, 3}) {
    SCOPED_TRACE(jobs);
    const std::string out = dir.File("out" + std::to_string(jobs));
    std::string err;
    auto run = cCaptureRun::Open(RunOptions(out, jobs), Settings("GB"), err);
    ASSERT_NE(run, nullptr) << err;
    size_t written_while_busy = 0;
    EXPECT_TRUE(run->Run(files, [&](const cCaptureFileResult& r) {
      if (r.Index == 0) {
        // The other workers go on while the first result is held here,
        // but no further than two groups a thread past it.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        for (const auto& e : std::filesystem::directory_iterator(out)) {
          written_while_busy += e.is_regular_file();
        }
      }
      return true;
    }));
    EXPECT_GE(written_while_busy, 1u);
    EXPECT_LE(written_while_busy,
              1u + 2u * cCaptureRun::kGroupSize * static_cast<size_t>(jobs));
  }
}

TEST(CaptureRun, RefusesOutputNameClashes) {
  struct Case {
    std::vector<std::string> files;
    const char* error;
  } cases[] = {
      {{"a/x.tag", "b/y.tag", "x2.tag"}, ""},
      {{"a/x.tag", "b/y.tag", "b/x.tag"},
       "a/x.tag and b/x.tag would both be written to out/x.tag"},
      {{"x.tag", "x.tag"},
       "x.tag and x.tag would both be written to out/x.tag"},
  };
  std::string err;
  auto run = cCaptureRun::Open(RunOptions("out", 1), Settings("GB"), err);
  ASSERT_NE(run, nullptr) << err;
  auto in_place = RunOptions("", 1);
  in_place.InPlace = true;
  auto run_in_place = cCaptureRun::Open(in_place, Settings("GB"), err);
  ASSERT_NE(run_in_place, nullptr) << err;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.error);
    EXPECT_EQ(run->CheckOutputs(c.files, err), *c.error == '\0');
    EXPECT_EQ(err, c.error);
    // Written in place, every file keeps its own name.
    EXPECT_TRUE(run_in_place->CheckOutputs(c.files, err));
  }
}

TEST(CaptureRun, ReportsWhatCannotBeOpenedReadOrWritten) {
  TempDir dir;
  WriteFile(dir.File("bad.tag"), "ve\r\n");
  WriteFile(dir.File("good.tag"), CorpusDocument(5, 0));
  WriteFile(dir.File("file"), "");
  struct OpenCase {
    cCaptureRunOptions options;
    const char* error;
  } opens[] = {
      {[] {
         auto o = RunOptions("out", 1);
         o.InPlace = true;
         return o;
       }(),
       "--out-dir and --in-place cannot be used together"},
      {[&] {
         auto o = RunOptions("", 1);
         o.ProfileFile = dir.File("none.ini");
         return o;
       }(),
       "Cannot find file"},
  };
  for (const OpenCase& c : opens) {
    SCOPED_TRACE(c.error);
    std::string err;
    EXPECT_EQ(cCaptureRun::Open(c.options, Settings("GB"), err), nullptr);
    EXPECT_NE(err.find(c.error), std::string::npos) << err;
  }

  struct FileCase {
    std::string out_dir;
    std::string file;
    bool captured;
    std::string error;
  } files[] = {
      {"", dir.File("bad.tag"), false, "Invalid version number"},
      {"", dir.File("missing.tag"), false,
       "Error reading document tags file. Incorrect parameter"},
      {dir.File("file"), dir.File("good.tag"), true,
       "cannot write " + dir.File("file/good.tag")},
      {dir.File("out"), dir.File("good.tag"), true, ""},
  };
  for (const FileCase& c : files) {
    SCOPED_TRACE(c.file + " to " + c.out_dir);
    std::string err;
    auto run = cCaptureRun::Open(RunOptions(c.out_dir, 1), Settings("GB"), err);
    ASSERT_NE(run, nullptr) << err;
    std::filesystem::create_directories(dir.File("out"));
    const cCaptureFileResult r = run->CaptureFile(c.file);
    EXPECT_EQ(r.Captured, c.captured);
    if (c.error.empty()) {
      EXPECT_EQ(r.Error, "");
      EXPECT_EQ(r.Written, dir.File("out/good.tag"));
    } else {
      EXPECT_EQ(r.Error.rfind(c.error, 0), 0u) << r.Error;
      EXPECT_EQ(r.Written, "");
    }
  }
}

TEST(CaptureRun, CollectsTagFilesFromFoldersAndLists) {
  TempDir dir;
  std::filesystem::create_directories(dir.File("a/b"));
  for (const char* name : {"a/z.tag", "a/b/y.TAG", "a/b/notes.txt",
                           "a/.x.tag.tmp-Ab12Cd", "a/b/c.tag", "one.tag"}) {
    WriteFile(dir.File(name), "");
  }
  WriteFile(dir.File("list.txt"), "l1.tag\r\n\r\nl2.tag\n");
  struct Case {
    std::vector<std::string> inputs;
    std::vector<std::string> files;
    const char* error;
  } cases[] = {
      {{dir.File("a"), dir.File("one.tag")},
       {dir.File("a/b/c.tag"), dir.File("a/b/y.TAG"), dir.File("a/z.tag"),
        dir.File("one.tag")},
       ""},
      {{dir.File("none"), dir.File("one.tag")},
       {dir.File("one.tag")},
       "no such file or directory"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.error);
    std::vector<std::string> files;
    std::string err;
    EXPECT_EQ(CollectTagFiles(c.inputs, files, err), *c.error == '\0');
    EXPECT_EQ(files, c.files);
    EXPECT_EQ(err.empty() ? "" : err.substr(err.find(": ") + 2), c.error);
  }
  std::vector<std::string> listed = {"first.tag"};
  std::string err;
  EXPECT_TRUE(ReadFileList(dir.File("list.txt"), listed, err));
  EXPECT_EQ(listed,
            (std::vector<std::string>{"first.tag", "l1.tag", "l2.tag"}));
  EXPECT_FALSE(ReadFileList(dir.File("nolist.txt"), listed, err));
  EXPECT_EQ(err, dir.File("nolist.txt") + ": cannot read the list of files");
}

}  // namespace
}  // namespace pelinor::testing
