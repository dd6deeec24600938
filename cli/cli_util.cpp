#include "cli/cli_util.h"

#include <cstdio>
#include <iostream>

namespace pelinor::cli {
namespace {

// Unicode code points of Windows-1252 bytes 0x80-0x9F; the five undefined
// bytes map to the C1 control of the same value.
constexpr char16_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t CodePoint(unsigned char b) {
  return b >= 0x80 && b < 0xA0 ? kHigh[b - 0x80] : b;
}

int ByteFor(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<int>(cp);
  for (int i = 0; i < 32; ++i) {
    if (kHigh[i] == cp) return 0x80 + i;
  }
  return -1;
}

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
    int byte = ByteFor(cp);
    out.push_back(byte < 0 ? '?' : static_cast<char>(byte));
    i += len;
  }
  return out;
}

std::string ToUtf8(std::string_view s) {
  std::string out;
  out.reserve(s.size() + s.size() / 8);
  for (char ch : s) {
    char32_t cp = CodePoint(static_cast<unsigned char>(ch));
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
