#include <gtest/gtest.h>

#include <string>

#include "pelinor/format.h"

namespace pelinor {
namespace {

TEST(ValidatePostCode, ChecksOutwardAndInwardCodes) {
  struct Case {
    const char* value;
    bool valid;
  } cases[] = {
      {"GIR 0AA", true},   {"GIR0AA", true},   {"SW1A 1AA", true},
      {"M1 1AA", true},    {"M11AA", true},    {" M1  1AA ", true},
      {"W1A 1AA", true},   {"EC1 1BB", true},  {"M60 1QD", true},
      {"DN55 1PT", true},  {"M1 1>A", true},   {"M1 1?@", true},
      {"W1 1CA", false},   {"AAA 1AA", false}, {"M1 1IA", false},
      {"M1 1aa", false},   {"m1 1AA", false},  {"1M 1AA", false},
      {"ABCD", false},     {"M 1A", false},    {"SW1A1AAX", false},
      {"A11A 1AA", false}, {"", false},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    EXPECT_EQ(format.ValidatePostCode(c.value), c.valid);
  }
}

TEST(IsInwardCode, AcceptsTheCodeRangeFromGreaterThanToB) {
  struct Case {
    const char* code;
    bool valid;
  } cases[] = {
      {"1>A", true},  {"1?@", true},   {"9AB", true},  {"0ZZ", true},
      {"1=A", false},  // one below ">"
      {"1CA", false}, {"1AC", false},  {"1IA", false}, {"1KA", false},
      {"1MA", false}, {"1OA", false},  {"1VA", false}, {"AAA", false},
      {"1A", false},  {"1ABC", false},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    EXPECT_EQ(format.IsInwardCode(c.code), c.valid);
  }
}

TEST(IsOutwardCode, AcceptsTheSixShapesAndStrictLetters) {
  struct Case {
    const char* code;
    bool plain;
    bool strict;
  } cases[] = {
      {"A1", true, true},    {"Q1", true, false},    {"X1", true, false},
      {"AA", false, false},  {"A11", true, true},    {"AB1", true, true},
      {"AI1", true, false},  {"A1A", true, true},    {"A1G", true, false},
      {"A1I", true, false},  {"AAA", false, false},  {"AB1A", true, true},
      {"AB1G", true, true},  {"AB12", true, true},   {"AB1I", true, false},
      {"AI1A", true, false}, {"A11A", false, false}, {"ABAA", false, false},
      {"A", false, false},   {"1A1", false, false},  {"AB1AA", false, false},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    EXPECT_EQ(format.IsOutwardCode(c.code), c.plain);
    EXPECT_EQ(format.IsStrictOutwardCode(c.code), c.strict);
  }
}

TEST(FormatPostCode, RepairsConfusionsPositionByPosition) {
  struct Case {
    const char* value;
    const char* out;  // "" when the postcode cannot be repaired
  } cases[] = {
      {"GIR 0AA", "GIR 0AA"},
      {"SW1A1AA", "SW1A 1AA"},
      {"SW1A-1AA", "SW1A 1AA"},
      {"M1  1AA", "M1 1AA"},
      {"M1 IAA", "M1 1AA"},
      {"M1 1AI", "M1 1AL"},  // an inward "I" becomes "L"
      {"M1 11A", "M1 1LA"},
      {"M1 10A", "M1 1QA"},
      {"5W1A 1AA", "SW1A 1AA"},
      {"SWIA 1AA", "SW1A 1AA"},
      {"S01A 1AA", "SO1A 1AA"},
      {"MI 1AA", "M1 1AA"},
      {"WIA 1AA", "W1A 1AA"},  // third a letter: the second is a digit
      {"S01 1AA", "SO1 1AA"},  // third a digit: "0" reads as "O"
      {"MI0 1QD", "M10 1QD"},  // and "I" as "1"
      {"E|1 1AA", "E11 1AA"},
      {"E$1 1AA", "E51 1AA"},
      {"M1 1CA", ""},
      {"M1 1aa", ""},
      {"sw1a 1aa", ""},
      {"M1 1AA extra", ""},
      {"ABCD", ""},
      {"", ""},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    std::string out = "unchanged";
    EXPECT_EQ(format.FormatPostCode(c.value, out, 5), *c.out != '\0');
    EXPECT_EQ(out, *c.out != '\0' ? c.out : "unchanged");
  }
}

TEST(PostCodesHostileInput, AreRefusedWithoutHarm) {
  std::string high;
  for (int i = 0; i < 10000; ++i) high += static_cast<char>(0x80 + i % 128);
  const std::string cases[] = {
      std::string(10000, 'A'),    std::string(10000, ' '),        high,
      std::string("M1\0 1AA", 7), std::string("\0\0\0\0\0\0", 6),
  };
  const cFormat format;
  for (const std::string& value : cases) {
    SCOPED_TRACE(value.size());
    std::string out = "unchanged";
    EXPECT_FALSE(format.ValidatePostCode(value));
    EXPECT_FALSE(format.FormatPostCode(value, out, 5));
    EXPECT_EQ(out, "unchanged");
  }
}

}  // namespace
}  // namespace pelinor
