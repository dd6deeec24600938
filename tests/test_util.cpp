#include "test_util.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace pelinor::testing {

TempDir::TempDir() {
  std::string tmpl =
      (std::filesystem::temp_directory_path() / "pelinor-test-XXXXXX").string();
  if (mkdtemp(tmpl.data()) == nullptr) {
    throw std::runtime_error("cannot create a temporary directory");
  }
  path_ = tmpl;
}

TempDir::~TempDir() {
  std::error_code ec;
  std::filesystem::remove_all(path_, ec);
}

std::string TempDir::File(std::string_view name) const {
  return path_ + "/" + std::string(name);
}

void WriteFile(const std::string& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in),
                     std::istreambuf_iterator<char>());
}

std::string DataPath(std::string_view name) {
  return std::string(PELINOR_SOURCE_DIR) + "/tests/data/" + std::string(name);
}

std::vector<std::string> FileNames(const std::string& dir) {
  std::vector<std::string> names;
  for (const auto& e : std::filesystem::directory_iterator(dir)) {
    names.push_back(e.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

ScopedEnv::ScopedEnv(const char* name, const std::string& value) : name_(name) {
  const char* old = std::getenv(name);
  had_old_ = old != nullptr;
  if (had_old_) old_ = old;
  setenv(name, value.c_str(), 1);
}

ScopedEnv::~ScopedEnv() {
  if (had_old_) {
    setenv(name_.c_str(), old_.c_str(), 1);
  } else {
    unsetenv(name_.c_str());
  }
}

}  // namespace pelinor::testing
