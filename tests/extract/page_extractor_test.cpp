#include "pelinor/page_extractor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pelinor/field_data.h"
#include "test_util.h"

namespace pelinor {
namespace {

struct FieldSpec {
  FieldSpec(std::string n, int32_t t = 1, int32_t l = 0, std::string c = "",
            std::string p = "")
      : name(std::move(n)),
        type(t),
        location(l),
        caption(std::move(c)),
        pattern(std::move(p)) {}
  std::string name;
  int32_t type;
  int32_t location;
  std::string caption;
  std::string pattern;
};

struct ZoneSpec {
  std::string field;
  std::vector<cBox> zones;
  std::string anchor;
};

std::shared_ptr<cProfile> MakeProfile(const std::vector<FieldSpec>& fields) {
  auto p = std::make_shared<cProfile>();
  p->Name = "Invoices";
  for (const FieldSpec& f : fields) {
    auto ft = std::make_shared<cFieldType>();
    ft->Name = f.name;
    ft->DataType = f.type;
    ft->DataLocation = f.location;
    ft->CaptionSearch = f.caption;
    ft->Pattern = f.pattern;
    p->FieldTypes.Add(ft);
  }
  return p;
}

void AddZones(cExtractZones& e, const std::vector<cBox>& zones) {
  for (const cBox& b : zones) {
    auto z = e.CreateExtractZone();
    z->Left(std::to_string(b.Left));
    z->Top(std::to_string(b.Top));
    z->Width(std::to_string(b.Width));
    z->Height(std::to_string(b.Height));
  }
}

std::shared_ptr<cTemplate> MakeTemplate(const std::shared_ptr<cProfile>& p,
                                        const std::string& id, int32_t x,
                                        int32_t y,
                                        const std::vector<ZoneSpec>& zones) {
  auto t = cTemplate::New();
  t->Profile = p;
  t->TemplateIdentifier = id;
  t->TemplateIDDatumX = std::to_string(x);
  t->TemplateIDDatumY = std::to_string(y);
  for (const ZoneSpec& z : zones) {
    auto e = t->CreateExtractZones();
    e->FieldName = z.field;
    AddZones(*e, z.zones);
    if (!z.anchor.empty()) {
      auto a = e->CreateAnchorRef();
      a->Name = z.anchor;
      a->XOffset = z.zones.front().Left;
      a->YOffset = z.zones.front().Top;
    }
  }
  return t;
}

cPage MakePage(std::vector<cPageWord> words, int32_t dx = 0, int32_t dy = 0,
               int32_t dpi = 300) {
  cPage page;
  page.Width = 2480;
  page.Height = 3508;
  page.Dpi = dpi;
  for (cPageWord& w : words) {
    w.Box.Left += dx;
    w.Box.Top += dy;
  }
  page.Words = std::move(words);
  page.GroupLines();
  return page;
}

// An invoice page laid out in 300 dpi pixels.
std::vector<cPageWord> InvoiceWords() {
  return {
      {"ACME", {200, 100, 150, 50}, 95},
      {"SUPPLIES", {370, 100, 260, 50}, 94},
      {"INVOICE", {650, 100, 230, 50}, 96},
      {"Invoice", {200, 400, 130, 40}, 92},
      {"No:", {340, 400, 60, 40}, 90},
      {"INV-0042", {450, 400, 160, 40}, 87},
      {"Date", {200, 500, 80, 40}, 93},
      {"12", {450, 500, 40, 40}, 91},
      {"March", {500, 500, 110, 40}, 85},
      {"2026", {620, 500, 80, 40}, 97},
      {"Ship", {1500, 500, 80, 40}, 90},
      {"Total", {1500, 2900, 100, 40}, 93},
      {"due", {1610, 2900, 60, 40}, 93},
      {"1,234.50", {1900, 2900, 160, 40}, 78},
      {"Reference", {200, 700, 180, 40}, 90},
      {"AB-77", {200, 760, 110, 40}, 66},
      {"VAT", {200, 900, 70, 40}, 90},
      {"GB123456789", {300, 900, 240, 40}, 88},
      {"Terms", {200, 1100, 110, 40}, 90},
      {":", {320, 1100, 10, 40}, 90},
      {"30", {345, 1100, 40, 40}, 90},
      {"days", {395, 1100, 80, 40}, 90},
  };
}

const cFieldResult* Find(const std::vector<cFieldResult>& results,
                         const std::string& name) {
  for (const cFieldResult& r : results) {
    if (r.Name == name) return &r;
  }
  return nullptr;
}

TEST(PageExtractorTest, TextSimilarity) {
  struct Case {
    std::string a, b;
    double expected;
  };
  const std::vector<Case> cases = {
      {"ACME SUPPLIES", "acme supplies", 1.0},
      {"ACME SUPPLIES", "ACME SUPPL1ES", 11.0 / 12},
      {"Invoice No:", "INVOICE NO", 1.0},
      {"ABCD", "WXYZ", 0.0},
      {"", "ABC", 0.0},
      {"ABCDEFGH", "ABCD", 0.5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.a + " / " + c.b);
    EXPECT_NEAR(TextSimilarity(c.a, c.b), c.expected, 1e-9);
  }
}

TEST(PageExtractorTest, IdentifiesTemplateByIdentifierText) {
  auto profile = MakeProfile({});
  auto acme = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100, {});
  auto other = MakeTemplate(profile, "NORTHWIND TRADERS", 200, 100, {});
  auto misread = MakeTemplate(profile, "ACME SUPPL1ES INV0ICE", 200, 100, {});
  struct Case {
    std::string name;
    std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>> tpls;
    bool identified;
    std::string best;
    double score;
    std::string runner_up;
  };
  const std::vector<Case> cases = {
      {"exact",
       {{"n.tpl", other}, {"a.tpl", acme}},
       true,
       "a.tpl",
       1.0,
       "n.tpl"},
      // Two OCR misreads in 19 letters still identify the page.
      {"misread",
       {{"n.tpl", other}, {"m.tpl", misread}},
       true,
       "m.tpl",
       1 - 2.0 / 19,
       "n.tpl"},
      {"none fits", {{"n.tpl", other}}, false, "n.tpl", -1, ""},
      {"no templates", {}, false, "", 0, ""},
  };
  cPageModel model;
  model.Pages.push_back(MakePage(InvoiceWords()));
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const cIdentification id = x.Identify(model, c.tpls);
    EXPECT_EQ(id.Identified, c.identified);
    EXPECT_EQ(id.Best.File, c.best);
    if (c.score >= 0) {
      EXPECT_NEAR(id.Best.Score, c.score, 1e-9);
    } else {
      EXPECT_LT(id.Best.Score, x.MinScore);
    }
    EXPECT_EQ(id.RunnerUp.File, c.runner_up);
    EXPECT_EQ(id.RunnerUp.Template == nullptr, c.runner_up.empty());
  }
}

