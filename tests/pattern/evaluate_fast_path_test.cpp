// The quick whole-text check of fixed-shape and listed-shape patterns
// against the general evaluation and the regular expression.

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "pattern/memo_matcher.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/settings_snapshot.h"
#include "test_util.h"

namespace pelinor {
namespace {

struct Outcome {
  bool ok = false;
  std::string output = "unset";
  std::string error = "unset";
  std::string text;  // the caller's text afterwards

  bool operator==(const Outcome&) const = default;
};

std::string Describe(const Outcome& o) {
  return std::string(o.ok ? "ok" : "failed") + " output '" + o.output +
         "' error '" + o.error + "' text '" + o.text + "'";
}

// Through the snapshot's cached engines, where the quick check applies.
Outcome Quick(const cSettingsSnapshot& snapshot, const std::string& spec,
              const std::string& text, bool coerce, bool suppress) {
  Outcome o;
  o.text = text;
  o.ok = EvaluatePattern(o.text, spec, coerce, suppress, true, false, o.output,
                         o.error, "", snapshot);
  return o;
}

// On a new engine: the general evaluation.
Outcome General(const std::string& spec, const std::string& text, bool coerce,
                bool suppress) {
  Outcome o;
  o.text = text;
  cPatternEngine engine;
  o.ok = EvaluatePatternWith(engine, o.text, spec, coerce, suppress, true,
                             false, o.output, o.error, "");
  return o;
}

TEST(QuickWholeMatch, GivesTheEvaluationsOutcome) {
  struct Case {
    const char* spec;
    const char* text;
    bool suppress;
    bool ok;
    const char* output;
    const char* error;
  } cases[] = {
      {"LL000000", "AB123456", true, true, "AB123456", ""},
      {"LL000000", "AB12345", true, false, "unset", kPatternValidationError},
      {"LL000000", "xAB123456", true, false, "unset", kPatternValidationError},
      // Matches that follow each other make up the text.
      {"LL000000", "AB123456CD654321", true, true, "AB123456CD654321", ""},
      {"LL000000", "AB 123456", true, true, "AB123456", ""},
      {"LL000000", "AB 123456", false, false, "unset", kPatternValidationError},
      {"\"INV-\"0{00}", "INV-123", false, true, "INV-123", ""},
      {"\"INV-\"0{00}", "INV-12", false, false, "unset",
       kPatternValidationError},
      {"...", "a\nb", false, false, "unset", kPatternValidationError},
      {"...", "a b", false, true, "a b", ""},
      {"L|0", "A1", false, true, "A1", ""},
      {"", "", false, false, "unset", kPatternValidationError},
      {"", "x", false, false, "unset", kPatternValidationError},
      // Listed shapes: alternatives and optional parts.
      {"(0)", "1", false, true, "1", ""},
      {"PO000000|PO-000000", "PO-004521", false, true, "PO-004521", ""},
      {"PO000000|PO-000000", "P0-004521", false, false, "unset",
       kPatternValidationError},
      {"PO000000|PO-000000", "PO123456PO-654321", false, true,
       "PO123456PO-654321", ""},
      {"GB000000000(000)", "GB123456789012", false, true, "GB123456789012", ""},
      {"GB000000000(000)", "GB1234567890", false, false, "unset",
       kPatternValidationError},
      // An illegal specification is matched with an empty expression.
      {"0(", "1", false, false, "unset", kPatternValidationError},
  };
  const auto snapshot = cSettingsSnapshot::Make(std::nullopt, "");
  const ScopedSettingsSnapshot scope(snapshot.get());
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.spec) + " on '" + c.text + "'");
    const Outcome quick = Quick(*snapshot, c.spec, c.text, false, c.suppress);
    EXPECT_EQ(quick.ok, c.ok);
    EXPECT_EQ(quick.output, c.output);
    EXPECT_EQ(quick.error, c.error);
    EXPECT_EQ(quick, General(c.spec, c.text, false, c.suppress))
        << Describe(quick);
  }
}

// Specifications built from every kind of position, quoted literals,
// brace sections of one and of several lengths, optional elements and
// piped forms; most have one way through them.
std::vector<std::string> GeneratedSpecs(std::mt19937& rng) {
  const char* const atoms[] = {"0",    "L",     "l",     ".",     "A",
                               "-",    " ",     "\"0\"", "\"L\"", "\".\"",
                               "{00}", "{LLL}", "{0?}",  "(0)",   "(LL)"};
  std::vector<std::string> specs;
  for (int i = 0; i < 300; ++i) {
    std::string spec;
    const int n = std::uniform_int_distribution<>(0, 6)(rng);
    const int last_atom = i % 4 == 0 ? 14 : 11;  // optional parts now and then
    for (int k = 0; k < n; ++k) {
      spec += atoms[std::uniform_int_distribution<>(0, last_atom)(rng)];
    }
    if (i % 10 == 0 && !spec.empty()) spec = spec + "|" + spec;
    specs.push_back(spec);
  }
  return specs;
}

