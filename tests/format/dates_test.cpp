#include <gtest/gtest.h>

#include <string>

#include "format/format_env.h"
#include "pelinor/format.h"

namespace pelinor {
namespace {

using testing::FormatEnv;

TEST(ValidateDate, ChecksPartsInTheCountrysOrder) {
  struct Case {
    const char* value;
    const char* country;
    bool valid;
  } cases[] = {
      {"31/12/99", "GB", true},
      {"31/04/2003", "GB", false},
      {"29/02/2001", "GB", true},  // no leap-year test
      {"30/02/2001", "GB", false},
      {"1/2/3", "GB", false},  // one-digit year
      {"01/02/1969", "GB", false},
      {"01/02/1970", "GB", true},
      {"01/02/2069", "GB", true},
      {"01/02/2070", "GB", false},
      {"1/2/70", "GB", true},
      {"00/01/2003", "GB", false},
      {"01/13/2003", "GB", false},
      {"031/12/2003", "GB", false},
      {" 1/2/2003", "GB", false},
      {"31/12/2003/", "GB", false},
      {"31.12.2003", "GB", false},
      {"31/12/2003", "FR", true},  // any other country is day first
      {"12/31/2003", "US", true},
      {"31/12/2003", "US", false},
      {"2003/12/31", "JP", true},
      {"31/12/2003", "JP", false},
  };
  FormatEnv env;
  const cFormat format;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.value) + " " + c.country);
    EXPECT_EQ(format.ValidateDate(c.value, c.country), c.valid);
  }
}

TEST(ValidateDateParsed, NormalisesWithPivotSeventy) {
  struct Case {
    const char* day;
    const char* month;
    const char* year;
    bool ok;
    const char* expected;  // day/month/year after the check
  } cases[] = {
      {"1", "2", "03", true, "01/02/2003"},
      {"1", "2", "70", true, "01/02/1970"},
      {"31", "12", "99", true, "31/12/1999"},
      {"29", "2", "2001", true, "29/02/2001"},
      {"30", "2", "2001", false, ""},
      {"31", "6", "2001", false, ""},
      {"31", "7", "2001", true, "31/07/2001"},
      {"0", "1", "2001", false, ""},
      {"1", "0", "2001", false, ""},
      {"1", "1", "1969", false, ""},
      {"1", "1", "2070", false, ""},
      {"1", "1", "5", false, ""},
      {"1", "1", "20O3", false, ""},
  };
  const cFormat format;
  for (const Case& c : cases) {
    std::string day = c.day, month = c.month, year = c.year;
    SCOPED_TRACE(day + "/" + month + "/" + year);
    ASSERT_EQ(format.ValidateDateParsed(day, month, year), c.ok);
    if (c.ok) {
      EXPECT_EQ(day + "/" + month + "/" + year, c.expected);
    }
  }
}

TEST(FormatDate, ReadsEveryShapeAndWritesTheLocalesOrder) {
  struct Case {
    const char* value;
    int32_t code;
    const char* locale;
    const char* out;  // "" when the date is not recognised
  } cases[] = {
      {"1.2.03", 100, "GB", "01/02/2003"},
      {"1.2.03", 100, "US", "02/01/2003"},
      {"1.2.03", 100, "JP", "2003/02/01"},
      {"1.2.03", 100, "", "01/02/2003"},  // no setting: GB
      {"010203", 100, "GB", "01/02/2003"},
      {"01022003", 100, "GB", "01/02/2003"},
      {"01l02l2003", 100, "GB", "01/02/2003"},
      {"01-02-2003", 103, "GB", "01/02/2003"},
      {"01:02:2003", 106, "GB", "01/02/2003"},
      {"1/2/2003", 107, "GB", "01/02/2003"},
      {"02.01.2003", 101, "GB", "01/02/2003"},
      {"2003.02.01", 102, "GB", "01/02/2003"},
      {"20030201", 102, "GB", "01/02/2003"},
      {"1.13.03", 3, "GB", "13/01/2003"},  // "DATE" tries each order
      {"1.2.03", 102, "GB", ""},
      {"29.02.2001", 100, "GB", "29/02/2001"},
      {"31.04.2003", 100, "GB", ""},
      {"l2.0l.2003", 100, "GB", ""},  // look-alikes are kept, then refused
      {"12 5EP 2003", 100, "GB", "12/05/2003"},  // only digits of a part
      // English month names.
      {"12 0CT 2003", 3, "GB", "12/10/2003"},
      {"12 0CT 2003", 3, "JP", "2003/10/12"},
      {"MAR 12 JAN 2004", 100, "GB", "12/01/2004"},  // January wins
      {"MARCH 3RD 2004", 100, "GB", "03/03/2004"},
      {"AUGUST 21ST 2004", 101, "US", "08/21/2004"},
      {"OCTOBER 12, 2003", 100, "GB", "12/10/2003"},
      {"OCT 2003 12", 100, "GB", "12/10/2003"},
      {"12 october 2003", 100, "GB", "12/10/2003"},
      {"12 Sept. 2003 10:45", 100, "GB", "12/09/2003"},
      {"12 OCT", 100, "GB", ""},
      {"12 OCT 2OO3", 100, "GB", ""},
      {"12 OCT 03", 100, "GB", "12/10/2003"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.value) + " code " + std::to_string(c.code) +
                 " locale " + c.locale);
    FormatEnv env(c.locale);
    std::string out = "unchanged";
    EXPECT_EQ(cFormat().FormatDate(c.value, out, c.code), *c.out != '\0');
    EXPECT_EQ(out, *c.out != '\0' ? c.out : "unchanged");
  }
}

