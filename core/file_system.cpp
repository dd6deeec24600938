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

std::string FileNameOf(std::string_view path) {
  const size_t slash = path.find_last_of("/\\");
  return std::string(slash == std::string_view::npos ? path
                                                     : path.substr(slash + 1));
}

std::string FileStemOf(std::string_view path) {
  std::string name = FileNameOf(path);
  const size_t dot = name.rfind('.');
  if (dot != std::string::npos && dot > 0) name.resize(dot);
  return name;
}

}  // namespace pelinor
