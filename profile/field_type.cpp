// Field types: the "Field"n sections of a profile settings file and the
// field records of the profile's record form.
//
// Format: see docs/formats/profile.md.

#include "pelinor/field_type.h"

#include <string>
#include <utility>

#include "pelinor/data_parser.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

constexpr char kIncorrectParameter[] =
    "Error reading profile settings file. Incorrect parameter";
constexpr char kWriteError[] =
    "Error writing to profile settings file, field section. ";

// The keys of a "Field"n section as strings, built once: a profile may
// hold thousands of sections, each asked for every key.
struct Keys {
  const std::string Name = "Name", DisplayName = "DisplayName", Type = "Type",
                    Location = "Location", CaptionSearch = "CaptionSearch",
                    Catagory = "Catagory", Default = "Default",
                    Hidden = "Hidden", AnchorRef = "AnchorRef",
                    Pattern = "Pattern",
                    ApplyPatternMatch = "ApplyPatternMatch",
                    AllowPatternOverride = "AllowPatternOverride",
                    Candidate = "Candidate",
                    InternalValidateLevel = "InternalValidateLevel", Empty,
                    Off = "0";
};

const Keys& FieldKeys() {
  static const Keys* const keys = new Keys();
  return *keys;
}

// The switch keys read as on: "1", or "TRUE" in any letter case.
bool IsOn(const std::string& value) {
  return value == "1" || UCase(value) == "TRUE";
}

}  // namespace

bool cFieldType::WriteSettings(int32_t TagIdx, TextWriter& hFile,
                               std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix = "Field" + NumberText(TagIdx);
  hFile.WriteItems({prefix + "Name:" + Name});
  hFile.WriteItems({prefix + "DisplayName:" + DisplayName});
  hFile.WriteItems({prefix + "Type:" + NumberText(DataType)});
  hFile.WriteItems({prefix + "PageNo:" + NumberText(DataLocation)});
  hFile.WriteItems({prefix + "CaptionSearch:" + CaptionSearch});
  hFile.WriteItems(
      {prefix + "InternalValidateLevel:" + NumberText(InternalValidateLevel)});
  if (!hFile.ok()) {
    strErrMsg = kWriteError;
    return false;
  }
  return true;
}

bool cFieldType::ReadIniSettings(const std::string& strSection,
                                 cIniFile& IniFile, const std::string& FileName,
                                 std::string& strErrMsg,
                                 const std::string& /*strVer*/) {
  const Keys& k = FieldKeys();
  Name = IniFile.GetSettingString(strSection, k.Name, k.Empty, FileName,
                                  strErrMsg);
  if (Name.empty()) {
    strErrMsg = "Reading profile. Unable to find field name. " + strErrMsg;
    return false;
  }
  DisplayName = IniFile.GetSettingString(strSection, k.DisplayName, Name,
                                         FileName, strErrMsg);
  DataType = IniFile.GetSettingLong(strSection, k.Type, 1, FileName, strErrMsg);
  DataLocation =
      IniFile.GetSettingLong(strSection, k.Location, 0, FileName, strErrMsg);
  CaptionSearch = IniFile.GetSettingString(strSection, k.CaptionSearch, k.Empty,
                                           FileName, strErrMsg);
  Catagory =
      IniFile.GetSettingLong(strSection, k.Catagory, 1, FileName, strErrMsg);
  Default = IniFile.GetSettingString(strSection, k.Default, k.Empty, FileName,
                                     strErrMsg);
  Hidden = IniFile.GetSettingLong(strSection, k.Hidden, 0, FileName, strErrMsg);
  std::string anchor = IniFile.GetSettingString(strSection, k.AnchorRef,
                                                k.Empty, FileName, strErrMsg);
  if (!anchor.empty()) {
    auto ref = std::make_shared<cAnchorRef>();
    ref->Name = std::move(anchor);
    AnchorRefs.Add(ref);
  }
  Pattern = IniFile.GetSettingString(strSection, k.Pattern, k.Empty, FileName,
                                     strErrMsg);
  if (IsOn(IniFile.GetSettingString(strSection, k.ApplyPatternMatch, k.Off,
                                    FileName, strErrMsg))) {
    PtnMode = 3;
  }
  if (IsOn(IniFile.GetSettingString(strSection, k.AllowPatternOverride, k.Off,
                                    FileName, strErrMsg))) {
    PtnAllowOverride = 1;
  }
  Candidate = IniFile.GetSettingString(strSection, k.Candidate, k.Empty,
                                       FileName, strErrMsg);
  // -100 on purpose: a section without the key does not take the level of
  // a new field type.
  InternalValidateLevel = IniFile.GetSettingLong(
      strSection, k.InternalValidateLevel, -100, FileName, strErrMsg);
  return true;
}

bool cFieldType::ReadSettings(int32_t TagIdx, TextReader& hFile,
                              std::string& strErrMsg,
                              const std::string& strVer) {
  float ver = 0;
  if (!ParseVersionNumber(strVer, ver)) {
    strErrMsg = "Invalid version number";
    return false;
  }
  strErrMsg.clear();
  const int wanted = ver >= 0.901f ? 4 : 2;
  const std::string prefix = "FIELD" + NumberText(TagIdx);
  const cDataParser parser;
  std::string line;
  std::string label;
  std::string value;
  for (int accepted = 0; accepted < wanted;) {
    if (!hFile.ReadItem(line)) {
      strErrMsg = kIncorrectParameter;
      return false;
    }
    if (!parser.SplitNameAndValue(line, label, value, ":")) continue;
    const std::string upper = UCase(label);
    if (upper.size() <= prefix.size() ||
        upper.compare(0, prefix.size(), prefix) != 0) {
      continue;
    }
    const std::string_view word = std::string_view(upper).substr(prefix.size());
    if (word == "NAME") {
      Name = value;
    } else if (word == "DISPLAYNAME") {
      DisplayName = value;
    } else if (word == "TYPE" || word == "LOCATION") {
      int32_t number = 0;
      if (!ToLong(value, number)) {
        strErrMsg = kIncorrectParameter;
        return false;
      }
      (word == "TYPE" ? DataType : DataLocation) = number;
    } else {
      continue;
    }
    ++accepted;
  }
  return true;
}

}  // namespace pelinor
