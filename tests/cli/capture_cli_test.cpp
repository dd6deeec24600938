#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "capture/capture_corpus.h"
#include "cli_test_util.h"
#include "test_util.h"

extern char** environ;

namespace pelinor::testing {
namespace {

std::string Example(const std::string& name) {
  return std::string(PELINOR_SOURCE_DIR) + "/examples/" + name;
}

std::vector<std::string> Env(const TempDir& dir) {
  return {"PELINOR_REGISTRY=" + dir.File("none.reg")};
}

std::vector<std::string> Args(std::vector<std::string> extra) {
  std::vector<std::string> args = {
      "capture", "--profile", Example("profiles/Invoices.ini"), "--template",
      Example("templates/AcmeSupplies.tpl")};
  args.insert(args.end(), extra.begin(), extra.end());
  return args;
}

TEST(CaptureCli, CleansValidatesAndWritesEachDocument) {
  TempDir dir;
  WriteFile(dir.File("in.tag"), ReadFile(Example("documents/INV0003.tag")));
  // A missing output directory is created.
  CommandResult r = RunPelinor(
      Args({"--out-dir", dir.File("out"), dir.File("in.tag")}), Env(dir));
  EXPECT_FALSE(ReadFile(dir.File("out/in.tag")).empty()) << r.err;
  // An output "directory" that is a file: the write fails, the table shows.
  r = RunPelinor(Args({"--out-dir", dir.File("in.tag"), dir.File("in.tag")}),
                 Env(dir));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("cannot write"), std::string::npos);

  r = RunPelinor(Args({"--in-place", dir.File("in.tag")}), Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  struct Case {
    const char* shown;   // a row of the table
    const char* stored;  // the same value in the written tag file
  } cases[] = {
      {"InvoiceDate       3. M\xC3\xA4rz 2004  03/03/2004  repair  ok",
       "Field2Value:03/03/2004\r\n"},
      {"SupplierPostCode  M1 IAA        M1 1AA      repair  ok",
       "Field4Value:M1 1AA\r\nField4Status:0\r\nField4Message:\r\n"},
      {"TotalAmount       \xC2\xA3 96.0O       96.00       repair  ok",
       "Field3Value:96.00\r\n"},
      {"DueDate           1.2.03        01/02/2003  guess   ok",
       "Field6Value:01/02/2003\r\n"},
      {"VATNumber         GB12345678    GB12345678  -       FAIL: Value does "
       "not "
       "match the pattern GB000000000(000)",
       "Field5Status:2\r\nField5Message:Value does not match the pattern "
       "GB000000000(000)\r\n"},
      {"in.tag: status 2, 1 value is not valid: VATNumber",
       "DocStatus:2\r\nDocMessage:1 value is not valid: VATNumber\r\n"},
  };
  const std::string written = ReadFile(dir.File("in.tag"));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shown);
    EXPECT_NE(r.out.find(c.shown), std::string::npos) << r.out;
    EXPECT_NE(written.find(c.stored), std::string::npos) << written;
  }
}

