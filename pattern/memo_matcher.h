// The matcher that runs a loaded pattern specification without a
// backtracking regular-expression engine. It finds exactly the matches the
// assembled expression gives (leftmost start; an optional element present
// before absent; brace sections longest first), but remembers the places
// from which the rest of the pattern cannot match, so its work grows with
// the length of the pattern times the length of the text instead of
// exponentially with the number of optional parts.
//
// Thread safety: a program is immutable once built and may be shared;
// Run() keeps its working state on the caller's stack.

#ifndef PELINOR_PATTERN_MEMO_MATCHER_H_
#define PELINOR_PATTERN_MEMO_MATCHER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "pelinor/pattern_element.h"
#include "pelinor/reg_exp.h"
#include "pelinor/sbs_char_replace.h"

namespace pelinor::internal {

// What one position of a loaded specification accepts: a digit ("0"), an
// upper-case letter ("L"), a lower-case letter ("l"), anything but a line
// feed ("." unquoted), or one literal character.
enum PositionKind : char { kDigit, kUpper, kLower, kAny, kLit };

// PositionKindOf()
//
// The kind of a position holding `placeholder`; a quoted (`literal`)
// character, or one that is no placeholder, is kLit.
constexpr PositionKind PositionKindOf(char placeholder, bool literal) {
  if (literal) return kLit;
  switch (placeholder) {
    case '0':
      return kDigit;
    case 'L':
      return kUpper;
    case 'l':
      return kLower;
    case '.':
      return kAny;
    default:
      return kLit;
  }
}

// PositionAccepts()
//
// Whether `c` fits a position of `kind`; a kLit position wants `literal`.
constexpr bool PositionAccepts(char kind, char literal, char c) {
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

class SpecProgram {
 public:
  // Build()
  //
  // The program of `elements` (with their brace sections in `rules`), or
  // null when the pattern is too long for the matcher; the caller then
  // runs the regular expression instead.
  static std::shared_ptr<const SpecProgram> Build(
      const std::vector<cPatternElement>& elements, const cMetaRules& rules);

  // Run()
  //
  // Replaces `matches` with the matches in `text`, enumerated as
  // cRegExp::Execute() does with Global set. Returns false, with
  // `matches` empty, only when the text is too long for the working
  // memory the matcher allows itself; the caller then runs the regular
  // expression instead.
  bool Run(std::string_view text, cMatchCollection& matches) const;

  // WholeMatch()
  //
  // For a program with one way through it (Paths() 1) or a few listed
  // ones (Listed()): whether the matches Run() gives for `text` make up
  // all of it, decided without listing them. nullopt for other programs
  // and for texts Run() leaves to the regular expression.
  std::optional<bool> WholeMatch(std::string_view text) const;

  // CountPaths()
  //
  // Paths() of the program Build() would make, without making it.
  static uint64_t CountPaths(const std::vector<cPatternElement>& elements,
                             const cMetaRules& rules);

  // Paths()
  //
  // The number of ways the pattern can be walked from one place (each
  // optional element present or absent, each brace section at each of its
  // lengths), capped at 2^32. A backtracking engine may try them all
  // before it gives up on a place.
  uint64_t Paths() const { return paths_; }

  // Listed()
  //
  // True when the program holds each of its few ways through as a fixed
  // shape (Paths() at most kMaxListedPaths, none too long), so that Run()
  // checks them in turn at each place instead of searching.
  bool Listed() const { return !listed_ends_.empty(); }

  // The most ways through a program lists as shapes.
  static constexpr uint64_t kMaxListedPaths = 16;

 private:
  struct Step {
    char kind;
    char literal;
    uint32_t min;
    uint32_t max;
  };
  class Search;

  // Run() for a program with one way through it (Paths() 1): every step
  // takes exactly its length, so a match at a place is a check of each
  // character, with nothing to remember.
  bool RunFixed(std::string_view text, cMatchCollection& matches) const;
  // True when the positions of a fixed program accept text[begin, ...).
  bool FixedAt(std::string_view text, size_t begin) const;
  // Whether positions [from, to) of the stored shape (a fixed program's, or
  // the listed shapes one after another) accept the text from `begin` on.
  // REQUIRES: begin + (to - from) <= text.size().
  bool FitsAt(std::string_view text, size_t begin, size_t from,
              size_t to) const;
  // Run() for a listed program: at each place the first way through, in
  // priority order, whose shape the text fits there.
  bool RunListed(std::string_view text, cMatchCollection& matches) const;
  // Lists every way through, in priority order, as Listed() describes;
  // leaves the program unlisted when the shapes would be too long.
  void ListPaths();

  std::vector<Step> steps_;
  // With one way through: the kind and literal of each position in turn.
  // With a few (Listed()): those of every way through in priority order,
  // way k holding positions [listed_ends_[k - 1], listed_ends_[k]).
  std::string fixed_kinds_;
  std::string fixed_literals_;
  std::vector<uint32_t> listed_ends_;
  // Element e owns steps [first_[e], first_[e + 1]).
  std::vector<uint32_t> first_;
  std::vector<bool> optional_;
  uint64_t paths_ = 1;
};

}  // namespace pelinor::internal

#endif  // PELINOR_PATTERN_MEMO_MATCHER_H_
