#include "pelinor/date_text.h"

#include <gtest/gtest.h>

namespace pelinor {
namespace {

TEST(DateText, RecognisesTheStoredForms) {
  struct Case {
    const char* text;
    const char* formatted;  // nullptr: not a date
  } cases[] = {
      {"1899-12-30", "1899-12-30 00:00:00"},
      {"2003-10-12 14:05", "2003-10-12 14:05:00"},
      {"2003-10-12 14:05:09", "2003-10-12 14:05:09"},
      {" 2024-2-29 ", "2024-02-29 00:00:00"},
      {"10/12/2003", "2003-10-12 00:00:00"},
      {"1/2/2004 3:04 PM", "2004-01-02 15:04:00"},
      {"1/2/2004 12:00:01 am", "2004-01-02 00:00:01"},
      {"12/31/1999 23:59:59", "1999-12-31 23:59:59"},
      {"2023-02-29", nullptr},
      {"2003-13-01", nullptr},
      {"13/1/2003", nullptr},
      {"2003-10-12 24:00", nullptr},
      {"1/2/2004 13:00 PM", nullptr},
      {"2003-10-12 10:00 PM", nullptr},
      {"2003-10-12x", nullptr},
      {"12/10/03", nullptr},
      {"", nullptr},
      {"yesterday", nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    double serial = -12345;
    EXPECT_EQ(ParseDateText(c.text, serial), c.formatted != nullptr);
    if (c.formatted) {
      EXPECT_EQ(FormatDateTime(serial), c.formatted);
    } else {
      EXPECT_EQ(serial, -12345);
    }
  }
}

TEST(DateText, CountsDaysFromTheZeroDate) {
  double s = 0;
  ASSERT_TRUE(DateSerial(1900, 1, 1, 0, 0, 0, s));
  EXPECT_EQ(s, 2);
  ASSERT_TRUE(DateSerial(2000, 1, 1, 12, 0, 0, s));
  EXPECT_EQ(s, 36526.5);
  ASSERT_TRUE(DateSerial(1899, 12, 29, 6, 0, 0, s));
  EXPECT_EQ(s, -1.25);
  EXPECT_EQ(FormatDateTime(-1.25), "1899-12-29 06:00:00");
  EXPECT_EQ(FormatDateTime(kZeroDate), "1899-12-30 00:00:00");
  EXPECT_FALSE(DateSerial(99, 1, 1, 0, 0, 0, s));
}

}  // namespace
}  // namespace pelinor