TEST(PageExtractorTest, MeasuresShiftFromDatum) {
  struct Case {
    int32_t dx, dy, dpi;
    int32_t shift_x, shift_y;
  };
  const std::vector<Case> cases = {
      {0, 0, 300, 0, 0},
      {40, -25, 300, 40, -25},
      // A 150 dpi page: its pixels count double.
      {-50, 30, 150, 0, 0},
  };
  auto profile = MakeProfile({});
  auto tpl = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100, {});
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.dx) + "," + std::to_string(c.dy));
    std::vector<cPageWord> words = InvoiceWords();
    if (c.dpi == 150) {
      // Halve the page, then shift it by (dx, dy) page pixels.
      for (cPageWord& w : words) {
        w.Box = {w.Box.Left / 2, w.Box.Top / 2, w.Box.Width / 2,
                 w.Box.Height / 2};
      }
    }
    cPageModel model;
    model.Pages.push_back(MakePage(words, c.dx, c.dy, c.dpi));
    const cTemplateMatch m = x.Locate(model, "t", tpl);
    const int32_t scale = 300 / c.dpi;
    EXPECT_EQ(m.ShiftX, c.dpi == 300 ? c.shift_x : c.dx * scale);
    EXPECT_EQ(m.ShiftY, c.dpi == 300 ? c.shift_y : c.dy * scale);
    EXPECT_DOUBLE_EQ(m.Score, 1.0);
  }
}

