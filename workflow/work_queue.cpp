// cWorkQueue: scan-in, capture workers and export over a profile's queue
// directory. Files written: document tag files (docs/formats/document.md),
// queue status, reject message and queue files (docs/formats/queue.md) and
// the export files of docs/workflow.md.

#include "pelinor/work_queue.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>
#include <unordered_map>

#include "pelinor/batch_splitter.h"
#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/field_data.h"
#include "pelinor/file_system.h"
#include "pelinor/line_data.h"
#include "pelinor/numeric.h"
#include "pelinor/page_extractor.h"
#include "pelinor/page_reader.h"
#include "pelinor/queue.h"
#include "pelinor/settings_snapshot.h"
#include "pelinor/template.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor {
namespace {

namespace fs = std::filesystem;

// An exclusive flock on a lock file, released (with the descriptor) when
// the object goes or the process dies.
class FileLock {
 public:
  FileLock() = default;
  ~FileLock() { Unlock(); }
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  // Blocks until the lock is held; false when the file cannot be opened.
  bool Lock(const std::string& path) {
    Unlock();
    fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd_ < 0) return false;
    int rc;
    do {
      rc = ::flock(fd_, LOCK_EX);
    } while (rc != 0 && errno == EINTR);
    if (rc != 0) Unlock();
    return fd_ >= 0;
  }
  void Unlock() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
  }

 private:
  int fd_ = -1;
};

std::string StemOf(const std::string& path) {
  fs::path p(path);
  while (!p.empty() && !p.has_filename()) p = p.parent_path();
  return p.stem().string();
}

// A profile directory setting: as given when absolute, else beside the
// profile file when it exists there, else beside the profile's folder.
std::string Resolve(const std::string& setting, const std::string& profile_file,
                    bool must_exist_beside) {
  const fs::path dir(setting);
  if (dir.is_absolute()) return dir.string();
  const fs::path here = fs::absolute(profile_file).parent_path();
  std::error_code ec;
  if (fs::is_directory(here / dir, ec) || !must_exist_beside) {
    return (here / dir).lexically_normal().string();
  }
  return (here.parent_path() / dir).lexically_normal().string();
}

std::string Upper(const std::string& s) { return UCase(s); }

bool ReadQueue(const std::string& file, cQueue& q, std::string& strErrMsg) {
  if (!FileExists(file)) return true;
  return q.ReadSettings(file, strErrMsg);
}

