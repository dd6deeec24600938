// Log lines shared by format logging and pattern evaluation.
// Format: "yyyy-mm-dd hh:mm:ss message" CR LF (docs/formats/logs.md).

#include "pelinor/log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace pelinor {

std::string LogLineText(std::string_view message) {
  std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  char stamp[96];
  std::snprintf(stamp, sizeof stamp, "%04d-%02d-%02d %02d:%02d:%02d ",
                local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                local.tm_hour, local.tm_min, local.tm_sec);
  std::string line(stamp);
  line.append(message);
  return line;
}

void AppendLogLine(const std::string& path, std::string_view message) {
  if (path.empty()) return;
  std::string line = LogLineText(message);
  line.append("\r\n");
  int fd =
      ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (fd < 0) return;
  // One write per line: appends from several processes never interleave
  // inside a line.
  ssize_t n = ::write(fd, line.data(), line.size());
  (void)n;
  ::close(fd);
}

std::string FormatLogPath() {
  const char* v = std::getenv(kFormatLogVariable);
  return v == nullptr ? std::string() : std::string(v);
}

void LogFormatLine(std::string_view message) {
  std::string path = FormatLogPath();
  if (!path.empty()) AppendLogLine(path, message);
}

}  // namespace pelinor
