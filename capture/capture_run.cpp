// The capture run. Rules: docs/capture.md; tag files:
// docs/formats/document.md.

#include "pelinor/capture_run.h"

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/field_data.h"
#include "pelinor/file_system.h"
#include "pelinor/format.h"
#include "pelinor/line_data.h"
#include "pelinor/numeric.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/profile.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"
#include "pelinor/settings_snapshot.h"
#include "pelinor/template.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

// A value of `type` is checked against its pattern: it is no amount,
// number, date or postcode.
bool IsPatternType(int32_t type) {
  return !IsAmountType(type) && !IsDateType(type) && type != 5;
}

// The message naming the format a value of `type` must have.
std::string ExpectedFormat(int32_t type, const std::string& pattern) {
  if (type == 4 || type == 200) return "Amount expected, for example 1234.50";
  if (type == 2 || type == 300) return "Number expected, for example 1234.5";
  if (type == 5) return "UK postcode expected, for example SW1A 1AA";
  if (IsDateType(type)) {
    const std::string locale = UCase(ReadServerSetting(kLocaleValue, "GB"));
    if (locale == "US") return "Date expected as mm/dd/yyyy";
    if (locale == "JP") return "Date expected as yyyy/mm/dd";
    return "Date expected as dd/mm/yyyy";
  }
  return "Value does not match the pattern " + pattern;
}

// Checks and cleans one value: a value that passes is normalised in place;
// one that fails is cleaned (formatter, or the pattern with OCR coercion)
// and checked again. `validate` and `format` are the value's own
// Validate() and FormatDataValue(), `format` taking the trace to add to. A
// value that was valid before this capture (`was_valid`, checked again on
// request) and still passes is in its stored form already and is left
// alone: formatting is not meant to be applied twice (a stored date would
// be read in the template's order and could swap day and month; "12345.67"
// read as a comma number loses its point).
//
// The cleaning step adds what it changed to `trace`. `traced` says whether
// that trace starts from `raw`: a pattern check removes blanks before
// cleaning, and then the trace tells only part of the story. `validate`
// takes the trace to add to: a pattern check of a value with blanks
// records the blanks it removed, so that a value it passes is explained
// without being read again.
template <typename Validate, typename Format>
void CheckValue(std::string& value, const std::string& raw, int32_t type,
                const std::string& pattern, bool was_valid, Validate validate,
                Format format, int32_t& status, std::string& message,
                cRepairTrace& trace, bool& traced) {
  const bool pattern_type = IsPatternType(type);
  // Only a check that removes blanks is traced: one of an unspaced value
  // decides on the pattern's matcher alone, which records nothing.
  const bool trace_check =
      pattern_type && value == raw && value.find(' ') != std::string::npos;
  bool valid = validate(trace_check ? &trace : nullptr);
  traced = value == raw || (valid && trace_check);
  cRepairTrace* const steps = traced ? &trace : nullptr;
  if (valid) {
    if (!was_valid) format(steps);
  } else if (pattern_type) {
    std::string cleaned, err;
    valid = ValidatePatternValue(value, pattern, true, cleaned, err, steps);
    if (valid) value = cleaned;
  } else {
    format(steps);
    valid = validate(nullptr);
  }
  // A value under review that still passes as it stands stays under
  // review, message and all: only a person clears that status.
  if (valid && status == kCaptureReviewStatus && value == raw) return;
  status = valid ? 0 : kCaptureInvalidStatus;
  message = valid ? "" : ExpectedFormat(type, pattern);
}

