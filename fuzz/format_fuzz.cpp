// Every value formatter over arbitrary text: amounts, numerics, dates in
// each language, postcodes and the OCR biasing routines. The first byte
// picks a format code; then come a country and the value, separated by a
// NUL byte. Property: a repair trace never changes a result, and every
// step it records has a known rule and a position inside the text.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/date_text.h"
#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/repair_trace.h"

namespace {

void CheckSteps(const pelinor::cRepairTrace& trace, const std::string& value) {
  for (const pelinor::cRepairStep& step : trace.Steps()) {
    pelinor::fuzz::Check(!step.Rule.empty() && !step.Sentence.empty(),
                         "a repair step without rule or sentence");
    pelinor::fuzz::Check(step.Position >= 0 &&
                             static_cast<size_t>(step.Position) <= value.size(),
                         "a repair step outside the text");
    pelinor::fuzz::Check(step.Risk != pelinor::RiskClass::kNone,
                         "a repair step without a class");
  }
}

// Runs `run` without and with a trace and checks both give the same.
template <typename Run>
void CheckTraced(const std::string& value, Run run) {
  std::string plain = "unset";
  std::string traced = "unset";
  pelinor::cRepairTrace trace;
  const bool a = run(plain, nullptr);
  const bool b = run(traced, &trace);
  pelinor::fuzz::Check(a == b && plain == traced,
                       "tracing changed a formatting result");
  CheckSteps(trace, value);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const int32_t code = data[0] % 8;
  const auto parts = pelinor::fuzz::Split(data + 1, size - 1, 2);
  const std::string& country = parts[0];
  const std::string& value = parts[1];
  const pelinor::cFormat format;
  std::string out, day, month, year;
  float confidence = 0;

  format.ValidateAmount(value);
  format.FormatAmount(value, out, code);
  format.FormatNumeric(value, out, code);
  format.FormatDescr(code);
  format.ValidateDate(value, country);
  format.FormatDate(value, out, code);
  format.ValidateRawDate(value, day, month, year, confidence, country);
  format.ValidateDatePartsDDMMYY(value, day, month, year, confidence, code);
  format.ValidateDatePartsNumeric(value, day, month, year, confidence, code);
  day = value.substr(0, 2);
  month = value.size() > 2 ? value.substr(2, 3) : "";
  year = value.size() > 5 ? value.substr(5, 4) : "";
  format.ValidateDateParsed(day, month, year);
  format.ValidatePostCode(value);
  format.FormatPostCode(value, out, code);
  format.IsInwardCode(value);
  format.IsOutwardCode(value);
  format.IsStrictOutwardCode(value);
  std::string biased = value;
  format.BiasToNumber(biased);
  biased = value;
  format.BiasToUCASECharacter(biased, country);

  double serial = 0;
  pelinor::ParseDateText(value, serial);

  const pelinor::cPatternEngine engine;
  engine.CoerceShortMonth(value);
  std::string words = value;
  engine.CoerceShortMonthInString(words);
  engine.coerceNameDate(value, out);
  bool coerced = false;
  for (const char* name : {"DATEFR", "DATEPT", "DATEES", "DATEDE", "DATEIT"}) {
    engine.CoerceDate(value, out, name, coerced);
  }
  engine.CoerceDate(value, out, country, coerced);

  for (const int32_t type : {4, 200, 10004, 10200, 2, 300, 5}) {
    CheckTraced(value, [&](std::string& o, pelinor::cRepairTrace* t) {
      if (type == 5) return format.FormatPostCode(value, o, type, t);
      if (type == 2 || type == 300) {
        return format.FormatNumeric(value, o, type, t);
      }
      return format.FormatAmount(value, o, type, t);
    });
  }
  for (const std::string& name : {std::string("DATEGB"), std::string("DATEFR"),
                                  std::string("DATEDE"), country}) {
    CheckTraced(value, [&](std::string& o, pelinor::cRepairTrace* t) {
      bool ok = false;
      engine.CoerceDate(value, o, name, ok, t);
      return ok;
    });
  }
  return 0;
}