TEST(PageExtractorTest, NearestDatumWinsAmongEqualMatches) {
  // The identifier appears at the top and the bottom of the page.
  std::vector<cPageWord> words = {{"ACME", {200, 100, 150, 50}, 90},
                                  {"ACME", {200, 3000, 150, 50}, 90}};
  cPageModel model;
  model.Pages.push_back(MakePage(words));
  auto profile = MakeProfile({});
  cPageExtractor x;
  struct Case {
    int32_t datum_y, found_top;
  };
  for (const Case& c : std::vector<Case>{{150, 100}, {2900, 3000}}) {
    SCOPED_TRACE(c.datum_y);
    auto tpl = MakeTemplate(profile, "ACME", 200, c.datum_y, {});
    const cTemplateMatch m = x.Locate(model, "t", tpl);
    EXPECT_EQ(m.Found.Top, c.found_top);
    EXPECT_EQ(m.ShiftY, c.found_top - c.datum_y);
  }
}

TEST(PageExtractorTest, ZoneFieldsMoveWithThePage) {
  auto profile = MakeProfile({{"InvoiceNumber", 0},
                              {"InvoiceDate", 100},
                              {"Total", 4},
                              {"Nothing", 1}});
  auto tpl = MakeTemplate(
      profile, "ACME SUPPLIES INVOICE", 200, 100,
      {{"InvoiceNumber", {{430, 385, 300, 70}}, ""},
       // Two zones; the words come out in reading order.
       {"InvoiceDate", {{600, 485, 150, 70}, {430, 485, 160, 70}}, ""},
       {"Total", {{1850, 2880, 300, 80}}, ""},
       {"Nothing", {{1000, 1000, 100, 100}}, ""}});
  struct Case {
    int32_t dx, dy;
  };
  cPageExtractor x;
  for (const Case& c : std::vector<Case>{{0, 0}, {35, 45}, {-30, -20}}) {
    SCOPED_TRACE(std::to_string(c.dx) + "," + std::to_string(c.dy));
    cPageModel model;
    model.Pages.push_back(MakePage(InvoiceWords(), c.dx, c.dy));
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
    struct Want {
      std::string name, value;
      cBox box;
      float conf;
      std::string how;
    };
    const std::vector<Want> wants = {
        {"InvoiceNumber", "INV-0042", {450, 400, 160, 40}, 87, "zone"},
        {"InvoiceDate", "12 March 2026", {450, 500, 250, 40}, 85, "zone"},
        {"Total", "1,234.50", {1900, 2900, 160, 40}, 78, "zone"},
        {"Nothing", "", {}, -1, "not found"},
    };
    for (const Want& w : wants) {
      SCOPED_TRACE(w.name);
      const cFieldResult* r = Find(results, w.name);
      ASSERT_NE(r, nullptr);
      EXPECT_EQ(r->Value, w.value);
      cBox box = w.box;
      if (!box.Empty()) {
        box.Left += c.dx;
        box.Top += c.dy;
      }
      EXPECT_EQ(r->Box, box);
      EXPECT_FLOAT_EQ(r->Confidence, w.conf);
      EXPECT_EQ(r->How, w.how);
      std::shared_ptr<cFieldData> f;
      int32_t idx = 0;
      ASSERT_TRUE(doc->Find(w.name, idx, f));
      EXPECT_EQ(f->value, w.value);
      EXPECT_EQ(f->Left, box.Left);
      EXPECT_EQ(f->Top, box.Top);
      EXPECT_EQ(f->Width, box.Width);
      EXPECT_EQ(f->Height, box.Height);
      EXPECT_EQ(f->Status, 1);
    }
  }
}

