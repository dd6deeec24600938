// The "capture" verb: the main job run over whole documents, a thin layer
// over the library's capture run (pelinor/capture_run.h): it gathers the
// inputs, and prints each document's report as a table, JSON or JSON lines.
//
// Format: see docs/formats/document.md.

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "cli/repair_explain.h"
#include "pelinor/capture_run.h"
#include "pelinor/data_parser.h"
#include "pelinor/document_data.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/profile.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"
#include "pelinor/template.h"
#include "pelinor/text_file.h"

namespace pelinor::cli {
namespace {

using json = nlohmann::ordered_json;

struct Options {
  std::string profile;
  std::string tpl;
  std::string log;
  std::string out_dir;
  std::string files_from;
  bool in_place = false;
  bool json = false;
  bool json_lines = false;
  bool recheck = false;
  bool fail_on_invalid = false;
  std::string review;  // "" or "guess"
  int32_t jobs = 0;
  std::vector<std::string> inputs;
};

// What the Change column shows: "-" for a value left as it was, else the
// highest class of the steps that changed it.
std::string_view ChangeText(const cCaptureValue& c) {
  if (!c.Changed) return "-";
  const std::string_view risk = RiskClassName(c.Risk);
  return risk.empty() ? "changed" : risk;
}

// The document's line and its table, built whole and written at once.
void PrintTable(const cCaptureFileResult& r) {
  const cCaptureReport& report = r.Report;
  size_t w[4] = {5, 9, 6, 6};
  for (const cCaptureValue& c : report.Values) {
    w[0] = std::max(w[0], c.Name.size());
    w[1] = std::max(w[1], c.Raw.size());
    w[2] = std::max(w[2], c.Result.size());
    w[3] = std::max(w[3], ChangeText(c).size());
  }
  std::string text = r.File + ": ";
  if (report.Status == 0) {
    text += "valid";
  } else {
    text += "status " + NumberText(report.Status) + ", " + report.Message;
  }
  const auto row = [&text, &w](std::string_view name, std::string_view raw,
                               std::string_view result,
                               std::string_view change) {
    text += "\n";
    for (const auto& [cell, width] :
         {std::pair{name, w[0]}, {raw, w[1]}, {result, w[2]}, {change, w[3]}}) {
      text += "  ";
      text += cell;
      if (width > cell.size()) text.append(width - cell.size(), ' ');
    }
    text += "  ";
  };
  row("Field", "Raw value", "Result", "Change");
  text += "Status";
  for (const cCaptureValue& c : report.Values) {
    row(c.Name, c.Raw, c.Result, ChangeText(c));
    if (c.Status == 0) {
      text += "ok";
    } else {
      if (c.Status != kCaptureReviewStatus) text += "FAIL: ";
      text += c.Message;
    }
  }
  // A blank line after each table.
  text += "\n";
  PrintLine(text);
}

// The JSON object of one document (keys in lower case).
json FileJson(const cCaptureFileResult& r) {
  if (!r.Captured) {
    return {{"file", Json(r.File)}, {"error", Json(r.Error)}};
  }
  json values = json::array();
  for (const cCaptureValue& c : r.Report.Values) {
    values.push_back({{"name", Json(c.Name)},
                      {"raw", Json(c.Raw)},
                      {"value", Json(c.Result)},
                      {"status", c.Status},
                      {"message", Json(c.Message)},
                      {"changed", c.Changed},
                      {"risk", std::string(RiskClassName(c.Risk))},
                      {"steps", StepsJson(cRepairTrace(c.Steps))}});
  }
  json j = {{"file", Json(r.File)},
            {"written", Json(r.Written)},
            {"unchanged", r.Unchanged},
            {"status", r.Report.Status},
            {"message", Json(r.Report.Message)},
            {"values", values}};
  if (!r.Error.empty()) j["error"] = Json(r.Error);
  return j;
}

void Progress(size_t done, size_t total) {
  constexpr size_t kWidth = 30;
  const size_t filled = total == 0 ? kWidth : done * kWidth / total;
  std::fprintf(stderr, "\r[%s%s] %zu/%zu", std::string(filled, '#').c_str(),
               std::string(kWidth - filled, ' ').c_str(), done, total);
  if (done == total) std::fprintf(stderr, "\n");
  std::fflush(stderr);
}

void RunCapture(const Options& opts) {
  std::string err;
  // File names are used as typed: they name files, not text in a file.
  std::vector<std::string> inputs = opts.inputs;
  if (!opts.files_from.empty() && !ReadFileList(opts.files_from, inputs, err)) {
    Fail(err);
    return;
  }
  std::vector<std::string> files;
  if (!CollectTagFiles(inputs, files, err)) {
    Fail(err);
    return;
  }
  if (files.empty()) {
    Fail("no documents to capture");
    return;
  }
  cCaptureRunOptions run_opts;
  if (!CheckConfigurationFile(opts.profile, ConfigForm::kVersioned) ||
      (!opts.tpl.empty() &&
       !CheckConfigurationFile(opts.tpl, ConfigForm::kVersioned))) {
    return;
  }
  run_opts.ProfileFile = opts.profile;
  run_opts.TemplateFile = opts.tpl;
  run_opts.Capture.LogFile = opts.log;
  run_opts.Capture.Recheck = opts.recheck;
  if (!opts.review.empty() && opts.review != "guess") {
    Fail("--review takes guess, not \"" + opts.review + "\"", 2);
    return;
  }
  run_opts.Capture.ReviewGuess = opts.review == "guess";
  run_opts.OutDir = opts.out_dir;
  run_opts.InPlace = opts.in_place;
  run_opts.Jobs = opts.jobs;
  auto run = cCaptureRun::Open(run_opts, err);
  if (!run) {
    Fail(err);
    return;
  }
  if (!run->CheckOutputs(files, err)) {
    Fail(err);
    return;
  }
  const bool progress =
      !opts.json && !opts.json_lines && files.size() > 1 && ProgressWanted();
  json all = json::array();
  size_t done = 0;
  bool any_invalid = false;
  run->Run(files, [&](const cCaptureFileResult& r) {
    if (!r.Captured) {
      Fail(r.File + ": " + r.Error);
    } else if (!r.Error.empty()) {
      Fail(r.Error);
    }
    any_invalid = any_invalid || r.Report.InvalidCount > 0;
    if (opts.json_lines) {
      std::cout << FileJson(r).dump() << "\n";
    } else if (opts.json) {
      all.push_back(FileJson(r));
    } else if (r.Captured) {
      if (progress) std::fprintf(stderr, "\r%*s\r", 50, "");
      PrintTable(r);
    }
    if (progress) Progress(++done, files.size());
    return true;
  });
  if (opts.json) std::cout << all.dump(2) << "\n";
  std::cout.flush();
  if (opts.fail_on_invalid && any_invalid && ExitStatus() == 0) {
    SetExitStatus(1);
  }
}

// ---------------------------------------------------------------------------
// document show / upgrade
// ---------------------------------------------------------------------------

struct DocOptions {
  std::string file;
  std::string out;
  std::string profile;
  std::string tpl;
  bool json = false;
};

// Reads the tag file with the profile and template given, if any.
std::shared_ptr<cDocumentData> LoadDocument(const DocOptions& opts) {
  std::string err;
  auto doc = cDocumentData::New();
  if (!opts.profile.empty()) {
    if (!CheckConfigurationFile(opts.profile, ConfigForm::kVersioned)) {
      return nullptr;
    }
    doc->Profile = std::make_shared<cProfile>();
    ClearFileError();
    if (!doc->Profile->ReadSettings(PathText(FileStemOf(opts.profile)),
                                    opts.profile, err)) {
      FailFile(opts.profile, err);
      return nullptr;
    }
  }
  if (!opts.tpl.empty()) {
    if (!CheckConfigurationFile(opts.tpl, ConfigForm::kVersioned)) {
      return nullptr;
    }
    doc->Template = cTemplate::New();
    doc->Template->Profile = doc->Profile;
    ClearFileError();
    if (!doc->Template->ReadSettings(opts.tpl, err)) {
      FailFile(opts.tpl, err);
      return nullptr;
    }
  }
  if (!CheckConfigurationFile(opts.file, ConfigForm::kVersioned)) {
    return nullptr;
  }
  WarnIfUtf8(opts.file);
  ClearFileError();
  if (!doc->ReadSettings(opts.file, err)) {
    FailFile(opts.file, err);
    return nullptr;
  }
  return doc;
}

json Items(const Collection<std::shared_ptr<cFieldData>>& items,
           bool with_value, bool with_status) {
  json out = json::array();
  for (const auto& f : items) {
    if (!f) continue;
    json j = {{"Name", Json(f->Name)}};
    if (with_value) j["value"] = Json(f->value);
    if (with_status) {
      j["Status"] = f->Status;
      j["StatusMessage"] = Json(f->StatusMessage);
      j["DataType"] = f->DataType();
    }
    j["DataLocation"] = f->DataLocation();
    j["Coords"] = {f->Left, f->Top, f->Width, f->Height};
    out.push_back(j);
  }
  return out;
}

json DescribeDocument(const cDocumentData& doc) {
  json rows = json::array();
  for (const auto& row : doc.LineData) {
    if (!row) continue;
    json cells = json::array();
    for (const auto& c : row->colLineItemData) {
      if (!c) continue;
      cells.push_back({{"Name", Json(c->Name)},
                       {"value", Json(c->value)},
                       {"Status", c->Status},
                       {"StatusMessage", Json(c->StatusMessage)}});
    }
    rows.push_back({{"Status", row->Status},
                    {"StatusMessage", Json(row->StatusMessage)},
                    {"Coords", {row->Left, row->Top, row->Width, row->Height}},
                    {"Location", row->Location},
                    {"Cells", cells}});
  }
  return {{"Status", doc.Status},
          {"StatusMessage", Json(doc.StatusMessage)},
          {"ProfileName", Json(doc.ProfileName)},
          {"LastSheetIndex", doc.LastSheetIndex},
          {"Fields", Items(doc.Fields, true, true)},
          {"PseudoFields", Items(doc.PseudoFields, true, false)},
          {"LinePseudos", Items(doc.LinePseudos, false, false)},
          {"DocEndMarks", Items(doc.DocEndMarks, false, false)},
          {"LineData", rows}};
}

// Prints `j` as indented "key: value" lines (strings are UTF-8 already).
void PrintJsonText(const json& j, const std::string& indent) {
  for (auto it = j.begin(); it != j.end(); ++it) {
    const json& v = it.value();
    const std::string key = j.is_array()
                                ? "[" + std::to_string(it - j.begin() + 1) + "]"
                                : it.key();
    if ((v.is_object() || v.is_array()) &&
        !(v.is_array() && !v.empty() && v.front().is_number())) {
      std::cout << indent << key
                << (v.is_array() ? " (" + std::to_string(v.size()) + ")" : "")
                << ":\n";
      PrintJsonText(v, indent + "  ");
    } else {
      std::string text = v.is_string() ? v.get<std::string>() : v.dump();
      if (v.is_array()) {
        text.clear();
        for (const auto& n : v) text += (text.empty() ? "" : ":") + n.dump();
      }
      std::cout << indent << key << ":" << (text.empty() ? "" : " ") << text
                << "\n";
    }
  }
}

void RunShow(const DocOptions& opts) {
  auto doc = LoadDocument(opts);
  if (!doc) return;
  const json described = DescribeDocument(*doc);
  if (opts.json) {
    std::cout << described.dump(2) << "\n";
  } else {
    PrintJsonText(described, "");
  }
}

// The version a tag file was written in, as its first line states it.
std::string VersionOf(const std::string& file) {
  TextReader in;
  std::string line;
  float version = 0;
  if (!in.Open(file) || !in.ReadLine(line) ||
      !ParseVersionNumber(line, version)) {
    return "?";
  }
  return line.substr(3);
}

void RunUpgrade(const DocOptions& opts) {
  auto doc = LoadDocument(opts);
  if (!doc) return;
  std::string err;
  ClearFileError();
  if (!doc->WriteSettings(opts.out, err)) {
    FailFile(opts.out, err);
    return;
  }
  WriteStdout("Wrote " + opts.out + " (" + kVersionLine +
              ", read from version " + ToUtf8(VersionOf(opts.file)) + ")\n");
}

void AddDocumentCommands(CLI::App& app) {
  auto opts = std::make_shared<DocOptions>();
  CLI::App* group = app.add_subcommand(
      "document", "document tag files: show one, or rewrite an old one");
  group->require_subcommand(1);
  CLI::App* show = group->add_subcommand(
      "show",
      "print a document tag file as the library reads it; with --profile "
      "and --template the field types and locations are resolved");
  show->add_option("FILE", opts->file, "the document tag file")->required();
  show->add_option("--profile", opts->profile, "the capture profile file");
  show->add_option("--template", opts->tpl, "the template file");
  show->add_flag("--json", opts->json, "print JSON instead of text");
  show->callback([opts] { RunShow(*opts); });
  CLI::App* upgrade = group->add_subcommand(
      "upgrade",
      "read a tag file of any version and write it in the current form; "
      "give --profile and --template so that data types missing from old "
      "files are resolved before they are stored");
  upgrade->add_option("IN", opts->file, "the tag file to read")->required();
  upgrade->add_option("OUT", opts->out, "the tag file to write")->required();
  upgrade->add_option("--profile", opts->profile, "the capture profile file");
  upgrade->add_option("--template", opts->tpl, "the template file");
  upgrade->callback([opts] { RunUpgrade(*opts); });
}

}  // namespace

void AddCaptureCommand(CLI::App& app) {
  AddDocumentCommands(app);
  auto opts = std::make_shared<Options>();
  CLI::App* capture = app.add_subcommand(
      "capture",
      "validate and clean every field and line-item value of document tag "
      "files: each value is checked for its data type (amount, number, "
      "date, postcode or pattern), repaired where the OCR text allows, and "
      "given a status and a message naming the expected format");
  capture->add_option("--profile", opts->profile, "the capture profile file")
      ->required();
  capture->add_option("--template", opts->tpl, "the template file")->required();
  capture->add_option("--log", opts->log,
                      "append the pattern evaluation log to this file");
  capture
      ->add_option("--jobs,-j", opts->jobs,
                   "documents captured at once (default: the number of "
                   "cores); output keeps the input order")
      ->check(CLI::Range(0, 1024));
  capture->add_option("--files-from", opts->files_from,
                      "read further document paths from this file, one a "
                      "line (- for standard input)");
  capture->add_flag("--recheck", opts->recheck,
                    "check values already accepted (status 0, or 3 to "
                    "check) again; one that still passes keeps its value "
                    "and status, and a date in the locale's order keeps "
                    "its order");
  capture
      ->add_option("--review", opts->review,
                   "guess: give values whose repairs include a guess "
                   "(docs/repair-trace.md) status 3 and the message "
                   "\"Check: \" with the repairs, so a person checks "
                   "them")
      ->type_name("CLASS");
  capture->add_flag("--fail-on-invalid", opts->fail_on_invalid,
                    "exit with status 1 when any value is not valid");
  auto* json_lines = capture->add_flag(
      "--json-lines", opts->json_lines,
      "print one JSON object per document and line, as each is done");
  auto* out_dir =
      capture->add_option("--out-dir", opts->out_dir,
                          "write the captured tag files into this directory");
  auto* in_place = capture->add_flag("--in-place", opts->in_place,
                                     "rewrite each tag file in place");
  auto* json =
      capture->add_flag("--json", opts->json, "print JSON instead of tables");
  // Two places to write to, or two output forms, are a usage error.
  out_dir->excludes(in_place);
  json->excludes(json_lines);
  capture->add_option("DOC", opts->inputs,
                      "document tag files, or folders searched at any depth "
                      "for *.tag files");
  capture->callback([opts] { RunCapture(*opts); });
}

}  // namespace pelinor::cli
