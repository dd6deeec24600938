// Scan settings: cScanProfile, a scan profile with its lists of OCR
// passes, and cOCRProps, the engine settings of one pass.
//
// Format: see docs/formats/detection-and-scan.md.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_SCAN_PROFILE_H_
#define PELINOR_SCAN_PROFILE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/ini_file.h"

namespace pelinor {

class cOCRProps {
 public:
  std::string EngineSettings;     // key "Settings"
  std::string EngineType;         // key "Type"
  std::string EngineSubType;      // key "SubType"
  std::string EngineDescription;  // key "Description"

  // ReadSettings()
  //
  // Reads the four keys of section `Header` of `FileName` through
  // `IniFile` (absent keys give ""). Fails only when the settings reader
  // reports an error (such as "Cannot find file " + name), which is left
  // in `strErrMsg`.
  bool ReadSettings(const std::string& Header, const std::string& FileName,
                    cIniFile& IniFile, std::string& strErrMsg);
};

class cScanProfile {
 public:
  int32_t UnpackedFormat = 0;
  int32_t OCRFromMaster = 0;
  int32_t PerformOCR = 0;
  int32_t ExtractType = 0;
  Collection<std::shared_ptr<cOCRProps>> RegularPasses;
  Collection<std::shared_ptr<cOCRProps>> DotMatrixPasses;

  // The "TrustDecimalPoint" setting (read-only).
  int32_t trustDecimalPoint() const { return trust_decimal_point_; }

  // ReadSettings()
  //
  // Reads the scan profile `FileName`: the five numbers of section "Main"
  // (each 1 when absent or not numeric), then the passes named by the
  // "Main" keys "RegularPass1", "RegularPass2", ... and "DotMatrixPass1",
  // ..., each list ending at the first key that is empty or names a
  // missing section. Clears `strErrMsg`. Fails with "Cannot find file " +
  // name when the file does not exist, and with "Error reading regular
  // pass settings" / "Error reading dot matrix pass settings" when a pass
  // cannot be read.
  bool ReadSettings(const std::string& FileName, std::string& strErrMsg);

 private:
  int32_t trust_decimal_point_ = 0;
};

}  // namespace pelinor

#endif  // PELINOR_SCAN_PROFILE_H_
