// Private to queue/: helpers shared by the queue's readers and filters.

#ifndef PELINOR_QUEUE_QUEUE_INTERNAL_H_
#define PELINOR_QUEUE_QUEUE_INTERNAL_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pelinor/data_parser.h"
#include "pelinor/queue.h"
#include "pelinor/text_file.h"

namespace pelinor::queue_internal {

// Reads the first item of `file` as a version text ("ver0.946"). False
// when the item is shorter than 4 characters or the file is empty.
inline bool ReadVersionItem(TextReader& file, float& version) {
  std::string text;
  if (!file.ReadItem(text)) text.clear();
  return ParseVersionNumber(text, version);
}

// Opens one of the queue's files and reads its version item, the first
// step of every queue reader. On failure sets `strErrMsg` to `open_error`
// (the file cannot be opened) or to the invalid-version message, and
// returns false.
inline bool OpenVersioned(const std::string& path, const char* open_error,
                          const char* version_error, TextReader& file,
                          float& version, std::string& strErrMsg) {
  if (!file.Open(path)) {
    strErrMsg = open_error;
    return false;
  }
  if (!ReadVersionItem(file, version)) {
    strErrMsg = version_error;
    return false;
  }
  return true;
}

// Deposit types whose documents are unpacked before capture.
inline bool MustBeUnpacked(const cQueueEntry& e) {
  return e.DepositType == 2 || e.DepositType == 3 || e.DepositType == 4;
}

// The output queue of a filter, created when empty.
inline cQueue& OutputQueue(std::shared_ptr<cQueue>& out) {
  if (!out) out = std::make_shared<cQueue>();
  return *out;
}

// Appends the selected entries, shared, to the output queue, moving the
// references so that no entry is touched again. Selection is finished
// before anything is appended, so the output may be the queue that was
// filtered.
inline void AppendEntries(std::vector<std::shared_ptr<cQueueEntry>>&& selected,
                          std::shared_ptr<cQueue>& out) {
  cQueue& queue = OutputQueue(out);
  for (auto& entry : selected) queue.QueueEntries.Add(std::move(entry));
  selected.clear();
}

}  // namespace pelinor::queue_internal

#endif  // PELINOR_QUEUE_QUEUE_INTERNAL_H_
