// Document tag files: any file the reader accepts writes, reads and writes
// again unchanged. Texts read as items and written as lines (the profile
// name, field and cell names) cannot carry a comma or a line end, which only
// a double quote in the file can put there, so the round trip is checked
// for files without one.

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
  if (bytes.find('"') != std::string::npos) return 0;
  const std::string path = pelinor::fuzz::WriteScratch("document.tag", bytes);
  pelinor::fuzz::CheckRoundTrip(
      "document-out", path,
      [&](const std::string& file) {
        doc = pelinor::cDocumentData::New();
        return doc->ReadSettings(file, err);
      },
      [&](const std::string& file) { return doc->WriteSettings(file, err); });
  return 0;
}
