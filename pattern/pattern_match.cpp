// Matching a text against a loaded specification, the coerced variations
// of the text, and the choice of the best candidate.
// Rules: docs/formats/patterns.md ("Matching" and "Coercion").

#include <algorithm>
#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "pattern/memo_matcher.h"
#include "pelinor/pattern_engine.h"

namespace pelinor {
namespace {

// A shape (one fixed-length sequence of positions the expression can
// match) is held as a text of two bytes per position: the position's
// internal::PositionKind, then its character (the one a kLit position
// wants).
using internal::PositionAccepts;

// Shapes beyond this number are not tried: a specification with that many
// distinct shapes of one text's length is not a field pattern, and the cap
// keeps the work of lining texts up bounded.
constexpr size_t kMaxShapes = 256;

void AppendPosition(std::string& shape, char placeholder, bool literal) {
  shape.push_back(internal::PositionKindOf(placeholder, literal));
  shape.push_back(placeholder);
}

// Collects distinct shapes in first-seen order, at most kMaxShapes, none
// longer than `limit` positions.
class ShapeSet {
 public:
  explicit ShapeSet(size_t limit) : limit_(limit) {}

  void Add(std::string shape) {
    if (shape.size() / 2 > limit_ || shapes_.size() >= kMaxShapes) return;
    if (seen_.insert(shape).second) shapes_.push_back(std::move(shape));
  }

  std::vector<std::string> Take() { return std::move(shapes_); }

 private:
  size_t limit_;
  std::vector<std::string> shapes_;
  std::unordered_set<std::string> seen_;
};

// The shapes of the loaded expression no longer than `limit`, in the
// order: elements left to right, an optional element present before
// absent, brace sections shortest first.
std::vector<std::string> Shapes(const std::vector<cPatternElement>& elements,
                                const cMetaRules& rules, size_t limit) {
  std::vector<std::string> shapes{std::string()};
  for (const cPatternElement& element : elements) {
    std::vector<std::string> grown = shapes;
    for (const cPatternSlot& slot : element.Slots) {
      ShapeSet next(limit);
      if (slot.Section == 0) {
        for (std::string& s : grown) {
          AppendPosition(s, slot.Placeholder, slot.Literal);
          next.Add(std::move(s));
        }
      } else {
        Collection<std::string> runs =
            rules.GetCharReplaceSequences(slot.Section);
        for (const std::string& s : grown) {
          for (const std::string& run : runs) {
            std::string longer = s;
            for (char c : run) AppendPosition(longer, c, false);
            next.Add(std::move(longer));
          }
        }
      }
      grown = next.Take();
    }
    if (element.Optional) {
      ShapeSet merged(limit);
      for (std::string& s : grown) merged.Add(std::move(s));
      for (std::string& s : shapes) merged.Add(std::move(s));
      shapes = merged.Take();
    } else {
      shapes = std::move(grown);
    }
  }
  return shapes;
}

// The replacements the mappings offer for `c` at a position of `kind`:
// the CharTo of every one-character mapping from `c` that the position
// accepts, in table order, each once.
class Replacements {
 public:
  explicit Replacements(const std::vector<cMap>& table) : table_(table) {}

  const std::string& For(char c, char kind, char literal) {
    const uint32_t key = static_cast<uint32_t>(static_cast<uint8_t>(c)) << 16 |
                         static_cast<uint32_t>(static_cast<uint8_t>(kind))
                             << 8 |
                         static_cast<uint8_t>(literal);
    auto it = cache_.find(key);
    if (it != cache_.end()) return it->second;
    std::string options;
    for (const cMap& m : table_) {
      if (m.CharFrom.size() != 1 || m.CharFrom[0] != c ||
          m.CharTo.size() != 1 ||
          !PositionAccepts(kind, literal, m.CharTo[0]) ||
          options.find(m.CharTo[0]) != std::string::npos) {
        continue;
      }
      options.push_back(m.CharTo[0]);
    }
    return cache_.emplace(key, std::move(options)).first->second;
  }

