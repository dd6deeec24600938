// The queue file, look-up by document identifier, and the selection
// filters of the unpack, capture and export workers.
// Format: docs/formats/queue.md.

#include "pelinor/queue.h"

#include <utility>
#include <vector>

#include "core/block_arena.h"
#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "queue/queue_internal.h"

namespace pelinor {
namespace {

using queue_internal::AppendEntries;
using queue_internal::MustBeUnpacked;
using Entries = std::vector<std::shared_ptr<cQueueEntry>>;

// New documents: not rejected and still in state 0.
bool IsNew(const cQueueEntry& e) { return !e.Reject && e.PELINOR_State == 0; }

template <typename Pred>
void SelectInOrder(const Collection<std::shared_ptr<cQueueEntry>>& entries,
                   Pred admit, std::shared_ptr<cQueue>& out) {
  Entries selected;
  selected.reserve(static_cast<size_t>(entries.Count()));
  for (const auto& entry : entries) {
    if (entry && admit(*entry)) selected.push_back(entry);
  }
  AppendEntries(std::move(selected), out);
}

}  // namespace

bool cQueue::WriteSettings(const std::string& FileName,
                           std::string& strErrMsg) const {
  strErrMsg.clear();
  TextWriter file;
  if (!file.Create(FileName)) {
    strErrMsg = kQueueFileCreateError;
    return false;
  }
  file.WriteItems({kVersionLine});
  file.WriteItems({static_cast<int32_t>(QueueEntries.Count())});
  const cQueueEntry blank;
  for (const auto& entry : QueueEntries) {
    // An empty pointer in the collection is written as a new entry, so the
    // count stays true.
    if (!(entry ? *entry : blank).WriteEntry(file, strErrMsg)) {
      file.Abandon();
      DeleteFileQuietly(FileName);
      return false;
    }
  }
  if (!file.Commit()) {
    DeleteFileQuietly(FileName);
    strErrMsg = kQueueFileWriteError;
    return false;
  }
  return true;
}

bool cQueue::ReadSettings(const std::string& FileName, std::string& strErrMsg) {
  strErrMsg.clear();
  TextReader file;
  float version = 0;
  if (!queue_internal::OpenVersioned(FileName, kQueueFileOpenError,
                                     kQueueInvalidVersion, file, version,
                                     strErrMsg)) {
    return false;
  }
  Version = NumberText(version);
  int32_t count = 0;
  // A negative count reads no entry, as a count of 0 does.
  if (file.AtEnd() || !file.ReadLong(count)) {
    strErrMsg = kQueueFileBadCount;
    return false;
  }
  // The entries share blocks of memory: a queue holds up to a million of
  // them, and one allocation each costs more than reading their items.
  const ArenaAllocator<cQueueEntry> alloc(std::make_shared<BlockArena>());
  for (int32_t i = 0; i < count; ++i) {
    auto entry = std::allocate_shared<cQueueEntry>(alloc);
    if (!entry->ReadEntry(file, version, strErrMsg)) return false;
    QueueEntries.Add(std::move(entry));
  }
  return true;
}

bool cQueue::Find(const std::string& DocId, int32_t& qeoidx,
                  std::shared_ptr<cQueueEntry>& qeo) const {
  int32_t index = 0;
  for (const auto& entry : QueueEntries) {
    ++index;
    if (entry && EqualsIgnoreCase(entry->DocId, DocId)) {
      qeoidx = index;
      qeo = entry;
      return true;
    }
  }
  return false;
}

void cQueue::GetDocumentsToUnpack(std::shared_ptr<cQueue>& QueueOut) const {
  SelectInOrder(
      QueueEntries,
      [](const cQueueEntry& e) {
        return IsNew(e) && MustBeUnpacked(e) && !e.Unpacked;
      },
      QueueOut);
}

void cQueue::GetDocumentsToCapture(std::shared_ptr<cQueue>& QueueOut) const {
  SelectInOrder(
      QueueEntries,
      [](const cQueueEntry& e) {
        return IsNew(e) && (e.Unpacked || !MustBeUnpacked(e));
      },
      QueueOut);
}

void cQueue::FilterToExport(std::shared_ptr<cQueue>& QueueOut) const {
  SelectInOrder(
      QueueEntries, [](const cQueueEntry& e) { return e.PELINOR_State == 3; },
      QueueOut);
}

void cQueueSlots::Clear() {
  Slots.Clear();
  Slots = Collection<std::shared_ptr<cQueueSlot>>();
}

}  // namespace pelinor
