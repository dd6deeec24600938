#include "pelinor/registry.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "core/reg_file_store.h"
#include "pelinor/file_system.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::ScopedEnv;
using testing::TempDir;
using testing::WriteFile;

const std::string kHeader = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string kTestKey = "[HKEY_LOCAL_MACHINE\\Software\\Test]\r\n";

// Points both stores at files in a fresh directory for one test.
class Stores {
 public:
  Stores()
      : machine_env_("PELINOR_REGISTRY", dir_.File("machine.reg")),
        user_env_("PELINOR_USER_REGISTRY", dir_.File("user.reg")) {}

  std::string machine() const { return dir_.File("machine.reg"); }
  std::string user() const { return dir_.File("user.reg"); }
  const TempDir& dir() const { return dir_; }

 private:
  TempDir dir_;
  ScopedEnv machine_env_;
  ScopedEnv user_env_;
};

// `count` copies of the hex item `item`, comma-separated.
std::string HexItems(size_t count, const std::string& item) {
  std::string out;
  for (size_t i = 0; i < count; ++i) out += (i ? "," : "") + item;
  return out;
}

// The UTF-16LE form, with byte-order mark, of single-byte text; 0x80
// stands for U+20AC.
std::string Utf16(const std::string& text) {
  std::string out = "\xFF\xFE";
  for (char c : text) {
    const unsigned unit = c == '\x80' ? 0x20AC : static_cast<unsigned char>(c);
    out += static_cast<char>(unit & 0xFF);
    out += static_cast<char>(unit >> 8);
  }
  return out;
}

TEST(Registry, ReadsThroughTheBuffer) {
  struct Case {
    const char* name;
    std::string line, path, expected;
  } cases[] = {
      {"text", "\"v\"=\"GB\"", "Software\\Test", "GB"},
      {"missing value", "\"w\"=\"GB\"", "Software\\Test", "dflt"},
      {"missing key", "\"v\"=\"GB\"", "Software\\Other", "dflt"},
      {"key with only subkeys", "\"v\"=\"GB\"", "Software", "dflt"},
      {"key and name in other case", "\"V\"=\"up\"", "SOFTWARE\\test", "up"},
      {"empty text is one NUL", "\"v\"=\"\"", "Software\\Test", ""},
      {"size 0", "\"v\"=hex(1):", "Software\\Test", "dflt"},
      {"no terminator", "\"v\"=hex(1):47,42", "Software\\Test", "GB"},
      {"one NUL dropped", "\"v\"=hex(1):47,42,00,00", "Software\\Test",
       std::string("GB\0", 3)},
      {"type unchecked", "\"v\"=dword:00004241", "Software\\Test",
       std::string("AB\0", 3)},
      {"escapes", R"("v"="C:\\Dir\\\"q\"")", "Software\\Test",
       "C:\\Dir\\\"q\""},
      {"1023 characters + NUL", "\"v\"=\"" + std::string(1023, 'x') + "\"",
       "Software\\Test", std::string(1023, 'x')},
      {"1024 bytes", "\"v\"=hex(1):" + HexItems(1024, "78"), "Software\\Test",
       std::string(1024, 'x')},
      {"1025 bytes", "\"v\"=hex(1):" + HexItems(1025, "78"), "Software\\Test",
       "dflt"},
      {"2000 characters", "\"v\"=\"" + std::string(2000, 'x') + "\"",
       "Software\\Test", "dflt"},
  };
  Stores stores;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WriteFile(stores.machine(), kHeader + kTestKey + c.line + "\r\n");
    EXPECT_EQ(
        cRegistry().RegGetStringValue(kHkeyLocalMachine, c.path, "v", "dflt"),
        c.expected);
    EXPECT_EQ(RegReadString(kHkeyLocalMachine, c.path, "v", "dflt"),
              c.expected);
  }
}

