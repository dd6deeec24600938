// Cost per value of the formatter and the month-name coercion over a mixed
// corpus of clean and OCR-damaged values, beside a bare normalisation loop
// for reference. Each iteration handles one value of the corpus in turn.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"

namespace {

using pelinor::cFormat;
using pelinor::cPatternEngine;

const std::vector<std::string> kAmounts = {
    "12.50",
    "1,234.56",
    "\xA3"
    "12.50",
    "$1,234.56",
    "12 3x~4",
    "S5",
    "120-",
    "GBP 12.50",
    "1O0.5O",
    "l2.5",
    "\x80 1.234,56",
    "7",
    "45",
    "abc",
    "  99.99 ",
    "1.2.3",
};
const std::vector<std::string> kNumerics = {
    "1.234,56", "12,5", "1,234.56", "O1", "12-", "1 234", "3.14159", "1.",
};

struct DateCase {
  std::string text;
  int32_t code;
};
const std::vector<DateCase> kDates = {
    {"1.2.03", 100},
    {"010203", 100},
    {"01022003", 100},
    {"01l02l2003", 100},
    {"31/12/1999", 100},
    {"12/31/2003", 101},
    {"2003-12-31", 102},
    {"1.13.03", 3},
    {"12 0CT 2003", 3},
    {"MARCH 3RD 2004", 100},
    {"12 5EP 2003", 100},
    {"12 octobre 2003", 103},
    {"1er f\xE9vrier 2004", 103},
    {"3. M\xE4rz 2004", 106},
    {"15 de mar\xE7o de 2004", 104},
    {"15 de marzo de 2004", 105},
    {"7 dicembre 2004", 107},
    {"not a date", 100},
};
const std::vector<std::string> kPostCodes = {
    "SW1A 1AA", "SW1A1AA", "M1 IAA",  "GIR 0AA", "5W1A 1AA",
    "EC1A-1BB", "W1 1CA",  "S01 1AA", "B33 8TH", "DN55 1PT",
};

// Points the registry at a small file holding the locale, as on a server.
void UseRegistryFile() {
  static const std::string path = [] {
    char name[64];
    std::snprintf(name, sizeof name, "/tmp/pelinor-bench-registry-%ld.reg",
                  static_cast<long>(getpid()));
    std::FILE* f = std::fopen(name, "wb");
    if (f != nullptr) {
      std::fputs(
          "Windows Registry Editor Version 5.00\r\n\r\n"
          "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\Default]"
          "\r\n\"HalvernLocale\"=\"GB\"\r\n",
          f);
      std::fclose(f);
    }
    std::atexit([] {
      char n[64];
      std::snprintf(n, sizeof n, "/tmp/pelinor-bench-registry-%ld.reg",
                    static_cast<long>(getpid()));
      std::remove(n);
    });
    return std::string(name);
  }();
  setenv("PELINOR_REGISTRY", path.c_str(), 1);
  unsetenv("PELINORLOGFORMAT");
}

// No registry file at all: the locale falls back to GB without reading.
void UseNoRegistry() {
  setenv("PELINOR_REGISTRY", "/nonexistent/pelinor/registry.reg", 1);
  unsetenv("PELINORLOGFORMAT");
}

template <typename T>
const T& Next(const std::vector<T>& corpus, size_t& i) {
  const T& value = corpus[i];
  if (++i == corpus.size()) i = 0;
  return value;
}

void BM_BareDigitFilter(benchmark::State& state) {
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    out.clear();
    for (const char c : Next(kAmounts, i)) {
      if ((c >= '0' && c <= '9') || c == '.') out += c;
    }
    benchmark::DoNotOptimize(out);
  }
}
BENCHMARK(BM_BareDigitFilter);

void BM_ValidateAmount(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(format.ValidateAmount(Next(kAmounts, i)));
  }
}
BENCHMARK(BM_ValidateAmount);

void BM_FormatAmount(benchmark::State& state) {
  UseNoRegistry();
  const cFormat format;
  const int32_t codes[] = {4, 200, 10004, 10200};
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        format.FormatAmount(Next(kAmounts, i), out, codes[i % 4]));
  }
}
BENCHMARK(BM_FormatAmount);

void BM_FormatNumeric(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        format.FormatNumeric(Next(kNumerics, i), out, i % 2 ? 300 : 2));
  }
}
BENCHMARK(BM_FormatNumeric);

void BM_ValidateDate(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(format.ValidateDate(Next(kDates, i).text, "GB"));
  }
}
BENCHMARK(BM_ValidateDate);

