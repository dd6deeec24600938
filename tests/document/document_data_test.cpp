#include "pelinor/document_data.h"

#include <gtest/gtest.h>

#include <climits>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "pelinor/file_system.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::DataPath;
using testing::FileNames;
using testing::ReadFile;
using testing::TempDir;
using testing::WithFileSizeLimit;
using testing::WriteFile;

constexpr char kReadError[] =
    "Error reading document tags file. Incorrect parameter";

std::shared_ptr<cFieldData> AddField(cDocumentData& doc, int kind,
                                     const std::string& name,
                                     const std::string& value, int32_t loc,
                                     int32_t l, int32_t t, int32_t w,
                                     int32_t h) {
  auto f = kind == 0   ? doc.CreateField()
           : kind == 1 ? doc.CreatePseudoField()
           : kind == 2 ? doc.CreateLinePseudo()
                       : doc.CreateDocEndMark();
  f->Name = name;
  f->value = value;
  f->DataLocation(loc);
  f->Left = l;
  f->Top = t;
  f->Width = w;
  f->Height = h;
  return f;
}

void AddRow(cDocumentData& doc, int32_t status, const std::string& message,
            int32_t top, const std::string& descr, const std::string& qty,
            int32_t qty_status, const std::string& qty_message) {
  auto row = doc.CreateLineData();
  row->Status = status;
  row->StatusMessage = message;
  row->Left = 100;
  row->Top = top;
  row->Width = 1800;
  row->Height = 50;
  row->Location = 1;
  auto a = std::make_shared<cLineItemData>();
  a->Name = "Description";
  a->value = descr;
  row->colLineItemData.Add(a);
  auto b = std::make_shared<cLineItemData>();
  b->Name = "Quantity";
  b->value = qty;
  b->Status = qty_status;
  b->StatusMessage = qty_message;
  row->colLineItemData.Add(b);
}

// The document held by tests/data/document/complete.tag.
std::shared_ptr<cDocumentData> CompleteDocument() {
  auto doc = cDocumentData::New();
  doc->Status = 1;
  doc->StatusMessage = "Field TotalAmount: amount expected";
  doc->ProfileName = "Invoices";
  doc->LastSheetIndex = 2;
  auto f =
      AddField(*doc, 0, "InvoiceNumber", "INV-000123", 1, 1650, 410, 520, 70);
  f->Status = 0;
  f->StatusMessage = "";
  f->DataType(1);
  f = AddField(*doc, 0, "TotalAmount", "1,234.50", -6, 1500, 2900, 400, 60);
  f->StatusMessage = "Amount expected, e.g. 1234.50";
  f->DataType(4);
  AddField(*doc, 1, "SupplierId", "ACME01", 1, 0, 0, 0, 0);
  AddField(*doc, 2, "Description", "", 1, 100, 900, 300, 40);
  AddField(*doc, 3, "Carried forward", "", 2, 160, 3050, 400, 40);
  AddRow(*doc, 0, "", 960, "A4 paper, 80gsm", "10", 0, "");
  AddRow(*doc, 1, "check quantity", 1010, "Toner", "I0", 1,
         "Pattern validation failed.");
  return doc;
}

// Owners whose children hold weak back references cannot exist outside a
// std::shared_ptr: on the stack or as a copy their children would lose them.
template <typename T>
constexpr bool kOnlyShared =
    !std::is_default_constructible_v<T> && !std::is_copy_constructible_v<T> &&
    !std::is_copy_assignable_v<T>;
static_assert(kOnlyShared<cDocumentData>);
static_assert(kOnlyShared<cTemplate>);
static_assert(kOnlyShared<cLineData>);