// The page files of a batch directory, in name order.
std::vector<std::string> PageFiles(const std::string& dir) {
  std::vector<std::string> files;
  std::error_code ec;
  for (fs::directory_iterator it(dir, ec), end; !ec && it != end;
       it.increment(ec)) {
    if (it->is_regular_file(ec)) files.push_back(it->path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

int32_t CountValues(const cDocumentData& doc) {
  int32_t n = 0;
  for (const auto& f : doc.Fields) n += f && !f->value.empty() ? 1 : 0;
  return n;
}

// The templates of a worker, read once each by name.
class TemplateCache {
 public:
  TemplateCache(std::string dir, std::shared_ptr<cProfile> profile)
      : dir_(std::move(dir)), profile_(std::move(profile)) {}
  std::shared_ptr<cTemplate> Get(const std::string& name, std::string& err) {
    auto it = cache_.find(Upper(name));
    if (it != cache_.end()) return it->second;
    auto tpl = cTemplate::New();
    tpl->Profile = profile_;
    const std::string file = JoinPath(dir_, name + ".tpl");
    if (!FileExists(file) || !tpl->ReadSettings(file, err)) {
      if (err.empty()) err = kRejectTemplateMissing + file;
      return nullptr;
    }
    cache_[Upper(name)] = tpl;
    return tpl;
  }

 private:
  std::string dir_;
  std::shared_ptr<cProfile> profile_;
  std::map<std::string, std::shared_ptr<cTemplate>> cache_;
};

std::string CsvItem(const std::string& s) {
  std::string out = "\"";
  for (char c : Windows1252ToUtf8(s)) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
  return out;
}

std::string JsonText(const std::string& s) {
  std::string out = "\"";
  for (char c : Windows1252ToUtf8(s)) {
    const unsigned char b = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      out.push_back('\\');
      out.push_back(c);
    } else if (b < 0x20) {
      static const char* hex = "0123456789abcdef";
      out += "\\u00";
      out.push_back(hex[b >> 4]);
      out.push_back(hex[b & 15]);
    } else {
      out.push_back(c);
    }
  }
  out.push_back('"');
  return out;
}

}  // namespace

cDocumentClaims::~cDocumentClaims() {
  if (fd_ >= 0) ::close(fd_);
}

bool cDocumentClaims::Open(const std::string& queue_dir) {
  if (fd_ >= 0) ::close(fd_);
  fd_ = ::open(JoinPath(queue_dir, "claims.lock").c_str(),
               O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  return fd_ >= 0;
}

int64_t cDocumentClaims::Offset(const std::string& doc_id) {
  uint64_t h = 1469598103934665603ull;
  for (char c : UCase(doc_id)) {
    h ^= static_cast<unsigned char>(c);
    h *= 1099511628211ull;
  }
  return static_cast<int64_t>(h >> 2);
}

bool cDocumentClaims::Set(const std::string& doc_id, bool claim) {
  if (fd_ < 0) return false;
  struct flock fl {};
  fl.l_type = claim ? F_WRLCK : F_UNLCK;
  fl.l_whence = SEEK_SET;
  fl.l_start = static_cast<off_t>(Offset(doc_id));
  fl.l_len = 1;
  int rc;
  do {
    rc = ::fcntl(fd_, F_OFD_SETLK, &fl);
  } while (rc != 0 && errno == EINTR);
  return rc == 0;
}

std::string NowText() {
  const std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  char buf[32];
  std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M:%S", &tm);
  return buf;
}

std::unique_ptr<cWorkQueue> cWorkQueue::Open(const std::string& profile_file,
                                             std::string& strErrMsg) {
  strErrMsg.clear();
  std::unique_ptr<cWorkQueue> q(new cWorkQueue());
  q->profile_file_ = profile_file;
  q->profile_ = std::make_shared<cProfile>();
  if (!q->profile_->ReadSettings(StemOf(profile_file), profile_file,
                                 strErrMsg)) {
    strErrMsg = profile_file + ": " + strErrMsg;
    return nullptr;
  }
  if (Trim(q->profile_->QueueDirLocal).empty()) {
    strErrMsg = profile_file +
                ": the profile names no local queue directory (QueueDirLocal)";
    return nullptr;
  }
  q->dir_ = Resolve(q->profile_->QueueDirLocal, profile_file, true);
  q->template_dir_ = Resolve(q->profile_->TemplateDir, profile_file, true);
  std::error_code ec;
  fs::create_directories(q->dir_, ec);
  if (!fs::is_directory(q->dir_, ec)) {
    strErrMsg = "Cannot create the queue directory " + q->dir_;
    return nullptr;
  }
  return q;
}

std::string cWorkQueue::QueueFile() const {
  return JoinPath(dir_, "queue.txt");
}
std::string cWorkQueue::TagFile(const std::string& id) const {
  return JoinPath(dir_, id + ".tag");
}
std::string cWorkQueue::StatusFile(const std::string& id) const {
  return JoinPath(dir_, id + ".status");
}
std::string cWorkQueue::RejectFile(const std::string& id) const {
  return JoinPath(dir_, id + ".reject");
}

bool cWorkQueue::Update(
    const std::vector<std::shared_ptr<cQueueEntry>>& entries,
    std::string& strErrMsg) {
  if (entries.empty()) return true;
  FileLock lock;
  if (!lock.Lock(JoinPath(dir_, "queue.lock"))) {
    strErrMsg = "Cannot lock " + JoinPath(dir_, "queue.lock");
    return false;
  }
  cQueue q;
  if (!ReadQueue(QueueFile(), q, strErrMsg)) {
    strErrMsg = QueueFile() + ": " + strErrMsg;
    return false;
  }
  std::unordered_map<std::string, int32_t> at;
  at.reserve(static_cast<size_t>(q.QueueEntries.Count()) * 2);
  for (int32_t i = 1; i <= q.QueueEntries.Count(); ++i) {
    at.emplace(Upper(q.QueueEntries.Item(i)->DocId), i);
  }
  cQueue out;
  std::vector<std::shared_ptr<cQueueEntry>> all;
  for (const auto& e : q.QueueEntries) all.push_back(e);
  for (const auto& e : entries) {
    auto it = at.find(Upper(e->DocId));
    if (it == at.end()) {
      at.emplace(Upper(e->DocId), static_cast<int32_t>(all.size() + 1));
      all.push_back(e);
    } else {
      all[static_cast<size_t>(it->second - 1)] = e;
    }
  }
  for (auto& e : all) out.QueueEntries.Add(e);
  if (!out.WriteSettings(QueueFile(), strErrMsg)) {
    strErrMsg = QueueFile() + ": " + strErrMsg;
    return false;
  }
  return true;
}

bool cWorkQueue::Refresh(std::string& strErrMsg) {
  strErrMsg.clear();
  cQueue q;
  {
    FileLock lock;
    if (!lock.Lock(JoinPath(dir_, "queue.lock"))) {
      strErrMsg = "Cannot lock " + JoinPath(dir_, "queue.lock");
      return false;
    }
    if (!ReadQueue(QueueFile(), q, strErrMsg)) {
      strErrMsg = QueueFile() + ": " + strErrMsg;
      return false;
    }
  }
  std::vector<std::shared_ptr<cQueueEntry>> changed;
  for (const auto& e : q.QueueEntries) {
    auto now = std::make_shared<cQueueEntry>();
    std::string err;
    if (!now->ReadSettings(StatusFile(e->DocId), err)) continue;
    if (now->PELINOR_State != e->PELINOR_State || now->Reject != e->Reject ||
        now->CaptureState != e->CaptureState) {
      changed.push_back(now);
    }
  }
  return Update(changed, strErrMsg);
}

bool cWorkQueue::ScanIn(const std::vector<std::string>& batches,
                        const cScanInOptions& options,
                        const std::function<void(const cScanInResult&)>& each,
                        std::string& strErrMsg) {
  strErrMsg.clear();
  std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>> candidates;
  if (!ReadTemplateDirectory(template_dir_, profile_, candidates, strErrMsg)) {
    return false;
  }
  cPageReader reader;
  reader.Language = options.Language;
  reader.DefaultDpi = options.Dpi;
  reader.RenderDpi = options.Dpi;
  reader.MaxPages = options.MaxPages;
  cBatchSplitter splitter;
  std::vector<std::shared_ptr<cQueueEntry>> added;
  for (const std::string& batch : batches) {
    cPageModel model;
    std::string err;
    std::error_code ec;
    const bool is_dir = fs::is_directory(batch, ec);
    std::vector<std::string> files =
        is_dir ? PageFiles(batch) : std::vector<std::string>{batch};
    const int32_t ocr_before = reader.OcrPages();
    bool ok = !files.empty();
    if (!ok) err = batch + ": no page files";
    for (const std::string& f : files) {
      if (!reader.ReadFile(f, model, err)) {
        ok = false;
        break;
      }
      if (static_cast<int32_t>(model.Pages.size()) > options.MaxPages) {
        err = batch + ": more than " + std::to_string(options.MaxPages) +
              " pages";
        ok = false;
        break;
      }
    }
    if (!ok) {
      cScanInResult r;
      r.Batch = batch;
      r.Error = err;
      if (each) each(r);
      continue;
    }
    const bool ocr = reader.OcrPages() > ocr_before;
    const std::vector<cBatchDocument> docs =
        splitter.Split(model, profile_, candidates);
    const std::string stem = StemOf(batch);
    for (size_t d = 0; d < docs.size(); ++d) {
      const cBatchDocument& bd = docs[d];
      cScanInResult r;
      r.Batch = batch;
      char num[32];
      std::snprintf(num, sizeof num, "-%04zu", d + 1);
      r.DocId = stem + num;
      for (int32_t p : bd.Pages) r.Pages.push_back(p + 1);
      if (FileExists(StatusFile(r.DocId))) {
        if (bd.Identified) r.Template = StemOf(bd.Match.File);
        r.AlreadyQueued = true;
        r.Error = "already queued";
        if (each) each(r);
        continue;
      }
      const cPageModel pages = cBatchSplitter::PagesOf(model, bd);
      std::shared_ptr<cDocumentData> doc;
      auto entry = std::make_shared<cQueueEntry>();
      if (bd.Identified) {
        std::vector<cFieldResult> results;
        splitter.Extractor.Extract(pages, profile_, bd.Match, doc, results);
        r.Template = StemOf(bd.Match.File);
        r.Fields = CountValues(*doc);
        r.Rows = doc->LineData.Count();
        const cTemplate& tpl = *bd.Match.Template;
        entry->TemplateIdentified = true;
        entry->TemplateIdentifier = tpl.TemplateIdentifier;
        entry->TemplateDisplayName = r.Template;
        entry->ScannerProfile = tpl.ScannerProfile;
        entry->TemplateIDX = NumberText(bd.Match.Found.Left);
        entry->TemplateIDY = NumberText(bd.Match.Found.Top);
        entry->TemplateIDWidth = NumberText(bd.Match.Found.Width);
        entry->TemplateIDHeight = NumberText(bd.Match.Found.Height);
        entry->TemplateIDPage = "1";
        entry->TemplateIDText = tpl.TemplateIdentifier;
        entry->FieldsOCRExtracted = true;
      } else {
        doc = cDocumentData::New();
        doc->Profile = profile_;
        doc->ProfileName = profile_->Name;
      }
      doc->FirstSheetIndex = bd.FirstSheetIndex;
      doc->LastSheetIndex = bd.LastSheetIndex;
      doc->FirstSideBack = bd.FirstSideBack;
      doc->LastSideBack = bd.LastSideBack;
      double sum = 0;
      int32_t words = 0;
      float lowest = 100;
      for (const cPage& pg : pages.Pages) {
        for (const cPageWord& w : pg.Words) {
          sum += w.Confidence;
          lowest = std::min(lowest, w.Confidence);
          ++words;
        }
      }
      entry->DocId = r.DocId;
      entry->PelinorProfile = profile_->Name;
      entry->OCRPerformed = ocr;
      entry->OCRConfidence =
          words > 0 ? static_cast<int32_t>(std::lround(sum / words)) : 0;
      entry->OCRMinConfidence =
          words > 0 ? static_cast<int32_t>(std::lround(lowest)) : 0;
      entry->TimeScanned = NowText();
      entry->TimeLastModified = entry->TimeScanned;
      entry->PageCount = static_cast<int32_t>(bd.Pages.size());
      std::string werr;
      // The tag file first: a status file announces a complete document.
      if (!doc->WriteSettings(TagFile(r.DocId), werr)) {
        r.Error = TagFile(r.DocId) + ": " + werr;
        if (each) each(r);
        continue;
      }
      if (!entry->WriteSettings(StatusFile(r.DocId), werr) || !werr.empty()) {
        r.Error = StatusFile(r.DocId) + ": " + werr;
        if (each) each(r);
        continue;
      }
      r.Queued = true;
      added.push_back(entry);
      if (each) each(r);
    }
  }
  return Update(added, strErrMsg);
}

bool cWorkQueue::Capture(int32_t jobs,
                         const std::function<void(const cWorkResult&)>& each,
                         cWorkSummary& summary, std::string& strErrMsg) {
  strErrMsg.clear();
  summary = {};
  auto q = std::make_shared<cQueue>();
  {
    FileLock lock;
    if (!lock.Lock(JoinPath(dir_, "queue.lock"))) {
      strErrMsg = "Cannot lock " + JoinPath(dir_, "queue.lock");
      return false;
    }
    if (!ReadQueue(QueueFile(), *q, strErrMsg)) {
      strErrMsg = QueueFile() + ": " + strErrMsg;
      return false;
    }
  }
  std::shared_ptr<cQueue> selected;
  q->GetDocumentsToCapture(selected);
  std::shared_ptr<cQueue> ordered;
  selected->PrioritiseOldestLeastProcessed(ordered, kQueueTimeScanned);
  std::vector<std::string> ids;
  for (const auto& e : ordered->QueueEntries) ids.push_back(e->DocId);
  summary.Candidates = static_cast<int32_t>(ids.size());

  const auto settings = cSettingsSnapshot::Take();
  std::atomic<size_t> next{0};
  std::mutex mu;  // guards summary, pending, the callback and errors
  std::vector<std::shared_ptr<cQueueEntry>> pending;
  auto last_flush = std::chrono::steady_clock::now();
  bool failed = false;
  const int32_t invalid_state =
      profile_->InvalidState == kStateToCapture ||
              profile_->InvalidState == kStateReadyForExport
          ? 1
          : profile_->InvalidState;

  // Writes the finished entries into the queue file now and then, so the
  // file follows the work without being rewritten for every document.
  auto flush = [&](bool force) {
    std::vector<std::shared_ptr<cQueueEntry>> batch;
    {
      std::lock_guard<std::mutex> g(mu);
      const auto now = std::chrono::steady_clock::now();
      if (!force && pending.size() < 512 &&
          now - last_flush < std::chrono::seconds(1)) {
        return;
      }
      batch.swap(pending);
      last_flush = now;
    }
    std::string err;
    if (!Update(batch, err)) {
      std::lock_guard<std::mutex> g(mu);
      failed = true;
      strErrMsg = err;
    }
  };

  auto worker = [&]() {
    auto profile = std::make_shared<cProfile>();
    std::string err;
    profile->ReadSettings(profile_->Name, profile_file_, err);
    TemplateCache templates(template_dir_, profile);
    cCaptureOptions copts;
    cDocumentClaims claims;
    if (!claims.Open(dir_)) {
      std::lock_guard<std::mutex> g(mu);
      failed = true;
      strErrMsg = "Cannot open " + JoinPath(dir_, "claims.lock");
      return;
    }
    for (;;) {
      const size_t i = next.fetch_add(1);
      if (i >= ids.size()) break;
      const std::string& id = ids[i];
      cWorkResult r;
      r.DocId = id;
      auto entry = std::make_shared<cQueueEntry>();
      std::string e2;
      const bool claimed = claims.TryClaim(id);
      // Under the claim the status file tells whether the document still
      // waits: another worker may have taken it since the queue was read.
      const bool waiting = claimed && entry->ReadSettings(StatusFile(id), e2) &&
                           !entry->Reject &&
                           entry->PELINOR_State == kStateToCapture;
      if (!waiting) {
        if (claimed) claims.Release(id);
        std::lock_guard<std::mutex> g(mu);
        ++summary.Skipped;
        if (claimed && e2.empty()) {
          // Done since the queue file was read: its fresh entry corrects
          // the queue file.
          pending.push_back(entry);
        }
        continue;
      }
      std::string reject;
      auto doc = cDocumentData::New();
      if (!doc->ReadSettings(TagFile(id), e2)) {
        reject = kRejectTagUnreadable + e2;
      } else if (!entry->TemplateIdentified ||
                 entry->TemplateDisplayName.empty()) {
        reject = kRejectNoTemplate;
      } else {
        std::string terr;
        doc->Template = templates.Get(entry->TemplateDisplayName, terr);
        if (!doc->Template) reject = terr;
      }
      entry->TimeLastModified = NowText();
      if (!reject.empty()) {
        entry->Reject = true;
        r.Rejected = true;
        r.Message = reject;
        std::string werr;
        if (!entry->WriteRejectMessage(reject, RejectFile(id), werr)) {
          r.Error = RejectFile(id) + ": " + werr;
        }
      } else {
        doc->Profile = profile;
        const cCaptureReport rep = CaptureDocument(*doc, copts, settings.get());
        r.Status = rep.Status;
        r.Message = rep.Message;
        std::string werr;
        if (!doc->WriteSettings(TagFile(id), werr)) {
          r.Error = TagFile(id) + ": " + werr;
        }
        entry->CaptureState = kCaptureDone;
        entry->DataValid = rep.InvalidCount == 0 ? kDataValid : kDataInvalid;
        entry->ManualCheckNeeded = rep.InvalidCount != 0;
        entry->PELINOR_State =
            rep.InvalidCount == 0 ? kStateReadyForExport : invalid_state;
      }
      r.State = entry->PELINOR_State;
      if (r.Error.empty()) {
        std::string werr;
        if (!entry->WriteSettings(StatusFile(id), werr) || !werr.empty()) {
          r.Error = StatusFile(id) + ": " + werr;
        }
      }
      claims.Release(id);
      {
        std::lock_guard<std::mutex> g(mu);
        if (!r.Error.empty()) {
          ++summary.Errors;
        } else if (r.Rejected) {
          ++summary.Rejected;
        } else {
          ++summary.Captured;
          if (r.State == kStateReadyForExport) ++summary.Valid;
        }
        if (r.Error.empty()) pending.push_back(entry);
        if (each) each(r);
      }
      flush(false);
    }
  };

  const int32_t n = std::max(jobs, 1);
  if (n == 1) {
    worker();
  } else {
    std::vector<std::thread> threads;
    for (int32_t t = 0; t < n; ++t) threads.emplace_back(worker);
    for (auto& t : threads) t.join();
  }
  flush(true);
  return !failed;
}

bool cWorkQueue::Export(const std::string& format, const std::string& out,
                        cExportSummary& summary, std::string& strErrMsg) {
  strErrMsg.clear();
  summary = {};
  const std::string fmt = UCase(format);
  if (fmt != "CSV" && fmt != "JSON") {
    strErrMsg = "Unknown export format " + format + " (csv or json)";
    return false;
  }
  if (FileExists(out)) {
    strErrMsg = out + " exists; an export never replaces a file";
    return false;
  }
  // The whole export holds the queue lock, so two exports never write the
  // same document.
  FileLock lock;
  if (!lock.Lock(JoinPath(dir_, "queue.lock"))) {
    strErrMsg = "Cannot lock " + JoinPath(dir_, "queue.lock");
    return false;
  }
  cQueue listed;
  if (!ReadQueue(QueueFile(), listed, strErrMsg)) {
    strErrMsg = QueueFile() + ": " + strErrMsg;
    return false;
  }
  // The status files are the record: a worker may not have written the
  // queue file yet.
  cQueue q;
  for (const auto& e : listed.QueueEntries) {
    auto now = std::make_shared<cQueueEntry>();
    std::string err;
    q.QueueEntries.Add(now->ReadSettings(StatusFile(e->DocId), err) ? now : e);
  }
  std::shared_ptr<cQueue> ready;
  q.FilterToExport(ready);
  TextWriter w;
  if (!w.Create(out)) {
    strErrMsg = "Cannot create " + out;
    return false;
  }
  std::string text;
  if (fmt == "CSV") {
    text = "\"DocId\",\"Template\",\"Line\",\"Name\",\"Value\"\r\n";
  }
  for (const auto& e : ready->QueueEntries) {
    auto doc = cDocumentData::New();
    std::string err;
    if (!doc->ReadSettings(TagFile(e->DocId), err)) {
      w.Abandon();
      strErrMsg = TagFile(e->DocId) + ": " + err;
      return false;
    }
    ++summary.Documents;
    summary.Rows += doc->LineData.Count();
    const std::string id = CsvItem(e->DocId);
    const std::string tpl = CsvItem(e->TemplateDisplayName);
    if (fmt == "CSV") {
      for (const auto& f : doc->Fields) {
        text += id + "," + tpl + ",\"0\"," + CsvItem(f->Name) + "," +
                CsvItem(f->value) + "\r\n";
      }
      int32_t l = 0;
      for (const auto& row : doc->LineData) {
        ++l;
        for (const auto& c : row->colLineItemData) {
          text += id + "," + tpl + ",\"" + std::to_string(l) + "\"," +
                  CsvItem(c->Name) + "," + CsvItem(c->value) + "\r\n";
        }
      }
      continue;
    }
    text += text.empty() ? "[\r\n  {" : ",\r\n  {";
    text += "\"doc_id\": " + JsonText(e->DocId) +
            ", \"template\": " + JsonText(e->TemplateDisplayName) +
            ", \"pages\": " + std::to_string(e->PageCount) +
            ",\r\n   \"fields\": {";
    bool f1 = true;
    for (const auto& f : doc->Fields) {
      text += (f1 ? "" : ", ") + JsonText(f->Name) + ": " + JsonText(f->value);
      f1 = false;
    }
    text += "},\r\n   \"lines\": [";
    bool l1 = true;
    for (const auto& row : doc->LineData) {
      text += l1 ? "{" : ",\r\n     {";
      l1 = false;
      bool c1 = true;
      for (const auto& c : row->colLineItemData) {
        text +=
            (c1 ? "" : ", ") + JsonText(c->Name) + ": " + JsonText(c->value);
        c1 = false;
      }
      text += "}";
    }
    text += "]}";
  }
  if (fmt == "JSON") text += text.empty() ? "[]\r\n" : "\r\n]\r\n";
  w.Write(text);
  if (!w.Commit()) {
    strErrMsg = "Cannot write " + out;
    return false;
  }
  // Mark after the export file is in place: a failure here leaves
  // documents to be exported again, never lost.
  const std::string now = NowText();
  for (const auto& e : ready->QueueEntries) {
    e->PELINOR_State = kStateExported;
    e->TimeLastModified = now;
    std::string err;
    if (!e->WriteSettings(StatusFile(e->DocId), err) || !err.empty()) {
      strErrMsg = StatusFile(e->DocId) + ": " + err;
      return false;
    }
  }
  if (!q.WriteSettings(QueueFile(), strErrMsg)) {
    strErrMsg = QueueFile() + ": " + strErrMsg;
    return false;
  }
  return true;
}

}  // namespace pelinor
