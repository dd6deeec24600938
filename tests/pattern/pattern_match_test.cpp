#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pattern/memo_matcher.h"
#include "pelinor/pattern_engine.h"

namespace pelinor {
namespace {

struct Outcome {
  bool ok = false;
  std::string value, error;
};

// Loads `spec`, executes on `text` and picks a value the way the
// evaluation entry does.
Outcome Evaluate(cPatternEngine& engine, const std::string& spec,
                 std::string text, bool whole, bool keep = false) {
  Outcome out;
  bool ok = false;
  engine.LoadSBSExpression(spec, out.error, ok);
  EXPECT_TRUE(ok) << out.error;
  engine.Execute(text, out.error, ok);
  if (!ok) return out;
  if (whole) {
    engine.BestCandidateWhole(out.value, out.ok);
  } else {
    engine.BestCandidateSubPattern(out.value, keep, out.ok);
  }
  return out;
}

TEST(PatternMatch, WholeModeNeedsMatchesCoveringTheText) {
  struct Case {
    std::string spec, text;
    bool coerce, suppress, ok;
    std::string value;
  };
  const Case cases[] = {
      {"LL000000L", "AB12345GC", true, false, true, "AB123456C"},
      {"LL000000L", "0B123456C", true, false, true, "OB123456C"},
      {"0000", "1O5I", true, false, true, "1051"},
      {"0000", "1O5I", false, false, false, ""},
      {"LL000000L", "AB123456C", false, false, true, "AB123456C"},
      {"000", "12345", false, false, false, ""},
      {"(000)", "123456", false, false, true, "123456"},
      {"0000", "12 34", false, true, true, "1234"},
      {"0000", "12\t34", false, true, false, ""},
      {"(000)", "", false, false, false, ""},
      {"A|B", "AB", false, false, true, "AB"},
      {"{0000??}", "1234567", false, false, false, ""},
      {"{0000??}", "12345", false, false, true, "12345"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on " + c.text);
    cPatternEngine engine;
    engine.PerformCoertion = c.coerce;
    engine.SuppressSpaces = c.suppress;
    Outcome out = Evaluate(engine, c.spec, c.text, true);
    EXPECT_EQ(out.ok, c.ok);
    EXPECT_EQ(out.value, c.value);
  }
}

TEST(PatternMatch, SubPatternModeTakesTheLongestMatchedText) {
  struct Case {
    std::string spec, text;
    bool coerce, keep, ok;
    std::string value;
  };
  const Case cases[] = {
      {"000", "ab123cd", false, false, true, "123"},
      {"000", "ab123cd", false, true, true, "ab123cd"},
      {"(000)", "ab123cd", false, true, true, "ab123cd"},
      {"000", "123cd", false, true, true, "123cd"},
      {"LL0", "x AB1 y CD2", false, false, true, "AB1CD2"},
      {"LL0", "x AB1 y CD2 z", false, true, true, "x AB1CD2 z"},
      {"000", "abc", false, true, false, ""},
      {"000", "Inv 1O5 x", true, true, true, "Inv 105 x"},
      {"000", "Inv 1O5 x", true, false, true, "105"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on " + c.text);
    cPatternEngine engine;
    engine.PerformCoertion = c.coerce;
    Outcome out = Evaluate(engine, c.spec, c.text, false, c.keep);
    EXPECT_EQ(out.ok, c.ok);
    EXPECT_EQ(out.value, c.value);
  }
}

// Replaces the engine's mappings with `pairs`: what OCR produced and what
// it may stand for, two characters per mapping.
void SetMappings(cPatternEngine& engine, const std::string& pairs) {
  engine.CharMapper->Clear();
  for (size_t i = 0; i + 1 < pairs.size(); i += 2) {
    engine.CharMapper->Add(pairs.substr(i, 1), pairs.substr(i + 1, 1));
  }
}

TEST(PatternMatch, EqualCandidatesKeepTheEarlierOne) {
  // "0" may be read for "O" or "Q": both fit an upper-case letter, and the
  // mapping order decides which candidate comes first.
  struct Case {
    std::string pairs, value;
  };
  const Case cases[] = {{"0O0Q", "O"}, {"0Q0O", "Q"}};
  for (const Case& c : cases) {
    for (bool whole : {true, false}) {
      SCOPED_TRACE(c.value + (whole ? " whole" : " sub-pattern"));
      cPatternEngine engine;
      engine.PerformCoertion = true;
      SetMappings(engine, c.pairs);
      Outcome out = Evaluate(engine, "L", "0", whole);
      EXPECT_TRUE(out.ok);
      EXPECT_EQ(out.value, c.value);
      EXPECT_EQ(engine.Candidates().size(), 3u);
    }
  }
}

TEST(PatternMatch, VariationsComeFewestReplacementsFirst) {
  struct Case {
    std::string spec, text, pairs, variations;
  };
  const Case cases[] = {
      {"(00)(0)", "OI", "O0I1", "OI 0I O1 01"},
      {"(00)(0)", "OI", "O8O0I1", "OI 8I 0I O1 81 01"},
      // Only characters that do not fit are replaced, only by what fits.
      {"L0", "B8", "B88BBb", "B8"},
      {"0L", "B8", "B88BBb", "B8 8B"},
      {"\"O\"0", "0O", "0OO0", "0O O0"},
      {"0", "ab", "a1a1b2x3", "ab 1b a2 12"},
      // Characters the expression already matches change last; misreads
      // at separate places are repaired together, fewest first.
      {"LL(0)(0)(0)(0)", "AB12O4", "2ZO0", "AB12O4 AB1204 AB1ZO4"},
      {"L(0)", "A8B", "8BB8", "A8B ABB AB8"},
      {"0", "aba", "a1b2", "aba 1ba a2a ab1 12a 1b1 a21 121"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on " + c.text);
    cPatternEngine engine;
    engine.PerformCoertion = true;
    SetMappings(engine, c.pairs);
    Evaluate(engine, c.spec, c.text, true);
    std::string variations;
    for (const cPatternCandidate& k : engine.Candidates()) {
      variations += (variations.empty() ? "" : " ") + k.Variation;
    }
    EXPECT_EQ(variations, c.variations);
    EXPECT_EQ(engine.VariationCount(),
              static_cast<int32_t>(engine.Candidates().size()));
  }
}

TEST(PatternMatch, CoercionTriesTheSmallestRepairFirst) {
  // Built-in mappings, whole mode.
  struct Case {
    std::string spec, text;
    bool ok;
    std::string value;
  };
  const Case cases[] = {
      // A "2" that fits stays a digit; only the "O" is repaired.
      {"LL(0)(0)(0)(0)", "AB12O4", true, "AB1204"},
      {"LL(0)(0)(0)(0)", "AB1O", true, "AB10"},
      // Nothing matches as it stands: one placement of the whole pattern
      // comes before joined ones that change as many characters.
      {"LL(0)(0)(0)(0)", "A8I2O4", true, "AB1204"},
      // Misreads at two places, each repaired by its own match.
      {"0", "1O5I", true, "1051"},
      {"0000", "1O5I", true, "1051"},
      {"(0)", "O1S", true, "015"},
      {"LL000000L", "AB12345GC", true, "AB123456C"},
      {"000", "12", false, ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on " + c.text);
    cPatternEngine engine;
    engine.PerformCoertion = true;
    Outcome out = Evaluate(engine, c.spec, c.text, true);
    EXPECT_EQ(out.ok, c.ok);
    EXPECT_EQ(out.value, c.value);
  }
}

TEST(PatternMatch, OwnMatcherFindsWhatTheExpressionFinds) {
  // The engine's own matcher must give exactly the matches of the
  // assembled expression run by the regular-expression object.
  const char* specs[] = {"(0)(0)0",
                         "(00)(000)",
                         "LL(0)(0)(0)(0)",
                         "(L)0{00?}(L)",
                         "\"(\"0\")\"L",
                         "(.)(.)L",
                         "{0???}{0?}",
                         "(0L)(L0)",
                         "A|B|AB",
                         "(\"O\")0",
                         "",
                         "({ll?})l",
                         "(0)(0)(0)(0)(0)(0)(0)(0)(0)L"};
  const char* texts[] = {"",       "1",
                         "12",     "123",
                         "12345",  "AB12O4",
                         "(0)A",   "x1A2B3y",
                         "A1B2",   "AB AB",
                         "O1O2",   "abcde",
                         "\n1\nA", "1111111111111X11A"};
  for (const char* spec : specs) {
    cPatternEngine engine;
    std::string error;
    bool ok = false;
    engine.LoadSBSExpression(spec, error, ok);
    ASSERT_TRUE(ok) << spec << ": " << error;
    auto program =
        internal::SpecProgram::Build(engine.Elements(), engine.MetaRules());
    ASSERT_NE(program, nullptr);
    for (const char* text : texts) {
      SCOPED_TRACE(std::string(spec) + " on " + text);
      cMatchCollection got;
      ASSERT_TRUE(program->Run(text, got));
      cRegExp regexp;
      regexp.Pattern = engine.RegExpFormat;
      regexp.Global = true;
      cMatchCollection expected;
      ASSERT_TRUE(regexp.Execute(text, expected, error)) << error;
      ASSERT_EQ(got.Count(), expected.Count());
      for (int32_t i = 0; i < got.Count(); ++i) {
        EXPECT_EQ(got.Item(i).value, expected.Item(i).value);
        EXPECT_EQ(got.Item(i).FirstIndex, expected.Item(i).FirstIndex);
      }
    }
  }
}

TEST(PatternMatch, ManyOptionalElementsNeverExhaustTheMatcher) {
  std::string optional25;
  for (int i = 0; i < 25; ++i) optional25 += "(0)";
  struct Case {
    std::string spec, text;
    bool coerce, ok;
    std::string value;
  };
  const Case cases[] = {
      {optional25 + "L", std::string(40, '1'), false, false, ""},
      {optional25 + "L", std::string(40, '1'), true, true,
       std::string(13, '1') + "I" + std::string(25, '1') + "I"},
      {optional25 + "L", std::string(24, '1') + "A", false, true,
       std::string(24, '1') + "A"},
      {optional25 + optional25 + "\"#\"", std::string(60, '7'), false, false,
       ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on " + c.text);
    cPatternEngine engine;
    engine.PerformCoertion = c.coerce;
    Outcome out = Evaluate(engine, c.spec, c.text, true);
    EXPECT_EQ(out.error, "");
    EXPECT_EQ(out.ok, c.ok);
    EXPECT_EQ(out.value, c.value);
  }
}

// Gives each of "a" to "d" the numbers of digit and upper-case mappings
// listed, so that "(0000)(LLLL)" on "abcd" has 1 + product(digits) +
// product(letters) variations.
void AddMappings(cCharMapper& mapper, const int (&digits)[4],
                 const int (&letters)[4]) {
  mapper.Clear();
  for (int i = 0; i < 4; ++i) {
    const std::string from(1, static_cast<char>('a' + i));
    for (int k = 0; k < digits[i]; ++k) {
      mapper.Add(from, std::string(1, static_cast<char>('0' + k)));
    }
    for (int k = 0; k < letters[i]; ++k) {
      mapper.Add(from, std::string(1, static_cast<char>('A' + k)));
    }
  }
}

TEST(PatternMatch, TheTenThousandthVariationFailsTheEvaluation) {
  struct Case {
    int digits[4];
    int letters[4];
    int32_t variations;
    bool ok;
  };
  const Case cases[] = {
      {{10, 9, 6, 10}, {1, 11, 19, 22}, 9999, true},  // 1 + 5400 + 4598
      {{9, 10, 8, 9}, {1, 9, 17, 23}, 10000, false},  // 1 + 6480 + 3519
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.variations);
    cPatternEngine engine;
    engine.PerformCoertion = true;
    AddMappings(*engine.CharMapper, c.digits, c.letters);
    Outcome out = Evaluate(engine, "(0000)(LLLL)", "abcd", true);
    EXPECT_EQ(engine.VariationCount(), c.variations);
    if (c.ok) {
      EXPECT_TRUE(out.ok);
      EXPECT_EQ(out.value, "AAAA");
      EXPECT_EQ(engine.Candidates().size(), 9999u);
    } else {
      EXPECT_FALSE(out.ok);
      EXPECT_EQ(out.error, kTooManyVariationsError);
    }
  }
}

// The matches the assembled expression gives for `text`.
cMatchCollection ExpressionMatches(const cPatternEngine& engine,
                                   const std::string& text) {
  cRegExp regexp;
  regexp.Pattern = engine.RegExpFormat;
  regexp.Global = true;
  cMatchCollection matches;
  std::string error;
  EXPECT_TRUE(regexp.Execute(text, matches, error)) << error;
  return matches;
}

std::string Describe(const cMatchCollection& matches) {
  std::string out;
  for (const cMatch& m : matches) {
    out += std::to_string(m.FirstIndex) + ":'" + m.value + "' ";
  }
  return out;
}

TEST(PatternMatch, FewWaysThroughAreCheckedShapeByShape) {
  // Up to sixteen ways through are listed as shapes; the matches must be
  // those of the expression, whichever way through comes first.
  struct Case {
    const char* spec;
    bool listed;
  } cases[] = {
      {"PO000000|PO-000000", true},
      {"GB000000000(000)", true},
      {"(0)(0)0", true},
      {"A|B|AB", true},
      {"(0L)(L0)", true},
      {"{0???}{0?}", true},
      {"(L)0{00?}(L)", true},
      {"({ll?})l", true},
      {"LL(0)(0)(0)(0)", true},
      {"(0)(0)(0)(0)(0)", false},  // 32 ways: searched
      {"LL000000", false},         // one way: a fixed shape
  };
  const std::string texts[] = {"",
                               "P0-004521",
                               "PO-004521PO123456",
                               "GB123456789012",
                               "GB 123 4567 89",
                               "1A2B3C",
                               "A1B2",
                               "AB",
                               "abcde",
                               "12\n345",
                               "AB12O4",
                               std::string(40, '1') + "A"};
  for (const Case& c : cases) {
    cPatternEngine engine;
    std::string error;
    bool ok = false;
    engine.LoadSBSExpression(c.spec, error, ok);
    ASSERT_TRUE(ok) << c.spec;
    const auto program =
        internal::SpecProgram::Build(engine.Elements(), engine.MetaRules());
    ASSERT_NE(program, nullptr) << c.spec;
    EXPECT_EQ(program->Listed(), c.listed) << c.spec;
    for (const std::string& text : texts) {
      SCOPED_TRACE(std::string(c.spec) + " on '" + text + "'");
      cMatchCollection got;
      ASSERT_TRUE(program->Run(text, got));
      EXPECT_EQ(Describe(got), Describe(ExpressionMatches(engine, text)));
    }
    // A text too long to check shape by shape is left to the expression.
    cMatchCollection got;
    EXPECT_EQ(program->Run(std::string(70000, '1'), got), !c.listed) << c.spec;
  }
}

// The characters `variation` changed in `text`, as "position:character"
// (zero-based) separated by spaces.
std::string Changes(const std::string& text, const std::string& variation) {
  std::string out;
  for (size_t i = 0; i < text.size() && i < variation.size(); ++i) {
    if (text[i] == variation[i]) continue;
    if (!out.empty()) out += ' ';
    out += std::to_string(i);
    out += ':';
    out += variation[i];
  }
  return out;
}

TEST(PatternMatch, CoercedVariationsOnAwkwardTexts) {
  // The variations after the text itself, in order, each as the
  // characters it changed ("|" between them; with more than twelve, the
  // second, the third and the last), and the value chosen. Each
  // candidate's matches are those the expression gives for its variation.
  struct Case {
    std::string spec, text, pairs;  // no pairs: the built-in mappings
    bool suppress;
    int32_t count;
    std::string changes;
    std::string value;
  };
  const Case cases[] = {
      {"\"INV-\"000000", "INV-0O1234", "", false, 2, "5:0", "INV-001234"},
      {"PO000000|PO-000000", "P0-004521", "", false, 2, "1:O", "PO-004521"},
      {"GB000000000(000)", "GB 123 4567 89", "", true, 1, "", "GB123456789"},
      {"0", "", "", false, 1, "", ""},
      {"0", " ", "", false, 1, "", ""},
      {"L0", "  ", " 0 A", false, 2, "0:A 1:0", "A0"},
      {"(0)(0)L", "OIOI8", "O0I1O8", false, 10,
       "0:0|0:8|1:1|2:0|2:8|0:0 1:1|0:8 1:1|1:1 2:0|1:1 2:8", ""},
      {"0|LL", "OB", "O0OQB8", false, 3, "0:0|1:8", "OB"},
      {"{00??}", "O1I", "O0I1O0I1", false, 4, "0:0|2:1|0:0 2:1", "011"},
      // Look-alikes at every place: more repairs than a few to order, and
      // joined ones only while the limit is not passed.
      {"0", "OIOIOIOIOIOIOIOIOIOI", "O0I1", false, 9999,
       "0:0|1:1|0:0 11:1 16:0 17:1 18:0", ""},
      {"0", std::string(200, 'O'), "", false, 9999, "0:0|1:0|57:0 108:0", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on '" + c.text.substr(0, 30) + "'");
    cPatternEngine engine;
    engine.PerformCoertion = true;
    engine.SuppressSpaces = c.suppress;
    if (!c.pairs.empty()) SetMappings(engine, c.pairs);
    const Outcome out = Evaluate(engine, c.spec, c.text, true);
    EXPECT_EQ(out.error, "");
    EXPECT_EQ(out.value, c.value);
    ASSERT_EQ(engine.VariationCount(), c.count);
    const auto& candidates = engine.Candidates();
    ASSERT_EQ(candidates.size(), static_cast<size_t>(c.count));
    const std::string& text = engine.EvaluatedText();
    std::string changes;
    for (size_t i = 1; i < candidates.size(); ++i) {
      if (c.count > 12 && i > 2 && i + 1 < candidates.size()) continue;
      if (i > 1) changes += '|';
      changes += Changes(text, candidates[i].Variation);
    }
    EXPECT_EQ(changes, c.changes);
    for (const cPatternCandidate& k : candidates) {
      ASSERT_EQ(Describe(k.Matches),
                Describe(ExpressionMatches(engine, k.Variation)))
          << k.Variation;
    }
  }
}

TEST(PatternMatch, MappingsAddedToTheBuiltInOnesAreUsed) {
  // The built-in table is looked up through an index made once; a mapper
  // given more mappings has a table of its own, read as it stands.
  struct Case {
    std::string added;  // pairs appended to the built-in mappings
    std::string spec, text, value;
  };
  const Case cases[] = {
      {"", "0000", "1O5I", "1051"},   {"", "0", "x", ""}, {"x7", "0", "x", "7"},
      {"O9", "0000", "1O5I", "1051"},  // appended: tried after "O" to "0"
      {"x7x8", "00", "xx", "77"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.added + ": " + c.spec + " on " + c.text);
    cPatternEngine engine;
    engine.PerformCoertion = true;
    for (size_t i = 0; i + 1 < c.added.size(); i += 2) {
      engine.CharMapper->Add(c.added.substr(i, 1), c.added.substr(i + 1, 1));
    }
    const Outcome out = Evaluate(engine, c.spec, c.text, true);
    EXPECT_EQ(out.value, c.value);
  }
}

}  // namespace
}  // namespace pelinor
