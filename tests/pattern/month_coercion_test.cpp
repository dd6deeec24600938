#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "format/format_env.h"
#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"

namespace pelinor {
namespace {

using testing::FormatEnv;

TEST(CoerceShortMonth, RepairsOnePositionFromTheConfusionTable) {
  struct Case {
    const char* word;
    const char* expected;
  } cases[] = {
      {"0CT", "OCT"}, {"0ct", "OCT"}, {"N0V", "NOV"},       {"5EP", "SEP"},
      {"DFC", "DEC"}, {"oct", "OCT"}, {"4PR", "APR"},       {"FE8", "FEB"},
      {"MAP", "MAR"}, {"NAY", "MAY"}, {"IUN", "JUN"},       {"JU|", "JUL"},
      {"AU9", "AUG"}, {"DEG", "DEC"}, {"JAM", "JAN"},       {"OGT", "OCT"},
      {"0C7", "0C7"},  // two positions differ
      {"0CI", "0CI"}, {"XYZ", "XYZ"}, {"abc", "abc"},       {"OCTO", "OCTO"},
      {"OC", "OC"},   {"", ""},       {"d\351c", "d\351c"},
  };
  const cPatternEngine engine;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.word);
    EXPECT_EQ(engine.CoerceShortMonth(c.word), c.expected);
  }
}

TEST(CoerceShortMonthInString, ReplacesOnlyASingleHitAndLogsIt) {
  struct Case {
    const char* text;
    int hits;
    const char* expected;
  } cases[] = {
      {"12 0CT 2003", 1, "12 OCT 2003"},
      // The text is upper-cased whatever it holds.
      {"le 5ep. 2003", 1, "LE SEP. 2003"},
      {"12 octobre 2003", 1, "12 OCTOBRE 2003"},
      {"0ct n0v", 2, "0CT N0V"},
      {"12 OCTOBER 2003", 1, "12 OCTOBER 2003"},
      {"12/10/2003", 0, "12/10/2003"},
      {"0CT N0V", 2, "0CT N0V"},
      {"JAN DEC", 2, "JAN DEC"},
      {"ab", 0, "AB"},
      {"", 0, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    FormatEnv env;
    env.LogOn();
    std::string text = c.text;
    cPatternEngine().CoerceShortMonthInString(text);
    EXPECT_EQ(text, c.expected);
    const std::vector<std::string> log = {
        "cPatternEngine.CoerceShortMonthInString:monthCount=" +
            std::to_string(c.hits),
        std::string("cPatternEngine.CoerceShortMonthInString:strInOut=") +
            c.expected,
    };
    EXPECT_EQ(env.LogMessages(), log);
  }
}

TEST(CoerceDate, ReadsMonthNamesOfTheFormatsLanguage) {
  struct Case {
    const char* text;
    const char* format;
    const char* locale;
    const char* out;  // "" when no date is found
  } cases[] = {
      // English, repaired first.
      {"12 0CT 2003", "DATEGB", "GB", "12/10/2003"},
      {"12 5EP 2003", "DATEGB", "GB", "12/09/2003"},
      {"MARCH 3RD 2004", "dategb", "GB", "03/03/2004"},
      {"12 Oct 2003", "DATEDE", "GB", "12/10/2003"},  // English, after German
      // French.
      {"12 octobre 2003", "DATEFR", "GB", "12/10/2003"},
      {"12 0ctobre 2003", "DATEFR", "GB", "12/10/2003"},
      {"1er f\351vrier 2004", "DATEFR", "GB", "01/02/2004"},
      {"1 fevrier 04", "datefr", "GB", "01/02/2004"},
      {"12 D\311CEMBRE 2003", "DATEFR", "GB", "12/12/2003"},
      {"14 juil. 2004", "DATEFR", "GB", "14/07/2004"},
      {"3 juin 2004", "DATEFR", "GB", "03/06/2004"},
      {"3 jui 2004", "DATEFR", "GB", ""},  // June or July
      {"15 ao\373t 2004", "DATEFR", "GB", "15/08/2004"},
      {"31 f\351vrier 2004", "DATEFR", "GB", ""},
      {"12 octobre 2OO3", "DATEFR", "GB", ""},
      // Portuguese.
      {"15 de mar\347o de 2004", "DATEPT", "GB", "15/03/2004"},
      {"15 de marco de 2004", "DATEPT", "GB", "15/03/2004"},
      {"1 set 2004", "DATEPT", "GB", "01/09/2004"},
      // Spanish.
      {"15 de marzo de 2004", "DATEES", "GB", "15/03/2004"},
      {"2 eve 2004", "DATEES", "GB", "02/01/2004"},
      {"2 ene 2004", "DATEES", "GB", "02/01/2004"},
      {"Martes 15 de abr 2004", "DATEES", "GB", "15/04/2004"},
      // German.
      {"3. M\344rz 2004", "DATEDE", "GB", "03/03/2004"},
      {"3. M\304RZ 2004", "DATEDE", "US", "03/03/2004"},
      {"3. Marz 2004", "DATEDE", "GB", "03/03/2004"},
      {"3. Maerz 2004", "DATEDE", "GB", "03/03/2004"},
      {"12. Okt. 2003", "DATEDE", "GB", "12/10/2003"},
      // Italian.
      {"7 dicembre 2004", "DATEIT", "GB", "07/12/2004"},
      {"7 dicembre 2004", "DATEIT", "JP", "2004/12/07"},
      {"Il 7 dic 04", "DATEIT", "GB", "07/12/2004"},
      {"marted\354 7 dicembre 2004", "DATEIT", "GB", "07/12/2004"},
      {"dicembre 7, 2004", "DATEIT", "GB", "07/12/2004"},
      // Without a month name: the general coercion.
      {"1.2.03", "DATEGB", "GB", "01/02/2003"},
      {"010203", "DATEFR", "GB", "01/02/2003"},
      {"2003l02l01", "DATEPT", "GB", "01/02/2003"},
      {"no date", "DATEGB", "GB", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.text) + " " + c.format + " " + c.locale);
    FormatEnv env(c.locale);
    std::string out = "unchanged";
    bool success = !*c.out;
    cPatternEngine().CoerceDate(c.text, out, c.format, success);
    EXPECT_EQ(success, *c.out != '\0');
    EXPECT_EQ(out, *c.out != '\0' ? c.out : "unchanged");
  }
}

