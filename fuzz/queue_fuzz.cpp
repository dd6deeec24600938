// The queue file, a queue entry's status file and a reject message file;
// the first byte chooses which. Files the readers accept write, read and
// write again unchanged, unless a text written without escaping holds a
// double quote, which the item form cannot carry.

#include <cstdint>
#include <memory>
#include <string>

#include "fuzz_util.h"
#include "pelinor/queue.h"
#include "pelinor/queue_entry.h"

namespace {

using Entry = pelinor::cQueueEntry;

// The texts an entry writes as they stand (only the two identification
// texts are escaped).
constexpr std::string Entry::*kPlainTexts[] = {
    &Entry::DocId,
    &Entry::ScannerProfile,
    &Entry::PelinorProfile,
    &Entry::TimeScanned,
    &Entry::TimeLastModified,
    &Entry::LookupScript,
    &Entry::ExportProcess,
    &Entry::TemplateIdentifier,
    &Entry::TemplateType,
    &Entry::TemplateSubType,
    &Entry::TemplateIDX,
    &Entry::TemplateIDY,
    &Entry::TemplateIDWidth,
    &Entry::TemplateIDHeight,
    &Entry::TemplateIDPage,
    &Entry::TemplateDisplayName,
    &Entry::TemplateIDFormat,
    &Entry::TemplateCountry,
    &Entry::ID2X,
    &Entry::ID2Y,
    &Entry::ID2Width,
    &Entry::ID2Height,
    &Entry::ID2Page,
};

bool Writable(const Entry& entry) {
  for (auto text : kPlainTexts) {
    if ((entry.*text).find('"') != std::string::npos) return false;
  }
  return true;
}

bool Writable(const pelinor::cQueue& queue) {
  for (const auto& entry : queue.QueueEntries) {
    if (entry && !Writable(*entry)) return false;
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string path = pelinor::fuzz::WriteScratch(
      "queue", std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
  std::string err;
  switch (data[0] % 3) {
    case 0: {
      std::unique_ptr<pelinor::cQueue> queue;
      pelinor::fuzz::CheckRoundTrip(
          "queue-out", path,
          [&](const std::string& file) {
            queue = std::make_unique<pelinor::cQueue>();
            return queue->ReadSettings(file, err) && Writable(*queue);
          },
          [&](const std::string& file) {
            return queue->WriteSettings(file, err);
          });
      break;
    }
    case 1: {
      pelinor::cQueueEntry entry;
      pelinor::fuzz::CheckRoundTrip(
          "status-out", path,
          [&](const std::string& file) {
            entry = pelinor::cQueueEntry();
            return entry.ReadSettings(file, err) && Writable(entry);
          },
          [&](const std::string& file) {
            return entry.WriteSettings(file, err);
          });
      break;
    }
    default: {
      pelinor::cQueueEntry entry;
      std::string message;
      if (entry.ReadRejectMessage(message, path, err)) {
        const std::string out = pelinor::fuzz::ScratchPath("reject-out");
        // A message is one line: what was read writes back and reads the
        // same when it has no line end of its own.
        if (message.find_first_of("\r\n") == std::string::npos) {
          pelinor::fuzz::Check(entry.WriteRejectMessage(message, out, err),
                               "writing a reject message failed");
          std::string again;
          pelinor::fuzz::Check(
              entry.ReadRejectMessage(again, out, err) && again == message,
              "a reject message did not read back");
        }
      }
    }
  }
  return 0;
}
