#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

const char kProfile[] =
    "ver0.946\r\n"
    "[Main]\r\n"
    "TemplateDir:templates\r\n"
    "Version:0.946\r\n"
    "Pages:2.5\r\n"
    "[Caf\xE9]\r\n"
    "Nom:cr\xE8me\r\n"
    "[States]\r\n"
    "STATE100:Scanned:Held after scanning\r\n"
    "STATE3:Awaiting check\r\n"
    "STATEX:skipped\r\n"
    "[HoldReasons]\r\n"
    "Supplier unknown\r\n"
    "\r\n"
    "  PO missing\r\n";

struct Case {
  std::vector<std::string> args;  // after "settings"; "FILE" is replaced
  int status;
  std::string out, err;
};

void RunCases(const std::vector<Case>& cases, const std::string& file) {
  for (const Case& c : cases) {
    std::vector<std::string> args = {"settings"};
    for (const std::string& a : c.args) args.push_back(a == "FILE" ? file : a);
    std::string trace;
    for (const std::string& a : args) trace += a + " ";
    SCOPED_TRACE(trace);
    const CommandResult r = RunPelinor(args);
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
  }
}

TEST(SettingsCli, PrintsValuesLinesAndStates) {
  TempDir dir;
  const std::string file = dir.File("profile.ini");
  WriteFile(file, kProfile);
  const std::string missing = dir.File("none.ini");
  RunCases(
      {
          {{"get", "FILE", "main", "templatedir"}, 0, "templates\n", ""},
          {{"get", "FILE", "Main", "Absent", "--default", "x y"},
           0,
           "x y\n",
           ""},
          {{"get", "FILE", "Main", "Pages", "--type", "long"}, 0, "2\n", ""},
          {{"get", "FILE", "Main", "Version", "--type", "single"},
           0,
           "0.946\n",
           ""},
          {{"get", "FILE", "Main", "TemplateDir", "--type", "double",
            "--default", "-1.5"},
           0,
           "-1.5\n",
           ""},
          {{"get", "FILE", "Café", "Nom"}, 0, "crème\n", ""},
          {{"get", "FILE", "Main", "Pages", "--type", "long", "--default",
            "abc"},
           2,
           "",
           "pelinor: --default is not a long number: abc\n"},
          {{"get", missing, "Main", "TemplateDir"},
           1,
           "",
           "pelinor: " + missing +
               ": cannot read: No such file or directory\n"},
          {{"section", "FILE", "HoldReasons"},
           0,
           "Supplier unknown\n  PO missing\n",
           ""},
          {{"section", "FILE", "Nope"},
           1,
           "",
           "pelinor: Section not found: Nope\n"},
          {{"states", "FILE"},
           0,
           "Number  Description     On-hold message\n"
           "100     Scanned         Held after scanning\n"
           "3       Awaiting check  Awaiting check\n",
           ""},
          {{"states", missing},
           1,
           "",
           "pelinor: " + missing +
               ": cannot read: No such file or directory\n"},
      },
      file);
}

TEST(SettingsCli, PrintsJson) {
  TempDir dir;
  const std::string file = dir.File("profile.ini");
  WriteFile(file, kProfile);
  struct JsonCase {
    std::vector<std::string> args;
    nlohmann::json expected;
  } cases[] = {
      {{"get", file, "Main", "Version", "--type", "single", "--json"},
       {{"file", file},
        {"section", "Main"},
        {"key", "Version"},
        {"type", "single"},
        {"value", 0.946}}},
      {{"get", file, "Café", "Nom", "--json"},
       {{"file", file},
        {"section", "Café"},
        {"key", "Nom"},
        {"type", "string"},
        {"value", "crème"}}},
      {{"section", file, "Main", "--json"},
       {{"file", file},
        {"section", "Main"},
        {"lines", {"TemplateDir:templates", "Version:0.946", "Pages:2.5"}},
        {"reached_end", false}}},
      {{"section", file, "HoldReasons", "--json"},
       {{"file", file},
        {"section", "HoldReasons"},
        {"lines", {"Supplier unknown", "  PO missing"}},
        {"reached_end", true}}},
      {{"states", file, "--json"},
       {{"file", file},
        {"states",
         {{{"number", "100"},
           {"description", "Scanned"},
           {"on_hold_message", "Held after scanning"}},
          {{"number", "3"},
           {"description", "Awaiting check"},
           {"on_hold_message", "Awaiting check"}}}},
        {"reached_end", false}}},
  };
  for (const JsonCase& c : cases) {
    SCOPED_TRACE(c.args[0] + " " + c.args[2]);
    std::vector<std::string> args = {"settings"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const CommandResult r = RunPelinor(args);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(nlohmann::json::parse(r.out), c.expected);
  }
}

}  // namespace
}  // namespace pelinor::testing