TEST(PageExtractorTest, DataLocationSelectsPages) {
  // Page n holds the word "P<n>" inside the zone.
  cPageModel model;
  for (int p = 1; p <= 4; ++p) {
    model.Pages.push_back(
        MakePage({{"P" + std::to_string(p), {100, 100, 80, 40}, 90}}));
  }
  // Page 2 has nothing in the zone: "all pages" takes page 1, "middle
  // pages" page 3.
  model.Pages[1] = MakePage({{"elsewhere", {1000, 1000, 80, 40}, 90}});
  struct Case {
    int32_t location;
    std::string value;
    int32_t page;
    std::string how;
  };
  const std::vector<Case> cases = {
      {0, "P1", 1, "zone"},         {-1, "P4", 4, "zone"},
      {-6, "P1", 1, "zone"},        {-7, "P3", 3, "zone"},
      {3, "P3", 3, "zone"},         {9, "", 0, "not found"},
      {-3, "", 0, "not on a page"}, {-9, "", 0, "not on a page"},
  };
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.location);
    auto profile = MakeProfile({{"F", 1, c.location}});
    auto tpl =
        MakeTemplate(profile, "", 0, 0, {{"F", {{80, 80, 150, 80}}, ""}});
    cTemplateMatch m;
    m.Template = tpl;
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, profile, m, doc, results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].Value, c.value);
    EXPECT_EQ(results[0].Page, c.page);
    EXPECT_EQ(results[0].How, c.how);
    EXPECT_EQ(doc->LastSheetIndex, 4);
  }
}

TEST(PageExtractorTest, AnchorsMoveTheirZones) {
  // The template expects "Total due" at y 2900 with the amount beside it;
  // on this page the table above grew and everything sits 300 lower.
  std::vector<cPageWord> words = InvoiceWords();
  for (cPageWord& w : words) {
    if (w.Box.Top == 2900) w.Box.Top += 300;
  }
  cPageModel model;
  model.Pages.push_back(MakePage(words));
  auto profile = MakeProfile({{"Total", 4}});
  struct Case {
    std::string name;
    std::string anchor;
    bool pseudo_anchor;
    std::string value;
    std::string how;
  };
  const std::vector<Case> cases = {
      {"no anchor", "", false, "", "not found"},
      {"text anchor", "Total due", false, "1,234.50", "anchored zone"},
      {"pseudo field anchor", "TotalLabel", true, "1,234.50", "anchored zone"},
      {"anchor not on page", "Grand total", false, "", "not found"},
  };
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto tpl = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100,
                            {{"Total", {{1850, 2885, 300, 70}}, c.anchor}});
    if (c.pseudo_anchor) {
      auto p = tpl->CreatePseudoExtractZones();
      p->FieldName = "TotalLabel";
      p->CaptionSearch = "Total due";
      AddZones(*p, {{1500, 2900, 170, 40}});
    }
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
    const cFieldResult* r = Find(results, "Total");
    ASSERT_NE(r, nullptr);
    EXPECT_EQ(r->Value, c.value);
    EXPECT_EQ(r->How, c.how);
  }
}

TEST(PageExtractorTest, CaptionFields) {
  struct Case {
    std::string caption;
    std::string value;
    std::string how;
  };
  const std::vector<Case> cases = {
      // Right of the caption, up to a wide gap ("Ship" is a column away).
      {"Date", "12 March 2026", "caption right"},
      {"Invoice No", "INV-0042", "caption right"},
      // An OCR misread of the caption is tolerated.
      {"lnvoice No", "INV-0042", "caption right"},
      // Nothing to the right: the words below.
      {"Reference", "AB-77", "caption below"},
      // A colon standing between caption and value is left out.
      {"Terms", "30 days", "caption right"},
      {"Delivery address", "", "not found"},
  };
  cPageModel model;
  model.Pages.push_back(MakePage(InvoiceWords()));
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.caption);
    auto profile = MakeProfile({{"F", 1, 0, c.caption}});
    auto tpl = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100, {});
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].Value, c.value);
    EXPECT_EQ(results[0].How, c.how);
  }
}

