// Document tag files: any file the reader accepts writes, reads and writes
// again unchanged, unless its profile name is one the format cannot carry.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz_util.h"
#include "pelinor/document_data.h"
#include "pelinor/text_file.h"

namespace {

// The profile name is written as a bare line and read back as one item, so
// a comma, a line end, a leading blank or quote, or a trailing space does
// not survive the trip.
bool Writable(const pelinor::cDocumentData& doc) {
  const std::string& name = doc.ProfileName;
  if (name.find_first_of(",\r\n") != std::string::npos) return false;
  return name.empty() || (name.front() != ' ' && name.front() != '\t' &&
                          name.front() != '"' && name.back() != ' ');
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  std::shared_ptr<pelinor::cDocumentData> doc;
  std::string err;
  {
    // The reader over memory, as a caller holding the text would use it.
    auto in_memory = std::make_shared<pelinor::cDocumentData>();
    pelinor::TextReader reader;
    reader.OpenText(bytes);
    in_memory->ReadSettings(reader, err);
  }
  const std::string path = pelinor::fuzz::WriteScratch("document.tag", bytes);
  pelinor::fuzz::CheckRoundTrip(
      "document-out", path,
      [&](const std::string& file) {
        doc = std::make_shared<pelinor::cDocumentData>();
        return doc->ReadSettings(file, err) && Writable(*doc);
      },
      [&](const std::string& file) { return doc->WriteSettings(file, err); });
  return 0;
}
