#include "pelinor/field_data.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/document_data.h"
#include "pelinor/log.h"
#include "pelinor/repair_trace.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::ScopedEnv;
using testing::TempDir;
using testing::WriteFile;

// A document with one profile field type and, when `zone_type` or
// `zone_location` is not -100 or `zone_pattern` is given, a template zone
// set for the same field.
struct FieldWorld {
  std::shared_ptr<cDocumentData> doc = cDocumentData::New();
  std::shared_ptr<cFieldData> field;
  std::shared_ptr<cFieldType> type = std::make_shared<cFieldType>();
  std::shared_ptr<cExtractZones> zones = std::make_shared<cExtractZones>();

  FieldWorld(int32_t p_type, int32_t p_loc, int32_t zone_type = kNoOverride,
             int32_t zone_location = kNoOverride, bool with_zones = true) {
    doc->Profile = std::make_shared<cProfile>();
    doc->Template = cTemplate::New();
    type->Name = "Total";
    type->DataType = p_type;
    type->DataLocation = p_loc;
    doc->Profile->FieldTypes.Add(type);
    zones->FieldName = "TOTAL";
    zones->DataTypeOverride = zone_type;
    zones->DataLocationOverride = zone_location;
    if (with_zones) doc->Template->FieldZoneRefs.Add(zones);
    field = doc->CreateField();
    field->Name = "total";
  }
};

TEST(FieldData, ResolvesDataTypeOverFieldTemplateAndProfile) {
  struct Case {
    int32_t profile, tpl, expected;
  } cases[] = {
      {4, kNoOverride, 4}, {3, 101, 101}, {3, 2, 3}, {4, 2, 2},
      {2, 300, 300},       {101, 3, 3},   {1, 2, 1}, {5, 1, 5},
      {0, 5, 0},           {7, 8, 8},     {7, 1, 7}, {200, 106, 200},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.profile) + " / " + std::to_string(c.tpl));
    FieldWorld s(c.profile, 1, c.tpl);
    EXPECT_EQ(s.field->DefaultDataType(), c.expected);
    EXPECT_EQ(s.field->DataType(), c.expected);
    s.field->DataType(9);  // an explicit value always wins
    EXPECT_EQ(s.field->DataType(), 9);
    EXPECT_EQ(s.field->DefaultDataType(), c.expected);
  }
}

TEST(FieldData, PinnedResolutionHoldsUntilUnpinned) {
  FieldWorld s(4, 1, 200);
  s.type->Pattern = "000";
  s.field->PinResolution();
  // Profile and template change under the pinned field.
  s.type->DataType = 2;
  s.zones->DataTypeOverride = 300;
  s.zones->PatternOverride = "LL";
  EXPECT_EQ(s.field->DataType(), 200);
  EXPECT_EQ(s.field->DefaultDataType(), 200);
  EXPECT_EQ(s.field->Pattern(), "000");
  // An explicit type set meanwhile is seen at once.
  s.field->DataType(5);
  EXPECT_EQ(s.field->DataType(), 5);
  s.field->DataType(0);
  // A copy resolves for itself.
  cFieldData copy = *s.field;
  EXPECT_EQ(copy.Pattern(), "LL");
  s.field->UnpinResolution();
  EXPECT_EQ(s.field->DataType(), 300);
  EXPECT_EQ(s.field->Pattern(), "LL");
}

TEST(FieldData, ResolvesDataLocationKeepingFixedLocations) {
  struct Case {
    int32_t profile, tpl, expected;
  } cases[] = {
      {1, kNoOverride, 1}, {1, 2, 2},  {-3, 2, -3},  {-2, 4, -2},
      {1, -4, 1},          {1, -5, 1}, {-1, -6, -6}, {0, 3, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.profile) + " / " + std::to_string(c.tpl));
    FieldWorld s(4, c.profile, kNoOverride, c.tpl);
    EXPECT_EQ(s.field->DataLocation(), c.expected);
    s.field->DataLocation(7);
    EXPECT_EQ(s.field->DataLocation(), 7);
  }
}

