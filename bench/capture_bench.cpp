// The capture run: one document in memory, batches of files, and the two
// per-value costs a batch's settings snapshot removes.
//
// BM_CaptureExampleInvoice captures the example invoice (9 fields, 9
// cells) after parsing it from memory; BM_ReadExampleInvoice is the parse
// alone. Arg 0 reads the registry and "CharMap.txt" per value, as the
// library's per-call functions do; arg 1 uses one snapshot.
//
// BM_CaptureBatch/S/N captures 6,000 tag files with N jobs on storage S:
// 0 the disk that holds the temporary folder, 1 memory (/dev/shm). Each
// iteration first runs the floor, the least a batch that rewrites its
// documents can do: read each file's bytes whole, write them as they are
// through a temporary file and rename it into the output folder, on as
// many threads. Reported: the
// capture's wall time and documents per second; "floor_per_s" and
// "x_floor" (capture over floor); "x_1_job" and "floor_x_1_job", a
// two-job run over the one-job run on the same storage; and the CPU
// microseconds per document in the program ("user_us") and in the kernel
// ("sys_us"), for the capture and the floor. On disk the file system
// serialises file creation in one folder, so the floor itself barely
// gains from a second thread; in memory it does, which shows how far the
// capture's own work scales. The label names the allocator the benchmark
// program was linked with (the pelinor program has the same).
//
// BM_NumericDateFloor parses a numeric date and builds its stored text by
// hand; BM_SnapshotFormatDate/0 is cFormat::FormatDate() reading the locale
// from the registry, /1 the same through a snapshot. BM_PlainPatternFloor is
// one bare PCRE2 JIT match of a plain field pattern's expression;
// BM_SnapshotEvaluatePattern/0 and /1 evaluate the pattern per call and
// through a snapshot.

#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"
#include "pelinor/text_file.h"

namespace {

using pelinor::cCaptureOptions;
using pelinor::cCaptureRun;
using pelinor::cCaptureRunOptions;
using pelinor::cDocumentData;
using pelinor::cSettingsSnapshot;

std::string Example(const std::string& name) {
  return std::string(PELINOR_SOURCE_DIR) + "/examples/" + name;
}

void UseExampleRegistry() {
  setenv("PELINOR_REGISTRY", Example("registry.reg").c_str(), 1);
  unsetenv("PELINORLOGFORMAT");
}

std::string ReadAll(const std::string& path) {
  pelinor::TextReader reader;
  std::string text, line;
  if (!reader.Open(path)) return text;
  while (reader.ReadLine(line)) text += line + "\r\n";
  return text;
}

struct Models {
  std::shared_ptr<pelinor::cProfile> profile =
      std::make_shared<pelinor::cProfile>();
  std::shared_ptr<pelinor::cTemplate> tpl = pelinor::cTemplate::New();
  Models() {
    std::string err;
    profile->ReadSettings("Invoices", Example("profiles/Invoices.ini"), err);
    tpl->Profile = profile;
    tpl->ReadSettings(Example("templates/AcmeSupplies.tpl"), err);
  }
};

void Capture(benchmark::State& state, bool parse_only) {
  UseExampleRegistry();
  const Models models;
  const std::string text = ReadAll(Example("documents/INV0001.tag"));
  const auto snapshot = cSettingsSnapshot::Take();
  const bool use_snapshot = state.range(0) == 1;
  const cCaptureOptions options;
  std::string err;
  int32_t status = 0;
  for (auto _ : state) {
    auto doc = cDocumentData::New();
    pelinor::TextReader reader;
    reader.OpenText(text);
    doc->ReadSettings(reader, err);
    doc->Profile = models.profile;
    doc->Template = models.tpl;
    if (!parse_only) {
      status += pelinor::CaptureDocument(
                    *doc, options, use_snapshot ? snapshot.get() : nullptr)
                    .Status;
    }
    benchmark::DoNotOptimize(doc.get());
  }
  if (status != 0) state.SkipWithError("the example invoice did not validate");
  state.SetItemsProcessed(state.iterations());
  state.SetLabel(use_snapshot ? "snapshot" : "per call");
}

void BM_ReadExampleInvoice(benchmark::State& state) { Capture(state, true); }
BENCHMARK(BM_ReadExampleInvoice)->Arg(0)->Unit(benchmark::kMicrosecond);

void BM_CaptureExampleInvoice(benchmark::State& state) {
  Capture(state, false);
}
BENCHMARK(BM_CaptureExampleInvoice)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMicrosecond);