TEST(FormatDate, MisreadSeparatorsTryEveryOrderForPortuguese) {
  // Year first with both separators read as "l": only the year-first
  // order finds it, which "DATEGB" and its group never try at this step.
  struct Case {
    int32_t code;
    bool ok;
  } cases[] = {
      {100, false}, {101, false}, {102, true},  {103, false}, {104, true},
      {105, false}, {106, false}, {107, false}, {3, true},
  };
  FormatEnv env;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    std::string out;
    EXPECT_EQ(cFormat().FormatDate("2003l02l01", out, c.code), c.ok);
    if (c.ok) {
      EXPECT_EQ(out, "01/02/2003");
    }
  }
  std::string out;
  EXPECT_TRUE(cFormat().FormatDate("12l31l2003", out, 101));
  EXPECT_EQ(out, "31/12/2003");
  EXPECT_FALSE(cFormat().FormatDate("12l31l2003", out, 100));
  EXPECT_FALSE(cFormat().FormatDate("1l2l03", out, 3));  // 6 characters
}

TEST(ValidateRawDate, ReportsConfidence) {
  struct Case {
    const char* value;
    float confidence;
  } cases[] = {
      {"1.2.03", 0.7f},      {"01.02.2003", 1.0f}, {"010203", 0.7f},
      {"01022003", 1.0f},    {"01l02l03ab", 0.0f}, {"12 0CT 03", 1.0f},
      {"12 0CT 2003", 1.0f}, {"01l02l2003", 1.0f},
  };
  FormatEnv env;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    std::string day, month, year;
    float confidence = -1;
    const bool ok = cFormat().ValidateRawDate(c.value, day, month, year,
                                              confidence, "dategb");
    EXPECT_EQ(ok, c.confidence > 0);
    if (ok) {
      EXPECT_FLOAT_EQ(confidence, c.confidence);
    }
  }
}

TEST(DatesHostileInput, AreRefusedWithoutHarm) {
  FormatEnv env;
  std::string high;
  for (int i = 0; i < 10000; ++i) high += static_cast<char>(0x80 + i % 128);
  const std::string cases[] = {
      "",
      std::string(10000, '1'),
      std::string(10000, '/'),
      high,
      std::string("01\0"
                  "02\0"
                  "2003",
                  10),
      std::string("\0\0\0\0\0\0\0\0", 8),
  };
  const cFormat format;
  for (const std::string& value : cases) {
    SCOPED_TRACE(value.size());
    std::string out = "unchanged";
    for (const int32_t code : {3, 100, 101, 102, 103, 104, 105, 106, 107}) {
      EXPECT_FALSE(format.FormatDate(value, out, code));
    }
    EXPECT_EQ(out, "unchanged");
    EXPECT_FALSE(format.ValidateDate(value, "GB"));
  }
  // A date at the start of a long text is still found.
  std::string out;
  EXPECT_TRUE(
      format.FormatDate("12 OCT 2003" + std::string(10000, 'x'), out, 100));
  EXPECT_EQ(out, "12/10/2003");
}

}  // namespace
}  // namespace pelinor
