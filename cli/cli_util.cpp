#include "cli/cli_util.h"

#include <cstdio>
#include <iostream>

#include "pelinor/text.h"

namespace pelinor::cli {
namespace {

int ExitCode = 0;

}  // namespace

std::string FromUtf8(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  size_t i = 0;
  while (i < s.size()) {
    unsigned char b = static_cast<unsigned char>(s[i]);
    size_t len = b < 0x80         ? 1
                 : (b >> 5) == 6  ? 2
                 : (b >> 4) == 14 ? 3
                 : (b >> 3) == 30 ? 4
                                  : 0;
    char32_t cp = 0;
    bool valid = len != 0 && i + len <= s.size();
    if (valid) {
      cp = len == 1 ? b : b & (0x7F >> len);
      for (size_t k = 1; k < len; ++k) {
        unsigned char c = static_cast<unsigned char>(s[i + k]);
        if ((c & 0xC0) != 0x80) {
          valid = false;
          break;
        }
        cp = (cp << 6) | (c & 0x3F);
      }
    }
    if (!valid) {
      // Not UTF-8: take the byte as Windows-1252 already.
      out.push_back(static_cast<char>(b));
      ++i;
      continue;
    }
    int byte = Windows1252Of(cp);
    out.push_back(byte < 0 ? '?' : static_cast<char>(byte));
    i += len;
  }
  return out;
}

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

void PrintLine(std::string_view cp1252) {
  std::string line = ToUtf8(cp1252);
  line.push_back('\n');
  std::fwrite(line.data(), 1, line.size(), stdout);
}

void PrintJson(const nlohmann::json& value) {
  std::string text = value.dump(2);
  text.push_back('\n');
  std::fwrite(text.data(), 1, text.size(), stdout);
}

void Fail(std::string_view cp1252_message, int code) {
  std::string line = "pelinor: " + ToUtf8(cp1252_message) + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
  ExitCode = code;
}

int ExitStatus() { return ExitCode; }

void SetExitStatus(int code) { ExitCode = code; }

}  // namespace pelinor::cli
