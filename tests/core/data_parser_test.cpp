#include "pelinor/data_parser.h"

#include <gtest/gtest.h>

#include <random>

namespace pelinor {
namespace {

TEST(GetLine, FindsLabelledLines) {
  const std::string data =
      "ver0.946\r\n  Field1Name:Total  \r\nNoDelimiter\r\n"
      "field1name:second\r\nName :x\r\nLast:unterminated";
  struct Case {
    int32_t start;
    const char* label;
    const char* line;
    int32_t end;  // expected lEnd; 99 means untouched
  } cases[] = {
      {1, "Field1Name", "Field1Name:Total", 33},
      {1, "FIELD1NAME", "Field1Name:Total", 33},
      {33, "Field1Name", "field1name:second", 65},
      {1, "", "Field1Name:Total", 33},    // any label; skips ver line
      {33, "", "field1name:second", 65},  // skips the line without ":"
      {1, "Name", "", 99},                // "Name " differs from "Name"
      {1, "Last", "", 99},                // a last line without end
      {200, "", "", 99},
      {0, "", "", 99},
  };
  cDataParser p;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.label) + " from " + std::to_string(c.start));
    int32_t end = 99;
    EXPECT_EQ(p.GetLine(data, c.start, end, c.label, ":", "\r\n"), c.line);
    EXPECT_EQ(end, c.end);
  }
  int32_t end = 99;
  EXPECT_EQ(p.GetLine("a:b|c:d|", 1, end, "c", ":", "|"), "c:d");
  EXPECT_EQ(end, 9);
  EXPECT_EQ(p.GetLine("a:b\r\n", 1, end, "", ":", ""), "");
}

TEST(ExtractValue, SplitsTheLineFound) {
  cDataParser p;
  std::string value = "preset";
  int32_t end = 0;
  EXPECT_TRUE(p.ExtractValue("Coords:1:2:3:4\r\n", 1, end, "coords", value, ":",
                             "\r\n"));
  EXPECT_EQ(value, "1:2:3:4");
  value = "preset";
  EXPECT_FALSE(
      p.ExtractValue("Coords:1\r\n", 1, end, "Other", value, ":", "\r\n"));
  EXPECT_EQ(value, "preset");
}

TEST(SplitNameAndValue, TrimsSpacesAndKeepsFurtherDelimiters) {
  struct Case {
    const char* line;
    const char* delimiter;
    bool ok;
    const char* name;
    const char* value;
  } cases[] = {
      {"  FieldName  :  some value  ", ":", true, "FieldName", "some value"},
      {"Coords:1:2:3:4", ":", true, "Coords", "1:2:3:4"},
      {"Message:", ":", true, "Message", ""},
      {"x::y", "::", true, "x", ":y"},
      {"\tTab:\tv\t", ":", true, "\tTab", "\tv\t"},
      {"no delimiter", ":", false, "n", "v"},
  };
  cDataParser p;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    std::string name = "n", value = "v";
    EXPECT_EQ(p.SplitNameAndValue(c.line, name, value, c.delimiter), c.ok);
    EXPECT_EQ(name, c.name);
    EXPECT_EQ(value, c.value);
  }
}

TEST(SplitTriplet, SplitsThreeWays) {
  struct Case {
    const char* line;
    bool ok;
    const char* left;
    const char* middle;
    const char* right;
  } cases[] = {
      {"a:b:c:d", true, "a", "b", "c:d"},
      {"STATE12:Awaiting check:Held for checking", true, "STATE12",
       "Awaiting check", "Held for checking"},
      {"a:", true, "a", "m", "r"},
      {"a: b ", true, "a", " b ", "r"},
      {" a : b : c ", true, "a", "b", "c"},
      {"a::", true, "a", "", ""},
      {"abc", false, "l", "m", "r"},
  };
  cDataParser p;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    std::string l = "l", m = "m", r = "r";
    EXPECT_EQ(p.SplitTriplet(c.line, l, m, r, ":"), c.ok);
    EXPECT_EQ(l, c.left);
    EXPECT_EQ(m, c.middle);
    EXPECT_EQ(r, c.right);
  }
}

TEST(DecodeDataFromFile, UndoesLineBreakEscapes) {
  struct Case {
    const char* in;
    const char* out;
  } cases[] = {
      {"a\\nb\\\\c\\Qd\\", "a\nb\\c\\Qd\\"},
      {"\\r\\n", "\r\n"},
      {"\\R\\N", "\\R\\N"},
      {"\\\\n", "\\n"},
      {"", ""},
  };
  cDataParser p;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in);
    std::string s = c.in;
    p.DecodeDataFromFile(s);
    EXPECT_EQ(s, c.out);
  }
}

TEST(QuoteEscapes, RoundTripAnyText) {
  std::string s = "say \"hi\" \\ \\Q";
  EscapeQuotes(s);
  EXPECT_EQ(s, "say \\Qhi\\Q \\\\ \\\\Q");
  UnescapeQuotes(s);
  EXPECT_EQ(s, "say \"hi\" \\ \\Q");

  std::mt19937 gen(7);
  const char alphabet[] = {'"', '\\', 'Q', 'n', 'a', ',', '\r'};
  for (int round = 0; round < 500; ++round) {
    std::string text;
    for (int i = static_cast<int>(gen() % 12); i > 0; --i) {
      text.push_back(alphabet[gen() % sizeof alphabet]);
    }
    std::string t = text;
    EscapeQuotes(t);
    ASSERT_EQ(t.find('"'), std::string::npos);
    UnescapeQuotes(t);
    ASSERT_EQ(t, text);
  }
  std::string lone = "end\\";
  UnescapeQuotes(lone);
  EXPECT_EQ(lone, "end\\");
}

TEST(RecordRoutines, ParseVersionsLabelsAndTails) {
  float v = -1;
  EXPECT_FALSE(ParseVersionNumber("ver", v));
  EXPECT_EQ(v, -1);
  EXPECT_TRUE(ParseVersionNumber("ver1", v));
  EXPECT_EQ(v, 1);
  EXPECT_TRUE(ParseVersionNumber("xyz0.5", v));
  EXPECT_EQ(v, 0.5f);
  EXPECT_TRUE(ParseVersionNumber("ver0.946", v));
  EXPECT_TRUE(v >= 0.946f);
  EXPECT_TRUE(ParseVersionNumber("verx", v));
  EXPECT_EQ(v, 0);

  struct Case {
    const char* line;
    bool ok;
    int32_t value;
  } cases[] = {{"DocStatus:3", true, 3},      {"Count: 2.5 ", true, 2},
               {"Count:x", false, 42},        {"NoDelimiter", false, 42},
               {"Big:3000000000", false, 42}, {"Neg:-7", true, -7}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    std::string name;
    int32_t value = 42;
    EXPECT_EQ(ParseLabelledLong(c.line, name, value), c.ok);
    EXPECT_EQ(value, c.value);
  }

  EXPECT_EQ(TrailingDigits("Zone12"), "12");
  EXPECT_EQ(TrailingDigits("Zone12a"), "");
  EXPECT_EQ(TrailingDigits("123"), "123");
  EXPECT_EQ(TextAfterLast("a/b/c.tpl", "/"), "c.tpl");
  EXPECT_EQ(TextAfterLast("abc", "/"), "");
  EXPECT_EQ(TextAfterLast("abc/", "/"), "");
}

}  // namespace
}  // namespace pelinor
