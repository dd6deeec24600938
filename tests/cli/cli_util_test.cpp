#include "cli/cli_util.h"

#include <gtest/gtest.h>

#include "cli_test_util.h"

namespace pelinor::cli {
namespace {

TEST(CliText, ConvertsBetweenUtf8AndWindows1252) {
  struct Case {
    const char* utf8;
    const char* cp1252;
  } cases[] = {
      {"plain", "plain"},
      {"d\xC3\xA9"
       "cembre",
       "d\xE9"
       "cembre"},  // é
      {"\xE2\x82\xAC"
       "5",
       "\x80"
       "5"},                       // euro sign
      {"M\xC3\xA4rz", "M\xE4rz"},  // ä
      {"\xC5\xB8", "\x9F"},        // Y with diaeresis
      {"\xC2\x81", "\x81"},        // undefined byte
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(FromUtf8(c.utf8), c.cp1252);
    EXPECT_EQ(ToUtf8(c.cp1252), c.utf8);
  }
  EXPECT_EQ(FromUtf8("\xE4\xB8\xAD"), "?");       // no Windows-1252 form
  EXPECT_EQ(FromUtf8("\xE9t\xE9"), "\xE9t\xE9");  // already single-byte
  EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80"), "?");
}

TEST(CliProgram, AnswersVersionAndRejectsUnknownVerbs) {
  auto version = testing::RunPelinor({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_FALSE(version.out.empty());
  auto bad = testing::RunPelinor({"no-such-verb"});
  EXPECT_NE(bad.status, 0);
  EXPECT_FALSE(bad.err.empty());
}

}  // namespace
}  // namespace pelinor::cli
