#include "pelinor/template.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "template_fixtures.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::DataPath;
using testing::FullTemplate;
using testing::ReadFile;
using testing::TempDir;
using testing::WriteFile;

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(line);
  }
  return lines;
}

std::string Join(const std::vector<std::string>& lines) {
  std::string text;
  for (const auto& line : lines) text += line + "\r\n";
  return text;
}

// The full example as a file of version `ver`: the groups that the version
// does not have are taken out of the current file.
std::string AtVersion(const std::string& ver, float v) {
  const std::vector<std::string> all =
      Lines(ReadFile(DataPath("template/full.tpl")));
  struct Gate {
    float from;
    const char* pattern;
    const char* section;  // only inside this section ("" anywhere)
  };
  const Gate gates[] = {
      {0.912f, "^TemplateIDDatum[XY]:", ""},
      {0.911f, "^UserData:", ""},
      {0.915f, "^UserDataPrimary:", ""},
      {0.913f, "^ExtractType:", ""},
      {0.914f, "^Disambiguate:", ""},
      {0.925f, "^(LineLevel|OCRAllPages|FlattenDuplex):", ""},
      {0.927f, "^(DocEndMark|ExpectedAttachments)", ""},
      {0.937f, "^(User|LastModified):", ""},
      {0.917f, "^Field\\d+AnchorRef:", "FieldCount"},
      {0.901f, "^Field\\d+(OverrideCount|Type|Location|Pattern)", "FieldCount"},
      {0.939f, "^Field\\d+AutoTemplate:", "FieldCount"},
      {0.917f, "", "PseudoFieldCount"},
      {0.921f, "", "LineTableCount"},
      {0.923f, "^Table\\d+(PageExtract|IgnorePage)", "LineTableCount"},
      {0.924f, "^Table\\d+SheetNo:", "LineTableCount"},
      {0.929f, "", "LineLevelRules"},
      {0.93f, "", "LineDataPartition"},
      {0.932f, "^LineDataDiscard", ""},
      {0.935f, "^LineDataEntitySpaceMax:", ""},
      {0.934f, "^LineDataRowSpaceMax:", ""},
      {0.93f, "", "LineLevelStartExpr"},
      {0.931f, "", "LineLevelEndExpr"},
      {0.933f, "", "LineLevelRptExpr"},
      {0.943f, "", "LineHeaderCount"},
  };
  const std::regex section_start(
      "^(FieldCount|PseudoFieldCount|LineTableCount|LineLevelRules|"
      "LineDataPartition|LineLevelStartExpr|LineLevelEndExpr|"
      "LineLevelRptExpr|LineHeaderCount):");
  std::vector<std::string> kept{ver};
  std::string section;
  bool ended = false;  // files before 0.93 end after their rules
  for (size_t i = 1; i < all.size(); ++i) {
    const std::string& line = all[i];
    std::smatch m;
    if (std::regex_search(line, m, section_start)) section = m[1];
    if (section == "LineDataPartition" && v < 0.93f) ended = true;
    if (ended) break;
    bool drop = i == 2 && v < 0.914f;  // the disambiguated identifier
    for (const Gate& g : gates) {
      if (v >= g.from) continue;
      const bool in_section = *g.section == '\0' || section == g.section;
      const bool matches =
          *g.pattern == '\0' || std::regex_search(line, std::regex(g.pattern));
      if (in_section && matches) drop = true;
    }
    if (!drop) kept.push_back(line);
  }
  return Join(kept);
}

struct Probe {
  float from;
  std::function<std::string(const cTemplate&)> get;
  std::string present;  // what a file of the version holds
  std::string absent;   // what stays without the line
};

std::string N(int32_t v) { return std::to_string(v); }