TEST(DocumentData, WritesTheGoldenTagFileAndReadsItBack) {
  TempDir dir;
  const std::string golden = ReadFile(DataPath("document/complete.tag"));
  ASSERT_FALSE(golden.empty());
  std::string err = "old";
  ASSERT_TRUE(CompleteDocument()->WriteSettings(dir.File("a.tag"), err));
  EXPECT_EQ(err, "");
  EXPECT_EQ(ReadFile(dir.File("a.tag")), golden);

  auto back = cDocumentData::New();
  ASSERT_TRUE(back->ReadSettings(DataPath("document/complete.tag"), err))
      << err;
  EXPECT_EQ(back->Fields.Item(2)->value, "1,234.50");
  EXPECT_EQ(back->Fields.Item(2)->DataLocation(), -6);
  EXPECT_EQ(back->DocEndMarks.Item(1)->Name, "Carried forward");
  EXPECT_EQ(back->LineData.Item(2)->colLineItemData.Item(2)->StatusMessage,
            "Pattern validation failed.");
  ASSERT_TRUE(back->WriteSettings(dir.File("b.tag"), err));
  EXPECT_EQ(ReadFile(dir.File("b.tag")), golden);
}

// Every value read as the first item of its line is cut at a comma, and
// reading goes on with the next line: the rest of the file reads as if the
// comma had not been there.
TEST(DocumentData, CutsFirstItemsAtACommaAndReadsOn) {
  const std::string golden = ReadFile(DataPath("document/complete.tag"));
  ASSERT_FALSE(golden.empty());
  using Get = std::function<std::string(const cDocumentData&)>;
  const auto field = [](int kind, int i) {
    return [kind, i](const cDocumentData& d) {
      const auto& items = kind == 0   ? d.Fields
                          : kind == 1 ? d.PseudoFields
                          : kind == 2 ? d.LinePseudos
                                      : d.DocEndMarks;
      return items.Item(i)->Name;
    };
  };
  const auto cell = [](int row, int col) {
    return [row, col](const cDocumentData& d) {
      return d.LineData.Item(row)->colLineItemData.Item(col)->Name;
    };
  };
  struct Case {
    std::string line, replacement;
    Get get;
    std::string expected;
  } cases[] = {
      {"ver0.946", "ver0.946,ver0.1", [](auto& d) { return d.ProfileName; },
       "Invoices"},
      {"DocStatus:1", "DocStatus:1,7",
       [](auto& d) { return std::to_string(d.Status); }, "1"},
      {"Invoices", "Northwind, Ltd", [](auto& d) { return d.ProfileName; },
       "Northwind"},
      {"Invoices", "\"Northwind, Ltd\" ,x",
       [](auto& d) { return d.ProfileName; }, "Northwind, Ltd"},
      {"LastSheetIndex:2", "LastSheetIndex:2,3",
       [](auto& d) { return std::to_string(d.LastSheetIndex); }, "2"},
      {"Field1Name:InvoiceNumber", "Field1Name:Invoice, No", field(0, 1),
       "Invoice"},
      {"Field1DataLocation:1", "Field1DataLocation:1,5",
       [](auto& d) { return std::to_string(d.Fields.Item(1)->DataLocation()); },
       "1"},
      {"Field1Coords:1650:410:520:70", "Field1Coords:1650:410:520:70,9",
       [](auto& d) { return std::to_string(d.Fields.Item(1)->Height); }, "70"},
      {"Field1Name:SupplierId", "Field1Name:Supplier,Id", field(1, 1),
       "Supplier"},
      {"LLAnchor1Name:Description", "LLAnchor1Name:Desc,ription", field(2, 1),
       "Desc"},
      {"DocEndMark1Name:Carried forward", "DocEndMark1Name:Carried, forward",
       field(3, 1), "Carried"},
      {"LineCount:2", "LineCount:2,1",
       [](auto& d) { return std::to_string(d.LineData.Count()); }, "2"},
      {"Line2Col1Name:Description", "Line2Col1Name:Item, text", cell(2, 1),
       "Item"},
      {"Line2Col2Status:1", "Line2Col2Status:1,0",
       [](auto& d) {
         return std::to_string(
             d.LineData.Item(2)->colLineItemData.Item(2)->Status);
       },
       "1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.replacement);
    std::string text = golden;
    const size_t at = text.find(c.line + "\r\n");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, c.line.size(), c.replacement);
    auto doc = cDocumentData::New();
    TextReader in;
    in.OpenText(text);
    std::string err;
    ASSERT_TRUE(doc->ReadSettings(in, err)) << err;
    EXPECT_EQ(c.get(*doc), c.expected);
    // The lines after the cut one are read where they belong.
    ASSERT_EQ(doc->LineData.Count(), 2);
    EXPECT_EQ(doc->LineData.Item(2)->colLineItemData.Item(2)->StatusMessage,
              "Pattern validation failed.");
  }
}

