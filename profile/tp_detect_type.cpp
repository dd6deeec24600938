// Template detection configuration: the "MAIN" and "TYPE"n sections of a
// detection settings file.
//
// Format: see docs/formats/detection-and-scan.md.

#include "pelinor/tp_detect_type.h"

#include <algorithm>
#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

constexpr char kContext[] = "Reading template detection config. ";

// Counts read from the file are capped so a corrupt count cannot make a
// read run for hours or exhaust memory.
constexpr int32_t kMaxCount = 100000;

bool IsOn(const std::string& value) {
  return value == "1" || UCase(value) == "TRUE";
}

}  // namespace

bool cTpDetectType::ReadIniSettings(const std::string& strSection,
                                    cIniFile& IniFile,
                                    const std::string& FileName,
                                    std::string& strErrMsg,
                                    const std::string& /*strVer*/) {
  template_type_ = TrailingDigits(strSection);
  if (!IsNumeric(template_type_)) {
    strErrMsg = std::string(kContext) + "Invalid type.";
    return false;
  }
  auto text = [&](const char* key, const char* dflt) {
    return IniFile.GetSettingString(strSection, key, dflt, FileName, strErrMsg);
  };
  auto number = [&](const char* key, int32_t dflt) {
    return IniFile.GetSettingLong(strSection, key, dflt, FileName, strErrMsg);
  };
  format_ = text("Format", "");
  if (format_.empty()) {
    strErrMsg = std::string(kContext) + "Unable to find format. " + strErrMsg;
    return false;
  }
  display_name_ = text("DisplayName", "");
  locate_ = number("Locate", 0);
  if (format_ == "256") float_distance_const_ = number("DistanceConst", 100);
  country_ = text("Country", "");
  min_digits_ = number("MinLength", 5);
  if (min_digits_ < 0) min_digits_ = 5;
  max_digits_ = number("MaxLength", 9);
  if (max_digits_ < min_digits_) max_digits_ = min_digits_;
  delims_allowed_ = text("DelimitersAllowed", "");
  if (IsOn(text("SuppressSpaces", "0"))) spaces_allowed_ = true;
  country_format_ = text("CountryFormat", "");
  const int32_t searches = std::min(number("SearchCount", 0), kMaxCount);
  for (int32_t i = 1; i <= searches; ++i) {
    const std::string key = "Search" + NumberText(i);
    search_strings_.Add(
        IniFile.GetSettingString(strSection, key, "", FileName, strErrMsg));
  }
  return true;
}

bool cTpDetectTypes::ReadSettings(const std::string& FileName,
                                  std::string& strErrMsg) {
  strErrMsg.clear();
  if (!FileExists(FileName)) {
    strErrMsg = "Cannot find file " + FileName;
    return false;
  }
  cIniFile ini;
  if (ini.FindHeader("MAIN", FileName, strErrMsg) == 1) {
    SkipFirstNoPages = ini.GetSettingString("MAIN", "SkipFirstNoPages", "0",
                                            FileName, strErrMsg);
    const int32_t discards = std::min(
        ini.GetSettingLong("MAIN", "DiscardCount", 0, FileName, strErrMsg),
        kMaxCount);
    if (IsOn(ini.GetSettingString("MAIN", "Validate", "1", FileName,
                                  strErrMsg))) {
      Validate = 1;
    }
    for (int32_t i = 1; i <= discards; ++i) {
      std::string discard = ini.GetSettingString(
          "MAIN", "Discard" + NumberText(i), "", FileName, strErrMsg);
      if (!discard.empty()) Discard.Add(std::move(discard));
    }
  }
  auto read_type = [&](const std::string& section) {
    auto type = std::make_shared<cTpDetectType>();
    if (!type->ReadIniSettings(section, ini, FileName, strErrMsg, "")) {
      return false;
    }
    Types.Add(std::move(type));
    return true;
  };
  for (int32_t n = 1;; ++n) {
    const std::string section = "TYPE" + NumberText(n);
    const int32_t found = ini.FindHeader(section, FileName, strErrMsg);
    if (found < 0) return false;
    if (found == 0) break;
    if (!read_type(section)) return false;
  }
  const int32_t found = ini.FindHeader("TYPE256", FileName, strErrMsg);
  if (found < 0) return false;
  if (found == 1 && !read_type("TYPE256")) return false;
  return true;
}

}  // namespace pelinor
