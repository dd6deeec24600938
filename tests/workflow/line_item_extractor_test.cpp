// Line items read off generated pages: rows, wrapped lines, tables over
// several pages, page selection, anchors, conditions, discards and
// propagation.

#include "pelinor/line_item_extractor.h"

#include <functional>

#include "batch_fixture.h"
#include "gtest/gtest.h"
#include "pelinor/field_data.h"
#include "pelinor/line_data.h"
#include "pelinor/profile.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

GenRow Row(const std::string& desc, const std::string& qty,
           const std::string& amount) {
  return {desc, qty, amount, amount};
}

// Rows of the document as "description|quantity|amount".
std::vector<std::string> RowsOf(const cDocumentData& doc) {
  std::vector<std::string> out;
  for (const auto& row : doc.LineData) {
    std::string s;
    for (int32_t i = 1; i <= row->colLineItemData.Count(); ++i) {
      if (i > 1) s += "|";
      s += row->colLineItemData.Item(i)->value;
    }
    out.push_back(s);
  }
  return out;
}

std::shared_ptr<cDocumentData> Extract(
    const GenInvoice& inv, const std::function<void(cTemplate&)>& tune,
    std::vector<cLineTableResult>* results = nullptr) {
  TempDir dir;
  const std::string file = WriteGenInstallation(dir.path());
  auto profile = std::make_shared<cProfile>();
  std::string err;
  EXPECT_TRUE(profile->ReadSettings("Gen", file, err)) << err;
  auto tpl = GenTemplate();
  tpl->Profile = profile;
  if (tune) tune(*tpl);
  auto doc = cDocumentData::New();
  doc->Profile = profile;
  doc->Template = tpl;
  auto f = doc->CreateField();
  f->Name = "InvoiceNumber";
  f->value = inv.number;
  cPageModel model;
  model.Pages = GenPages(inv);
  auto r = cLineItemExtractor().Extract(model, 0, 0, *doc);
  if (results) *results = r;
  return doc;
}

GenInvoice Invoice(std::vector<GenRow> rows, int32_t per_page = 30) {
  GenInvoice inv;
  inv.number = "INV-1";
  inv.total = "10.00";
  inv.rows = std::move(rows);
  inv.rows_per_page = per_page;
  return inv;
}

const std::vector<GenRow> kFive = {
    Row("Copier paper A4", "2", "10.00"),
    Row("Toner cartridge\nblack, high yield", "1", "55.20"),
    Row("Stapler", "3", "7.50"),
    Row("Envelopes C5", "10", "4.99"),
    Row("Desk lamp LED", "1", "23.00"),
};

