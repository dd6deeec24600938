// The "work" verb group: capture workers over a profile's work queue, a
// thin layer over cWorkQueue::Capture() (pelinor/work_queue.h). Several
// "work capture" processes may run on one queue at once; each document is
// captured by exactly one of them.
//
// Rules: docs/workflow.md.

#include <memory>
#include <mutex>
#include <string>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/numeric.h"
#include "pelinor/work_queue.h"

namespace pelinor::cli {
namespace {

using json = nlohmann::ordered_json;

struct Options {
  std::string profile;
  int32_t jobs = 1;
  bool json = false;
  bool quiet = false;
};

void RunCapture(const Options& opts) {
  std::string err;
  auto queue = cWorkQueue::Open(FromUtf8(opts.profile), err);
  if (!queue) {
    Fail(err);
    return;
  }
  if (opts.jobs < 1 || opts.jobs > 256) {
    Fail("--jobs must lie between 1 and 256");
    return;
  }
  json docs = json::array();
  cWorkSummary sum;
  const bool ok = queue->Capture(
      opts.jobs,
      [&](const cWorkResult& r) {
        if (opts.json) {
          docs.push_back({{"doc_id", Json(r.DocId)},
                          {"status", r.Status},
                          {"message", Json(r.Message)},
                          {"state", r.State},
                          {"rejected", r.Rejected},
                          {"error", Json(r.Error)}});
          return;
        }
        if (!r.Error.empty()) {
          Fail(r.DocId + ": " + r.Error);
          return;
        }
        if (opts.quiet) return;
        std::string line = r.DocId + ": ";
        if (r.Rejected) {
          line += "rejected: " + r.Message;
        } else {
          line += "status " + NumberText(r.Status) + ", state " +
                  NumberText(r.State);
          if (!r.Message.empty()) line += ", " + r.Message;
        }
        PrintLine(line);
      },
      sum, err);
  if (!ok) Fail(err);
  if (opts.json) {
    PrintJson({{"candidates", sum.Candidates},
               {"captured", sum.Captured},
               {"valid", sum.Valid},
               {"rejected", sum.Rejected},
               {"skipped", sum.Skipped},
               {"errors", sum.Errors},
               {"documents", docs}});
    return;
  }
  PrintLine("Captured " + NumberText(sum.Captured) + " (" +
            NumberText(sum.Valid) + " valid), rejected " +
            NumberText(sum.Rejected) + ", skipped " + NumberText(sum.Skipped) +
            " of " + NumberText(sum.Candidates) + " waiting");
  if (sum.Errors > 0) SetExitStatus(1);
}

void RunRefresh(const Options& opts) {
  std::string err;
  auto queue = cWorkQueue::Open(FromUtf8(opts.profile), err);
  if (!queue || !queue->Refresh(err)) {
    Fail(err);
    return;
  }
  PrintLine("Queue file brought up to date: " + queue->QueueFile());
}

}  // namespace

void AddWorkCommand(CLI::App& app) {
  auto opts = std::make_shared<Options>();
  CLI::App* work =
      app.add_subcommand("work", "work through a profile's queue as a worker");
  work->require_subcommand(1);
  CLI::App* capture = work->add_subcommand(
      "capture",
      "capture the documents waiting in the queue (validate and clean every "
      "field and line item), and move each on: ready for export, the "
      "profile's invalid state, or rejected");
  capture->add_option("--profile", opts->profile, "the capture profile file")
      ->required();
  capture->add_option("--jobs", opts->jobs,
                      "documents captured at once by this process (default 1)");
  capture->add_flag("--json", opts->json, "print JSON instead of lines");
  capture->add_flag("--quiet", opts->quiet,
                    "print the summary only (and errors)");
  capture->callback([opts] { RunCapture(*opts); });
  CLI::App* refresh = work->add_subcommand(
      "refresh",
      "bring the queue file up to date from the documents' status files "
      "(after a worker was stopped before it wrote the queue file)");
  refresh->add_option("--profile", opts->profile, "the capture profile file")
      ->required();
  refresh->callback([opts] { RunRefresh(*opts); });
}

}  // namespace pelinor::cli
