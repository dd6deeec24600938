#include "cli/cli_util.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "core/reg_file_store.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor::cli {
namespace {

int ExitCode = 0;
int StdoutError = 0;

// Decodes the UTF-8 sequence at s[i]: its length and code point, or length
// 0 when the bytes there are not UTF-8.
size_t DecodeUtf8(std::string_view s, size_t i, char32_t& cp) {
  const unsigned char b = static_cast<unsigned char>(s[i]);
  const size_t len = b < 0x80         ? 1
                     : (b >> 5) == 6  ? 2
                     : (b >> 4) == 14 ? 3
                     : (b >> 3) == 30 ? 4
                                      : 0;
  if (len == 0 || i + len > s.size()) return 0;
  cp = len == 1 ? b : b & (0x7F >> len);
  for (size_t k = 1; k < len; ++k) {
    const unsigned char c = static_cast<unsigned char>(s[i + k]);
    if ((c & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (c & 0x3F);
  }
  return len;
}

std::string Utf8Text(std::string_view s, bool throw_on_loss) {
  std::string out;
  out.reserve(s.size());
  size_t i = 0;
  while (i < s.size()) {
    char32_t cp = 0;
    const size_t len = DecodeUtf8(s, i, cp);
    if (len == 0) {
      // Not UTF-8: take the byte as Windows-1252 already.
      out.push_back(s[i]);
      ++i;
      continue;
    }
    const int byte = Windows1252Of(cp);
    if (byte < 0 && throw_on_loss) {
      char code[16];
      std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(cp));
      throw EncodingError("\"" + std::string(s.substr(i, len)) + "\" (" + code +
                          ") in \"" + std::string(s) +
                          "\" cannot be written in Windows-1252");
    }
    out.push_back(byte < 0 ? '?' : static_cast<char>(byte));
    i += len;
  }
  return out;
}

void WriteStderr(const std::string& line) {
  std::fwrite(line.data(), 1, line.size(), stderr);
}

size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<size_t> row(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diag = row[0];
    row[0] = i;
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t up = row[j];
      row[j] = std::min(
          {row[j] + 1, row[j - 1] + 1, diag + (a[i - 1] == b[j - 1] ? 0 : 1)});
      diag = up;
    }
  }
  return row[b.size()];
}

// Removes the temporary files of writes in flight, then dies of the signal
// as if it had not been caught, so the parent sees the true cause. Only
// async-signal-safe calls.
extern "C" void OnTerminatingSignal(int sig) {
  RemoveTemporaryFiles();
  std::signal(sig, SIG_DFL);
  std::raise(sig);
}

}  // namespace

void InstallSignalHandlers() {
  struct sigaction action;
  std::memset(&action, 0, sizeof action);
  action.sa_handler = OnTerminatingSignal;
  sigemptyset(&action.sa_mask);
  for (int sig : {SIGTERM, SIGINT, SIGHUP}) sigaction(sig, &action, nullptr);
  std::signal(SIGPIPE, SIG_DFL);
}

std::string FromUtf8(std::string_view s) { return Utf8Text(s, true); }

std::string PathText(std::string_view s) { return Utf8Text(s, false); }

std::string ToUtf8(std::string_view s) {
  std::string out;
  out.reserve(s.size() + s.size() / 8);
  for (char ch : s) {
    char32_t cp = CodePointOf(ch);
    if (cp < 0x80) {
      out.push_back(static_cast<char>(cp));
    } else if (cp < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (cp >> 6)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    } else {
      out.push_back(static_cast<char>(0xE0 | (cp >> 12)));
      out.push_back(static_cast<char>(0x80 | ((cp >> 6) & 0x3F)));
      out.push_back(static_cast<char>(0x80 | (cp & 0x3F)));
    }
  }
  return out;
}

nlohmann::json Json(std::string_view cp1252) { return ToUtf8(cp1252); }

void WriteStdout(std::string_view utf8) {
  if (StdoutError != 0) return;  // the rest would be lost as well
  errno = 0;
  if (std::fwrite(utf8.data(), 1, utf8.size(), stdout) != utf8.size()) {
    StdoutError = errno != 0 ? errno : EIO;
  }
}

