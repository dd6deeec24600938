// Profiles in both stored forms (the version line decides), and writing
// whatever was read. The record form the writer produces is not meant to
// read back whole (its field records carry a page number where the reader
// looks for a location), so no round trip is checked for profiles.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/profile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = pelinor::fuzz::WriteScratch(
      "profile", std::string(reinterpret_cast<const char*>(data), size));
  pelinor::cProfile profile;
  std::string err;
  profile.ReadSetting(path, "Main", "DisplayName", err);
  if (!profile.ReadSettings("Fuzz", path, err)) return 0;
  const std::string out = pelinor::fuzz::ScratchPath("profile-out");
  pelinor::fuzz::Check(profile.WriteSettings(out, err),
                       "writing a profile that was read failed");
  return 0;
}
