// The pieces a pattern engine keeps for a loaded specification and an
// evaluated text: the elements of the pattern with their positions,
// and the candidates that matching produced.
// Language: docs/formats/patterns.md.
//
// Thread safety: plain values.

#ifndef PELINOR_PATTERN_ELEMENT_H_
#define PELINOR_PATTERN_ELEMENT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "pelinor/reg_exp.h"

namespace pelinor {

// cPatternSlot
//
// One position of an element, or one brace section. `Placeholder` is the
// character as written; `Literal` is true when it was written in double
// quotes (then it stands for itself, even "0", "L", "l" or "."). `Section`
// is the one-based index of a brace section in the engine's cMetaRules, or
// 0 for a single position.
struct cPatternSlot {
  char Placeholder = 0;
  bool Literal = false;
  int32_t Section = 0;
};

// cPatternElement
//
// One element of a specification: its text as written (double quotes
// included), whether it was written in parentheses (optional), its
// positions and its regular expression.
struct cPatternElement {
  std::string Text;
  bool Optional = false;
  std::vector<cPatternSlot> Slots;
  std::string Expression;
};

// cPatternCandidate
//
// One text that matching was run on (the evaluated text or one of its
// coerced variations), the matches found in it, and its candidate text:
// the matches' values joined in order (set by the selection operations).
struct cPatternCandidate {
  std::string Variation;
  cMatchCollection Matches;
  std::string Text;
};

}  // namespace pelinor

#endif  // PELINOR_PATTERN_ELEMENT_H_