TEST(DocumentData, EmptyDocumentWritesEveryCount) {
  TempDir dir;
  std::string err;
  ASSERT_TRUE(cDocumentData::New()->WriteSettings(dir.File("e.tag"), err));
  EXPECT_EQ(ReadFile(dir.File("e.tag")),
            "ver0.946\r\nDocStatus:0\r\nDocMessage:\r\n\r\nLastSheetIndex:0\r\n"
            "FieldsCount:0\r\nPseudoFieldsCount:0\r\nLLAnchorCount:0\r\n"
            "DocEndMarksCount:0\r\nLineCount:0\r\nColumnCount:0\r\n");
  EXPECT_FALSE(
      cDocumentData::New()->WriteSettings(dir.File("missing/e.tag"), err));
  EXPECT_FALSE(FileExists(dir.File("missing/e.tag")));
}

// The names of every item of `doc`, one group per collection
// ("F:a,b|P:|A:|E:|R:x,y;z,w"), to compare what was written with what
// reads back.
std::string Names(const cDocumentData& doc) {
  std::string out;
  const Collection<std::shared_ptr<cFieldData>>* groups[] = {
      &doc.Fields, &doc.PseudoFields, &doc.LinePseudos, &doc.DocEndMarks};
  const char* tags[] = {"F:", "|P:", "|A:", "|E:"};
  for (int g = 0; g < 4; ++g) {
    out += tags[g];
    for (const auto& f : *groups[g]) out += (f ? f->Name : "null") + ",";
  }
  out += "|R:";
  for (const auto& row : doc.LineData) {
    if (!row) continue;
    for (const auto& cell : row->colLineItemData) {
      out += (cell ? cell->Name : "null") + ",";
    }
    out += ";";
  }
  return out;
}

