// Character-replacement tables: parsing arbitrary table text, and loading
// it as the pattern engine's character map before evaluating a text.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/sbs_char_replace.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto parts = pelinor::fuzz::Split(data, size, 2);
  std::string err;
  pelinor::cSBSCharReplace table;
  if (table.Parse(parts[1], err)) table.Expression();

  const std::string path = pelinor::fuzz::WriteScratch("CharMap.txt", parts[1]);
  pelinor::cPatternEngine engine;
  if (!engine.LoadCharacterMappings(path, err)) return 0;
  bool ok = false;
  engine.LoadSBSExpression("\"A\"[3]N[2,4]", err, ok);
  if (!ok) return 0;
  std::string text = parts[0].substr(0, 64);
  engine.Execute(text, err, ok);
  std::string best;
  engine.BestCandidateWhole(best, ok);
  return 0;
}
