// Line-item header types: the "LineItemHdr"n sections of a profile
// settings file and the header lines of a document tag file.
//
// Format: see docs/formats/profile.md.

#include "pelinor/line_hdr_type.h"

#include <string>

#include "pelinor/numeric.h"

namespace pelinor {

bool cLineHdrType::WriteSettings(int32_t TagIdx, TextWriter& hFile,
                                 std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix = "LineItemHdr" + NumberText(TagIdx);
  hFile.WriteLine(prefix + "Name:" + Name);
  hFile.WriteLine(prefix + "DisplayName:" + DisplayName);
  hFile.WriteLine(prefix + "Type:" + NumberText(DataType));
  hFile.WriteLine(prefix + "Flags:" + NumberText(DataFlags));
  hFile.WriteLine(prefix +
                  "InternalValidateLevel:" + NumberText(InternalValidateLevel));
  if (!hFile.ok()) {
    strErrMsg =
        "Error writing to document tags file, line item header section. ";
    return false;
  }
  return true;
}

bool cLineHdrType::ReadIniSettings(const std::string& strSection,
                                   cIniFile& IniFile,
                                   const std::string& FileName,
                                   std::string& strErrMsg,
                                   const std::string& /*strVer*/) {
  Name = IniFile.GetSettingString(strSection, "Name", "", FileName, strErrMsg);
  if (Name.empty()) {
    strErrMsg = "Reading profile. Unable to find field name. " + strErrMsg;
    return false;
  }
  // Absent keys take the defaults of a field type section.
  DisplayName = IniFile.GetSettingString(strSection, "DisplayName", Name,
                                         FileName, strErrMsg);
  DataType = IniFile.GetSettingLong(strSection, "Type", 1, FileName, strErrMsg);
  DataFlags =
      IniFile.GetSettingLong(strSection, "Flags", 0, FileName, strErrMsg);
  InternalValidateLevel = IniFile.GetSettingLong(
      strSection, "InternalValidateLevel", -100, FileName, strErrMsg);
  Hidden = IniFile.GetSettingLong(strSection, "Hidden", 0, FileName, strErrMsg);
  ReadOnly =
      IniFile.GetSettingLong(strSection, "ReadOnly", 0, FileName, strErrMsg);
  Pattern =
      IniFile.GetSettingString(strSection, "Pattern", "", FileName, strErrMsg);
  // Unlike field types, only "1" turns these on.
  PtnMode = IniFile.GetSettingString(strSection, "ApplyPatternMatch", "0",
                                     FileName, strErrMsg) == "1"
                ? 1
                : 0;
  PtnAllowOverride =
      IniFile.GetSettingString(strSection, "AllowPatternOverride", "0",
                               FileName, strErrMsg) == "1"
          ? 1
          : 0;
  return true;
}

void cLineHdrType::Copy(cLineHdrType& Target) const { Target = *this; }

}  // namespace pelinor
