#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::RunPelinor;
using testing::TempDir;
using testing::WriteFile;

// A registry file with "HalvernLocale" set to `locale`, and the
// environment that points the program at it with the format log off.
class LocaleEnv {
 public:
  explicit LocaleEnv(const std::string& locale) {
    WriteFile(dir_.File("registry.reg"),
              "Windows Registry Editor Version 5.00\r\n\r\n"
              "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\"
              "Default]\r\n\"HalvernLocale\"=\"" +
                  locale + "\"\r\n");
  }
  std::vector<std::string> Env(const std::string& log = "") const {
    return {"PELINOR_REGISTRY=" + dir_.File("registry.reg"),
            "PELINORLOGFORMAT=" + log};
  }
  std::string File(const std::string& name) const { return dir_.File(name); }

 private:
  TempDir dir_;
};

TEST(FormatCli, PrintsOneResultPerValue) {
  struct Case {
    std::vector<std::string> args;
    const char* locale;
    const char* out;
    int status;
  } cases[] = {
      // Arguments and output are UTF-8: "\302\243" is a pound sign.
      {{"format", "--type", "AMOUNT", "\302\24312.50", "12.5", "7", "45"},
       "GB",
       "\302\24312.50\t12.50\n12.5\t1.25\n7\t7.00\n45\t.45\n",
       0},
      {{"format", "-t", "2", "12,5", "1."},
       "GB",
       "12,5\t125\n1.\tcannot be formatted as NUMERIC\n",
       1},
      {{"format", "-t", "DATEGB", "1.2.03", "010203", "12 0CT 2003",
        "MARCH 3RD 2004"},
       "GB",
       "1.2.03\t01/02/2003\n010203\t01/02/2003\n12 0CT 2003\t12/10/2003\n"
       "MARCH 3RD 2004\t03/03/2004\n",
       0},
      {{"format", "-t", "dategb", "1.2.03", "12 0CT 2003"},
       "US",
       "1.2.03\t02/01/2003\n12 0CT 2003\t10/12/2003\n",
       0},
      {{"format", "-t", "106", "3. M\303\244rz 2004"},
       "GB",
       "3. M\303\244rz 2004\t03/03/2004\n",
       0},
      {{"format", "-t", "POSTCODE", "SW1A1AA", "M1 IAA", "M1 1CA"},
       "GB",
       "SW1A1AA\tSW1A 1AA\nM1 IAA\tM1 1AA\nM1 1CA\tcannot be formatted as "
       "POSTCODE\n",
       1},
      {{"validate", "-t", "AMOUNT", "--", ".5", "-5", "5-"},
       "GB",
       ".5\tok\n-5\tok\n5-\tnot a valid AMOUNT\n",
       1},
      {{"validate", "-t", "DATEGB", "12/31/2003", "31/12/2003"},
       "US",
       "12/31/2003\tok\n31/12/2003\tnot a valid DATEGB for locale US\n",
       1},
      {{"validate", "-t", "DATEGB", "--locale", "GB", "29/02/2001"},
       "US",
       "29/02/2001\tok\n",
       0},
      {{"validate", "-t", "5", "GIR 0AA", "W1 1CA"},
       "GB",
       "GIR 0AA\tok\nW1 1CA\tnot a valid POSTCODE\n",
       1},
      // Data types without a formatter are checked against a pattern.
      {{"validate", "-t", "1", "--spec", "LL000000L", "--coerce", "AB12345GC",
        "XX"},
       "GB",
       "AB12345GC\tAB123456C\nXX\tPattern validation failed.\n",
       1},
      {{"format", "-t", "0", "--spec", "0000", "--coerce", "1O5I"},
       "GB",
       "1O5I\t1051\n",
       0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[2] + " " + c.args.back());
    LocaleEnv env(c.locale);
    const auto result = RunPelinor(c.args, env.Env());
    EXPECT_EQ(result.out, c.out);
    EXPECT_EQ(result.status, c.status);
    EXPECT_EQ(result.err, "");
  }
}