// Runs the cleaning of a value of `type` again on `raw`, quietly, to learn
// the steps that changed it into `result`, for a value whose cleaning did
// not start from `raw`. `date_format` is the format name the
// value's date coercion uses.
void ExplainValue(int32_t type, const std::string& date_format,
                  const std::string& pattern, const std::string& raw,
                  const std::string& result, cRepairTrace& trace) {
  const cQuietFormatLog quiet;
  const cFormat format;
  std::string out;
  if (type == 2 || type == 300) {
    format.FormatNumeric(raw, out, type, &trace);
  } else if (type == 4 || type == 200) {
    format.FormatAmount(raw, out, type, &trace);
  } else if (type == 5) {
    format.FormatPostCode(raw, out, type, &trace);
  } else if (IsDateType(type)) {
    bool ok = false;
    cPatternEngine().CoerceDate(raw, out, date_format, ok, &trace);
  } else {
    // A field's own check may remove spaces first; a value checked as the
    // capture cleans it keeps them. The reading that gives the result is
    // the one that explains it.
    std::string err;
    std::string text = raw;
    // Through the batch's snapshot the engine already loaded for the
    // pattern is used; it evaluates as a new one would.
    const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current();
    const auto evaluate = [&] {
      if (snapshot != nullptr) {
        return EvaluatePattern(text, pattern, true, true, true, false, out, err,
                               "", *snapshot, &trace);
      }
      cPatternEngine engine;
      return EvaluatePatternWith(engine, text, pattern, true, true, true, false,
                                 out, err, "", &trace);
    };
    if (evaluate() && out == result) {
      return;
    }
    trace.Clear();
    ValidatePatternValue(raw, pattern, true, out, err, &trace);
  }
}

// Fills in what the capture did to `c` and, when guesses are reviewed,
// gives a valid value whose steps include one the review status. `trace`
// holds the cleaning's steps, which explain the change when `traced`;
// otherwise the cleaning is run again on the raw value (`date_format`
// gives the format name a date coercion uses).
template <typename DateFormat>
void Explain(cCaptureValue& c, int32_t type, DateFormat date_format,
             const std::string& pattern, const cCaptureOptions& options,
             cRepairTrace& trace, bool traced, int32_t& status,
             std::string& message) {
  c.Changed = c.Result != c.Raw;
  if (!c.Changed || status != 0) return;
  if (!traced) {
    trace.Clear();
    ExplainValue(type, date_format(), pattern, c.Raw, c.Result, trace);
  }
  c.Risk = trace.Highest();
  if (options.ReviewGuess && c.Risk == RiskClass::kGuess) {
    status = kCaptureReviewStatus;
    message = kReviewMessagePrefix + trace.Sentences();
  }
  c.Steps = trace.TakeSteps();
}

// Holds a field's resolution pinned while it lives. A field pinned
// already, for longer, is left to the pin it has.
class PinnedResolution {
 public:
  explicit PinnedResolution(cFieldData& f)
      : f_(f.ResolutionPinned() ? nullptr : &f) {
    if (f_ != nullptr) f_->PinResolution();
  }
  ~PinnedResolution() {
    if (f_ != nullptr) f_->UnpinResolution();
  }
  PinnedResolution(const PinnedResolution&) = delete;
  PinnedResolution& operator=(const PinnedResolution&) = delete;

 private:
  cFieldData* const f_;
};

// PinnedResolution for every field of a document.
class PinnedFields {
 public:
  explicit PinnedFields(const cDocumentData& doc) {
    pinned_.reserve(static_cast<size_t>(doc.Fields.Count()));
    for (const auto& f : doc.Fields) {
      if (f && !f->ResolutionPinned()) {
        f->PinResolution();
        pinned_.push_back(f.get());
      }
    }
  }
  ~PinnedFields() {
    for (cFieldData* f : pinned_) f->UnpinResolution();
  }
  PinnedFields(const PinnedFields&) = delete;
  PinnedFields& operator=(const PinnedFields&) = delete;

 private:
  std::vector<cFieldData*> pinned_;
};

// The line header of the cells named `name`; null when there is none.
const cLineHdrType* CellHeader(const cDocumentData& doc,
                               const std::string& name) {
  for (const auto& h : doc.LineHeaders) {
    if (h && EqualsIgnoreCase(h->Name, name)) return h.get();
  }
  return nullptr;
}

