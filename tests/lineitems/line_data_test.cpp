#include "pelinor/line_data.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <string_view>

#include "pelinor/document_data.h"
#include "pelinor/repair_trace.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::ScopedEnv;
using testing::TempDir;

std::shared_ptr<cLineItemData> Cell(const std::string& name,
                                    const std::string& value) {
  auto cell = std::make_shared<cLineItemData>();
  cell->Name = name;
  cell->value = value;
  return cell;
}

TEST(LineData, WritesRowAndCellLines) {
  struct Case {
    int cells;
    const char* expected;
  } cases[] = {
      {0,
       "Line3Status:2\r\nLine3Message:check\r\nLine3Coords:10:20:300:15\r\n"
       "Line3DataLocation:-1\r\n"},
      {2,
       "Line3Status:2\r\nLine3Message:check\r\nLine3Coords:10:20:300:15\r\n"
       "Line3DataLocation:-1\r\nLine3Col1Name:Qty\r\nLine3Col1Value:1\r\n"
       "Line3Col1Status:0\r\nLine3Col1Message:\r\nLine3Col2Name:Price\r\n"
       "Line3Col2Value:1,250.00\r\nLine3Col2Status:1\r\n"
       "Line3Col2Message:bad\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.cells);
    auto row_ptr = cLineData::New();
    cLineData& row = *row_ptr;
    row.Status = 2;
    row.StatusMessage = "check";
    row.Left = 10;
    row.Top = 20;
    row.Width = 300;
    row.Height = 15;
    row.Location = -1;
    row.AvgTop = 99;  // not written
    if (c.cells > 0) {
      row.colLineItemData.Add(Cell("Qty", "1"));
      auto price = Cell("Price", "1,250.00");
      price->Status = 1;
      price->StatusMessage = "bad";
      row.colLineItemData.Add(price);
    }
    TempDir dir;
    TextWriter out;
    ASSERT_TRUE(out.Create(dir.File("t")));
    std::string err = "old";
    EXPECT_TRUE(row.WriteSettings(3, out, err));
    EXPECT_EQ(err, "");
    ASSERT_TRUE(out.Commit());
    EXPECT_EQ(ReadFile(dir.File("t")), c.expected);
  }
}

TEST(LineData, ReadsRowLinesByVersionGate) {
  const char* kCells =
      "Line1Col1Name:Qty\r\nLine1Col1Value:1,5\r\nLine1Col1Status:0\r\n"
      "Line1Col1Message:\r\n";
  struct Case {
    const char* ver;
    std::string text;
    bool ok;
    const char* err;
    const char* message;
    int32_t left, location, cells;
  } cases[] = {
      {"ver0.946",
       std::string("Line1Status:2\r\nLine1Message:m\r\nLine1Coords:1:2:3:4\r\n"
                   "Line1DataLocation:5\r\n") +
           kCells,
       true, "", "m", 1, 5, 1},
      {"ver0.944",
       std::string(
           "Line1Status:2\r\nLine1Message:m\r\nLine1Coords:1:2:3:4\r\n") +
           kCells,
       true, "", "m", 1, 0, 1},
      {"ver0.943", std::string("Line1Status:2\r\n") + kCells, true, "", "", 0,
       0, 1},
      {"ver0.946", "Line1Status:2\r\nLine1Message:m\r\nLine1Coords:1:2:3\r\n",
       false, "Error reading document tags file. Incorrect parameter", "m", 0,
       0, 0},
      {"ver0.943", "Line1Status:2\r\nLine1Col1Name:Qty\r\n", false,
       "Error reading document tags file. Incorrect parameter", "", 0, 0, 0},
      {"v", "Line1Status:2\r\n", false, "Invalid version number", "", 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.ver) + " " + c.text);
    auto row = cLineData::New();
    TextReader in;
    in.OpenText(c.text);
    std::string err;
    EXPECT_EQ(row->ReadSettings(1, 1, in, err, c.ver), c.ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(row->StatusMessage, c.message);
    EXPECT_EQ(row->Left, c.left);
    EXPECT_EQ(row->Location, c.location);
    ASSERT_EQ(row->colLineItemData.Count(), c.cells);
    if (c.cells > 0) {
      const auto& cell = row->colLineItemData.Item(1);
      EXPECT_EQ(cell->value, "1,5");
      EXPECT_EQ(cell->LineData.lock(), row);
    }
  }
}

TEST(LineData, FindsCreatesAndClearsCells) {
  auto doc = cDocumentData::New();
  doc->Profile = std::make_shared<cProfile>();
  for (const char* name :
       {"Description", "Quantity", "UnitPrice", "Qty", "\xC4rger"}) {
    auto hdr = std::make_shared<cLineHdrType>();
    hdr->Name = name;
    hdr->DataType = name[0] == 'U' ? 4 : 1;
    hdr->DataFlags = 6;
    doc->Profile->LineItemHdrs.Add(hdr);
  }
  auto row = doc->CreateLineData();
  row->CreateLineDataColumns();
  ASSERT_EQ(row->colLineItemData.Count(), 5);
  // Names are compared ignoring letter case (Windows-1252), first match
  // first.
  struct Case {
    const char* name;
    bool found;
    int32_t idx;
  } cases[] = {{"Quantity", true, 2},    {"UnitPrice", true, 3},
               {"quantity", true, 2},    {"UNITPRICE", true, 3},
               {"description", true, 1}, {"qTY", true, 4},
               {"\xE4RGER", true, 5},    {"Quantit", false, 0},
               {"Qty ", false, 0},       {"", false, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    int32_t idx = 0;
    std::shared_ptr<cLineItemData> cell;
    EXPECT_EQ(row->FindLineItem(c.name, idx, cell), c.found);
    EXPECT_EQ(idx, c.idx);
    if (c.found) {
      EXPECT_EQ(cell, row->colLineItemData.Item(c.idx));
      EXPECT_EQ(cell->Flags, 6);
      EXPECT_EQ(cell->LineData.lock(), row);
    }
  }
  EXPECT_EQ(row->colLineItemData.Item(3)->DataType, 4);
  row->colLineItemData.Item(4)->Name = "quantity";  // the first match wins
  int32_t idx = 0;
  std::shared_ptr<cLineItemData> cell;
  EXPECT_TRUE(row->FindLineItem("QUANTITY", idx, cell));
  EXPECT_EQ(idx, 2);

  auto option = std::make_shared<cOptionItem>();
  std::weak_ptr<cOptionItem> watch = option;
  row->colLineItemData.Item(1)->OptionItems.Add(option);
  option.reset();
  row->ClearLineItems();
  EXPECT_EQ(row->colLineItemData.Count(), 0);
  EXPECT_TRUE(watch.expired());
}

TEST(LineItemData, ValidatesAndFormatsByDataType) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("none.reg"));
  auto doc = cDocumentData::New();
  doc->Profile = std::make_shared<cProfile>();
  auto hdr = std::make_shared<cLineHdrType>();
  hdr->Name = "Code";
  hdr->Pattern = "LL000";
  doc->Profile->LineItemHdrs.Add(hdr);
  auto row = doc->CreateLineData();
  struct Case {
    const char* name;
    int32_t type;
    const char* value;
    bool valid;
    const char* validated;  // value after Validate()
    const char* formatted;  // value after FormatDataValue() of the original
  } cases[] = {
      {"Qty", 5, "SW1A 1AA", true, "SW1A 1AA", "SW1A 1AA"},
      {"Qty", 5, "M1 IAA", false, "M1 IAA", "M1 1AA"},
      {"Qty", 4, "12.5.0", false, "12.5.0", "12.50"},
      {"Qty", 2, "1234.50", true, "1234.50", "1234.50"},
      {"Qty", 300, "1.234,50", false, "1.234,50", "1234.50"},
      {"Qty", 100, "31/12/2003", true, "31/12/2003", "31/12/2003"},
      {"Qty", 1, "any text", true, "any text", "any text"},
      {"Code", 1, "AB 123", true, "AB123", "AB123"},
      {"Code", 1, "AB1Z3", false, "AB1Z3", "AB123"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    auto cell = Cell(c.name, c.value);
    cell->DataType = c.type;
    cell->LineData = row;
    EXPECT_EQ(cell->Validate(""), c.valid);
    EXPECT_EQ(cell->value, c.validated);
    // A traced check answers the same and records only the blanks a
    // pattern check removed from a value it passes.
    cell->value = c.value;
    cRepairTrace trace;
    EXPECT_EQ(cell->Validate("", &trace), c.valid);
    EXPECT_EQ(cell->value, c.validated);
    const bool spaced_pass =
        c.valid && std::string_view(c.value) != c.validated;
    ASSERT_EQ(trace.Size(), spaced_pass ? 1u : 0u);
    if (spaced_pass) {
      EXPECT_EQ(trace.Steps()[0].Rule, "spaces-removed");
    }
    cell->value = c.value;
    cell->FormatDataValue("");
    EXPECT_EQ(cell->value, c.formatted);
  }
}

}  // namespace
}  // namespace pelinor
