// cQueueEntry: the status record of one captured document in the work
// queue, with its queue status file and its reject message file.
//
// Formats: see docs/formats/queue.md.
//
// The entry is a plain value: every property is a public data member with
// its documented default. Readers and writers report failures as a Boolean
// and a fixed English message in `strErrMsg`; nothing is thrown.
//
// Thread safety: an entry is used by one thread at a time. Queues share
// entries (std::shared_ptr) between a queue and the queues its filters
// build, so a change made through one queue is seen through the others.

#ifndef PELINOR_QUEUE_ENTRY_H_
#define PELINOR_QUEUE_ENTRY_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/date_text.h"
#include "pelinor/text_file.h"

namespace pelinor {

// Messages of the queue entry's readers and writers.
inline constexpr char kQueueInvalidVersion[] = "Invalid version number";
inline constexpr char kQueueEntryBadItem[] =
    "Error reading queue entry. Incorrect parameter";
inline constexpr char kQueueEntryPastEnd[] =
    "Error reading queue entry. Input past end of file";
inline constexpr char kQueueEntryWriteError[] = "Error writing queue entry";
inline constexpr char kStatusFileOpenError[] =
    "Unable to open queue status file";
inline constexpr char kStatusFileCreateError[] =
    "Unable to create queue status file";
inline constexpr char kStatusFileWriteError[] =
    "Error writing queue status file";
inline constexpr char kRejectFileOpenError[] =
    "Unable to open reject message file";
inline constexpr char kRejectFileCreateError[] =
    "Unable to create reject message file";
inline constexpr char kRejectFileWriteError[] =
    "Error writing reject message file";
inline constexpr char kRejectFilePastEnd[] =
    "Error reading reject message file. Input past end of file";

class cQueueEntry {
 public:
  int32_t OCRRequest = 0;    // OCR requested code
  int32_t CaptureState = 0;  // capture processing state
  int32_t Priority = -1;
  int32_t DepositType = 1;  // how the document entered the queue
  bool Unpacked = false;    // the document's files are unpacked
  std::string DocId;
  std::string ScannerProfile;
  std::string PelinorProfile;
  bool OCRPerformed = false;
  int32_t OCRConfidence = 0;
  int32_t OCRMinConfidence = 0;
  std::string TimeScanned;       // see dtTimeScanned
  std::string TimeLastModified;  // see dtTimeLastModified
  bool TemplateIdentified = false;
  int32_t PageCount = 0;
  std::string LookupScript;
  std::string ExportProcess;
  std::string TemplateIdentifier = "0";
  std::string TemplateType = "0";
  std::string TemplateSubType = "0";
  std::string TemplateIDX;
  std::string TemplateIDY;
  std::string TemplateIDWidth;
  std::string TemplateIDHeight;
  std::string TemplateIDPage;
  std::string TemplateIDText;  // stored escaped (EscapeQuotes)
  std::string ID2X;
  std::string ID2Y;
  std::string ID2Width;
  std::string ID2Height;
  std::string ID2Page;
  std::string ID2Text;        // stored escaped (EscapeQuotes)
  std::string ID2Identifier;  // not stored in the status file
  std::string TemplateDisplayName;
  std::string TemplateIDFormat;
  std::string TemplateCountry;
  bool FieldsOCRExtracted = false;
  int32_t DataValid = 0;
  bool ManualCheckNeeded = false;
  bool ManuallyAccepted = false;
  std::string Version;  // version of the file last read, as decimal text
  bool Reject = false;
  int32_t PELINOR_State = 0;  // document state (the profile's states)
  int32_t Slot = 0;           // queue slot number; not stored
  // The two times as serial dates (date_text.h); set by the readers when
  // the time texts hold recognised dates.
  double dtTimeScanned = kZeroDate;
  double dtTimeLastModified = kZeroDate;

  // WriteSettings()
  //
  // Writes the queue status file `FileName`: the version line "ver0.946"
  // and the entry record. The file replaces any old one only when it is
  // complete. When the record itself cannot be written, the status file is
  // deleted (no file is left at `FileName`), `strErrMsg` holds the
  // record's message and the result is still true; every other failure
  // (the file cannot be created, the version line or the final replacement
  // fails) answers false with a message and leaves no file at `FileName`.
  bool WriteSettings(const std::string& FileName, std::string& strErrMsg) const;

  // WriteEntry()
  //
  // Writes the 41-item entry record as one quoted-item line to `hFile`.
  // TemplateIDText and ID2Text go through EscapeQuotes(). False with
  // kQueueEntryWriteError when `hFile` is not open or has failed.
  bool WriteEntry(TextWriter& hFile, std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads the queue status file `FileName`: the version item (at least 4
  // characters, else kQueueInvalidVersion), which sets `Version`, then
  // the record with ReadEntry().
  bool ReadSettings(const std::string& FileName, std::string& strErrMsg);

  // ReadEntry()
  //
  // Reads one entry record of the layout that version `sVer` wrote (21 to
  // 41 items, see docs/formats/queue.md) from `hFile` in item mode. Then
  // unescapes TemplateIDText and ID2Text and sets dtTimeScanned and
  // dtTimeLastModified from the time texts that hold dates (the others
  // keep their dates). A missing item fails with kQueueEntryPastEnd, a
  // number or Boolean item of another form with kQueueEntryBadItem; the
  // items read before stay set. `Slot`, `ID2Identifier` and `Version` are
  // not touched.
  bool ReadEntry(TextReader& hFile, float sVer, std::string& strErrMsg);

  // WriteRejectMessage()
  //
  // Writes the reject message file `FileName`: the line "ver0.946" and the
  // line `strMsg`, both as they stand. A message is one line: whatever
  // follows its first line break is not read back.
  bool WriteRejectMessage(const std::string& strMsg,
                          const std::string& FileName,
                          std::string& strErrMsg) const;

  // ReadRejectMessage()
  //
  // Reads the reject message file `FileName`: the version item (sets
  // `Version`; kQueueInvalidVersion when shorter than 4 characters), then
  // the whole next line into `strMsg` (kRejectFilePastEnd when there is
  // none).
  bool ReadRejectMessage(std::string& strMsg, const std::string& FileName,
                         std::string& strErrMsg);

  // Copy()
  //
  // Copies every property of this entry, the unstored ones included, into
  // `qeoTarget`, creating it when empty.
  void Copy(std::shared_ptr<cQueueEntry>& qeoTarget) const;
};

}  // namespace pelinor

#endif  // PELINOR_QUEUE_ENTRY_H_
