// Bindings of the work queue: entries, the queue file and its filters,
// and the slots that pair a document with its entry.
//
// Filters answer a queue holding the same entry objects as this one: a
// change made to an entry through either queue is seen through both.

#include "pelinor/queue.h"
#include "pelinor/queue_entry.h"
#include "python/binding_util.h"

namespace pelinor::python {
namespace {

template <typename T>
using Shared = py::class_<T, std::shared_ptr<T>>;

// A filter void F(QueueOut&, ...) as (QueueOut=None, ...) -> cQueue: the
// given queue is appended to; a new one is made when None.
std::shared_ptr<cQueue> Out(std::shared_ptr<cQueue> q) {
  return q ? q : std::make_shared<cQueue>();
}

}  // namespace

void BindQueue(py::module_& m) {
  m.attr("kQueueTimeScanned") = kQueueTimeScanned;
  m.attr("kQueueTimeLastModified") = kQueueTimeLastModified;
  m.attr("kRejectedFirst") = kRejectedFirst;
  m.attr("kRejectedOnly") = kRejectedOnly;
  m.attr("kNotRejectedOnly") = kNotRejectedOnly;

  Shared<cQueueEntry> e(m, "cQueueEntry",
                        "The status record of one captured document in the "
                        "work queue.");
  e.def(py::init<>());
  IntMembers(e, {{"OCRRequest", &cQueueEntry::OCRRequest},
                 {"CaptureState", &cQueueEntry::CaptureState},
                 {"Priority", &cQueueEntry::Priority},
                 {"DepositType", &cQueueEntry::DepositType},
                 {"OCRConfidence", &cQueueEntry::OCRConfidence},
                 {"OCRMinConfidence", &cQueueEntry::OCRMinConfidence},
                 {"PageCount", &cQueueEntry::PageCount},
                 {"DataValid", &cQueueEntry::DataValid},
                 {"PELINOR_State", &cQueueEntry::PELINOR_State},
                 {"Slot", &cQueueEntry::Slot}});
  TextMembers(e, {{"DocId", &cQueueEntry::DocId},
                  {"ScannerProfile", &cQueueEntry::ScannerProfile},
                  {"PelinorProfile", &cQueueEntry::PelinorProfile},
                  {"TimeScanned", &cQueueEntry::TimeScanned},
                  {"TimeLastModified", &cQueueEntry::TimeLastModified},
                  {"LookupScript", &cQueueEntry::LookupScript},
                  {"ExportProcess", &cQueueEntry::ExportProcess},
                  {"TemplateIdentifier", &cQueueEntry::TemplateIdentifier},
                  {"TemplateType", &cQueueEntry::TemplateType},
                  {"TemplateSubType", &cQueueEntry::TemplateSubType},
                  {"TemplateIDX", &cQueueEntry::TemplateIDX},
                  {"TemplateIDY", &cQueueEntry::TemplateIDY},
                  {"TemplateIDWidth", &cQueueEntry::TemplateIDWidth},
                  {"TemplateIDHeight", &cQueueEntry::TemplateIDHeight},
                  {"TemplateIDPage", &cQueueEntry::TemplateIDPage},
                  {"TemplateIDText", &cQueueEntry::TemplateIDText},
                  {"ID2X", &cQueueEntry::ID2X},
                  {"ID2Y", &cQueueEntry::ID2Y},
                  {"ID2Width", &cQueueEntry::ID2Width},
                  {"ID2Height", &cQueueEntry::ID2Height},
                  {"ID2Page", &cQueueEntry::ID2Page},
                  {"ID2Text", &cQueueEntry::ID2Text},
                  {"ID2Identifier", &cQueueEntry::ID2Identifier},
                  {"TemplateDisplayName", &cQueueEntry::TemplateDisplayName},
                  {"TemplateIDFormat", &cQueueEntry::TemplateIDFormat},
                  {"TemplateCountry", &cQueueEntry::TemplateCountry},
                  {"Version", &cQueueEntry::Version}});
  e.def_readwrite("Unpacked", &cQueueEntry::Unpacked)
      .def_readwrite("OCRPerformed", &cQueueEntry::OCRPerformed)
      .def_readwrite("TemplateIdentified", &cQueueEntry::TemplateIdentified)
      .def_readwrite("FieldsOCRExtracted", &cQueueEntry::FieldsOCRExtracted)
      .def_readwrite("ManualCheckNeeded", &cQueueEntry::ManualCheckNeeded)
      .def_readwrite("ManuallyAccepted", &cQueueEntry::ManuallyAccepted)
      .def_readwrite("Reject", &cQueueEntry::Reject)
      .def_readwrite("dtTimeScanned", &cQueueEntry::dtTimeScanned,
                     "TimeScanned as a serial date (days from 1899-12-30).")
      .def_readwrite("dtTimeLastModified", &cQueueEntry::dtTimeLastModified)
      .def(
          "ReadSettings",
          [](cQueueEntry& q, const Path& file) {
            std::string err;
            Check(q.ReadSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Reads the queue status file. Raises pelinor.Error with the "
          "library's message; the items read before stay set.")
      .def(
          "WriteSettings",
          [](const cQueueEntry& q, const Path& file) {
            std::string err;
            // A record that cannot be written answers true with a message
            // and no file left: a failure all the same.
            Check(q.WriteSettings(file.bytes, err) && err.empty(), err);
          },
          py::arg("FileName"),
          "Writes the queue status file, replacing any old one only when "
          "complete. Raises pelinor.Error with no file left on failure.")
      .def(
          "WriteRejectMessage",
          [](const cQueueEntry& q, const Text& msg, const Path& file) {
            std::string err;
            Check(q.WriteRejectMessage(msg.bytes, file.bytes, err), err);
          },
          py::arg("strMsg"), py::arg("FileName"),
          "Writes the reject message file (one line of message).")
      .def(
          "ReadRejectMessage",
          [](cQueueEntry& q, const Path& file) {
            std::string msg, err;
            Check(q.ReadRejectMessage(msg, file.bytes, err), err);
            return Text{msg};
          },
          py::arg("FileName"),
          "The message of the reject message file; raises pelinor.Error.")
      .def(
          "Copy",
          [](const cQueueEntry& q) {
            std::shared_ptr<cQueueEntry> target;
            q.Copy(target);
            return target;
          },
          "A new entry with every property of this one.");
  e.def("__repr__", [](const cQueueEntry& x) {
    return py::str("<cQueueEntry DocId={!r} PELINOR_State={} Reject={}>")
        .format(DecodeCp1252(x.DocId), x.PELINOR_State, x.Reject);
  });
  BindCollection<std::shared_ptr<cQueueEntry>>(m, "QueueEntryCollection",
                                               "A one-based list of entries.");

  Shared<cQueue> q(m, "cQueue",
                   "The documents waiting in a profile's queue and the "
                   "filters that build the queue a worker should see. Each "
                   "filter appends to `QueueOut` (a new queue when None) "
                   "and answers it; entries are shared, never copied.");
  q.def(py::init<>());
  TextMember(q, "Version", &cQueue::Version);
  q.def_readonly("QueueEntries", &cQueue::QueueEntries)
      .def(
          "ReadSettings",
          [](cQueue& x, const Path& file) {
            std::string err;
            Check(x.ReadSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Reads the queue file, appending its entries. Raises "
          "pelinor.Error with the library's message; the entries read "
          "before the failing record stay.")
      .def(
          "WriteSettings",
          [](const cQueue& x, const Path& file) {
            std::string err;
            Check(x.WriteSettings(file.bytes, err), err);
          },
          py::arg("FileName"),
          "Writes the queue file; raises pelinor.Error with no file left on "
          "failure.")
      .def(
          "Find",
          [](const cQueue& x, const Text& id)
              -> std::optional<
                  std::tuple<int32_t, std::shared_ptr<cQueueEntry>>> {
            int32_t idx = 0;
            std::shared_ptr<cQueueEntry> found;
            if (!x.Find(id.bytes, idx, found)) return std::nullopt;
            return std::make_tuple(idx, found);
          },
          py::arg("DocId"),
          "(one-based index, entry) of the first entry with DocId "
          "(ignoring case), or None.")
      .def(
          "GetDocumentsToUnpack",
          [](const cQueue& x, std::shared_ptr<cQueue> out) {
            out = Out(out);
            x.GetDocumentsToUnpack(out);
            return out;
          },
          py::arg("QueueOut") = nullptr,
          "The entries not rejected, in state 0, with DepositType 2, 3 or 4 "
          "and not yet Unpacked.")
      .def(
          "GetDocumentsToCapture",
          [](const cQueue& x, std::shared_ptr<cQueue> out) {
            out = Out(out);
            x.GetDocumentsToCapture(out);
            return out;
          },
          py::arg("QueueOut") = nullptr,
          "The entries not rejected, in state 0, that are Unpacked or have "
          "a DepositType other than 2, 3 and 4.")
      .def(
          "FilterToExport",
          [](const cQueue& x, std::shared_ptr<cQueue> out) {
            out = Out(out);
            x.FilterToExport(out);
            return out;
          },
          py::arg("QueueOut") = nullptr, "The entries in state 3.")
      .def(
          "PrioritiseRejectedRecords",
          [](const cQueue& x, int32_t mode, std::shared_ptr<cQueue> out) {
            out = Out(out);
            x.PrioritiseRejectedRecords(mode, out);
            return out;
          },
          py::arg("Mode"), py::arg("QueueOut") = nullptr,
          "kRejectedFirst: rejected then the others; kRejectedOnly; "
          "kNotRejectedOnly.")
      .def(
          "PrioritiseViewableDocuments",
          [](const cQueue& x, int32_t mode, std::shared_ptr<cQueue> out,
             int32_t time_mode) {
            out = Out(out);
            x.PrioritiseViewableDocuments(mode, out, time_mode);
            return out;
          },
          py::arg("Mode"), py::arg("QueueOut") = nullptr,
          py::arg("lTimeMode") = kQueueTimeScanned,
          "The documents a person can open, most processed first, oldest "
          "first by the time `lTimeMode` selects.")
      .def(
          "PrioritiseViewableDeferredDocuments",
          [](const cQueue& x, int32_t mode, std::shared_ptr<cQueue> out) {
            out = Out(out);
            x.PrioritiseViewableDeferredDocuments(mode, out);
            return out;
          },
          py::arg("Mode"), py::arg("QueueOut") = nullptr,
          "The documents put aside in states 100 to 199, by state, then "
          "oldest first.")
      .def(
          "PrioritisePELINORStates",
          [](const cQueue& x, int32_t mode, std::shared_ptr<cQueue> out) {
            out = Out(out);
            x.PrioritisePELINORStates(mode, out);
            return out;
          },
          py::arg("Mode"), py::arg("QueueOut") = nullptr,
          "The entries whose PELINOR_State is `Mode`, least processed "
          "first, oldest first.")
      .def(
          "PrioritiseOldestLeastProcessed",
          [](const cQueue& x, std::shared_ptr<cQueue> out, int32_t time_mode) {
            out = Out(out);
            x.PrioritiseOldestLeastProcessed(out, time_mode);
            return out;
          },
          py::arg("QueueOut") = nullptr,
          py::arg("lTimeMode") = kQueueTimeScanned,
          "Every entry: not identified, identified, extracted; oldest "
          "first within a level.")
      .def(
          "PrioritiseOldestMostProcessed",
          [](const cQueue& x, std::shared_ptr<cQueue> out, int32_t time_mode) {
            out = Out(out);
            x.PrioritiseOldestMostProcessed(out, time_mode);
            return out;
          },
          py::arg("QueueOut") = nullptr,
          py::arg("lTimeMode") = kQueueTimeScanned,
          "Every entry: extracted, identified, not identified; oldest first "
          "within a level.");

  Shared<cQueueSlot>(m, "cQueueSlot",
                     "A document's data paired with its queue entry.")
      .def(py::init<>())
      .def_readwrite("DocumentData", &cQueueSlot::DocumentData)
      .def_readwrite("QueueEntry", &cQueueSlot::QueueEntry);
  BindCollection<std::shared_ptr<cQueueSlot>>(m, "QueueSlotCollection",
                                              "A one-based list of slots.");
  Shared<cQueueSlots>(m, "cQueueSlots", "The open slots.")
      .def(py::init<>())
      .def_readonly("Slots", &cQueueSlots::Slots)
      .def("Clear", &cQueueSlots::Clear, "Removes every slot, last first.");
}

}  // namespace pelinor::python