// ---------------------------------------------------------------------------
// Batches
// ---------------------------------------------------------------------------

constexpr int kBatchSize = 6000;

// Writes `text` to `path` through a temporary file in its folder.
void WriteThrough(const std::string& path, std::string_view text) {
  pelinor::TextWriter writer;
  writer.Create(path);
  writer.Write(text);
  writer.Commit();
}

// Where a batch lives: on the disk that holds the temporary folder, or in
// memory (/dev/shm). The disk shows what a real batch pays; in memory the
// file system takes no lock that two threads would queue on, which shows
// how far the capture's own work scales.
enum Storage : int64_t { kDisk = 0, kMemory = 1 };

const char* StorageName(int64_t storage) {
  return storage == kMemory ? "memory" : "disk";
}

// 6,000 copies of the example invoice in a scratch folder, made once, and
// an output folder that already holds a file of each name: the floor and
// the batches all replace files there, so each meets the same folder.
struct Batch {
  std::string dir;
  std::string out;
  std::vector<std::string> files;
  explicit Batch(const std::filesystem::path& root) {
    std::error_code ec;
    if (!std::filesystem::is_directory(root, ec)) return;
    dir =
        (root / ("pelinor-capture-bench-" + std::to_string(getpid()))).string();
    out = dir + "/out";
    std::filesystem::create_directories(dir + "/in");
    std::filesystem::create_directories(out);
    const std::string text = ReadAll(Example("documents/INV0001.tag"));
    for (int i = 0; i < kBatchSize; ++i) {
      files.push_back(dir + "/in/inv" + std::to_string(i) + ".tag");
      WriteThrough(files.back(), text);
      WriteThrough(out + "/inv" + std::to_string(i) + ".tag", text);
    }
  }
  ~Batch() {
    std::error_code ec;
    if (!dir.empty()) std::filesystem::remove_all(dir, ec);
  }
};

// The batch for `storage`; its `files` are empty where that storage is
// missing.
const Batch& TheBatch(int64_t storage) {
  if (storage == kMemory) {
    static Batch memory("/dev/shm");
    return memory;
  }
  static Batch disk(std::filesystem::temp_directory_path());
  return disk;
}

// Wall, user and system seconds of a run, the CPU times over all threads.
struct Times {
  double wall = 0;
  double user = 0;
  double system = 0;
};

double Seconds(const timeval& t) {
  return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) / 1e6;
}

template <typename Body>
void AddTimes(Times& times, Body body) {
  rusage before{}, after{};
  getrusage(RUSAGE_SELF, &before);
  const auto start = std::chrono::steady_clock::now();
  body();
  times.wall +=
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start)
          .count();
  getrusage(RUSAGE_SELF, &after);
  times.user += Seconds(after.ru_utime) - Seconds(before.ru_utime);
  times.system += Seconds(after.ru_stime) - Seconds(before.ru_stime);
}

// The floor for one file: its bytes read whole and written as they are,
// through a temporary file renamed over the target.
void FloorOne(const Batch& batch, const std::string& file) {
  pelinor::TextReader reader;
  reader.Open(file);
  WriteThrough(batch.out + file.substr(file.rfind('/')), reader.Data());
}