TEST(CaptureCli, ReviewGuessSendsGuessesToBeChecked) {
  TempDir dir;
  WriteFile(dir.File("a.tag"), ReadFile(Example("documents/INV0001.tag")));
  WriteFile(dir.File("b.tag"), ReadFile(Example("documents/INV0003.tag")));
  CommandResult r = RunPelinor(Args({"--review", "guess", "--in-place",
                                     dir.File("a.tag"), dir.File("b.tag")}),
                               Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  struct Case {
    const char* file;
    const char* shown;   // in the table
    const char* stored;  // in the written tag file
  } cases[] = {
      {"a.tag",
       "a.tag: status 3, 2 values need checking: VATAmount, Line 3 "
       "Quantity",
       "DocStatus:3\r\nDocMessage:2 values need checking: VATAmount, Line 3 "
       "Quantity\r\n"},
      {"a.tag",
       "VATAmount           S5                       .55                      "
       "guess     Check: S read as 5 at position 1; no decimal point, last "
       "two digits taken as pence",
       "Field6Value:.55\r\nField6Status:3\r\nField6Message:Check: S read "
       "as 5 at position 1; no decimal point, last two digits taken as "
       "pence\r\n"},
      {"a.tag",
       "InvoiceDate         12 0CT 2003              12/10/2003               "
       "repair    ok",
       "Field2Value:12/10/2003\r\nField2Status:0\r\n"},
      {"a.tag", "",
       "Line3Status:3\r\nLine3Message:A value of the line needs "
       "checking\r\n"},
      // An invalid value wins over one to check.
      {"b.tag", "b.tag: status 2, 1 value is not valid: VATNumber",
       "DocStatus:2\r\nDocMessage:1 value is not valid: VATNumber\r\n"},
      {"b.tag",
       "DueDate           1.2.03        01/02/2003  guess   Check: 03 read as "
       "2003; day and month could be either way round: 01/02 taken in the "
       "locale's order; written as 01/02/2003",
       "Field6Value:01/02/2003\r\nField6Status:3\r\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.shown);
    EXPECT_NE(r.out.find(c.shown), std::string::npos) << r.out;
    const std::string written = ReadFile(dir.File(c.file));
    EXPECT_NE(written.find(c.stored), std::string::npos) << written;
  }
  // Capturing again changes nothing: values to check keep their status.
  const std::string before = ReadFile(dir.File("a.tag"));
  r = RunPelinor(Args({"--review", "guess", "--in-place", dir.File("a.tag")}),
                 Env(dir));
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(ReadFile(dir.File("a.tag")), before);
  // Only guesses can be reviewed.
  r = RunPelinor(Args({"--review", "repair", dir.File("a.tag")}), Env(dir));
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("--review takes guess, not \"repair\""),
            std::string::npos)
      << r.err;
}

TEST(CaptureCli, PrintsJsonAndReportsBadInput) {
  TempDir dir;
  WriteFile(dir.File("bad.tag"), "ve\r\n");
  CommandResult r = RunPelinor(
      Args({"--json", Example("documents/INV0002.tag"), dir.File("bad.tag")}),
      Env(dir));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("Invalid version number"), std::string::npos);
  const nlohmann::json j = nlohmann::json::parse(r.out);
  ASSERT_EQ(j.size(), 2u);
  EXPECT_EQ(j[0]["status"], 0);
  EXPECT_EQ(j[0]["values"][3]["value"], "EC1A 1BB");
  EXPECT_EQ(j[1]["error"], "Invalid version number");

  // Options that cannot go together are a usage error (2), found before
  // any file is read; a file that cannot be read is a failure (1).
  struct Case {
    std::vector<std::string> args;
    int status;
    const char* err;
  } cases[] = {
      {Args({"--in-place", "--out-dir", dir.path(), dir.File("bad.tag")}), 2,
       "--out-dir excludes --in-place"},
      {Args({"--json", "--json-lines", dir.File("bad.tag")}), 2,
       "--json-lines excludes --json"},
      {{"capture", "--profile", dir.File("none.ini"), "--template",
        Example("templates/AcmeSupplies.tpl"), dir.File("bad.tag")},
       1,
       "none.ini: cannot read: No such file or directory"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    r = RunPelinor(c.args, Env(dir));
    EXPECT_EQ(r.status, c.status);
    EXPECT_NE(r.err.find(c.err), std::string::npos) << r.err;
  }
}

// ---------------------------------------------------------------------------
// Batches
// ---------------------------------------------------------------------------

std::vector<std::string> SampleEnv() {
  // ProfileDir is "profiles", beside the registry file.
  return {"PELINOR_REGISTRY=" + Example("registry.reg")};
}

// Writes `count` generated documents into `dir`, in sub-folders of 100.
void WriteCorpus(const std::string& dir, uint32_t seed, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i) {
    std::ostringstream name;
    name << dir << "/part" << i / 100 << "/doc" << i << ".tag";
    std::filesystem::create_directories(
        std::filesystem::path(name.str()).parent_path());
    WriteFile(name.str(), CorpusDocument(seed, i));
  }
}

