#include "pelinor/text.h"

#include <array>
#include <cstdint>
#include <cstring>

namespace pelinor {
namespace {

// Code points of the bytes 0x80-0x9F.
constexpr char16_t kHigh[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

std::string UCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = UpperChar(c);
  return out;
}

std::string LCase(std::string_view s) {
  std::string out(s);
  for (char& c : out) c = LowerChar(c);
  return out;
}

std::string_view LTrim(std::string_view s) {
  size_t b = 0;
  while (b < s.size() && s[b] == ' ') ++b;
  return s.substr(b);
}

std::string_view RTrim(std::string_view s) {
  size_t e = s.size();
  while (e > 0 && s[e - 1] == ' ') --e;
  return s.substr(0, e);
}

std::string_view Trim(std::string_view s) { return RTrim(LTrim(s)); }

std::string_view TrimBlanks(std::string_view s) {
  size_t b = 0;
  size_t e = s.size();
  while (b < e && (s[b] == ' ' || s[b] == '\t')) ++b;
  while (e > b && (s[e - 1] == ' ' || s[e - 1] == '\t')) --e;
  return s.substr(b, e - b);
}

size_t InStr(size_t start, std::string_view hay, std::string_view needle) {
  if (start < 1 || start > hay.size()) return 0;
  size_t at = hay.find(needle, start - 1);
  return at == std::string_view::npos ? 0 : at + 1;
}

std::string_view Mid(std::string_view s, size_t start, size_t length) {
  if (start < 1 || start > s.size()) return {};
  return s.substr(start - 1, length);
}

char32_t CodePointOf(char c) {
  unsigned char b = static_cast<unsigned char>(c);
  return b >= 0x80 && b < 0xA0 ? kHigh[b - 0x80] : b;
}

int Windows1252Of(char32_t cp) {
  if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) return static_cast<int>(cp);
  for (int i = 0; i < 32; ++i) {
    if (kHigh[i] == cp) return 0x80 + i;
  }
  return -1;
}

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

namespace {

// Converts `s` into `out`. With `loss`, stops at the first character with
// no Windows-1252 form and describes it there (false); otherwise such
// characters become "?".
bool ConvertUtf8(std::string_view s, std::string& out, Utf8Loss* loss) {
  out.clear();
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
    int byte = Windows1252Of(cp);
    if (byte < 0 && loss != nullptr) {
      *loss = Utf8Loss{i, len, cp};
      return false;
    }
    out.push_back(byte < 0 ? '?' : static_cast<char>(byte));
    i += len;
  }
  return true;
}

}  // namespace

std::string Utf8ToWindows1252(std::string_view s) {
  std::string out;
  ConvertUtf8(s, out, nullptr);
  return out;
}

bool Utf8ToWindows1252(std::string_view utf8, std::string& out,
                       Utf8Loss& loss) {
  return ConvertUtf8(utf8, out, &loss);
}

void AppendUtf8(std::string& out, char32_t cp) {
  if (cp < 0x80) {
    out.push_back(static_cast<char>(cp));
    return;
  }
  char bytes[4];
  size_t n;
  if (cp < 0x800) {
    bytes[0] = static_cast<char>(0xC0 | (cp >> 6));
    n = 2;
  } else if (cp < 0x10000) {
    bytes[0] = static_cast<char>(0xE0 | (cp >> 12));
    n = 3;
  } else {
    bytes[0] = static_cast<char>(0xF0 | (cp >> 18));
    n = 4;
  }
  for (size_t k = 1; k < n; ++k) {
    bytes[k] = static_cast<char>(0x80 | ((cp >> (6 * (n - 1 - k))) & 0x3F));
  }
  out.append(bytes, n);
}

std::string Windows1252ToUtf8(std::string_view s) {
  std::string out;
  out.reserve(s.size() + s.size() / 8);
  // Runs of ASCII, the common case, are found eight bytes at a time and
  // copied whole.
  size_t run = 0;
  size_t i = 0;
  while (i < s.size()) {
    uint64_t word;
    if (i + sizeof word <= s.size()) {
      std::memcpy(&word, s.data() + i, sizeof word);
      if ((word & 0x8080808080808080ull) == 0) {
        i += sizeof word;
        continue;
      }
    }
    if (static_cast<unsigned char>(s[i]) >= 0x80) {
      out.append(s.data() + run, i - run);
      AppendUtf8(out, CodePointOf(s[i]));
      run = i + 1;
    }
    ++i;
  }
  out.append(s.data() + run, s.size() - run);
  return out;
}

}  // namespace pelinor