TEST(FieldData, ReportsEachLevelAndTheResolvedPattern) {
  FieldWorld s(1, 1);
  s.type->Pattern = "LL000";
  s.type->PtnMode = 3;
  s.type->Default = "n/a";
  EXPECT_EQ(s.field->Pattern(), "LL000");  // template says "use default"
  s.zones->PatternOverride = "000";
  s.zones->PatternModeOverride = 1;
  EXPECT_EQ(s.field->Pattern(), "000");
  EXPECT_EQ(s.field->TemplatePtnMode(), 1);
  EXPECT_EQ(s.field->ProfilePtnMode(), 3);
  EXPECT_EQ(s.field->ProfilePattern(), "LL000");
  EXPECT_EQ(s.field->GetDefault(), "n/a");
  EXPECT_EQ(s.field->ExtractionZonesRef(), s.zones);

  // Unknown to both levels: nothing resolves.
  s.field->Name = "Other";
  EXPECT_EQ(s.field->DataType(), 0);
  EXPECT_EQ(s.field->DataLocation(), 0);
  EXPECT_EQ(s.field->Pattern(), "");
  EXPECT_EQ(s.field->GetDefault(), "");
  EXPECT_EQ(s.field->TemplateDataType(), kNoOverride);
  EXPECT_EQ(s.field->TemplatePattern(), kUseDefaultProperty);
  EXPECT_EQ(s.field->ExtractionZonesRef(), nullptr);

  // Without a zone set the profile decides.
  FieldWorld t(3, 2, kNoOverride, kNoOverride, false);
  EXPECT_EQ(t.field->TemplateDataLocation(), kNoOverride);
  EXPECT_EQ(t.field->DataType(), 3);
  EXPECT_EQ(t.field->DataLocation(), 2);
}

TEST(FieldData, ValidatesByDataTypeGroup) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("none.reg"));
  struct Case {
    int32_t type;
    const char* pattern;
    const char* value;
    bool valid;
    const char* after;  // the value after validation
    const char* steps;  // the rules a traced check records, space-separated
  } cases[] = {
      {4, "", "12.50", true, "12.50", ""},
      {2, "", "12.5.0", false, "12.5.0", ""},
      {3, "", "31/12/2003", true, "31/12/2003", ""},
      {100, "", "31/04/2003", false, "31/04/2003", ""},
      {5, "", "SW1A 1AA", true, "SW1A 1AA", ""},
      {5, "", "HELLO", false, "HELLO", ""},
      {1, "", "anything at all", true, "anything at all", ""},
      {1, "LL000", "AB123", true, "AB123", ""},
      {1, "LL000", "AB 123", true, "AB123", "spaces-removed"},
      {7, "LL000", "A B C12", false, "ABC12", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    // Untraced and traced checks give the same answer and value.
    for (const bool traced : {false, true}) {
      FieldWorld s(c.type, 1);
      s.type->Pattern = c.pattern;
      s.field->value = c.value;
      std::string log = dir.File("eval.log");
      cRepairTrace trace;
      EXPECT_EQ(
          traced ? s.field->Validate(log, &trace) : s.field->Validate(log),
          c.valid);
      EXPECT_EQ(s.field->value, c.after);
      EXPECT_EQ(s.field->Status, 1);
      EXPECT_EQ(s.field->StatusMessage, "Tag has not been validated");
      std::string rules;
      for (const cRepairStep& step : trace.Steps()) {
        rules += (rules.empty() ? "" : " ") + step.Rule;
      }
      EXPECT_EQ(rules, traced ? c.steps : "");
    }
  }
  EXPECT_NE(ReadFile(dir.File("eval.log")).find("Validation on string"),
            std::string::npos);
}

