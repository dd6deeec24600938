#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::RunPelinor;
using testing::TempDir;
using testing::WriteFile;

// A registry in `dir` whose ProfileDir is the sample installation's
// examples/profiles, so that its CharMap.txt replaces the built-in table.
std::string SampleRegistry(const TempDir& dir) {
  WriteFile(dir.File("sample.reg"),
            "Windows Registry Editor Version 5.00\r\n\r\n"
            "[HKEY_LOCAL_MACHINE\\Software\\Halvern\\Pelinor Server\\"
            "Default]\r\n\"ProfileDir\"=\"" PELINOR_SOURCE_DIR
            "/examples/profiles\"\r\n");
  return "PELINOR_REGISTRY=" + dir.File("sample.reg");
}

// A registry without ProfileDir: coercion uses the built-in table.
std::string EmptyRegistry(const TempDir& dir) {
  WriteFile(dir.File("empty.reg"), "Windows Registry Editor Version 5.00\r\n");
  return "PELINOR_REGISTRY=" + dir.File("empty.reg");
}

TEST(PatternCli, PrintsTheValueChosenForEachText) {
  struct Case {
    std::vector<std::string> args;
    bool sample;  // in the sample installation, whose CharMap.txt is used
    std::string out, err;
  };
  const Case cases[] = {
      {{"--spec", "LL000000L", "--coerce", "AB12345GC", "0B123456C"},
       false,
       "AB123456C\nOB123456C\n",
       ""},
      {{"--spec", "LL000000L", "--coerce", "AB12345GC", "0B123456C"},
       true,
       "AB123456C\nOB123456C\n",
       ""},
      {{"--spec", "0000", "--coerce", "1O5I"}, true, "1051\n", ""},
      // The sample file also reads "D" as a possible "0"; the built-in
      // table does not.
      {{"--spec", "0000", "--coerce", "1D5I"}, true, "1051\n", ""},
      {{"--spec", "0000", "--coerce", "1D5I"},
       false,
       "",
       "pelinor: 1D5I: Pattern validation failed.\n"},
      {{"--spec", "0000", "AB12", "12 34", "1O5I"},
       false,
       "1234\n",
       "pelinor: AB12: Pattern validation failed.\n"
       "pelinor: 1O5I: Pattern validation failed.\n"},
      {{"--spec", "0000", "--keep-spaces", "12 34"},
       false,
       "",
       "pelinor: 12 34: Pattern validation failed.\n"},
      {{"--spec", "000", "--sub-pattern", "--keep-surrounding", "--coerce",
        "No. 1O5 \xC3\xA9t\xC3\xA9"},
       false,
       "No.105\xC3\xA9t\xC3\xA9\n",
       ""},
      {{"--spec", "A((B))", "--show-regex"},
       false,
       "",
       "pelinor: invalid pattern specification \"A((B))\": "
       "Nested group in pattern specification\n"},
      {{"--spec", "LL\"-\"0|x", "--show-regex", "AB-1x"},
       false,
       "RegExpFormat: ([A-Z][A-Z]-\\d){0,1}(x){0,1}\n"
       "Element 1 (optional): LL\"-\"0 => [A-Z][A-Z]-\\d\n"
       "Element 2 (optional): x => x\nAB-1x\n",
       ""}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args[1] + " " + c.args.back());
    TempDir dir;
    std::vector<std::string> args = {"pattern"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    testing::CommandResult r =
        RunPelinor(args, {c.sample ? SampleRegistry(dir) : EmptyRegistry(dir)});
    EXPECT_EQ(r.out, c.out);
    EXPECT_EQ(r.err, c.err);
    // A bad specification is a usage error; a text that fails is not.
    const bool bad_spec =
        c.err.find("invalid pattern specification") != std::string::npos;
    EXPECT_EQ(r.status, c.err.empty() ? 0 : bad_spec ? 2 : 1);
  }
}

TEST(PatternCli, JsonShowsCandidatesAndErrors) {
  TempDir dir;
  testing::CommandResult r =
      RunPelinor({"pattern", "--spec", "0000", "--coerce", "--json", "--log",
                  dir.File("eval.log"), "1O5I", "ABCD"},
                 {EmptyRegistry(dir)});
  EXPECT_EQ(r.status, 1);
  nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["regex"], "\\d\\d\\d\\d");
  EXPECT_EQ(j["elements"].size(), 1u);
  ASSERT_EQ(j["results"].size(), 2u);
  const nlohmann::json& good = j["results"][0];
  EXPECT_EQ(good["success"], true);
  EXPECT_EQ(good["value"], "1051");
  EXPECT_EQ(good["variations"], 2);
  // Objects of library classes carry the classes' property names.
  EXPECT_EQ(good["candidates"][1]["Variation"], "1051");
  EXPECT_EQ(good["candidates"][1]["Matches"][0]["FirstIndex"], 0);
  EXPECT_EQ(good["candidates"][1]["Matches"][0]["Length"], 4);
  EXPECT_EQ(j["elements"][0]["Expression"], "\\d\\d\\d\\d");
  const nlohmann::json& bad = j["results"][1];
  EXPECT_EQ(bad["success"], false);
  EXPECT_EQ(bad["error"], "Pattern validation failed.");
  const std::string log = ReadFile(dir.File("eval.log"));
  EXPECT_NE(log.find("Output value:'1051'\r\n"), std::string::npos) << log;
}

}  // namespace
}  // namespace pelinor