void CaptureValues(cDocumentData& doc, const cCaptureOptions& options,
                   cCaptureReport& report) {
  // Validate() takes the log file name by non-const reference.
  std::string log = options.LogFile;
  size_t values = static_cast<size_t>(doc.Fields.Count());
  for (const auto& row : doc.LineData) {
    if (row) values += static_cast<size_t>(row->colLineItemData.Count());
  }
  report.Values.reserve(values);
  for (const auto& f : doc.Fields) {
    if (!f) continue;
    cCaptureValue c;
    c.Name = f->Name;
    c.Raw = f->value;
    // A value to check was cleaned already: it is in its stored form.
    const bool was_valid = f->Status == 0 || f->Status == kCaptureReviewStatus;
    // Type and pattern resolve over field, template and profile, which the
    // check leaves as they are: resolved once for all its steps.
    const PinnedResolution pinned(*f);
    const int32_t type = f->DataType();
    // Only a pattern type is checked against the pattern.
    const std::string pattern = IsPatternType(type) ? f->Pattern() : "";
    cRepairTrace trace;
    bool traced = false;
    if (doc.Profile && FindNamed(doc.Profile->FieldTypes, f->Name,
                                 &cFieldType::Name) == nullptr) {
      f->Status = kCaptureInvalidStatus;
      f->StatusMessage = kUnknownFieldMessage;
    } else if (!was_valid || options.Recheck) {
      CheckValue(
          f->value, c.Raw, type, pattern, was_valid,
          [&](cRepairTrace* steps) { return f->Validate(log, steps); },
          [&](cRepairTrace* steps) { f->FormatDataValue(steps); }, f->Status,
          f->StatusMessage, trace, traced);
    }
    c.Result = f->value;
    Explain(
        c, type, [&] { return cFormat().FormatDescr(f->DefaultDataType()); },
        pattern, options, trace, traced, f->Status, f->StatusMessage);
    c.Status = f->Status;
    c.Message = f->StatusMessage;
    report.Values.push_back(std::move(c));
  }
  doc.ClearLineHeaders();
  doc.UpdateLineHeaders(doc.Profile, doc.Template);
  int32_t line = 0;
  for (const auto& row : doc.LineData) {
    ++line;
    if (!row) continue;
    bool row_valid = true;
    bool row_invalid = false;
    for (const auto& cell : row->colLineItemData) {
      if (!cell) continue;
      // A cell takes its type, flags and pattern from its line header.
      const cLineHdrType* header = CellHeader(doc, cell->Name);
      if (header != nullptr) {
        cell->DataType = header->DataType;
        cell->Flags = header->DataFlags;
      }
      cCaptureValue c;
      c.Name = "Line " + NumberText(line) + " " + cell->Name;
      c.Raw = cell->value;
      const bool was_valid =
          cell->Status == 0 || cell->Status == kCaptureReviewStatus;
      const std::string pattern = header != nullptr ? header->Pattern : "";
      cRepairTrace trace;
      bool traced = false;
      if (!was_valid || options.Recheck) {
        CheckValue(
            cell->value, c.Raw, cell->DataType, pattern, was_valid,
            [&](cRepairTrace* steps) { return cell->Validate(log, steps); },
            [&](cRepairTrace* steps) { cell->FormatDataValue(log, steps); },
            cell->Status, cell->StatusMessage, trace, traced);
      }
      c.Result = cell->value;
      Explain(
          c, cell->DataType,
          [&] { return cFormat().FormatDescr(cell->DataType); }, pattern,
          options, trace, traced, cell->Status, cell->StatusMessage);
      row_valid = row_valid && cell->Status == 0;
      row_invalid = row_invalid ||
                    (cell->Status != 0 && cell->Status != kCaptureReviewStatus);
      c.Status = cell->Status;
      c.Message = cell->StatusMessage;
      report.Values.push_back(std::move(c));
    }
    if (row_valid) {
      row->Status = 0;
      row->StatusMessage = "";
    } else if (row_invalid) {
      row->Status = kCaptureInvalidStatus;
      row->StatusMessage = kInvalidLineMessage;
    } else {
      row->Status = kCaptureReviewStatus;
      row->StatusMessage = kReviewLineMessage;
    }
  }
  std::string failed;
  std::string to_check;
  int32_t count = 0;
  int32_t review = 0;
  for (const cCaptureValue& c : report.Values) {
    if (c.Status == 0) continue;
    ++count;
    if (c.Status == kCaptureReviewStatus) {
      ++review;
      to_check += (to_check.empty() ? "" : ", ") + c.Name;
    } else {
      failed += (failed.empty() ? "" : ", ") + c.Name;
    }
  }
  const int32_t invalid = count - review;
  if (invalid > 0) {
    doc.Status = kCaptureInvalidStatus;
    doc.StatusMessage =
        NumberText(invalid) +
        (invalid == 1 ? " value is not valid: " : " values are not valid: ") +
        failed;
  } else if (review > 0) {
    doc.Status = kCaptureReviewStatus;
    doc.StatusMessage =
        NumberText(review) +
        (review == 1 ? " value needs checking: " : " values need checking: ") +
        to_check;
  } else {
    doc.Status = 0;
    doc.StatusMessage = "";
  }
  report.Status = doc.Status;
  report.Message = doc.StatusMessage;
  report.InvalidCount = count;
  report.ReviewCount = review;
}

}  // namespace

