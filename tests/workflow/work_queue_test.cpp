// The work queue end to end: scan-in of generated batches, capture by
// workers (two real processes at once), export; claims that survive a
// killed worker; rejection; re-runs that change nothing.

#include "pelinor/work_queue.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "batch_fixture.h"
#include "gtest/gtest.h"
#include "pelinor/document_data.h"
#include "pelinor/queue.h"
#include "pelinor/text_file.h"
#include "test_util.h"

extern char** environ;

namespace pelinor::testing {
namespace {

using json = nlohmann::json;

void AddEndMark(cTemplate& tpl) {
  auto mark = tpl.CreateDocEndMark();
  mark->Name = "End of invoice";
}

// Writes the batch as one multi-page TSV page file.
std::string WriteBatch(const TempDir& dir, const std::string& name,
                       const std::vector<GenInvoice>& invoices) {
  const std::string file = dir.File(name);
  WriteFile(file, GenBatch(invoices).WriteTsv());
  return file;
}

// Starts pelinor with `args`, standard output into `out_file`.
pid_t Spawn(const std::vector<std::string>& args, const std::string& out_file,
            const std::string& registry) {
  std::vector<std::string> all = {PELINOR_CLI_PATH};
  all.insert(all.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& a : all) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::vector<std::string> env_s = {
      "PELINOR_REGISTRY=" + registry,
      "PELINOR_USER_REGISTRY=" + registry + ".user", "PATH=/usr/bin:/bin"};
  std::vector<char*> envp;
  for (auto& e : env_s) envp.push_back(e.data());
  envp.push_back(nullptr);
  posix_spawn_file_actions_t fa;
  posix_spawn_file_actions_init(&fa);
  posix_spawn_file_actions_addopen(&fa, 1, out_file.c_str(),
                                   O_WRONLY | O_CREAT | O_TRUNC, 0644);
  pid_t pid = -1;
  posix_spawn(&pid, all[0].c_str(), &fa, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&fa);
  return pid;
}

int Wait(pid_t pid) {
  int st = 0;
  waitpid(pid, &st, 0);
  return WIFEXITED(st) ? WEXITSTATUS(st) : -1;
}

int RunToEnd(const std::vector<std::string>& args, const std::string& out,
             const std::string& registry) {
  return Wait(Spawn(args, out, registry));
}

TEST(WorkQueue, TwoWorkerProcessesCaptureEveryDocumentOnceAndExportIt) {
  TempDir dir;
  const std::string profile = WriteGenInstallation(dir.path(), AddEndMark);
  const std::string reg = dir.File("registry.reg");
  std::vector<GenInvoice> invoices = GenInvoices(64, 7);
  for (size_t i = 0; i < invoices.size(); ++i) {
    invoices[i].end_mark = true;
    // Some long invoices continue on a second page.
    if (i % 9 == 4) {
      invoices[i].rows_per_page = 2;
      while (invoices[i].rows.size() < 4) {
        invoices[i].rows.push_back(invoices[i].rows.front());
      }
      // Keep the printed total the sum of the rows.
      int64_t pence = 0;
      for (const auto& r : invoices[i].rows) {
        const size_t dot = r.clean_amount.find('.');
        pence += std::stoll(r.clean_amount.substr(0, dot)) * 100 +
                 std::stoll(r.clean_amount.substr(dot + 1));
      }
      char buf[32];
      std::snprintf(buf, sizeof buf, "%lld.%02lld",
                    static_cast<long long>(pence / 100),
                    static_cast<long long>(pence % 100));
      invoices[i].clean_total = buf;
      invoices[i].total = buf;
    }
    // Some totals cannot be read: those documents wait for a person.
    if (i % 10 == 3) invoices[i].total = "??";
  }
  const std::string batch = WriteBatch(dir, "batch.tsv", invoices);

  ASSERT_EQ(RunToEnd({"scan-in", "--profile", profile, "--json", batch},
                     dir.File("scan.json"), reg),
            0)
      << ReadFile(dir.File("scan.json"));
  const json scan = json::parse(ReadFile(dir.File("scan.json")));
  ASSERT_EQ(scan["queued"], static_cast<int>(invoices.size()));

  const pid_t a = Spawn({"work", "capture", "--profile", profile, "--json"},
                        dir.File("a.json"), reg);
  const pid_t b =
      Spawn({"work", "capture", "--profile", profile, "--json", "--jobs", "2"},
            dir.File("b.json"), reg);
  ASSERT_EQ(Wait(a), 0);
  ASSERT_EQ(Wait(b), 0);
  std::map<std::string, int> captured;
  for (const char* f : {"a.json", "b.json"}) {
    const json w = json::parse(ReadFile(dir.File(f)));
    for (const auto& d : w["documents"]) {
      ++captured[d["doc_id"].get<std::string>()];
    }
  }
  ASSERT_EQ(captured.size(), invoices.size());
  for (const auto& [id, n] : captured) {
    SCOPED_TRACE(id);
    EXPECT_EQ(n, 1);
  }

  ASSERT_EQ(RunToEnd({"export", "--profile", profile, "--format", "json",
                      dir.File("export.json")},
                     dir.File("export.out"), reg),
            0);
  const json exported = json::parse(ReadFile(dir.File("export.json")));
  std::map<std::string, json> by_number;
  for (const auto& d : exported) {
    const std::string number = d["fields"]["InvoiceNumber"];
    EXPECT_EQ(by_number.count(number), 0u) << number << " exported twice";
    by_number[number] = d;
  }
  size_t expected = 0;
  for (const GenInvoice& inv : invoices) {
    SCOPED_TRACE(inv.number);
    if (inv.total == "??") {
      EXPECT_EQ(by_number.count(inv.number), 0u);
      continue;
    }
    ++expected;
    ASSERT_EQ(by_number.count(inv.number), 1u);
    const json& d = by_number[inv.number];
    EXPECT_EQ(d["fields"]["Total"], inv.clean_total);
    ASSERT_EQ(d["lines"].size(), inv.rows.size());
    for (size_t r = 0; r < inv.rows.size(); ++r) {
      std::string desc = inv.rows[r].description;
      if (desc.find('\n') != std::string::npos) desc[desc.find('\n')] = ' ';
      EXPECT_EQ(d["lines"][r]["Description"], desc);
      EXPECT_EQ(d["lines"][r]["Quantity"], inv.rows[r].quantity);
      EXPECT_EQ(d["lines"][r]["Amount"], inv.rows[r].clean_amount);
    }
  }
  EXPECT_EQ(by_number.size(), expected);

  // Every document is still listed, in its final state.
  cQueue q;
  std::string err;
  ASSERT_TRUE(q.ReadSettings(dir.File("queue/queue.txt"), err)) << err;
  ASSERT_EQ(q.QueueEntries.Count(), static_cast<int32_t>(invoices.size()));
  int32_t exported_n = 0, held = 0;
  for (const auto& e : q.QueueEntries) {
    exported_n += e->PELINOR_State == kStateExported;
    held += e->PELINOR_State == 102;
  }
  EXPECT_EQ(exported_n, static_cast<int32_t>(expected));
  EXPECT_EQ(held, static_cast<int32_t>(invoices.size() - expected));

  // A second export finds nothing new and never replaces a file.
  ASSERT_EQ(RunToEnd({"export", "--profile", profile, "--format", "csv",
                      dir.File("again.csv")},
                     dir.File("again.out"), reg),
            0);
  EXPECT_EQ(ReadFile(dir.File("again.csv")),
            "\"DocId\",\"Template\",\"Line\",\"Name\",\"Value\"\r\n");
  EXPECT_NE(RunToEnd({"export", "--profile", profile, "--format", "csv",
                      dir.File("again.csv")},
                     dir.File("again2.out"), reg),
            0);
}

// A worker that dies holding a document leaves it claimable; while it
// holds it, other workers pass it by.
TEST(WorkQueue, ClaimOfAKilledWorkerIsReleased) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("registry.reg"));
  const std::string profile = WriteGenInstallation(dir.path());
  const std::string batch = WriteBatch(dir, "b.tsv", GenInvoices(3, 1));
  std::string err;
  auto q = cWorkQueue::Open(profile, err);
  ASSERT_TRUE(q) << err;
  ASSERT_TRUE(q->ScanIn({batch}, {}, nullptr, err)) << err;

