// Matching a text against a loaded specification, the coerced variations
// of the text, and the choice of the best candidate.
// Rules: docs/formats/patterns.md ("Matching" and "Coercion").

#include <algorithm>
#include <cstdint>
#include <new>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "pelinor/pattern_engine.h"

namespace pelinor {
namespace {

// What a position of the expression accepts. A shape (one fixed-length
// sequence of positions the expression can match) is held as a text of
// two bytes per position: the kind, then the literal character for kLit.
enum Kind : char {
  kDigit = 'd',
  kUpper = 'u',
  kLower = 'w',
  kAny = 'a',  // an unquoted "." (any character but LF)
  kLit = 'c',
};

// Shapes beyond this number are not tried: a specification with that many
// distinct shapes of one text's length is not a field pattern, and the cap
// keeps the work of lining texts up bounded.
constexpr size_t kMaxShapes = 256;

bool Accepts(char kind, char literal, char c) {
  switch (kind) {
    case kDigit:
      return c >= '0' && c <= '9';
    case kUpper:
      return c >= 'A' && c <= 'Z';
    case kLower:
      return c >= 'a' && c <= 'z';
    case kAny:
      return c != '\n';
    default:
      return c == literal;
  }
}

void AppendPosition(std::string& shape, char placeholder, bool literal) {
  char kind = kLit;
  if (!literal) {
    switch (placeholder) {
      case '0':
        kind = kDigit;
        break;
      case 'L':
        kind = kUpper;
        break;
      case 'l':
        kind = kLower;
        break;
      case '.':
        kind = kAny;
        break;
      default:
        break;
    }
  }
  shape.push_back(kind);
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
          m.CharTo.size() != 1 || !Accepts(kind, literal, m.CharTo[0]) ||
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

// One place where a shape can be made to fit the text: the positions that
// do not fit yet and the replacements each can take.
struct Window {
  uint32_t first = 0;  // into the fix pool
  uint32_t count = 0;  // number of positions to replace
};

struct Fix {
  uint32_t position;
  const std::string* options;
};

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

bool cPatternEngine::GenerateVariations(const std::string& text,
                                        std::vector<std::string>& variations) {
  variations.clear();
  variations.push_back(text);
  variation_count_ = 1;
  if (CharMapper == nullptr) return true;

  const std::vector<std::string> shapes =
      Shapes(elements_, meta_rules_, text.size());
  Replacements replacements(CharMapper->Mappings());
  std::vector<Window> windows;
  std::vector<Fix> pool;
  for (const std::string& shape : shapes) {
    const size_t length = shape.size() / 2;
    if (length == 0) continue;
    for (size_t offset = 0; offset + length <= text.size(); ++offset) {
      Window w;
      w.first = static_cast<uint32_t>(pool.size());
      bool viable = true;
      for (size_t j = 0; j < length && viable; ++j) {
        const char c = text[offset + j];
        const char kind = shape[2 * j];
        const char literal = shape[2 * j + 1];
        if (Accepts(kind, literal, c)) continue;
        const std::string& options = replacements.For(c, kind, literal);
        if (options.empty()) {
          viable = false;
        } else {
          pool.push_back(Fix{static_cast<uint32_t>(offset + j), &options});
        }
      }
      w.count = static_cast<uint32_t>(pool.size()) - w.first;
      if (!viable || w.count == 0) {
        pool.resize(w.first);
        continue;
      }
      windows.push_back(w);
    }
  }

  // Fewer replacements first, then the leftmost replaced positions; equal
  // windows keep the order of their shapes and offsets.
  std::stable_sort(windows.begin(), windows.end(),
                   [&pool](const Window& a, const Window& b) {
                     if (a.count != b.count) return a.count < b.count;
                     for (uint32_t k = 0; k < a.count; ++k) {
                       uint32_t pa = pool[a.first + k].position;
                       uint32_t pb = pool[b.first + k].position;
                       if (pa != pb) return pa < pb;
                     }
                     return false;
                   });

  std::unordered_set<std::string> seen{text};
  std::vector<size_t> choice;
  for (const Window& w : windows) {
    choice.assign(w.count, 0);
    while (true) {
      std::string variation = text;
      for (uint32_t k = 0; k < w.count; ++k) {
        const Fix& fix = pool[w.first + k];
        variation[fix.position] = (*fix.options)[choice[k]];
      }
      if (seen.insert(variation).second) {
        variations.push_back(std::move(variation));
        if (++variation_count_ == kVariationLimit) return false;
      }
      // Next combination: the rightmost position varies fastest, each in
      // mapping order.
      bool more = false;
      for (size_t k = w.count; k-- > 0;) {
        if (++choice[k] < pool[w.first + k].options->size()) {
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
  regexp_->Pattern = RegExpFormat;
  regexp_->Global = true;

  // Candidates are resized rather than rebuilt, so an engine that runs
  // many texts reuses their storage.
  if (!PerformCoertion || RegExpFormats.Count() == 0) {
    variation_count_ = 1;
    candidates_.resize(1);
    cPatternCandidate& only = candidates_.front();
    only.Variation = strText;
    only.Text.clear();
    if (!regexp_->Execute(only.Variation, only.Matches, strErrMsg)) {
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
    if (!regexp_->Execute(c.Variation, c.Matches, strErrMsg)) {
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
  strValue.clear();
  std::string error;
  if (!EnsureRegExp(error)) return;
  regexp_->Pattern = RegExpFormat;
  regexp_->Global = true;
  BuildCandidateTexts();
  const cPatternCandidate* best = nullptr;
  cMatchCollection matches;
  for (const cPatternCandidate& c : candidates_) {
    // An empty text is never chosen: a value must hold something.
    if (c.Text.size() <= (best == nullptr ? 0 : best->Text.size())) continue;
    if (!regexp_->Execute(c.Text, matches, error)) return;
    if (matches.Count() > 0) best = &c;
  }
  if (best == nullptr || best->Text.size() != evaluated_text_.size()) return;
  strValue = best->Text;
  bSuccess = true;
}

void cPatternEngine::BestCandidateSubPattern(std::string& strValue,
                                             bool bKeepSurrounding,
                                             bool& bSuccess) {
  bSuccess = false;
  strValue.clear();
  BuildCandidateTexts();
  const cPatternCandidate* best = nullptr;
  for (const cPatternCandidate& c : candidates_) {
    if (c.Text.size() > (best == nullptr ? 0 : best->Text.size())) best = &c;
  }
  if (best == nullptr) return;
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
