// Matching a text against a loaded specification, the coerced variations
// of the text, and the choice of the best candidate.
// Rules: docs/formats/patterns.md ("Matching" and "Coercion").

#include <algorithm>
#include <cstdint>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "pattern/memo_matcher.h"
#include "pelinor/char_mapper.h"
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

// Appends to `pool` the CharTo of every one-character mapping in `table`
// from `c`, in table order, each once.
void AppendTargets(const std::vector<cMap>& table, char c, std::string& pool) {
  const size_t at = pool.size();
  for (const cMap& m : table) {
    if (m.CharFrom.size() != 1 || m.CharFrom[0] != c || m.CharTo.size() != 1 ||
        pool.find(m.CharTo[0], at) != std::string::npos) {
      continue;
    }
    pool.push_back(m.CharTo[0]);
  }
}

// AppendTargets() of the built-in table for each character, found once:
// that table never changes (a mapper copies it before its first change).
const std::string* BuiltInTargets() {
  static const std::string* const targets = [] {
    auto* t = new std::string[256];
    for (int c = 0; c < 256; ++c) {
      AppendTargets(BuiltInCharMappings(), static_cast<char>(c), t[c]);
    }
    return t;
  }();
  return targets;
}

uint64_t HashBytes(std::string_view bytes) {
  return std::hash<std::string_view>()(bytes);
}

}  // namespace

namespace internal {

// One character to repair and the replacements it can take: `options`
// indexes RepairScratch::options, one entry per character, kind and
// literal asked for, so that two fixes with the same position and index
// repair the same character the same way.
struct Fix {
  uint32_t position;
  uint32_t options;
};

// Characters repaired together: those of one placement of a shape, or of
// several placements at separate places; fixes [begin, begin + count) of
// RepairScratch::fixes, by position. `matched` counts the characters among
// them that the expression already matches in the text.
struct RepairSet {
  uint32_t begin = 0;
  uint32_t count = 0;
  uint32_t matched = 0;
  uint32_t parts = 1;  // placements joined
};

// An open-addressing table of entry numbers, emptied in time proportional
// to its size, which stays near twice the entries of one call.
class EntryTable {
 public:
  // Empties the table for about `expected` entries.
  void Reset(size_t expected) {
    size_t size = 16;
    while (size < 2 * expected) size *= 2;
    slots_.assign(size, kEmpty);
    hashes_.clear();
  }

  // The entry of hash `hash` for which `same(entry)` holds, or else adds
  // `entry` (the number of entries added so far) and returns it.
  template <typename Same>
  uint32_t FindOrAdd(uint64_t hash, Same same) {
    if (2 * (hashes_.size() + 1) > slots_.size()) Grow();
    const size_t mask = slots_.size() - 1;
    for (size_t i = hash & mask;; i = (i + 1) & mask) {
      const uint32_t e = slots_[i];
      if (e == kEmpty) {
        const auto added = static_cast<uint32_t>(hashes_.size());
        slots_[i] = added;
        hashes_.push_back(hash);
        return added;
      }
      if (hashes_[e] == hash && same(e)) return e;
    }
  }

 private:
  static constexpr uint32_t kEmpty = ~uint32_t{0};

  void Grow() {
    slots_.assign(slots_.size() * 2, kEmpty);
    const size_t mask = slots_.size() - 1;
    for (uint32_t e = 0; e < hashes_.size(); ++e) {
      size_t i = hashes_[e] & mask;
      while (slots_[i] != kEmpty) i = (i + 1) & mask;
      slots_[i] = e;
    }
  }

  std::vector<uint32_t> slots_;
  std::vector<uint64_t> hashes_;  // by entry
};

// What GenerateVariations() works with, kept by the engine between calls.
struct RepairScratch {
  // Whether the expression matches each character of the text.
  std::vector<char> matched;

  // The single-character targets of the mappings from each character, in
  // table order, each once: `target_pool` from `targets_at[c]`, for
  // `targets_length[c]` characters, found for this call when
  // `targets_call[c]` is `call`.
  uint32_t call = 0;
  uint32_t targets_call[256] = {};
  uint32_t targets_at[256];
  uint32_t targets_length[256];
  std::string target_pool;
  // The replacements asked for in this call (the first `options_used`),
  // found through `option_keys` by character, kind and literal.
  std::vector<std::string> options;
  size_t options_used = 0;
  std::vector<uint32_t> option_keys;  // by entry of `option_table`
  EntryTable option_table;

