// Entries and record helpers shared by the queue tests.

#ifndef PELINOR_TESTS_QUEUE_QUEUE_FIXTURES_H_
#define PELINOR_TESTS_QUEUE_QUEUE_FIXTURES_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "pelinor/queue.h"
#include "pelinor/queue_entry.h"

namespace pelinor::testing {

inline std::string Show(const std::string& s) { return s; }
inline std::string Show(bool b) { return b ? "true" : "false"; }
inline std::string Show(int32_t n) { return std::to_string(n); }

template <auto Member>
std::string Get(const cQueueEntry& e) {
  return Show(e.*Member);
}

// The 41 items of the entry record, in record order, as texts.
using Getter = std::string (*)(const cQueueEntry&);
using E = cQueueEntry;
inline constexpr Getter kRecordItems[41] = {
    &Get<&E::DocId>,
    &Get<&E::ScannerProfile>,
    &Get<&E::PelinorProfile>,
    &Get<&E::OCRPerformed>,
    &Get<&E::OCRConfidence>,
    &Get<&E::OCRMinConfidence>,
    &Get<&E::TimeScanned>,
    &Get<&E::TimeLastModified>,
    &Get<&E::TemplateIdentified>,
    &Get<&E::PageCount>,
    &Get<&E::LookupScript>,
    &Get<&E::ExportProcess>,
    &Get<&E::TemplateIdentifier>,
    &Get<&E::TemplateType>,
    &Get<&E::TemplateSubType>,
    &Get<&E::TemplateIDX>,
    &Get<&E::TemplateIDY>,
    &Get<&E::TemplateIDWidth>,
    &Get<&E::TemplateIDHeight>,
    &Get<&E::TemplateIDPage>,
    &Get<&E::TemplateIDText>,
    &Get<&E::TemplateDisplayName>,
    &Get<&E::TemplateIDFormat>,
    &Get<&E::TemplateCountry>,
    &Get<&E::ID2X>,
    &Get<&E::ID2Y>,
    &Get<&E::ID2Width>,
    &Get<&E::ID2Height>,
    &Get<&E::ID2Page>,
    &Get<&E::ID2Text>,
    &Get<&E::FieldsOCRExtracted>,
    &Get<&E::DataValid>,
    &Get<&E::ManualCheckNeeded>,
    &Get<&E::ManuallyAccepted>,
    &Get<&E::Priority>,
    &Get<&E::Unpacked>,
    &Get<&E::DepositType>,
    &Get<&E::OCRRequest>,
    &Get<&E::CaptureState>,
    &Get<&E::Reject>,
    &Get<&E::PELINOR_State>,
};

// The entry stored in tests/data/queue/full_entry.status: every property
// differs from its default.
inline cQueueEntry FullEntry() {
  cQueueEntry e;
  e.DocId = "INV0001";
  e.ScannerProfile = "Scanner A";
  e.PelinorProfile = "Invoices";
  e.OCRPerformed = true;
  e.OCRConfidence = 87;
  e.OCRMinConfidence = 42;
  e.TimeScanned = "2024-05-02 09:15:00";
  e.TimeLastModified = "5/3/2024 2:30 PM";
  e.TemplateIdentified = true;
  e.PageCount = 3;
  e.LookupScript = "lookup.vbs";
  e.ExportProcess = "export, csv";
  e.TemplateIdentifier = "ACME01";
  e.TemplateType = "2";
  e.TemplateSubType = "1";
  e.TemplateIDX = "120";
  e.TemplateIDY = "40";
  e.TemplateIDWidth = "300";
  e.TemplateIDHeight = "22";
  e.TemplateIDPage = "1";
  e.TemplateIDText = "ACME \"Ltd\" \\ Co";
  e.TemplateDisplayName = "Acme Caf\xE9";
  e.TemplateIDFormat = "Text";
  e.TemplateCountry = "GB";
  e.ID2X = "10";
  e.ID2Y = "20";
  e.ID2Width = "30";
  e.ID2Height = "40";
  e.ID2Page = "2";
  e.ID2Text = "VAT\\123";
  e.FieldsOCRExtracted = true;
  e.DataValid = -2;
  e.ManualCheckNeeded = true;
  e.ManuallyAccepted = false;
  e.Priority = 5;
  e.Unpacked = true;
  e.DepositType = 3;
  e.OCRRequest = 7;
  e.CaptureState = 8;
  e.Reject = true;
  e.PELINOR_State = 101;
  return e;
}

// The DocIds of a queue's entries, in order.
inline std::vector<std::string> DocIds(const cQueue& q) {
  std::vector<std::string> ids;
  for (const auto& e : q.QueueEntries) ids.push_back(e->DocId);
  return ids;
}

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_QUEUE_QUEUE_FIXTURES_H_
