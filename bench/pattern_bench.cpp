// The pattern engine: loading specifications, matching field texts, and
// whole evaluations with and without coercion.
//
// BM_BarePcre2Jit is the floor for matching: a hand-written PCRE2 JIT
// loop enumerating the matches of the same expression over the same texts,
// with no result objects. BM_RegExpExecute and BM_EngineExecute run the
// library's matcher and the engine's Execute() over those texts;
// BM_StdRegex shows std::regex for comparison. BM_EvaluatePattern* time the
// evaluation entry end to end with no "CharMap.txt" (the registry named by
// PELINOR_REGISTRY does not exist), so they include the engine's creation,
// the registry look-up and the file check made on every call.
//
// BM_EngineRepair and BM_SnapshotEvaluateRepair time the look-alike repair
// on an invoice's values ("INV-0O1234", "P0-004521", "GB 123 4567 89"):
// the first on engines loaded once, the second through a settings
// snapshot with a repair trace, as a batch capture evaluates them.

#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>

#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <regex>
#include <string>
#include <vector>

#include "pelinor/evaluate_pattern.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/reg_exp.h"
#include "pelinor/repair_trace.h"
#include "pelinor/settings_snapshot.h"

namespace {

const char* const kSpecs[] = {
    "LL000000L",
    "0000|LL0000",
    "\"INV-\"{0000??}",
    "LL{00?}\"-\"0000(L)",
};

const std::vector<std::string>& FieldTexts() {
  static const std::vector<std::string> texts = {
      "AB123456C", "AB12345GC", "XY654321Z", "0B123456C",
      "AB123456",  "QQ000001A", "ab123456c", "ZZ999999Z",
  };
  return texts;
}

const char kFieldRegex[] = "[A-Z][A-Z]\\d\\d\\d\\d\\d\\d[A-Z]";

void NoMappingFile() {
  setenv("PELINOR_REGISTRY", "/nonexistent/pelinor-bench.reg", 1);
}

void BM_LoadSBSExpression(benchmark::State& state) {
  const std::string spec = kSpecs[state.range(0)];
  for (auto _ : state) {
    pelinor::cPatternEngine engine;
    std::string error;
    bool ok = false;
    engine.LoadSBSExpression(spec, error, ok);
    benchmark::DoNotOptimize(engine.RegExpFormat.data());
  }
  state.SetLabel(spec);
}
BENCHMARK(BM_LoadSBSExpression)->DenseRange(0, 3);

void BM_BarePcre2Jit(benchmark::State& state) {
  int error = 0;
  PCRE2_SIZE offset = 0;
  pcre2_code* code = pcre2_compile(
      reinterpret_cast<PCRE2_SPTR>(kFieldRegex), PCRE2_ZERO_TERMINATED,
      PCRE2_NEVER_UTF | PCRE2_NEVER_UCP | PCRE2_DOLLAR_ENDONLY, &error, &offset,
      nullptr);
  pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
  pcre2_match_data* md = pcre2_match_data_create(1, nullptr);
  const auto& texts = FieldTexts();
  size_t found = 0;
  for (auto _ : state) {
    for (const std::string& t : texts) {
      size_t pos = 0;
      while (pos <= t.size()) {
        int rc = pcre2_jit_match(code, reinterpret_cast<PCRE2_SPTR>(t.data()),
                                 t.size(), pos, 0, md, nullptr);
        if (rc < 0) break;
        const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(md);
        ++found;
        pos = ov[1] == ov[0] ? ov[1] + 1 : ov[1];
      }
    }
  }
  benchmark::DoNotOptimize(found);
  pcre2_match_data_free(md);
  pcre2_code_free(code);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(texts.size()));
}
BENCHMARK(BM_BarePcre2Jit);

void BM_RegExpExecute(benchmark::State& state) {
  pelinor::cRegExp re;
  re.Pattern = kFieldRegex;
  re.Global = true;
  pelinor::cMatchCollection matches;
  std::string error;
  const auto& texts = FieldTexts();
  for (auto _ : state) {
    for (const std::string& t : texts) {
      re.Execute(t, matches, error);
      benchmark::DoNotOptimize(matches.Count());
    }
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(texts.size()));
}
BENCHMARK(BM_RegExpExecute);

void BM_EngineExecute(benchmark::State& state) {
  pelinor::cPatternEngine engine;
  std::string error;
  bool ok = false;
  engine.LoadSBSExpression("LL000000L", error, ok);
  const auto& texts = FieldTexts();
  std::string text;
  for (auto _ : state) {
    for (const std::string& t : texts) {
      text = t;
      engine.Execute(text, error, ok);
      benchmark::DoNotOptimize(ok);
    }
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(texts.size()));
}
BENCHMARK(BM_EngineExecute);

void BM_StdRegex(benchmark::State& state) {
  const std::regex re(kFieldRegex, std::regex::ECMAScript);
  const auto& texts = FieldTexts();
  size_t found = 0;
  for (auto _ : state) {
    for (const std::string& t : texts) {
      for (auto it = std::sregex_iterator(t.begin(), t.end(), re);
           it != std::sregex_iterator(); ++it) {
        ++found;
      }
    }
  }
  benchmark::DoNotOptimize(found);
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(texts.size()));
}
BENCHMARK(BM_StdRegex);