TEST(Registry, SavedValuesReadBack) {
  struct Case {
    const char* name;
    std::string value, machine_read, user_read;
  } cases[] = {
      {"text", "US", "US", "US"},
      {"empty", "", "", ""},
      {"quotes and backslashes", "a\\b\"c", "a\\b\"c", "a\\b\"c"},
      {"line ends", "two\r\nlines", "two\r\nlines", "two\r\nlines"},
      {"Windows-1252", "caf\xE9 \x80", "caf\xE9 \x80", "caf\xE9 \x80"},
      {"NUL inside", std::string("a\0b", 3), std::string("a\0b", 3),
       std::string("a\0b", 3)},
      {"1023 characters", std::string(1023, 'x'), std::string(1023, 'x'),
       std::string(1023, 'x')},
      {"1024 characters", std::string(1024, 'x'), "dflt",
       std::string(1024, 'x')},
  };
  Stores stores;
  const cRegistry reg;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(
        reg.RegSaveValue(kHkeyLocalMachine, "App", "Sec", "Name", c.value), 0);
    EXPECT_EQ(reg.RegGetValue(kHkeyLocalMachine, "App", "Sec", "Name", "dflt"),
              c.machine_read);
    EXPECT_EQ(reg.RegSaveValue(kHkeyCurrentUser, "App", "Sec", "Name", c.value),
              0);
    EXPECT_EQ(reg.RegGetValue(kHkeyCurrentUser, "App", "Sec", "Name", "dflt"),
              c.user_read);
  }
}

TEST(Registry, WritesGoldenFile) {
  Stores stores;
  const cRegistry reg;
  const std::string server = "Pelinor Server";
  EXPECT_EQ(reg.RegSaveValue(kHkeyLocalMachine, server, "Default",
                             "HalvernLocale", "US"),
            0);
  reg.RegSaveValue(kHkeyLocalMachine, server, "Default", "ProfileDir",
                   "C:\\Profiles \"main\"");
  reg.RegSaveValue(kHkeyLocalMachine, server, "Default", "Empty", "");
  reg.RegSaveValue(kHkeyLocalMachine, server, "Default", "Lines", "a\r\nb");
  reg.RegSetStringValue(kHkeyLocalMachine, "Software\\Halvern", "Version", "1");
  reg.RegSaveValue(kHkeyLocalMachine, server, "Default", "HalvernLocale", "GB");
  reg.RegSaveValue(kHkeyLocalMachine, server, "Default", "Long",
                   std::string(30, 'z') + "\n");
  const std::string golden =
      kHeader +
      "[HKEY_LOCAL_MACHINE\\Software\\Halvern]\r\n"
      "\"Version\"=\"1\"\r\n"
      "\r\n"
      "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\Default]\r\n"
      "\"HalvernLocale\"=\"GB\"\r\n"
      "\"ProfileDir\"=\"C:\\\\Profiles \\\"main\\\"\"\r\n"
      "\"Empty\"=\"\"\r\n"
      "\"Lines\"=hex(1):61,0d,0a,62,00\r\n"
      "\"Long\"=hex(1):" +
      HexItems(21, "7a") + ",\\\r\n  " + HexItems(9, "7a") + ",0a,00\r\n\r\n";
  EXPECT_EQ(ReadFile(stores.machine()), golden);

  // Rewriting what was read changes nothing.
  reg.RegSaveValue(kHkeyLocalMachine, server, "Default", "HalvernLocale", "GB");
  EXPECT_EQ(ReadFile(stores.machine()), golden);

  // Nor does it change the sample installation's file, comments included.
  const std::string example =
      ReadFile(std::string(PELINOR_SOURCE_DIR) + "/examples/registry.reg");
  WriteFile(stores.machine(), example);
  EXPECT_EQ(reg.RegSaveValue(kHkeyLocalMachine, server, "Default",
                             "HalvernLocale", "GB"),
            0);
  EXPECT_EQ(ReadFile(stores.machine()), example);
}

