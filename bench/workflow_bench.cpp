// Line items off a page and the work queue's throughput.
//
// BM_LineItemsFloor is the least a table reader can do with a page of 60
// rows: convert every word's box to template pixels and keep the words
// inside the table's area. BM_LineItemsPage60Rows reads the same page's
// line table into a document (anchors, entities, columns, rows, repeat
// condition, cells under the line headers); OCR is not part of it.
//
// BM_QueueCaptureRunAlone captures 10,000 queued tag files with the
// capture run alone (cCaptureRun, one job, writing beside them): the
// floor. BM_QueueWorkCapture/N runs N worker processes (fork, each
// cWorkQueue::Capture() with one thread) over the same queue: claims,
// status files, queue-file updates and all. Both report wall time and, as
// cpu_s, the CPU seconds of the work per run (the workers' own for
// BM_QueueWorkCapture); the queue is restored from a pristine copy before
// each run (not timed).

#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "batch_fixture.h"
#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/line_data.h"
#include "pelinor/line_item_extractor.h"
#include "pelinor/page_extractor.h"
#include "pelinor/profile.h"
#include "pelinor/queue.h"
#include "pelinor/template.h"
#include "pelinor/work_queue.h"
#include "test_util.h"

namespace pelinor {
namespace {

namespace fs = std::filesystem;
using testing::GenInvoice;

// CPU seconds (user and system) of this process or of its waited-for
// children.
double CpuSeconds(int who) {
  rusage u{};
  getrusage(who, &u);
  return u.ru_utime.tv_sec + u.ru_stime.tv_sec +
         (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

struct PageFixture {
  testing::TempDir dir;
  std::shared_ptr<cProfile> profile = std::make_shared<cProfile>();
  std::shared_ptr<cTemplate> tpl = testing::GenTemplate();
  cPageModel model;

  PageFixture() {
    std::string err;
    profile->ReadSettings("Gen", testing::WriteGenInstallation(dir.path()),
                          err);
    tpl->Profile = profile;
    GenInvoice inv = testing::GenInvoices(1, 11)[0];
    inv.rows.clear();
    for (int i = 0; i < 60; ++i) {
      inv.rows.push_back({"Copier paper A4 ream " + std::to_string(i),
                          std::to_string(1 + i % 9), "12.50", "12.50"});
    }
    inv.rows_per_page = 60;
    inv.row_pitch = 45;
    model.Pages = testing::GenPages(inv);
  }
};

PageFixture& Page() {
  static PageFixture* f = new PageFixture();
  return *f;
}

void BM_LineItemsFloor(benchmark::State& state) {
  const cPage& page = Page().model.Pages[0];
  std::vector<cBox> kept;
  for (auto _ : state) {
    kept.clear();
    for (const cPageWord& w : page.Words) {
      const cBox b = page.ToTemplatePixels(w.Box);
      if (b.Top >= 650 && b.Top < 3350) kept.push_back(b);
    }
    benchmark::DoNotOptimize(kept.data());
  }
}
BENCHMARK(BM_LineItemsFloor);

void BM_LineItemsPage60Rows(benchmark::State& state) {
  PageFixture& f = Page();
  cLineItemExtractor x;
  int32_t rows = 0;
  for (auto _ : state) {
    auto doc = cDocumentData::New();
    doc->Profile = f.profile;
    doc->Template = f.tpl;
    x.Extract(f.model, 0, 0, *doc);
    rows = doc->LineData.Count();
    benchmark::DoNotOptimize(doc.get());
  }
  state.counters["rows"] = rows;
  if (rows != 60) state.SkipWithError("the page did not give 60 rows");
}
BENCHMARK(BM_LineItemsPage60Rows)->Unit(benchmark::kMicrosecond);

constexpr int kQueueDocs = 10000;

// A queue of kQueueDocs documents, each as scan-in leaves it: tag file with
// raw fields and rows, status file in state 0, queue file listing them.
struct QueueFixture {
  testing::TempDir dir;
  std::string profile_file;
  std::string pristine;
  std::vector<std::string> ids;

  QueueFixture() {
    profile_file = testing::WriteGenInstallation(dir.path());
    std::string err;
    auto q = cWorkQueue::Open(profile_file, err);
    auto profile = q->Profile();
    auto tpl = testing::GenTemplate();
    tpl->Profile = profile;
    cPageExtractor x;
    cTemplateMatch match;
    match.Template = tpl;
    const auto invoices = testing::GenInvoices(50, 3);
    cQueue queue;
    for (int i = 0; i < kQueueDocs; ++i) {
      cPageModel m;
      m.Pages = testing::GenPages(invoices[i % invoices.size()]);
      std::shared_ptr<cDocumentData> doc;
      std::vector<cFieldResult> results;
      x.Extract(m, profile, match, doc, results);
      char id[32];
      std::snprintf(id, sizeof id, "b-%05d", i + 1);
      ids.push_back(id);
      doc->WriteSettings(q->TagFile(id), err);
      auto e = std::make_shared<cQueueEntry>();
      e->DocId = id;
      e->TemplateIdentified = true;
      e->TemplateDisplayName = "Acme";
      e->FieldsOCRExtracted = true;
      e->TimeScanned = "2026-01-01 00:00:00";
      e->WriteSettings(q->StatusFile(id), err);
      queue.QueueEntries.Add(e);
    }
    queue.WriteSettings(q->QueueFile(), err);
    pristine = dir.File("pristine");
    fs::copy(q->Dir(), pristine, fs::copy_options::recursive);
  }

  void Restore() {
    const std::string queue = dir.File("queue");
    fs::remove_all(queue);
    fs::copy(pristine, queue, fs::copy_options::recursive);
  }
};

QueueFixture& Queue() {
  static QueueFixture* f = new QueueFixture();
  return *f;
}

void BM_QueueCaptureRunAlone(benchmark::State& state) {
  QueueFixture& f = Queue();
  std::vector<std::string> files;
  for (const auto& id : f.ids)
    files.push_back(f.dir.File("queue/" + id + ".tag"));
  double cpu = 0;
  for (auto _ : state) {
    state.PauseTiming();
    f.Restore();
    state.ResumeTiming();
    cCaptureRunOptions o;
    o.ProfileFile = f.profile_file;
    o.TemplateFile = f.dir.File("templates/Acme.tpl");
    o.InPlace = true;
    o.Jobs = 1;
    std::string err;
    const double cpu0 = CpuSeconds(RUSAGE_SELF);
    auto run = cCaptureRun::Open(o, err);
    int32_t n = 0;
    run->Run(files, [&](const cCaptureFileResult& r) {
      n += r.Captured;
      return true;
    });
    cpu += CpuSeconds(RUSAGE_SELF) - cpu0;
    if (n != kQueueDocs) state.SkipWithError("not every document captured");
  }
  state.counters["docs/s"] =
      benchmark::Counter(static_cast<double>(kQueueDocs) * state.iterations(),
                         benchmark::Counter::kIsRate);
  state.counters["cpu_s"] = cpu / static_cast<double>(state.iterations());
}
BENCHMARK(BM_QueueCaptureRunAlone)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(2);

void BM_QueueWorkCapture(benchmark::State& state) {
  QueueFixture& f = Queue();
  const int procs = static_cast<int>(state.range(0));
  double cpu = 0;
  for (auto _ : state) {
    state.PauseTiming();
    f.Restore();
    state.ResumeTiming();
    const double cpu0 = CpuSeconds(RUSAGE_CHILDREN);
    std::vector<pid_t> pids;
    for (int p = 0; p < procs; ++p) {
      const pid_t pid = fork();
      if (pid == 0) {
        std::string err;
        auto q = cWorkQueue::Open(f.profile_file, err);
        cWorkSummary sum;
        const bool ok = q && q->Capture(1, nullptr, sum, err);
        _exit(ok ? 0 : 1);
      }
      pids.push_back(pid);
    }
    for (pid_t pid : pids) {
      int st = 0;
      waitpid(pid, &st, 0);
      if (!WIFEXITED(st) || WEXITSTATUS(st) != 0) {
        state.SkipWithError("a worker failed");
      }
    }
    cpu += CpuSeconds(RUSAGE_CHILDREN) - cpu0;
    state.PauseTiming();
    cQueue q;
    std::string err;
    q.ReadSettings(f.dir.File("queue/queue.txt"), err);
    int32_t done = 0;
    for (const auto& e : q.QueueEntries)
      done += e->CaptureState == kCaptureDone;
    if (done != kQueueDocs) state.SkipWithError("not every document captured");
    state.ResumeTiming();
  }
  state.counters["docs/s"] =
      benchmark::Counter(static_cast<double>(kQueueDocs) * state.iterations(),
                         benchmark::Counter::kIsRate);
  state.counters["cpu_s"] = cpu / static_cast<double>(state.iterations());
}
BENCHMARK(BM_QueueWorkCapture)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(2);

}  // namespace
}  // namespace pelinor
