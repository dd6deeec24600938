#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "format/format_env.h"
#include "pelinor/file_system.h"
#include "pelinor/format.h"

namespace pelinor {
namespace {

using testing::FormatEnv;

TEST(ValidateAmount, AcceptsSignDigitsAndOnePoint) {
  const char* valid[] = {"-5", ".5", "-.5", "123.45", "0"};
  const char* invalid[] = {
      "",    "-",   "5-",  "5.",  "1.2.3",
      "12a", "1-2", "--5", "1 2", "\24312"};  // \243 is a pound sign
  const cFormat format;
  for (const char* value : valid) {
    SCOPED_TRACE(value);
    EXPECT_TRUE(format.ValidateAmount(value));
  }
  for (const char* value : invalid) {
    SCOPED_TRACE(value);
    EXPECT_FALSE(format.ValidateAmount(value));
  }
}

TEST(FormatAmount, AppliesCodesBiasAndImpliedDecimals) {
  FormatEnv env;
  struct Case {
    const char* value;
    int32_t code;
    bool ok;
    const char* out;
  } cases[] = {
      // Implied decimals: two or more characters get a point before the
      // last two, a single character gets ".00" (also when it is a sign).
      {"\24312.50", 4, true, "12.50"},
      {"12.5", 4, true, "1.25"},
      {"12.5", 10004, true, "12.5"},
      {"7", 4, true, "7.00"},
      {"45", 4, true, ".45"},
      {"-12", 4, true, "-.12"},
      {"-5", 4, true, ".-5"},
      {"120-", 4, true, "-1.20"},
      // Dollar signs are skipped only for US codes; elsewhere "$" is a 5.
      {"$1,234.56", 200, true, "1234.56"},
      {"$1,234.56", 4, true, "51234.56"},
      {"S5", 4, true, ".55"},
      {"S5", 200, true, "5.00"},
      {"Gg", 4, true, ".69"},
      // "GB" goes only for GB codes, again and again until none is left.
      {"GGBB5", 4, true, "5.00"},
      {"GB5", 200, true, "6.85"},
      {"GBP 12.50", 10004, true, "12.50"},
      // Junk: two in a row or a tilde after a digit end the scan.
      {"12 3x~4", 4, true, "1.23"},
      {"2a3b4c5", 4, true, "23.45"},
      {"1a2b3c4", 4, true, "2.34"},  // "1" before a non-number is dropped
      {"12ab34", 4, true, ".12"},
      {"12.3.4", 10004, true, "12.3"},
      // A leading one-look-alike stays only before a number.
      {"l.50", 4, true, "1.50"},
      {"|", 4, true, "1.00"},
      {"1 EUR", 4, false, ""},
      {"", 4, false, ""},
      {"-", 4, false, ""},
      {".", 10004, false, ""},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.value) + " code " + std::to_string(c.code));
    std::string out = "previous";
    EXPECT_EQ(format.FormatAmount(c.value, out, c.code), c.ok);
    EXPECT_EQ(out, c.out);
  }
}

TEST(FormatNumeric, TakesTheRightMostSeparatorAsPoint) {
  struct Case {
    const char* value;
    int32_t code;
    bool ok;
    const char* out;
  } cases[] = {
      {"1.234,56", 300, true, "1234.56"},
      {"1,234.56", 2, true, "1234.56"},
      {"12,5", 300, true, "12.5"},
      {"12,5", 2, true, "125"},
      {"1.2.3", 2, true, "12.3"},
      {"12-", 2, true, "-12"},
      {"-1-2", 2, true, "-12"},  // one sign kept, inner ones dropped
      {"O1", 2, true, "01"},
      {"1.", 2, false, "unchanged"},
      {"1,", 300, false, "unchanged"},
      {"-", 2, false, "unchanged"},
      {"abc", 2, false, "unchanged"},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.value) + " code " + std::to_string(c.code));
    std::string out = "unchanged";
    EXPECT_EQ(format.FormatNumeric(c.value, out, c.code), c.ok);
    EXPECT_EQ(out, c.out);
  }
}

TEST(BiasToNumber, MapsLookAlikesToDigits) {
  struct Case {
    const char* value;
    const char* expected;
  } cases[] = {
      {"Gg", "69"},  // upper and lower case differ on purpose
      {"OoQ", "000"}, {"Ii/\\!|[]()Ll", "111111111111"},
      {"Zz", "22"},   {"Ss$", "555"},
      {"B", "8"},     {"bAq\xD8", "bAq\xD8"},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    std::string value = c.value;
    format.BiasToNumber(value);
    EXPECT_EQ(value, c.expected);
  }
}