TEST(LineItems, RowsWrappedLinesAndPages) {
  const struct {
    const char* name;
    GenInvoice inv;
    std::vector<std::string> rows;
    std::vector<int32_t> pages;
  } cases[] = {
      {"one page",
       Invoice(kFive),
       {"Copier paper A4|2|10.00", "Toner cartridge black, high yield|1|55.20",
        "Stapler|3|7.50", "Envelopes C5|10|4.99", "Desk lamp LED|1|23.00"},
       {1}},
      {"two rows a page: the table runs over three pages",
       Invoice(kFive, 2),
       {"Copier paper A4|2|10.00", "Toner cartridge black, high yield|1|55.20",
        "Stapler|3|7.50", "Envelopes C5|10|4.99", "Desk lamp LED|1|23.00"},
       {1, 2, 3}},
      {"no rows", Invoice({}), {}, {1}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<cLineTableResult> res;
    auto doc = Extract(c.inv, nullptr, &res);
    EXPECT_EQ(RowsOf(*doc), c.rows);
    ASSERT_EQ(res.size(), 1u);
    EXPECT_EQ(res[0].Pages, c.pages);
    EXPECT_EQ(res[0].RowsKept, static_cast<int32_t>(c.rows.size()));
  }
}

TEST(LineItems, CellsCarryHeadersBoxesAndPages) {
  auto doc = Extract(Invoice(kFive, 3), nullptr);
  ASSERT_EQ(doc->LineData.Count(), 5);
  const auto& row = doc->LineData.Item(4);
  EXPECT_EQ(row->Location, 2);
  EXPECT_EQ(row->Top, 700);
  ASSERT_EQ(row->colLineItemData.Count(), 3);
  const auto& amount = row->colLineItemData.Item(3);
  EXPECT_EQ(amount->Name, "Amount");
  EXPECT_EQ(amount->DataType, 4);
  EXPECT_EQ(amount->ColumnIndex, 3);
  EXPECT_EQ(amount->Left, 1950);
  EXPECT_EQ(amount->Status, 1);
  EXPECT_EQ(amount->StatusMessage, kNotValidatedMessage);
  // A wrapped line widens its row.
  const auto& toner = doc->LineData.Item(2);
  EXPECT_EQ(toner->Height, 90);
}

void AddCondition(ExpressionList& list, const char* name, const char* op,
                  const char* value) {
  auto e = std::make_shared<cExpression>();
  e->Name = name;
  e->Operation = op;
  e->value = value;
  list.Add(e);
}

TEST(LineItems, TableSettingsAndConditions) {
  const struct {
    const char* name;
    int32_t per_page;
    std::function<void(cTemplate&)> tune;
    std::vector<std::string> rows;
  } cases[] = {
      {"front page only",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->Location = kLocationFront; },
       {"Copier paper A4|2|10.00",
        "Toner cartridge black, high yield|1|55.20"}},
      {"back page only",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->Location = kLocationBack; },
       {"Desk lamp LED|1|23.00"}},
      {"middle pages",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->Location = kLocationMid; },
       {"Stapler|3|7.50", "Envelopes C5|10|4.99"}},
      {"page 2",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->Location = 2; },
       {"Stapler|3|7.50", "Envelopes C5|10|4.99"}},
      {"page 9 of 3",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->Location = 9; },
       {}},
      {"page 2 ignored",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->IgnorePages.Add(2); },
       {"Copier paper A4|2|10.00", "Toner cartridge black, high yield|1|55.20",
        "Desk lamp LED|1|23.00"}},
      {"one page extracted",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->PageExtract = 1; },
       {"Copier paper A4|2|10.00",
        "Toner cartridge black, high yield|1|55.20"}},
      {"sheet 3",
       2,
       [](cTemplate& t) { t.LineTables.Item(1)->SheetNo = 3; },
       {"Desk lamp LED|1|23.00"}},
      {"discard one at each end",
       30,
       [](cTemplate& t) {
         t.LineDataDiscardStart = 1;
         t.LineDataDiscardEnd = 1;
       },
       {"Toner cartridge black, high yield|1|55.20", "Stapler|3|7.50",
        "Envelopes C5|10|4.99"}},
      {"discard more than there is",
       30,
       [](cTemplate& t) {
         t.LineDataDiscardStart = 4;
         t.LineDataDiscardEnd = 4;
       },
       {}},
      {"start at the first toner",
       30,
       [](cTemplate& t) {
         AddCondition(t.LineDataConditions, "Description", "CONTAINS", "toner");
       },
       {"Toner cartridge black, high yield|1|55.20", "Stapler|3|7.50",
        "Envelopes C5|10|4.99", "Desk lamp LED|1|23.00"}},
      {"end before envelopes, over pages",
       2,
       [](cTemplate& t) {
         AddCondition(t.LineDataEndConditions, "Description", "STARTS",
                      "envelopes");
       },
       {"Copier paper A4|2|10.00", "Toner cartridge black, high yield|1|55.20",
        "Stapler|3|7.50"}},
      {"repeat: quantities of one",
       30,
       [](cTemplate& t) {
         AddCondition(t.LineDataRptConditions, "Quantity", "=", "1");
       },
       {"Toner cartridge black, high yield|1|55.20", "Desk lamp LED|1|23.00"}},
      {"no anchors, no repeat: heading and total are rows",
       30,
       [](cTemplate& t) {
         t.LineTables.Item(1)->TopAnchorRefs.Clear();
         t.LineTables.Item(1)->BottomAnchorRefs.Clear();
         t.LineDataRptConditions.Clear();
       },
       {"Description|Qty|Amount", "Copier paper A4|2|10.00",
        "Toner cartridge black, high yield|1|55.20", "Stapler|3|7.50",
        "Envelopes C5|10|4.99", "Desk lamp LED|1|23.00", "|Total|10.00"}},
      {"an unknown operation keeps nothing",
       30,
       [](cTemplate& t) {
         AddCondition(t.LineDataConditions, "Quantity", "BETWEEN", "1");
       },
       {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto doc = Extract(Invoice(kFive, c.per_page), c.tune);
    EXPECT_EQ(RowsOf(*doc), c.rows);
  }
}