cCaptureReport CaptureDocument(cDocumentData& doc,
                               const cCaptureOptions& options,
                               const cSettingsSnapshot* settings) {
  cCaptureReport report;
  if (settings != nullptr) {
    const ScopedSettingsSnapshot scope(settings);
    CaptureValues(doc, options, report);
  } else {
    CaptureValues(doc, options, report);
  }
  return report;
}

// ---------------------------------------------------------------------------
// cCaptureRun
// ---------------------------------------------------------------------------

// A profile and template read for one thread at a time: the readers fill
// caches inside them, so threads never share a pair.
struct cCaptureRun::Models {
  std::shared_ptr<cProfile> profile;
  std::shared_ptr<cTemplate> tpl;
};

std::shared_ptr<const cCaptureRun> cCaptureRun::Open(
    const cCaptureRunOptions& options, std::string& strErrMsg) {
  return Open(options, cSettingsSnapshot::Take(), strErrMsg);
}

std::shared_ptr<const cCaptureRun> cCaptureRun::Open(
    const cCaptureRunOptions& options,
    std::shared_ptr<const cSettingsSnapshot> settings, std::string& strErrMsg) {
  strErrMsg.clear();
  if (options.InPlace && !options.OutDir.empty()) {
    strErrMsg = "--out-dir and --in-place cannot be used together";
    return nullptr;
  }
  std::shared_ptr<cCaptureRun> run(new cCaptureRun());
  run->options_ = options;
  run->settings_ = settings ? std::move(settings) : cSettingsSnapshot::Take();
  auto models = run->LoadModels(strErrMsg);
  if (!models) return nullptr;
  run->pool_.push_back(std::move(models));
  return run;
}

std::unique_ptr<cCaptureRun::Models> cCaptureRun::LoadModels(
    std::string& strErrMsg) const {
  auto m = std::make_unique<Models>();
  m->profile = std::make_shared<cProfile>();
  if (!m->profile->ReadSettings(FileStemOf(options_.ProfileFile),
                                options_.ProfileFile, strErrMsg)) {
    return nullptr;
  }
  m->tpl = cTemplate::New();
  m->tpl->Profile = m->profile;
  if (!m->tpl->ReadSettings(options_.TemplateFile, strErrMsg)) return nullptr;
  return m;
}

std::unique_ptr<cCaptureRun::Models> cCaptureRun::Acquire(
    std::string& strErrMsg) const {
  {
    std::lock_guard<std::mutex> lock(pool_mutex_);
    if (!pool_.empty()) {
      auto m = std::move(pool_.back());
      pool_.pop_back();
      return m;
    }
  }
  return LoadModels(strErrMsg);
}

void cCaptureRun::Release(std::unique_ptr<Models> models) const {
  std::lock_guard<std::mutex> lock(pool_mutex_);
  pool_.push_back(std::move(models));
}

cCaptureRun::~cCaptureRun() = default;

std::string cCaptureRun::OutputPath(const std::string& file) const {
  if (options_.InPlace) return file;
  if (options_.OutDir.empty()) return "";
  return JoinPath(options_.OutDir, FileNameOf(file));
}

bool cCaptureRun::CheckOutputs(const std::vector<std::string>& files,
                               std::string& strErrMsg) const {
  strErrMsg.clear();
  if (options_.OutDir.empty()) return true;
  std::map<std::string, const std::string*> seen;
  for (const std::string& file : files) {
    const std::string out = OutputPath(file);
    auto [it, added] = seen.emplace(out, &file);
    if (!added) {
      strErrMsg =
          *it->second + " and " + file + " would both be written to " + out;
      return false;
    }
  }
  return true;
}

cCaptureFileResult cCaptureRun::CaptureFile(const std::string& file) const {
  std::string err;
  std::vector<cCaptureFileResult> results;
  std::unique_ptr<Models> models = Acquire(err);
  CaptureGroup(models.get(), err, {file}, 0, 1, results);
  if (models) Release(std::move(models));
  return std::move(results.front());
}