// Empty items are left out of the file and its counts, so that the file
// reads back what it holds; rows whose number of cells differs from the
// first row's are refused before anything is written.
TEST(DocumentData, WritesOnlyWhatItsReaderReadsBack) {
  using Build = std::function<void(cDocumentData&)>;
  const auto row = [](cDocumentData& d, std::vector<const char*> cells) {
    auto r = d.CreateLineData();
    for (const char* name : cells) {
      std::shared_ptr<cLineItemData> cell;
      if (name != nullptr) {
        cell = std::make_shared<cLineItemData>();
        cell->Name = name;
      }
      r->colLineItemData.Add(cell);
    }
  };
  const std::string mismatch = std::string(kDocTagsWriteError) + "Row ";
  struct Case {
    Build build;
    std::string err;  // "" when the write succeeds
    std::string names;
  } cases[] = {
      {[](auto& d) {
         d.CreateField()->Name = "A";
         d.Fields.Add(nullptr);
         d.CreateField()->Name = "B";
         d.PseudoFields.Add(nullptr);
         d.LinePseudos.Add(nullptr);
         d.CreateLinePseudo()->Name = "L";
         d.DocEndMarks.Add(nullptr);
       },
       "", "F:A,B,|P:|A:L,|E:|R:"},
      {[&](auto& d) {
         d.LineData.Add(nullptr);
         row(d, {"a", nullptr, "b"});
         d.LineData.Add(nullptr);
         row(d, {nullptr, "c", "d", nullptr});
       },
       "", "F:|P:|A:|E:|R:a,b,;c,d,;"},
      {[&](auto& d) {
         row(d, {nullptr, nullptr});
         row(d, {});
       },
       "", "F:|P:|A:|E:|R:;;"},
      {[&](auto& d) {
         row(d, {"a", "b"});
         row(d, {"c"});
       },
       mismatch + "2 has a different number of cells (1) from the first "
                  "row (2).",
       ""},
      {[&](auto& d) {
         d.CreateField()->Name = "A";
         row(d, {"a"});
         d.LineData.Add(nullptr);
         row(d, {"b"});
         row(d, {"c", "d"});
       },
       mismatch + "3 has a different number of cells (2) from the first "
                  "row (1).",
       ""},
      {[&](auto& d) {
         row(d, {});
         row(d, {"a", nullptr});
       },
       mismatch + "2 has a different number of cells (1) from the first "
                  "row (0).",
       ""},
  };
  for (const Case& c : cases) {
    TempDir dir;
    const std::string path = dir.File("doc.tag");
    WriteFile(path, "old contents");
    auto doc = cDocumentData::New();
    c.build(*doc);
    SCOPED_TRACE(Names(*doc));
    std::string err = "old";
    EXPECT_EQ(doc->WriteSettings(path, err), c.err.empty());
    EXPECT_EQ(err, c.err);
    if (!c.err.empty()) {
      EXPECT_EQ(ReadFile(path), "old contents");
    } else {
      auto back = cDocumentData::New();
      ASSERT_TRUE(back->ReadSettings(path, err)) << err;
      EXPECT_EQ(Names(*back), c.names);
    }
    // No temporary file left.
    EXPECT_EQ(FileNames(dir.path()), std::vector<std::string>{"doc.tag"});
  }
}