TEST(Template, ReadsEveryVersionGate) {
  const Probe probes[] = {
      {0.914f, [](auto& t) { return t.TemplateDisambiguatedID; }, "2", "0"},
      {0.0f, [](auto& t) { return t.PelinorProfile; }, "Invoices", ""},
      {0.912f, [](auto& t) { return t.TemplateIDDatumY; }, "140", ""},
      {0.911f, [](auto& t) { return t.UserData; }, "supplier 4711, net 30", ""},
      {0.915f, [](auto& t) { return N(t.UserDataPrimary); }, "1", "0"},
      {0.913f, [](auto& t) { return N(t.ExtractType); }, "2", "0"},
      {0.914f, [](auto& t) { return N(t.Disambiguate); }, "3", "0"},
      {0.925f, [](auto& t) { return N(t.OCRPages()); }, "-1", "0"},
      {0.927f,
       [](auto& t) {
         return t.DocEndMarks.Count() == 1 ? t.DocEndMarks.Item(1)->Name
                                           : N(t.DocEndMarks.Count());
       },
       "Carried forward", "0"},
      {0.927f, [](auto& t) { return N(t.ExpectedAttachments()); }, "4", "0"},
      {0.937f, [](auto& t) { return t.TimeLastModified; },
       "2026-11-02 09:15:00", ""},
      {0.0f, [](auto& t) { return N(t.FieldZoneRefs.Count()); }, "2", "0"},
      {0.901f, [](auto& t) { return t.FieldZoneRefs.Item(1)->PatternOverride; },
       "INV-####", kUseDefaultProperty},
      {0.917f,
       [](auto& t) {
         const auto& a = t.FieldZoneRefs.Item(1)->AnchorRefs;
         return a.Count() == 0 ? std::string("none")
                               : a.Item(1)->Name + "@" + N(a.Item(1)->XOffset) +
                                     "," + N(a.Item(1)->YOffset);
       },
       "Invoice No@1500,400", "none"},
      {0.939f, [](auto& t) { return N(t.FieldZoneRefs.Item(2)->AutoTemplate); },
       "0", "1"},
      {0.0f,
       [](auto& t) { return t.FieldZoneRefs.Item(2)->Zones.Item(2)->Top(); },
       "520", "520"},
      {0.917f, [](auto& t) { return N(t.PseudoFieldZoneRefs.Count()); }, "1",
       "0"},
      {0.917f,
       [](auto& t) {
         const auto& e = t.PseudoFieldZoneRefs.Item(1);
         return e == nullptr ? std::string("none")
                             : N(e->Catagory) + e->CaptionSearch;
       },
       "2VAT Reg", "none"},
      {0.921f, [](auto& t) { return N(t.LineTables.Count()); }, "1", "0"},
      {0.923f,
       [](auto& t) {
         return t.LineTables.Count() == 0
                    ? std::string("0")
                    : N(t.LineTables.Item(1)->IgnorePages.Count());
       },
       "1", "0"},
      {0.924f,
       [](auto& t) {
         return t.LineTables.Count() == 0 ? std::string("0")
                                          : N(t.LineTables.Item(1)->SheetNo);
       },
       "1", "0"},
      {0.929f, [](auto& t) { return N(t.ColLineDataRules.Count()); }, "1", "0"},
      {0.93f, [](auto& t) { return N(t.LineDataPartition); }, "1", "0"},
      {0.932f, [](auto& t) { return N(t.LineDataDiscardEnd); }, "2", "0"},
      {0.935f, [](auto& t) { return t.LineDataEntitySpaceMax(); }, "120", ""},
      {0.934f, [](auto& t) { return t.LineDataRowSpaceMax(); }, "60", ""},
      {0.93f, [](auto& t) { return N(t.LineDataConditions.Count()); }, "1",
       "0"},
      {0.931f, [](auto& t) { return N(t.LineDataEndConditions.Count()); }, "1",
       "0"},
      {0.933f, [](auto& t) { return N(t.LineDataRptConditions.Count()); }, "1",
       "0"},
      {0.943f, [](auto& t) { return N(t.LineHeaders.Count()); }, "2", "0"},
  };
  struct Version {
    std::string text;
    float value;
  } versions[] = {
      {"ver0.900", 0.900f}, {"ver0.901", 0.901f}, {"ver0.911", 0.911f},
      {"ver0.912", 0.912f}, {"ver0.913", 0.913f}, {"ver0.914", 0.914f},
      {"ver0.915", 0.915f}, {"ver0.917", 0.917f}, {"ver0.920", 0.920f},
      {"ver0.921", 0.921f}, {"ver0.922", 0.922f}, {"ver0.923", 0.923f},
      {"ver0.924", 0.924f}, {"ver0.925", 0.925f}, {"ver0.927", 0.927f},
      {"ver0.929", 0.929f}, {"ver0.93", 0.93f},   {"ver0.931", 0.931f},
      {"ver0.932", 0.932f}, {"ver0.933", 0.933f}, {"ver0.934", 0.934f},
      {"ver0.935", 0.935f}, {"ver0.937", 0.937f}, {"ver0.938", 0.938f},
      {"ver0.939", 0.939f}, {"ver0.943", 0.943f}, {"ver0.946", 0.946f},
  };
  TempDir dir;
  for (const Version& v : versions) {
    SCOPED_TRACE(v.text);
    const std::string path = dir.File("t.tpl");
    WriteFile(path, AtVersion(v.text, v.value));
    auto t = cTemplate::New();
    std::string err = "stale";
    ASSERT_TRUE(t->ReadSettings(path, err)) << err;
    EXPECT_EQ(err, "");
    for (const Probe& p : probes) {
      SCOPED_TRACE(p.present);
      EXPECT_EQ(p.get(*t), v.value >= p.from ? p.present : p.absent);
    }
    // Every file reads to its end: one more line after it is never read,
    // and one line fewer fails.
    std::vector<std::string> lines = Lines(AtVersion(v.text, v.value));
    lines.pop_back();
    WriteFile(path, Join(lines));
    auto shorter_owner = cTemplate::New();
    cTemplate& shorter = *shorter_owner;
    EXPECT_FALSE(shorter.ReadSettings(path, err));
    EXPECT_EQ(err, kTemplateIncorrectParameter);
  }
}

