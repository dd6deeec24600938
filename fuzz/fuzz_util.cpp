#include "fuzz_util.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <set>
#include <sstream>

namespace pelinor::fuzz {
namespace {

std::set<std::string>& Created() {
  static auto* created = new std::set<std::string>;
  return *created;
}

void RemoveCreated() {
  for (const std::string& path : Created()) {
    std::remove(path.c_str());
    std::remove((path + ".lock").c_str());  // left by the registry store
  }
}

std::string ScratchDir() {
  // Memory-backed when there is one: fuzzers write a file per input.
  if (access("/dev/shm", W_OK) == 0) return "/dev/shm";
  const char* tmp = std::getenv("TMPDIR");
  return tmp != nullptr && *tmp != '\0' ? tmp : "/tmp";
}

}  // namespace

std::string ScratchPath(std::string_view tag) {
  static const std::string dir = ScratchDir();
  static std::once_flag registered;
  std::call_once(registered, [] { std::atexit(RemoveCreated); });
  std::string path = dir + "/pelinor-fuzz-" + std::to_string(getpid()) + "-" +
                     std::string(tag);
  Created().insert(path);
  return path;
}

std::string WriteScratch(std::string_view tag, std::string_view bytes) {
  const std::string path = ScratchPath(tag);
  const std::string temp = ScratchPath(std::string(tag) + ".new");
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    Check(static_cast<bool>(out), "cannot write a scratch file");
  }
  Check(std::rename(temp.c_str(), path.c_str()) == 0,
        "cannot replace a scratch file");
  return path;
}

std::string ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream out;
  out << in.rdbuf();
  return out.str();
}

std::vector<std::string> Split(const uint8_t* data, size_t size, size_t n) {
  std::vector<std::string> parts;
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  for (size_t i = 0; i + 1 < n; ++i) {
    const size_t nul = rest.find('\0');
    parts.emplace_back(rest.substr(0, nul));
    rest = nul == std::string_view::npos ? std::string_view()
                                         : rest.substr(nul + 1);
  }
  parts.emplace_back(rest);
  return parts;
}

void Check(bool ok, const char* what) {
  if (ok) return;
  std::fprintf(stderr, "property broken: %s\n", what);
  std::abort();
}

}  // namespace pelinor::fuzz
