// The "scan-in" verb: batches of pages into the profile's work queue, a
// thin layer over cWorkQueue::ScanIn() (pelinor/work_queue.h). Each batch
// is split into documents; each document's tag file and queue status file
// are written and the queue file lists it.
//
// Formats: docs/formats/document.md, docs/formats/queue.md; rules:
// docs/workflow.md.

#include <memory>
#include <string>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/numeric.h"
#include "pelinor/work_queue.h"

namespace pelinor::cli {
namespace {

using json = nlohmann::ordered_json;

struct Options {
  std::string profile;
  std::string lang = "eng";
  int32_t dpi = 300;
  int32_t max_pages = 2000;
  bool json = false;
  std::vector<std::string> batches;
};

std::string PageList(const std::vector<int32_t>& pages) {
  if (pages.empty()) return "no pages";
  if (pages.size() == 1) return "page " + NumberText(pages.front());
  return "pages " + NumberText(pages.front()) + "-" + NumberText(pages.back());
}

void Run(const Options& opts) {
  std::string err;
  auto queue = cWorkQueue::Open(FromUtf8(opts.profile), err);
  if (!queue) {
    Fail(err);
    return;
  }
  if (opts.dpi < 50 || opts.dpi > 1200) {
    Fail("--dpi must lie between 50 and 1200");
    return;
  }
  cScanInOptions so;
  so.Language = FromUtf8(opts.lang);
  so.Dpi = opts.dpi;
  so.MaxPages = opts.max_pages;
  std::vector<std::string> batches;
  for (const auto& b : opts.batches) batches.push_back(FromUtf8(b));
  json docs = json::array();
  int32_t queued = 0;
  bool batch_failed = false;
  const bool ok = queue->ScanIn(
      batches, so,
      [&](const cScanInResult& r) {
        if (r.Queued) ++queued;
        if (r.DocId.empty()) batch_failed = true;
        if (opts.json) {
          docs.push_back({{"batch", Json(r.Batch)},
                          {"doc_id", Json(r.DocId)},
                          {"pages", r.Pages},
                          {"template", Json(r.Template)},
                          {"fields", r.Fields},
                          {"rows", r.Rows},
                          {"queued", r.Queued},
                          {"already_queued", r.AlreadyQueued},
                          {"error", Json(r.Error)}});
          return;
        }
        if (r.DocId.empty()) {
          Fail(r.Error);
          return;
        }
        std::string line = r.DocId + ": " + PageList(r.Pages) + ", ";
        line += r.Template.empty() ? std::string("no template")
                                   : "template " + r.Template;
        if (r.AlreadyQueued) {
          // Nothing was read for it: counts would say the page is empty.
          line += ", already queued (left as it is)";
        } else {
          line += ", " + NumberText(r.Fields) + " fields, " +
                  NumberText(r.Rows) + " line items";
          if (!r.Queued) line += " (not queued: " + r.Error + ")";
        }
        PrintLine(line);
      },
      err);
  if (!ok) {
    Fail(err);
    return;
  }
  if (opts.json) {
    PrintJson({{"queue", Json(queue->Dir())},
               {"queued", queued},
               {"documents", docs}});
  } else {
    PrintLine("Queued " + NumberText(queued) + " document(s) in " +
              queue->Dir());
  }
  if (batch_failed) SetExitStatus(1);
}

}  // namespace

void AddScanInCommand(CLI::App& app) {
  auto opts = std::make_shared<Options>();
  CLI::App* cmd = app.add_subcommand(
      "scan-in",
      "split batches of pages into documents, extract their fields and line "
      "items, and queue them for capture in the profile's local queue "
      "directory");
  cmd->add_option("--profile", opts->profile, "the capture profile file")
      ->required();
  cmd->add_option("--lang", opts->lang,
                  "OCR languages, as Tesseract names them (default eng)");
  cmd->add_option("--dpi", opts->dpi,
                  "resolution of images and TSV files that do not state one "
                  "(default 300)");
  cmd->add_option("--max-pages", opts->max_pages,
                  "refuse batches with more pages (default 2000)");
  cmd->add_flag("--json", opts->json, "print JSON instead of lines");
  cmd->add_option("BATCH", opts->batches,
                  "a multi-page TIFF or PDF, an image, TSV or hOCR page file, "
                  "or a folder of page files read in name order")
      ->required();
  cmd->callback([opts] { Run(*opts); });
}

}  // namespace pelinor::cli