// The locale read that every recognised date makes; shown so that the
// date figures below can be read without it.
void BM_ReadLocale(benchmark::State& state) {
  if (state.range(0) == 0) {
    UseNoRegistry();
  } else {
    UseRegistryFile();
  }
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        pelinor::ReadServerSetting(pelinor::kLocaleValue, "GB"));
  }
  state.SetLabel(state.range(0) == 0 ? "no registry file" : "registry file");
}
BENCHMARK(BM_ReadLocale)->Arg(0)->Arg(1);

void BM_FormatDate(benchmark::State& state) {
  if (state.range(0) == 0) {
    UseNoRegistry();
  } else {
    UseRegistryFile();
  }
  const cFormat format;
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    const DateCase& c = Next(kDates, i);
    benchmark::DoNotOptimize(format.FormatDate(c.text, out, c.code));
  }
  state.SetLabel(state.range(0) == 0 ? "no registry file" : "registry file");
}
BENCHMARK(BM_FormatDate)->Arg(0)->Arg(1);

void BM_CoerceDate(benchmark::State& state) {
  if (state.range(0) == 0) {
    UseNoRegistry();
  } else {
    UseRegistryFile();
  }
  const cFormat format;
  const cPatternEngine engine;
  std::vector<std::string> names;
  for (const DateCase& c : kDates) names.push_back(format.FormatDescr(c.code));
  size_t i = 0;
  std::string out;
  bool ok = false;
  for (auto _ : state) {
    const size_t at = i;
    engine.CoerceDate(Next(kDates, i).text, out, names[at], ok);
    benchmark::DoNotOptimize(ok);
  }
  state.SetLabel(state.range(0) == 0 ? "no registry file" : "registry file");
}
BENCHMARK(BM_CoerceDate)->Arg(0)->Arg(1);

void BM_CoerceShortMonthInString(benchmark::State& state) {
  UseNoRegistry();
  const cPatternEngine engine;
  size_t i = 0;
  std::string text;
  for (auto _ : state) {
    text = Next(kDates, i).text;
    engine.CoerceShortMonthInString(text);
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(BM_CoerceShortMonthInString);

void BM_ValidatePostCode(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(format.ValidatePostCode(Next(kPostCodes, i)));
  }
}
BENCHMARK(BM_ValidatePostCode);

void BM_FormatPostCode(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  std::string out;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        format.FormatPostCode(Next(kPostCodes, i), out, 5));
  }
}
BENCHMARK(BM_FormatPostCode);

// The same work with a repair trace collecting every step, beside the
// untraced figures above (which a trace must not slow down).
void BM_FormatAmountTraced(benchmark::State& state) {
  UseNoRegistry();
  const cFormat format;
  const int32_t codes[] = {4, 200, 10004, 10200};
  size_t i = 0;
  std::string out;
  pelinor::cRepairTrace trace;
  for (auto _ : state) {
    trace.Clear();
    benchmark::DoNotOptimize(
        format.FormatAmount(Next(kAmounts, i), out, codes[i % 4], &trace));
  }
}
BENCHMARK(BM_FormatAmountTraced);

void BM_FormatNumericTraced(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  std::string out;
  pelinor::cRepairTrace trace;
  for (auto _ : state) {
    trace.Clear();
    benchmark::DoNotOptimize(
        format.FormatNumeric(Next(kNumerics, i), out, i % 2 ? 300 : 2, &trace));
  }
}
BENCHMARK(BM_FormatNumericTraced);

void BM_CoerceDateTraced(benchmark::State& state) {
  UseNoRegistry();
  const cFormat format;
  const cPatternEngine engine;
  std::vector<std::string> names;
  for (const DateCase& c : kDates) names.push_back(format.FormatDescr(c.code));
  size_t i = 0;
  std::string out;
  bool ok = false;
  pelinor::cRepairTrace trace;
  for (auto _ : state) {
    const size_t at = i;
    trace.Clear();
    engine.CoerceDate(Next(kDates, i).text, out, names[at], ok, &trace);
    benchmark::DoNotOptimize(ok);
  }
}
BENCHMARK(BM_CoerceDateTraced);

void BM_FormatPostCodeTraced(benchmark::State& state) {
  const cFormat format;
  size_t i = 0;
  std::string out;
  pelinor::cRepairTrace trace;
  for (auto _ : state) {
    trace.Clear();
    benchmark::DoNotOptimize(
        format.FormatPostCode(Next(kPostCodes, i), out, 5, &trace));
  }
}
BENCHMARK(BM_FormatPostCodeTraced);

}  // namespace
