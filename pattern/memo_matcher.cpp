// The pattern matcher without backtracking blow-up. Rules:
// docs/formats/patterns.md ("Matching").

#include "pattern/memo_matcher.h"

#include <algorithm>

namespace pelinor::internal {
namespace {

// Patterns with more steps than this are left to the regular expression;
// they keep the recursion of the search shallow.
constexpr size_t kMaxSteps = 2048;
// Paths() stops counting here.
constexpr uint64_t kPathsCap = uint64_t{1} << 32;
// Bytes of failure marks one run may use.
constexpr size_t kMaxMarks = size_t{8} << 20;
// Longest text a fixed program checks itself. Longer ones go to the
// regular expression as before, so that whatever it makes of a huge text
// stays the outcome.
constexpr size_t kMaxFixedText = size_t{1} << 16;
// Most positions the shapes of a listed program may hold together.
constexpr size_t kMaxListedPositions = 4096;

// What kDigit, kUpper, kLower and kAny accept, by byte.
struct AcceptTable {
  bool accepts[kLit][256];
};

constexpr AcceptTable BuildAcceptTable() {
  AcceptTable t{};
  for (int kind = kDigit; kind < kLit; ++kind) {
    for (int c = 0; c < 256; ++c) {
      t.accepts[kind][c] =
          PositionAccepts(static_cast<char>(kind), '\0', static_cast<char>(c));
    }
  }
  return t;
}

constexpr AcceptTable kAcceptTable = BuildAcceptTable();

}  // namespace

// One text's search. A state is a step (or an element's entry) and a
// position; once the rest of the pattern is known not to match from a
// state, the state is marked and never searched again. Success ends the
// search at once, so every state is searched at most once per text.
class SpecProgram::Search {
 public:
  Search(const SpecProgram& p, std::string_view text)
      : p_(p),
        text_(text),
        width_(text.size() + 1),
        element_failed_(p.optional_.size() * width_, false),
        step_failed_(p.steps_.size() * width_, false) {}

  // The end of the first match, in priority order, that starts at `pos`.
  bool MatchAt(size_t pos, size_t& end) { return FromElement(0, pos, end); }

 private:
  bool FromElement(size_t e, size_t pos, size_t& end) {
    if (e == p_.optional_.size()) {
      end = pos;
      return true;
    }
    const size_t mark = e * width_ + pos;
    if (element_failed_[mark]) return false;
    if (FromStep(e, p_.first_[e], pos, end)) return true;
    if (p_.optional_[e] && FromElement(e + 1, pos, end)) return true;
    element_failed_[mark] = true;
    return false;
  }

  bool FromStep(size_t e, size_t s, size_t pos, size_t& end) {
    if (s == p_.first_[e + 1]) return FromElement(e + 1, pos, end);
    const size_t mark = s * width_ + pos;
    if (step_failed_[mark]) return false;
    const Step& step = p_.steps_[s];
    size_t run = 0;
    while (run < step.max && pos + run < text_.size() &&
           PositionAccepts(step.kind, step.literal, text_[pos + run])) {
      ++run;
    }
    // Greedy: the longest run first, as the expression's quantifier.
    for (size_t n = run + 1; n-- > step.min;) {
      if (FromStep(e, s + 1, pos + n, end)) return true;
    }
    step_failed_[mark] = true;
    return false;
  }