TEST(Template, WritesTheGoldenFiles) {
  struct Case {
    const char* golden;
    std::shared_ptr<cTemplate> t;
  } cases[] = {
      {"template/full.tpl", FullTemplate()},
      {"template/empty.tpl", cTemplate::New()},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.golden);
    std::string err = "stale";
    ASSERT_TRUE(c.t->WriteSettings(dir.File("out.tpl"), err));
    EXPECT_EQ(err, "");
    EXPECT_EQ(ReadFile(dir.File("out.tpl")), ReadFile(DataPath(c.golden)));
    // Reading the golden file and writing it again gives the same bytes.
    auto back = cTemplate::New();
    ASSERT_TRUE(back->ReadSettings(DataPath(c.golden), err)) << err;
    ASSERT_TRUE(back->WriteSettings(dir.File("again.tpl"), err));
    EXPECT_EQ(ReadFile(dir.File("again.tpl")), ReadFile(DataPath(c.golden)));
  }
}

TEST(Template, PropertiesInheritFromTheProfileUntilSet) {
  struct Case {
    const char* name;
    std::function<int32_t(const cTemplate&)> get;
    std::function<void(cTemplate&, int32_t)> set;
    int32_t cProfile::*field;
  } cases[] = {
      {"FlattenDuplex", [](auto& t) { return t.FlattenDuplex(); },
       [](auto& t, int32_t v) { t.FlattenDuplex(v); },
       &cProfile::FlattenDuplex},
      {"OCRPages", [](auto& t) { return t.OCRPages(); },
       [](auto& t, int32_t v) { t.OCRPages(v); }, &cProfile::OCRPages},
      {"LineLevel", [](auto& t) { return t.LineLevel(); },
       [](auto& t, int32_t v) { t.LineLevel(v); }, &cProfile::LineLevel},
      {"DocEndMarkInclusive", [](auto& t) { return t.DocEndMarkInclusive(); },
       [](auto& t, int32_t v) { t.DocEndMarkInclusive(v); },
       &cProfile::DocEndMarkInclusive},
      {"DocEndMarkSideMode", [](auto& t) { return t.DocEndMarkSideMode(); },
       [](auto& t, int32_t v) { t.DocEndMarkSideMode(v); },
       &cProfile::DocEndMarkSideMode},
      {"ExpectedAttachments", [](auto& t) { return t.ExpectedAttachments(); },
       [](auto& t, int32_t v) { t.ExpectedAttachments(v); },
       &cProfile::ExpectedAttachments},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto t_owner = cTemplate::New();
    cTemplate& t = *t_owner;
    EXPECT_EQ(c.get(t), 0);
    t.Profile = std::make_shared<cProfile>();
    (*t.Profile).*c.field = 5;
    EXPECT_EQ(c.get(t), 5);
    c.set(t, 0);
    EXPECT_EQ(c.get(t), 0);
    (*t.Profile).*c.field = 7;
    EXPECT_EQ(c.get(t), 0);
  }
  // The texts inherit the same way but are written with their own values.
  auto t_owner = cTemplate::New();
  cTemplate& t = *t_owner;
  EXPECT_EQ(t.LineDataRowSpaceMax(), "");
  t.Profile = std::make_shared<cProfile>();
  t.Profile->LineDataEntitySpaceMax = "150";
  EXPECT_EQ(t.LineDataEntitySpaceMax(), "150");
  EXPECT_EQ(t.LineDataRowSpaceMax(), "70");
  t.LineDataEntitySpaceMax("90");
  EXPECT_EQ(t.LineDataEntitySpaceMax(), "90");
}

