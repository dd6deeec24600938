// Helpers shared by the unit tests: scratch directories and whole-file
// reading and writing of exact bytes.

#ifndef PELINOR_TESTS_TEST_UTIL_H_
#define PELINOR_TESTS_TEST_UTIL_H_

#include <sys/resource.h>

#include <csignal>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor::testing {

// A fresh directory under the system temporary directory, removed with
// everything in it when the object is destroyed.
class TempDir {
 public:
  TempDir();
  ~TempDir();
  TempDir(const TempDir&) = delete;
  TempDir& operator=(const TempDir&) = delete;

  const std::string& path() const { return path_; }

  // The path of `name` inside the directory.
  std::string File(std::string_view name) const;

 private:
  std::string path_;
};

// Writes `bytes` to `path` exactly, replacing any file there.
void WriteFile(const std::string& path, std::string_view bytes);

// The exact bytes of the file at `path` ("" when it cannot be read).
std::string ReadFile(const std::string& path);

// The path of a file under tests/data/ in the source tree.
std::string DataPath(std::string_view name);

// The names of the entries of directory `dir`, sorted: what a test checks
// to see that no temporary or stray file was left there.
std::vector<std::string> FileNames(const std::string& dir);

// Sets an environment variable for the life of the object and restores
// its previous value (or absence) afterwards.
class ScopedEnv {
 public:
  ScopedEnv(const char* name, const std::string& value);
  ~ScopedEnv();
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  std::string name_;
  std::string old_;
  bool had_old_;
};

// Runs `body` with the process's file size limit set to `bytes`, so that
// writes past it fail (with the signal that would end the process
// ignored).
template <typename Body>
void WithFileSizeLimit(rlim_t bytes, Body body) {
  rlimit old{};
  getrlimit(RLIMIT_FSIZE, &old);
  auto old_handler = std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit = old;
  limit.rlim_cur = bytes;
  setrlimit(RLIMIT_FSIZE, &limit);
  body();
  setrlimit(RLIMIT_FSIZE, &old);
  std::signal(SIGXFSZ, old_handler);
}

}  // namespace pelinor::testing

#endif  // PELINOR_TESTS_TEST_UTIL_H_