 private:
  const std::vector<cMap>& table_;
  std::unordered_map<uint32_t, std::string> cache_;
};

// One character to repair and the replacements it can take.
struct Fix {
  uint32_t position;
  const std::string* options;
};

// Characters repaired together: those of one placement of a shape, or of
// several placements at separate places. `matched` counts the characters
// among them that the expression already matches in the text.
struct RepairSet {
  std::vector<Fix> fixes;  // by position
  uint32_t matched = 0;
  uint32_t parts = 1;  // placements joined
};

std::string Signature(const std::vector<Fix>& fixes) {
  std::string key;
  key.reserve(fixes.size() * 12);
  for (const Fix& f : fixes) {
    key.append(reinterpret_cast<const char*>(&f.position), sizeof f.position);
    key.append(reinterpret_cast<const char*>(&f.options), sizeof f.options);
  }
  return key;
}

// Combinations are not searched beyond this many steps, which keeps the
// work bounded for long texts with many possible repairs.
constexpr size_t kMaxCombinationSteps = 200000;

// The number of variations `set` yields, at most `cap`.
size_t VariationsOf(const RepairSet& set, size_t cap) {
  size_t n = 1;
  for (const Fix& f : set.fixes) {
    n *= f.options->size();
    if (n >= cap) return cap;
  }
  return n;
}

// Adds to `sets` the unions of two or more of its repairs that change only
// unmatched characters and lie at separate places (each begins after the
// previous one ends), so misreads at several places are repaired together.
// Unions come in order of the number of characters they change, and are
// added only while every variation still fits under the limit: a text
// whose single placements fit is never failed by its unions.
void AddCombinations(std::vector<RepairSet>& sets) {
  const size_t limit = static_cast<size_t>(kVariationLimit) - 1;
  size_t used = 1;  // the text itself
  for (const RepairSet& s : sets) used += VariationsOf(s, limit);
  if (used >= limit) return;
  size_t budget = limit - used;
  std::vector<const RepairSet*> parts;
  for (const RepairSet& s : sets) {
    if (s.matched == 0) parts.push_back(&s);
  }
  if (parts.size() < 2) return;
  std::stable_sort(
      parts.begin(), parts.end(), [](const RepairSet* a, const RepairSet* b) {
        return a->fixes.front().position < b->fixes.front().position;
      });
  size_t total = 0;
  for (const RepairSet* p : parts) total += p->fixes.size();
  std::vector<RepairSet> unions;
  std::vector<size_t> chain;
  size_t steps = 0;
  bool full = false;
  for (size_t want = 2; want <= total && !full; ++want) {
    // Depth-first over chains of parts in position order whose sizes add
    // up to `want`.
    std::function<void(size_t, size_t, int64_t)> extend =
        [&](size_t from, size_t size, int64_t after) {
          for (size_t i = from; i < parts.size(); ++i) {
            if (full || ++steps > kMaxCombinationSteps) return;
            const RepairSet& p = *parts[i];
            if (static_cast<int64_t>(p.fixes.front().position) <= after) {
              continue;
            }
            const size_t grown = size + p.fixes.size();
            if (grown > want) continue;
            chain.push_back(i);
            if (grown == want && chain.size() >= 2) {
              RepairSet u;
              u.parts = static_cast<uint32_t>(chain.size());
              for (size_t c : chain) {
                const auto& f = parts[c]->fixes;
                u.fixes.insert(u.fixes.end(), f.begin(), f.end());
              }
              const size_t n = VariationsOf(u, limit);
              if (n > budget) {
                full = true;
              } else {
                budget -= n;
                unions.push_back(std::move(u));
              }
            } else if (grown < want) {
              extend(i + 1, grown, p.fixes.back().position);
            }
            chain.pop_back();
          }
        };
    extend(0, 0, -1);
    if (steps > kMaxCombinationSteps) break;
  }
  for (RepairSet& u : unions) sets.push_back(std::move(u));
}

}  // namespace

bool cPatternEngine::EnsureRegExp(std::string& strErrMsg) {
  if (regexp_ != nullptr) return true;
  try {
    regexp_ = std::make_unique<cRegExp>();
  } catch (const std::bad_alloc&) {
    strErrMsg = std::string(kRegExpLoadError) + "7 Out of memory)";
    return false;
  }
  return true;
}

bool cPatternEngine::RunExpression(std::string_view text,
                                   cMatchCollection& matches,
                                   std::string& strErrMsg) {
  if (program_ != nullptr && run_loaded_ && program_->Run(text, matches)) {
    return true;
  }
  regexp_->Pattern = RegExpFormat;
  regexp_->Global = true;
  std::string error;
  if (regexp_->Execute(text, matches, error)) return true;
  // A loaded specification always compiles; one the matcher cannot take
  // (thousands of positions, or a text too long for its memory) and that
  // exhausts the regular-expression engine has found no match.
  if (run_loaded_ && !loaded_expression_.empty() &&
      error.rfind(kRegExpSyntaxError, 0) != 0) {
    matches.Clear();
    return true;
  }
  strErrMsg = error;
  return false;
}

bool cPatternEngine::GenerateVariations(const std::string& text,
                                        std::vector<std::string>& variations) {
  variations.clear();
  variations.push_back(text);
  variation_count_ = 1;
  if (CharMapper == nullptr) return true;

  // The characters the expression already matches in the text as it
  // stands; they are changed only after every repair that leaves them.
  std::vector<bool> matched(text.size(), false);
  {
    cMatchCollection plain;
    std::string ignored;
    if (RunExpression(text, plain, ignored)) {
      for (const cMatch& m : plain) {
        for (int32_t k = 0; k < m.Length; ++k) {
          matched[static_cast<size_t>(m.FirstIndex + k)] = true;
        }
      }
    }
  }

  // Shapes depend only on the loaded specification and the length.
  constexpr size_t kCachedLengths = 64;
  if (shapes_load_ != loads_ || shapes_.size() >= kCachedLengths) {
    shapes_.clear();
    shapes_load_ = loads_;
  }
  auto cached = shapes_.find(text.size());
  if (cached == shapes_.end()) {
    cached =
        shapes_
            .emplace(text.size(), Shapes(elements_, meta_rules_, text.size()))
            .first;
  }
  const std::vector<std::string>& shapes = cached->second;
  Replacements replacements(CharMapper->Mappings());
  std::vector<RepairSet> sets;
  std::unordered_set<std::string> signatures;
  for (const std::string& shape : shapes) {
    const size_t length = shape.size() / 2;
    if (length == 0) continue;
    for (size_t offset = 0; offset + length <= text.size(); ++offset) {
      RepairSet set;
      bool viable = true;
      for (size_t j = 0; j < length && viable; ++j) {
        const char c = text[offset + j];
        const char kind = shape[2 * j];
        const char literal = shape[2 * j + 1];
        if (PositionAccepts(kind, literal, c)) continue;
        const std::string& options = replacements.For(c, kind, literal);
        if (options.empty()) {
          viable = false;
        } else {
          set.fixes.push_back(Fix{static_cast<uint32_t>(offset + j), &options});
        }
      }
      if (!viable || set.fixes.empty()) continue;
      // Placements that repair the same characters the same way are one
      // repair.
      if (!signatures.insert(Signature(set.fixes)).second) continue;
      for (const Fix& f : set.fixes) set.matched += matched[f.position];
      sets.push_back(std::move(set));
    }
  }
  AddCombinations(sets);

  // Repairs that leave matched characters alone first, then fewer
  // characters changed, then fewer placements joined, then the changed
  // positions from left to right; equal repairs keep the order of their
  // shapes and offsets.
  std::stable_sort(sets.begin(), sets.end(),
                   [](const RepairSet& a, const RepairSet& b) {
                     if (a.matched != b.matched) return a.matched < b.matched;
                     if (a.fixes.size() != b.fixes.size()) {
                       return a.fixes.size() < b.fixes.size();
                     }
                     if (a.parts != b.parts) return a.parts < b.parts;
                     for (size_t k = 0; k < a.fixes.size(); ++k) {
                       if (a.fixes[k].position != b.fixes[k].position) {
                         return a.fixes[k].position < b.fixes[k].position;
                       }
                     }
                     return false;
                   });

  std::unordered_set<std::string> seen{text};
  std::vector<size_t> choice;
  for (const RepairSet& set : sets) {
    const size_t count = set.fixes.size();
    choice.assign(count, 0);
    while (true) {
      std::string variation = text;
      for (size_t k = 0; k < count; ++k) {
        const Fix& fix = set.fixes[k];
        variation[fix.position] = (*fix.options)[choice[k]];
      }
      if (seen.insert(variation).second) {
        variations.push_back(std::move(variation));
        if (++variation_count_ == kVariationLimit) return false;
      }
      // Next combination: the rightmost position varies fastest, each in
      // mapping order.
      bool more = false;
      for (size_t k = count; k-- > 0;) {
        if (++choice[k] < set.fixes[k].options->size()) {
          more = true;
          break;
        }
        choice[k] = 0;
      }
      if (!more) break;
    }
  }
  return true;
}

void cPatternEngine::Execute(std::string& strText, std::string& strErrMsg,
                             bool& bSuccess) {
  bSuccess = false;
  variation_count_ = 0;
  if (!EnsureRegExp(strErrMsg)) {
    candidates_.clear();
    return;
  }
  if (SuppressSpaces) {
    strText.erase(std::remove(strText.begin(), strText.end(), ' '),
                  strText.end());
  }
  evaluated_text_ = strText;
  run_loaded_ = RegExpFormat == loaded_expression_;
  executed_load_ = run_loaded_ ? loads_ : kNotLoaded;

  // Candidates are resized rather than rebuilt, so an engine that runs
  // many texts reuses their storage.
  if (!PerformCoertion || RegExpFormats.Count() == 0) {
    variation_count_ = 1;
    candidates_.resize(1);
    cPatternCandidate& only = candidates_.front();
    only.Variation = strText;
    only.Text.clear();
    if (!RunExpression(only.Variation, only.Matches, strErrMsg)) {
      candidates_.clear();
      return;
    }
    bSuccess = true;
    return;
  }

  std::vector<std::string> variations;
  if (!GenerateVariations(strText, variations)) {
    candidates_.clear();
    strErrMsg = kTooManyVariationsError;
    return;
  }
  candidates_.resize(variations.size());
  for (size_t i = 0; i < variations.size(); ++i) {
    cPatternCandidate& c = candidates_[i];
    c.Variation = std::move(variations[i]);
    c.Text.clear();
    if (!RunExpression(c.Variation, c.Matches, strErrMsg)) {
      candidates_.clear();
      return;
    }
  }
  bSuccess = true;
}

void cPatternEngine::BuildCandidateTexts() {
  for (cPatternCandidate& c : candidates_) {
    c.Text.clear();
    for (const cMatch& m : c.Matches) c.Text += m.value;
  }
}

void cPatternEngine::BestCandidateWhole(std::string& strValue, bool& bSuccess) {
  bSuccess = false;
  best_ = -1;
  strValue.clear();
  std::string error;
  if (!EnsureRegExp(error)) return;
  BuildCandidateTexts();
  const cPatternCandidate* best = nullptr;
  // Run again on a candidate text that is its whole variation, the
  // expression Execute() ran finds the matches it found there, which make
  // up that text: it matches.
  run_loaded_ = RegExpFormat == loaded_expression_;
  const bool same_expression = executed_load_ == loads_ && run_loaded_;
  cMatchCollection matches;
  for (const cPatternCandidate& c : candidates_) {
    // An empty text is never chosen: a value must hold something.
    if (c.Text.size() <= (best == nullptr ? 0 : best->Text.size())) continue;
    if (same_expression && c.Text == c.Variation) {
      best = &c;
      continue;
    }
    if (!RunExpression(c.Text, matches, error)) return;
    if (matches.Count() > 0) best = &c;
  }
  if (best == nullptr || best->Text.size() != evaluated_text_.size()) return;
  strValue = best->Text;
  best_ = static_cast<int32_t>(best - candidates_.data());
  bSuccess = true;
}

void cPatternEngine::BestCandidateSubPattern(std::string& strValue,
                                             bool bKeepSurrounding,
                                             bool& bSuccess) {
  bSuccess = false;
  best_ = -1;
  strValue.clear();
  BuildCandidateTexts();
  const cPatternCandidate* best = nullptr;
  for (const cPatternCandidate& c : candidates_) {
    if (c.Text.size() > (best == nullptr ? 0 : best->Text.size())) best = &c;
  }
  if (best == nullptr) return;
  best_ = static_cast<int32_t>(best - candidates_.data());
  if (!bKeepSurrounding) {
    strValue = best->Text;
    bSuccess = true;
    return;
  }
  // The text before the first match that holds anything and after the
  // last one; empty matches mark no place in the text.
  size_t before = std::string::npos;
  size_t after = 0;
  for (const cMatch& m : best->Matches) {
    if (m.Length == 0) continue;
    if (before == std::string::npos) before = static_cast<size_t>(m.FirstIndex);
    after = static_cast<size_t>(m.FirstIndex) + static_cast<size_t>(m.Length);
  }
  const std::string& text = evaluated_text_;
  before = std::min(before, text.size());
  after = std::min(after, text.size());
  strValue = text.substr(0, before) + best->Text + text.substr(after);
  bSuccess = true;
}

}  // namespace pelinor