// The relative path and bytes of every "*.tag" file under `dir`, in order.
std::string TreeBytes(const std::string& dir) {
  std::vector<std::string> names;
  for (const auto& e : std::filesystem::recursive_directory_iterator(dir)) {
    if (e.path().extension() == ".tag") names.push_back(e.path().string());
  }
  std::sort(names.begin(), names.end());
  std::string all;
  for (const std::string& n : names) {
    all += n.substr(dir.size()) + "\n" + ReadFile(n) + "\n";
  }
  return all;
}

// Starts pelinor with `args`, standard input from `in` and output to
// files in `dir`; the caller waits for or kills the returned process.
pid_t Spawn(const std::vector<std::string>& args, const std::string& in,
            const TempDir& dir) {
  std::vector<std::string> text{PELINOR_CLI_PATH};
  text.insert(text.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& a : text) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
  const std::string out = dir.File("spawn.out"), err = dir.File("spawn.err");
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t pid = -1;
  if (posix_spawn(&pid, PELINOR_CLI_PATH, &actions, nullptr, argv.data(),
                  environ) != 0) {
    pid = -1;
  }
  posix_spawn_file_actions_destroy(&actions);
  return pid;
}

int Wait(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

TEST(CaptureCli, RecaptureChangesNoByte) {
  TempDir dir;
  std::filesystem::copy(Example("documents"), dir.File("docs"));
  WriteCorpus(dir.File("docs"), 21, 300);
  std::string first;
  for (const char* pass : {"first", "second", "recheck"}) {
    SCOPED_TRACE(pass);
    std::vector<std::string> extra = {"--in-place", dir.File("docs")};
    if (std::string(pass) == "recheck") extra.push_back("--recheck");
    const CommandResult r = RunPelinor(Args(extra), SampleEnv());
    EXPECT_EQ(r.status, 0) << r.err;
    const std::string bytes = TreeBytes(dir.File("docs"));
    if (first.empty()) {
      first = bytes;
      // Dates of the example invoices keep their order.
      EXPECT_NE(ReadFile(dir.File("docs/INV0001.tag"))
                    .find("Field2Value:12/10/2003\r\nField2Status:0\r\n"),
                std::string::npos);
    } else {
      EXPECT_TRUE(bytes == first) << "the documents changed";
    }
  }
}

TEST(CaptureCli, JobsGiveTheSameFilesAndOutput) {
  TempDir dir;
  WriteCorpus(dir.File("in"), 22, 240);
  std::vector<std::string> outputs;
  for (const char* jobs : {"1", "2", "3"}) {
    SCOPED_TRACE(jobs);
    const std::string out = dir.File(std::string("out") + jobs);
    const CommandResult r = RunPelinor(Args({"--jobs", jobs, "--json-lines",
                                             "--out-dir", out, dir.File("in")}),
                                       SampleEnv());
    EXPECT_EQ(r.status, 0) << r.err;
    // The same report but for the folder written to.
    std::string same = r.out;
    const std::string folder = "/out" + std::string(jobs) + "/";
    for (size_t at = same.find(folder); at != std::string::npos;
         at = same.find(folder, at)) {
      same.replace(at, folder.size(), "/outN/");
    }
    outputs.push_back(same);
    // One object per line, in input (name) order, lower-case keys.
    std::istringstream lines(r.out);
    std::string line, previous;
    size_t count = 0;
    while (std::getline(lines, line)) {
      const nlohmann::json j = nlohmann::json::parse(line);
      for (const char* key : {"file", "written", "status", "message"}) {
        EXPECT_TRUE(j.contains(key)) << key;
      }
      EXPECT_EQ(j["values"][0].size(), 8u);  // with changed, risk, steps
      EXPECT_LT(previous, j["file"].get<std::string>());
      previous = j["file"].get<std::string>();
      ++count;
    }
    EXPECT_EQ(count, 240u);
  }
  EXPECT_TRUE(outputs[0] == outputs[1]);
  EXPECT_TRUE(outputs[0] == outputs[2]);
  const std::string one = TreeBytes(dir.File("out1"));
  EXPECT_FALSE(one.empty());
  EXPECT_TRUE(TreeBytes(dir.File("out2")) == one);
  EXPECT_TRUE(TreeBytes(dir.File("out3")) == one);
}

// A batch killed half-way and run again ends where one uninterrupted run
// ends, byte for byte.
TEST(CaptureCli, KilledBatchRunAgainEndsAsOneRun) {
  TempDir dir;
  constexpr uint32_t kCount = 600;
  WriteCorpus(dir.File("whole"), 23, kCount);
  WriteCorpus(dir.File("killed"), 23, kCount);
  ScopedEnv env("PELINOR_REGISTRY", Example("registry.reg"));
  const CommandResult whole =
      RunPelinor(Args({"--in-place", "--jobs", "2", dir.File("whole")}));
  ASSERT_EQ(whole.status, 0) << whole.err;

  const pid_t pid = Spawn(
      Args({"--in-place", "--jobs", "2", "--json-lines", dir.File("killed")}),
      "/dev/null", dir);
  ASSERT_GT(pid, 0);
  // Kill as soon as the first document is written, well before the last.
  const std::string first = dir.File("killed/part0/doc0.tag");
  for (int i = 0; i < 20000 &&
                  ReadFile(first).find("DocStatus:1\r\n") != std::string::npos;
       ++i) {
    std::this_thread::sleep_for(std::chrono::microseconds(500));
  }
  ASSERT_EQ(kill(pid, SIGKILL), 0);
  EXPECT_EQ(Wait(pid), 128 + SIGKILL);
  const std::string killed = TreeBytes(dir.File("killed"));
  ASSERT_NE(killed, TreeBytes(dir.File("whole"))) << "the batch had finished";
  EXPECT_EQ(ReadFile(first).find("DocStatus:1\r\n"), std::string::npos)
      << "nothing had been written";

  const CommandResult again =
      RunPelinor(Args({"--in-place", "--jobs", "2", dir.File("killed")}));
  EXPECT_EQ(again.status, 0) << again.err;
  EXPECT_TRUE(TreeBytes(dir.File("killed")) == TreeBytes(dir.File("whole")));
}

TEST(CaptureCli, TakesInputsFromFoldersAndLists) {
  TempDir dir;
  WriteCorpus(dir.File("in"), 24, 5);
  WriteFile(dir.File("list"), dir.File("in/part0/doc3.tag") + "\n" +
                                  dir.File("in/part0/doc1.tag") + "\n");
  ScopedEnv env("PELINOR_REGISTRY", Example("registry.reg"));
  struct Case {
    std::vector<std::string> args;
    std::string in;  // standard input
    std::vector<std::string> files;
  } cases[] = {
      {{"--files-from", dir.File("list")},
       "/dev/null",
       {"in/part0/doc3.tag", "in/part0/doc1.tag"}},
      {{"--files-from", "-", dir.File("in/part0/doc4.tag")},
       dir.File("list"),
       {"in/part0/doc4.tag", "in/part0/doc3.tag", "in/part0/doc1.tag"}},
      {{dir.File("in")},
       "/dev/null",
       {"in/part0/doc0.tag", "in/part0/doc1.tag", "in/part0/doc2.tag",
        "in/part0/doc3.tag", "in/part0/doc4.tag"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.files.size());
    std::vector<std::string> args = c.args;
    args.push_back("--json-lines");
    const pid_t pid = Spawn(Args(args), c.in, dir);
    ASSERT_GT(pid, 0);
    EXPECT_EQ(Wait(pid), 0) << ReadFile(dir.File("spawn.err"));
    std::istringstream lines(ReadFile(dir.File("spawn.out")));
    std::vector<std::string> files;
    for (std::string line; std::getline(lines, line);) {
      files.push_back(
          nlohmann::json::parse(line)["file"].get<std::string>().substr(
              dir.path().size() + 1));
    }
    EXPECT_EQ(files, c.files);
  }
}

TEST(CaptureCli, RefusesBatchesItCannotWriteSafely) {
  TempDir dir;
  std::filesystem::create_directories(dir.File("a"));
  std::filesystem::create_directories(dir.File("b"));
  WriteFile(dir.File("a/x.tag"), CorpusDocument(25, 0));
  WriteFile(dir.File("b/x.tag"), CorpusDocument(25, 1));
  WriteFile(dir.File("b/y.tag"), CorpusDocument(25, 2));
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string err;
  } cases[] = {
      {Args({"--out-dir", dir.File("out"), dir.File("b"), dir.File("a")}), 1,
       "pelinor: " + dir.File("b/x.tag") + " and " + dir.File("a/x.tag") +
           " would both be written to " + dir.File("out/x.tag") + "\n"},
      {Args({"--out-dir", dir.File("out"), dir.File("none")}), 1,
       "pelinor: " + dir.File("none") + ": no such file or directory\n"},
      {Args({"--out-dir", dir.File("out"), dir.File("empty")}), 1,
       dir.File("empty") + ": no such file or directory\n"},
  };
  std::filesystem::create_directories(dir.File("empty"));
  cases[2].err = "pelinor: no documents to capture\n";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    const CommandResult r = RunPelinor(c.args, SampleEnv());
    EXPECT_EQ(r.status, c.status);
    EXPECT_EQ(r.err, c.err);
    EXPECT_EQ(r.out, "");
    // Nothing was written, not even the output folder.
    EXPECT_FALSE(std::filesystem::exists(dir.File("out")));
  }
}