TEST(Template, ReadsEndMarksAndIdentifiers) {
  struct Case {
    std::string lines;  // the identifier item and the end mark item
    std::string marks;
    std::string id;
  } cases[] = {
      {"  \r\nDocEndMark:Top:a:b\r\n", "", "0"},
      {"7\r\nDocEndMark:Top\r\n", "Top@0,0;", "7"},
      {"\r\nDocEndMark:Top:5:-6\r\n", "Top@5,-6;", "0"},
      {"0\r\nDocEndMark:\r\n", "", "0"},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.lines);
    const std::string id_item = c.lines.substr(0, c.lines.find("\r\n") + 2);
    const std::string mark = c.lines.substr(id_item.size());
    WriteFile(dir.File("t.tpl"),
              "ver0.927\r\nID\r\n" + id_item +
                  "scanner\r\nprofile\r\nX:1\r\nY:2\r\nUserData:\r\n"
                  "UserDataPrimary:0\r\nExtractType:0\r\nDisambiguate:0\r\n"
                  "LineLevel:1\r\nOCRAllPages:1\r\nFlattenDuplex:1\r\n" +
                  mark +
                  "DocEndMarkInclusive:1\r\nDocEndMarkSideMode:0\r\n"
                  "ExpectedAttachments:0\r\nFieldCount:0\r\n"
                  "PseudoFieldCount:0\r\nLineTableCount:0\r\n");
    auto t_owner = cTemplate::New();
    cTemplate& t = *t_owner;
    std::string err;
    ASSERT_TRUE(t.ReadSettings(dir.File("t.tpl"), err)) << err;
    std::string marks;
    for (const auto& m : t.DocEndMarks) {
      marks += m->Name + "@" + N(m->XOffset) + "," + N(m->YOffset) + ";";
    }
    EXPECT_EQ(marks, c.marks);
    EXPECT_EQ(t.TemplateDisambiguatedID, c.id);
    EXPECT_EQ(t.ScannerProfile, "scanner");
  }
}

