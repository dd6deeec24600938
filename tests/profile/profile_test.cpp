#include "pelinor/profile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pelinor/file_system.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;
using Strings = std::vector<std::string>;

constexpr char kMain[] =
    "ver1.00\r\n[Main]\r\nValidateScript:v.vbs\r\nExportScript:e.vbs\r\n"
    "TemplatesConfig:t.ini\r\n";

Strings ToVector(const Collection<std::string>& c) {
  return Strings(c.begin(), c.end());
}

template <typename T>
Strings Names(const Collection<std::shared_ptr<T>>& c) {
  Strings out;
  for (const auto& item : c) out.push_back(item->Name);
  return out;
}

// Reads `data` as a profile settings file into `p`.
bool Read(const std::string& data, cProfile& p, std::string& err) {
  TempDir dir;
  WriteFile(dir.File("p.ini"), data);
  err = "stale";
  return p.ReadSettings("Invoices", dir.File("p.ini"), err);
}

TEST(ProfileRead, DispatchesOnTheVersionLine) {
  struct Case {
    std::string data;
    bool ok;
    std::string err, version, validate;
  } cases[] = {
      {std::string(kMain), true, "", "1", "v.vbs"},
      {"ver0.91,x\r\n[Main]\r\nValidateScript:v\r\nExportScript:e\r\n"
       "TemplatesConfig:t\r\n",
       true, "", "0.91", "v"},
      // The record form; before 0.901 the read ends before the field count.
      {"ver0.90\r\n\"ValidateScript:r.vbs\"\r\n\"Other:1\"\r\n"
       "\"ExportScript:e\"\r\n\"TemplatesConfig:t\"\r\n\"FieldsCount:x\"\r\n",
       true, "", "0.9", "r.vbs"},
      {"ver0.905\r\n\"ValidateScript:r.vbs\"\r\n\"FieldsCount:x\"\r\n", false,
       "Error reading profile settings file. Incorrect parameter", "0.905",
       "r.vbs"},
      {"ver0.90\r\n\"ValidateScript:r.vbs\"\r\n", false,
       "Error reading profile settings file. Incorrect parameter", "0.9",
       "r.vbs"},
      {"verX\r\n[Main]\r\nValidateScript:v\r\n", false,
       "Error reading profile settings file. Incorrect parameter", "0", "v"},
      {"ve\r\n[Main]\r\n", false, "Invalid version number", "", ""},
      {"", false, "Invalid version number", "", ""},
      {"ver0.946\r\n\"ValidateScript:v\"\r\n", false,
       "Reading profile. Unable to find validation script. ", "0.946", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    cProfile p;
    std::string err;
    EXPECT_EQ(Read(c.data, p, err), c.ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(p.Version, c.version);
    EXPECT_EQ(p.Name, c.version.empty() ? "" : "Invoices");
    EXPECT_EQ(p.ValidateScript, c.validate);
  }
  cProfile p;
  std::string err;
  EXPECT_FALSE(p.ReadSettings("X", "/nonexistent/p.ini", err));
  EXPECT_EQ(err, "Cannot find file /nonexistent/p.ini");
}

TEST(ProfileRead, RequiresScriptsAndConfigurationInOrder) {
  struct Case {
    std::string main, err, validate, exported, config;
  } cases[] = {
      {"ExportScript:e\r\nTemplatesConfig:t\r\n",
       "Reading profile. Unable to find validation script. ", "", "",
       "template.ini"},
      {"ValidateScript:v\r\nTemplatesConfig:t\r\n",
       "Reading profile. Unable to find export script. ", "v", "",
       "template.ini"},
      {"ValidateScript:v\r\nExportScript:e\r\nTemplatesConfig:\r\n",
       "Reading profile. Unable to find templates configuration. ", "v", "e",
       ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    cProfile p;
    std::string err;
    EXPECT_FALSE(Read("ver1\r\n[Main]\r\n" + c.main, p, err));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(p.ValidateScript, c.validate);
    EXPECT_EQ(p.ExportScript, c.exported);
    EXPECT_EQ(p.TemplateConfig, c.config);
    EXPECT_EQ(p.DeletePrompt, 0);  // keys after the failure are not read
  }
}

TEST(ProfileRead, MainKeysAndTheirFileDefaults) {
  const std::string full =
      std::string(kMain) +
      "RejectScript:r\r\nDeleteScript:d\r\nDeletePrompt:0\r\n"
      "LastClientViewMode:2\r\nInternalValidateLevel:3\r\nFlattenDuplex:0\r\n"
      "OCRAllPages:0\r\nOutputPagesText:1\r\nLineLevel:2\r\n"
      "LineDataSubRowSpaceMax:55\r\nLineDataEntitySpaceMax:120\r\n"
      "DocEndMarkInclusive:0\r\nDocEndMarkSideMode:1\r\n"
      "ExpectedAttachments:2\r\nDisplayName:Supplier invoices\r\n"
      "TemplateDir:tpl\r\nQueueDirRemote:/r\r\nQueueDirLocal:/l\r\n"
      "OnEntryScript:o\r\nInvalidState:150\r\nTemplateDetectPages:1,2\r\n"
      "LineLevelEnabled:0\r\nOCREnabled:0\r\n";
  struct Case {
    std::string data;
    Strings texts;
    std::vector<int32_t> numbers;
  } cases[] = {
      {kMain,
       {"t.ini", "", "", "0", "0", "", "", "", "", "", ""},
       {1, 0, 2, 1, 1, 0, 1, 1, 0, 0, 1, 1, 1}},
      {full,
       {"t.ini", "r", "d", "55", "120", "Supplier invoices", "tpl", "/r", "/l",
        "o", "1,2"},
       {0, 2, 3, 0, 0, 1, 2, 0, 1, 2, 150, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    cProfile p;
    std::string err;
    ASSERT_TRUE(Read(c.data, p, err)) << err;
    Strings texts = {
        p.TemplateConfig,      p.RejectScript,           p.DeleteScript,
        p.LineDataRowSpaceMax, p.LineDataEntitySpaceMax, p.DisplayName,
        p.TemplateDir,         p.QueueDirRemote,         p.QueueDirLocal,
        p.OnEntryScript,       p.TemplateDetectPages};
    EXPECT_EQ(texts, c.texts);
    std::vector<int32_t> numbers = {p.DeletePrompt,
                                    p.LastClientViewMode,
                                    p.InternalValidateLevel,
                                    p.FlattenDuplex,
                                    p.OCRPages,
                                    p.OutputPagesText,
                                    p.LineLevel,
                                    p.DocEndMarkInclusive,
                                    p.DocEndMarkSideMode,
                                    p.ExpectedAttachments,
                                    p.InvalidState,
                                    p.LineLevelEnabled,
                                    p.OCREnabled};
    EXPECT_EQ(numbers, c.numbers);
  }
}

TEST(ProfileRead, KeepsStates100To199AndTheReasonLists) {
  const std::string data =
      std::string(kMain) +
      "[States]\r\nSTATE99:Too low\r\nSTATE100:First:Held first\r\n"
      "state150:Middle\r\nSTATE199::\r\nSTATE200:Too high\r\nSTATEX:Bad\r\n"
      "[HoldReasons]\r\nAwaiting purchase order\r\nQuery with supplier\r\n"
      "[DeleteReasons]\r\nDuplicate\r\n";
  cProfile p;
  std::string err;
  ASSERT_TRUE(Read(data, p, err)) << err;
  struct Want {
    int32_t state;
    std::string tbc, on_hold;
  } want[] = {{100, "First", "Held first"},
              {150, "Middle", "Middle"},
              {199, "Unknown description", "Unknown description"}};
  ASSERT_EQ(p.PelinorStates.Count(), 3);
  for (int i = 1; i <= 3; ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(p.PelinorStates.Item(i)->State, want[i - 1].state);
    EXPECT_EQ(p.PelinorStates.Item(i)->tbcDisplayMessage, want[i - 1].tbc);
    EXPECT_EQ(p.PelinorStates.Item(i)->OnHoldDisplayMessage,
              want[i - 1].on_hold);
  }
  EXPECT_EQ(ToVector(p.OnHoldReasons),
            (Strings{"Awaiting purchase order", "Query with supplier"}));
  EXPECT_EQ(ToVector(p.DeleteReasons), Strings{"Duplicate"});
}

TEST(ProfileRead, FieldAndHeaderSectionsAreContiguous) {
  struct Case {
    std::string sections;
    bool ok;
    std::string err;
    Strings fields, pseudo, headers;
  } cases[] = {
      {"[Field1]\r\nName:A\r\n[Field2]\r\nName:B\r\nCatagory:2\r\n"
       "[Field3]\r\nName:C\r\n[Field5]\r\nName:E\r\n",
       true, "", Strings{"A", "C"}, Strings{"B"}, Strings{}},
      {"[Field2]\r\nName:B\r\n[LineItemHdr1]\r\nName:Qty\r\n"
       "[LineItemHdr2]\r\nName:Price\r\n[LineItemHdr4]\r\nName:X\r\n",
       true, "", Strings{}, Strings{}, Strings{"Qty", "Price"}},
      {"[Field1]\r\nName:A\r\n[Field2]\r\nType:2\r\n[Field3]\r\nName:C\r\n",
       false, "Reading profile. Unable to find field name. ", Strings{"A"},
       Strings{}, Strings{}},
      {"[LineItemHdr1]\r\nDisplayName:Qty\r\n", false,
       "Reading profile. Unable to find field name. ", Strings{}, Strings{},
       Strings{}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.sections);
    cProfile p;
    std::string err;
    EXPECT_EQ(
        Read(std::string(kMain) + "OCREnabled:0\r\n" + c.sections, p, err),
        c.ok);
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(Names(p.FieldTypes), c.fields);
    EXPECT_EQ(Names(p.PseudoFieldTypes), c.pseudo);
    EXPECT_EQ(Names(p.LineItemHdrs), c.headers);
    // The enable switches are read only after every section succeeded.
    EXPECT_EQ(p.OCREnabled, c.ok ? 0 : 1);
  }
}

TEST(ProfileAllowed, SplitsNamesAtSpacesOutsideQuotes) {
  struct Case {
    std::string value;
    Strings names;
  } cases[] = {
      {"ann \"Bob Smith\" carol", {"ann", "Bob Smith", "carol"}},
      {"  ann   bob  ", {"ann", "bob"}},
      {"a\"b c\"d e", {"ab cd", "e"}},
      {"\"\" \"unterminated run", {"unterminated run"}},
      {"tab\tkept", {"tab\tkept"}},
      {"", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    Collection<std::string> users;
    ParseAllowedUsers(c.value, users);
    EXPECT_EQ(ToVector(users), c.names);
  }
}

TEST(ProfileFind, FieldsIgnoreCaseUsersDoNot) {
  cProfile p;
  std::string err;
  ASSERT_TRUE(Read(std::string(kMain) +
                       "[Permissions]\r\nAllowed:ann \"Bob Smith\"\r\n"
                       "[Field1]\r\nName:AMOUNT\r\n[Field2]\r\nName:Ref\r\n"
                       "Catagory:0\r\n[Field3]\r\nName:amount\r\n"
                       "[LineItemHdr1]\r\nName:Qty\r\n[LineItemHdr2]\r\n"
                       "Name:Price\r\n",
                   p, err));
  struct FieldCase {
    const char* name;
    bool found;
  } fields[] = {
      {"amount", true}, {"Amount", true}, {"Ref", false}, {"", false}};
  for (const FieldCase& c : fields) {
    SCOPED_TRACE(c.name);
    std::shared_ptr<cFieldType> f;
    EXPECT_EQ(p.FindField(c.name, f), c.found);
    EXPECT_EQ(f, c.found ? p.FieldTypes.Item(1) : nullptr);  // first match
  }
  struct HdrCase {
    const char* name;
    int32_t index;
  } headers[] = {{"price", 2}, {"QTY", 1}, {"Total", 0}};
  for (const HdrCase& c : headers) {
    SCOPED_TRACE(c.name);
    std::shared_ptr<cLineHdrType> h;
    int32_t index = 0;
    EXPECT_EQ(p.FindLineItemHdr(c.name, h, index), c.index != 0);
    EXPECT_EQ(index, c.index);
  }
  struct UserCase {
    const char* name;
    bool allowed;
  } users[] = {{"ann", true},
               {"Ann", false},
               {"Bob Smith", true},
               {"bob smith", false},
               {"Bob", false}};
  for (const UserCase& c : users) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(p.FindAllowableUser(c.name), c.allowed);
  }
}

TEST(ProfileRecord, ReadsFieldsAfterTheCount) {
  const std::string data =
      "ver0.905\r\n\"ExportScript:e\"\r\n\"FieldsCount:2\"\r\n"
      "\"Field1Name:Total\"\r\n\"Field1DisplayName:Total\"\r\n"
      "\"Field1Type:4\"\r\n\"Field1Location:2\"\r\n"
      "\"Field2Name:Date\"\r\n\"Field2DisplayName:Date\"\r\n"
      "\"Field2Type:3\"\r\n\"Field2Location:0\"\r\n"
      "\"ValidateScript:v\"\r\n\"TemplatesConfig:t\"\r\n";
  cProfile p;
  std::string err;
  ASSERT_TRUE(Read(data, p, err)) << err;
  EXPECT_EQ(Names(p.FieldTypes), (Strings{"Total", "Date"}));
  EXPECT_EQ(p.FieldTypes.Item(1)->DataLocation, 2);
  EXPECT_EQ(p.FieldTypes.Item(2)->DataType, 3);
  EXPECT_EQ(p.TemplateConfig, "t");
  EXPECT_EQ(p.ValidateScript, "v");
}

TEST(ProfileRecord, WritesTheGoldenFileThatReadsBackAsSettingsForm) {
  cProfile p;
  p.ValidateScript = "validate.vbs";
  p.ExportScript = "export.vbs";
  p.TemplateConfig = "templates.ini";
  const char* names[] = {"InvoiceNo", "Total"};
  for (const char* name : names) {
    auto f = std::make_shared<cFieldType>();
    f->Name = name;
    f->DisplayName = std::string(name) + " shown";
    f->DataType = 4;
    f->DataLocation = -1;
    f->CaptionSearch = "Invoice, No.";
    f->Pattern = "not written";
    p.FieldTypes.Add(f);
  }
  p.PseudoFieldTypes.Add(std::make_shared<cFieldType>());
  TempDir dir;
  const std::string path = dir.File("out.txt");
  std::string err = "stale";
  ASSERT_TRUE(p.WriteSettings(path, err));
  EXPECT_EQ(err, "");
  EXPECT_EQ(testing::ReadFile(path),
            testing::ReadFile(testing::DataPath("profile/record_form.golden")));

  cProfile back;
  EXPECT_FALSE(back.ReadSettings("Back", path, err));
  EXPECT_EQ(err, "Reading profile. Unable to find validation script. ");
  EXPECT_EQ(back.Version, "0.946");
}

TEST(ProfileRecord, FailedWritesLeaveNoFile) {
  TempDir dir;
  const std::string path = dir.File("out.txt");
  struct Case {
    std::string target, err;
    bool null_field;
  } cases[] = {
      {dir.File("missing/out.txt"),
       "Cannot create file " + dir.File("missing/out.txt"), false},
      {path, "Error writing to profile settings file, field section. ", true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.target);
    WriteFile(path, "old");
    cProfile p;
    p.FieldTypes.Add(std::make_shared<cFieldType>());
    if (c.null_field) p.FieldTypes.Add(nullptr);
    std::string err;
    EXPECT_FALSE(p.WriteSettings(c.target, err));
    EXPECT_EQ(err, c.err);
    EXPECT_EQ(FileExists(c.target), false);
    EXPECT_EQ(testing::ReadFile(path), c.null_field ? "" : "old");
  }
}

TEST(Profile, ReadSettingAndPurge) {
  TempDir dir;
  WriteFile(dir.File("p.ini"), std::string(kMain) +
                                   "DisplayName:Supplier invoices\r\n"
                                   "[Other]\r\nDisplayName:No\r\n");
  cProfile p;
  std::string err;
  EXPECT_EQ(p.ReadSetting(dir.File("p.ini"), "Other", "Name", err),
            "Supplier invoices");
  EXPECT_EQ(p.ReadSetting(dir.File("none.ini"), "Main", "DisplayName", err),
            "");
  EXPECT_EQ(err, "Cannot find file " + dir.File("none.ini"));

  ASSERT_TRUE(p.ReadSettings("P", dir.File("p.ini"), err));
  auto f = std::make_shared<cFieldType>();
  f->AnchorRefs.Add(std::make_shared<cAnchorRef>());
  p.FieldTypes.Add(f);
  p.PseudoFieldTypes.Add(std::make_shared<cFieldType>());
  p.LineItemHdrs.Add(std::make_shared<cLineHdrType>());
  p.Allowed.Add("ann");
  p.PelinorStates.Add(std::make_shared<cPelinorState>());
  p.OnHoldReasons.Add("r");
  p.DeleteReasons.Add("d");
  p.Purge();
  EXPECT_EQ(f->AnchorRefs.Count(), 0);
  EXPECT_EQ(p.FieldTypes.Count() + p.PseudoFieldTypes.Count() +
                p.LineItemHdrs.Count() + p.Allowed.Count() +
                p.PelinorStates.Count() + p.OnHoldReasons.Count() +
                p.DeleteReasons.Count(),
            0);
  EXPECT_EQ(p.DisplayName, "Supplier invoices");  // scalars stay
}

}  // namespace
}  // namespace pelinor
