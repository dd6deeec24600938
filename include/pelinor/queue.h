// cQueue: the list of documents waiting in a profile's queue directories,
// one cQueueEntry each, stored in the queue file, and the filters that
// build the queue a given worker should see.
//
// Format and ordering rules: see docs/formats/queue.md.
//
// Filters append to the queue they are given (creating it when empty) the
// same entry objects this queue holds: entries are shared, never copied.
// A filter may be given this queue itself as its output; it selects first
// and appends afterwards. Filters never fail. Every ordering filter sorts
// on keys computed once per entry (O(n log n)) and is stable: entries that
// compare equal keep their order in this queue.
//
// Thread safety: a queue is used by one thread at a time; queues that
// share entries must not be changed from separate threads at once.

#ifndef PELINOR_QUEUE_H_
#define PELINOR_QUEUE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/document_data.h"
#include "pelinor/queue_entry.h"

namespace pelinor {

// Messages of the queue file's reader and writer (besides the entry
// record's own, queue_entry.h).
inline constexpr char kQueueFileOpenError[] = "Unable to open queue file";
inline constexpr char kQueueFileBadCount[] =
    "Error reading queue file. Incorrect parameter";
inline constexpr char kQueueFileCreateError[] = "Unable to create queue file";
inline constexpr char kQueueFileWriteError[] = "Error writing queue file";

// lTimeMode values of the ordering filters: which time text is compared.
inline constexpr int32_t kQueueTimeScanned = 0;
inline constexpr int32_t kQueueTimeLastModified = 1;

// Mode values of PrioritiseRejectedRecords() and the viewable filters.
inline constexpr int32_t kRejectedFirst = 1;  // rejected, then the others
inline constexpr int32_t kRejectedOnly = 2;
inline constexpr int32_t kNotRejectedOnly = 3;

class cQueue {
 public:
  std::string Version;  // version of the file last read, as decimal text
  Collection<std::shared_ptr<cQueueEntry>> QueueEntries;  // file order

  // WriteSettings()
  //
  // Writes the queue file `FileName`: "ver0.946", the number of entries,
  // then each entry's record in collection order. The file replaces any
  // old one only when complete. When an entry (or the file) cannot be
  // written, no file is left at `FileName` and the answer is false with
  // the entry's message (or kQueueFileCreateError / kQueueFileWriteError).
  bool WriteSettings(const std::string& FileName, std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads the queue file `FileName`: the version item (sets `Version`;
  // kQueueInvalidVersion when shorter than 4 characters), the count
  // (kQueueFileBadCount when missing or not a number; a negative count
  // reads as 0), then that many records, each read into a new entry with the
  // file's version and appended to `QueueEntries`. A failing record ends the
  // read with false and its message; the entries read before it stay appended.
  bool ReadSettings(const std::string& FileName, std::string& strErrMsg);

  // Find()
  //
  // The first entry whose DocId equals `DocId` ignoring case (Windows-1252)
  // and its one-based position. False, outputs untouched, when none does.
  bool Find(const std::string& DocId, int32_t& qeoidx,
            std::shared_ptr<cQueueEntry>& qeo) const;

  // GetDocumentsToUnpack()
  //
  // In queue order, the entries not rejected, in state 0, with DepositType
  // 2, 3 or 4 and not yet Unpacked.
  void GetDocumentsToUnpack(std::shared_ptr<cQueue>& QueueOut) const;

  // GetDocumentsToCapture()
  //
  // In queue order, the entries not rejected, in state 0, that are
  // Unpacked or have a DepositType other than 2, 3 and 4.
  void GetDocumentsToCapture(std::shared_ptr<cQueue>& QueueOut) const;

  // FilterToExport()
  //
  // In queue order, the entries in state 3.
  void FilterToExport(std::shared_ptr<cQueue>& QueueOut) const;

  // PrioritiseRejectedRecords()
  //
  // Mode kRejectedFirst: the rejected entries, then the others, each part
  // in queue order; kRejectedOnly: the rejected ones; kNotRejectedOnly:
  // the others. Any other mode leaves `QueueOut` as it was (an empty one
  // is still created).
  void PrioritiseRejectedRecords(int32_t Mode,
                                 std::shared_ptr<cQueue>& QueueOut) const;

  // PrioritiseViewableDocuments()
  //
  // The documents a person can open: state 0 and not waiting to be
  // unpacked. `Mode` splits them as in PrioritiseRejectedRecords(); each
  // part runs most processed first (docs/formats/queue.md), oldest first
  // by the time that `lTimeMode` selects.
  void PrioritiseViewableDocuments(int32_t Mode,
                                   std::shared_ptr<cQueue>& QueueOut,
                                   int32_t lTimeMode) const;

  // PrioritiseViewableDeferredDocuments()
  //
  // The documents put aside in one of the profile's own states (100 to
  // 199) and not waiting to be unpacked. `Mode` splits them as in
  // PrioritiseRejectedRecords(); each part is ordered by state, then
  // oldest first by TimeScanned.
  void PrioritiseViewableDeferredDocuments(
      int32_t Mode, std::shared_ptr<cQueue>& QueueOut) const;

  // PrioritisePELINORStates()
  //
  // The entries whose PELINOR_State is `Mode`, least processed first,
  // oldest first by TimeScanned.
  void PrioritisePELINORStates(int32_t Mode,
                               std::shared_ptr<cQueue>& QueueOut) const;

  // PrioritiseOldestLeastProcessed()
  //
  // Every entry: not identified, then identified, then extracted; within a
  // level oldest first by the time that `lTimeMode` selects, entries
  // without a date after dated ones.
  void PrioritiseOldestLeastProcessed(std::shared_ptr<cQueue>& QueueOut,
                                      int32_t lTimeMode) const;

  // PrioritiseOldestMostProcessed()
  //
  // Every entry: extracted, then identified, then not identified; within a
  // level as in PrioritiseOldestLeastProcessed().
  void PrioritiseOldestMostProcessed(std::shared_ptr<cQueue>& QueueOut,
                                     int32_t lTimeMode) const;
};

// cQueueSlot: one document's data paired with its queue entry while a
// client works on it. A new slot holds a new document and a new entry; the
// slot releases both when it goes.
class cQueueSlot {
 public:
  std::shared_ptr<cDocumentData> DocumentData = cDocumentData::New();
  std::shared_ptr<cQueueEntry> QueueEntry = std::make_shared<cQueueEntry>();
};

// cQueueSlots: the open slots.
class cQueueSlots {
 public:
  Collection<std::shared_ptr<cQueueSlot>> Slots;

  // Clear()
  //
  // Removes every slot, from the last to the first, and starts a new empty
  // collection.
  void Clear();
};

}  // namespace pelinor

#endif  // PELINOR_QUEUE_H_
