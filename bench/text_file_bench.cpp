// Throughput of whole-line, item and first-item reading over a 100 MB
// record file, beside a plain std::getline pass over the same file for
// reference.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "pelinor/text_file.h"

namespace {

// A 100 MB file of quoted-item lines like those of queue and status files.
char generated_path[64];

void RemoveRecordFile() { std::remove(generated_path); }

const std::string& RecordFile() {
  static const std::string path = [] {
    std::snprintf(generated_path, sizeof generated_path,
                  "/tmp/pelinor-bench-records-%ld.txt",
                  static_cast<long>(getpid()));
    std::string p = generated_path;
    pelinor::TextWriter w;
    w.Create(p);
    std::string line;
    size_t written = 0;
    for (int i = 0; written < (100u << 20); ++i) {
      line.clear();
      line = "\"C:\\Queue\\Local\\DOC" + std::to_string(i) +
             ".tag\",\"Invoices\",3," + std::to_string(i % 997) +
             ",#TRUE#,\"2024-05-0" + std::to_string(1 + i % 9) +
             " 10:11:12\",\"Supplier name " + std::to_string(i % 101) +
             "\",0.946";
      w.WriteLine(line);
      written += line.size() + 2;
    }
    w.Commit();
    std::atexit(RemoveRecordFile);
    return p;
  }();
  return path;
}

void BM_ReadLine(benchmark::State& state) {
  pelinor::TextReader r;
  r.Open(RecordFile());
  std::string line;
  for (auto _ : state) {
    r.Rewind();
    size_t lines = 0;
    while (r.ReadLine(line)) ++lines;
    benchmark::DoNotOptimize(lines);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(r.Data().size()));
}
BENCHMARK(BM_ReadLine)->Unit(benchmark::kMillisecond);

void BM_ReadItem(benchmark::State& state) {
  pelinor::TextReader r;
  r.Open(RecordFile());
  std::string item;
  for (auto _ : state) {
    r.Rewind();
    size_t items = 0;
    while (r.ReadItem(item)) ++items;
    benchmark::DoNotOptimize(items);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(r.Data().size()));
}
BENCHMARK(BM_ReadItem)->Unit(benchmark::kMillisecond);

// The first item of every line, the rest of the line skipped: how the
// tag-file and template readers take their one-value lines.
void BM_ReadFirstItem(benchmark::State& state) {
  pelinor::TextReader r;
  r.Open(RecordFile());
  std::string item;
  for (auto _ : state) {
    r.Rewind();
    size_t items = 0;
    while (r.ReadFirstItem(item)) ++items;
    benchmark::DoNotOptimize(items);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(r.Data().size()));
}
BENCHMARK(BM_ReadFirstItem)->Unit(benchmark::kMillisecond);

// Opening includes loading the whole file from the page cache.
void BM_OpenAndReadLines(benchmark::State& state) {
  std::string line;
  size_t size = 0;
  for (auto _ : state) {
    pelinor::TextReader r;
    r.Open(RecordFile());
    size = r.Data().size();
    while (r.ReadLine(line)) {
    }
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(size));
}
BENCHMARK(BM_OpenAndReadLines)->Unit(benchmark::kMillisecond);

void BM_StdGetlineReference(benchmark::State& state) {
  std::string line;
  size_t size = 0;
  for (auto _ : state) {
    std::ifstream in(RecordFile(), std::ios::binary);
    size = 0;
    while (std::getline(in, line)) size += line.size() + 1;
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(size));
}
BENCHMARK(BM_StdGetlineReference)->Unit(benchmark::kMillisecond);

}  // namespace
