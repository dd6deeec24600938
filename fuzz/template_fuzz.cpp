// Template files: any file the reader accepts writes, reads and writes
// again unchanged.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz_util.h"
#include "pelinor/template.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string path = pelinor::fuzz::WriteScratch(
      "template.tpl", std::string(reinterpret_cast<const char*>(data), size));
  std::shared_ptr<pelinor::cTemplate> tpl;
  std::string err;
  pelinor::fuzz::CheckRoundTrip(
      "template-out", path,
      [&](const std::string& file) {
        tpl = std::make_shared<pelinor::cTemplate>();
        return tpl->ReadSettings(file, err);
      },
      [&](const std::string& file) { return tpl->WriteSettings(file, err); });
  return 0;
}