TEST(FieldData, FormatsInPlaceOnlyOnSuccess) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("none.reg"));
  ScopedEnv log(kFormatLogVariable, "");
  struct Case {
    int32_t profile, tpl;
    const char* value;
    const char* after;
  } cases[] = {
      {4, kNoOverride, "\24312.50", "12.50"},
      {4, kNoOverride, "~~", "~~"},
      {5, kNoOverride, "HELLO", "HELLO"},
      {2, kNoOverride, "1,234.50", "1234.50"},
      {5, kNoOverride, "SW1A1AA", "SW1A 1AA"},
      {3, kNoOverride, "12 0CT 2003", "12/10/2003"},
      {3, 106, "3. M\344rz 2004", "03/03/2004"},  // German month names
      {1, kNoOverride, " AB 1 ", " AB 1 "},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    FieldWorld s(c.profile, 1, c.tpl);
    s.field->value = c.value;
    s.field->FormatDataValue();
    EXPECT_EQ(s.field->value, c.after);
  }
}

TEST(FieldData, LogsAmountFormattingOnlyWhenEnabled) {
  TempDir dir;
  const std::string path = dir.File("format.log");
  for (bool enabled : {false, true}) {
    SCOPED_TRACE(enabled);
    ScopedEnv log(kFormatLogVariable, enabled ? path : "");
    FieldWorld s(4, 1);
    s.doc->Template->TemplateIdentifier = "ACME";
    s.doc->Template->PelinorProfile = "Invoices";
    s.doc->Template->ScannerProfile = "Mono";
    s.field->value = "12.50";
    s.field->FormatDataValue();
    const std::string text = ReadFile(path);
    const char* lines[] = {
        " cFieldData.FormatDataValue:12.50\r\n",
        " cFieldData.FormatDataValue -> template is ACME\r\n",
        (" cFieldData.FormatDataValue -> template capture profile is "
         "Invoices\r\n"),
        " cFieldData.FormatDataValue -> template scanner profile is Mono\r\n",
    };
    for (const char* line : lines) {
      EXPECT_EQ(text.find(line) != std::string::npos, enabled) << line;
    }
  }
}

// Writes with `write` into a file and returns its bytes.
template <typename F>
std::string Written(F write) {
  TempDir dir;
  TextWriter out;
  EXPECT_TRUE(out.Create(dir.File("t.tag")));
  write(out);
  EXPECT_TRUE(out.Commit());
  return ReadFile(dir.File("t.tag"));
}

