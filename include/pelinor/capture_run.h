// The capture run: the main job over whole documents. Every field and
// every line-item cell of a document is validated for its data type
// (amount, number, date, postcode or pattern), cleaned where the OCR text
// allows, and given a status and a message; rows and the document get a
// status from their values. The rules are in docs/capture.md.
//
// CaptureDocument() works on a document in memory; cCaptureRun reads,
// captures and writes tag files (format: docs/formats/document.md), one
// after another or on several threads, reporting in input order.
//
// Re-running is safe: a value whose status is already 0 is left as it is
// unless `Recheck` is set, a date that already reads as a date in the
// locale's order is never read again in another order, and a value under
// review that still passes stays under review, so capturing a captured
// document gives the same bytes; a file that already holds them is not
// replaced at all.
//
// Thread safety: CaptureDocument() may run on several threads at once for
// separate documents; a profile and template are only read, but they are
// not documented as safe to share, so cCaptureRun gives each thread its
// own pair. A cCaptureRun is immutable after Open() apart from that
// internal pool; Run() and CaptureFile() may be called from several
// threads at once.

#ifndef PELINOR_CAPTURE_RUN_H_
#define PELINOR_CAPTURE_RUN_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "pelinor/repair_trace.h"
#include "pelinor/settings_snapshot.h"

namespace pelinor {

class cDocumentData;
class cProfile;
class cTemplate;

// The status of a value, row or document that failed validation.
inline constexpr int32_t kCaptureInvalidStatus = 2;
// The message of a row with an invalid cell.
inline constexpr char kInvalidLineMessage[] =
    "A value of the line is not valid";
// The message of a field whose name the profile has no field type for: its
// data type and pattern are unknown, so its value cannot be called valid.
inline constexpr char kUnknownFieldMessage[] =
    "The profile has no field type for this field";
// The status of a value whose repairs include a guess, when the capture
// reviews guesses (cCaptureOptions::ReviewGuess), and of a row or document
// whose values are valid but include such a value. Its message is
// kReviewMessagePrefix followed by the steps' sentences.
inline constexpr int32_t kCaptureReviewStatus = 3;
inline constexpr char kReviewMessagePrefix[] = "Check: ";
inline constexpr char kReviewLineMessage[] =
    "A value of the line needs checking";

// What a capture does besides its rules.
struct cCaptureOptions {
  // Check values whose status is already 0 again.
  bool Recheck = false;
  // The pattern evaluation log ("" for none). Lines of documents captured
  // on several threads may interleave.
  std::string LogFile;
  // Give a value whose repairs include a guess (docs/repair-trace.md)
  // kCaptureReviewStatus instead of 0, so that a person checks it.
  bool ReviewGuess = false;
};

// One checked value.
struct cCaptureValue {
  std::string Name;  // the field's name, or "Line 2 Quantity" for a cell
  std::string Raw;   // the value before the capture
  std::string Result;
  int32_t Status = 0;
  std::string Message;
  // Whether this capture changed the value, the steps that changed it
  // and the highest of their classes (kNone when none).
  bool Changed = false;
  std::vector<cRepairStep> Steps;
  RiskClass Risk = RiskClass::kNone;
};

// The outcome of capturing one document.
struct cCaptureReport {
  std::vector<cCaptureValue> Values;  // fields, then cells row by row
  int32_t Status = 0;                 // the document's new status
  std::string Message;                // and message
  int32_t InvalidCount = 0;           // values with a status other than 0
  int32_t ReviewCount = 0;            // of them, values to check
};

// CaptureDocument()
//
// Captures `doc` with its Profile and Template: fields in order, then the
// line headers are rebuilt from profile and template and each cell gets
// its header's data type and flags and is captured; each row and the
// document get status 0 when all their values are valid, else
// kCaptureInvalidStatus with kInvalidLineMessage, or "N value(s) is/are not
// valid: " and the names. With ReviewGuess, a row or document whose values
// are valid but include values to check gets kCaptureReviewStatus with
// kReviewLineMessage, or "N value(s) need(s) checking: " and the names. With
// `settings` no registry value and no file is read for a value (the thread's
// ScopedSettingsSnapshot is set for the call); without, the per-call rules
// apply. REQUIRES: doc.Profile is set (doc.Template may be null).
cCaptureReport CaptureDocument(cDocumentData& doc,
                               const cCaptureOptions& options,
                               const cSettingsSnapshot* settings);

// The run's inputs.
struct cCaptureRunOptions {
  std::string ProfileFile;
  std::string TemplateFile;
  cCaptureOptions Capture;
  // Where captured files go: `OutDir` (created when missing) keeps each
  // file's name; `InPlace` rewrites the input; neither writes nothing.
  std::string OutDir;
  bool InPlace = false;
  // Documents captured at once; 0 means the number of cores.
  int32_t Jobs = 1;
};

// One document of a run.
struct cCaptureFileResult {
  size_t Index = 0;        // position in the input list
  std::string File;        // the input
  std::string Written;     // the file written, "" for none
  bool Unchanged = false;  // `Written` held these bytes already: untouched
  std::string Error;       // "file: message" when it was not read or written
  bool Captured = false;   // the document was read and captured
  cCaptureReport Report;
};

class cCaptureRun {
 public:
  // Documents are read, captured and written a group at a time: each
  // thread reads a group's files, then captures them one after another,
  // then writes them. The capture's code and data stay in the processor's
  // caches across a group instead of being pushed out by the file system's
  // work between documents, which on a disk halves its time.
  static constexpr size_t kGroupSize = 16;

