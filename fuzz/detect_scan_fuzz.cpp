// Template detection types and scan profiles read from arbitrary files;
// the first byte chooses which.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/scan_profile.h"
#include "pelinor/tp_detect_type.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string path = pelinor::fuzz::WriteScratch(
      "detect", std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  std::string err;
  if (data[0] % 2 == 0) {
    pelinor::cTpDetectTypes types;
    types.ReadSettings(path, err);
  } else {
    pelinor::cScanProfile scan;
    scan.ReadSettings(path, err);
  }
  return 0;
}
