// Document tag files: any file the reader accepts writes, reads and writes
// again unchanged. A name with a comma is cut at the comma when it is read,
// so it is written cut and round trips like any other. Only a double quote
// opens an item that keeps commas, line ends and edge blanks, which the
// plain line written from it cannot carry; for such files the property is
// checked on the file the writer makes from them.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz_util.h"
#include "pelinor/document_data.h"
#include "pelinor/text_file.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::shared_ptr<pelinor::cDocumentData> doc;
  std::string err;
  {
    // The reader over memory, as a caller holding the text would use it.
    auto in_memory = pelinor::cDocumentData::New();
    pelinor::TextReader reader;
    reader.OpenText(bytes);
    in_memory->ReadSettings(reader, err);
  }
  const auto read = [&](const std::string& file) {
    doc = pelinor::cDocumentData::New();
    return doc->ReadSettings(file, err);
  };
  const auto write = [&](const std::string& file) {
    return doc->WriteSettings(file, err);
  };
  std::string path = pelinor::fuzz::WriteScratch("document.tag", bytes);
  if (bytes.find('"') != std::string::npos) {
    if (!read(path)) return 0;
    path = pelinor::fuzz::ScratchPath("document-written");
    pelinor::fuzz::Check(write(path), "writing what was read failed");
  }
  pelinor::fuzz::CheckRoundTrip("document-out", path, read, write);
  return 0;
}
