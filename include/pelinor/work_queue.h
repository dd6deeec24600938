// cWorkQueue: the work queue of one capture profile driving documents from
// scanning to export. Scanning in reads batches of pages, splits them into
// documents (batch_splitter.h), extracts fields and line items and queues
// each document; capture workers take the documents waiting for capture,
// clean them with the capture run (capture_run.h) and move them on; export
// writes the validated documents and marks them exported.
//
// Files, all in the profile's local queue directory (docs/workflow.md):
// "<DocId>.tag" (document tag file), "<DocId>.status" (queue status file),
// "<DocId>.reject" (reject message file), "queue.txt" (queue file), and
// the lock files "queue.lock" and "claims.lock". Formats:
// docs/formats/document.md and docs/formats/queue.md.
//
// Several processes may work on one queue at once. A worker claims a
// document (cDocumentClaims) and checks the document's status file under
// the claim, so no two workers
// capture one document; the kernel drops the lock of a worker that dies,
// leaving the document claimable again. The status files are the record
// of each document's progress; the queue file lists every document and
// is brought up to date from them under "queue.lock".
//
// Thread safety: Capture() runs its own worker threads; the other members
// are used by one thread at a time. Separate objects (and processes) may
// work on the same directory at once.

#ifndef PELINOR_WORK_QUEUE_H_
#define PELINOR_WORK_QUEUE_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "pelinor/profile.h"
#include "pelinor/queue_entry.h"

namespace pelinor {

// Document states (PELINOR_State) the work queue sets. The profile's own
// states (100 to 199) and its InvalidState are used as they are.
inline constexpr int32_t kStateToCapture = 0;
inline constexpr int32_t kStateReadyForExport = 3;
inline constexpr int32_t kStateExported = 4;

// CaptureState values: how far the capture step got.
inline constexpr int32_t kCaptureNotDone = 0;
inline constexpr int32_t kCaptureDone = 1;

// DataValid values.
inline constexpr int32_t kDataNotChecked = 0;
inline constexpr int32_t kDataValid = 1;
inline constexpr int32_t kDataInvalid = 2;

// Reject messages.
inline constexpr char kRejectNoTemplate[] =
    "No template was identified for the document";
inline constexpr char kRejectTemplateMissing[] = "Template file not found: ";
inline constexpr char kRejectTagUnreadable[] =
    "The document tag file cannot be read: ";

// One document scanned in.
struct cScanInResult {
  std::string Batch;           // the batch it came from
  std::string DocId;           // "" when the batch could not be read
  std::vector<int32_t> Pages;  // one-based pages of the batch
  std::string Template;        // template name, "" when unidentified
  int32_t Fields = 0;          // fields with a value (0 when not read)
  int32_t Rows = 0;            // line items (0 when not read)
  bool Queued = false;         // false: already queued, or an error
  // Queued by an earlier scan (its status file exists): left as it is and
  // nothing read for it; Error is "already queued".
  bool AlreadyQueued = false;
  std::string Error;  // why it was not queued
};

// One document a worker handled.
struct cWorkResult {
  std::string DocId;
  int32_t Status = 0;  // the document's status after capture
  std::string Message;
  int32_t State = 0;  // the new PELINOR_State
  bool Rejected = false;
  std::string Error;  // a file that could not be written
};

struct cWorkSummary {
  int32_t Candidates = 0;  // entries GetDocumentsToCapture selected
  int32_t Captured = 0;    // valid and invalid ones
  int32_t Valid = 0;
  int32_t Rejected = 0;
  int32_t Skipped = 0;  // claimed by another worker, or done meanwhile
  int32_t Errors = 0;
};

struct cExportSummary {
  int32_t Documents = 0;
  int32_t Rows = 0;
};

struct cScanInOptions {
  std::string Language = "eng";  // OCR languages
  int32_t Dpi = 300;             // images and TSV without their own
  int32_t MaxPages = 2000;       // per batch
};

class cWorkQueue {
 public:
  // Open()
  //
  // Reads the profile file (its name is the file's stem) and finds its
  // directories: QueueDirLocal and TemplateDir, each as given when
  // absolute, else beside the profile file when it exists there, else
  // beside the profile's folder. The queue directory is created when
  // missing. Null with `strErrMsg` set when the profile cannot be read,
  // names no local queue directory, or the directory cannot be made.
  static std::unique_ptr<cWorkQueue> Open(const std::string& profile_file,
                                          std::string& strErrMsg);

  const std::string& Dir() const { return dir_; }
  const std::string& TemplateDir() const { return template_dir_; }
  const std::shared_ptr<cProfile>& Profile() const { return profile_; }