void AddRule(cTemplate& t, const char* from, const char* to, const char* rows) {
  auto r = t.CreateLineDataRules();
  r->PropagateFrom = from;
  r->PropagateTo = to;
  r->PropagateRows = rows;
}

TEST(LineItems, Propagation) {
  const std::vector<GenRow> gaps = {
      Row("Copier paper A4", "2", "10.00"), Row("Stapler", "", "7.50"),
      Row("Envelopes C5", "5", "4.99"), Row("Desk lamp LED", "", "23.00")};
  const struct {
    const char* name;
    std::function<void(cTemplate&)> tune;
    std::vector<std::string> rows;
  } cases[] = {
      {"carried down into empty cells",
       [](cTemplate& t) { AddRule(t, "Quantity", "Quantity", ""); },
       {"Copier paper A4|2|10.00", "Stapler|2|7.50", "Envelopes C5|5|4.99",
        "Desk lamp LED|5|23.00"}},
      {"a field into every row",
       [](cTemplate& t) { AddRule(t, "InvoiceNumber", "Quantity", "ALL"); },
       {"Copier paper A4|INV-1|10.00", "Stapler|INV-1|7.50",
        "Envelopes C5|INV-1|4.99", "Desk lamp LED|INV-1|23.00"}},
      {"into the last row only",
       [](cTemplate& t) { AddRule(t, "Amount", "Quantity", "LAST"); },
       {"Copier paper A4|2|10.00", "Stapler||7.50", "Envelopes C5|5|4.99",
        "Desk lamp LED|23.00|23.00"}},
      {"into row 2",
       [](cTemplate& t) { AddRule(t, "Description", "Quantity", "2"); },
       {"Copier paper A4|2|10.00", "Stapler|Stapler|7.50",
        "Envelopes C5|5|4.99", "Desk lamp LED||23.00"}},
      {"unknown source or target does nothing",
       [](cTemplate& t) {
         AddRule(t, "Nothing", "Quantity", "ALL");
         AddRule(t, "Amount", "Nothing", "ALL");
       },
       {"Copier paper A4|2|10.00", "Stapler||7.50", "Envelopes C5|5|4.99",
        "Desk lamp LED||23.00"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    auto doc = Extract(Invoice(gaps), c.tune);
    EXPECT_EQ(RowsOf(*doc), c.rows);
  }
}

TEST(LineItems, Conditions) {
  const struct {
    const char* op;
    const char* want;
    const char* value;
    bool holds;
  } cases[] = {
      {"EMPTY", "", "  ", true},
      {"EMPTY", "", "x", false},
      {"NOT EMPTY", "", "x", true},
      {"not empty", "", "", false},
      {"=", "total", " TOTAL ", true},
      {"=", "total", "totals", false},
      {"<>", "total", "sub", true},
      {"CONTAINS", "VAT", "incl. vat", true},
      {"NOT CONTAINS", "VAT", "net", true},
      {"STARTS", "sub", "Subtotal", true},
      {"STARTS", "total", "Subtotal", false},
      {"NUMERIC", "", "\xA3 1,234.50", true},
      {"NUMERIC", "", "1.234,50", true},
      {"NUMERIC", "", "12.5O", false},
      {"NOT NUMERIC", "", "abc", true},
      {"NUMERIC", "", "", false},
      {"LIKE", "^[a-z]+[0-9]$", "Ab1", true},
      {"LIKE", "^[0-9]+$", "12a", false},
      {"BETWEEN", "1", "1", false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.op) + " " + c.want + " on " + c.value);
    cExpression e;
    e.Operation = c.op;
    e.value = c.want;
    EXPECT_EQ(ConditionHolds(e, c.value), c.holds);
  }
}

}  // namespace
}  // namespace pelinor::testing
