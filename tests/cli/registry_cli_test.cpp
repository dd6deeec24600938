#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

struct Step {
  std::vector<std::string> args;
  int status;
  std::string out, err;
};

void RunSteps(const std::vector<Step>& steps,
              const std::vector<std::string>& env) {
  for (const Step& s : steps) {
    std::string trace;
    for (const std::string& a : s.args) trace += a + " ";
    SCOPED_TRACE(trace);
    const CommandResult r = RunPelinor(s.args, env);
    EXPECT_EQ(r.status, s.status);
    EXPECT_EQ(r.out, s.out);
    EXPECT_EQ(r.err, s.err);
  }
}

TEST(RegistryCli, SetsGetsListsAndDeletes) {
  TempDir dir;
  const std::vector<std::string> env = {
      "PELINOR_REGISTRY=" + dir.File("machine.reg"),
      "PELINOR_USER_REGISTRY=" + dir.File("user.reg")};
  const std::string server = "Pelinor Server";
  RunSteps(
      {
          {{"registry", "set", "HKLM", server, "Default", "HalvernLocale",
            "US"},
           0,
           "",
           ""},
          {{"registry", "get", "HKLM", server, "Default", "HalvernLocale"},
           0,
           "US\n",
           ""},
          {{"registry", "get", "hkey_local_machine", "pelinor server",
            "default", "halvernlocale"},
           0,
           "US\n",
           ""},
          {{"registry", "get", "HKLM", server, "Default", "Missing",
            "--default", "GB"},
           0,
           "GB\n",
           ""},
          {{"registry", "set", "HKCU", "App", "Sec", "Colour", "Gr\xC3\xBCn"},
           0,
           "",
           ""},
          {{"registry", "get", "HKCU", "App", "Sec", "Colour", "--json"},
           0,
           "{\n  \"application\": \"App\",\n  \"hive\": "
           "\"HKEY_CURRENT_USER\",\n  \"key\": \"Colour\",\n  \"section\": "
           "\"Sec\",\n  \"value\": \"Gr\xC3\xBCn\"\n}\n",
           ""},
          {{"registry", "list"}, 0, "HalvernLocale=US\n", ""},
          {{"registry", "list", "HKCU", "App", "Sec", "--json"},
           0,
           "[\n  {\n    \"name\": \"Colour\",\n    \"value\": "
           "\"Gr\xC3\xBCn\"\n  }\n]\n",
           ""},
          {{"registry", "delete-value", "HKLM", server, "Default",
            "HalvernLocale"},
           0,
           "",
           ""},
          {{"registry", "delete-value", "HKLM", server, "Default",
            "HalvernLocale"},
           1,
           "",
           "pelinor: no value HalvernLocale in "
           "HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\Default\n"},
          {{"registry", "delete", "HKCU", "App", "Sec"}, 0, "", ""},
          {{"registry", "delete", "HKCU", "App", "Sec"},
           1,
           "",
           "pelinor: cannot delete HKEY_CURRENT_USER\\Software\\VB and VBA "
           "Program Settings\\App\\Sec (status 5)\n"},
          {{"registry", "get", "HKXX", "a", "b", "c"},
           2,
           "",
           "pelinor: unknown hive \"HKXX\": use HKLM or HKCU\n"},
      },
      env);
  EXPECT_EQ(ReadFile(dir.File("machine.reg")),
            "Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\Default]"
            "\r\n\r\n");
}

TEST(RegistryCli, StoreOptionsOverrideTheEnvironment) {
  TempDir dir;
  WriteFile(dir.File("file"), "");
  const std::vector<std::string> env = {
      "PELINOR_REGISTRY=" + dir.File("unused.reg"),
      "PELINOR_USER_REGISTRY=" + dir.File("unused.reg")};
  const std::string example =
      std::string(PELINOR_SOURCE_DIR) + "/examples/registry.reg";
  RunSteps(
      {
          {{"registry", "--registry", example, "get", "HKLM", "Pelinor Server",
            "Default", "ProfileDir"},
           0,
           "profiles\n",
           ""},
          {{"registry", "--user-registry", dir.File("user.reg"), "set", "HKCU",
            "A", "S", "K", "V"},
           0,
           "",
           ""},
          {{"registry", "get", "HKCU", "A", "S", "K", "--user-registry",
            dir.File("user.reg")},
           0,
           "V\n",
           ""},
          {{"registry", "--registry", dir.File("file/registry.reg"), "set",
            "HKLM", "A", "S", "K", "V"},
           1,
           "",
           "pelinor: " + dir.File("file/registry.reg") +
               ": cannot read registry file: Not a directory\n"},
      },
      env);
  EXPECT_FALSE(std::ifstream(dir.File("unused.reg")).good());
}

}  // namespace
}  // namespace pelinor::testing
