#include "pelinor/evaluate_pattern.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pelinor/registry.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::ScopedEnv;
using testing::TempDir;
using testing::WriteFile;

// The messages of a log file, without their date and time stamps, joined
// by "|".
std::string LogMessages(const std::string& path) {
  std::string out;
  std::string text = ReadFile(path);
  for (size_t from = 0; from < text.size();) {
    size_t end = text.find("\r\n", from);
    if (end == std::string::npos) end = text.size();
    if (!out.empty()) out += "|";
    out += end - from >= 20 ? text.substr(from + 20, end - from - 20) : "?";
    from = end + 2;
  }
  return out;
}

// A machine-wide registry of its own, with "ProfileDir" set to `dir`
// unless it is null.
class ProfileDirSetting {
 public:
  ProfileDirSetting(const TempDir& dir, const char* profile_dir)
      : env_("PELINOR_REGISTRY", dir.File("machine.reg")) {
    if (profile_dir != nullptr) {
      cRegistry().RegSetStringValue(kHkeyLocalMachine, kServerKeyPath,
                                    kProfileDirValue, profile_dir);
    }
  }

 private:
  ScopedEnv env_;
};

TEST(EvaluatePattern, ReportsAndLogsEveryOutcome) {
  std::string ten = "ver1\r\n";  // "a" may be any digit
  for (char d = '0'; d <= '9'; ++d) ten += std::string("a:") + d + "\r\n";
  // The log is the "Evaluating text" line, the lines of `middle` (one per
  // "|"), and the output line or the error.
  struct Case {
    std::string spec, text;
    bool coerce;
    const char* charmap;  // null: no file
    std::string output;   // "-": the evaluation fails
    std::string error, middle;
  };
  const std::string kApply = "Applying regular expression '";
  const std::string kLL = kApply + "[A-Z][A-Z]\\d\\d\\d\\d\\d\\d[A-Z]'";
  const Case cases[] = {
      {"LL000000L", "AB12345GC", true, nullptr, "AB123456C", "", kLL},
      {"LL000000L", "AB12345GC", false, nullptr, "-", kPatternValidationError,
       kLL},
      {"A((B))", "AB", false, nullptr, "-", kPatternValidationError,
       "Illegal pattern specification|" + kApply + "'"},
      // A mapping file replaces the built-in table: "0" to "O" is gone.
      {"LL000000L", "0B123456C", true, "ver1\r\nG:6\r\n", "-",
       kPatternValidationError, kLL},
      {"0", "1", false, "AB\r\n", "-", kCharMapVersionError, ""},
      {"0000", "aaaa", true, ten.c_str(), "-", kTooManyVariationsError,
       kApply + "\\d\\d\\d\\d'"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.spec + " on " + c.text);
    TempDir dir;
    ProfileDirSetting setting(dir, dir.path().c_str());
    if (c.charmap != nullptr) WriteFile(dir.File("CharMap.txt"), c.charmap);
    // Without a log file the outcome is the same and nothing is written.
    for (const std::string& log : {dir.File("eval.log"), std::string()}) {
      std::string text = c.text;
      std::string output = "-";
      std::string error = "stale";
      EXPECT_EQ(EvaluatePattern(text, c.spec, c.coerce, false, true, false,
                                output, error, log),
                c.output != "-");
      EXPECT_EQ(output, c.output);
      EXPECT_EQ(error, c.error);
    }
    std::string expected = "Evaluating text '" + c.text +
                           "' against pattern spec '" + c.spec + "'" +
                           (c.coerce ? " Coertion:on|" : " Coertion:off|");
    if (!c.middle.empty()) expected += c.middle + "|";
    expected += c.output == "-" ? c.error : "Output value:'" + c.output + "'";
    EXPECT_EQ(LogMessages(dir.File("eval.log")), expected);
  }
}

TEST(EvaluatePattern, FindsTheMappingFileThroughProfileDir) {
  // The file found fails to load, which shows that it was read.
  TempDir dir;
  WriteFile(dir.File("CharMap.txt"), "AB");
  const std::string found = dir.path() + "/CharMap.txt";
  struct Case {
    const char* setting;  // null: no value
    std::string path;
  };
  const std::string values[] = {dir.path(), dir.path() + "/",
                                dir.path() + "\\"};
  const Case cases[] = {{nullptr, ""},
                        {"", ""},
                        {values[0].c_str(), found},
                        {values[1].c_str(), found},
                        {values[2].c_str(), found}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.setting == nullptr ? "no value" : c.setting);
    TempDir registry_dir;
    ProfileDirSetting setting(registry_dir, c.setting);
    EXPECT_EQ(CharMapPath(), c.path);
    std::string text = "1";
    std::string output;
    std::string error;
    EXPECT_EQ(EvaluatePattern(text, "0", false, false, true, false, output,
                              error, ""),
              c.path.empty());
    EXPECT_EQ(error, c.path.empty() ? "" : kCharMapVersionError);
  }
}

TEST(EvaluatePattern, SuppressedSpacesLeaveTheCallersText) {
  struct Case {
    std::string text;
    bool suppress;
    std::string after;
    bool ok;
  };
  const Case cases[] = {{"12 34", true, "1234", true},
                        {" 12\t34 ", true, "12\t34", false},
                        {"12 34", false, "12 34", false}};
  TempDir dir;
  ProfileDirSetting setting(dir, nullptr);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::string text = c.text;
    std::string output;
    std::string error;
    EXPECT_EQ(EvaluatePattern(text, "0000", false, c.suppress, true, false,
                              output, error, ""),
              c.ok);
    EXPECT_EQ(text, c.after);
  }
  std::string value;
  std::string error;
  EXPECT_TRUE(ValidatePatternValue("1O5I", "0000", true, value, error));
  EXPECT_EQ(value, "1051");
}

}  // namespace
}  // namespace pelinor
