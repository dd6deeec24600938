#include "pelinor/repair_trace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "format/format_env.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"

namespace pelinor {
namespace {

using testing::FormatEnv;

// What a value is formatted as: an amount or numeric code, a date format
// name, "POSTCODE", or "pattern:<spec>" (whole match with coercion and
// spaces removed, as a field with a pattern is checked).
bool Format(const std::string& type, const std::string& in, std::string& out,
            cRepairTrace* trace) {
  const cFormat format;
  if (type == "AMOUNT") return format.FormatAmount(in, out, 4, trace);
  if (type == "AMOUNTUS") return format.FormatAmount(in, out, 200, trace);
  if (type == "AMOUNT10004") return format.FormatAmount(in, out, 10004, trace);
  if (type == "NUMERIC") return format.FormatNumeric(in, out, 2, trace);
  if (type == "NUMERIC_COMMA") {
    return format.FormatNumeric(in, out, 300, trace);
  }
  if (type == "POSTCODE") return format.FormatPostCode(in, out, 5, trace);
  if (type.rfind("pattern:", 0) == 0) {
    cPatternEngine engine;
    std::string text = in;
    std::string error;
    return EvaluatePatternWith(engine, text, type.substr(8), true, true, true,
                               false, out, error, "", trace);
  }
  bool ok = false;
  cPatternEngine().CoerceDate(in, out, type, ok, trace);
  return ok;
}

std::string Rules(const cRepairTrace& trace) {
  std::string rules;
  for (const cRepairStep& step : trace.Steps()) {
    rules += (rules.empty() ? "" : " ") + step.Rule;
  }
  return rules;
}

TEST(RepairTrace, ExplainsRealisticOcrValuesOfEveryType) {
  struct Case {
    const char* type;
    const char* in;
    const char* out;
    const char* rules;    // the steps' codes in order
    const char* highest;  // the highest class, "" for none
  } cases[] = {
      // GB amounts: two implied decimals.
      {"AMOUNT",
       "\xA3"
       "1,234",
       "12.34", "currency-skipped separator-dropped implied-decimals", "guess"},
      {"AMOUNT",
       "\xA3"
       "1,234.5O",
       "1234.50", "currency-skipped bias-digit separator-dropped", "repair"},
      {"AMOUNT", "USD 12.50", "512.50",
       "char-dropped bias-digit char-dropped separator-dropped", "guess"},
      {"AMOUNT", "(12.50)", "1125.01", "bias-digit bias-digit point-moved",
       "guess"},
      {"AMOUNT",
       "Total: \xA3"
       "12.50",
       "0112.50",
       "char-dropped bias-digit char-dropped char-dropped bias-digit "
       "char-dropped currency-skipped separator-dropped",
       "guess"},
      {"AMOUNT", "\xA3 96.0O", "96.00",
       "currency-skipped bias-digit separator-dropped", "repair"},
      {"AMOUNT", "12.50", "12.50", "", ""},
      {"AMOUNT", "GB 12.50", "12.50", "country-removed", "cosmetic"},
      {"AMOUNT", "7", "7.00", "whole-units", "guess"},
      {"AMOUNT", "12.5", "1.25", "point-moved", "guess"},
      {"AMOUNT", "1234-", "-12.34", "sign-moved implied-decimals", "guess"},
      {"AMOUNT",
       "|\xA3"
       "12.50",
       "12.50", "leading-mark-dropped currency-skipped", "guess"},
      {"AMOUNT", "12.50 ~ paid", "12.50",
       "char-dropped reading-stopped separator-dropped", "guess"},
      {"AMOUNT", "S5", ".55", "bias-digit implied-decimals", "guess"},
      {"AMOUNT", "2l.5O", "21.50", "bias-digit bias-digit", "repair"},
      // US amounts skip the dollar sign and S.
      {"AMOUNTUS", "$1,234.56", "1234.56", "currency-skipped separator-dropped",
       "cosmetic"},
      {"AMOUNTUS", "US$ 12", ".12",
       "char-dropped currency-skipped currency-skipped separator-dropped "
       "implied-decimals",
       "guess"},
      // A trusted point decides nothing.
      {"AMOUNT10004", "12.5", "12.5", "", ""},
      {"AMOUNT10004", "1O.5", "10.5", "bias-digit", "repair"},
      // Numerics.
      {"NUMERIC", "1,234.5O", "1234.50", "bias-digit separator-dropped",
       "repair"},
      {"NUMERIC", "12-", "-12", "sign-moved", "cosmetic"},
      {"NUMERIC", "l2 345", "12345", "bias-digit separator-dropped", "repair"},
      {"NUMERIC", "abc12", "12", "char-dropped char-dropped char-dropped",
       "guess"},
      {"NUMERIC", "Qty 3", "03",
       "bias-digit char-dropped char-dropped "
       "separator-dropped",
       "guess"},
      {"NUMERIC_COMMA", "1.234,5O", "1234.50",
       "decimal-comma bias-digit separator-dropped", "repair"},
      {"NUMERIC_COMMA", "12,5", "12.5", "decimal-comma", "cosmetic"},
      // Postcodes.
      {"POSTCODE", "SW1A1AA", "SW1A 1AA", "postcode-shape", "cosmetic"},
      {"POSTCODE", "M1 IAA", "M1 1AA", "bias-digit", "repair"},
      {"POSTCODE", "W1O 1AA", "W10 1AA", "bias-digit", "repair"},
      {"POSTCODE", "EC1A-1BB", "EC1A 1BB", "separator-dropped postcode-shape",
       "cosmetic"},
      {"POSTCODE", "SW1A 1AA", "SW1A 1AA", "", ""},
      {"POSTCODE", "5W1A 1AA", "SW1A 1AA", "bias-letter", "repair"},
      // Dates.
      {"DATEGB", "12 0CT 2003", "12/10/2003", "month-repaired date-layout",
       "repair"},
      {"DATEGB", "1.2.03", "01/02/2003",
       "two-digit-year day-month-order date-layout", "guess"},
      {"DATEGB", "12/10/2003", "12/10/2003", "day-month-order", "guess"},
      {"DATEGB", "13/10/03", "13/10/2003", "two-digit-year date-layout",
       "guess"},
      {"DATEGB", "25/12/2003", "25/12/2003", "", ""},
      {"DATEGB", "MARCH 3RD 2004", "03/03/2004", "date-layout", "cosmetic"},
      {"DATEGB", "3. M\xE4rz 2004", "03/03/2004",
       "month-name other-language date-layout", "repair"},
      {"DATEFR", "3 ju1l 2004", "03/07/2004", "month-repaired date-layout",
       "repair"},
      {"DATEFR", "12 octobre 2003", "12/10/2003", "month-name date-layout",
       "cosmetic"},
      {"DATEDE", "12 OCT 2003", "12/10/2003",
       "month-name other-language date-layout", "repair"},
      {"DATEIT", "7 dic 04", "07/12/2004",
       "month-name two-digit-year date-layout", "guess"},
      // Patterns.
      {"pattern:LL(0)(0)(0)(0)", "AB12O4", "AB1204", "pattern-variation",
       "repair"},
      {"pattern:0000", "1O5I", "1051", "pattern-variation pattern-variation",
       "repair"},
      {"pattern:LL000000L", "AB 123456 C", "AB123456C", "spaces-removed",
       "cosmetic"},
      {"pattern:LL000000L", "AB123456C", "AB123456C", "", ""},
  };
  int count = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " " + c.in);
    FormatEnv env("GB");
    std::string out;
    cRepairTrace trace;
    ASSERT_TRUE(Format(c.type, c.in, out, &trace));
    EXPECT_EQ(out, c.out);
    EXPECT_EQ(Rules(trace), c.rules);
    EXPECT_EQ(RiskClassName(trace.Highest()), c.highest);
    ++count;
  }
  EXPECT_GE(count, 40);
}

