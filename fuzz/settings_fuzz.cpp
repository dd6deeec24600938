// Sectioned settings files: the index and every look-up over arbitrary
// file contents. The first two NUL-separated pieces name the section and
// the record looked up; the rest is the file.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/collection.h"
#include "pelinor/ini_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto parts = pelinor::fuzz::Split(data, size, 3);
  const std::string path = pelinor::fuzz::WriteScratch("settings", parts[2]);
  pelinor::cIniFile ini;
  std::string err;
  for (const std::string& section : {parts[0], std::string("States")}) {
    ini.FindHeader(section, path, err);
    ini.GetSettingString(section, parts[1], "default", path, err);
    ini.GetSettingSingle(section, parts[1], 1.5f, path, err);
    ini.GetSettingDouble(section, parts[1], 2.5, path, err);
    ini.GetSettingLong(section, parts[1], 7, path, err);
    pelinor::Collection<std::string> lines;
    ini.GetStrings(path, section, lines, err);
  }
  pelinor::Collection<std::string> states, to_be_checked, on_hold;
  ini.GetPELINORStates(path, states, to_be_checked, on_hold, err);
  pelinor::fuzz::Check(states.Count() == to_be_checked.Count() &&
                           states.Count() == on_hold.Count(),
                       "the state columns differ in length");
  ini.CloseFile();
  return 0;
}
