#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pelinor/pattern_engine.h"
#include "pelinor/sbs_char_replace.h"

namespace pelinor {
namespace {

// Elements written as their text, in parentheses when optional, and
// joined by " ".
std::string Elements(const cPatternEngine& engine) {
  std::string out;
  for (const cPatternElement& e : engine.Elements()) {
    if (!out.empty()) out += " ";
    out += e.Optional ? "(" + e.Text + ")" : e.Text;
  }
  return out;
}

TEST(PatternSpec, PipedFormBecomesOptionalElements) {
  struct Case {
    std::string piped;
    std::string sbs;
  };
  const Case cases[] = {
      {"A|B|C", "(A)(B)(C)"}, {"ABC", "ABC"}, {"A||B", "(A)()(B)"},
      {"|", "()()"},          {"", ""},       {"(A)B", "(A)B"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.piped);
    EXPECT_EQ(cPatternEngine::PipeExpressionToSBS(c.piped), c.sbs);
  }
}

TEST(PatternSpec, RejectsIllegalSpecifications) {
  const std::string long_section = "{" + std::string(256, '0') + "}";
  struct Case {
    std::string spec;
    const char* message;
  };
  const Case cases[] = {
      {"A((B))", kNestedGroupError},    {"((A)", kNestedGroupError},
      {"A()", kEmptyGroupError},        {"()B", kEmptyGroupError},
      {"A|", kEmptyGroupError},         {"A)", kUnopenedGroupError},
      {"A)B", kUnopenedGroupError},     {"(A))", kUnopenedGroupError},
      {"(A", kUnclosedGroupError},      {"A(", kUnclosedGroupError},
      {"(A)B(", kUnclosedGroupError},   {"(", kUnclosedGroupError},
      {"(A\"x\"", kUnclosedGroupError}, {"\"AB)", kUnclosedQuoteError},
      {"AB\"", kUnopenedQuoteError},    {"\"", kUnopenedQuoteError},
      {"{0{0}}", kNestedBraceError},    {"{00", kUnclosedBraceError},
      {"(0{0)", kUnclosedBraceError},   {"0}", kUnopenedBraceError},
      {"{}", kBraceSectionError},       {"{?0}", kBraceSectionError},
      {"{0L}", kBraceSectionError},     {"{0?0}", kBraceSectionError},
      {"{\"0\"}", kBraceSectionError},  {long_section, kBraceSectionError}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec);
    cPatternEngine engine;
    std::string error;
    bool ok = true;
    engine.LoadSBSExpression("0", error, ok);
    ASSERT_TRUE(ok);
    engine.LoadSBSExpression(c.spec, error, ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(error, c.message);
    // The previous expression stays; the elements are gone.
    EXPECT_EQ(engine.RegExpFormat, "\\d");
    EXPECT_EQ(engine.RegExpFormats.Count(), 0);
    EXPECT_TRUE(engine.Elements().empty());
    EXPECT_EQ(engine.MetaRules().CharReplaceComps.Count(), 0);
  }
}

TEST(PatternSpec, SplitsAndAssemblesLegalSpecifications) {
  struct Case {
    std::string spec, elements, expression;
  };
  const Case cases[] = {
      {"A|B", "(A) (B)", "(A){0,1}(B){0,1}"},
      {"(A)(B)", "(A) (B)", "(A){0,1}(B){0,1}"},
      {"AB(CD)E", "AB (CD) E", "AB(CD){0,1}E"},
      {"LL000000L", "LL000000L", "[A-Z][A-Z]\\d\\d\\d\\d\\d\\d[A-Z]"},
      {"ll-0.0", "ll-0.0", "[a-z][a-z]-\\d.\\d"},
      // Quoted characters are literal; quotes themselves vanish.
      {"\"(x)\"", "\"(x)\"", "\\(x\\)"},
      {"A\"(B)\"C", "A\"(B)\"C", "A\\(B\\)C"},
      {"(\"a)b\")", "(\"a)b\")", "(a\\)b){0,1}"},
      {"\"0Ll.\"0", "\"0Ll.\"0", "0Ll\\.\\d"},
      {"\"ab", "\"ab", "ab"},
      {"\"{0}\"", "\"{0}\"", "\\{0\\}"},
      {"a[\\^$?*+]", "a[\\^$?*+]", "a\\[\\\\\\^\\$\\?\\*\\+]"},
      // Brace sections: required positions, then optional ones.
      {"{0000??}", "{0000??}", "\\d{4,6}"},
      {"L{LL?}", "L{LL?}", "[A-Z][A-Z]{2,3}"},
      {"({ll})0", "({ll}) 0", "([a-z]{2,2}){0,1}\\d"},
      {"{--?}", "{--?}", "-{2,3}"},
      {"{$?}", "{$?}", "\\${1,2}"},
      {"{..}", "{..}", ".{2,2}"},
      {"", "", ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec);
    cPatternEngine engine;
    std::string error;
    bool ok = false;
    engine.LoadSBSExpression(c.spec, error, ok);
    ASSERT_TRUE(ok) << error;
    EXPECT_EQ(Elements(engine), c.elements);
    EXPECT_EQ(engine.RegExpFormat, c.expression);
  }
  cPatternEngine engine;
  std::string error;
  bool ok = false;
  engine.LoadSBSExpression("AB|CD", error, ok);
  ASSERT_TRUE(ok);
  EXPECT_EQ(engine.SBSFormat, "(AB)(CD)");
  EXPECT_EQ(engine.RegExpFormats.Item(1), "AB");
  EXPECT_EQ(engine.RegExpFormats.Item(2), "CD");
}

TEST(PatternSpec, EscapesEveryListedCharacter) {
  const std::string listed = "[\\^$|?*+(){}";
  for (int b = 1; b < 256; ++b) {
    const char c = static_cast<char>(b);
    SCOPED_TRACE(b);
    std::string out;
    AppendEscapedChar(out, c);
    bool escaped = listed.find(c) != std::string::npos;
    EXPECT_EQ(out, escaped ? std::string("\\") + c : std::string(1, c));
  }
}

TEST(PatternSpec, BraceSectionsExpandToTheirRuns) {
  cPatternEngine engine;
  std::string error;
  bool ok = false;
  engine.LoadSBSExpression("{00?}-({L})", error, ok);
  ASSERT_TRUE(ok) << error;
  const cMetaRules& rules = engine.MetaRules();
  ASSERT_EQ(rules.CharReplaceComps.Count(), 2);
  EXPECT_EQ(rules.CharReplaceLines.Item(1), "00?");
  EXPECT_EQ(rules.CharReplaceComps.Item(1)->MinLen, 2);
  EXPECT_EQ(rules.CharReplaceComps.Item(1)->MaxLen, 3);
  EXPECT_EQ(rules.CharReplaceComps.Item(2)->Rules, "L");
  struct Case {
    int32_t index;
    std::string runs;
  };
  const Case cases[] = {{1, "00 000"}, {2, "L"}, {3, ""}, {0, ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.index);
    std::string runs;
    for (const std::string& r : rules.GetCharReplaceSequences(c.index)) {
      runs += (runs.empty() ? "" : " ") + r;
    }
    EXPECT_EQ(runs, c.runs);
  }
}

}  // namespace
}  // namespace pelinor