void cCaptureRun::CaptureGroup(Models* models, const std::string& load_err,
                               const std::vector<std::string>& files,
                               size_t begin, size_t end,
                               std::vector<cCaptureFileResult>& results) const {
  results.clear();
  results.resize(end - begin);
  for (size_t i = begin; i < end; ++i) {
    results[i - begin].File = files[i];
    results[i - begin].Index = i;
  }
  // A thread that could not read the profile or template reports its
  // reader's message for each document it takes.
  if (models == nullptr) {
    for (cCaptureFileResult& r : results) r.Error = load_err;
    return;
  }
  std::vector<std::shared_ptr<cDocumentData>> docs(results.size());
  std::string err;
  for (size_t k = 0; k < docs.size(); ++k) {
    auto doc = cDocumentData::New();
    if (doc->ReadSettings(results[k].File, err)) {
      docs[k] = std::move(doc);
    } else {
      results[k].Error = err;
    }
  }
  // Each document's fields are resolved once for its capture and its
  // write, which stores the data types the fields resolve to.
  std::vector<std::unique_ptr<PinnedFields>> pins(docs.size());
  for (size_t k = 0; k < docs.size(); ++k) {
    if (!docs[k]) continue;
    cDocumentData& doc = *docs[k];
    doc.Profile = models->profile;
    doc.Template = models->tpl;
    pins[k] = std::make_unique<PinnedFields>(doc);
    results[k].Report = CaptureDocument(doc, options_.Capture, settings_.get());
    results[k].Captured = true;
  }
  for (size_t k = 0; k < docs.size(); ++k) {
    cCaptureFileResult& r = results[k];
    const std::string out = OutputPath(r.File);
    if (!docs[k] || out.empty()) continue;
    if (docs[k]->WriteSettingsIfChanged(out, r.Unchanged, err)) {
      r.Written = out;
    } else {
      r.Error = "cannot write " + out + ": " + err;
    }
  }
}

namespace {

// The state a run's threads share, guarded by `mu`. Documents are taken
// a group (kGroupSize documents, fewer at the end) at a time; document i,
// once done, waits in slots[i % slots.size()] until it is handed on. A
// group is only taken while all of it fits below next_emit + slots.size(),
// so no two waiting documents share a slot. Threads are woken only when
// someone waits for what changed, so the common path takes the lock
// without a system call.
struct RunState {
  RunState(size_t window, size_t total)
      : slots(window), ready(window, false), total(total) {}
  std::mutex mu;
  std::condition_variable room;     // workers wait here while ahead
  std::condition_variable emitted;  // the caller waits here for next_emit
  std::vector<cCaptureFileResult> slots;
  std::vector<bool> ready;
  const size_t total;
  size_t next_take = 0;
  size_t next_emit = 0;
  size_t workers_waiting = 0;
  bool caller_waiting = false;
  bool stop = false;

  // The end of the group that starts at next_take.
  // REQUIRES: mu held.
  size_t GroupEnd() const {
    return std::min(total, next_take + cCaptureRun::kGroupSize);
  }
  // REQUIRES: mu held.
  bool CanTake() const {
    return !stop && next_take < total && GroupEnd() <= next_emit + slots.size();
  }
  // REQUIRES: mu held.
  void Store(cCaptureFileResult r) {
    const size_t slot = r.Index % slots.size();
    const bool wanted = r.Index == next_emit;
    slots[slot] = std::move(r);
    ready[slot] = true;
    if (wanted && caller_waiting) emitted.notify_one();
  }
};

}  // namespace