// Every value read as the first item of its line is cut at a comma, and
// reading goes on with the next line; values read as whole lines keep
// their commas.
TEST(Template, CutsFirstItemsAtACommaAndReadsOn) {
  const std::vector<std::string> full =
      Lines(ReadFile(DataPath("template/full.tpl")));
  using Get = std::function<std::string(const cTemplate&)>;
  struct Case {
    std::string line, replacement;
    Get get;
    std::string expected;
  } cases[] = {
      {"ver0.946", "ver0.946,ver0.9", [](auto& t) { return t.Version; },
       "0.946"},
      {"ACME LTD INVOICE", "ACME, LTD INVOICE",
       [](auto& t) { return t.TemplateIdentifier; }, "ACME"},
      {"2", "2,3", [](auto& t) { return t.TemplateDisambiguatedID; }, "2"},
      {"TemplateIDDatumX:1210", "TemplateIDDatumX:1210,5",
       [](auto& t) { return t.TemplateIDDatumX; }, "1210"},
      {"UserData:supplier 4711, net 30", "UserData:supplier 4711, net 30",
       [](auto& t) { return t.UserData; }, "supplier 4711, net 30"},
      {"ExtractType:2", "ExtractType:2,7",
       [](auto& t) { return N(t.ExtractType); }, "2"},
      {"DocEndMark:Carried forward:150:3100",
       "DocEndMark:Carried, forward:150:3100",
       [](auto& t) {
         const auto& m = t.DocEndMarks.Item(1);
         return m->Name + "@" + N(m->XOffset) + "," + N(m->YOffset);
       },
       "Carried@0,0"},
      {"User:jbloggs", "User:Bloggs, J", [](auto& t) { return t.UserName; },
       "Bloggs"},
      {"FieldCount:2", "FieldCount:2,1",
       [](auto& t) { return N(t.FieldZoneRefs.Count()); }, "2"},
      {"Field1FieldName:InvoiceNumber", "Field1FieldName:Invoice,Number",
       [](auto& t) { return t.FieldZoneRefs.Item(1)->FieldName; }, "Invoice"},
      {"Field1AnchorRef:Invoice No", "Field1AnchorRef:Invoice, No",
       [](auto& t) {
         return t.FieldZoneRefs.Item(1)->AnchorRefs.Item(1)->Name;
       },
       "Invoice"},
      {"Field1Zone1Left:1500", "Field1Zone1Left:1500,1",
       [](auto& t) {
         return N(t.FieldZoneRefs.Item(1)->Zones.Item(1)->LeftValue());
       },
       "1500"},
      {"Field1CaptionSearch:VAT Reg", "Field1CaptionSearch:VAT, Reg",
       [](auto& t) { return t.PseudoFieldZoneRefs.Item(1)->CaptionSearch; },
       "VAT"},
      {"Table1Col2Name:Qty", "Table1Col2Name:Qty, each",
       [](auto& t) { return t.LineTables.Item(1)->Columns.Item(2)->Name; },
       "Qty, each"},
      {"LineDataEntitySpaceMax:120", "LineDataEntitySpaceMax:120,5",
       [](auto& t) { return t.LineDataEntitySpaceMax(); }, "120"},
      {"LineHeader1Name:Qty", "LineHeader1Name:Qty, each",
       [](auto& t) { return t.LineHeaders.Item(1)->Name; }, "Qty"},
      {"LineHeader1DataType:2", "LineHeader1DataType:2,4",
       [](auto& t) { return N(t.LineHeaders.Item(1)->DataType); }, "2"},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.replacement);
    std::vector<std::string> lines = full;
    const auto at = std::find(lines.begin(), lines.end(), c.line);
    ASSERT_NE(at, lines.end());
    *at = c.replacement;
    WriteFile(dir.File("comma.tpl"), Join(lines));
    auto t = cTemplate::New();
    std::string err;
    ASSERT_TRUE(t->ReadSettings(dir.File("comma.tpl"), err)) << err;
    EXPECT_EQ(c.get(*t), c.expected);
    // The lines after the cut one are read where they belong.
    ASSERT_EQ(t->LineHeaders.Count(), 2);
    EXPECT_EQ(t->LineHeaders.Item(2)->Pattern, "AA-###");
  }
}