  std::vector<Fix> fixes;
  std::vector<RepairSet> sets;
  EntryTable placements;  // entries are indexes of `sets`
  std::vector<uint32_t> choice;
  // The variations made, each as long as the text, one after the other;
  // `seen` finds them by their number.
  std::string variations;
  EntryTable seen;

  // The replacements the mappings in `table` offer for `c` at a position
  // of `kind`: the CharTo of every one-character mapping from `c` that
  // the position accepts, in table order, each once.
  uint32_t OptionsFor(const std::vector<cMap>& table, char c, char kind,
                      char literal) {
    const uint32_t key = static_cast<uint32_t>(static_cast<uint8_t>(c)) << 16 |
                         static_cast<uint32_t>(static_cast<uint8_t>(kind))
                             << 8 |
                         static_cast<uint8_t>(literal);
    const uint32_t entry = option_table.FindOrAdd(
        key * uint64_t{0x9E3779B97F4A7C15},
        [&](uint32_t e) { return option_keys[e] == key; });
    if (entry < option_keys.size()) return entry;
    option_keys.push_back(key);
    const auto byte = static_cast<uint8_t>(c);
    std::string_view from;
    if (&table == &BuiltInCharMappings()) {
      from = BuiltInTargets()[byte];
    } else {
      if (targets_call[byte] != call) {
        targets_call[byte] = call;
        const size_t at = target_pool.size();
        AppendTargets(table, c, target_pool);
        targets_at[byte] = static_cast<uint32_t>(at);
        targets_length[byte] = static_cast<uint32_t>(target_pool.size() - at);
      }
      from = std::string_view(target_pool.data() + targets_at[byte],
                              targets_length[byte]);
    }
    if (options_used == options.size()) options.emplace_back();
    std::string& out = options[options_used++];
    out.clear();
    for (const char to : from) {
      if (PositionAccepts(kind, literal, to)) out.push_back(to);
    }
    return entry;
  }

  // Gives back storage a huge call left, which a cached engine would
  // otherwise hold on to for good.
  void Trim() {
    constexpr size_t kKeptBytes = size_t{1} << 16;
    if (variations.capacity() > kKeptBytes) std::string().swap(variations);
    if (fixes.capacity() * sizeof(Fix) > kKeptBytes) {
      std::vector<Fix>().swap(fixes);
    }
    if (sets.capacity() * sizeof(RepairSet) > kKeptBytes) {
      std::vector<RepairSet>().swap(sets);
    }
  }

  // Starts a call: no targets, replacements, repairs or variations yet.
  void Begin(size_t text_size) {
    if (++call == 0) {
      std::fill(std::begin(targets_call), std::end(targets_call), 0);
      call = 1;
    }
    target_pool.clear();
    options_used = 0;
    option_keys.clear();
    option_table.Reset(16);
    fixes.clear();
    sets.clear();
    placements.Reset(text_size);
    matched.assign(text_size, 0);
  }

  size_t OptionCount(const Fix& f) const { return options[f.options].size(); }
  char Option(const Fix& f, size_t k) const { return options[f.options][k]; }
};

}  // namespace internal

