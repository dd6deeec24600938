#include "cli/cli_util.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>

#include "cli_test_util.h"
#include "pelinor/text_file.h"
#include "test_util.h"

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
  EXPECT_EQ(FromUtf8("\xE9t\xE9"), "\xE9t\xE9");  // already single-byte
}

TEST(CliText, RefusesCharactersWithoutAWindows1252Form) {
  struct Case {
    const char* utf8;
    const char* message;  // empty: converts
    const char* shown;    // PathText()
  } cases[] = {
      {"\xE4\xB8\xAD",
       "\"\xE4\xB8\xAD\" (U+4E2D) in \"\xE4\xB8\xAD\" cannot be "
       "written in Windows-1252",
       "?"},
      {"a\xF0\x9F\x98\x80",
       "\"\xF0\x9F\x98\x80\" (U+1F600) in \"a\xF0\x9F\x98\x80\" "
       "cannot be written in Windows-1252",
       "a?"},
      {"\xE2\x82\xAC", "", "\x80"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.utf8);
    EXPECT_EQ(PathText(c.utf8), c.shown);
    if (*c.message == '\0') {
      EXPECT_EQ(FromUtf8(c.utf8), c.shown);
      continue;
    }
    try {
      FromUtf8(c.utf8);
      ADD_FAILURE() << "no EncodingError";
    } catch (const EncodingError& e) {
      EXPECT_STREQ(e.what(), c.message);
    }
  }
}

TEST(CliText, WrapsHelpUnderItsDescriptionColumn) {
  struct Case {
    const char* text;
    size_t width;
    const char* wrapped;
  } cases[] = {
      {"short line", 20, "short line"},
      {"one two three four five", 10, "one two\nthree four\nfive"},
      {"  -x,--ex   does this and that thing", 24,
       "  -x,--ex   does this\n            and that\n            thing"},
      {"averyveryverylongword end", 10, "averyveryverylongword\nend"},
      {"a\n\nb", 5, "a\n\nb"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(WrapText(c.text, c.width), c.wrapped);
  }
}

TEST(CliText, SuggestsTheNearestName) {
  const std::vector<std::string> verbs = {"format", "validate", "pattern",
                                          "queue", "settings"};
  struct Case {
    const char* typed;
    const char* nearest;
  } cases[] = {
      {"formt", "format"}, {"fromat", "format"}, {"valdate", "validate"},
      {"qeue", "queue"},   {"zzz", ""},          {"settings", "settings"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.typed);
    EXPECT_EQ(NearestName(c.typed, verbs), c.nearest);
  }
}

TEST(CliProgram, AnswersVersionAndRejectsUnknownVerbs) {
  auto version = testing::RunPelinor({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_FALSE(version.out.empty());
  auto bad = testing::RunPelinor({"no-such-verb"});
  EXPECT_NE(bad.status, 0);
  EXPECT_FALSE(bad.err.empty());
}

TEST(CliFiles, TellConfigurationFromOtherFiles) {
  testing::TempDir dir;
  std::filesystem::create_directory(dir.File("dir"));
  testing::WriteFile(dir.File("empty"), "");
  testing::WriteFile(dir.File("blank"), " \r\n\r\n");
  testing::WriteFile(dir.File("binary"), std::string("[A]\r\n\0\x01", 7));
  testing::WriteFile(dir.File("plain"), "text\r\n");
  testing::WriteFile(dir.File("sectioned"), "\r\n[Main]\r\nA:1\r\n");
  testing::WriteFile(dir.File("versioned"), "ver0.946\r\n[Main]\r\n");
  testing::WriteFile(dir.File("verx"), "verx\r\n[Main]\r\n");
  struct Case {
    const char* file;
    ConfigForm form;
    bool ok;
  } cases[] = {
      {"dir", ConfigForm::kSectioned, false},
      {"none", ConfigForm::kSectioned, false},
      {"empty", ConfigForm::kSectioned, false},
      {"blank", ConfigForm::kVersioned, false},
      {"binary", ConfigForm::kSectioned, false},
      {"plain", ConfigForm::kSectioned, false},
      {"plain", ConfigForm::kVersioned, false},
      {"sectioned", ConfigForm::kSectioned, true},
      {"sectioned", ConfigForm::kVersioned, false},
      {"versioned", ConfigForm::kVersioned, true},
      {"versioned", ConfigForm::kSectioned, true},
      {"verx", ConfigForm::kVersioned, false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    SetExitStatus(0);
    EXPECT_EQ(CheckConfigurationFile(dir.File(c.file), c.form), c.ok);
    EXPECT_EQ(ExitStatus(), c.ok ? 0 : 1);
  }
  SetExitStatus(0);
  EXPECT_EQ(FileErrorText("/x/d.tag", "cannot write", ENOSPC),
            "/x/d.tag: cannot write: No space left on device");
  EXPECT_EQ(FileErrorText("/x/d.tag", "Cannot create file /x/d.tag", 0),
            "Cannot create file /x/d.tag");
}

// A program ended by a signal in the middle of a write leaves neither a
// temporary file nor a half-written target, and still dies of that signal.
TEST(CliSignals, RemoveTemporaryFilesOfWritesInFlight) {
  for (int sig : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) {
    SCOPED_TRACE(sig);
    testing::TempDir dir;
    const std::string target = dir.File("out.txt");
    testing::WriteFile(target, "old\r\n");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      InstallSignalHandlers();
      TextWriter first, second;
      first.Create(target);
      second.Create(dir.File("other.txt"));
      first.WriteLine(std::string(1 << 17, 'x'));  // flushed to the file
      raise(sig);
      _exit(0);  // not reached
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), sig);
    EXPECT_EQ(testing::FileNames(dir.path()),
              std::vector<std::string>{"out.txt"});
    EXPECT_EQ(testing::ReadFile(target), "old\r\n");
  }
}

}  // namespace
}  // namespace pelinor::cli