  int ready[2];
  ASSERT_EQ(pipe(ready), 0);
  const pid_t child = fork();
  if (child == 0) {
    cDocumentClaims claims;
    if (!claims.Open(q->Dir()) || !claims.TryClaim("B-0002")) _exit(1);
    (void)!write(ready[1], "x", 1);
    pause();
    _exit(0);
  }
  char c;
  ASSERT_EQ(read(ready[0], &c, 1), 1);
  cWorkSummary sum;
  ASSERT_TRUE(q->Capture(1, nullptr, sum, err)) << err;
  EXPECT_EQ(sum.Captured, 2);
  EXPECT_EQ(sum.Skipped, 1);
  cQueueEntry e;
  ASSERT_TRUE(e.ReadSettings(q->StatusFile("b-0002"), err));
  EXPECT_EQ(e.PELINOR_State, kStateToCapture);

  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  ASSERT_TRUE(q->Capture(1, nullptr, sum, err)) << err;
  EXPECT_EQ(sum.Candidates, 1);
  EXPECT_EQ(sum.Captured, 1);
  ASSERT_TRUE(e.ReadSettings(q->StatusFile("b-0002"), err));
  EXPECT_EQ(e.PELINOR_State, kStateReadyForExport);
  EXPECT_EQ(e.CaptureState, kCaptureDone);
  EXPECT_EQ(e.DataValid, kDataValid);
}