// The floor on `jobs` threads, each taking every jobs-th file.
void RunFloor(const Batch& batch, size_t jobs) {
  std::vector<std::thread> threads;
  for (size_t t = 0; t < jobs; ++t) {
    threads.emplace_back([&batch, t, jobs] {
      for (size_t i = t; i < batch.files.size(); i += jobs) {
        FloorOne(batch, batch.files[i]);
      }
    });
  }
  for (std::thread& t : threads) t.join();
}

// Documents per second of the one-job runs so far, by storage, for the
// two-job runs' ratios.
double one_job_rates[2][2];

// Each iteration runs the floor and then the capture on the same files
// with the same number of threads, so that both meet the machine in the
// same state; the time reported is the capture's.
void BM_CaptureBatch(benchmark::State& state) {
  UseExampleRegistry();
  const int64_t storage = state.range(0);
  const int64_t jobs = state.range(1);
  const Batch& batch = TheBatch(storage);
  if (batch.files.empty()) {
    state.SkipWithError("no such storage on this machine");
    return;
  }
  cCaptureRunOptions options;
  options.ProfileFile = Example("profiles/Invoices.ini");
  options.TemplateFile = Example("templates/AcmeSupplies.tpl");
  options.OutDir = batch.out;
  options.Jobs = static_cast<int32_t>(jobs);
  std::string err;
  auto run = cCaptureRun::Open(options, err);
  if (!run) {
    state.SkipWithError(err.c_str());
    return;
  }
  size_t failed = 0;
  // One untimed pass first: replacing a file frees the old one, and the
  // disk's file system makes new files more slowly while many were just
  // freed. After it every timed pass, the floor's first one included,
  // follows a full pass.
  RunFloor(batch, static_cast<size_t>(jobs));
  Times floor, capture;
  for (auto _ : state) {
    AddTimes(floor, [&] { RunFloor(batch, static_cast<size_t>(jobs)); });
    const double before = capture.wall;
    AddTimes(capture, [&] {
      run->Run(batch.files, [&failed](const pelinor::cCaptureFileResult& r) {
        failed += r.Written.empty() || r.Report.Status != 0;
        return true;
      });
    });
    state.SetIterationTime(capture.wall - before);
  }
  if (failed != 0) state.SkipWithError("a document was not captured");
  const double docs = static_cast<double>(state.iterations() * kBatchSize);
  // Documents per second, and microseconds of CPU per document in the
  // program and in the kernel, all threads together.
  state.counters["floor_per_s"] = docs / floor.wall;
  state.counters["floor_user_us"] = floor.user * 1e6 / docs;
  state.counters["floor_sys_us"] = floor.system * 1e6 / docs;
  state.counters["user_us"] = capture.user * 1e6 / docs;
  state.counters["sys_us"] = capture.system * 1e6 / docs;
  state.counters["x_floor"] = floor.wall / capture.wall;
  const double rate = docs / capture.wall;
  const double floor_rate = docs / floor.wall;
  if (jobs == 1) {
    one_job_rates[storage][0] = floor_rate;
    one_job_rates[storage][1] = rate;
  } else if (one_job_rates[storage][1] > 0) {
    state.counters["floor_x_1_job"] = floor_rate / one_job_rates[storage][0];
    state.counters["x_1_job"] = rate / one_job_rates[storage][1];
  }
  state.SetItemsProcessed(state.iterations() * kBatchSize);
  state.SetLabel(std::string(StorageName(storage)) + ", " +
                 std::to_string(jobs) + " jobs, " + PELINOR_BENCH_MALLOC);
}
BENCHMARK(BM_CaptureBatch)
    ->Args({kDisk, 1})
    ->Args({kDisk, 2})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK(BM_CaptureBatch)
    ->Args({kMemory, 1})
    ->Args({kMemory, 2})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(10);

// ---------------------------------------------------------------------------
// Per-value costs
// ---------------------------------------------------------------------------

const char* const kNumericDates[] = {"12/10/2003", "1/2/03", "31.12.1999",
                                     "5-6-2004"};