TEST(RepairTrace, StepsCarryPositionSentenceAndText) {
  struct Case {
    const char* type;
    const char* in;
    size_t step;
    const char* rule;
    int32_t position;
    const char* before;
    const char* after;
    const char* sentence;
    const char* risk;
  } cases[] = {
      {"AMOUNT", "USD 12.50", 1, "bias-digit", 2, "S", "5",
       "S read as 5 at position 2", "guess"},
      {"AMOUNT",
       "\xA3"
       "1,234",
       2, "implied-decimals", 0, "1234", "12.34",
       "no decimal point, last two digits taken as pence", "guess"},
      {"AMOUNT", "96.0O", 0, "bias-digit", 5, "O", "0",
       "O read as 0 at position 5", "repair"},
      {"DATEGB", "12 0CT 2003", 0, "month-repaired", 4, "0CT", "OCT",
       "0CT read as OCT", "repair"},
      {"DATEGB", "1.2.03", 0, "two-digit-year", 5, "03", "2003",
       "03 read as 2003", "guess"},
      {"pattern:LL(0)(0)(0)(0)", "AB 12O4", 1, "pattern-variation", 6, "O", "0",
       "O at 6 mapped to 0", "repair"},
      {"POSTCODE", "M1 IAA", 0, "bias-digit", 4, "I", "1",
       "I read as 1 at position 4", "repair"},
      // Folded, "MARZ" also starts a Spanish name; the word is German.
      {"DATEGB", "3. M\xE4rz 2004", 1, "other-language", 4, "M\xE4rz",
       "M\xE4rz", "M\xE4rz read as a month name in German", "repair"},
      {"DATEDE", "12 OCT 2003", 1, "other-language", 4, "OCT", "OCT",
       "OCT read as a month name in English", "repair"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.type) + " " + c.in);
    FormatEnv env("GB");
    std::string out;
    cRepairTrace trace;
    ASSERT_TRUE(Format(c.type, c.in, out, &trace));
    ASSERT_GT(trace.Size(), c.step);
    const cRepairStep& s = trace.Steps()[c.step];
    EXPECT_EQ(s.Rule, c.rule);
    EXPECT_EQ(s.Position, c.position);
    EXPECT_EQ(s.Before, c.before);
    EXPECT_EQ(s.After, c.after);
    EXPECT_EQ(s.Sentence, c.sentence);
    EXPECT_EQ(RiskClassName(s.Risk), c.risk);
  }
}

