// The queue status file, the entry record it shares with the queue file,
// and the reject message file. Format: docs/formats/queue.md.

#include "pelinor/queue_entry.h"

#include <iterator>
#include <utility>

#include "pelinor/data_parser.h"
#include "pelinor/date_text.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "queue/queue_internal.h"

namespace pelinor {
namespace {

// One item of the entry record and the property it holds.
struct RecordItem {
  enum Kind { kText, kEscapedText, kBool, kLong } kind;
  std::string cQueueEntry::*text;
  bool cQueueEntry::*flag;
  int32_t cQueueEntry::*number;
};

constexpr RecordItem Text(std::string cQueueEntry::*m) {
  return {RecordItem::kText, m, nullptr, nullptr};
}
constexpr RecordItem Escaped(std::string cQueueEntry::*m) {
  return {RecordItem::kEscapedText, m, nullptr, nullptr};
}
constexpr RecordItem Flag(bool cQueueEntry::*m) {
  return {RecordItem::kBool, nullptr, m, nullptr};
}
constexpr RecordItem Number(int32_t cQueueEntry::*m) {
  return {RecordItem::kLong, nullptr, nullptr, m};
}

// The record as version 0.946 writes it.
using E = cQueueEntry;
constexpr RecordItem kRecord[] = {
    Text(&E::DocId),                // 1
    Text(&E::ScannerProfile),       // 2
    Text(&E::PelinorProfile),       // 3
    Flag(&E::OCRPerformed),         // 4
    Number(&E::OCRConfidence),      // 5
    Number(&E::OCRMinConfidence),   // 6
    Text(&E::TimeScanned),          // 7
    Text(&E::TimeLastModified),     // 8
    Flag(&E::TemplateIdentified),   // 9
    Number(&E::PageCount),          // 10
    Text(&E::LookupScript),         // 11
    Text(&E::ExportProcess),        // 12
    Text(&E::TemplateIdentifier),   // 13
    Text(&E::TemplateType),         // 14
    Text(&E::TemplateSubType),      // 15
    Text(&E::TemplateIDX),          // 16
    Text(&E::TemplateIDY),          // 17
    Text(&E::TemplateIDWidth),      // 18
    Text(&E::TemplateIDHeight),     // 19
    Text(&E::TemplateIDPage),       // 20
    Escaped(&E::TemplateIDText),    // 21
    Text(&E::TemplateDisplayName),  // 22
    Text(&E::TemplateIDFormat),     // 23
    Text(&E::TemplateCountry),      // 24
    Text(&E::ID2X),                 // 25
    Text(&E::ID2Y),                 // 26
    Text(&E::ID2Width),             // 27
    Text(&E::ID2Height),            // 28
    Text(&E::ID2Page),              // 29
    Escaped(&E::ID2Text),           // 30
    Flag(&E::FieldsOCRExtracted),   // 31
    Number(&E::DataValid),          // 32
    Flag(&E::ManualCheckNeeded),    // 33
    Flag(&E::ManuallyAccepted),     // 34
    Number(&E::Priority),           // 35
    Flag(&E::Unpacked),             // 36
    Number(&E::DepositType),        // 37
    Number(&E::OCRRequest),         // 38
    Number(&E::CaptureState),       // 39
    Flag(&E::Reject),               // 40
    Number(&E::PELINOR_State),      // 41
};
static_assert(std::size(kRecord) == 41);

// The record of an older version: runs of the items above, one-based and
// inclusive, in file order.
struct Layout {
  float since;  // the oldest version writing this layout
  int runs[2][2];
};

// Newest first; the first layout whose version the file reaches applies,
// the last one to everything older.
constexpr Layout kLayouts[] = {
    {0.946f, {{1, 41}, {1, 0}}}, {0.941f, {{1, 39}, {1, 0}}},
    {0.94f, {{1, 38}, {1, 0}}},  {0.92f, {{1, 36}, {1, 0}}},
    {0.919f, {{1, 37}, {1, 0}}}, {0.916f, {{1, 36}, {1, 0}}},
    {0.914f, {{1, 34}, {1, 0}}}, {0.912f, {{1, 21}, {25, 30}}},
    {0.0f, {{1, 21}, {1, 0}}},
};

const Layout& LayoutFor(float version) {
  for (const Layout& layout : kLayouts) {
    if (version >= layout.since) return layout;
  }
  return kLayouts[std::size(kLayouts) - 1];
}

bool NeedsEscaping(const std::string& text) {
  return text.find_first_of("\"\\") != std::string::npos;
}

}  // namespace

bool cQueueEntry::WriteSettings(const std::string& FileName,
                                std::string& strErrMsg) const {
  strErrMsg.clear();
  TextWriter file;
  if (!file.Create(FileName)) {
    strErrMsg = kStatusFileCreateError;
    return false;
  }
  file.WriteItems({kVersionLine});
  if (!WriteEntry(file, strErrMsg)) {
    // The record's message stays in strErrMsg; the answer is still true.
    file.Abandon();
    DeleteFileQuietly(FileName);
    return true;
  }
  if (!file.Commit()) {
    DeleteFileQuietly(FileName);
    strErrMsg = kStatusFileWriteError;
    return false;
  }
  return true;
}

bool cQueueEntry::WriteEntry(TextWriter& hFile, std::string& strErrMsg) const {
  strErrMsg.clear();
  if (!hFile.IsOpen() || !hFile.ok()) {
    strErrMsg = kQueueEntryWriteError;
    return false;
  }
  // One buffer per thread serves every record: writing a million-entry
  // queue then costs no allocation per line.
  thread_local std::string line;
  thread_local std::string escaped;
  line.clear();
  bool first = true;
  for (const RecordItem& item : kRecord) {
    if (!first) line.push_back(',');
    first = false;
    switch (item.kind) {
      case RecordItem::kText:
        ItemValue(this->*item.text).AppendTo(line);
        break;
      case RecordItem::kEscapedText:
        if (NeedsEscaping(this->*item.text)) {
          escaped = this->*item.text;
          EscapeQuotes(escaped);
          ItemValue(escaped).AppendTo(line);
        } else {
          ItemValue(this->*item.text).AppendTo(line);
        }
        break;
      case RecordItem::kBool:
        ItemValue(this->*item.flag).AppendTo(line);
        break;
      case RecordItem::kLong:
        ItemValue(this->*item.number).AppendTo(line);
        break;
    }
  }
  hFile.WriteLine(line);
  if (!hFile.ok()) {
    strErrMsg = kQueueEntryWriteError;
    return false;
  }
  return true;
}

bool cQueueEntry::ReadSettings(const std::string& FileName,
                               std::string& strErrMsg) {
  strErrMsg.clear();
  TextReader file;
  float version = 0;
  if (!queue_internal::OpenVersioned(FileName, kStatusFileOpenError,
                                     kQueueInvalidVersion, file, version,
                                     strErrMsg)) {
    return false;
  }
  Version = NumberText(version);
  return ReadEntry(file, version, strErrMsg);
}

bool cQueueEntry::ReadEntry(TextReader& hFile, float sVer,
                            std::string& strErrMsg) {
  strErrMsg.clear();
  const Layout& layout = LayoutFor(sVer);
  for (const auto& run : layout.runs) {
    for (int i = run[0]; i <= run[1]; ++i) {
      const RecordItem& item = kRecord[i - 1];
      if (hFile.AtEnd()) {
        strErrMsg = kQueueEntryPastEnd;
        return false;
      }
      bool ok = true;
      switch (item.kind) {
        case RecordItem::kText:
        case RecordItem::kEscapedText:
          ok = hFile.ReadItem(this->*item.text);
          break;
        case RecordItem::kBool:
          ok = hFile.ReadBool(this->*item.flag);
          break;
        case RecordItem::kLong:
          ok = hFile.ReadLong(this->*item.number);
          break;
      }
      if (!ok) {
        strErrMsg = kQueueEntryBadItem;
        return false;
      }
    }
  }
  // UnescapeQuotes() changes nothing in a text without a backslash.
  if (TemplateIDText.find('\\') != std::string::npos) {
    UnescapeQuotes(TemplateIDText);
  }
  if (ID2Text.find('\\') != std::string::npos) UnescapeQuotes(ID2Text);
  ParseDateText(TimeScanned, dtTimeScanned);
  ParseDateText(TimeLastModified, dtTimeLastModified);
  return true;
}

bool cQueueEntry::WriteRejectMessage(const std::string& strMsg,
                                     const std::string& FileName,
                                     std::string& strErrMsg) const {
  strErrMsg.clear();
  TextWriter file;
  if (!file.Create(FileName)) {
    strErrMsg = kRejectFileCreateError;
    return false;
  }
  file.WriteLine(kVersionLine);
  file.WriteLine(strMsg);
  if (!file.Commit()) {
    DeleteFileQuietly(FileName);
    strErrMsg = kRejectFileWriteError;
    return false;
  }
  return true;
}

bool cQueueEntry::ReadRejectMessage(std::string& strMsg,
                                    const std::string& FileName,
                                    std::string& strErrMsg) {
  strErrMsg.clear();
  TextReader file;
  float version = 0;
  if (!queue_internal::OpenVersioned(FileName, kRejectFileOpenError,
                                     kQueueInvalidVersion, file, version,
                                     strErrMsg)) {
    return false;
  }
  Version = NumberText(version);
  std::string line;
  if (!file.ReadLine(line)) {
    strErrMsg = kRejectFilePastEnd;
    return false;
  }
  strMsg = std::move(line);
  return true;
}

void cQueueEntry::Copy(std::shared_ptr<cQueueEntry>& qeoTarget) const {
  if (!qeoTarget) qeoTarget = std::make_shared<cQueueEntry>();
  if (qeoTarget.get() != this) *qeoTarget = *this;
}

}  // namespace pelinor
