// Reading a large capture profile: a settings-form profile with the usual
// "Main", "Permissions", "States" and reason sections, 10,000 "Field"n
// sections of nine keys each and three "LineItemHdr"n sections (about
// 1.8 MB, CR LF line ends), read whole by cProfile::ReadSettings.
//
// The read must stay linear in the size of the file: every "Field"n
// section is found through the settings reader's index, never by a scan.
// BM_ProfileReadSettings/N reads profiles of N field sections so the
// growth can be seen directly.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>

#include "pelinor/profile.h"

namespace {

const char* const kTypes[] = {"1", "2", "3", "4", "5", "100", "200"};

std::string GenerateProfile(int fields) {
  std::string data =
      "ver0.946\r\n[Main]\r\nDisplayName:Supplier invoices\r\n"
      "ValidateScript:validate_invoice.vbs\r\nExportScript:export.vbs\r\n"
      "TemplatesConfig:template.ini\r\nTemplateDir:templates\r\n"
      "QueueDirLocal:queue\r\nInvalidState:102\r\n"
      "[Permissions]\r\nAllowed:ann \"Bob Smith\" carol\r\n"
      "[States]\r\nSTATE100:Scanned:Held after scanning\r\n"
      "STATE101:Recognised\r\nSTATE102:Awaiting validation\r\n"
      "[HoldReasons]\r\nSupplier unknown\r\nPO missing\r\n"
      "[DeleteReasons]\r\nDuplicate\r\n";
  for (int n = 1; n <= fields; ++n) {
    const std::string id = std::to_string(n);
    data += "[Field" + id + "]\r\nName:Field" + id +
            "\r\nDisplayName:Captured field number " + id +
            "\r\nType:" + kTypes[n % 7] +
            "\r\nLocation:" + std::to_string(n % 3 - 1) +
            "\r\nCaptionSearch:Caption " + id +
            "\r\nCatagory:" + (n % 50 == 0 ? "2" : "1") +
            "\r\nPattern:[A-Z]{2}\\d{6}\r\nApplyPatternMatch:" +
            (n % 2 == 0 ? "1" : "0") + "\r\nInternalValidateLevel:2\r\n";
  }
  data +=
      "[LineItemHdr1]\r\nName:Qty\r\nType:2\r\n[LineItemHdr2]\r\n"
      "Name:UnitPrice\r\nType:4\r\n[LineItemHdr3]\r\nName:Description\r\n";
  return data;
}

// One generated profile file per size, written into the temporary
// directory and removed when the program ends.
class ProfileFile {
 public:
  explicit ProfileFile(int fields) {
    const char* tmp = std::getenv("TMPDIR");
    path_ = std::string(tmp != nullptr && *tmp != '\0' ? tmp : "/tmp") +
            "/pelinor-profile-bench-XXXXXX";
    const int fd = mkstemp(path_.data());
    if (fd < 0) std::abort();
    const std::string data = GenerateProfile(fields);
    size_ = data.size();
    if (write(fd, data.data(), data.size()) !=
        static_cast<ssize_t>(data.size())) {
      std::abort();
    }
    close(fd);
  }
  ~ProfileFile() { std::remove(path_.c_str()); }
  ProfileFile(const ProfileFile&) = delete;
  ProfileFile& operator=(const ProfileFile&) = delete;

  const std::string& path() const { return path_; }
  size_t size() const { return size_; }

 private:
  std::string path_;
  size_t size_ = 0;
};

const ProfileFile& File(int fields) {
  static std::map<int, std::unique_ptr<ProfileFile>> files;
  auto& file = files[fields];
  if (file == nullptr) file = std::make_unique<ProfileFile>(fields);
  return *file;
}

void BM_ProfileReadSettings(benchmark::State& state) {
  const int fields = static_cast<int>(state.range(0));
  const ProfileFile& file = File(fields);
  for (auto _ : state) {
    pelinor::cProfile profile;
    std::string err;
    if (!profile.ReadSettings("Invoices", file.path(), err) ||
        profile.FieldTypes.Count() + profile.PseudoFieldTypes.Count() !=
            fields) {
      state.SkipWithError("the generated profile did not read");
      break;
    }
    benchmark::DoNotOptimize(profile);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          static_cast<int64_t>(file.size()));
  state.counters["file_bytes"] = static_cast<double>(file.size());
}
BENCHMARK(BM_ProfileReadSettings)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(20000)
    ->Unit(benchmark::kMillisecond);

}  // namespace
