// Template files: any file the reader accepts writes, reads and writes
// again unchanged. A value with a comma that is read as an item is cut at
// the comma, so it is written cut and round trips like any other. Only a
// double quote opens an item that keeps commas, line ends and edge blanks,
// which the plain line written from it cannot carry; for such files the
// property is checked on the file the writer makes from them.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz_util.h"
#include "pelinor/template.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::string path = pelinor::fuzz::WriteScratch("template.tpl", bytes);
  std::shared_ptr<pelinor::cTemplate> tpl;
  std::string err;
  const auto read = [&](const std::string& file) {
    tpl = pelinor::cTemplate::New();
    return tpl->ReadSettings(file, err);
  };
  const auto write = [&](const std::string& file) {
    return tpl->WriteSettings(file, err);
  };
  if (bytes.find('"') != std::string::npos) {
    if (!read(path)) return 0;
    path = pelinor::fuzz::ScratchPath("template-written");
    pelinor::fuzz::Check(write(path), "writing what was read failed");
  }
  pelinor::fuzz::CheckRoundTrip("template-out", path, read, write);
  return 0;
}
