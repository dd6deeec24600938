// The registry file store: reading arbitrary file contents, then writing a
// value into them. The first three NUL-separated pieces are a key path, a
// value name and a value; the rest is the file.

#include <cstdint>
#include <cstdlib>
#include <string>

#include "fuzz_util.h"
#include "pelinor/registry.h"
#include "pelinor/text.h"

using pelinor::fuzz::Check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto parts = pelinor::fuzz::Split(data, size, 4);
  const std::string& key = parts[0];
  const std::string& name = parts[1];
  const std::string& value = parts[2];
  const std::string path = pelinor::fuzz::WriteScratch("registry", parts[3]);
  setenv("PELINOR_REGISTRY", path.c_str(), 1);
  setenv("PELINOR_USER_REGISTRY", path.c_str(), 1);

  const pelinor::cRegistry reg;
  const int32_t hive = pelinor::kHkeyLocalMachine;
  reg.RegGetStringValue(hive, key, name, "default");
  reg.RegGetValue(hive, "Pelinor Server", "Default", name, "default");
  reg.RegGetValue(pelinor::kHkeyCurrentUser, "Pelinor", key, name, "x");
  const std::string before = reg.RegGetStringValue(
      hive, pelinor::kServerKeyPath, pelinor::kLocaleValue, "default");

  // A value written reads back (up to the 1023 characters a read keeps,
  // and without the NULs a value cannot hold) and leaves others alone.
  const bool plain = !key.empty() && key.find('\0') == std::string::npos &&
                     value.find('\0') == std::string::npos &&
                     value.size() < 1000 && !value.empty() &&
                     !pelinor::EqualsIgnoreCase(name, pelinor::kLocaleValue);
  if (plain && reg.RegSetStringValue(hive, key, name, value) == 0) {
    Check(reg.RegGetStringValue(hive, key, name, "") == value,
          "a value written did not read back");
    Check(reg.RegGetStringValue(hive, pelinor::kServerKeyPath,
                                pelinor::kLocaleValue, "default") == before,
          "writing one value changed another");
  }
  reg.RegDeleteKeySetting(hive, key, name);
  return 0;
}