void BM_EvaluatePatternPlain(benchmark::State& state) {
  NoMappingFile();
  const auto& texts = FieldTexts();
  size_t i = 0;
  for (auto _ : state) {
    std::string text = texts[i++ % texts.size()];
    std::string value;
    std::string error;
    bool ok = pelinor::EvaluatePattern(text, "LL000000L", false, true, true,
                                       false, value, error, "");
    benchmark::DoNotOptimize(ok);
  }
}
BENCHMARK(BM_EvaluatePatternPlain);

// The registry look-up and file check that every evaluation makes.
void BM_CharMapPath(benchmark::State& state) {
  NoMappingFile();
  for (auto _ : state) {
    std::string path = pelinor::CharMapPath();
    benchmark::DoNotOptimize(path.data());
  }
}
BENCHMARK(BM_CharMapPath);

// "1O5I" needs two replacements ("O" to "0", "I" to "1") to become "1051".
void BM_EvaluatePatternTwoReplacements(benchmark::State& state) {
  NoMappingFile();
  for (auto _ : state) {
    std::string text = "1O5I";
    std::string value;
    std::string error;
    bool ok = pelinor::EvaluatePattern(text, "0000", true, true, true, false,
                                       value, error, "");
    if (!ok || value != "1051") state.SkipWithError("unexpected result");
  }
}
BENCHMARK(BM_EvaluatePatternTwoReplacements);

// Every "1" may be an "I" or an "L" and every "0" an "O" or a "Q": 2^14
// variations, so the evaluation stops at the 10000th.
void BM_EvaluatePatternVariationLimit(benchmark::State& state) {
  NoMappingFile();
  for (auto _ : state) {
    std::string text = "10101010101010";
    std::string value;
    std::string error;
    bool ok = pelinor::EvaluatePattern(text, "LLLLLLLLLLLLLL", true, true, true,
                                       false, value, error, "");
    if (ok || error != pelinor::kTooManyVariationsError) {
      state.SkipWithError("the limit was not reached");
    }
  }
  state.SetLabel("10000 variations");
}
BENCHMARK(BM_EvaluatePatternVariationLimit)->Unit(benchmark::kMillisecond);

// Twenty-five optional digits then a letter, on forty "1"s: a
// backtracking engine would try 2^25 ways from each place; the engine's
// own matcher answers "no match" in linear work.
void BM_EvaluatePatternManyOptionalParts(benchmark::State& state) {
  NoMappingFile();
  std::string spec;
  for (int i = 0; i < 25; ++i) spec += "(0)";
  spec += "L";
  for (auto _ : state) {
    std::string text(40, '1');
    std::string value;
    std::string error;
    bool ok = pelinor::EvaluatePattern(text, spec, false, true, true, false,
                                       value, error, "");
    if (ok || error != "Pattern validation failed.") {
      state.SkipWithError("unexpected result");
    }
  }
}
BENCHMARK(BM_EvaluatePatternManyOptionalParts);

// Invoice values with look-alikes and the patterns they are checked
// against, and the value each repair gives.
struct RepairCase {
  const char* spec;
  const char* text;
  bool suppress_spaces;
  const char* value;
};
constexpr RepairCase kRepairCases[] = {
    {"\"INV-\"000000", "INV-0O1234", false, "INV-001234"},
    {"PO000000|PO-000000", "P0-004521", false, "PO-004521"},
    {"GB000000000(000)", "GB 123 4567 89", true, "GB123456789"},
};

void BM_EngineRepair(benchmark::State& state) {
  std::vector<std::unique_ptr<pelinor::cPatternEngine>> engines;
  for (const RepairCase& c : kRepairCases) {
    auto engine = std::make_unique<pelinor::cPatternEngine>();
    std::string error;
    bool ok = false;
    engine->LoadSBSExpression(c.spec, error, ok);
    engine->PerformCoertion = true;
    engine->SuppressSpaces = c.suppress_spaces;
    engines.push_back(std::move(engine));
  }
  std::string text, value, error;
  for (auto _ : state) {
    for (size_t i = 0; i < engines.size(); ++i) {
      text = kRepairCases[i].text;
      bool ok = false;
      engines[i]->Execute(text, error, ok);
      if (ok) engines[i]->BestCandidateWhole(value, ok);
      if (!ok || value != kRepairCases[i].value) {
        state.SkipWithError("unexpected repair");
        return;
      }
    }
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(engines.size()));
}
BENCHMARK(BM_EngineRepair);

void BM_SnapshotEvaluateRepair(benchmark::State& state) {
  const auto snapshot = pelinor::cSettingsSnapshot::Make(std::nullopt, "");
  std::string text, value, error;
  pelinor::cRepairTrace trace;
  for (auto _ : state) {
    for (const RepairCase& c : kRepairCases) {
      text = c.text;
      trace.Clear();
      const bool ok =
          pelinor::EvaluatePattern(text, c.spec, true, c.suppress_spaces, true,
                                   false, value, error, "", *snapshot, &trace);
      if (!ok || value != c.value) {
        state.SkipWithError("unexpected repair");
        return;
      }
    }
  }
  state.SetItemsProcessed(state.iterations() *
                          static_cast<int64_t>(std::size(kRepairCases)));
}
BENCHMARK(BM_SnapshotEvaluateRepair);

}  // namespace