TEST(BiasToUCASECharacter, MapsTowardsAllowedLettersOnly) {
  struct Case {
    const char* value;
    const char* allowed;
    const char* expected;
  } cases[] = {
      {"1!0258$6ab3XY", "IOZSGB", "IIOZSBSGab3XY"},  // lower case stays
      {"1/\\|[]0", "LQ", "LLLLLLQ"},
      {"1/0258$6", "", "1/0258$6"},
      {"10", "A", "10"},
  };
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.value) + " / " + c.allowed);
    std::string value = c.value;
    format.BiasToUCASECharacter(value, c.allowed);
    EXPECT_EQ(value, c.expected);
  }
}

TEST(FormatDescr, NamesEachDataType) {
  const int32_t codes[] = {2,   300, 3,   4,   200, 5, 100, 101,   102, 103,
                           104, 105, 106, 107, 0,   1, 108, 10004, -1};
  const char* names[] = {
      "NUMERIC", "NUMERIC_COMMA", "DATE",      "AMOUNT", "AMOUNTUS", "POSTCODE",
      "DATEGB",  "DATEUS",        "DATEJAPAN", "DATEFR", "DATEPT",   "DATEES",
      "DATEDE",  "DATEIT",        "",          "",       "",         "",
      ""};
  const cFormat format;
  for (size_t i = 0; i < std::size(codes); ++i) {
    SCOPED_TRACE(codes[i]);
    EXPECT_EQ(format.FormatDescr(codes[i]), names[i]);
  }
}

TEST(FormatAmountLog, WritesTheFourLinesWhenEnabled) {
  FormatEnv env;
  const cFormat format;
  std::string out;
  format.FormatAmount("12", out, 4);
  EXPECT_FALSE(FileExists(env.LogPath()));

  env.LogOn();
  format.FormatAmount("GBP 12.50", out, 4);
  format.FormatAmount("abc", out, 200);
  const std::vector<std::string> expected = {
      "FormatAmount:GBP 12.50",
      "--> FormatNumericCurrency: P 12.50",
      "<-- FormatNumericCurrency: 1250",
      "FormatAmount>:12.50",
      // The repair steps follow the existing lines, for a value that
      // formats.
      "Repair:country-removed:cosmetic:1:GB removed at position 1",
      "Repair:char-dropped:guess:3:P dropped at position 3",
      "Repair:separator-dropped:cosmetic:4:1 separator (space or comma) "
      "removed",
      "FormatAmount:abc",
      "--> FormatNumericCurrency: abc",
      "<-- FormatNumericCurrency: ",
      "FormatAmount>:",
  };
  EXPECT_EQ(env.LogMessages(), expected);
}

TEST(AmountsHostileInput, GiveDocumentedResults) {
  FormatEnv env;
  const cFormat format;
  const std::string nines(10000, '9');
  std::string high;
  for (int i = 0; i < 10000; ++i) high += static_cast<char>(0x80 + i % 128);
  const std::string nul(
      "2\0"
      "3\0"
      "4",
      5);

  std::string out;
  EXPECT_TRUE(format.ValidateAmount(nines));
  EXPECT_TRUE(format.FormatAmount(nines, out, 4));
  EXPECT_EQ(out, nines.substr(2) + ".99");
  EXPECT_TRUE(format.FormatNumeric(nines, out, 2));
  EXPECT_EQ(out, nines);

  out = "kept";
  EXPECT_FALSE(format.ValidateAmount(high));
  EXPECT_FALSE(format.FormatNumeric(high, out, 300));
  EXPECT_EQ(out, "kept");
  EXPECT_FALSE(format.FormatAmount(high, out, 200));
  EXPECT_EQ(out, "");

  EXPECT_FALSE(format.ValidateAmount(nul));
  EXPECT_TRUE(format.FormatAmount(nul, out, 4));  // NULs count as junk
  EXPECT_EQ(out, "2.34");
  EXPECT_TRUE(format.FormatNumeric(nul, out, 2));
  EXPECT_EQ(out, "234");
}

}  // namespace
}  // namespace pelinor
