// Scan profiles: section "Main" of a scan settings file and the OCR pass
// sections it names.
//
// Format: see docs/formats/detection-and-scan.md.

#include "pelinor/scan_profile.h"

#include <string>

#include "pelinor/file_system.h"
#include "pelinor/numeric.h"

namespace pelinor {

bool cOCRProps::ReadSettings(const std::string& Header,
                             const std::string& FileName, cIniFile& IniFile,
                             std::string& strErrMsg) {
  EngineSettings =
      IniFile.GetSettingString(Header, "Settings", "", FileName, strErrMsg);
  if (!strErrMsg.empty()) return false;
  EngineType =
      IniFile.GetSettingString(Header, "Type", "", FileName, strErrMsg);
  EngineSubType =
      IniFile.GetSettingString(Header, "SubType", "", FileName, strErrMsg);
  EngineDescription =
      IniFile.GetSettingString(Header, "Description", "", FileName, strErrMsg);
  return true;
}

bool cScanProfile::ReadSettings(const std::string& FileName,
                                std::string& strErrMsg) {
  strErrMsg.clear();
  if (!FileExists(FileName)) {
    strErrMsg = "Cannot find file " + FileName;
    return false;
  }
  cIniFile ini;
  auto number = [&](const char* key) {
    return ini.GetSettingLong("Main", key, 1, FileName, strErrMsg);
  };
  UnpackedFormat = number("UnpackedFormat");
  OCRFromMaster = number("OCRFromMaster");
  PerformOCR = number("PerformOCR");
  ExtractType = number("ExtractType");
  trust_decimal_point_ = number("TrustDecimalPoint");

  // Each list runs while its numbered "Main" keys name existing sections.
  auto read_passes = [&](const char* key, const char* message,
                         Collection<std::shared_ptr<cOCRProps>>& passes) {
    for (int32_t n = 1;; ++n) {
      const std::string section = ini.GetSettingString(
          "Main", key + NumberText(n), "", FileName, strErrMsg);
      if (section.empty()) return true;
      const int32_t found = ini.FindHeader(section, FileName, strErrMsg);
      if (found == 0) return true;
      auto pass = std::make_shared<cOCRProps>();
      if (found < 0 || !pass->ReadSettings(section, FileName, ini, strErrMsg)) {
        strErrMsg = message;
        return false;
      }
      passes.Add(std::move(pass));
    }
  };
  return read_passes("RegularPass", "Error reading regular pass settings",
                     RegularPasses) &&
         read_passes("DotMatrixPass", "Error reading dot matrix pass settings",
                     DotMatrixPasses);
}

}  // namespace pelinor