TEST(PageExtractorTest, SearchFieldsByPatternOrType) {
  struct Case {
    std::string name;
    int32_t type;
    std::string pattern;
    std::string value;
    cBox box;
  };
  const std::vector<Case> cases = {
      {"pattern", 1, "LL000000000", "GB123456789", {300, 900, 240, 40}},
      {"date type", 100, "", "12 March 2026", {450, 500, 250, 40}},
      {"amount type", 4, "", "1,234.50", {1900, 2900, 160, 40}},
      {"text type without pattern", 1, "", "", {}},
  };
  cPageModel model;
  model.Pages.push_back(MakePage(InvoiceWords()));
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto profile = MakeProfile({{"F", c.type, 0, "", c.pattern}});
    auto tpl = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100, {});
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
    ASSERT_EQ(results.size(), 1u);
    EXPECT_EQ(results[0].Value, c.value);
    EXPECT_EQ(results[0].Box, c.box);
    EXPECT_EQ(results[0].How, c.value.empty() ? "not found" : "search");
  }
}

TEST(PageExtractorTest, PseudoFieldsAndTagFile) {
  cPageModel model;
  model.Pages.push_back(MakePage(InvoiceWords()));
  model.Pages.push_back(MakePage({{"Page", {100, 100, 80, 40}, 90}}));
  auto profile = MakeProfile({{"InvoiceNumber", 0, 0, "Invoice No"}});
  auto tpl = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100, {});
  auto zone = tpl->CreatePseudoExtractZones();
  zone->FieldName = "Heading";
  zone->DataLocationOverride = 0;
  AddZones(*zone, {{190, 90, 700, 70}});
  auto caption = tpl->CreatePseudoExtractZones();
  caption->FieldName = "VatNo";
  caption->CaptionSearch = "VAT";
  caption->DataLocationOverride = 0;
  cPageExtractor x;
  std::shared_ptr<cDocumentData> doc;
  std::vector<cFieldResult> results;
  x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
  ASSERT_EQ(results.size(), 3u);
  EXPECT_FALSE(results[0].Pseudo);
  EXPECT_TRUE(results[1].Pseudo);
  EXPECT_EQ(results[1].Value, "ACME SUPPLIES INVOICE");
  EXPECT_EQ(results[2].Value, "GB123456789");
  EXPECT_EQ(results[2].How, "caption right");

  testing::TempDir dir;
  const std::string file = dir.File("doc.tag");
  std::string err;
  ASSERT_TRUE(doc->WriteSettings(file, err)) << err;
  const std::string expected =
      "ver0.946\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\n"
      "LastSheetIndex:2\r\nFieldsCount:1\r\n"
      "Field1Name:InvoiceNumber\r\nField1Value:INV-0042\r\nField1Status:1\r\n"
      "Field1Message:Tag has not been validated\r\nField1DataLocation:0\r\n"
      "Field1DataType:0\r\nField1Coords:450:400:160:40\r\n"
      "PseudoFieldsCount:2\r\n"
      "Field1Name:Heading\r\nField1Value:ACME SUPPLIES INVOICE\r\n"
      "Field1DataLocation:0\r\nField1Coords:200:100:680:50\r\n"
      "Field2Name:VatNo\r\nField2Value:GB123456789\r\n"
      "Field2DataLocation:0\r\nField2Coords:300:900:240:40\r\n"
      "LLAnchorCount:0\r\nDocEndMarksCount:0\r\nLineCount:0\r\n"
      "ColumnCount:0\r\n";
  EXPECT_EQ(testing::ReadFile(file), expected);
}

TEST(PageExtractorTest, NoiseWordsAreNotValues) {
  // A table rule read as text sits inside the zone above the amount.
  std::vector<cPageWord> words = {{"ACME", {200, 100, 150, 50}, 95},
                                  {"_\x97_\x97_", {1850, 2880, 300, 20}, 9},
                                  {"1,234.50", {1900, 2900, 160, 40}, 78}};
  cPageModel model;
  model.Pages.push_back(MakePage(words));
  auto profile = MakeProfile({{"Total", 4}});
  auto tpl = MakeTemplate(profile, "ACME", 200, 100,
                          {{"Total", {{1850, 2870, 300, 90}}, ""}});
  cPageExtractor x;
  std::shared_ptr<cDocumentData> doc;
  std::vector<cFieldResult> results;
  x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
  EXPECT_EQ(results[0].Value, "1,234.50");
  EXPECT_FLOAT_EQ(results[0].Confidence, 78);
}