TEST(WorkQueue, DocumentsThatCannotBeProcessedAreRejected) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("registry.reg"));
  const std::string profile = WriteGenInstallation(dir.path());
  // A stray page before the first invoice, then two invoices.
  cPageModel m;
  cPage stray;
  stray.Width = 2480;
  stray.Height = 3508;
  stray.Words.push_back({"Scanner", {100, 100, 200, 40}, 90});
  stray.Words.push_back({"test", {320, 100, 100, 40}, 90});
  stray.GroupLines();
  m.Pages.push_back(stray);
  for (cPage& p : GenBatch(GenInvoices(2, 3)).Pages) m.Pages.push_back(p);
  WriteFile(dir.File("s.tsv"), m.WriteTsv());
  std::string err;
  auto q = cWorkQueue::Open(profile, err);
  ASSERT_TRUE(q) << err;
  std::vector<cScanInResult> scanned;
  ASSERT_TRUE(q->ScanIn(
      {dir.File("s.tsv")}, {},
      [&](const cScanInResult& r) { scanned.push_back(r); }, err))
      << err;
  ASSERT_EQ(scanned.size(), 3u);
  EXPECT_EQ(scanned[0].Template, "");
  EXPECT_EQ(scanned[1].Template, "Acme");
  // The template of the third goes missing before capture.
  cQueueEntry third;
  ASSERT_TRUE(third.ReadSettings(q->StatusFile("s-0003"), err));
  third.TemplateDisplayName = "Gone";
  ASSERT_TRUE(third.WriteSettings(q->StatusFile("s-0003"), err));

  cWorkSummary sum;
  ASSERT_TRUE(q->Capture(1, nullptr, sum, err)) << err;
  EXPECT_EQ(sum.Rejected, 2);
  EXPECT_EQ(sum.Captured, 1);
  const struct {
    const char* id;
    std::string message;
  } cases[] = {
      {"s-0001", kRejectNoTemplate},
      {"s-0003",
       std::string(kRejectTemplateMissing) + q->TemplateDir() + "/Gone.tpl"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.id);
    cQueueEntry e;
    std::string msg;
    ASSERT_TRUE(e.ReadSettings(q->StatusFile(c.id), err));
    EXPECT_TRUE(e.Reject);
    ASSERT_TRUE(e.ReadRejectMessage(msg, q->RejectFile(c.id), err)) << err;
    EXPECT_EQ(msg, c.message);
  }
  // Rejected documents are not taken again.
  ASSERT_TRUE(q->Capture(1, nullptr, sum, err)) << err;
  EXPECT_EQ(sum.Candidates, 0);
}

