// Pattern specifications and the texts evaluated against them. The first
// byte holds the evaluation flags; then come the pattern and the
// text, separated by a NUL byte. Properties: a repair trace never changes
// the outcome, and every step lies inside the text; an evaluation through a
// settings snapshot gives what one on a new engine gives.

#include <cstdint>
#include <optional>
#include <string>

#include "fuzz_util.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/repair_trace.h"
#include "pelinor/settings_snapshot.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t flags = data[0];
  const auto parts = pelinor::fuzz::Split(data + 1, size - 1, 2);
  const std::string& spec = parts[0];
  std::string text = parts[1];

  pelinor::cPatternEngine::PipeExpressionToSBS(spec);
  pelinor::cPatternEngine engine;
  std::string output, err;
  pelinor::EvaluatePatternWith(engine, text, spec, flags & 1, flags & 2,
                               flags & 4, flags & 8, output, err, "");
  std::string value;
  pelinor::ValidatePatternValue(parts[1], spec, flags & 16, value, err);

  // The same evaluation again, traced.
  pelinor::cPatternEngine traced_engine;
  std::string traced_text = parts[1];
  std::string traced_output, traced_err;
  pelinor::cRepairTrace trace;
  const bool plain_ok = pelinor::EvaluatePatternWith(
      traced_engine, traced_text, spec, flags & 1, flags & 2, flags & 4,
      flags & 8, traced_output, traced_err, "");
  pelinor::cPatternEngine second;
  std::string second_text = parts[1];
  std::string second_output, second_err;
  const bool traced_ok = pelinor::EvaluatePatternWith(
      second, second_text, spec, flags & 1, flags & 2, flags & 4, flags & 8,
      second_output, second_err, "", &trace);
  pelinor::fuzz::Check(
      plain_ok == traced_ok && traced_output == second_output &&
          traced_err == second_err && traced_text == second_text,
      "tracing changed a pattern evaluation");
  for (const pelinor::cRepairStep& step : trace.Steps()) {
    pelinor::fuzz::Check(
        step.Position >= 0 &&
            static_cast<size_t>(step.Position) <= parts[1].size(),
        "a repair step outside the text");
  }

  // Through a snapshot (a cached engine, and the matcher alone for a plain
  // whole-text check) the evaluation gives what a new engine gives.
  static const auto snapshot =
      pelinor::cSettingsSnapshot::Make(std::nullopt, "");
  const pelinor::ScopedSettingsSnapshot scope(snapshot.get());
  std::string quick_text = parts[1], quick_output = "unset", quick_err;
  const bool quick_ok = pelinor::EvaluatePattern(
      quick_text, spec, flags & 1, flags & 2, flags & 4, flags & 8,
      quick_output, quick_err, "", *snapshot);
  pelinor::cPatternEngine fresh;
  std::string fresh_text = parts[1], fresh_output = "unset", fresh_err;
  const bool fresh_ok = pelinor::EvaluatePatternWith(
      fresh, fresh_text, spec, flags & 1, flags & 2, flags & 4, flags & 8,
      fresh_output, fresh_err, "");
  pelinor::fuzz::Check(quick_ok == fresh_ok && quick_output == fresh_output &&
                           quick_err == fresh_err && quick_text == fresh_text,
                       "an evaluation through a snapshot differed");
  return 0;
}