// A write that fails part way names the part that failed, keeps the file
// that was there and leaves no temporary file behind.
TEST(DocumentData, AFailedWriteKeepsTheOldFileAndSaysWhy) {
  const std::string big(200000, 'x');
  struct Case {
    std::function<void(cDocumentData&)> build;
    const char* err;
  } cases[] = {
      {[&](auto& d) { d.StatusMessage = big; }, kDocTagsWriteError},
      {[&](auto& d) { d.CreateField()->value = big; }, kDocTagsFieldWriteError},
      {[&](auto& d) { d.CreatePseudoField()->value = big; },
       kDocTagsFieldWriteError},
      {[&](auto& d) { d.CreateDocEndMark()->Name = big; },
       kDocTagsFieldWriteError},
      {[&](auto& d) { d.CreateLineData()->StatusMessage = big; },
       kDocTagsLineWriteError},
      {[&](auto& d) {
         auto cell = std::make_shared<cLineItemData>();
         cell->value = big;
         d.CreateLineData()->colLineItemData.Add(cell);
       },
       kDocTagsLineWriteError},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    TempDir dir;
    const std::string path = dir.File("doc.tag");
    WriteFile(path, "old contents");
    auto doc = cDocumentData::New();
    doc->ProfileName = "Invoices";
    c.build(*doc);
    std::string err;
    bool ok = true;
    WithFileSizeLimit(1000, [&] { ok = doc->WriteSettings(path, err); });
    EXPECT_FALSE(ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(ReadFile(path), "old contents");
    EXPECT_EQ(FileNames(dir.path()), std::vector<std::string>{"doc.tag"});
  }
  TempDir dir;
  std::string err;
  EXPECT_FALSE(cDocumentData::New()->WriteSettings(dir.File("no/d.tag"), err));
  EXPECT_EQ(err, kDocTagsCreateError);
}

// Values at the edges of what the writer and reader handle come back as
// they were written, and writing what was read gives the same bytes:
// extreme numbers, values that outgrow the writer's first buffer or cross
// the size at which it goes to disk, and texts whose ends fall on either
// side of a 16-byte block.
TEST(DocumentData, RoundTripsValuesAtTheEdges) {
  struct Case {
    std::string name, value, message;
    int32_t status, location, left, top, width, height;
    std::string coords_line;
  } cases[] = {
      {"N", "v", "m", INT32_MIN, -6, INT32_MIN, INT32_MAX, -1, 0,
       "Field1Coords:-2147483648:2147483647:-1:0\r\n"},
      {std::string(15, 'n'), std::string(16, 'v'), std::string(17, 'm'),
       INT32_MAX, 9, 10, 99, 100, 1000000000,
       "Field1Coords:10:99:100:1000000000\r\n"},
      {std::string(16, 'n'), "\ta:b:c\t", "", 0, 1, 0, 0, 0, 0,
       "Field1Coords:0:0:0:0\r\n"},
      {std::string(17, 'n'), std::string(9000, 'v'), std::string(70000, 'm'),
       -1, -2, 1, 2, 3, 4, "Field1Coords:1:2:3:4\r\n"},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto doc = cDocumentData::New();
    auto f = AddField(*doc, 0, c.name, c.value, c.location, c.left, c.top,
                      c.width, c.height);
    f->Status = c.status;
    f->StatusMessage = c.message;
    AddRow(*doc, c.status, c.message, c.top, c.value, c.name, c.location,
           c.message);
    std::string err;
    ASSERT_TRUE(doc->WriteSettings(dir.File("a.tag"), err)) << err;
    const std::string written = ReadFile(dir.File("a.tag"));
    EXPECT_NE(written.find("\r\n" + c.coords_line), std::string::npos);

    auto back = cDocumentData::New();
    ASSERT_TRUE(back->ReadSettings(dir.File("a.tag"), err)) << err;
    ASSERT_EQ(back->Fields.Count(), 1);
    const auto& g = back->Fields.Item(1);
    EXPECT_EQ(g->Name, c.name);
    EXPECT_EQ(g->value, c.value);
    EXPECT_EQ(g->Status, c.status);
    EXPECT_EQ(g->StatusMessage, c.message);
    EXPECT_EQ(g->DataLocation(), c.location);
    EXPECT_EQ(std::vector<int32_t>({g->Left, g->Top, g->Width, g->Height}),
              std::vector<int32_t>({c.left, c.top, c.width, c.height}));
    ASSERT_EQ(back->LineData.Count(), 1);
    const auto& row = back->LineData.Item(1);
    EXPECT_EQ(row->Status, c.status);
    EXPECT_EQ(row->StatusMessage, c.message);
    EXPECT_EQ(row->colLineItemData.Item(1)->value, c.value);
    EXPECT_EQ(row->colLineItemData.Item(2)->value, c.name);
    EXPECT_EQ(row->colLineItemData.Item(2)->Status, c.location);

    ASSERT_TRUE(back->WriteSettings(dir.File("b.tag"), err)) << err;
    EXPECT_EQ(ReadFile(dir.File("b.tag")), written);
  }
}

TEST(DocumentData, ReadsByVersionGate) {
  const std::string field =
      "Field1Name:Total\r\nField1Value:5\r\nField1Status:0\r\n"
      "Field1Message:\r\n";
  struct Case {
    std::string text;
    int32_t last_sheet;
    int fields, pseudos, anchors, marks, rows;
  } cases[] = {
      {"ver0.900\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\nFieldsCount:"
       "1\r\n" +
           field,
       0, 1, 0, 0, 0, 0},
      {"ver0.920\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\nFieldsCount:"
       "1\r\n" +
           field +
           "Field1DataLocation:1\r\nField1Coords:0:0:0:0\r\n"
           "PseudoFieldsCount:0\r\nLineCount:1\r\nColumnCount:0\r\n"
           "Line1Status:0\r\n",
       0, 1, 0, 0, 0, 1},
      {"ver0.926\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\n"
       "LastSheetIndex:3\r\nFieldsCount:0\r\nPseudoFieldsCount:0\r\n"
       "LLAnchorCount:1\r\nLLAnchor1Name:A\r\nLLAnchor1DataLocation:1\r\n"
       "LLAnchor1Coords:0:0:0:0\r\nLineCount:0\r\nColumnCount:0\r\n",
       3, 0, 0, 1, 0, 0},
      {"ver0.928\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\n"
       "LastSheetIndex:3\r\nFieldsCount:0\r\nPseudoFieldsCount:0\r\n"
       "LLAnchorCount:0\r\nDocEndMarksCount:1\r\nDocEndMark1Name:E\r\n"
       "DocEndMark1DataLocation:1\r\nDocEndMark1Coords:0:0:0:0\r\n"
       "LineCount:0\r\nColumnCount:0\r\n",
       3, 0, 0, 0, 1, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    auto doc = cDocumentData::New();
    TextReader in;
    in.OpenText(c.text);
    std::string err;
    EXPECT_TRUE(doc->ReadSettings(in, err)) << err;
    EXPECT_TRUE(in.AtEnd());
    EXPECT_EQ(doc->ProfileName, "Invoices");
    EXPECT_EQ(doc->LastSheetIndex, c.last_sheet);
    EXPECT_EQ(doc->Fields.Count(), c.fields);
    EXPECT_EQ(doc->PseudoFields.Count(), c.pseudos);
    EXPECT_EQ(doc->LinePseudos.Count(), c.anchors);
    EXPECT_EQ(doc->DocEndMarks.Count(), c.marks);
    EXPECT_EQ(doc->LineData.Count(), c.rows);
  }
}

TEST(DocumentData, AnswersMalformedFilesWithTheirMessage) {
  const std::string head =
      "ver0.946\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\n"
      "LastSheetIndex:1\r\n";
  struct Case {
    std::string text;
    const char* err;
    int fields;
  } cases[] = {
      {"ver", "Invalid version number", 0},
      {"", "Invalid version number", 0},
      {"ver0.946\r\nDocStatus:x\r\n", kReadError, 0},
      {head + "FieldsCount:many\r\n", kReadError, 0},
      {head + "FieldsCount:2000000000\r\nField1Name:A\r\nField1Value:\r\n"
              "Field1Status:0\r\nField1Message:\r\nField1DataLocation:0\r\n"
              "Field1DataType:0\r\nField1Coords:0:0:0:0\r\n",
       kReadError, 1},
      {head + "FieldsCount:0\r\nPseudoFieldsCount:0\r\nLLAnchorCount:0\r\n"
              "DocEndMarksCount:0\r\nLineCount:1\r\nColumnCount:x\r\n",
       kReadError, 0},
      {std::string("ver0.946\0\0\r\nDocStatus:0", 23), kReadError, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    auto doc = cDocumentData::New();
    TextReader in;
    in.OpenText(c.text);
    std::string err;
    EXPECT_FALSE(doc->ReadSettings(in, err));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(doc->Fields.Count(), c.fields);
  }
  std::string err;
  EXPECT_FALSE(cDocumentData::New()->ReadSettings("/nonexistent/x", err));
  EXPECT_EQ(err, kReadError);
}

// A negative count reads no item, like a count of 0, and reading goes on
// with the next count; only a count that is not a number is an error.
TEST(DocumentData, ReadsNegativeCountsAsNoItems) {
  const std::string row =
      "Line1Status:0\r\nLine1Message:\r\nLine1Coords:1:2:3:4\r\n"
      "Line1DataLocation:1\r\n";
  struct Case {
    std::string counts[6];  // fields, pseudo, anchors, marks, lines, columns
    std::string rest;
    int rows, cells;
  } cases[] = {
      {{"-1", "0", "0", "0", "0", "0"}, "", 0, 0},
      {{"0", "-2147483648", "0", "0", "0", "0"}, "", 0, 0},
      {{"0", "0", "-3", "-4", "0", "0"}, "", 0, 0},
      {{"0", "0", "0", "0", "-1", "2"}, "", 0, 0},
      {{"0", "0", "0", "0", "1", "-2"}, row, 1, 0},
      {{"-1.5", "0", "0", "0", "0", "0"}, "", 0, 0},
  };
  const char* labels[] = {
      "FieldsCount:",      "PseudoFieldsCount:", "LLAnchorCount:",
      "DocEndMarksCount:", "LineCount:",         "ColumnCount:"};
  for (const Case& c : cases) {
    std::string text =
        "ver0.946\r\nDocStatus:0\r\nDocMessage:\r\nInvoices\r\n"
        "LastSheetIndex:1\r\n";
    for (int i = 0; i < 6; ++i) text += labels[i] + c.counts[i] + "\r\n";
    text += c.rest;
    SCOPED_TRACE(text);
    auto doc = cDocumentData::New();
    TextReader in;
    in.OpenText(text);
    std::string err;
    ASSERT_TRUE(doc->ReadSettings(in, err)) << err;
    EXPECT_EQ(doc->Fields.Count() + doc->PseudoFields.Count() +
                  doc->LinePseudos.Count() + doc->DocEndMarks.Count(),
              0);
    ASSERT_EQ(doc->LineData.Count(), c.rows);
    if (c.rows > 0) {
      EXPECT_EQ(doc->LineData.Item(1)->colLineItemData.Count(), c.cells);
    }
    EXPECT_TRUE(in.AtEnd());
  }
}

TEST(DocumentData, FindsByNameAndLocation) {
  auto doc = cDocumentData::New();
  AddField(*doc, 0, "Total", "1", 1, 0, 0, 0, 0);
  AddField(*doc, 0, "TOTAL", "2", 1, 0, 0, 0, 0);
  AddField(*doc, 1, "Ref", "3", 1, 0, 0, 0, 0);
  AddField(*doc, 2, "Anchor", "", 2, 0, 0, 0, 0);
  AddField(*doc, 2, "anchor", "", 3, 0, 0, 0, 0);
  AddField(*doc, 3, "End", "", 2, 0, 0, 0, 0);
  struct Case {
    int kind;
    const char* location;
    const char* name;
    bool found;
    int32_t idx;
  } cases[] = {
      {0, "", "total", true, 1},     {0, "", "Ref", false, 99},
      {1, "", "REF", true, 1},       {2, "3", "Anchor", true, 2},
      {2, "2", "ANCHOR", true, 1},   {2, "", "Anchor", true, 1},
      {2, "4", "Anchor", false, 99}, {3, "3", "End", false, 99},
      {3, "x", "End", true, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " @" + c.location);
    int32_t idx = 99;
    std::shared_ptr<cFieldData> found;
    bool ok = c.kind == 0   ? doc->Find(c.name, idx, found)
              : c.kind == 1 ? doc->FindPseudo(c.name, idx, found)
              : c.kind == 2
                  ? doc->FindLinePseudo(c.location, c.name, idx, found)
                  : doc->FindDocEndMark(c.location, c.name, idx, found);
    EXPECT_EQ(ok, c.found);
    EXPECT_EQ(idx, c.idx);
    EXPECT_EQ(found != nullptr, c.found);
  }
}

TEST(DocumentData, CopyIsIndependentAndAppends) {
  auto doc = CompleteDocument();
  doc->CreateLineHeader()->Name = "Quantity";
  std::shared_ptr<cDocumentData> copy;
  doc->Copy(copy);
  ASSERT_NE(copy, nullptr);
  TempDir dir;
  std::string err;
  ASSERT_TRUE(copy->WriteSettings(dir.File("c.tag"), err));
  EXPECT_EQ(ReadFile(dir.File("c.tag")),
            ReadFile(DataPath("document/complete.tag")));
  EXPECT_EQ(copy->LineHeaders.Item(1)->Name, "Quantity");
  EXPECT_EQ(copy->Fields.Item(1)->Document.lock(), copy);

  copy->Fields.Item(1)->value = "changed";
  copy->LineData.Item(1)->colLineItemData.Item(1)->value = "changed";
  EXPECT_EQ(doc->Fields.Item(1)->value, "INV-000123");
  EXPECT_EQ(doc->LineData.Item(1)->colLineItemData.Item(1)->value,
            "A4 paper, 80gsm");

  doc->Copy(copy);  // appends to what the target holds
  EXPECT_EQ(copy->Fields.Count(), 4);
  copy->Purge();
  EXPECT_EQ(copy->Fields.Count(), 0);
  EXPECT_EQ(copy->PseudoFields.Count(), 0);
  EXPECT_EQ(copy->DocEndMarks.Count(), 0);
  EXPECT_EQ(copy->LinePseudos.Count(), 2);
}

TEST(DocumentData, UpdatesLineHeadersFromProfileAndTemplate) {
  auto profile = std::make_shared<cProfile>();
  for (const char* name : {"Description", "Quantity", "UnitPrice"}) {
    auto h = std::make_shared<cLineHdrType>();
    h->Name = name;
    h->DisplayName = std::string("Shown ") + name;
    h->DataType = 1;
    h->Pattern = "000";
    h->PtnMode = 1;
    profile->LineItemHdrs.Add(h);
  }
  auto tpl = cTemplate::New();
  auto over = tpl->CreateLineHeader();
  over->Name = "quantity";
  over->DataType = 2;
  auto over2 = tpl->CreateLineHeader();
  over2->Name = "UnitPrice";
  over2->Pattern = "0.00";
  struct Case {
    int idx;
    const char* name;
    int32_t type;
    const char* pattern;
  } cases[] = {{1, "Description", 1, "000"},
               {2, "Quantity", 2, "000"},
               {3, "UnitPrice", 1, "0.00"}};
  auto doc = cDocumentData::New();
  doc->UpdateLineHeaders(profile, tpl);
  ASSERT_EQ(doc->LineHeaders.Count(), 3);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const auto& h = doc->LineHeaders.Item(c.idx);
    EXPECT_EQ(h->Name, c.name);
    EXPECT_EQ(h->DisplayName, std::string("Shown ") + c.name);
    EXPECT_EQ(h->DataType, c.type);
    EXPECT_EQ(h->Pattern, c.pattern);
    EXPECT_EQ(h->PtnMode, 1);
  }
}

// The headers are rebuilt from the profile, not appended to: one header
// per profile definition however often they are updated and whatever the
// document held; without a profile nothing changes.
TEST(DocumentData, UpdateLineHeadersRebuildsThem) {
  auto profile = std::make_shared<cProfile>();
  for (const char* name : {"Description", "Quantity"}) {
    auto h = std::make_shared<cLineHdrType>();
    h->Name = name;
    profile->LineItemHdrs.Add(h);
  }
  profile->LineItemHdrs.Add(nullptr);
  struct Case {
    std::vector<std::string> held;
    int calls;
    bool with_profile;
    std::string names;
  } cases[] = {
      {{}, 1, true, "Description,Quantity,"},
      {{}, 2, true, "Description,Quantity,"},
      {{}, 3, true, "Description,Quantity,"},
      {{"Old", "Quantity"}, 1, true, "Description,Quantity,"},
      {{"Old"}, 2, false, "Old,"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.names + " after " + std::to_string(c.calls));
    auto doc = cDocumentData::New();
    for (const auto& name : c.held) doc->CreateLineHeader()->Name = name;
    for (int i = 0; i < c.calls; ++i) {
      doc->UpdateLineHeaders(c.with_profile ? profile : nullptr, nullptr);
    }
    std::string names;
    for (const auto& h : doc->LineHeaders) names += h->Name + ",";
    EXPECT_EQ(names, c.names);
  }
}

}  // namespace
}  // namespace pelinor
