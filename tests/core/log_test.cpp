#include "pelinor/log.h"

#include <gtest/gtest.h>

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
  // "yyyy-mm-dd hh:mm:ss " is 20 characters: digits, with "-", " " and ":"
  // at fixed places.
  auto stamped = [](std::string_view line) {
    if (line.size() < 20) return false;
    for (size_t i = 0; i < 20; ++i) {
      char want = i == 4 || i == 7 ? '-' : i == 13 || i == 16 ? ':' : ' ';
      bool digit = line[i] >= '0' && line[i] <= '9';
      if (i == 10 || i == 19 || i == 4 || i == 7 || i == 13 || i == 16) {
        if (line[i] != want) return false;
      } else if (!digit) {
        return false;
      }
    }
    return true;
  };
  size_t split = text.find("\r\n");
  ASSERT_NE(split, std::string::npos);
  std::string first = text.substr(0, split);
  std::string second = text.substr(split + 2);
  EXPECT_TRUE(stamped(first)) << first;
  EXPECT_EQ(first.substr(20), "first");
  EXPECT_TRUE(stamped(second)) << second;
  EXPECT_EQ(second.substr(20), "second line\r\n");
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