namespace {

using internal::EntryTable;
using internal::Fix;
using internal::RepairScratch;
using internal::RepairSet;

// Combinations are not searched beyond this many steps, which keeps the
// work bounded for long texts with many possible repairs.
constexpr size_t kMaxCombinationSteps = 200000;

// The number of variations `set` yields, at most `cap`.
size_t VariationsOf(const RepairScratch& r, const RepairSet& set, size_t cap) {
  size_t n = 1;
  for (uint32_t k = 0; k < set.count; ++k) {
    n *= r.OptionCount(r.fixes[set.begin + k]);
    if (n >= cap) return cap;
  }
  return n;
}

// Adds to `r.sets` the unions of two or more of its repairs that change
// only unmatched characters and lie at separate places (each begins after
// the previous one ends), so misreads at several places are repaired
// together. Unions come in order of the number of characters they change,
// and are added only while every variation still fits under the limit: a
// text whose single placements fit is never failed by its unions.
void AddCombinations(RepairScratch& r) {
  const size_t limit = static_cast<size_t>(kVariationLimit) - 1;
  size_t used = 1;  // the text itself
  for (const RepairSet& s : r.sets) used += VariationsOf(r, s, limit);
  if (used >= limit) return;
  size_t budget = limit - used;
  // Parts by index in `r.sets`, which grows below.
  std::vector<uint32_t> parts;
  for (uint32_t i = 0; i < r.sets.size(); ++i) {
    if (r.sets[i].matched == 0) parts.push_back(i);
  }
  if (parts.size() < 2) return;
  const auto first = [&r](uint32_t set) {
    return r.fixes[r.sets[set].begin].position;
  };
  const auto last = [&r](uint32_t set) {
    return r.fixes[r.sets[set].begin + r.sets[set].count - 1].position;
  };
  std::stable_sort(parts.begin(), parts.end(),
                   [&](uint32_t a, uint32_t b) { return first(a) < first(b); });
  size_t total = 0;
  for (const uint32_t p : parts) total += r.sets[p].count;
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
            const RepairSet p = r.sets[parts[i]];
            if (static_cast<int64_t>(first(parts[i])) <= after) continue;
            const size_t grown = size + p.count;
            if (grown > want) continue;
            chain.push_back(i);
            if (grown == want && chain.size() >= 2) {
              RepairSet u;
              u.parts = static_cast<uint32_t>(chain.size());
              u.begin = static_cast<uint32_t>(r.fixes.size());
              for (const size_t c : chain) {
                const RepairSet& part = r.sets[parts[c]];
                for (uint32_t k = 0; k < part.count; ++k) {
                  r.fixes.push_back(r.fixes[part.begin + k]);
                }
              }
              u.count = static_cast<uint32_t>(r.fixes.size() - u.begin);
              const size_t n = VariationsOf(r, u, limit);
              if (n > budget) {
                full = true;
                r.fixes.resize(u.begin);
              } else {
                budget -= n;
                r.sets.push_back(u);
              }
            } else if (grown < want) {
              extend(i + 1, grown, last(parts[i]));
            }
            chain.pop_back();
          }
        };
    extend(0, 0, -1);
    if (steps > kMaxCombinationSteps) break;
  }
}

// The order repairs are tried in: those that leave matched characters
// alone first, then fewer characters changed, then fewer placements
// joined, then the changed positions from left to right.
bool TriedBefore(const RepairScratch& r, const RepairSet& a,
                 const RepairSet& b) {
  if (a.matched != b.matched) return a.matched < b.matched;
  if (a.count != b.count) return a.count < b.count;
  if (a.parts != b.parts) return a.parts < b.parts;
  for (uint32_t k = 0; k < a.count; ++k) {
    const uint32_t pa = r.fixes[a.begin + k].position;
    const uint32_t pb = r.fixes[b.begin + k].position;
    if (pa != pb) return pa < pb;
  }
  return false;
}

