// The "export" verb: the validated documents of a profile's work queue
// into one CSV or JSON file, a thin layer over cWorkQueue::Export()
// (pelinor/work_queue.h). Exported documents are marked so.
//
// Format written: docs/workflow.md ("Export files").

#include <memory>
#include <string>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/numeric.h"
#include "pelinor/work_queue.h"

namespace pelinor::cli {
namespace {

struct Options {
  std::string profile;
  std::string format;
  std::string out;
};

void Run(const Options& opts) {
  std::string err;
  auto queue = cWorkQueue::Open(FromUtf8(opts.profile), err);
  if (!queue) {
    Fail(err);
    return;
  }
  cExportSummary sum;
  const std::string out = FromUtf8(opts.out);
  if (!queue->Export(FromUtf8(opts.format), out, sum, err)) {
    Fail(err);
    return;
  }
  PrintLine("Exported " + NumberText(sum.Documents) + " document(s) with " +
            NumberText(sum.Rows) + " line item(s) to " + out);
}

}  // namespace

void AddExportCommand(CLI::App& app) {
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "export",
      "write the documents of a profile's queue that are ready for export "
      "(fields and line items) to a new CSV or JSON file and mark them "
      "exported");
  cmd->add_option("--profile", opts->profile, "the capture profile file")
      ->required();
  cmd->add_option("--format", opts->format, "csv or json")
      ->required()
      ->check(CLI::IsMember({"csv", "json"}));
  cmd->add_option("OUT", opts->out, "the file to write (must not exist)")
      ->required();
  cmd->callback([opts] { Run(*opts); });
}

}  // namespace pelinor::cli