TEST(CoerceDate, ReadsEveryLanguagesMonthNamesWhateverTheType) {
  struct Case {
    const char* text;
    const char* format;
    const char* locale;
    const char* out;  // "" when no date is found
  } cases[] = {
      {"3. M\344rz 2004", "DATEGB", "GB", "03/03/2004"},
      {"3. M\344rz 2004", "DATE", "GB", "03/03/2004"},
      {"3. M\344rz 2004", "DATEUS", "US", "03/03/2004"},
      {"12 OCT 2003", "DATEDE", "GB", "12/10/2003"},
      {"12 0CT 2003", "DATEIT", "GB", "12/10/2003"},
      {"15 de mar\347o de 2004", "DATEGB", "GB", "15/03/2004"},
      {"7 dicembre 2004", "DATEUS", "US", "12/07/2004"},
      {"12 0ktober 2003", "DATEGB", "GB", "12/10/2003"},
      {"2 ju1n 2004", "DATEIT", "GB", "02/06/2004"},
      // Look-alike digits and marks inside the name.
      {"3 ju1l 2004", "DATEFR", "GB", "03/07/2004"},
      {"3 AU6 2004", "DATEES", "GB", "03/08/2004"},
      {"1 5ept 2004", "DATEDE", "GB", "01/09/2004"},
      {"9 |uglio 2004", "DATEGB", "GB", "09/07/2004"},
      {"4 0ez 2004", "DATEIT", "GB", "04/12/2004"},
      // A number written against the month stays a number.
      {"12 OCT2003", "DATEDE", "GB", "12/10/2003"},
      // Still no date.
      {"31 februar 2004", "DATEGB", "GB", ""},
      {"12 2003", "DATEFR", "GB", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.text) + " " + c.format + " " + c.locale);
    FormatEnv env(c.locale);
    std::string out = "unchanged";
    bool success = !*c.out;
    cPatternEngine().CoerceDate(c.text, out, c.format, success);
    EXPECT_EQ(success, *c.out != '\0');
    EXPECT_EQ(out, *c.out != '\0' ? c.out : "unchanged");
  }
}

TEST(CoerceDate, LogsTheEnglishCoercion) {
  FormatEnv env;
  env.LogOn();
  std::string out;
  bool success = false;
  cPatternEngine().CoerceDate("12 0ct 2003", out, "DATEGB", success);
  EXPECT_TRUE(success);
  EXPECT_EQ(out, "12/10/2003");
  const std::vector<std::string> expected = {
      "cPatternEngine.coerceNameDate(12 0ct 2003)",
      "cPatternEngine.CoerceShortMonthInString:monthCount=1",
      "cPatternEngine.CoerceShortMonthInString:strInOut=12 OCT 2003",
      "cPatternEngine.coerceNameDate post CoerceShortMonthInString->12 OCT "
      "2003",
      // The repair steps follow the existing lines.
      "Repair:month-repaired:repair:4:0CT read as OCT",
      "Repair:date-layout:cosmetic:0:written as 12/10/2003",
  };
  EXPECT_EQ(env.LogMessages(), expected);
}

TEST(CoerceDate, RefusesHostileInputWithoutHarm) {
  FormatEnv env;
  std::string high;
  for (int i = 0; i < 10000; ++i) high += static_cast<char>(0x80 + i % 128);
  std::string months;
  std::string zeros;  // every "0" before a letter starts a word
  for (int i = 0; i < 2000; ++i) months += "mars ";
  for (int i = 0; i < 5000; ++i) zeros += "0a";
  const std::string cases[] = {
      "", std::string(10000, 'O'), high, months, zeros,
  };
  const cPatternEngine engine;
  for (const std::string& text : cases) {
    SCOPED_TRACE(text.size());
    for (const char* format :
         {"DATEGB", "DATEFR", "DATEPT", "DATEES", "DATEDE", "DATEIT", "DATE"}) {
      std::string out = "unchanged";
      bool success = true;
      engine.CoerceDate(text, out, format, success);
      EXPECT_FALSE(success) << format;
      EXPECT_EQ(out, "unchanged");
    }
  }
  // NUL bytes separate words and numbers like blanks.
  std::string out;
  bool success = false;
  engine.CoerceDate(std::string("12\0mars", 7) + '\0' + "2004", out, "DATEFR",
                    success);
  EXPECT_TRUE(success);
  EXPECT_EQ(out, "12/03/2004");

  std::string many;
  for (int i = 0; i < 3000; ++i) many += "0CT ";
  const std::string before = many;
  engine.CoerceShortMonthInString(many);
  EXPECT_EQ(many, before);
}

}  // namespace
}  // namespace pelinor