// Sorts `r.sets` by TriedBefore(), equal repairs keeping their order.
void SortRepairs(RepairScratch& r) {
  std::vector<RepairSet>& sets = r.sets;
  const auto before = [&r](const RepairSet& a, const RepairSet& b) {
    return TriedBefore(r, a, b);
  };
  // A stable order is unique, so a few repairs are put in it by insertion
  // without the merge sort's buffer.
  constexpr size_t kInsertionSort = 16;
  if (sets.size() > kInsertionSort) {
    std::stable_sort(sets.begin(), sets.end(), before);
    return;
  }
  for (size_t i = 1; i < sets.size(); ++i) {
    const RepairSet moving = sets[i];
    size_t j = i;
    for (; j > 0 && before(moving, sets[j - 1]); --j) sets[j] = sets[j - 1];
    sets[j] = moving;
  }
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
                                        bool& plain_run) {
  plain_run = false;
  // Candidates past the first keep their storage for the variations.
  if (candidates_.empty()) candidates_.emplace_back();
  candidates_.front().Variation = text;
  variation_count_ = 1;
  if (CharMapper == nullptr) {
    candidates_.resize(1);
    return true;
  }
  if (scratch_ == nullptr) scratch_ = std::make_shared<RepairScratch>();
  RepairScratch& r = *scratch_;
  r.Begin(text.size());

  // The characters the expression already matches in the text as it
  // stands; they are changed only after every repair that leaves them.
  // These are the first candidate's matches too.
  {
    std::string ignored;
    cMatchCollection& plain = candidates_.front().Matches;
    plain_run = RunExpression(text, plain, ignored);
    if (plain_run) {
      for (const cMatch& m : plain) {
        std::fill_n(r.matched.begin() + m.FirstIndex, m.Length, 1);
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
  const std::vector<cMap>& table = CharMapper->Mappings();
  for (const std::string& shape : shapes) {
    const size_t length = shape.size() / 2;
    if (length == 0) continue;
    for (size_t offset = 0; offset + length <= text.size(); ++offset) {
      const auto begin = static_cast<uint32_t>(r.fixes.size());
      bool viable = true;
      for (size_t j = 0; j < length; ++j) {
        const char c = text[offset + j];
        const char kind = shape[2 * j];
        const char literal = shape[2 * j + 1];
        if (PositionAccepts(kind, literal, c)) continue;
        const uint32_t options = r.OptionsFor(table, c, kind, literal);
        if (r.options[options].empty()) {
          viable = false;
          break;
        }
        r.fixes.push_back(Fix{static_cast<uint32_t>(offset + j), options});
      }
      const auto count = static_cast<uint32_t>(r.fixes.size() - begin);
      if (!viable || count == 0) {
        r.fixes.resize(begin);
        continue;
      }
      // Placements that repair the same characters the same way are one
      // repair.
      const std::string_view signature(
          reinterpret_cast<const char*>(r.fixes.data() + begin),
          count * sizeof(Fix));
      const auto same = [&](uint32_t e) {
        const RepairSet& other = r.sets[e];
        return other.count == count &&
               std::equal(
                   r.fixes.begin() + other.begin,
                   r.fixes.begin() + other.begin + count,
                   r.fixes.begin() + begin, [](const Fix& a, const Fix& b) {
                     return a.position == b.position && a.options == b.options;
                   });
      };
      if (r.placements.FindOrAdd(HashBytes(signature), same) < r.sets.size()) {
        r.fixes.resize(begin);
        continue;
      }
      RepairSet set;
      set.begin = begin;
      set.count = count;
      for (uint32_t k = begin; k < begin + count; ++k) {
        set.matched += static_cast<uint32_t>(r.matched[r.fixes[k].position]);
      }
      r.sets.push_back(set);
    }
  }
  AddCombinations(r);
  // Equal repairs keep the order of their shapes and offsets.
  SortRepairs(r);

  // Each variation is made at the end of `r.variations` and kept there
  // unless it was made before.
  const size_t n = text.size();
  std::string& pool = r.variations;
  pool.assign(text);
  r.seen.Reset(r.sets.size() + 1);
  r.seen.FindOrAdd(HashBytes(text), [](uint32_t) { return false; });
  size_t made = 1;
  for (const RepairSet& set : r.sets) {
    const Fix* fixes = r.fixes.data() + set.begin;
    const size_t count = set.count;
    r.choice.assign(count, 0);
    while (true) {
      const size_t at = pool.size();
      pool.append(text);
      for (size_t k = 0; k < count; ++k) {
        pool[at + fixes[k].position] = r.Option(fixes[k], r.choice[k]);
      }
      const std::string_view variation(pool.data() + at, n);
      const auto entry =
          r.seen.FindOrAdd(HashBytes(variation), [&](uint32_t e) {
            return std::string_view(pool.data() + e * n, n) == variation;
          });
      if (entry == made) {
        ++made;
        if (++variation_count_ == kVariationLimit) {
          r.Trim();
          return false;
        }
      } else {
        pool.resize(at);
      }
      // Next combination: the rightmost position varies fastest, each in
      // mapping order.
      bool more = false;
      for (size_t k = count; k-- > 0;) {
        if (++r.choice[k] < r.OptionCount(fixes[k])) {
          more = true;
          break;
        }
        r.choice[k] = 0;
      }
      if (!more) break;
    }
  }
  candidates_.resize(made);
  for (size_t i = 1; i < made; ++i) {
    candidates_[i].Variation.assign(pool, i * n, n);
  }
  r.Trim();
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

  bool plain_run = false;
  if (!GenerateVariations(strText, plain_run)) {
    candidates_.clear();
    strErrMsg = kTooManyVariationsError;
    return;
  }
  for (size_t i = 0; i < candidates_.size(); ++i) {
    cPatternCandidate& c = candidates_[i];
    c.Text.clear();
    if (i == 0 && plain_run) continue;
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