TEST(FormatCli, ExplainsEachRepairUnderItsValue) {
  struct Case {
    std::vector<std::string> args;
    std::string out;
  };
  const Case cases[] = {
      {{"format", "-t", "AMOUNT", "--explain", "USD 12.50", "12.50"},
       "USD 12.50\t512.50\n"
       "  guess    char-dropped: U dropped at position 1\n"
       "  guess    bias-digit: S read as 5 at position 2\n"
       "  guess    char-dropped: D dropped at position 3\n"
       "  cosmetic separator-dropped: 1 separator (space or comma) removed\n"
       "12.50\t12.50\n"
       "  no change\n"},
      {{"format", "-t", "DATEGB", "--explain", "12 0CT 2003"},
       "12 0CT 2003\t12/10/2003\n"
       "  repair   month-repaired: 0CT read as OCT\n"
       "  cosmetic date-layout: written as 12/10/2003\n"},
      {{"validate", "-t", "POSTCODE", "--explain", "M1 IAA"},
       "M1 IAA\tnot a valid POSTCODE\n"
       "  repair   bias-digit: I read as 1 at position 4\n"},
      {{"pattern", "--spec", "LL(0)(0)(0)(0)", "--coerce", "--explain",
        "AB12O4"},
       "AB1204\n"
       "  repair   pattern-variation: O at 5 mapped to 0\n"},
      {{"pattern", "--spec", "0000", "--coerce", "--explain", "1 O5I"},
       "1051\n"
       "  cosmetic spaces-removed: 1 space removed\n"
       "  repair   pattern-variation: O at 3 mapped to 0\n"
       "  repair   pattern-variation: I at 5 mapped to 1\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[0] + " " + c.args.back());
    LocaleEnv env("GB");
    const auto result = RunPelinor(c.args, env.Env());
    EXPECT_EQ(result.out, c.out);
    EXPECT_EQ(result.err, "");
  }
}

TEST(FormatCli, GivesTheFullAnswerAsJson) {
  LocaleEnv env("GB");
  const auto result = RunPelinor(
      {"format", "--json", "-t", "DATEFR", "1er f\303\251vrier 2004", "x"},
      env.Env());
  EXPECT_EQ(result.status, 1);
  const auto json = nlohmann::json::parse(result.out);
  const auto expected = nlohmann::json::parse(R"([
    {"input": "1er f\u00e9vrier 2004", "valid": true,
     "output": "01/02/2004", "message": "", "changed": true,
     "steps": [{"rule": "month-name", "class": "cosmetic", "position": 5,
                "sentence": "f\u00e9vrier read as month 2",
                "before": "f\u00e9vrier", "after": "f\u00e9vrier"},
               {"rule": "date-layout", "class": "cosmetic", "position": 0,
                "sentence": "written as 01/02/2004",
                "before": "1er f\u00e9vrier 2004", "after": "01/02/2004"}]},
    {"input": "x", "valid": false, "output": "",
     "message": "cannot be formatted as DATEFR", "changed": false,
     "steps": []}])");
  EXPECT_EQ(json, expected);
}

TEST(FormatCli, RefusesUnknownTypes) {
  LocaleEnv env("GB");
  struct Case {
    std::vector<std::string> args;
    const char* err;
  } cases[] = {
      {{"format", "-t", "BOGUS", "x"},
       "pelinor: unknown data type \"BOGUS\": use a code (4, 10004, ...) or "
       "a name (AMOUNT, DATEGB, POSTCODE, ...)\n"},
      {{"validate", "-t", "7", "x"},
       "pelinor: data type 7 has no validation of its own; such fields are "
       "checked against their pattern: give it with --spec\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[2]);
    const auto result = RunPelinor(c.args, env.Env());
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, c.err);
  }
}

TEST(FormatCli, WritesTheFormatLog) {
  LocaleEnv env("GB");
  const std::string log = env.File("format.log");
  const auto result =
      RunPelinor({"format", "-t", "AMOUNT", "GBP 12.50"}, env.Env(log));
  EXPECT_EQ(result.out, "GBP 12.50\t12.50\n");
  const std::string text = ReadFile(log);
  std::vector<std::string> messages;
  for (size_t at = 0, end; (end = text.find("\r\n", at)) != std::string::npos;
       at = end + 2) {
    messages.push_back(text.substr(at + 20, end - at - 20));
  }
  const std::vector<std::string> expected = {
      "FormatAmount:GBP 12.50",
      "--> FormatNumericCurrency: P 12.50",
      "<-- FormatNumericCurrency: 1250",
      "FormatAmount>:12.50",
      "Repair:country-removed:cosmetic:1:GB removed at position 1",
      "Repair:char-dropped:guess:3:P dropped at position 3",
      "Repair:separator-dropped:cosmetic:4:1 separator (space or comma) "
      "removed"};
  EXPECT_EQ(messages, expected);
}

}  // namespace
}  // namespace pelinor
