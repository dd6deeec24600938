// cRegExp: the regular-expression object of the library, with the members
// of the classic automation object (Pattern, Global, IgnoreCase, Execute
// giving matches with Count, Item, value, FirstIndex and Length).
//
// Semantics: patterns are Perl-style expressions run over bytes. One byte is
// one character (bytes 0x80-0xFF included; no UTF-8 decoding), "\d" and the
// letter classes are ASCII only, "." matches every byte except LF (newline
// convention LF), "$" matches only at the very end, and an empty class "[]"
// is allowed (it matches nothing). IgnoreCase folds ASCII letters only.
//
// Global enumeration: the search starts at position 0; after a match
// [b, e) it continues at e, or at e + 1 when the match was empty; an empty
// match at the end of the text counts; the search stops past the end.
// Without Global only the first match is reported.
//
// Compiled patterns (machine code where the platform allows it) are kept
// in a process-wide cache shared by all objects, so objects may be created
// per evaluation without compiling their pattern again.
//
// Thread safety: one cRegExp is used by one thread at a time; separate
// objects may be used from separate threads at once (the shared cache is
// synchronised).

#ifndef PELINOR_REG_EXP_H_
#define PELINOR_REG_EXP_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor {

// The description given when a pattern cannot be compiled.
inline constexpr char kRegExpSyntaxError[] =
    "Syntax error in regular expression";

// cMatch
//
// One match: the matched text, its zero-based position in the searched
// text and its length in bytes.
struct cMatch {
  std::string value;
  int32_t FirstIndex = 0;
  int32_t Length = 0;
};

// cMatchCollection
//
// The matches of one Execute() in text order. Item() is zero-based, like
// the automation object's collection it mirrors.
class cMatchCollection {
 public:
  int32_t Count() const { return static_cast<int32_t>(count_); }

  // Item()
  //
  // The match at the zero-based index `i`, or an empty match when `i` is
  // out of range.
  const cMatch& Item(int32_t i) const;

  // Clear()
  // Add()
  //
  // Empty the collection and append a match. Cleared entries are reused,
  // so refilling a collection allocates nothing for short values.
  void Clear() { count_ = 0; }
  void Add(std::string_view value, int32_t first_index) {
    if (count_ == items_.size()) items_.emplace_back();
    cMatch& m = items_[count_++];
    m.value.assign(value);
    m.FirstIndex = first_index;
    m.Length = static_cast<int32_t>(value.size());
  }

  std::vector<cMatch>::const_iterator begin() const { return items_.begin(); }
  std::vector<cMatch>::const_iterator end() const {
    return items_.begin() + static_cast<std::ptrdiff_t>(count_);
  }

 private:
  std::vector<cMatch> items_;  // the first `count_` are the matches
  size_t count_ = 0;
};

namespace internal {
struct CompiledPattern;
}  // namespace internal

class cRegExp {
 public:
  cRegExp();
  ~cRegExp();
  cRegExp(const cRegExp&) = delete;
  cRegExp& operator=(const cRegExp&) = delete;

  std::string Pattern;
  bool Global = false;
  bool IgnoreCase = false;

  // Execute()
  //
  // Runs Pattern over `text` and replaces `matches` with what it finds
  // (see the enumeration rule in the file comment). Returns false, with
  // `matches` empty and `strErrMsg` set, when the pattern does not compile
  // (kRegExpSyntaxError followed by the reason in parentheses) or when a
  // match cannot be completed ("Regular expression match failed (" + reason
  // + ")", for example when the backtracking limit is reached). On success
  // `strErrMsg` is left untouched.
  bool Execute(std::string_view text, cMatchCollection& matches,
               std::string& strErrMsg);

  // Test()
  //
  // True when Pattern matches somewhere in `text`; false when it does not
  // or cannot be run.
  bool Test(std::string_view text);

 private:
  // Makes `code_` the compiled form of Pattern and IgnoreCase; false with
  // `strErrMsg` set when the pattern does not compile.
  bool Prepare(std::string& strErrMsg);
  // The slow part of Prepare(): compiles or looks up the pattern.
  bool Recompile(std::string& strErrMsg);

  std::shared_ptr<const internal::CompiledPattern> code_;
  std::string compiled_pattern_;  // Pattern that `code_` was built from
  bool compiled_ignore_case_ = false;
  void* match_data_ = nullptr;  // pcre2_match_data_8 for the whole match
};

// RegExpCacheSize()
//
// The number of compiled patterns held by the shared cache (for tests and
// diagnostics).
size_t RegExpCacheSize();

}  // namespace pelinor

#endif  // PELINOR_REG_EXP_H_
