// Byte-text helpers shared by every reader, writer and value routine.
//
// All text in the library is Windows-1252: one byte is one character and
// every position and length counts bytes. Case conversion uses a fixed
// Windows-1252 table and never the C locale, so results do not depend on
// the machine's settings.
//
// Thread safety: every function here is pure and may be called from any
// thread.

#ifndef PELINOR_TEXT_H_
#define PELINOR_TEXT_H_

#include <array>
#include <string>
#include <string_view>

namespace pelinor {

namespace text_internal {

// The case tables, built at compile time and kept in the header so that a
// comparison of names costs a table load per byte, not a call.
struct CaseTables {
  std::array<char, 256> upper;
  std::array<char, 256> lower;
};

constexpr CaseTables BuildCaseTables() {
  CaseTables t{};
  for (int i = 0; i < 256; ++i) {
    t.upper[static_cast<size_t>(i)] = static_cast<char>(i);
    t.lower[static_cast<size_t>(i)] = static_cast<char>(i);
  }
  auto pair = [&t](int lower, int upper) {
    t.upper[static_cast<size_t>(lower)] = static_cast<char>(upper);
    t.lower[static_cast<size_t>(upper)] = static_cast<char>(lower);
  };
  for (int c = 'a'; c <= 'z'; ++c) pair(c, c - 32);
  for (int c = 0xE0; c <= 0xFE; ++c) {
    if (c != 0xF7) pair(c, c - 32);
  }
  pair(0x9A, 0x8A);
  pair(0x9C, 0x8C);
  pair(0x9E, 0x8E);
  pair(0xFF, 0x9F);
  return t;
}

inline constexpr CaseTables kCaseTables = BuildCaseTables();

}  // namespace text_internal

// UpperChar()
//
// Returns the Windows-1252 upper-case form of `c`: a-z, 0xE0-0xFE (except
// 0xF7) to 0xC0-0xDE, 0x9A/0x9C/0x9E to 0x8A/0x8C/0x8E, 0xFF to 0x9F.
// Every other byte is returned unchanged.
inline char UpperChar(char c) {
  return text_internal::kCaseTables.upper[static_cast<unsigned char>(c)];
}

// LowerChar()
//
// The inverse mapping of UpperChar().
inline char LowerChar(char c) {
  return text_internal::kCaseTables.lower[static_cast<unsigned char>(c)];
}

// UCase()
// LCase()
//
// Whole-text forms of UpperChar() and LowerChar().
std::string UCase(std::string_view s);
std::string LCase(std::string_view s);

// EqualsIgnoreCase()
//
// True when `a` and `b` are equal after both are upper-cased.
inline bool EqualsIgnoreCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (UpperChar(a[i]) != UpperChar(b[i])) return false;
  }
  return true;
}

// Trim()
// LTrim()
// RTrim()
//
// Remove leading and/or trailing space characters (32) only; tabs and
// other blanks are kept.
std::string_view Trim(std::string_view s);
std::string_view LTrim(std::string_view s);
std::string_view RTrim(std::string_view s);

// TrimBlanks()
//
// Removes leading and trailing spaces and tabs.
std::string_view TrimBlanks(std::string_view s);

// InStr()
//
// Finds `needle` in `hay` at or after the one-based position `start` and
// returns its one-based position, or 0 when absent. Nothing is found in an
// empty `hay` or from a `start` past its end; otherwise an empty `needle`
// is found at `start`.
// REQUIRES: start >= 1.
size_t InStr(size_t start, std::string_view hay, std::string_view needle);

// Mid()
//
// The text of `s` from the one-based position `start`, at most `length`
// characters (all remaining ones by default); "" past the end.
// REQUIRES: start >= 1.
std::string_view Mid(std::string_view s, size_t start,
                     size_t length = std::string_view::npos);

// CodePointOf()
//
// The Unicode code point of a Windows-1252 byte. The five bytes the code
// page leaves undefined (0x81, 0x8D, 0x8F, 0x90, 0x9D) map to the C1
// control of the same value.
char32_t CodePointOf(char c);

// Windows1252Of()
//
// The Windows-1252 byte of a Unicode code point, or -1 when it has none.
int Windows1252Of(char32_t code_point);

// DecodeUtf8()
//
// The UTF-8 sequence at s[i]: its length in bytes, with its code point in
// `cp`; 0 when the bytes there are not a UTF-8 sequence.
// REQUIRES: i < s.size().
size_t DecodeUtf8(std::string_view s, size_t i, char32_t& cp);

// AppendUtf8()
//
// Appends the UTF-8 form of `code_point` to `out`.
// REQUIRES: code_point < 0x110000.
void AppendUtf8(std::string& out, char32_t code_point);

// Utf8ToWindows1252()
//
// UTF-8 text (from people, OCR engines, PDF text layers) as Windows-1252.
// Characters with no Windows-1252 form become "?"; bytes that are not
// valid UTF-8 are taken as Windows-1252 already.
std::string Utf8ToWindows1252(std::string_view utf8);

// A character of UTF-8 text that Windows-1252 cannot hold.
struct Utf8Loss {
  size_t offset = 0;  // where its bytes start in the UTF-8 text
  size_t length = 0;  // how many bytes it takes
  char32_t code_point = 0;
};

// Utf8ToWindows1252()
//
// As above, but nothing is replaced: false at the first character with no
// Windows-1252 form, which `loss` then describes (`out` holds the text
// before it). For texts that go into files, where a "?" would be a silent
// change.
bool Utf8ToWindows1252(std::string_view utf8, std::string& out, Utf8Loss& loss);

// Windows1252ToUtf8()
//
// Windows-1252 text as UTF-8; the five undefined bytes map to the C1
// control of the same value.
std::string Windows1252ToUtf8(std::string_view cp1252);

}  // namespace pelinor

#endif  // PELINOR_TEXT_H_