// Texts near what the pattern specification accepts: its own placeholders
// turned into characters they accept or do not, repeated, cut, spaced.
std::vector<std::string> GeneratedTexts(std::mt19937& rng,
                                        const std::string& spec) {
  const std::string alphabet = "0123456789ABZabz .-\nO";
  std::vector<std::string> texts;
  for (int i = 0; i < 12; ++i) {
    std::string t;
    for (const char c : spec) {
      switch (c) {
        case '0':
          t += static_cast<char>('0' +
                                 std::uniform_int_distribution<>(0, 9)(rng));
          break;
        case 'L':
          t += static_cast<char>('A' +
                                 std::uniform_int_distribution<>(0, 25)(rng));
          break;
        case 'l':
          t += static_cast<char>('a' +
                                 std::uniform_int_distribution<>(0, 25)(rng));
          break;
        case '"':
        case '{':
        case '}':
        case '(':
        case ')':
        case '|':
        case '?':
          break;
        default:
          t += c;
      }
    }
    if (i % 3 == 1) t += t;
    if (i % 4 == 2 && !t.empty()) {
      t[std::uniform_int_distribution<size_t>(0, t.size() - 1)(rng)] =
          alphabet[std::uniform_int_distribution<size_t>(
              0, alphabet.size() - 1)(rng)];
    }
    if (i % 5 == 3) {
      t.insert(std::uniform_int_distribution<size_t>(0, t.size())(rng), 1,
               alphabet[std::uniform_int_distribution<size_t>(
                   0, alphabet.size() - 1)(rng)]);
    }
    if (i % 6 == 4) t.resize(t.size() / 2);
    texts.push_back(t);
  }
  return texts;
}

// The cases of the pattern fuzz corpus: a flags byte, then the
// specification and the text separated by a NUL byte.
std::vector<std::pair<std::string, std::string>> CorpusCases() {
  std::vector<std::pair<std::string, std::string>> cases;
  const std::filesystem::path dir =
      std::filesystem::path(PELINOR_SOURCE_DIR) / "fuzz/corpus/pattern";
  for (const auto& entry : std::filesystem::directory_iterator(dir)) {
    const std::string bytes = testing::ReadFile(entry.path().string());
    const size_t nul = bytes.find('\0');
    if (bytes.empty() || nul == std::string::npos) continue;
    cases.emplace_back(bytes.substr(1, nul - 1), bytes.substr(nul + 1));
  }
  EXPECT_GE(cases.size(), 5u);
  return cases;
}

TEST(QuickWholeMatch, AgreesWithTheGeneralEvaluationAndTheExpression) {
  std::mt19937 rng(424242);
  std::vector<std::pair<std::string, std::string>> cases = CorpusCases();
  for (const std::string& spec : GeneratedSpecs(rng)) {
    for (std::string& text : GeneratedTexts(rng, spec)) {
      cases.emplace_back(spec, std::move(text));
    }
  }
  const auto snapshot = cSettingsSnapshot::Make(std::nullopt, "");
  const ScopedSettingsSnapshot scope(snapshot.get());
  size_t fixed = 0;
  size_t listed = 0;
  size_t whole = 0;
  for (const auto& [spec, text] : cases) {
    // The evaluation, quick where it applies, and the general one.
    for (const bool coerce : {false, true}) {
      for (const bool suppress : {false, true}) {
        const Outcome quick = Quick(*snapshot, spec, text, coerce, suppress);
        const Outcome general = General(spec, text, coerce, suppress);
        if (!(quick == general)) {
          ADD_FAILURE() << "'" << spec << "' on '" << text << "' coerce "
                        << coerce << " suppress " << suppress << ": quick "
                        << Describe(quick) << ", general " << Describe(general);
          return;
        }
      }
    }
    // The matcher against the regular expression.
    cPatternEngine engine;
    std::string error;
    bool loaded = false;
    engine.LoadSBSExpression(spec, error, loaded);
    if (!loaded) continue;
    const auto program =
        internal::SpecProgram::Build(engine.Elements(), engine.MetaRules());
    if (program == nullptr) continue;
    cRegExp regexp;
    regexp.Pattern = engine.RegExpFormat;
    regexp.Global = true;
    cMatchCollection expected;
    ASSERT_TRUE(regexp.Execute(text, expected, error)) << error;
    cMatchCollection got;
    ASSERT_TRUE(program->Run(text, got));
    SCOPED_TRACE("'" + spec + "' on '" + text + "'");
    ASSERT_EQ(got.Count(), expected.Count());
    size_t covered = 0;
    for (int32_t i = 0; i < got.Count(); ++i) {
      EXPECT_EQ(got.Item(i).value, expected.Item(i).value);
      EXPECT_EQ(got.Item(i).FirstIndex, expected.Item(i).FirstIndex);
      covered += static_cast<size_t>(expected.Item(i).Length);
    }
    const std::optional<bool> all = program->WholeMatch(text);
    EXPECT_EQ(all.has_value(), program->Paths() == 1 || program->Listed());
    if (all.has_value()) {
      ++(program->Paths() == 1 ? fixed : listed);
      EXPECT_EQ(*all, !text.empty() && covered == text.size());
      whole += *all;
    }
  }
  // Fixed and listed shapes, and texts they make up, are well represented.
  EXPECT_GT(fixed, 1000u);
  EXPECT_GT(listed, 300u);
  EXPECT_GT(whole, 300u);
}

}  // namespace
}  // namespace pelinor