TEST(RepairTrace, TracingLeavesResultsAndLogUnchanged) {
  // Every routine gives the same result and the same existing log lines
  // with and without a trace; the steps come after those lines.
  const char* cases[][2] = {
      {"AMOUNT", "USD 12.50"},  {"AMOUNT", "abc"},
      {"NUMERIC", "l2O"},       {"NUMERIC", "1,234"},
      {"NUMERIC", "12"},        {"POSTCODE", "SW1A 1AA"},
      {"POSTCODE", "M1 IAA"},   {"POSTCODE", "nothing"},
      {"DATEGB", "1.2.03"},     {"DATEDE", "12 OCT 2003"},
      {"pattern:0000", "1O5I"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c[0]) + " " + c[1]);
    std::string plain = "unset";
    std::string traced = "unset";
    std::vector<std::string> plainLog, tracedLog;
    bool a = false;
    bool b = false;
    {
      FormatEnv env("GB");
      env.LogOn();
      a = Format(c[0], c[1], plain, nullptr);
      plainLog = env.LogMessages();
    }
    cRepairTrace trace;
    {
      FormatEnv env("GB");
      env.LogOn();
      b = Format(c[0], c[1], traced, &trace);
      tracedLog = env.LogMessages();
    }
    EXPECT_EQ(a, b);
    EXPECT_EQ(plain, traced);
    // The log is the same either way: the existing lines, then, for a
    // value that formats, one line per step.
    EXPECT_EQ(plainLog, tracedLog);
    size_t steps = 0;
    size_t firstStep = plainLog.size();
    for (size_t i = 0; i < plainLog.size(); ++i) {
      if (plainLog[i].rfind("Repair:", 0) != 0) continue;
      firstStep = std::min(firstStep, i);
      ++steps;
    }
    EXPECT_EQ(steps, a ? trace.Size() : 0u);
    for (size_t i = firstStep; i < plainLog.size(); ++i) {
      EXPECT_EQ(plainLog[i].rfind("Repair:", 0), 0u) << plainLog[i];
    }
  }
}

TEST(RepairTrace, ClassesAndSentencesSummariseTheSteps) {
  cRepairTrace trace;
  EXPECT_EQ(trace.Highest(), RiskClass::kNone);
  EXPECT_EQ(RiskClassName(trace.Highest()), "");
  trace.Add("separator-dropped", "1 separator removed", 3, "", "");
  trace.Add("bias-digit", "O read as 0 at position 5", 5, "O", "0");
  trace.Add("implied-decimals", "no decimal point", 0, "1250", "12.50");
  EXPECT_EQ(trace.Highest(), RiskClass::kGuess);
  EXPECT_EQ(trace.Highest(2), RiskClass::kGuess);
  EXPECT_EQ(trace.Sentences(1), "O read as 0 at position 5; no decimal point");
  const struct {
    const char* rule;
    RiskClass risk;
  } rules[] = {{"spaces-removed", RiskClass::kCosmetic},
               {"postcode-shape", RiskClass::kCosmetic},
               {"month-repaired", RiskClass::kRepair},
               {"pattern-variation", RiskClass::kRepair},
               {"two-digit-year", RiskClass::kGuess},
               {"day-month-order", RiskClass::kGuess},
               {"no-such-rule", RiskClass::kGuess},
               // The first and last codes, and codes around and between.
               {"bias-digit", RiskClass::kRepair},
               {"whole-units", RiskClass::kGuess},
               {"case-changed", RiskClass::kCosmetic},
               {"bias", RiskClass::kGuess},
               {"sign-moved-", RiskClass::kGuess},
               {"", RiskClass::kGuess},
               {"zz", RiskClass::kGuess}};
  for (const auto& r : rules) {
    SCOPED_TRACE(r.rule);
    EXPECT_EQ(RuleRisk(r.rule), r.risk);
  }
}

}  // namespace
}  // namespace pelinor