TEST(PageExtractorTest, ReadsTemplateDirectory) {
  testing::TempDir dir;
  auto profile = MakeProfile({});
  std::string err;
  std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>> list;
  EXPECT_FALSE(ReadTemplateDirectory(dir.path(), profile, list, err));
  EXPECT_EQ(err, "No template (*.tpl) in " + dir.path());
  for (const char* name : {"b.tpl", "a.TPL"}) {
    auto t = MakeTemplate(profile, name, 1, 2, {});
    ASSERT_TRUE(t->WriteSettings(dir.File(name), err)) << err;
  }
  testing::WriteFile(dir.File("notes.txt"), "not a template");
  ASSERT_TRUE(ReadTemplateDirectory(dir.path(), profile, list, err)) << err;
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0].first, dir.File("a.TPL"));
  EXPECT_EQ(list[0].second->TemplateIdentifier, "a.TPL");
  EXPECT_EQ(list[1].second->TemplateIdentifier, "b.tpl");
  EXPECT_EQ(list[1].second->Profile, profile);
  testing::WriteFile(dir.File("c.tpl"), "v");
  list.clear();
  EXPECT_FALSE(ReadTemplateDirectory(dir.path(), profile, list, err));
  EXPECT_EQ(err, dir.File("c.tpl") + ": Invalid version number");
}

}  // namespace
}  // namespace pelinor

namespace pelinor {
namespace {

TEST(PageExtractorTest, ExtractAndProcessDocuments) {
  cPageModel model;
  model.Pages.push_back(MakePage(InvoiceWords()));
  auto profile = MakeProfile(
      {{"InvoiceNumber", 1, 0, "Invoice No"}, {"Total", 4, 0, "Total due"}});
  auto acme = MakeTemplate(profile, "ACME SUPPLIES INVOICE", 200, 100, {});
  auto other = MakeTemplate(profile, "NORTHWIND TRADERS", 200, 100, {});
  struct Case {
    std::string name;
    cPageModel model;
    std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>> tpls;
    bool forced;
    bool ok;
    std::string message;
  };
  const std::vector<Case> cases = {
      {"identified", model, {{"n", other}, {"a", acme}}, false, true, ""},
      {"forced", model, {{"n", other}}, true, true, ""},
      {"not identified",
       model,
       {{"n", other}},
       false,
       false,
       "page not identified: no template's identifier text was found (best "
       "n, score 0.25)"},
      {"no page",
       cPageModel(),
       {{"a", acme}},
       false,
       false,
       "no page was read"},
      {"no template",
       model,
       {},
       false,
       false,
       "no template to identify the page with"},
  };
  cPageExtractor x;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    cPageDocument out;
    std::string err = "old";
    ASSERT_EQ(ProcessDocument(x, c.model, profile, c.tpls, c.forced,
                              cCaptureOptions(), out, err),
              c.ok);
    EXPECT_EQ(err, c.message);
    EXPECT_EQ(out.Document != nullptr, c.ok);
    if (!c.ok) continue;
    EXPECT_EQ(out.Document->Template, c.forced ? other : acme);
    // The capture run cleaned the amount and set the statuses.
    ASSERT_EQ(out.Capture.Values.size(), 2u);
    EXPECT_EQ(out.Capture.Values[1].Raw, "1,234.50");
    EXPECT_EQ(out.Capture.Values[1].Result, "1234.50");
    EXPECT_EQ(out.Capture.Status, 0);
    EXPECT_EQ(out.Results[1].Value, "1,234.50");
  }
}

}  // namespace
}  // namespace pelinor