TEST(Template, MarkerFilesOverrideInOrder) {
  struct Case {
    std::vector<std::string> markers;
    int16_t da;
    int16_t reuse;
  } cases[] = {
      {{}, -1, -1},
      {{".neverDA"}, 0, -1},
      {{".neverDA", ".alwaysDA"}, 1, -1},
      {{".crm_auto"}, -1, 0},
      {{".crm_auto", ".crm_content"}, -1, 1},
      {{".crm_donotuse", ".crm_content", ".alwaysDA"}, 1, 2},
      {{".NEVERDA"}, -1, -1},
  };
  for (const Case& c : cases) {
    TempDir dir;
    std::string names;
    for (const auto& m : c.markers) names += m;
    SCOPED_TRACE(names);
    // A file that ends early at a version gate still applies the markers.
    const std::string path = dir.File("acme.tpl");
    WriteFile(path, AtVersion("ver0.929", 0.929f));
    for (const auto& m : c.markers) WriteFile(path + m, "ignored");
    auto t_owner = cTemplate::New();
    cTemplate& t = *t_owner;
    std::string err;
    ASSERT_TRUE(t.ReadSettings(path, err)) << err;
    EXPECT_EQ(t.DAInvoicesOverride(), c.da);
    EXPECT_EQ(t.ContentReuseOverride(), c.reuse);
  }
}

TEST(Template, RejectsMalformedFiles) {
  const std::vector<std::string> full =
      Lines(ReadFile(DataPath("template/full.tpl")));
  auto with = [&](size_t at, const std::string& line) {
    std::vector<std::string> lines = full;
    lines[at] = line;
    return Join(lines);
  };
  auto cut = [&](size_t n) {
    return Join(std::vector<std::string>(full.begin(), full.begin() + n));
  };
  struct Case {
    std::string body;
    std::string err;
    int fields;  // entries kept from before the failure
    std::string identifier;
  } cases[] = {
      {"", "Invalid version number", 0, ""},
      {"ve\r\nID\r\n", "Invalid version number", 0, ""},
      {"ver0.946\r\n", kTemplateIncorrectParameter, 0, ""},
      {with(8, "UserDataPrimary:one"), kTemplateIncorrectParameter, 0,
       "ACME LTD INVOICE"},
      {with(5, "TemplateIDDatumX 1210"), kTemplateIncorrectParameter, 0,
       "ACME LTD INVOICE"},
      {with(37, "Field2Location:front"), kTemplateIncorrectParameter, 1,
       "ACME LTD INVOICE"},
      {with(63, "Table1Location:SIDE"), kTemplateIncorrectParameter, 2,
       "ACME LTD INVOICE"},
      {with(89, "Expr1"), kTemplateIncorrectParameter, 2, "ACME LTD INVOICE"},
      {with(97, "LineHeader1DataType:number"), kTemplateIncorrectParameter, 2,
       "ACME LTD INVOICE"},
      {cut(40), kTemplateIncorrectParameter, 1, "ACME LTD INVOICE"},
      {cut(60), kTemplateIncorrectParameter, 2, "ACME LTD INVOICE"},
      {cut(96), kTemplateIncorrectParameter, 2, "ACME LTD INVOICE"},
      {std::string("ver0.946\r\n\0\0\0\r\n", 15), kTemplateIncorrectParameter,
       0, ""},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body.substr(0, 400));
    WriteFile(dir.File("bad.tpl"), c.body);
    auto t_owner = cTemplate::New();
    cTemplate& t = *t_owner;
    std::string err;
    EXPECT_FALSE(t.ReadSettings(dir.File("bad.tpl"), err));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(t.FieldZoneRefs.Count(), c.fields);
    EXPECT_EQ(t.TemplateIdentifier, c.identifier);
  }
  // The file cut after any of its lines is incomplete.
  for (size_t n = 1; n < full.size(); ++n) {
    SCOPED_TRACE(n);
    WriteFile(dir.File("cut.tpl"), cut(n));
    auto t_owner = cTemplate::New();
    cTemplate& t = *t_owner;
    std::string err;
    EXPECT_FALSE(t.ReadSettings(dir.File("cut.tpl"), err));
    EXPECT_EQ(err, kTemplateIncorrectParameter);
  }
  auto t_owner = cTemplate::New();
  cTemplate& t = *t_owner;
  std::string err;
  EXPECT_FALSE(t.ReadSettings(dir.File("missing.tpl"), err));
  EXPECT_EQ(err, "Cannot find file " + dir.File("missing.tpl"));
}