bool cCaptureRun::Run(
    const std::vector<std::string>& files,
    const std::function<bool(const cCaptureFileResult&)>& each) const {
  if (!options_.OutDir.empty()) {
    std::error_code ec;
    std::filesystem::create_directories(options_.OutDir, ec);
  }
  size_t jobs = options_.Jobs > 0
                    ? static_cast<size_t>(options_.Jobs)
                    : std::max(1u, std::thread::hardware_concurrency());
  const size_t total = files.size();
  jobs = std::min(jobs, (total + kGroupSize - 1) / kGroupSize);
  std::string err;
  std::unique_ptr<Models> own = Acquire(err);
  std::vector<cCaptureFileResult> group;
  if (jobs <= 1) {
    bool ok = true;
    for (size_t i = 0; ok && i < total; i += kGroupSize) {
      CaptureGroup(own.get(), err, files, i, std::min(total, i + kGroupSize),
                   group);
      for (const cCaptureFileResult& r : group) {
        if (!(ok = each(r))) break;
      }
    }
    if (own) Release(std::move(own));
    return ok;
  }

  // The calling thread is one of the `jobs` workers; between groups it
  // hands on, in input order, whatever is done. Each thread keeps one
  // profile and template for the whole run, and at most two groups a
  // thread wait to be handed on.
  RunState state(2 * kGroupSize * jobs, total);
  // Takes the next group, captures it without the lock and stores it.
  // REQUIRES: state.mu held through `lock`, state.CanTake().
  const auto take = [&](std::unique_lock<std::mutex>& lock, Models* models,
                        const std::string& load_err,
                        std::vector<cCaptureFileResult>& results) {
    const size_t begin = state.next_take;
    const size_t end = state.GroupEnd();
    state.next_take = end;
    lock.unlock();
    CaptureGroup(models, load_err, files, begin, end, results);
    lock.lock();
    for (cCaptureFileResult& r : results) state.Store(std::move(r));
  };
  auto work = [&] {
    std::string load_err;
    std::unique_ptr<Models> models = Acquire(load_err);
    std::vector<cCaptureFileResult> results;
    std::unique_lock<std::mutex> lock(state.mu);
    for (;;) {
      while (!state.stop && state.next_take < total && !state.CanTake()) {
        ++state.workers_waiting;
        state.room.wait(lock);
        --state.workers_waiting;
      }
      if (!state.CanTake()) break;
      take(lock, models.get(), load_err, results);
    }
    lock.unlock();
    if (models) Release(std::move(models));
  };
  std::vector<std::thread> threads;
  threads.reserve(jobs - 1);
  for (size_t t = 1; t < jobs; ++t) threads.emplace_back(work);

  bool ok = true;
  std::unique_lock<std::mutex> lock(state.mu);
  while (state.next_emit < total) {
    const size_t slot = state.next_emit % state.slots.size();
    if (state.ready[slot]) {
      cCaptureFileResult r = std::move(state.slots[slot]);
      state.ready[slot] = false;
      ++state.next_emit;
      if (state.workers_waiting > 0) state.room.notify_all();
      lock.unlock();
      ok = each(r);
      lock.lock();
      if (!ok) break;
    } else if (state.CanTake()) {
      take(lock, own.get(), err, group);
    } else {
      state.caller_waiting = true;
      state.emitted.wait(lock, [&] { return state.ready[slot]; });
      state.caller_waiting = false;
    }
  }
  state.stop = true;
  state.room.notify_all();
  lock.unlock();
  for (std::thread& t : threads) t.join();
  if (own) Release(std::move(own));
  return ok;
}

// ---------------------------------------------------------------------------
// Inputs
// ---------------------------------------------------------------------------

bool CollectTagFiles(const std::vector<std::string>& inputs,
                     std::vector<std::string>& files, std::string& strErrMsg) {
  namespace fs = std::filesystem;
  strErrMsg.clear();
  bool ok = true;
  for (const std::string& input : inputs) {
    std::error_code ec;
    const fs::file_status st = fs::status(input, ec);
    if (fs::is_directory(st)) {
      std::vector<std::string> found;
      for (fs::recursive_directory_iterator
               it(input, fs::directory_options::skip_permission_denied, ec),
           end;
           !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (name.size() > 4 &&
            EqualsIgnoreCase(name.substr(name.size() - 4), ".tag") &&
            it->is_regular_file(ec)) {
          found.push_back(it->path().string());
        }
      }
      std::sort(found.begin(), found.end());
      files.insert(files.end(), found.begin(), found.end());
    } else if (fs::exists(st)) {
      files.push_back(input);
    } else {
      if (strErrMsg.empty()) strErrMsg = input + ": no such file or directory";
      ok = false;
    }
  }
  return ok;
}

bool ReadFileList(const std::string& path, std::vector<std::string>& files,
                  std::string& strErrMsg) {
  strErrMsg.clear();
  std::ifstream in;
  std::istream* stream = &std::cin;
  if (path != "-") {
    in.open(path, std::ios::binary);
    if (!in) {
      strErrMsg = path + ": cannot read the list of files";
      return false;
    }
    stream = &in;
  }
  std::string line;
  while (std::getline(*stream, line)) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (!line.empty()) files.push_back(line);
  }
  return true;
}

}  // namespace pelinor