TEST(Registry, ReadsWindowsExports) {
  const std::string exported =
      kHeader +
      "; exported\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Halvern\\Pelinor Server\\Default]\r\n"
      "\"HalvernLocale\"=\"US\"\r\n"
      "\"ProfileDir\"=\"D:\\\\Pelinor\\\\Profiles\"\r\n"
      "@=\"default text\"\r\n"
      "\"Quote\" = \"say \\\"hi\\\"\"\r\n"
      "\"Flags\"=dword:0000002A\r\n"
      "\"Wrapped\"=hex(1):41,42,43,\\\r\n"
      "  44,45,00\r\n"
      "\"Gone\"=\"x\"\r\n"
      "\"Gone\"=-\r\n"
      "\"Caf\xE9\"=\"\xE9\"\r\n"
      "\"Euro\"=\"\x80\"\r\n"
      "\r\n"
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Old]\r\n"
      "\"a\"=\"b\"\r\n"
      "\r\n"
      "[-HKEY_LOCAL_MACHINE\\SOFTWARE\\Old]\r\n";
  std::string lf_only;
  for (char c : exported) {
    if (c != '\r') lf_only += c;
  }
  struct Encoding {
    const char* name;
    std::string bytes, euro;
  } encodings[] = {
      {"UTF-16LE, CR LF", Utf16(exported), "\x80"},
      {"Windows-1252, LF", lf_only, "\x80"},
      {"UTF-8 byte-order mark", "\xEF\xBB\xBF" + exported, "\x80"},
  };
  const std::string server = "Software\\Halvern\\Pelinor Server\\Default";
  struct Case {
    std::string path, name, expected;
  } cases[] = {
      {server, "HalvernLocale", "US"},
      {server, "ProfileDir", "D:\\Pelinor\\Profiles"},
      {server, "", "default text"},
      {server, "Quote", "say \"hi\""},
      {server, "Flags", std::string("*\0\0", 3)},
      {server, "Wrapped", "ABCDE"},
      {server, "Gone", "dflt"},
      {server, "CAF\xC9", "\xE9"},
      {"Software\\Old", "a", "dflt"},
  };
  Stores stores;
  for (const Encoding& e : encodings) {
    SCOPED_TRACE(e.name);
    WriteFile(stores.machine(), e.bytes);
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
      EXPECT_EQ(RegReadString(kHkeyLocalMachine, c.path, c.name, "dflt"),
                c.expected);
    }
    EXPECT_EQ(ReadServerSetting("Euro", "dflt"), e.euro);
  }
}

TEST(Registry, SeesFilesChangedByOtherWriters) {
  Stores stores;
  cRegistry reg;
  const std::string path = "Software\\Test";
  // Rewritten in place (same file, same size) and then replaced by another
  // file: each change is read, however readings are kept between calls.
  const char* values[] = {"one", "two", "six"};
  for (const char* value : values) {
    SCOPED_TRACE(value);
    WriteFile(stores.machine(),
              kHeader + kTestKey + "\"V\"=\"" + value + "\"\r\n");
    EXPECT_EQ(reg.RegGetStringValue(kHkeyLocalMachine, path, "V", "-"), value);
  }
  WriteFile(stores.machine() + ".new",
            kHeader + kTestKey + "\"V\"=\"ten\"\r\n");
  ASSERT_EQ(std::rename((stores.machine() + ".new").c_str(),
                        stores.machine().c_str()),
            0);
  EXPECT_EQ(reg.RegGetStringValue(kHkeyLocalMachine, path, "V", "-"), "ten");
  std::remove(stores.machine().c_str());
  EXPECT_EQ(reg.RegGetStringValue(kHkeyLocalMachine, path, "V", "-"), "-");
}