TEST(Template, CopyIsDeepAndIndependent) {
  TempDir dir;
  const auto original = FullTemplate();
  std::shared_ptr<cTemplate> copy;
  original->Copy(copy);
  ASSERT_NE(copy, nullptr);
  std::string err;
  ASSERT_TRUE(copy->WriteSettings(dir.File("copy.tpl"), err));
  EXPECT_EQ(ReadFile(dir.File("copy.tpl")),
            ReadFile(DataPath("template/full.tpl")));
  EXPECT_EQ(copy->FieldZoneRefs.Item(1)->Template.lock(), copy);

  // Change every level of the copy; the original still writes the same.
  const std::vector<std::function<void(cTemplate&)>> changes = {
      [](cTemplate& t) { t.TemplateIdentifier = "x"; },
      [](cTemplate& t) { t.FlattenDuplex(9); },
      [](cTemplate& t) { t.FieldZoneRefs.Item(1)->FieldName = "x"; },
      [](cTemplate& t) { t.FieldZoneRefs.Item(1)->Zones.Item(1)->Left("9"); },
      [](cTemplate& t) {
        t.FieldZoneRefs.Item(1)->AnchorRefs.Item(1)->Name = "x";
      },
      [](cTemplate& t) { t.PseudoFieldZoneRefs.Item(1)->CaptionSearch = "x"; },
      [](cTemplate& t) { t.LineTables.Item(1)->Columns.Item(1)->Name = "x"; },
      [](cTemplate& t) {
        t.LineTables.Item(1)->TopAnchorRefs.Item(1)->XOffset = 1;
      },
      [](cTemplate& t) { t.DocEndMarks.Item(1)->Name = "x"; },
      [](cTemplate& t) { t.ColLineDataRules.Item(1)->PropagateRows = "x"; },
      [](cTemplate& t) { t.LineDataConditions.Item(1)->Name = "x"; },
      [](cTemplate& t) { t.LineDataEndConditions.Item(1)->value = "x"; },
      [](cTemplate& t) { t.LineDataRptConditions.Item(1)->Name = "x"; },
      [](cTemplate& t) { t.LineHeaders.Item(1)->DataType = 9; },
      [](cTemplate& t) {
        t.Purge();
        t.PurgeTplLineTables();
      },
  };
  for (const auto& change : changes) change(*copy);
  ASSERT_TRUE(original->WriteSettings(dir.File("original.tpl"), err));
  EXPECT_EQ(ReadFile(dir.File("original.tpl")),
            ReadFile(DataPath("template/full.tpl")));
}

TEST(Template, FindsEntriesIgnoringCase) {
  const auto t = FullTemplate();
  struct Case {
    std::string name;
    bool field, pseudo, header;
  } cases[] = {
      {"invoicedate", true, false, false},
      {"VATREGNO", false, true, false},
      {"qty", false, false, true},
      {"Missing", false, false, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::shared_ptr<cExtractZones> zones;
    std::shared_ptr<cLineHdrType> header;
    EXPECT_EQ(t->FindFieldZones(c.name, zones), c.field);
    EXPECT_EQ(zones == t->FieldZoneRefs.Item(2), c.field);
    zones = nullptr;
    EXPECT_EQ(t->FindPseudoFieldZones(c.name, zones), c.pseudo);
    EXPECT_EQ(zones != nullptr, c.pseudo);
    EXPECT_EQ(t->FindLineHeaders(c.name, header), c.header);
    EXPECT_EQ(header != nullptr, c.header);
  }
}

}  // namespace
}  // namespace pelinor
