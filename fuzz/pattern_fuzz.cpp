// Pattern specifications and the texts evaluated against them. The first
// byte holds the evaluation flags; then come the pattern and the
// text, separated by a NUL byte.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/pattern_engine.h"

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
  return 0;
}