TEST(Registry, SkipsMalformedLines) {
  struct Case {
    const char* name;
    std::string contents, expected;
  } cases[] = {
      {"empty file", "", "dflt"},
      {"byte-order mark only", "\xFF\xFE", "dflt"},
      {"no header", kTestKey + "\"ok\"=\"yes\"", "yes"},
      {"unclosed quote", kTestKey + "\"bad\"=\"open\r\n\"ok\"=\"yes\"", "yes"},
      {"text after quote", kTestKey + "\"bad\"=\"a\" b\r\n\"ok\"=\"yes\"",
       "yes"},
      {"bad hex", kTestKey + "\"bad\"=hex:zz,01\r\n\"ok\"=\"yes\"", "yes"},
      {"long dword", kTestKey + "\"bad\"=dword:123456789\r\n\"ok\"=\"yes\"",
       "yes"},
      {"bad type", kTestKey + "\"bad\"=hex(1:00\r\n\"ok\"=\"yes\"", "yes"},
      {"no name", kTestKey + "=x\r\ngarbage\r\n\"ok\"=\"yes\"", "yes"},
      {"continuation at end", kTestKey + "\"ok\"=\"yes\"\r\n\"bad\"=hex:01,\\",
       "yes"},
      {"unclosed header", "[HKEY_LOCAL_MACHINE\\Software\\Test\r\n\"ok\"=\"y\"",
       "dflt"},
      {"empty path component",
       "[HKEY_LOCAL_MACHINE\\\\Software\\Test]\r\n\"ok\"=\"y\"", "dflt"},
      {"empty deletion", kTestKey + "\"ok\"=\"yes\"\r\n[-]\r\n", "yes"},
      {"value before any key", "\"ok\"=\"yes\"\r\n", "dflt"},
      {"odd UTF-16 length", Utf16(kTestKey + "\"ok\"=\"yes\"\r\n") + "\x41",
       "yes"},
      {"binary junk",
       std::string("\0\xFF[\x01\n\"\\\r\r\n", 10) + kTestKey +
           "\"ok\"=\"yes\"\r\n",
       "yes"},
  };
  Stores stores;
  const cRegistry reg;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WriteFile(stores.machine(), c.contents);
    EXPECT_EQ(reg.RegGetStringValue(kHkeyLocalMachine, "Software\\Test", "ok",
                                    "dflt"),
              c.expected);
    // Writing into a registry export keeps what could be read; a file
    // without the header line is not the store's to replace.
    if (!registry_internal::IsRegistryText(c.contents)) {
      EXPECT_EQ(reg.RegSetStringValue(kHkeyLocalMachine, "Software\\Test",
                                      "new", "v"),
                -1);
      EXPECT_EQ(ReadFile(stores.machine()), c.contents);
      continue;
    }
    EXPECT_EQ(
        reg.RegSetStringValue(kHkeyLocalMachine, "Software\\Test", "new", "v"),
        0);
    EXPECT_EQ(reg.RegGetStringValue(kHkeyLocalMachine, "Software\\Test", "ok",
                                    "dflt"),
              c.expected);
    EXPECT_EQ(reg.RegGetStringValue(kHkeyLocalMachine, "Software\\Test", "new",
                                    "dflt"),
              "v");
  }
}

TEST(Registry, DeletesKeys) {
  const std::string contents = kHeader +
                               "[HKEY_LOCAL_MACHINE\\Software\\App\\Sec]\r\n"
                               "\"a\"=\"1\"\r\n\r\n"
                               "[HKEY_LOCAL_MACHINE\\Software\\App\\P\\C]\r\n"
                               "\"b\"=\"2\"\r\n\r\n";
  struct Case {
    const char* name;
    std::string parent, subkey;
    int32_t expected;
    std::string a_after;
  } cases[] = {
      {"deleted", "Software\\App", "sec", 0, "dflt"},
      {"missing parent", "Software\\Missing", "Sec", 0, "1"},
      {"missing subkey", "Software\\App", "Nope", 2, "1"},
      {"subkey with subkeys", "Software", "App", 5, "1"},
      {"root", "", "", 5, "1"},
  };
  Stores stores;
  const cRegistry reg;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WriteFile(stores.machine(), contents);
    EXPECT_EQ(reg.RegDeleteKeySetting(kHkeyLocalMachine, c.parent, c.subkey),
              c.expected);
    EXPECT_EQ(
        RegReadString(kHkeyLocalMachine, "Software\\App\\Sec", "a", "dflt"),
        c.a_after);
    EXPECT_EQ(
        RegReadString(kHkeyLocalMachine, "Software\\App\\P\\C", "b", "dflt"),
        "2");
  }
  // The missing parent neither created the store nor the key.
  DeleteFileQuietly(stores.machine());
  EXPECT_EQ(reg.RegDelete(kHkeyLocalMachine, "App", "Sec"), 0);
  EXPECT_FALSE(FileExists(stores.machine()));
}

TEST(Registry, DeletesValues) {
  const std::string with_values =
      kHeader +
      "[HKEY_CURRENT_USER\\Software\\K]\r\n\"v\"=\"1\"\r\n"
      "\"w\"=\"2\"\r\n\r\n";
  struct Case {
    const char* name;
    std::string before, path;
    bool expected;
    std::string after;
  } cases[] = {
      {"missing key is created", "", "Software\\New", false,
       kHeader + "[HKEY_CURRENT_USER\\Software\\New]\r\n\r\n"},
      {"deleted", with_values, "Software\\K", true,
       kHeader + "[HKEY_CURRENT_USER\\Software\\K]\r\n\"w\"=\"2\"\r\n\r\n"},
      {"missing value", kHeader + "[HKEY_CURRENT_USER\\Software\\K]\r\n\r\n",
       "Software\\K", false,
       kHeader + "[HKEY_CURRENT_USER\\Software\\K]\r\n\r\n"},
  };
  Stores stores;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    WriteFile(stores.user(), c.before);
    EXPECT_EQ(cRegistry().RegDeleteStringValue(c.path, "v"), c.expected);
    EXPECT_EQ(ReadFile(stores.user()), c.after);
  }

  // Deleting one value never creates a key.
  struct ValueCase {
    const char* name;
    std::string path;
    int32_t expected;
    std::string after;
  } value_cases[] = {
      {"deleted", "Software\\K", 0,
       kHeader + "[HKEY_CURRENT_USER\\Software\\K]\r\n\"w\"=\"2\"\r\n\r\n"},
      {"missing key", "Software\\New", 2, with_values},
  };
  for (const ValueCase& c : value_cases) {
    SCOPED_TRACE(c.name);
    WriteFile(stores.user(), with_values);
    EXPECT_EQ(RegDeleteValueSetting(kHkeyCurrentUser, c.path, "v"), c.expected);
    EXPECT_EQ(ReadFile(stores.user()), c.after);
  }
}

