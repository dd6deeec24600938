// Capture profiles: version dispatch between the two forms of the profile
// settings file, look-ups and housekeeping. The settings form is read in
// profile_ini.cpp, the record form in profile_record.cpp.
//
// Format: see docs/formats/profile.md.

#include "pelinor/profile.h"

#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"
#include "pelinor/version.h"

namespace pelinor {

bool cProfile::ReadSettings(const std::string& ProfileName,
                            const std::string& FileName,
                            std::string& strErrMsg) {
  strErrMsg.clear();
  std::string version_text;
  {
    if (!FileExists(FileName)) {
      strErrMsg = "Cannot find file " + FileName;
      return false;
    }
    TextReader reader;
    if (!reader.Open(FileName)) {
      strErrMsg = "Cannot open file " + FileName;
      return false;
    }
    // An empty file reads as an empty version text.
    reader.ReadItem(version_text);
  }
  float ver = 0;
  if (!ParseVersionNumber(version_text, ver)) {
    strErrMsg = "Invalid version number";
    return false;
  }
  Version = NumberText(ver);
  Name = ProfileName;
  if (ver >= 0.91f) return ReadIniForm(version_text, FileName, strErrMsg);
  return ReadRecordForm(ver, version_text, FileName, strErrMsg);
}

std::string cProfile::ReadSetting(const std::string& FileName,
                                  const std::string& /*Section*/,
                                  const std::string& /*Name*/,
                                  std::string& strErrMsg) const {
  cIniFile ini;
  std::string display =
      ini.GetSettingString("Main", "DisplayName", "", FileName, strErrMsg);
  ini.CloseFile();
  return display;
}

bool cProfile::FindField(const std::string& strFieldName,
                         std::shared_ptr<cFieldType>& FieldType) const {
  const auto* field = FindNamed(FieldTypes, strFieldName, &cFieldType::Name);
  if (field == nullptr) return false;
  FieldType = *field;
  return true;
}

bool cProfile::FindLineItemHdr(const std::string& strLineHdrName,
                               std::shared_ptr<cLineHdrType>& LineHdrType,
                               int32_t& LineHdrIdx) const {
  for (int i = 1; i <= LineItemHdrs.Count(); ++i) {
    const auto& hdr = LineItemHdrs.Item(i);
    if (hdr != nullptr && EqualsIgnoreCase(hdr->Name, strLineHdrName)) {
      LineHdrType = hdr;
      LineHdrIdx = i;
      return true;
    }
  }
  return false;
}

bool cProfile::FindAllowableUser(const std::string& strName) const {
  for (const std::string& user : Allowed) {
    if (user == strName) return true;
  }
  return false;
}

std::string cProfile::FileVersion() const { return kLibraryVersion; }

void cProfile::Purge() {
  for (auto* list : {&FieldTypes, &PseudoFieldTypes}) {
    for (int i = list->Count(); i >= 1; --i) {
      if (list->Item(i) != nullptr) list->Item(i)->AnchorRefs.Clear();
    }
    list->Clear();
  }
  LineItemHdrs.Clear();
  Allowed.Clear();
  PelinorStates.Clear();
  OnHoldReasons.Clear();
  DeleteReasons.Clear();
}

void ParseAllowedUsers(const std::string& value,
                       Collection<std::string>& users) {
  std::string name;
  bool quoted = false;
  for (char c : value) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ' ' && !quoted) {
      if (!name.empty()) users.Add(name);
      name.clear();
    } else {
      name += c;
    }
  }
  if (!name.empty()) users.Add(name);
}

}  // namespace pelinor
