#include "pelinor/settings_snapshot.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>

#include "pelinor/char_mapper.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/file_system.h"
#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

std::string Registry(const std::string& locale, const std::string& dir) {
  return "Windows Registry Editor Version 5.00\r\n\r\n"
         "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\Default]\r\n"
         "\"HalvernLocale\"=\"" +
         locale + "\"\r\n\"ProfileDir\"=\"" + dir + "\"\r\n";
}

TEST(SettingsSnapshot, ResolvesTheProfileDirectoryBesideTheRegistry) {
  TempDir dir;
  ScopedEnv env("PELINOR_REGISTRY", dir.File("etc/registry.reg"));
  std::filesystem::create_directories(dir.File("etc"));
  struct Case {
    std::string stored;
    std::string resolved;
  } cases[] = {
      {"profiles", dir.File("etc/profiles")},
      {"../shared/profiles/", dir.File("etc/../shared/profiles/")},
      {"/opt/site/profiles", "/opt/site/profiles"},
      {"", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.stored);
    WriteFile(dir.File("etc/registry.reg"), Registry("US", c.stored));
    EXPECT_EQ(ServerProfileDir(), c.resolved);
    const auto snapshot = cSettingsSnapshot::Take();
    EXPECT_EQ(snapshot->ProfileDir(), c.resolved);
    EXPECT_EQ(snapshot->Locale("GB"), "US");
    const std::string map =
        c.resolved.empty() ? "" : JoinPath(c.resolved, "CharMap.txt");
    EXPECT_EQ(snapshot->CharMapPath(), map);
    EXPECT_EQ(CharMapPath(), map);
  }
}

// "X" read for "0" is not among the built-in mappings; only a loaded
// mapping file lets "1X2" pass as three digits.
TEST(SettingsSnapshot, EvaluatesWithTheMappingsItLoaded) {
  TempDir dir;
  ScopedEnv env("PELINOR_REGISTRY", dir.File("registry.reg"));
  WriteFile(dir.File("registry.reg"), Registry("GB", "maps"));
  std::filesystem::create_directories(dir.File("maps"));
  WriteFile(dir.File("maps/CharMap.txt"), "ver1.0\r\nX:0\r\n");
  const auto loaded = cSettingsSnapshot::Take();
  ASSERT_NE(loaded->CharMapper(), nullptr);
  EXPECT_EQ(loaded->CharMapError(), "");
  // The file goes away: the snapshot keeps what it read, per-call
  // evaluation sees the change.
  std::filesystem::remove(dir.File("maps/CharMap.txt"));
  std::filesystem::create_directories(dir.File("bad"));
  WriteFile(dir.File("bad/CharMap.txt"), "");
  const auto bad = cSettingsSnapshot::Make(std::nullopt, dir.File("bad"));
  const auto none = cSettingsSnapshot::Make(std::nullopt, "");
  struct Case {
    const char* how;
    const cSettingsSnapshot* snapshot;
    bool ok;
    const char* out;
    std::string err;
  } cases[] = {
      {"loaded", loaded.get(), true, "102", ""},
      {"per call", nullptr, false, "", kPatternValidationError},
      {"no directory", none.get(), false, "", kPatternValidationError},
      {"unreadable file", bad.get(), false, "",
       std::string(kCharMapReadError) + "Input past end of file"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.how);
    std::string text = "1X2", out, err;
    const bool ok = c.snapshot != nullptr
                        ? EvaluatePattern(text, "000", true, false, true, false,
                                          out, err, "", *c.snapshot)
                        : EvaluatePattern(text, "000", true, false, true, false,
                                          out, err, "");
    EXPECT_EQ(ok, c.ok);
    EXPECT_EQ(out, c.out);
    EXPECT_EQ(err, c.err);
    // The thread-wide scope gives the same answers to the per-call form.
    if (c.snapshot != nullptr) {
      const ScopedSettingsSnapshot scope(c.snapshot);
      text = "1X2";
      out.clear();
      EXPECT_EQ(ValidatePatternValue(text, "000", true, out, err), c.ok);
      EXPECT_EQ(out, c.out);
    }
  }
}