TEST(Registry, KeepsPerUserSettings) {
  Stores stores;
  const cRegistry reg;
  EXPECT_EQ(
      reg.RegSaveValue(kHkeyCurrentUser, "My App", "Options", "Colour", "Blue"),
      0);
  EXPECT_EQ(ReadFile(stores.user()),
            kHeader +
                "[HKEY_CURRENT_USER\\Software\\VB and VBA Program "
                "Settings\\My App\\Options]\r\n\"Colour\"=\"Blue\"\r\n\r\n");
  EXPECT_FALSE(FileExists(stores.machine()));

  struct Case {
    const char* name;
    int32_t hive;
    std::string application, section, expected;
  } reads[] = {
      {"current user", kHkeyCurrentUser, "My App", "Options", "Blue"},
      {"any other hive", kHkeyUsers, "my app", "OPTIONS", "Blue"},
      {"missing section", kHkeyCurrentUser, "My App", "Other", "dflt"},
      {"empty section", kHkeyCurrentUser, "My App", "", "dflt"},
  };
  for (const Case& c : reads) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(
        reg.RegGetValue(c.hive, c.application, c.section, "Colour", "dflt"),
        c.expected);
  }

  EXPECT_EQ(reg.RegSaveValue(kHkeyCurrentUser, "", "Options", "K", "v"), -1);
  struct DeleteCase {
    const char* name;
    std::string application, section;
    int32_t expected;
  } deletes[] = {
      {"empty section", "My App", "", 5},
      {"existing section", "My App", "Options", 0},
      {"deleted section", "My App", "Options", 5},
      {"missing application", "Other", "Options", 5},
  };
  for (const DeleteCase& c : deletes) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(reg.RegDelete(kHkeyCurrentUser, c.application, c.section),
              c.expected);
  }
  EXPECT_EQ(
      reg.RegGetValue(kHkeyCurrentUser, "My App", "Options", "Colour", "dflt"),
      "dflt");
}