int FlushStdout() {
  errno = 0;
  if (std::fflush(stdout) != 0 && StdoutError == 0) {
    StdoutError = errno != 0 ? errno : EIO;
  }
  if (std::ferror(stdout) && StdoutError == 0) StdoutError = EIO;
  return StdoutError;
}

void PrintLine(std::string_view cp1252) {
  std::string line = ToUtf8(cp1252);
  line.push_back('\n');
  WriteStdout(line);
}

void PrintJson(const nlohmann::json& value) {
  std::string text = value.dump(2);
  text.push_back('\n');
  WriteStdout(text);
}

void PrintJsonLine(const nlohmann::json& value) {
  std::string text = value.dump();
  text.push_back('\n');
  WriteStdout(text);
}

void Fail(std::string_view cp1252_message, int code) {
  WriteStderr("pelinor: " + ToUtf8(cp1252_message) + "\n");
  ExitCode = code;
}

void Warn(std::string_view cp1252_message) {
  WriteStderr("pelinor: warning: " + ToUtf8(cp1252_message) + "\n");
}

std::string FileErrorText(const std::string& file, std::string_view what,
                          int error) {
  // A library message that names the file already needs no prefix.
  const std::string shown = PathText(file);
  std::string text = what.find(shown) != std::string_view::npos
                         ? std::string(what)
                         : shown + ": " + std::string(what);
  if (error > 0) text += std::string(": ") + std::strerror(error);
  return text;
}

void FailFile(const std::string& file, std::string_view what, int error) {
  Fail(FileErrorText(file, what, error < 0 ? LastFileError() : error));
}

bool CheckConfigurationFile(const std::string& file, ConfigForm form) {
  std::error_code ec;
  const auto status = std::filesystem::status(file, ec);
  if (ec) {
    FailFile(file, "cannot read", ec.value());
    return false;
  }
  if (std::filesystem::is_directory(status)) {
    FailFile(file, "is a directory, not a configuration file", 0);
    return false;
  }
  TextReader reader;
  ClearFileError();
  if (!reader.Open(file)) {
    FailFile(file, "cannot read");
    return false;
  }
  const std::string_view data = reader.Data();
  if (data.find_first_not_of(" \t\r\n") == std::string_view::npos) {
    FailFile(file, "is empty, not a configuration file", 0);
    return false;
  }
  if (data.find('\0') != std::string_view::npos) {
    FailFile(file, "is not a text file", 0);
    return false;
  }
  if (form == ConfigForm::kVersioned) {
    std::string line;
    reader.ReadLine(line);
    const std::string_view first = Trim(line);
    if (first.size() < 4 || UCase(first.substr(0, 3)) != "VER" ||
        first[3] < '0' || first[3] > '9') {
      FailFile(file,
               "has no version line (\"ver...\"), not a configuration file", 0);
      return false;
    }
    return true;
  }
  for (std::string line; reader.ReadLine(line);) {
    const std::string_view text = Trim(line);
    if (text.size() >= 2 && text.front() == '[' && text.back() == ']') {
      return true;
    }
  }
  FailFile(file, "has no section (\"[Name]\" line), not a settings file", 0);
  return false;
  return true;
}

void WarnIfUtf8(const std::string& file) {
  TextReader reader;
  if (!reader.Open(file)) return;
  const std::string_view data = reader.Data();
  if (data.substr(0, 3) == "\xEF\xBB\xBF") {
    Warn(PathText(file) +
         ": starts with a UTF-8 byte-order mark; the file is read as "
         "Windows-1252");
    return;
  }
  bool non_ascii = false;
  for (size_t i = 0; i < data.size();) {
    char32_t cp = 0;
    const size_t len = DecodeUtf8(data, i, cp);
    if (len == 0) return;  // not UTF-8: Windows-1252 as expected
    non_ascii |= len > 1;
    i += len;
  }
  if (non_ascii) {
    Warn(PathText(file) +
         ": is UTF-8 text; the file is read as Windows-1252, so each "
         "non-ASCII character reads as two or more characters");
  }
}