TEST(CaptureCli, FailOnInvalidSetsTheExitStatus) {
  struct Case {
    const char* doc;
    bool fail_on_invalid;
    int status;
  } cases[] = {
      {"documents/INV0002.tag", true, 0},   // every value valid
      {"documents/INV0003.tag", false, 0},  // invalid values are reported
      {"documents/INV0003.tag", true, 1},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.doc) + (c.fail_on_invalid ? " fail" : ""));
    std::vector<std::string> extra = {"--json-lines", Example(c.doc)};
    if (c.fail_on_invalid) extra.push_back("--fail-on-invalid");
    const CommandResult r = RunPelinor(Args(extra), SampleEnv());
    EXPECT_EQ(r.status, c.status) << r.err;
    EXPECT_EQ(r.err, "");
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1);
  }
}

TEST(DocumentCli, ShowsAndUpgradesTagFiles) {
  TempDir dir;
  const std::vector<std::string> resolve = {
      "--profile", Example("profiles/Invoices.ini"), "--template",
      Example("templates/AcmeSupplies.tpl")};
  std::vector<std::string> args = {"document", "upgrade",
                                   Example("documents/INV0002.tag"),
                                   dir.File("new.tag")};
  args.insert(args.end(), resolve.begin(), resolve.end());
  CommandResult r = RunPelinor(args, Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "Wrote " + dir.File("new.tag") +
                       " (ver0.946, read from version 0.917)\n");
  const std::string upgraded = ReadFile(dir.File("new.tag"));
  const char* expected[] = {
      "ver0.946\r\n",
      "Field2DataLocation:1\r\nField2DataType:101\r\n",  // template type
      "Field3DataLocation:-6\r\nField3DataType:4\r\n",
      "Field1Name:SupplierId\r\nField1Value:NWND02\r\n",
      ("LLAnchorCount:0\r\nDocEndMarksCount:0\r\nLineCount:0\r\n"
       "ColumnCount:0\r\n"),
  };
  for (const char* e : expected) {
    EXPECT_NE(upgraded.find(e), std::string::npos) << e;
  }

  r = RunPelinor({"document", "show", "--json", dir.File("new.tag")}, Env(dir));
  ASSERT_EQ(r.status, 0) << r.err;
  const nlohmann::json j = nlohmann::json::parse(r.out);
  EXPECT_EQ(j["Fields"][1]["DataType"], 101);  // frozen by the upgrade
  EXPECT_EQ(j["PseudoFields"][0]["value"], "NWND02");

  r = RunPelinor({"document", "show", dir.File("missing.tag")}, Env(dir));
  EXPECT_NE(r.status, 0);
  EXPECT_NE(r.err.find("missing.tag: cannot read: No such file or directory"),
            std::string::npos)
      << r.err;
}

}  // namespace
}  // namespace pelinor::testing