void BM_NumericDateFloor(benchmark::State& state) {
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    const char* p = kNumericDates[i++ % 4];
    int parts[3] = {0, 0, 0};
    int digits[3] = {0, 0, 0};
    int k = 0;
    for (; *p != '\0' && k < 3; ++p) {
      if (*p >= '0' && *p <= '9') {
        parts[k] = parts[k] * 10 + (*p - '0');
        ++digits[k];
      } else {
        ++k;
      }
    }
    int year = parts[2];
    if (digits[2] == 2) year += year >= 70 ? 1900 : 2000;
    const bool ok = parts[0] >= 1 && parts[0] <= 31 && parts[1] >= 1 &&
                    parts[1] <= 12 && year >= 1970 && year <= 2069;
    out.assign({static_cast<char>('0' + parts[0] / 10),
                static_cast<char>('0' + parts[0] % 10), '/',
                static_cast<char>('0' + parts[1] / 10),
                static_cast<char>('0' + parts[1] % 10), '/'});
    out += std::to_string(year);
    benchmark::DoNotOptimize(ok);
    benchmark::DoNotOptimize(out.data());
  }
}
BENCHMARK(BM_NumericDateFloor);

void BM_SnapshotFormatDate(benchmark::State& state) {
  UseExampleRegistry();
  const auto snapshot = cSettingsSnapshot::Take();
  const bool use_snapshot = state.range(0) == 1;
  const pelinor::cFormat format;
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    const char* date = kNumericDates[i++ % 4];
    const bool ok = use_snapshot ? format.FormatDate(date, out, 100, *snapshot)
                                 : format.FormatDate(date, out, 100);
    benchmark::DoNotOptimize(ok);
  }
  state.SetLabel(use_snapshot ? "snapshot" : "per call");
}
BENCHMARK(BM_SnapshotFormatDate)->Arg(0)->Arg(1);

// "LL000000", the example invoice number's pattern, and a matching text.
constexpr char kPlainSpec[] = "LL000000";
constexpr char kPlainText[] = "AB123456";

void BM_PlainPatternFloor(benchmark::State& state) {
  pelinor::cPatternEngine engine;
  std::string err;
  bool ok = false;
  engine.LoadSBSExpression(kPlainSpec, err, ok);
  int error = 0;
  PCRE2_SIZE offset = 0;
  pcre2_code* code =
      pcre2_compile(reinterpret_cast<PCRE2_SPTR>(engine.RegExpFormat.c_str()),
                    PCRE2_ZERO_TERMINATED,
                    PCRE2_NEVER_UTF | PCRE2_NEVER_UCP | PCRE2_DOLLAR_ENDONLY,
                    &error, &offset, nullptr);
  pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  pcre2_match_data* md = pcre2_match_data_create(1, nullptr);
  const std::string text = kPlainText;
  for (auto _ : state) {
    const int rc =
        pcre2_jit_match(code, reinterpret_cast<PCRE2_SPTR>(text.data()),
                        text.size(), 0, 0, md, nullptr);
    benchmark::DoNotOptimize(rc);
  }
  pcre2_match_data_free(md);
  pcre2_code_free(code);
  state.SetLabel(engine.RegExpFormat);
}
BENCHMARK(BM_PlainPatternFloor);

void BM_SnapshotEvaluatePattern(benchmark::State& state) {
  UseExampleRegistry();
  const auto snapshot = cSettingsSnapshot::Take();
  const bool use_snapshot = state.range(0) == 1;
  std::string out, err;
  for (auto _ : state) {
    std::string text = kPlainText;
    const bool ok =
        use_snapshot
            ? pelinor::EvaluatePattern(text, kPlainSpec, false, true, true,
                                       false, out, err, "", *snapshot)
            : pelinor::EvaluatePattern(text, kPlainSpec, false, true, true,
                                       false, out, err, "");
    benchmark::DoNotOptimize(ok);
  }
  state.SetLabel(use_snapshot ? "snapshot" : "per call");
}
BENCHMARK(BM_SnapshotEvaluatePattern)->Arg(0)->Arg(1);

}  // namespace
