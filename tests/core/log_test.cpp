#include "pelinor/log.h"

#include <gtest/gtest.h>

#include <regex>

#include "pelinor/file_system.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::ScopedEnv;
using testing::TempDir;

TEST(Log, AppendsStampedCrLfLines) {
  TempDir dir;
  std::string path = dir.File("log.txt");
  AppendLogLine(path, "first");
  AppendLogLine(path, "second line");
  std::string text = ReadFile(path);
  std::regex line(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d first\r\n)"
                  R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d second line\r\n)");
  EXPECT_TRUE(std::regex_match(text, line)) << text;
}

TEST(Log, NeverFailsItsCaller) {
  TempDir dir;
  AppendLogLine("", "nothing");
  AppendLogLine(dir.File("missing/dir/log.txt"), "lost");
  AppendLogLine(dir.path(), "a directory");
  EXPECT_FALSE(FileExists(dir.File("missing")));
}

TEST(Log, FormatLogFollowsTheEnvironment) {
  TempDir dir;
  std::string path = dir.File("format.log");
  {
    ScopedEnv env(kFormatLogVariable, "");
    LogFormatLine("dropped");
    EXPECT_EQ(FormatLogPath(), "");
  }
  {
    ScopedEnv env(kFormatLogVariable, path);
    LogFormatLine("FormatAmount:12,50");
  }
  std::string text = ReadFile(path);
  ASSERT_EQ(text.size(), 20u + 18u + 2u);
  EXPECT_EQ(text.substr(20), "FormatAmount:12,50\r\n");
}

}  // namespace
}  // namespace pelinor