// Evaluations through a snapshot reuse one loaded engine per
// specification and thread; every answer must be the one a new engine
// gives, whatever ran on the cached engine before.
TEST(SettingsSnapshot, CachedEnginesAnswerAsNewOnes) {
  TempDir dir;
  ScopedEnv env("PELINOR_REGISTRY", dir.File("none.reg"));
  const auto snapshot = cSettingsSnapshot::Make(std::nullopt, "");
  struct Case {
    const char* spec;
    const char* text;
  } cases[] = {
      {"LL000000", "AB123456"}, {"LL000000", "AB 12345 6"},
      {"LL000000", "A8l23456"}, {"LL000000", "xx"},
      {"0000|LL0000", "1234"},  {"0000|LL0000", "AB12"},
      {"(((", "AB123456"},      {"\"INV-\"{0000??}", "INV-0O12"},
      {"00-00-00", "l2-34-S6"}, {"LL000000", "ZZ9999999"},
  };
  // Every flag combination, twice over, so that each cached engine runs
  // after others with other flags and texts.
  for (int round = 0; round < 2; ++round) {
    for (int flags = 0; flags < 16; ++flags) {
      const bool coerce = flags & 1, spaces = flags & 2, whole = flags & 4,
                 keep = flags & 8;
      for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.spec) + " " + c.text + " flags " +
                     std::to_string(flags));
        std::string text_a = c.text, out_a = "unset", err_a;
        const bool ok_a = EvaluatePattern(text_a, c.spec, coerce, spaces, whole,
                                          keep, out_a, err_a, "");
        std::string text_b = c.text, out_b = "unset", err_b;
        const bool ok_b = EvaluatePattern(text_b, c.spec, coerce, spaces, whole,
                                          keep, out_b, err_b, "", *snapshot);
        EXPECT_EQ(ok_b, ok_a);
        EXPECT_EQ(out_b, out_a);
        EXPECT_EQ(err_b, err_a);
        EXPECT_EQ(text_b, text_a);
      }
    }
  }
}

TEST(SettingsSnapshot, ScopeAnswersServerSettingsOnItsThreadOnly) {
  TempDir dir;
  ScopedEnv env("PELINOR_REGISTRY", dir.File("registry.reg"));
  WriteFile(dir.File("registry.reg"), Registry("US", "/p"));
  const auto jp = cSettingsSnapshot::Make(std::string("JP"), "/snap");
  const auto unset = cSettingsSnapshot::Make(std::nullopt, "");
  const cFormat format;
  struct Case {
    const cSettingsSnapshot* snapshot;
    const char* locale;
    const char* profile_dir;
    const char* date;  // "12 Oct 2003" formatted
  } cases[] = {
      {nullptr, "US", "/p", "10/12/2003"},
      {jp.get(), "JP", "/snap", "2003/10/12"},
      {unset.get(), "dflt", "dflt", "12/10/2003"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.locale);
    std::string out;
    if (c.snapshot != nullptr) {
      EXPECT_TRUE(format.FormatDate("12 Oct 2003", out, 100, *c.snapshot));
      EXPECT_EQ(out, c.date);
    }
    const ScopedSettingsSnapshot scope(c.snapshot);
    EXPECT_EQ(ReadServerSetting(kLocaleValue, "dflt"), c.locale);
    EXPECT_EQ(ReadServerSetting(kProfileDirValue, "dflt"), c.profile_dir);
    EXPECT_TRUE(format.FormatDate("12 Oct 2003", out, 100));
    EXPECT_EQ(out, c.date);
    // Another thread still reads the registry.
    std::string other;
    std::thread([&other] {
      other = ReadServerSetting(kLocaleValue, "dflt");
    }).join();
    EXPECT_EQ(other, "US");
  }
  // Scopes restore what was there before.
  {
    const ScopedSettingsSnapshot outer(jp.get());
    {
      const ScopedSettingsSnapshot inner(unset.get());
      EXPECT_EQ(cSettingsSnapshot::Current(), unset.get());
    }
    EXPECT_EQ(cSettingsSnapshot::Current(), jp.get());
  }
  EXPECT_EQ(cSettingsSnapshot::Current(), nullptr);
  EXPECT_EQ(ReadServerSetting(kLocaleValue, "dflt"), "US");
}

TEST(SettingsSnapshot, FormatLogIsOnAsItWasWhenTaken) {
  TempDir dir;
  const std::string log = dir.File("format.log");
  struct Case {
    bool on_when_taken;
    bool on_now;
  } cases[] = {{false, false}, {false, true}, {true, false}, {true, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.on_when_taken) + std::to_string(c.on_now));
    std::shared_ptr<const cSettingsSnapshot> snapshot;
    {
      ScopedEnv taken(kFormatLogVariable, c.on_when_taken ? log : "");
      snapshot = cSettingsSnapshot::Make(std::nullopt, "");
    }
    ScopedEnv now(kFormatLogVariable, c.on_now ? log : "");
    EXPECT_EQ(FormatLogWanted(), c.on_now);
    {
      const ScopedSettingsSnapshot scope(snapshot.get());
      EXPECT_EQ(FormatLogWanted(), c.on_when_taken);
      const cQuietFormatLog quiet;
      EXPECT_FALSE(FormatLogWanted());
    }
    EXPECT_EQ(FormatLogWanted(), c.on_now);
  }
}

}  // namespace
}  // namespace pelinor::testing
