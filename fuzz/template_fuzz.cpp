// Template files: any file the reader accepts writes, reads and writes
// again unchanged. Texts read as items and written as lines cannot carry a
// comma or a line end, which only a double quote in the file can put
// there, so the round trip is checked for files without one.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz_util.h"
#include "pelinor/template.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::string path = pelinor::fuzz::WriteScratch("template.tpl", bytes);
  std::shared_ptr<pelinor::cTemplate> tpl;
  std::string err;
  const auto read = [&](const std::string& file) {
    tpl = pelinor::cTemplate::New();
    return tpl->ReadSettings(file, err);
  };
  if (bytes.find('"') != std::string::npos) {
    read(path);
    return 0;
  }
  pelinor::fuzz::CheckRoundTrip(
      "template-out", path, read,
      [&](const std::string& file) { return tpl->WriteSettings(file, err); });
  return 0;
}
