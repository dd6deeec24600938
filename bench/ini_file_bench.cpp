// Settings-file look-ups on a large generated file: 10,000 sections of 12
// "Name:Value" records each (about 1.8 MB, CR LF line ends).
//
// BM_IniFileOpenAndReadAll opens the file and asks for every record of
// every section, as a profile reader does; BM_IniFileOpen opens it and
// answers one question; BM_IniFileSingleLookUp answers one look-up on a
// file already open.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "pelinor/ini_file.h"

namespace {

constexpr int kSections = 10000;
const char* const kKeys[] = {"Name",   "DataType", "Pattern",  "Left",
                             "Top",    "Width",    "Height",   "Required",
                             "MinLen", "MaxLen",   "PageMode", "Location"};
constexpr int kKeyCount = sizeof(kKeys) / sizeof(kKeys[0]);

// The generated file, written once into the temporary directory and
// removed when the program ends.
class SettingsFile {
 public:
  SettingsFile() {
    const char* tmp = std::getenv("TMPDIR");
    path_ = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
            "/pelinor-ini-bench-XXXXXX";
    int fd = mkstemp(path_.data());
    if (fd < 0) std::abort();
    std::string data;
    for (int s = 0; s < kSections; ++s) {
      sections_.push_back("Field" + std::to_string(s + 1));
      data += "[" + sections_.back() + "]\r\n";
      for (int k = 0; k < kKeyCount; ++k) {
        data += kKeys[k];
        data += ":";
        data += std::to_string((s * 7 + k * 13) % 1000);
        data += "\r\n";
      }
    }
    size_ = data.size();
    if (write(fd, data.data(), data.size()) !=
        static_cast<ssize_t>(data.size())) {
      std::abort();
    }
    close(fd);
  }
  ~SettingsFile() { std::remove(path_.c_str()); }

  const std::string& path() const { return path_; }
  const std::vector<std::string>& sections() const { return sections_; }
  size_t size() const { return size_; }

 private:
  std::string path_;
  std::vector<std::string> sections_;
  size_t size_ = 0;
};

const SettingsFile& File() {
  static const SettingsFile file;
  return file;
}

// CPU time of this thread in milliseconds, the clock the benchmark's own
// figures use, so that a busy machine does not inflate "ms".
double CpuMilliseconds() {
  timespec ts;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ts);
  return static_cast<double>(ts.tv_sec) * 1e3 +
         static_cast<double>(ts.tv_nsec) / 1e6;
}

// Reports the file's megabytes per second ("MB=.../s") and the CPU
// milliseconds per iteration since `start_ms`.
void SetCounters(benchmark::State& state, double bytes_per_iteration,
                 double start_ms) {
  state.counters["MB"] = benchmark::Counter(
      bytes_per_iteration / 1e6, benchmark::Counter::kIsIterationInvariantRate);
  state.counters["ms"] = benchmark::Counter(CpuMilliseconds() - start_ms,
                                            benchmark::Counter::kAvgIterations);
}

void BM_IniFileOpenAndReadAll(benchmark::State& state) {
  const SettingsFile& file = File();
  std::vector<std::string> keys(kKeys, kKeys + kKeyCount);
  const std::string dflt;
  const double start = CpuMilliseconds();
  for (auto _ : state) {
    pelinor::cIniFile ini;
    std::string err;
    for (const std::string& section : file.sections()) {
      for (const std::string& key : keys) {
        benchmark::DoNotOptimize(
            ini.GetSettingString(section, key, dflt, file.path(), err));
      }
    }
  }
  SetCounters(state, static_cast<double>(file.size()), start);
  state.counters["look-ups/s"] =
      benchmark::Counter(static_cast<double>(kSections) * kKeyCount,
                         benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_IniFileOpenAndReadAll)->Unit(benchmark::kMillisecond);

void BM_IniFileOpen(benchmark::State& state) {
  const SettingsFile& file = File();
  const double start = CpuMilliseconds();
  for (auto _ : state) {
    pelinor::cIniFile ini;
    std::string err;
    benchmark::DoNotOptimize(ini.FindHeader("Field1", file.path(), err));
  }
  SetCounters(state, static_cast<double>(file.size()), start);
}
BENCHMARK(BM_IniFileOpen)->Unit(benchmark::kMillisecond);

void BM_IniFileSingleLookUp(benchmark::State& state) {
  const SettingsFile& file = File();
  pelinor::cIniFile ini;
  std::string err;
  ini.FindHeader("Field1", file.path(), err);
  const std::string dflt;
  const std::vector<std::string> keys(kKeys, kKeys + kKeyCount);
  // Walks the sections with a stride so that no two calls in a row ask for
  // the same section, and the keys in turn.
  size_t i = 0;
  for (auto _ : state) {
    const std::string& section =
        file.sections()[(i * 7919) % file.sections().size()];
    const std::string& key = keys[i % kKeyCount];
    benchmark::DoNotOptimize(
        ini.GetSettingString(section, key, dflt, file.path(), err));
    ++i;
  }
}
BENCHMARK(BM_IniFileSingleLookUp);

}  // namespace