  // Open()
  //
  // Takes a settings snapshot (cSettingsSnapshot::Take()), reads the
  // profile and template, and checks the options: "--out-dir and
  // --in-place cannot be used together", or the reader's message. Null on
  // failure with `strErrMsg` set.
  static std::shared_ptr<const cCaptureRun> Open(
      const cCaptureRunOptions& options, std::string& strErrMsg);

  // Open() with a given snapshot instead of a fresh one.
  static std::shared_ptr<const cCaptureRun> Open(
      const cCaptureRunOptions& options,
      std::shared_ptr<const cSettingsSnapshot> settings,
      std::string& strErrMsg);

  ~cCaptureRun();

  const cCaptureRunOptions& Options() const { return options_; }
  const cSettingsSnapshot& Settings() const { return *settings_; }

  // OutputPath()
  //
  // Where the document read from `file` is written: `file` itself in
  // place, OutDir joined with its file name, or "" when nothing is written.
  std::string OutputPath(const std::string& file) const;

  // CheckOutputs()
  //
  // With OutDir, two inputs with the same file name would write one file:
  // false with `strErrMsg` naming both ("a.tag and b/a.tag would both be
  // written to out/a.tag"). Call before Run(); nothing is written here.
  bool CheckOutputs(const std::vector<std::string>& files,
                    std::string& strErrMsg) const;

  // CaptureFile()
  //
  // Reads `file`, captures it with a private copy of the profile and
  // template and writes OutputPath(file) through a temporary file, unless
  // that file already holds exactly these bytes (`Unchanged`).
  cCaptureFileResult CaptureFile(const std::string& file) const;

  // Run()
  //
  // Captures `files` on Options().Jobs threads (no more than there are
  // groups of kGroupSize), the calling thread being one of them (one job
  // starts no thread), and calls `each` on the calling thread for every
  // file, in input order, once it and all before it are done. Results of
  // at most two groups a thread wait to be handed on, so a run of any
  // length needs little memory. Returns false when `each` returns false
  // (the run stops after the groups already started).
  bool Run(const std::vector<std::string>& files,
           const std::function<bool(const cCaptureFileResult&)>& each) const;

 private:
  struct Models;

  cCaptureRun() = default;
  std::unique_ptr<Models> LoadModels(std::string& strErrMsg) const;
  // Captures files[begin, end) into `results` with `models`, which the
  // caller holds for itself, in three passes: every document read, then
  // every one captured, then every one written. With `models` null each
  // result carries `load_err`.
  void CaptureGroup(Models* models, const std::string& load_err,
                    const std::vector<std::string>& files, size_t begin,
                    size_t end, std::vector<cCaptureFileResult>& results) const;
  // A profile and template no other thread is using: from the pool, or
  // read now when every pair is in use.
  std::unique_ptr<Models> Acquire(std::string& strErrMsg) const;
  void Release(std::unique_ptr<Models> models) const;

  cCaptureRunOptions options_;
  std::shared_ptr<const cSettingsSnapshot> settings_;
  mutable std::mutex pool_mutex_;
  mutable std::vector<std::unique_ptr<Models>> pool_;
};

// CollectTagFiles()
//
// The documents named by `inputs`: a file as given, a directory's "*.tag"
// files at any depth in name order. False with `strErrMsg` set for an
// input that does not exist; the others are still collected.
bool CollectTagFiles(const std::vector<std::string>& inputs,
                     std::vector<std::string>& files, std::string& strErrMsg);

// ReadFileList()
//
// Adds the lines of `path` ("-" for standard input) to `files`, blank
// lines and a trailing CR left out. False when the list cannot be read.
bool ReadFileList(const std::string& path, std::vector<std::string>& files,
                  std::string& strErrMsg);

}  // namespace pelinor

#endif  // PELINOR_CAPTURE_RUN_H_
