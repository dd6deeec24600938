#include "pelinor/file_system.h"

#include <sys/stat.h>
#include <unistd.h>

namespace pelinor {

bool FileExists(const std::string& path) {
  struct stat st;
  return !path.empty() && ::stat(path.c_str(), &st) == 0;
}

void DeleteFileQuietly(const std::string& path) {
  if (!path.empty()) ::unlink(path.c_str());
}

std::string JoinPath(std::string_view dir, std::string_view name) {
  std::string out(dir);
#ifndef _WIN32
  // Settings written for Windows end directories with "\"; here only "/"
  // separates.
  if (!out.empty() && out.back() == '\\') out.back() = '/';
#endif
  if (!out.empty() && out.back() != '/' && out.back() != '\\') {
    out.push_back('/');
  }
  out.append(name);
  return out;
}

}  // namespace pelinor
