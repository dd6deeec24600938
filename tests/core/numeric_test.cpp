#include "pelinor/numeric.h"

#include <gtest/gtest.h>

namespace pelinor {
namespace {

TEST(IsNumeric, FollowsTheOneRule) {
  struct Case {
    const char* text;
    bool numeric;
  } cases[] = {
      {"0", true},      {"-12", true},    {"+3.5", true}, {" \t7 \t", true},
      {".5", true},     {"5.", true},     {"1e5", true},  {"1.5E-3", true},
      {"2e+10", true},  {"", false},      {".", false},   {"-", false},
      {"1.2.3", false}, {"1e", false},    {"e5", false},  {"1,000", false},
      {"&H10", false},  {"12abc", false}, {"1 2", false}, {"--1", false},
      {"$5", false},    {"(5)", false},   {"5-", false},  {"1e5.5", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(IsNumeric(c.text), c.numeric);
  }
}

TEST(ToLong, RoundsHalfToEvenAndChecksRange) {
  struct Case {
    const char* text;
    bool ok;
    int32_t value;
  } cases[] = {
      {"2.5", true, 2},
      {"3.5", true, 4},
      {"-2.5", true, -2},
      {"-3.5", true, -4},
      {"2.51", true, 3},
      {"0.5", true, 0},
      {"1.5", true, 2},
      {"2147483647", true, 2147483647},
      {"-2147483648", true, -2147483647 - 1},
      {"2147483647.4", true, 2147483647},
      {"2147483647.5", false, 0},
      {"2147483648", false, 0},
      {"-2147483649", false, 0},
      {"1e3", true, 1000},
      {"1e400", false, 0},
      {"abc", false, 0},
      // Plain digit strings on both sides of the nine-digit boundary.
      {"999999999", true, 999999999},
      {"-999999999", true, -999999999},
      {"000000007", true, 7},
      {"1000000000", true, 1000000000},
      {"-0", true, 0},
      {"-", false, 0},
      {"", false, 0},
      {" 12", true, 12},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    int32_t v = 77;
    EXPECT_EQ(ToLong(c.text, v), c.ok);
    EXPECT_EQ(v, c.ok ? c.value : 77);
  }
  int16_t i = 5;
  EXPECT_FALSE(ToInteger("32768", i));
  EXPECT_TRUE(ToInteger("-32768", i));
  EXPECT_EQ(i, -32768);
}

TEST(ToDouble, ConvertsWithoutLocale) {
  double d = 0;
  ASSERT_TRUE(ToDouble(" 1.25 ", d));
  EXPECT_DOUBLE_EQ(d, 1.25);
  ASSERT_TRUE(ToDouble("-.5e1", d));
  EXPECT_DOUBLE_EQ(d, -5);
  ASSERT_TRUE(ToDouble("1e-400", d));  // underflow is zero, not a failure
  EXPECT_EQ(d, 0);
  EXPECT_FALSE(ToDouble("1e400", d));
  float f = 0;
  EXPECT_FALSE(ToSingle("1e39", f));
  ASSERT_TRUE(ToSingle("0.946", f));
  EXPECT_EQ(f, 0.946f);
}

TEST(LeadingNumber, TakesDigitsAndOnePointFromTheStart) {
  struct Case {
    const char* text;
    double value;
  } cases[] = {{"0.946", 0.946}, {"0.946abc", 0.946}, {"1", 1},
               {"1.2.3", 1.2},   {"x1", 0},           {"", 0},
               {".5", 0.5},      {"7.", 7},           {"-1", 0},
               {" 1", 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_DOUBLE_EQ(LeadingNumber(c.text), c.value);
  }
}

TEST(NumberText, WritesPlainDecimal) {
  EXPECT_EQ(NumberText(int32_t{-100}), "-100");
  EXPECT_EQ(NumberText(int64_t{0}), "0");
  EXPECT_EQ(NumberText(0.946f), "0.946");
  EXPECT_EQ(NumberText(3.0), "3");
  EXPECT_EQ(NumberText(-0.25), "-0.25");
  EXPECT_EQ(NumberText(0.1), "0.1");
  double back = 0;
  ASSERT_TRUE(ToDouble(NumberText(1.0 / 3.0), back));
  EXPECT_EQ(back, 1.0 / 3.0);
}

}  // namespace
}  // namespace pelinor
