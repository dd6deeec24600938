// Runs a fuzz target over stored inputs when it is not built with
// libFuzzer: each argument is a file or a directory of files. Exits 0 when
// every input ran; a broken property aborts.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void RunOne(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()),
                         bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
  size_t ran = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path arg(argv[i]);
    if (std::filesystem::is_directory(arg)) {
      std::vector<std::filesystem::path> files;
      for (const auto& entry : std::filesystem::directory_iterator(arg)) {
        if (entry.is_regular_file()) files.push_back(entry.path());
      }
      std::sort(files.begin(), files.end());
      for (const auto& file : files) {
        RunOne(file);
        ++ran;
      }
    } else if (std::filesystem::is_regular_file(arg)) {
      RunOne(arg);
      ++ran;
    } else {
      std::fprintf(stderr, "no such input: %s\n", argv[i]);
      return 2;
    }
  }
  std::printf("%zu inputs ran\n", ran);
  return 0;
}
