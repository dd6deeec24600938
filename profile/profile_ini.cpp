// Capture profiles: the sectioned settings form of the profile settings
// file (version 0.91 and later).
//
// Format: see docs/formats/profile.md.
//
// All look-ups go through one cIniFile, which indexes the file once, so
// the contiguous "Field"n and "LineItemHdr"n sections are found by name
// without rescanning: reading a profile costs time linear in its size.

#include <memory>
#include <string>

#include "pelinor/numeric.h"
#include "pelinor/profile.h"

namespace pelinor {
namespace {

// Reads the contiguous sections `prefix`1, `prefix`2, ... into new objects
// of type T and hands each to `add`. False when a section fails to read.
template <typename T, typename Add>
bool ReadNumberedSections(const char* prefix, cIniFile& ini,
                          const std::string& FileName, const std::string& ver,
                          std::string& strErrMsg, Add add) {
  for (int32_t n = 1;; ++n) {
    const std::string section = prefix + NumberText(n);
    const int32_t found = ini.FindHeader(section, FileName, strErrMsg);
    if (found < 0) return false;
    if (found == 0) return true;
    auto item = std::make_shared<T>();
    if (!item->ReadIniSettings(section, ini, FileName, strErrMsg, ver)) {
      return false;
    }
    add(std::move(item));
  }
}

}  // namespace

bool cProfile::ReadIniForm(const std::string& strVer,
                           const std::string& FileName,
                           std::string& strErrMsg) {
  cIniFile ini;
  auto text = [&](const char* section, const char* key, const char* dflt) {
    return ini.GetSettingString(section, key, dflt, FileName, strErrMsg);
  };
  auto number = [&](const char* key, int32_t dflt) {
    return ini.GetSettingLong("Main", key, dflt, FileName, strErrMsg);
  };
  auto fail = [&](const char* what) {
    strErrMsg = std::string("Reading profile. ") + what + strErrMsg;
    return false;
  };

  ValidateScript = text("Main", "ValidateScript", "");
  if (ValidateScript.empty()) return fail("Unable to find validation script. ");
  ExportScript = text("Main", "ExportScript", "");
  if (ExportScript.empty()) return fail("Unable to find export script. ");
  TemplateConfig = text("Main", "TemplatesConfig", "");
  if (TemplateConfig.empty()) {
    return fail("Unable to find templates configuration. ");
  }
  RejectScript = text("Main", "RejectScript", "");
  DeleteScript = text("Main", "DeleteScript", "");
  DeletePrompt = number("DeletePrompt", 1);
  LastClientViewMode = number("LastClientViewMode", 0);
  InternalValidateLevel = number("InternalValidateLevel", 2);
  FlattenDuplex = number("FlattenDuplex", 1);
  OCRPages = number("OCRAllPages", 1);
  OutputPagesText = number("OutputPagesText", 0);
  LineLevel = number("LineLevel", 1);
  LineDataRowSpaceMax = text("Main", "LineDataSubRowSpaceMax", "0");
  LineDataEntitySpaceMax = text("Main", "LineDataEntitySpaceMax", "0");
  DocEndMarkInclusive = number("DocEndMarkInclusive", 1);
  DocEndMarkSideMode = number("DocEndMarkSideMode", 0);
  ExpectedAttachments = number("ExpectedAttachments", 0);
  DisplayName = text("Main", "DisplayName", "");
  TemplateDir = text("Main", "TemplateDir", "");
  ParseAllowedUsers(text("Permissions", "Allowed", ""), Allowed);
  QueueDirRemote = text("Main", "QueueDirRemote", "");
  QueueDirLocal = text("Main", "QueueDirLocal", "");
  OnEntryScript = text("Main", "OnEntryScript", "");
  InvalidState = number("InvalidState", 1);
  TemplateDetectPages = text("Main", "TemplateDetectPages", "");

  // Only states 100 to 199 are the profile's own; the others are the
  // product's fixed states and are dropped.
  Collection<std::string> numbers, tbc, on_hold;
  ini.GetPELINORStates(FileName, numbers, tbc, on_hold, strErrMsg);
  for (int i = 1; i <= numbers.Count(); ++i) {
    int32_t state = 0;
    if (!ToLong(numbers.Item(i), state) || state < 100 || state > 199) {
      continue;
    }
    auto s = std::make_shared<cPelinorState>();
    s->State = state;
    s->tbcDisplayMessage = tbc.Item(i);
    s->OnHoldDisplayMessage = on_hold.Item(i);
    PelinorStates.Add(std::move(s));
  }
  ini.GetStrings(FileName, "HoldReasons", OnHoldReasons, strErrMsg);
  ini.GetStrings(FileName, "DeleteReasons", DeleteReasons, strErrMsg);

  const bool fields_read = ReadNumberedSections<cFieldType>(
      "Field", ini, FileName, strVer, strErrMsg,
      [this](std::shared_ptr<cFieldType> field) {
        (field->Catagory == 1 ? FieldTypes : PseudoFieldTypes)
            .Add(std::move(field));
      });
  if (!fields_read) return false;
  const bool headers_read = ReadNumberedSections<cLineHdrType>(
      "LineItemHdr", ini, FileName, strVer, strErrMsg,
      [this](std::shared_ptr<cLineHdrType> hdr) {
        LineItemHdrs.Add(std::move(hdr));
      });
  if (!headers_read) return false;

  LineLevelEnabled = number("LineLevelEnabled", 1);
  OCREnabled = number("OCREnabled", 1);
  return true;
}

}  // namespace pelinor