  const SpecProgram& p_;
  std::string_view text_;
  size_t width_;
  std::vector<bool> element_failed_;
  std::vector<bool> step_failed_;
};

uint64_t SpecProgram::CountPaths(const std::vector<cPatternElement>& elements,
                                 const cMetaRules& rules) {
  uint64_t paths = 1;
  for (const cPatternElement& element : elements) {
    if (element.Optional) paths = std::min(paths * 2, kPathsCap);
    for (const cPatternSlot& slot : element.Slots) {
      if (slot.Section == 0) continue;
      const auto& section = rules.CharReplaceComps.Item(slot.Section);
      if (section == nullptr) continue;
      const auto lengths =
          static_cast<uint64_t>(section->MaxLen - section->MinLen + 1);
      paths = std::min(paths * lengths, kPathsCap);
    }
  }
  return paths;
}

std::shared_ptr<const SpecProgram> SpecProgram::Build(
    const std::vector<cPatternElement>& elements, const cMetaRules& rules) {
  auto p = std::make_shared<SpecProgram>();
  const auto multiply = [&p](uint64_t n) {
    p->paths_ = std::min(p->paths_ * n, kPathsCap);
  };
  for (const cPatternElement& element : elements) {
    if (element.Optional) multiply(2);
    p->first_.push_back(static_cast<uint32_t>(p->steps_.size()));
    p->optional_.push_back(element.Optional);
    for (const cPatternSlot& slot : element.Slots) {
      Step step{};
      if (slot.Section == 0) {
        step.kind = PositionKindOf(slot.Placeholder, slot.Literal);
        step.literal = slot.Placeholder;
        step.min = step.max = 1;
      } else {
        const auto& section = rules.CharReplaceComps.Item(slot.Section);
        if (section == nullptr || section->Rules.empty()) return nullptr;
        step.kind = PositionKindOf(section->Rules[0], false);
        step.literal = section->Rules[0];
        step.min = static_cast<uint32_t>(section->MinLen);
        step.max = static_cast<uint32_t>(section->MaxLen);
        multiply(step.max - step.min + 1);
      }
      p->steps_.push_back(step);
    }
    if (p->steps_.size() > kMaxSteps) return nullptr;
  }
  p->first_.push_back(static_cast<uint32_t>(p->steps_.size()));
  if (p->paths_ == 1) {
    for (const Step& step : p->steps_) {
      p->fixed_kinds_.append(step.max, step.kind);
      p->fixed_literals_.append(step.max, step.literal);
    }
  } else if (p->paths_ <= kMaxListedPaths) {
    p->ListPaths();
  }
  return p;
}

void SpecProgram::ListPaths() {
  // The search's order, walked to the end of every way: an element
  // present before absent, a step's longest run first.
  std::string kinds;
  std::string literals;
  bool too_long = false;
  const auto walk = [&](const auto& self, size_t e, size_t s) -> void {
    if (too_long) return;
    if (e == optional_.size()) {
      if (fixed_kinds_.size() + kinds.size() > kMaxListedPositions) {
        too_long = true;
        return;
      }
      fixed_kinds_ += kinds;
      fixed_literals_ += literals;
      listed_ends_.push_back(static_cast<uint32_t>(fixed_kinds_.size()));
      return;
    }
    if (s == first_[e + 1]) {
      self(self, e + 1, first_[e + 1]);
      return;
    }
    const Step& step = steps_[s];
    for (uint32_t n = step.max + 1; n-- > step.min;) {
      kinds.append(n, step.kind);
      literals.append(n, step.literal);
      self(self, e, s + 1);
      kinds.resize(kinds.size() - n);
      literals.resize(literals.size() - n);
    }
    // Absent: the element's steps are skipped from its first one only.
    if (s == first_[e] && optional_[e]) self(self, e + 1, first_[e + 1]);
  };
  walk(walk, 0, first_.empty() ? 0 : first_[0]);
  if (too_long) {
    fixed_kinds_.clear();
    fixed_literals_.clear();
    listed_ends_.clear();
  }
}

bool SpecProgram::FixedAt(std::string_view text, size_t begin) const {
  return FitsAt(text, begin, 0, fixed_kinds_.size());
}

bool SpecProgram::FitsAt(std::string_view text, size_t begin, size_t from,
                         size_t to) const {
  const char* at = text.data() + begin;
  for (size_t j = from; j < to; ++j) {
    const char kind = fixed_kinds_[j];
    const char c = at[j - from];
    if (kind == kLit ? c != fixed_literals_[j]
                     : !kAcceptTable.accepts[static_cast<size_t>(kind)]
                                            [static_cast<uint8_t>(c)]) {
      return false;
    }
  }
  return true;
}

bool SpecProgram::RunListed(std::string_view text,
                            cMatchCollection& matches) const {
  const size_t n = text.size();
  // The enumeration of Run(), with the first way through that fits at a
  // place as the search would find it.
  size_t pos = 0;
  while (pos <= n) {
    size_t begin = pos;
    size_t length = 0;
    bool found = false;
    for (; begin <= n; ++begin) {
      size_t from = 0;
      for (const uint32_t to : listed_ends_) {
        length = to - from;
        if (begin + length <= n && FitsAt(text, begin, from, to)) {
          found = true;
          break;
        }
        from = to;
      }
      if (found) break;
    }
    if (!found) break;
    matches.Add(text.substr(begin, length), static_cast<int32_t>(begin));
    pos = length == 0 ? begin + 1 : begin + length;
  }
  return true;
}

bool SpecProgram::RunFixed(std::string_view text,
                           cMatchCollection& matches) const {
  const size_t length = fixed_kinds_.size();
  const size_t n = text.size();
  // The enumeration of Run(): leftmost match, then on from its end (one
  // further after an empty match).
  size_t pos = 0;
  while (pos <= n) {
    size_t begin = pos;
    while (begin + length <= n && !FixedAt(text, begin)) ++begin;
    if (begin + length > n) break;
    matches.Add(text.substr(begin, length), static_cast<int32_t>(begin));
    pos = length == 0 ? begin + 1 : begin + length;
  }
  return true;
}

std::optional<bool> SpecProgram::WholeMatch(std::string_view text) const {
  if (text.size() > kMaxFixedText) return std::nullopt;
  if (paths_ != 1) {
    if (!Listed()) return std::nullopt;
    // Run() takes, at the leftmost place where one fits, the first listed
    // shape that fits there. The matches make up the text when each starts
    // where the one before ended: a shape fits at each such place, and it
    // is not empty (an empty match moves on by one and leaves a gap).
    if (text.empty()) return false;
    size_t pos = 0;
    while (pos < text.size()) {
      size_t from = 0;
      size_t length = 0;
      bool found = false;
      for (const uint32_t to : listed_ends_) {
        length = to - from;
        if (pos + length <= text.size() && FitsAt(text, pos, from, to)) {
          found = true;
          break;
        }
        from = to;
      }
      if (!found || length == 0) return false;
      pos += length;
    }
    return true;
  }
  // Matches of one length make up the text when they follow each other
  // from its start: any place that does not match leaves a gap. Empty
  // matches make up nothing.
  const size_t length = fixed_kinds_.size();
  if (length == 0 || text.empty() || text.size() % length != 0) return false;
  for (size_t begin = 0; begin < text.size(); begin += length) {
    if (!FixedAt(text, begin)) return false;
  }
  return true;
}

bool SpecProgram::Run(std::string_view text, cMatchCollection& matches) const {
  matches.Clear();
  if (paths_ == 1 && text.size() <= kMaxFixedText) {
    return RunFixed(text, matches);
  }
  if (Listed()) {
    // Longer texts go to the regular expression, as for fixed programs.
    return text.size() <= kMaxFixedText && RunListed(text, matches);
  }
  if ((steps_.size() + optional_.size()) * (text.size() + 1) > kMaxMarks * 8) {
    return false;
  }
  Search search(*this, text);
  size_t pos = 0;
  while (pos <= text.size()) {
    size_t begin = pos;
    size_t end = 0;
    while (begin <= text.size() && !search.MatchAt(begin, end)) ++begin;
    if (begin > text.size()) break;
    matches.Add(text.substr(begin, end - begin), static_cast<int32_t>(begin));
    pos = end == begin ? end + 1 : end;
  }
  return true;
}

}  // namespace pelinor::internal
