// Reading, writing, filtering and ordering a queue of 1,000,000 entries.
//
// Read and write report bytes per second of the queue file; every filter
// reports the time for the whole queue (the goal is under a second).

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <random>
#include <string>

#include "pelinor/queue.h"
#include "pelinor/text_file.h"

namespace {

constexpr int kEntries = 1000000;

char queue_path[64];

void RemoveQueueFile() { std::remove(queue_path); }

// A queue with the mix a busy server sees: mostly new documents at every
// stage of capture, some exported, deferred or rejected.
std::shared_ptr<pelinor::cQueue> MakeQueue() {
  auto q = std::make_shared<pelinor::cQueue>();
  std::mt19937 rng(42);
  char time[32];
  for (int i = 0; i < kEntries; ++i) {
    auto e = std::make_shared<pelinor::cQueueEntry>();
    e->DocId = "INV" + std::to_string(1000000 + i);
    e->ScannerProfile = "Scanner " + std::to_string(rng() % 4);
    e->PelinorProfile = "Invoices";
    e->OCRPerformed = rng() % 4 != 0;
    e->OCRConfidence = static_cast<int32_t>(rng() % 100);
    e->OCRMinConfidence = static_cast<int32_t>(rng() % 60);
    if (rng() % 10 != 0) {
      const auto pick = [&rng](unsigned n) {
        return static_cast<unsigned>(rng() % n);
      };
      std::snprintf(time, sizeof time, "2024-%02u-%02u %02u:%02u:%02u",
                    1 + pick(12), 1 + pick(28), pick(24), pick(60), pick(60));
      e->TimeScanned = time;
      e->TimeLastModified = time;
    }
    e->TemplateIdentified = rng() % 2 == 0;
    e->PageCount = static_cast<int32_t>(1 + rng() % 6);
    if (e->TemplateIdentified) {
      e->TemplateIdentifier = "SUPP" + std::to_string(rng() % 500);
      e->TemplateIDX = "120";
      e->TemplateIDY = "40";
      e->TemplateIDWidth = "300";
      e->TemplateIDHeight = "22";
      e->TemplateIDPage = "1";
      e->TemplateIDText =
          rng() % 20 == 0 ? "Acme \"Trading\" Ltd" : "Acme Trading Ltd";
      e->TemplateDisplayName = "Acme Trading";
      e->TemplateCountry = "GB";
    }
    e->FieldsOCRExtracted = e->TemplateIdentified && rng() % 2 == 0;
    e->DataValid = static_cast<int32_t>(rng() % 3);
    e->Priority = static_cast<int32_t>(rng() % 5) - 1;
    e->DepositType = static_cast<int32_t>(1 + rng() % 4);
    e->Unpacked = rng() % 2 == 0;
    e->Reject = rng() % 20 == 0;
    const unsigned state = rng() % 10;
    e->PELINOR_State = state < 7 ? 0 : state == 7 ? 3 : 100 + rng() % 5;
    q->QueueEntries.Add(e);
  }
  return q;
}

const std::shared_ptr<pelinor::cQueue>& SharedQueue() {
  static const auto q = MakeQueue();
  return q;
}

const std::string& QueueFile() {
  static const std::string path = [] {
    std::snprintf(queue_path, sizeof queue_path, "/tmp/pelinor-bench-queue-%ld",
                  static_cast<long>(getpid()));
    std::string err;
    SharedQueue()->WriteSettings(queue_path, err);
    std::atexit(RemoveQueueFile);
    return std::string(queue_path);
  }();
  return path;
}

// The size of a file the benchmark wrote itself.
int64_t FileSize(const std::string& path) {
  return static_cast<int64_t>(std::filesystem::file_size(path));
}

// Reads the queue file into a new queue per iteration, as a server
// polling its queue does. The first read in a process also pays for the
// first touch of the memory the entries occupy (about 1 GB here); it is
// timed separately and reported as first_read_MB/s.
void BM_QueueRead(benchmark::State& state) {
  const std::string& path = QueueFile();
  const double bytes = static_cast<double>(FileSize(path));
  {
    pelinor::cQueue first;
    std::string err;
    const auto start = std::chrono::steady_clock::now();
    if (!first.ReadSettings(path, err)) state.SkipWithError(err.c_str());
    const std::chrono::duration<double> took =
        std::chrono::steady_clock::now() - start;
    state.counters["first_read_MB/s"] = bytes / took.count() / 1e6;
  }
  for (auto _ : state) {
    pelinor::cQueue q;
    std::string err;
    if (!q.ReadSettings(path, err)) state.SkipWithError(err.c_str());
    benchmark::DoNotOptimize(q.QueueEntries.Count());
    state.PauseTiming();  // releasing a million entries is not reading
    q.QueueEntries.Clear();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}
BENCHMARK(BM_QueueRead)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(3);

// For reference: the same file read item by item with no entries built,
// the floor that the item reader sets for BM_QueueRead.
void BM_QueueFileItemsOnly(benchmark::State& state) {
  pelinor::TextReader r;
  r.Open(QueueFile());
  std::string item;
  for (auto _ : state) {
    r.Rewind();
    size_t items = 0;
    while (r.ReadItem(item)) ++items;
    benchmark::DoNotOptimize(items);
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(r.Data().size()));
}
BENCHMARK(BM_QueueFileItemsOnly)->Unit(benchmark::kMillisecond);

void BM_QueueWrite(benchmark::State& state) {
  const auto& q = SharedQueue();
  const std::string path = QueueFile() + ".out";
  for (auto _ : state) {
    std::string err;
    if (!q->WriteSettings(path, err)) state.SkipWithError(err.c_str());
  }
  state.SetBytesProcessed(state.iterations() * FileSize(path));
  std::remove(path.c_str());
}
BENCHMARK(BM_QueueWrite)->Unit(benchmark::kMillisecond)->UseRealTime();

// For reference: writing the same bytes through the file writer in large
// pieces, the floor that the file system sets for BM_QueueWrite.
void BM_QueueFileBytesOnly(benchmark::State& state) {
  pelinor::TextReader r;
  r.Open(QueueFile());
  const std::string path = QueueFile() + ".raw";
  for (auto _ : state) {
    pelinor::TextWriter w;
    w.Create(path);
    for (size_t at = 0; at < r.Data().size(); at += 1 << 20) {
      w.Write(r.Data().substr(at, 1 << 20));
    }
    if (!w.Commit()) state.SkipWithError("cannot write");
  }
  state.SetBytesProcessed(state.iterations() *
                          static_cast<int64_t>(r.Data().size()));
  std::remove(path.c_str());
}
BENCHMARK(BM_QueueFileBytesOnly)->Unit(benchmark::kMillisecond)->UseRealTime();

// Runs one filter over the whole queue per iteration.
template <typename Filter>
void RunFilter(benchmark::State& state, Filter filter) {
  const auto& q = SharedQueue();
  for (auto _ : state) {
    std::shared_ptr<pelinor::cQueue> out;
    filter(*q, out);
    benchmark::DoNotOptimize(out->QueueEntries.Count());
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
}

#define PELINOR_FILTER_BENCH(name, call)                                     \
  void BM_##name(benchmark::State& state) {                                  \
    RunFilter(state, [](const pelinor::cQueue& q,                            \
                        std::shared_ptr<pelinor::cQueue>& out) { q.call; }); \
  }                                                                          \
  BENCHMARK(BM_##name)->Unit(benchmark::kMillisecond)

PELINOR_FILTER_BENCH(GetDocumentsToUnpack, GetDocumentsToUnpack(out));
PELINOR_FILTER_BENCH(GetDocumentsToCapture, GetDocumentsToCapture(out));
PELINOR_FILTER_BENCH(FilterToExport, FilterToExport(out));
PELINOR_FILTER_BENCH(PrioritiseRejectedRecords,
                     PrioritiseRejectedRecords(1, out));
PELINOR_FILTER_BENCH(PrioritiseViewableDocuments,
                     PrioritiseViewableDocuments(1, out, 0));
PELINOR_FILTER_BENCH(PrioritiseViewableDeferredDocuments,
                     PrioritiseViewableDeferredDocuments(1, out));
PELINOR_FILTER_BENCH(PrioritisePELINORStates, PrioritisePELINORStates(0, out));
PELINOR_FILTER_BENCH(PrioritiseOldestLeastProcessed,
                     PrioritiseOldestLeastProcessed(out, 0));
PELINOR_FILTER_BENCH(PrioritiseOldestMostProcessed,
                     PrioritiseOldestMostProcessed(out, 1));

void BM_Find(benchmark::State& state) {
  const auto& q = SharedQueue();
  const std::string last = "inv" + std::to_string(1000000 + kEntries - 1);
  for (auto _ : state) {
    int32_t index = 0;
    std::shared_ptr<pelinor::cQueueEntry> e;
    benchmark::DoNotOptimize(q->Find(last, index, e));
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
}
BENCHMARK(BM_Find)->Unit(benchmark::kMillisecond);

}  // namespace
