// End-to-end tests of the "queue" verbs on the example queue.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli_test_util.h"
#include "pelinor/file_system.h"
#include "test_util.h"

namespace pelinor::testing {
namespace {

using Args = std::vector<std::string>;

const std::string kExamples =
    std::string(PELINOR_SOURCE_DIR) + "/examples/queue/";
const std::string kQueue = kExamples + "queue.txt";

std::vector<std::string> JsonDocIds(const std::string& out) {
  std::vector<std::string> ids;
  for (const auto& e : nlohmann::json::parse(out)) ids.push_back(e["DocId"]);
  return ids;
}

TEST(QueueCli, SelectsWhatEachWorkerTakesNext) {
  struct Case {
    Args steps;
    std::vector<std::string> expected;
  } cases[] = {
      {{"--for", "capture", "--for", "least-processed"},
       {"INV0007", "INV0003", "INV0005", "INV0008"}},
      {{"--for", "capture", "--for", "least-processed", "--limit", "1"},
       {"INV0007"}},
      {{"--for", "unpack"}, {"INV0002"}},
      {{"--for", "export"}, {"INV0001"}},
      {{"--for", "rejected:only"}, {"INV0004"}},
      {{"--for", "deferred"}, {"INV0006"}},
      {{"--for", "state:101"}, {"INV0006"}},
      {{"--for", "viewable"},
       {"INV0004", "INV0008", "INV0005", "INV0007", "INV0003"}},
      {{"--for", "most-processed", "--time", "modified"},
       {"INV0006", "INV0001", "INV0008", "INV0005", "INV0007", "INV0004",
        "INV0003", "INV0002"}},
      {{"--for", "viewable:2", "--for", "export"}, {}},
  };
  for (const Case& c : cases) {
    Args args = {"queue", "select", kQueue, "--json"};
    args.insert(args.end(), c.steps.begin(), c.steps.end());
    SCOPED_TRACE(c.steps[1]);
    CommandResult r = RunPelinor(args);
    ASSERT_EQ(r.status, 0) << r.err;
    EXPECT_EQ(JsonDocIds(r.out), c.expected);
  }
  // Options may come before the queue file.
  CommandResult table =
      RunPelinor({"queue", "select", "--for", "capture", "--for",
                  "least-processed", kQueue, "--limit", "2"});
  EXPECT_EQ(table.out,
            "#  DocId    State  Progress        Deposit  Unpacked  Rejected  "
            "Priority  Scanned              Modified\n"
            "1  INV0007  0      not identified  1        no        no        "
            "-1        2024-05-01 09:10:00  2024-05-01 09:10:00\n"
            "2  INV0003  0      not identified  1        no        no        "
            "-1        2024-05-02 16:20:00  2024-05-02 16:20:00\n");
}

TEST(QueueCli, WritesAndShowsStatusAndRejectFiles) {
  TempDir dir;
  const std::string status = dir.File("DOC1.status");
  CommandResult w = RunPelinor(
      {"queue", "entry", "write", status, "--set", "DocId=DOC1", "--set",
       "templateidtext=Caf\xC3\xA9 \"Bolt\"", "--set", "PELINOR_State=3",
       "--set", "Reject=yes", "--set", "TimeScanned=2024-05-02 09:15"});
  ASSERT_EQ(w.status, 0) << w.err;
  EXPECT_NE(ReadFile(status).find("\"Caf\xE9 \\QBolt\\Q\""), std::string::npos);

  CommandResult show = RunPelinor({"queue", "entry", "show", status, "--json"});
  ASSERT_EQ(show.status, 0) << show.err;
  const auto entry = nlohmann::json::parse(show.out);
  EXPECT_EQ(entry["DocId"], "DOC1");
  EXPECT_EQ(entry["TemplateIDText"], "Caf\xC3\xA9 \"Bolt\"");
  EXPECT_EQ(entry["PELINOR_State"], 3);
  EXPECT_EQ(entry["Reject"], true);
  EXPECT_EQ(entry["Priority"], -1);
  EXPECT_EQ(entry["dtTimeScanned"], "2024-05-02 09:15:00");

  const std::string queue = dir.File("queue.txt");
  ASSERT_EQ(RunPelinor({"queue", "build", queue, status}).status, 0);
  CommandResult find = RunPelinor({"queue", "find", queue, "doc1"});
  EXPECT_NE(find.out.find("Position: 1\n"), std::string::npos);
  EXPECT_NE(find.out.find("\nTemplateIDText: Caf\xC3\xA9 \"Bolt\"\n"),
            std::string::npos);

  const std::string reject = dir.File("DOC1.reject");
  ASSERT_EQ(RunPelinor({"queue", "reject", "write", reject,
                        "Tache \xC3\xA0 "
                        "revoir"})
                .status,
            0);
  EXPECT_EQ(ReadFile(reject), "ver0.946\r\nTache \xE0 revoir\r\n");
  CommandResult msg = RunPelinor({"queue", "reject", "show", reject});
  EXPECT_EQ(msg.out, "Tache \xC3\xA0 revoir\n");
}

TEST(QueueCli, ReportsErrors) {
  TempDir dir;
  const std::string missing = dir.File("none.txt");
  WriteFile(dir.File("bad.txt"), "\"ver0.946\"\r\nmany\r\n");
  struct Case {
    Args args;
    std::string err;
  } cases[] = {
      {{"queue", "show", missing},
       "pelinor: " + missing +
           ": Unable to open queue file: No such file or directory\n"},
      {{"queue", "show", dir.File("bad.txt")},
       "pelinor: " + dir.File("bad.txt") +
           ": Error reading queue file. Incorrect parameter\n"},
      {{"queue", "select", kQueue, "--for", "everything"},
       "pelinor: unknown selection \"everything\" (see --help)\n"},
      {{"queue", "select", kQueue, "--for", "rejected:most"},
       "pelinor: bad mode \"most\" in --for rejected:most\n"},
      {{"queue", "select", kQueue, "--for", "capture", "--time", "now"},
       "pelinor: --time takes scanned or modified, not \"now\"\n"},
      {{"queue", "find", kQueue, "INV9999"},
       "pelinor: no entry INV9999 in " + kQueue + "\n"},
      {{"queue", "entry", "write", dir.File("e"), "--set", "Slot=2"},
       "pelinor: Slot is not stored in a status file\n"},
      {{"queue", "entry", "write", dir.File("e"), "--set", "Colour=red"},
       "pelinor: unknown property \"Colour\"\n"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.err);
    CommandResult r = RunPelinor(c.args);
    EXPECT_NE(r.status, 0);
    EXPECT_EQ(r.err, c.err);
  }
  EXPECT_FALSE(FileExists(dir.File("e")));
}

}  // namespace
}  // namespace pelinor::testing