  std::string QueueFile() const;
  std::string TagFile(const std::string& doc_id) const;
  std::string StatusFile(const std::string& doc_id) const;
  std::string RejectFile(const std::string& doc_id) const;

  // ScanIn()
  //
  // Reads each batch (a page file of any kind the page reader takes, or a
  // directory whose files are read in name order as one batch), splits it
  // into documents, and queues each as "<batch stem>-NNNN": tag file
  // with the values as read, status file in state 0, entry appended to
  // the queue file. A document whose status file exists already is left
  // alone (a re-run queues nothing twice). `each` sees every document.
  // False with `strErrMsg` set when the templates or the queue file
  // cannot be read or written; a batch that cannot be read is reported
  // through `each` and the others go on.
  bool ScanIn(const std::vector<std::string>& batches,
              const cScanInOptions& options,
              const std::function<void(const cScanInResult&)>& each,
              std::string& strErrMsg);

  // Capture()
  //
  // Captures every document that GetDocumentsToCapture() selects from the
  // queue file, oldest and least processed first
  // (PrioritiseOldestLeastProcessed), with `jobs` threads (at least 1).
  // Each document is claimed, checked again against its status file,
  // captured and written, then its entry moves on: state
  // kStateReadyForExport when every value is valid, else the profile's
  // InvalidState; a document that cannot be processed is rejected with a
  // reject message file. `each` is called (from the worker threads, one
  // call at a time) for every document handled. False with `strErrMsg`
  // set when the queue file cannot be read or written.
  bool Capture(int32_t jobs,
               const std::function<void(const cWorkResult&)>& each,
               cWorkSummary& summary, std::string& strErrMsg);

  // Export()
  //
  // Writes the documents in state kStateReadyForExport to `out` ("csv" or
  // "json", docs/workflow.md), then marks them kStateExported. `out` must
  // not exist. False with `strErrMsg` set when it exists, the format is
  // unknown, or a file cannot be read or written (nothing is marked then).
  bool Export(const std::string& format, const std::string& out,
              cExportSummary& summary, std::string& strErrMsg);

  // Refresh()
  //
  // Brings the queue file up to date from the status files (a worker that
  // died before writing the queue file leaves it behind them). False with
  // `strErrMsg` set when the queue file cannot be read or written.
  bool Refresh(std::string& strErrMsg);

 private:
  cWorkQueue() = default;
  // Replaces, under the queue lock, the entries of the queue file with
  // the same DocId by `entries`; entries not yet listed are appended.
  bool Update(const std::vector<std::shared_ptr<cQueueEntry>>& entries,
              std::string& strErrMsg);

  std::string profile_file_;
  std::shared_ptr<cProfile> profile_;
  std::string dir_;
  std::string template_dir_;
};

// cDocumentClaims: the claims workers take on documents of one queue
// directory, as one-byte locks (open file description locks) in its file
// "claims.lock", at an offset computed from the DocId (62 bits of its
// FNV-1a hash, ignoring case). The kernel drops a claim with its
// descriptor, so a process that dies leaves nothing to clean up, and no
// file is made or removed per document. Any client that changes a queued
// document (a validation program, say) takes the same claim first.
//
// Thread safety: one object per thread; claims of separate objects (in
// one process or several) exclude each other.
class cDocumentClaims {
 public:
  cDocumentClaims() = default;
  ~cDocumentClaims();
  cDocumentClaims(const cDocumentClaims&) = delete;
  cDocumentClaims& operator=(const cDocumentClaims&) = delete;

  // Open()
  //
  // Opens (creating) "claims.lock" in `queue_dir`; false when it cannot.
  bool Open(const std::string& queue_dir);

  // TryClaim()
  //
  // Claims `doc_id` without waiting: false when another object holds it.
  // REQUIRES: Open() succeeded.
  bool TryClaim(const std::string& doc_id) { return Set(doc_id, true); }

  // Release()
  //
  // Gives up the claim on `doc_id`.
  void Release(const std::string& doc_id) { Set(doc_id, false); }

  // Offset()
  //
  // The byte of "claims.lock" that stands for `doc_id`.
  static int64_t Offset(const std::string& doc_id);

 private:
  bool Set(const std::string& doc_id, bool claim);
  int fd_ = -1;
};

// NowText()
//
// The current local time as "yyyy-mm-dd hh:mm:ss".
std::string NowText();

}  // namespace pelinor

#endif  // PELINOR_WORK_QUEUE_H_
