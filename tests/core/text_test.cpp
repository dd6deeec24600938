#include "pelinor/text.h"

#include <gtest/gtest.h>

#include <string>

namespace pelinor {
namespace {

TEST(CaseTable, MapsWindows1252PairsBothWays) {
  struct Case {
    unsigned char lower, upper;
  } cases[] = {{'a', 'A'},   {'z', 'Z'},   {0xE0, 0xC0},
               {0xE9, 0xC9}, {0xFE, 0xDE}, {0x9A, 0x8A},
               {0x9C, 0x8C}, {0x9E, 0x8E}, {0xFF, 0x9F}};
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.lower));
    EXPECT_EQ(UpperChar(static_cast<char>(c.lower)),
              static_cast<char>(c.upper));
    EXPECT_EQ(LowerChar(static_cast<char>(c.upper)),
              static_cast<char>(c.lower));
  }
}

TEST(CaseTable, LeavesOtherBytesAlone) {
  // Division and multiplication signs sit inside the accented ranges; the
  // sharp s has no single-byte upper case.
  for (int b : {0xF7, 0xD7, 0xDF, int{'1'}, int{'['}, int{'{'}, 0x80, 0xA0}) {
    SCOPED_TRACE(static_cast<int>(b));
    EXPECT_EQ(UpperChar(static_cast<char>(b)), static_cast<char>(b));
  }
  EXPECT_EQ(LowerChar(static_cast<char>(0xD7)), static_cast<char>(0xD7));
  EXPECT_EQ(UCase("m\xE4rz 3"), "M\xC4RZ 3");
  EXPECT_EQ(LCase("AO\xDBT"), "ao\xFBt");
  EXPECT_TRUE(
      EqualsIgnoreCase("D\xC9"
                       "CEMBRE",
                       "d\xE9"
                       "cembre"));
  EXPECT_FALSE(EqualsIgnoreCase("abc", "abcd"));
}

TEST(Trim, RemovesSpacesOnly) {
  struct Case {
    const char* in;
    const char* trim;
    const char* blanks;
  } cases[] = {
      {"  a b  ", "a b", "a b"},
      {"\t a \t", "\t a \t", "a"},
      {"", "", ""},
      {"   ", "", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in);
    EXPECT_EQ(Trim(c.in), c.trim);
    EXPECT_EQ(TrimBlanks(c.in), c.blanks);
  }
  EXPECT_EQ(LTrim("  x  "), "x  ");
  EXPECT_EQ(RTrim("  x  "), "  x");
}

TEST(InStr, UsesOneBasedPositions) {
  EXPECT_EQ(InStr(1, "abcabc", "bc"), 2u);
  EXPECT_EQ(InStr(3, "abcabc", "bc"), 5u);
  EXPECT_EQ(InStr(6, "abcabc", "bc"), 0u);
  EXPECT_EQ(InStr(1, "abc", ""), 1u);
  EXPECT_EQ(InStr(3, "abc", ""), 3u);
  // Past the end, and in an empty text, nothing is found, not even "".
  EXPECT_EQ(InStr(4, "abc", ""), 0u);
  EXPECT_EQ(InStr(1, "", ""), 0u);
  EXPECT_EQ(InStr(5, "abc", "c"), 0u);
  EXPECT_EQ(Mid("abcdef", 2, 3), "bcd");
  EXPECT_EQ(Mid("abcdef", 5), "ef");
  EXPECT_EQ(Mid("abc", 4), "");
}

TEST(Utf8ToWindows1252, ConvertsReplacesOrStopsAtTheFirstLoss) {
  struct Case {
    const char* utf8;
    const char* lenient;  // the "?" form
    bool strict_ok;
    size_t offset;  // of the first loss, when !strict_ok
    size_t length;
    char32_t code_point;
  } cases[] = {
      {"plain", "plain", true, 0, 0, 0},
      {"M\xC3\xA4rz \xE2\x82\xAC"
       "5",
       "M\xE4rz \x80"
       "5",
       true, 0, 0, 0},
      // Bytes that are not UTF-8 are Windows-1252 already.
      {"M\xE4rz", "M\xE4rz", true, 0, 0, 0},
      {"a\xE4\xB8\xAD\xF0\x9F\x98\x80", "a??", false, 1, 3, 0x4E2D},
      {"\xF0\x9F\x98\x80", "?", false, 0, 4, 0x1F600},
      // A cut sequence at the end is taken byte by byte.
      {"x\xC3", "x\xC3", true, 0, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(Utf8ToWindows1252(c.utf8), c.lenient);
    std::string out;
    Utf8Loss loss;
    ASSERT_EQ(Utf8ToWindows1252(c.utf8, out, loss), c.strict_ok);
    if (c.strict_ok) {
      EXPECT_EQ(out, c.lenient);
    } else {
      EXPECT_EQ(loss.offset, c.offset);
      EXPECT_EQ(loss.length, c.length);
      EXPECT_EQ(loss.code_point, c.code_point);
      EXPECT_EQ(out, std::string(c.utf8, c.offset));
    }
  }
  EXPECT_EQ(Windows1252ToUtf8("M\xE4rz \x80"
                              "5\x81"),
            "M\xC3\xA4rz \xE2\x82\xAC"
            "5\xC2\x81");
}

// Every byte, alone and between ASCII runs, comes back through UTF-8 as
// itself, each as the code point the code page gives it.
TEST(TextTest, Windows1252RoundTripsThroughUtf8) {
  for (int b = 0; b < 256; ++b) {
    const char c = static_cast<char>(b);
    // Also past the first eight bytes, which are looked at together.
    for (const std::string& text :
         {std::string(1, c), "ab" + std::string(1, c) + "cd",
          std::string(2, c) + "x", std::string(9, '.') + c + "0123456789",
          std::string(16, '-') + c}) {
      const std::string utf8 = Windows1252ToUtf8(text);
      EXPECT_EQ(Utf8ToWindows1252(utf8), text) << b;
      char32_t cp = 0;
      const size_t at = text.find(c);
      size_t i = 0;
      for (size_t k = 0; k < at; ++k) i += DecodeUtf8(utf8, i, cp);
      ASSERT_NE(DecodeUtf8(utf8, i, cp), 0u) << b;
      EXPECT_EQ(cp, CodePointOf(c)) << b;
    }
  }
}

TEST(TextTest, AppendUtf8DecodesBackAtEveryLengthBoundary) {
  for (char32_t cp :
       {0x0u, 0x7Fu, 0x80u, 0x7FFu, 0x800u, 0xFFFFu, 0x10000u, 0x10FFFFu}) {
    std::string out = "x";
    AppendUtf8(out, cp);
    char32_t back = 0;
    const size_t len = DecodeUtf8(out, 1, back);
    EXPECT_EQ(len, out.size() - 1) << static_cast<uint32_t>(cp);
    EXPECT_EQ(back, cp) << static_cast<uint32_t>(cp);
  }
}

}  // namespace
}  // namespace pelinor