TEST(Registry, FindsTheUserStore) {
  TempDir dir;
  struct Case {
    const char* name;
    std::string user, xdg, home, file;
  } cases[] = {
      {"named", dir.File("named.reg"), dir.File("xdg"), dir.File("home"),
       dir.File("named.reg")},
      {"XDG_CONFIG_HOME", "", dir.File("xdg"), dir.File("home"),
       dir.File("xdg/pelinor/registry.reg")},
      {"relative XDG_CONFIG_HOME", "", "xdg", dir.File("home"),
       dir.File("home/.config/pelinor/registry.reg")},
      {"HOME", "", "", dir.File("home2"),
       dir.File("home2/.config/pelinor/registry.reg")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ScopedEnv user("PELINOR_USER_REGISTRY", c.user);
    ScopedEnv xdg("XDG_CONFIG_HOME", c.xdg);
    ScopedEnv home("HOME", c.home);
    DeleteFileQuietly(c.file);
    EXPECT_EQ(cRegistry().RegSaveValue(kHkeyCurrentUser, "A", "S", "K", "V"),
              0);
    EXPECT_NE(ReadFile(c.file).find("\"K\"=\"V\""), std::string::npos);
  }
}

TEST(Registry, ReportsStoresThatCannotBeWritten) {
  TempDir dir;
  WriteFile(dir.File("file"), "x");
  std::filesystem::create_directory(dir.File("directory"));
  const cRegistry reg;
  struct Case {
    const char* name;
    std::string store, value_name;
    int32_t expected;
  } cases[] = {
      {"directory under a file", dir.File("file/registry.reg"), "v", -1},
      {"store is a directory", dir.File("directory"), "v", -1},
      {"line end in the name", dir.File("ok.reg"), "a\nb", -10},
      {"written", dir.File("ok.reg"), "v", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ScopedEnv machine("PELINOR_REGISTRY", c.store);
    ScopedEnv user("PELINOR_USER_REGISTRY", c.store);
    for (int32_t hive : {kHkeyLocalMachine, kHkeyCurrentUser}) {
      EXPECT_EQ(reg.RegSetStringValue(hive, "Software\\T", c.value_name, "x"),
                c.expected);
    }
  }
  EXPECT_EQ(ReadFile(dir.File("file")), "x");
}

// A store file that is not a registry export is someone else's file: a
// write never replaces it.
TEST(Registry, LeavesFilesThatAreNotRegistryExportsAlone) {
  struct Case {
    const char* name;
    std::string bytes;
    bool is_registry;
  } cases[] = {
      {"settings file", "ver0.946\r\n[Main]\r\nDisplayName:x\r\n", false},
      {"binary", std::string("MZ\0\x90\0\x03", 6), false},
      {"export", kHeader + kTestKey + "\"v\"=\"x\"\r\n", true},
      {"old export", "REGEDIT4\r\n", true},
      {"blank lines first", "\r\n\r\n" + kHeader, true},
      {"UTF-8 byte-order mark", "\xEF\xBB\xBF" + kHeader, true},
      {"UTF-16 export", Utf16(kHeader), true},
      {"UTF-16 with NUL",
       Utf16("Windows Registry Editor Version 5.00") + std::string("\0\0", 2),
       false},
      {"empty", "", true},
  };
  const cRegistry reg;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Stores stores;
    WriteFile(stores.machine(), c.bytes);
    EXPECT_EQ(registry_internal::IsRegistryText(c.bytes), c.is_registry);
    EXPECT_EQ(registry_internal::InspectStoreFile(stores.machine()),
              c.is_registry ? registry_internal::StoreFileState::kReady
                            : registry_internal::StoreFileState::kForeign);
    const int32_t status =
        reg.RegSetStringValue(kHkeyLocalMachine, "Software\\T", "v", "x");
    if (c.is_registry) {
      EXPECT_EQ(status, 0);
    } else {
      EXPECT_EQ(status, -1);
      EXPECT_EQ(ReadFile(stores.machine()), c.bytes);
    }
  }
  TempDir dir;
  EXPECT_EQ(registry_internal::InspectStoreFile(dir.File("none.reg")),
            registry_internal::StoreFileState::kMissing);
  int error = 0;
  EXPECT_EQ(registry_internal::InspectStoreFile(dir.path(), &error),
            registry_internal::StoreFileState::kUnreadable);
  EXPECT_EQ(error, EISDIR);
}

TEST(Registry, ConcurrentWritersKeepEveryValue) {
  Stores stores;
  constexpr int kValues = 40;
  const auto write_all = [](const std::string& prefix) {
    int failures = 0;
    for (int i = 0; i < kValues; ++i) {
      failures +=
          cRegistry().RegSaveValue(kHkeyLocalMachine, "App", "Sec",
                                   prefix + std::to_string(i), "x") != 0;
    }
    return failures;
  };
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) _exit(write_all("child"));
  EXPECT_EQ(write_all("parent"), 0);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(
      RegValueNames(kHkeyLocalMachine, "Software\\Halvern\\App\\Sec").size(),
      2u * kValues);
}

TEST(Registry, ReadsTheSampleServerSettings) {
  ScopedEnv machine("PELINOR_REGISTRY",
                    std::string(PELINOR_SOURCE_DIR) + "/examples/registry.reg");
  struct Case {
    std::string name, expected;
  } cases[] = {
      {"HalvernLocale", "GB"},
      {"profiledir", "profiles"},
      {"Missing", "dflt"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(ReadServerSetting(c.name, "dflt"), c.expected);
  }
  EXPECT_EQ(RegValueNames(kHkeyLocalMachine, kServerKeyPath),
            (std::vector<std::string>{"HalvernLocale", "ProfileDir"}));
}

}  // namespace
}  // namespace pelinor