TEST(WorkQueue, ScanningTheSameBatchAgainQueuesNothingTwice) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("registry.reg"));
  const std::string profile = WriteGenInstallation(dir.path());
  const std::string batch = WriteBatch(dir, "b.tsv", GenInvoices(4, 2));
  std::string err;
  auto q = cWorkQueue::Open(profile, err);
  ASSERT_TRUE(q) << err;
  ASSERT_TRUE(q->ScanIn({batch}, {}, nullptr, err)) << err;
  const std::string queue_bytes = ReadFile(q->QueueFile());
  const std::string tag_bytes = ReadFile(q->TagFile("b-0001"));
  std::vector<cScanInResult> again;
  ASSERT_TRUE(q->ScanIn(
      {batch}, {}, [&](const cScanInResult& r) { again.push_back(r); }, err))
      << err;
  ASSERT_EQ(again.size(), 4u);
  for (const cScanInResult& r : again) {
    SCOPED_TRACE(r.DocId);
    EXPECT_FALSE(r.Queued);
    EXPECT_TRUE(r.AlreadyQueued);
    // The page is still recognised; it is only not read again.
    EXPECT_EQ(r.Template, "Acme");
  }
  EXPECT_EQ(ReadFile(q->QueueFile()), queue_bytes);
  EXPECT_EQ(ReadFile(q->TagFile("b-0001")), tag_bytes);
}

// A queue file left behind the status files (a worker stopped before its
// update) is brought up to date from them.
TEST(WorkQueue, RefreshFollowsTheStatusFiles) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("registry.reg"));
  const std::string profile = WriteGenInstallation(dir.path());
  const std::string batch = WriteBatch(dir, "b.tsv", GenInvoices(3, 4));
  std::string err;
  auto q = cWorkQueue::Open(profile, err);
  ASSERT_TRUE(q) << err;
  ASSERT_TRUE(q->ScanIn({batch}, {}, nullptr, err)) << err;
  const std::string before = ReadFile(q->QueueFile());
  cWorkSummary sum;
  ASSERT_TRUE(q->Capture(2, nullptr, sum, err)) << err;
  ASSERT_EQ(sum.Captured, 3);
  const std::string after = ReadFile(q->QueueFile());
  WriteFile(q->QueueFile(), before);
  ASSERT_TRUE(q->Refresh(err)) << err;
  EXPECT_EQ(ReadFile(q->QueueFile()), after);
  // A worker started on the stale file takes nothing again.
  WriteFile(q->QueueFile(), before);
  ASSERT_TRUE(q->Capture(1, nullptr, sum, err)) << err;
  EXPECT_EQ(sum.Candidates, 3);
  EXPECT_EQ(sum.Skipped, 3);
  EXPECT_EQ(sum.Captured, 0);
  EXPECT_EQ(ReadFile(q->QueueFile()), after);
}

