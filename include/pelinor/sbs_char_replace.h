// Brace sections of pattern specifications: a run of positions of one
// class with a required and an optional part, such as "{0000??}" for four
// to six digits. Language: docs/formats/patterns.md.
//
// cSBSCharReplace holds one section (its class and length limits);
// cMetaRules holds every section of a loaded specification, in order, and
// expands a section into the placeholder runs it stands for, which the
// engine's coercion uses to line a text up with the pattern.
//
// Thread safety: objects are used by one thread at a time.

#ifndef PELINOR_SBS_CHAR_REPLACE_H_
#define PELINOR_SBS_CHAR_REPLACE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "pelinor/collection.h"

namespace pelinor {

// The messages of illegal brace sections.
inline constexpr char kBraceSectionError[] =
    "Illegal brace section in pattern specification";

// AppendEscapedChar()
//
// Appends `c` to a regular expression as a literal: "[", "\", "^", "$",
// "|", "?", "*", "+", "(", ")", "{" and "}" get a backslash in front; every
// other character stands for itself (so an unquoted "." still matches any
// character).
void AppendEscapedChar(std::string& out, char c);

// PlaceholderExpression()
//
// The expression of one position written `c` outside quotes: "\d" for
// "0", "[A-Z]" for "L", "[a-z]" for "l", else `c` escaped as above.
std::string PlaceholderExpression(char c);

// cSBSCharReplace
//
// One brace section. `Rules` is the character each position stands for
// ("0", "L", "l" or a literal character); `MinLen` counts the required
// positions and `MaxLen` the required and optional ones.
class cSBSCharReplace {
 public:
  int32_t MinLen = 0;
  int32_t MaxLen = 0;
  std::string Rules;

  // Parse()
  //
  // Reads a section's contents (the text between the braces): one or more
  // copies of one class character, then zero or more "?". Anything else
  // (an empty section, two different class characters, "?" first, a "?"
  // followed by a class character, a double quote) is illegal: false, with
  // `strErrMsg` set to kBraceSectionError and the object unchanged.
  bool Parse(std::string_view contents, std::string& strErrMsg);

  // Expression()
  //
  // The section's regular expression: the class of `Rules` (see
  // PlaceholderExpression()) followed by "{MinLen,MaxLen}".
  std::string Expression() const;
};

// cMetaRules
//
// The brace sections of one specification in the order they are written.
class cMetaRules {
 public:
  // Each section's contents as written, and its parsed form, at the same
  // one-based index.
  Collection<std::string> CharReplaceLines;
  Collection<std::shared_ptr<cSBSCharReplace>> CharReplaceComps;

  // AddCharReplaceLine()
  //
  // Parses a section's contents and appends it; false (nothing added, and
  // `strErrMsg` set) when the contents are illegal.
  bool AddCharReplaceLine(const std::string& contents, std::string& strErrMsg);

  // GetCharReplaceSequences()
  //
  // The placeholder runs that section `index` (one-based) stands for, from
  // MinLen to MaxLen characters: "{00?}" gives "00" and "000". Empty for
  // an index out of range.
  Collection<std::string> GetCharReplaceSequences(int32_t index) const;

  // Clear()
  //
  // Removes every section.
  void Clear();
};

}  // namespace pelinor

#endif  // PELINOR_SBS_CHAR_REPLACE_H_
