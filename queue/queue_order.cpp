// The queue's ordering filters: the order in which a worker or a person
// should see the entries. The rules are described in docs/formats/queue.md
// ("Orders").
//
// Every filter computes one key per admitted entry, sorts the keys with
// std::stable_sort (so equal keys keep queue order) and appends the
// entries in that order: O(n log n) for a queue of n entries.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "pelinor/date_text.h"
#include "pelinor/queue.h"
#include "queue/queue_internal.h"

namespace pelinor {
namespace {

using queue_internal::AppendEntries;
using queue_internal::MustBeUnpacked;
using Entries = std::vector<std::shared_ptr<cQueueEntry>>;

// How far capture has got with an entry: 0 not identified, 1 template
// identified, 2 fields extracted.
int32_t ProcessingLevel(const cQueueEntry& e) {
  if (e.FieldsOCRExtracted) return 2;
  return e.TemplateIdentified ? 1 : 0;
}

// A person can open the document: its files are not still packed.
bool IsOpenable(const cQueueEntry& e) {
  return e.Unpacked || !MustBeUnpacked(e);
}

// The profile's own document states, in which documents are put aside.
bool IsDeferredState(int32_t state) { return state >= 100 && state <= 199; }

// The sort key of one admitted entry. Undated entries carry an infinite
// time, so they follow the dated ones and keep queue order among
// themselves. Keys are small and trivially copied; the entries themselves
// are not touched again once their keys are made.
struct Key {
  double time;      // serial date of the compared time, or infinity
  int32_t rank;     // what sorts before the time (part, state, level)
  uint32_t chosen;  // position in Ordering::chosen
};

bool KeyLess(const Key& a, const Key& b) {
  if (a.rank != b.rank) return a.rank < b.rank;
  return a.time < b.time;
}

// The serial date of the time text `lTimeMode` selects, or infinity.
double TimeKey(const cQueueEntry& e, int32_t lTimeMode) {
  const std::string& text =
      lTimeMode == kQueueTimeLastModified ? e.TimeLastModified : e.TimeScanned;
  double serial = 0;
  if (text.empty() || !ParseDateText(text, serial)) {
    return std::numeric_limits<double>::infinity();
  }
  return serial;
}

// The admitted entries, taken in queue order, and their keys.
class Ordering {
 public:
  // Room for every entry of `queue` is reserved at once: untouched room
  // costs nothing, and growing would copy everything taken so far.
  explicit Ordering(const cQueue& queue) {
    const auto n = static_cast<size_t>(queue.QueueEntries.Count());
    keys_.reserve(n);
    chosen_.reserve(n);
  }

  void Admit(const std::shared_ptr<cQueueEntry>& entry, int32_t rank,
             double time) {
    keys_.push_back({time, rank, static_cast<uint32_t>(chosen_.size())});
    chosen_.push_back(entry);
  }

  // Sorts stably and appends the entries in key order to `out`, which may
  // be the queue they were taken from.
  void AppendTo(std::shared_ptr<cQueue>& out) {
    std::stable_sort(keys_.begin(), keys_.end(), KeyLess);
    cQueue& queue = queue_internal::OutputQueue(out);
    for (const Key& key : keys_) {
      queue.QueueEntries.Add(std::move(chosen_[key.chosen]));
    }
  }

 private:
  std::vector<Key> keys_;
  Entries chosen_;
};

// The group of an entry under a rejected-records mode: the part it goes to
// (0 first, 1 second), or -1 when the mode leaves it out.
int32_t RejectedGroup(int32_t mode, const cQueueEntry& e) {
  switch (mode) {
    case kRejectedFirst:
      return e.Reject ? 0 : 1;
    case kRejectedOnly:
      return e.Reject ? 0 : -1;
    case kNotRejectedOnly:
      return e.Reject ? -1 : 1;
    default:
      return -1;
  }
}

bool IsRejectedMode(int32_t mode) {
  return mode == kRejectedFirst || mode == kRejectedOnly ||
         mode == kNotRejectedOnly;
}

}  // namespace

void cQueue::PrioritiseRejectedRecords(
    int32_t Mode, std::shared_ptr<cQueue>& QueueOut) const {
  queue_internal::OutputQueue(QueueOut);
  if (!IsRejectedMode(Mode)) return;
  Entries selected;
  selected.reserve(static_cast<size_t>(QueueEntries.Count()));
  for (int32_t part = 0; part <= 1; ++part) {
    for (const auto& entry : QueueEntries) {
      if (entry && RejectedGroup(Mode, *entry) == part) {
        selected.push_back(entry);
      }
    }
  }
  AppendEntries(std::move(selected), QueueOut);
}

void cQueue::PrioritiseViewableDocuments(int32_t Mode,
                                         std::shared_ptr<cQueue>& QueueOut,
                                         int32_t lTimeMode) const {
  queue_internal::OutputQueue(QueueOut);
  if (!IsRejectedMode(Mode)) return;
  Ordering order(*this);
  for (const auto& entry : QueueEntries) {
    if (!entry || entry->PELINOR_State != 0 || !IsOpenable(*entry)) continue;
    const int32_t part = RejectedGroup(Mode, *entry);
    if (part < 0) continue;
    // Most processed first: the level counts down within a part.
    order.Admit(entry, part * 4 + (2 - ProcessingLevel(*entry)),
                TimeKey(*entry, lTimeMode));
  }
  order.AppendTo(QueueOut);
}

void cQueue::PrioritiseViewableDeferredDocuments(
    int32_t Mode, std::shared_ptr<cQueue>& QueueOut) const {
  queue_internal::OutputQueue(QueueOut);
  if (!IsRejectedMode(Mode)) return;
  Ordering order(*this);
  for (const auto& entry : QueueEntries) {
    if (!entry || !IsDeferredState(entry->PELINOR_State) ||
        !IsOpenable(*entry)) {
      continue;
    }
    const int32_t part = RejectedGroup(Mode, *entry);
    if (part < 0) continue;
    // States lie within 100-199, so one number orders part, then state.
    order.Admit(entry, part * 1000 + entry->PELINOR_State,
                TimeKey(*entry, kQueueTimeScanned));
  }
  order.AppendTo(QueueOut);
}

void cQueue::PrioritisePELINORStates(int32_t Mode,
                                     std::shared_ptr<cQueue>& QueueOut) const {
  Ordering order(*this);
  for (const auto& entry : QueueEntries) {
    if (!entry || entry->PELINOR_State != Mode) continue;
    order.Admit(entry, ProcessingLevel(*entry),
                TimeKey(*entry, kQueueTimeScanned));
  }
  order.AppendTo(QueueOut);
}

void cQueue::PrioritiseOldestLeastProcessed(std::shared_ptr<cQueue>& QueueOut,
                                            int32_t lTimeMode) const {
  Ordering order(*this);
  for (const auto& entry : QueueEntries) {
    if (!entry) continue;
    order.Admit(entry, ProcessingLevel(*entry), TimeKey(*entry, lTimeMode));
  }
  order.AppendTo(QueueOut);
}

void cQueue::PrioritiseOldestMostProcessed(std::shared_ptr<cQueue>& QueueOut,
                                           int32_t lTimeMode) const {
  Ordering order(*this);
  for (const auto& entry : QueueEntries) {
    if (!entry) continue;
    order.Admit(entry, 2 - ProcessingLevel(*entry), TimeKey(*entry, lTimeMode));
  }
  order.AppendTo(QueueOut);
}

}  // namespace pelinor