// A folder is one batch, its files read in name order.
TEST(WorkQueue, FolderBatchInNameOrder) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("registry.reg"));
  const std::string profile = WriteGenInstallation(dir.path());
  const auto invoices = GenInvoices(2, 6);
  std::filesystem::create_directories(dir.File("mailroom"));
  cPageModel note;
  note.Pages.push_back(GenPages(invoices[0])[0]);
  note.Pages[0].Words.resize(1);  // "ACME" alone identifies nothing
  note.Pages[0].GroupLines();
  cPageModel first, second;
  first.Pages = GenPages(invoices[0]);
  second.Pages = GenPages(invoices[1]);
  WriteFile(dir.File("mailroom/c.tsv"), second.WriteTsv());
  WriteFile(dir.File("mailroom/a.tsv"), first.WriteTsv());
  WriteFile(dir.File("mailroom/b.tsv"), note.WriteTsv());
  std::string err;
  auto q = cWorkQueue::Open(profile, err);
  ASSERT_TRUE(q) << err;
  std::vector<std::string> got;
  ASSERT_TRUE(q->ScanIn(
      {dir.File("mailroom")}, {},
      [&](const cScanInResult& r) {
        std::string pages;
        for (int32_t p : r.Pages) {
          pages.push_back(' ');
          pages += std::to_string(p);
        }
        got.push_back(r.DocId + ":" + pages);
      },
      err))
      << err;
  EXPECT_EQ(got, (std::vector<std::string>{"mailroom-0001: 1 2",
                                           "mailroom-0002: 3"}));
  auto doc = cDocumentData::New();
  ASSERT_TRUE(doc->ReadSettings(q->TagFile("mailroom-0002"), err)) << err;
  EXPECT_EQ(doc->LastSheetIndex, 3);
  EXPECT_EQ(doc->Fields.Item(1)->value, invoices[1].number);
}

TEST(WorkQueue, ExportFiles) {
  TempDir dir;
  ScopedEnv reg("PELINOR_REGISTRY", dir.File("registry.reg"));
  const std::string profile = WriteGenInstallation(dir.path());
  std::vector<GenInvoice> invoices = GenInvoices(2, 9);
  invoices[0].rows.resize(1);
  invoices[0].rows[0].description = "Sign \"Exit\" \xA3 plate";
  invoices[1].rows.resize(1);
  invoices[1].rows[0].description = "Copier paper A4";
  const std::string batch = WriteBatch(dir, "e.tsv", invoices);
  std::string err;
  auto q = cWorkQueue::Open(profile, err);
  ASSERT_TRUE(q) << err;
  ASSERT_TRUE(q->ScanIn({batch}, {}, nullptr, err)) << err;
  cWorkSummary sum;
  ASSERT_TRUE(q->Capture(1, nullptr, sum, err)) << err;
  std::string csv = "\"DocId\",\"Template\",\"Line\",\"Name\",\"Value\"\r\n";
  std::string js;
  for (size_t i = 0; i < invoices.size(); ++i) {
    const GenInvoice& inv = invoices[i];
    const std::string id = "e-000" + std::to_string(i + 1);
    const std::string desc =
        i == 0 ? "Sign \"\"Exit\"\" \xC2\xA3 plate" : inv.rows[0].description;
    const std::string head = "\"" + id + "\",\"Acme\",";
    csv += head + "\"0\",\"InvoiceNumber\",\"" + inv.number + "\"\r\n";
    csv += head + "\"0\",\"Total\",\"" + inv.clean_total + "\"\r\n";
    csv += head + "\"1\",\"Description\",\"" + desc + "\"\r\n";
    csv += head + "\"1\",\"Quantity\",\"" + inv.rows[0].quantity + "\"\r\n";
    csv += head + "\"1\",\"Amount\",\"" + inv.rows[0].clean_amount + "\"\r\n";
  }
  cExportSummary out;
  ASSERT_TRUE(q->Export("csv", dir.File("out.csv"), out, err)) << err;
  EXPECT_EQ(out.Documents, 2);
  EXPECT_EQ(out.Rows, 2);
  EXPECT_EQ(ReadFile(dir.File("out.csv")), csv);

  const struct {
    const char* format;
    const char* file;
    std::string message;
  } refused[] = {
      {"csv", "out.csv",
       dir.File("out.csv") + " exists; an export never replaces a file"},
      {"xml", "new.xml", "Unknown export format xml (csv or json)"},
  };
  for (const auto& c : refused) {
    SCOPED_TRACE(c.format);
    EXPECT_FALSE(q->Export(c.format, dir.File(c.file), out, err));
    EXPECT_EQ(err, c.message);
  }
  ASSERT_TRUE(q->Export("json", dir.File("out.json"), out, err)) << err;
  EXPECT_EQ(ReadFile(dir.File("out.json")), "[]\r\n");
}

}  // namespace
}  // namespace pelinor::testing
