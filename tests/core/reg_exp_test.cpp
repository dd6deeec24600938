#include "pelinor/reg_exp.h"

#include <gtest/gtest.h>

#include <random>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace pelinor {
namespace {

// Matches written "value@FirstIndex" so a table can state them.
std::vector<std::string> Matches(cRegExp& re, const std::string& text) {
  cMatchCollection matches;
  std::string error;
  EXPECT_TRUE(re.Execute(text, matches, error)) << error;
  std::vector<std::string> out;
  for (int32_t i = 0; i < matches.Count(); ++i) {
    const cMatch& m = matches.Item(i);
    EXPECT_EQ(m.Length, static_cast<int32_t>(m.value.size()));
    out.push_back(m.value + "@" + std::to_string(m.FirstIndex));
  }
  return out;
}

TEST(RegExp, EnumeratesMatchesLikeTheAutomationObject) {
  struct Case {
    const char* pattern;
    std::string text;
    const char* options;  // "g" global, "i" ignoring case
    std::vector<std::string> expected;
  };
  const Case cases[] = {
      {R"(\d{3})", "ab123cd4567", "g", {"123@2", "456@7"}},
      // Empty matches advance by one; the one at the end counts.
      {"x*", "axxb", "g", {"@0", "xx@1", "@3", "@4"}},
      {"x*", "", "g", {"@0"}},
      {R"((\d{2}){0,1})", "a12", "g", {"@0", "12@1", "@3"}},
      {R"(\d)", "12", "", {"1@0"}},
      // One byte is one character; accented letters are not in [A-Z].
      {"[A-Z]",
       "\xC9"
       "A\xE9",
       "g",
       {"A@1"}},
      {".", "\xE9\n", "g", {"\xE9@0"}},
      {"a.b", "a\nb a\rb", "g", {"a\rb@4"}},
      // "$" only at the very end; an empty class matches nothing.
      {"a$", "a\n", "g", {}},
      {"a$", "ba", "g", {"a@1"}},
      {"x[]|y", "xy", "g", {"y@1"}},
      {"abc", "xABC", "gi", {"ABC@1"}},
      {"\xE9", "\xC9", "gi", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.pattern) + " on " + c.text);
    cRegExp re;
    re.Pattern = c.pattern;
    re.Global = std::string(c.options).find('g') != std::string::npos;
    re.IgnoreCase = std::string(c.options).find('i') != std::string::npos;
    EXPECT_EQ(Matches(re, c.text), c.expected);
  }
  // The compiled form follows changes of the pattern and options.
  cRegExp re;
  re.Global = true;
  re.Pattern = "b";
  EXPECT_EQ(Matches(re, "abB"), std::vector<std::string>{"b@1"});
  re.IgnoreCase = true;
  EXPECT_EQ(Matches(re, "abB"), (std::vector<std::string>{"b@1", "B@2"}));
  re.Pattern = "a";
  EXPECT_TRUE(re.Test("xa"));
  EXPECT_FALSE(re.Test("xy"));
}

TEST(RegExp, ReportsPatternsThatDoNotCompile) {
  const char* cases[] = {"(", R"(\d{3,2})", "[a"};
  for (const char* pattern : cases) {
    SCOPED_TRACE(pattern);
    cRegExp re;
    re.Pattern = pattern;
    cMatchCollection matches;
    matches.Add("stale", 0);
    std::string error;
    EXPECT_FALSE(re.Execute("abc", matches, error));
    EXPECT_EQ(error.rfind(std::string(kRegExpSyntaxError) + " (", 0), 0u)
        << error;
    EXPECT_EQ(matches.Count(), 0);
    EXPECT_EQ(matches.Item(0).value, "");
  }
}

TEST(RegExp, SharedCacheServesThreadsAtOnce) {
  // More distinct patterns than the cache holds, compiled and run from
  // several threads at once; every run must find "12345" at 2.
  std::vector<int> failures(4, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&failures, t] {
      for (int i = 0; i < 400; ++i) {
        cRegExp re;
        re.Pattern = R"(\d{4,6}|Q)" + std::to_string((i + t) % 300);
        cMatchCollection m;
        std::string error;
        if (!re.Execute("AB12345x9", m, error) || m.Count() != 1 ||
            m.Item(0).value != "12345" || m.Item(0).FirstIndex != 2) {
          ++failures[static_cast<size_t>(t)];
        }
      }
    });
  }
  for (std::thread& t : threads) t.join();
  EXPECT_EQ(failures, std::vector<int>(4, 0));
  EXPECT_LE(RegExpCacheSize(), 256u);
}

// The same enumeration done with std::regex (ECMAScript), which agrees
// with the engine on the expressions pattern specifications produce.
std::vector<std::string> Reference(const std::string& pattern,
                                   const std::string& text) {
  std::regex re(pattern, std::regex::ECMAScript);
  std::vector<std::string> out;
  size_t pos = 0;
  while (pos <= text.size()) {
    std::smatch m;
    auto flags = pos > 0 ? std::regex_constants::match_prev_avail
                         : std::regex_constants::match_default;
    auto from = text.begin() + static_cast<std::ptrdiff_t>(pos);
    if (!std::regex_search(from, text.end(), m, re, flags)) break;
    size_t begin = pos + static_cast<size_t>(m.position(0));
    size_t end = begin + static_cast<size_t>(m.length(0));
    out.push_back(text.substr(begin, end - begin) + "@" +
                  std::to_string(begin));
    pos = end == begin ? end + 1 : end;
  }
  return out;
}

TEST(RegExp, AgreesWithStdRegexOnSpecificationShapes) {
  std::mt19937 rng(20240607);
  auto pick = [&rng](size_t n) {
    return static_cast<size_t>(rng() % static_cast<uint32_t>(n));
  };
  const std::vector<std::string> atoms = {R"(\d)", "[A-Z]", "[a-z]", ".",
                                          "-",     "A",     "7",     R"(\.)",
                                          R"(\()", R"(\$)", R"(\?)", "/"};
  const std::string alphabet = "0123456789AZaz-./($? \n\xC9\xE9";
  for (int i = 0; i < 1500; ++i) {
    std::string pattern;
    size_t elements = 1 + pick(3);
    for (size_t e = 0; e < elements; ++e) {
      std::string expr;
      size_t items = 1 + pick(3);
      for (size_t k = 0; k < items; ++k) {
        expr += atoms[pick(atoms.size())];
        if (pick(4) == 0) {
          size_t lo = pick(3);
          expr += "{" + std::to_string(lo) + "," +
                  std::to_string(lo + pick(3)) + "}";
        }
      }
      pattern += pick(2) == 0 ? "(" + expr + "){0,1}" : expr;
    }
    for (int j = 0; j < 4; ++j) {
      std::string text;
      size_t length = pick(12);
      for (size_t k = 0; k < length; ++k)
        text += alphabet[pick(alphabet.size())];
      SCOPED_TRACE(pattern + " on " + text);
      cRegExp re;
      re.Pattern = pattern;
      re.Global = true;
      ASSERT_EQ(Matches(re, text), Reference(pattern, text));
    }
  }
}

}  // namespace
}  // namespace pelinor