TEST(FieldData, WritesFourRecordSetsWithResolvedTypeAndLocation) {
  FieldWorld s(4, 1, 2, 3);
  cFieldData& f = *s.field;
  f.Name = "Total";
  f.value = "1,234.50";
  f.Status = 0;
  f.StatusMessage = "";
  f.Left = 100;
  f.Top = 200;
  f.Width = 300;
  f.Height = 40;
  struct Case {
    int kind;
    const char* expected;
  } cases[] = {
      {0,
       "Field2Name:Total\r\nField2Value:1,234.50\r\nField2Status:0\r\n"
       "Field2Message:\r\nField2DataLocation:3\r\nField2DataType:2\r\n"
       "Field2Coords:100:200:300:40\r\n"},
      {1,
       "Field2Name:Total\r\nField2Value:1,234.50\r\nField2DataLocation:3\r\n"
       "Field2Coords:100:200:300:40\r\n"},
      {2,
       "LLAnchor2Name:Total\r\nLLAnchor2DataLocation:3\r\n"
       "LLAnchor2Coords:100:200:300:40\r\n"},
      {3,
       "DocEndMark2Name:Total\r\nDocEndMark2DataLocation:3\r\n"
       "DocEndMark2Coords:100:200:300:40\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.kind);
    std::string err = "old";
    EXPECT_EQ(Written([&](TextWriter& out) {
                bool ok = c.kind == 0   ? f.WriteSettings(2, out, err)
                          : c.kind == 1 ? f.WritePseudoSettings(2, out, err)
                          : c.kind == 2
                              ? f.WriteLinePseudoSettings(2, out, err)
                              : f.WriteDocEndMarkSettings(2, out, err);
                EXPECT_TRUE(ok);
              }),
              c.expected);
    EXPECT_EQ(err, "");
  }
}

TEST(FieldData, ReadsRecordsByVersionGate) {
  struct Case {
    const char* ver;
    const char* text;
    bool ok;
    const char* err;
    const char* name;
    const char* value;
    int32_t type, location, left, height;
  } cases[] = {
      {"ver0.946",
       "Field1Name:Total\r\nField1Value: 1,234.50 \r\nField1Status:0\r\n"
       "Field1Message:ok\r\nField1DataLocation:3\r\nField1DataType:2\r\n"
       "Field1Coords:1:2:3:4\r\nNEXT\r\n",
       true, "", "Total", "1,234.50", 2, 3, 1, 4},
      {"ver0.917",
       "Field1Name:Total\r\nField1Value:5\r\nField1Status:0\r\n"
       "Field1Message:\r\nField1DataLocation:3\r\nField1Coords:1:2:3:4\r\n"
       "NEXT\r\n",
       true, "", "Total", "5", 0, 3, 1, 4},
      {"ver0.900",
       "Field1Name:Total\r\nField1Value:5\r\nField1Status:0\r\n"
       "Field1Message:\r\nNEXT\r\n",
       true, "", "Total", "5", 0, 0, 0, 0},
      {"ver", "Field1Name:Total\r\n", false, "Invalid version number", "", "",
       0, 0, 0, 0},
      // A name is cut at its comma; the next record is on the next line.
      {"ver0.946",
       "Field1Name:A,B\r\nField1Value:5\r\nField1Status:0\r\n"
       "Field1Message:\r\nField1DataLocation:3\r\nField1DataType:2\r\n"
       "Field1Coords:1:2:3:4\r\nNEXT\r\n",
       true, "", "A", "5", 2, 3, 1, 4},
      {"ver0.946", "Field1Name:Total\r\nField1Value:5\r\nField1Status:x\r\n",
       false, "Error reading document tags file. Incorrect parameter", "Total",
       "5", 0, 0, 0, 0},
      {"ver0.946",
       "Field1Name:T\r\nField1Value:5\r\nField1Status:0\r\n"
       "Field1Message:\r\nField1DataLocation:3\r\nField1DataType:2\r\n"
       "Field1Coords:1:2:x:4\r\n",
       false, "Error reading document tags file. Incorrect parameter", "T", "5",
       2, 3, 0, 0},
      {"ver0.946", "", false,
       "Error reading document tags file. Incorrect parameter", "", "", 0, 0, 0,
       0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.ver) + " " + c.text);
    cFieldData f;
    TextReader in;
    in.OpenText(c.text);
    std::string err;
    EXPECT_EQ(f.ReadSettings(1, in, err, c.ver), c.ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(f.Name, c.name);
    EXPECT_EQ(f.value, c.value);
    EXPECT_EQ(f.DataType(), c.type);
    EXPECT_EQ(f.DataLocation(), c.location);
    EXPECT_EQ(f.Left, c.left);
    EXPECT_EQ(f.Height, c.height);
    if (c.ok) {
      std::string next;
      EXPECT_TRUE(in.ReadLine(next));
      EXPECT_EQ(next, "NEXT");
    }
  }
}

TEST(FieldData, RoundTripFreezesTheResolution) {
  FieldWorld s(3, 1, 101, 2);
  s.field->value = "12/31/2003";
  std::string bytes = Written([&](TextWriter& out) {
    std::string err;
    EXPECT_TRUE(s.field->WriteSettings(1, out, err));
    EXPECT_TRUE(s.field->WriteLinePseudoSettings(1, out, err));
  });
  FieldWorld r(4, 5);  // a different profile and template
  TextReader in;
  in.OpenText(bytes);
  std::string err;
  ASSERT_TRUE(r.field->ReadSettings(1, in, err, kVersionLine));
  EXPECT_EQ(r.field->value, "12/31/2003");
  EXPECT_EQ(r.field->DataType(), 101);
  EXPECT_EQ(r.field->DataLocation(), 2);
  auto anchor = r.doc->CreateLinePseudo();
  ASSERT_TRUE(anchor->ReadLinePseudoSettings(1, in, err, kVersionLine));
  EXPECT_EQ(anchor->DataLocation(), 2);
  EXPECT_EQ(anchor->DataType(), 4);  // not stored: still resolved
}

}  // namespace
}  // namespace pelinor