bool UseRegistryFile(const std::string& file, bool needed) {
  if (!file.empty()) setenv("PELINOR_REGISTRY", file.c_str(), 1);
  if (!needed) return true;
  const char* named = std::getenv("PELINOR_REGISTRY");
  if (named == nullptr || *named == '\0') return true;
  const std::string path = named;
  int error = 0;
  switch (registry_internal::InspectStoreFile(path, &error)) {
    case registry_internal::StoreFileState::kReady:
      return true;
    case registry_internal::StoreFileState::kMissing:
      FailFile(path, "cannot read registry file", ENOENT);
      return false;
    case registry_internal::StoreFileState::kForeign:
      FailFile(path,
               "not a registry file (no \"Windows Registry Editor Version "
               "5.00\" header)",
               0);
      return false;
    case registry_internal::StoreFileState::kUnreadable:
      break;
  }
  FailFile(path, "cannot read registry file", error);
  return false;
}

bool CheckPatternSpec(const std::string& spec) {
  cPatternEngine engine;
  std::string error;
  bool ok = false;
  engine.LoadSBSExpression(spec, error, ok);
  if (!ok) {
    Fail("invalid pattern specification \"" + spec + "\": " + error, 2);
  }
  return ok;
}

bool ProgressWanted() {
  const char* term = std::getenv("TERM");
  if (term != nullptr && std::strcmp(term, "dumb") == 0) return false;
  return isatty(STDERR_FILENO) != 0;
}

size_t HelpWidth() {
  struct winsize ws;
  if (isatty(STDOUT_FILENO) && ioctl(STDOUT_FILENO, TIOCGWINSZ, &ws) == 0 &&
      ws.ws_col >= 40) {
    return ws.ws_col;
  }
  return 80;
}

std::string WrapText(std::string_view text, size_t width) {
  std::string out;
  size_t pos = 0;
  while (true) {
    size_t end = text.find('\n', pos);
    const bool last = end == std::string_view::npos;
    if (last) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    const size_t lead = std::min(line.find_first_not_of(' '), line.size());
    // Continuation lines start under the description column when the line
    // has one (an indented name, two or more blanks, then text).
    size_t indent = lead;
    const size_t gap = lead > 0 ? line.find("  ", lead) : std::string::npos;
    if (gap != std::string_view::npos) {
      const size_t column = line.find_first_not_of(' ', gap);
      if (column != std::string_view::npos && column <= width / 2) {
        indent = column;
      }
    }
    size_t start = 0;  // where the current output line's text begins
    while (line.size() - start + (start == 0 ? 0 : indent) > width) {
      const size_t room = start == 0 ? width : width - indent;
      const size_t floor = start == 0 ? std::max(indent, lead) : start;
      size_t cut = line.rfind(' ', start + room);
      if (cut == std::string_view::npos || cut <= floor) {
        cut = line.find(' ', start + room);  // a word longer than the room
        if (cut == std::string_view::npos) break;
      }
      size_t keep = cut;
      while (keep > start && line[keep - 1] == ' ') --keep;
      out.append(line.substr(start, keep - start));
      out.push_back('\n');
      out.append(indent, ' ');
      start = cut;
      while (start < line.size() && line[start] == ' ') ++start;
    }
    out.append(line.substr(start));
    if (last) break;
    out.push_back('\n');
    pos = end + 1;
  }
  return out;
}

std::string NearestName(std::string_view typed,
                        const std::vector<std::string>& names) {
  std::string best;
  size_t best_distance = static_cast<size_t>(-1);
  for (const std::string& name : names) {
    const size_t d = EditDistance(typed, name);
    const size_t limit = (std::max(typed.size(), name.size()) + 2) / 3;
    if (d <= limit && d < best_distance) {
      best = name;
      best_distance = d;
    }
  }
  return best;
}

int ExitStatus() { return ExitCode; }

void SetExitStatus(int code) { ExitCode = code; }

}  // namespace pelinor::cli
