// The "extract" and "process" verbs: from page files (images, PDFs, OCR
// output) to a document tag file. "extract" writes the raw values as read
// from the pages; "process" then runs the capture run over them and writes
// the cleaned document.
//
// Rules: docs/extraction.md. Format written: docs/formats/document.md.

#include <algorithm>
#include <atomic>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/page_extractor.h"
#include "pelinor/page_reader.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"
#include "pelinor/text_file.h"

namespace pelinor::cli {
namespace {

using json = nlohmann::ordered_json;

// Exit status of a page that no template fits.
constexpr int kUnidentified = 2;

struct Options {
  std::string profile;
  std::string tpl;
  std::string templates;
  std::string lang = "eng";
  std::string out;
  std::string save_model;
  std::string log;
  int dpi = kTemplateDpi;
  int max_pages = 200;
  int jobs = 1;
  bool json = false;
  std::vector<std::string> pages;
};

struct Extraction {
  std::shared_ptr<cProfile> profile;
  cIdentification id;
  std::shared_ptr<cDocumentData> doc;
  std::vector<cFieldResult> results;
  cCaptureReport report;  // process only
  int32_t page_count = 0;
};

// The profile's template directory: as given when absolute, else beside the
// profile file, else beside the profile's folder (an installation keeps
// profiles/ and templates/ side by side).
std::string TemplateDirOf(const cProfile& profile,
                          const std::string& profile_file) {
  namespace fs = std::filesystem;
  const fs::path dir(profile.TemplateDir);
  if (dir.is_absolute()) return dir.string();
  const fs::path here = fs::path(profile_file).parent_path();
  std::error_code ec;
  if (fs::is_directory(here / dir, ec)) return (here / dir).string();
  return (here.parent_path() / dir).string();
}

// A target may be replaced only when it is missing or a tag file already.
bool MayWrite(const std::string& path) {
  if (!FileExists(path)) return true;
  auto doc = cDocumentData::New();
  std::string err;
  return doc->ReadSettings(path, err);
}

// A page file may be replaced only when it is missing or a TSV page file.
bool MayWriteModel(const std::string& path) {
  if (!FileExists(path)) return true;
  std::ifstream in(path, std::ios::binary);
  std::string head(6, '\0');
  in.read(head.data(), 6);
  return in && head == "level\t";
}

std::string Percent(double score) {
  return NumberText(std::round(score * 100) / 100);
}

bool RunExtraction(const Options& opts, bool process,
                   const cCaptureOptions& capture, Extraction& x) {
  std::string err;
  x.profile = std::make_shared<cProfile>();
  const std::string profile_file = FromUtf8(opts.profile);
  if (!x.profile->ReadSettings(FileStemOf(profile_file), profile_file, err)) {
    Fail(profile_file + ": " + err);
    return false;
  }
  std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>> candidates;
  if (!opts.tpl.empty()) {
    auto tpl = cTemplate::New();
    tpl->Profile = x.profile;
    const std::string file = FromUtf8(opts.tpl);
    if (!tpl->ReadSettings(file, err)) {
      Fail(file + ": " + err);
      return false;
    }
    candidates.emplace_back(file, tpl);
  } else {
    const std::string dir = opts.templates.empty()
                                ? TemplateDirOf(*x.profile, profile_file)
                                : FromUtf8(opts.templates);
    if (!ReadTemplateDirectory(dir, x.profile, candidates, err)) {
      Fail(err);
      return false;
    }
  }
  if (opts.dpi < 50 || opts.dpi > 1200) {
    Fail("--dpi must lie between 50 and 1200");
    return false;
  }
  // Page files are read by `jobs` threads, each with its own reader (and
  // OCR engine); the pages keep the order of the files.
  const size_t files = opts.pages.size();
  const size_t jobs =
      std::clamp<size_t>(static_cast<size_t>(std::max(opts.jobs, 1)), 1,
                         std::max<size_t>(files, 1));
  std::vector<cPageModel> read(files);
  std::vector<std::string> errors(files);
  std::vector<char> done(files, 0);
  std::atomic<size_t> next{0};
  std::atomic<bool> failed{false};
  auto work = [&] {
    cPageReader reader;
    reader.Language = FromUtf8(opts.lang);
    reader.DefaultDpi = opts.dpi;
    reader.RenderDpi = opts.dpi;
    reader.MaxPages = opts.max_pages;
    for (size_t i; !failed && (i = next++) < files;) {
      done[i] = reader.ReadFile(FromUtf8(opts.pages[i]), read[i], errors[i]);
      if (!done[i]) failed = true;
    }
  };
  {
    std::vector<std::thread> threads;
    for (size_t t = 1; t < jobs; ++t) threads.emplace_back(work);
    work();
    for (std::thread& t : threads) t.join();
  }
  cPageModel model;
  for (size_t i = 0; i < files; ++i) {
    if (!done[i]) {
      Fail(errors[i]);
      return false;
    }
    for (cPage& p : read[i].Pages) model.Pages.push_back(std::move(p));
    if (static_cast<int32_t>(model.Pages.size()) > opts.max_pages) {
      Fail("more than " + std::to_string(opts.max_pages) +
           " pages; at most --max-pages are read");
      return false;
    }
  }
  x.page_count = static_cast<int32_t>(model.Pages.size());
  if (!opts.save_model.empty()) {
    TextWriter w;
    const std::string file = FromUtf8(opts.save_model);
    if (!MayWriteModel(file) || !w.Create(file)) {
      Fail("cannot write " + file);
      return false;
    }
    w.Write(model.WriteTsv());
    if (!w.Commit()) {
      Fail("cannot write " + file);
      return false;
    }
  }
  cPageExtractor extractor;
  cPageDocument out;
  const bool ok = process
                      ? ProcessDocument(extractor, model, x.profile, candidates,
                                        !opts.tpl.empty(), capture, out, err)
                      : ExtractDocument(extractor, model, x.profile, candidates,
                                        !opts.tpl.empty(), out, err);
  x.id = out.Identification;
  if (!ok) {
    Fail(err, x.id.Best.Template ? kUnidentified : 1);
    return false;
  }
  x.doc = out.Document;
  x.results = std::move(out.Results);
  x.report = std::move(out.Capture);
  return true;
}

json Box(const cBox& b) {
  return json::array({b.Left, b.Top, b.Width, b.Height});
}

json MatchJson(const cTemplateMatch& m) {
  if (!m.Template) return nullptr;
  return {{"file", Json(m.File)},
          {"identifier", Json(m.Template->TemplateIdentifier)},
          {"score", m.Score},
          {"found", Box(m.Found)},
          {"shift", json::array({m.ShiftX, m.ShiftY})},
          {"distance", m.Distance}};
}

void PrintIdentification(const Extraction& x) {
  const cTemplateMatch& b = x.id.Best;
  std::string line = "Template: " + b.File + " (score " + Percent(b.Score);
  if (x.id.Identified) {
    line += ", shift " + NumberText(b.ShiftX) + "," + NumberText(b.ShiftY);
  } else {
    line += ", identifier not found: used as given";
  }
  line += ")";
  if (x.id.RunnerUp.Template) {
    line += "; runner-up " + x.id.RunnerUp.File + " (score " +
            Percent(x.id.RunnerUp.Score) + ")";
  }
  PrintLine(line);
}

void PrintTable(const std::vector<std::vector<std::string>>& rows) {
  std::vector<size_t> w;
  for (const auto& r : rows) {
    w.resize(std::max(w.size(), r.size()));
    for (size_t i = 0; i < r.size(); ++i) w[i] = std::max(w[i], r[i].size());
  }
  for (const auto& r : rows) {
    std::string line = " ";
    for (size_t i = 0; i < r.size(); ++i) {
      line += " " + r[i];
      if (i + 1 < r.size()) line += std::string(w[i] - r[i].size(), ' ');
    }
    PrintLine(line);
  }
}

std::string Confidence(float c) {
  return c < 0 ? "-" : NumberText(std::round(c));
}

std::string BoxText(const cBox& b) {
  return b.Empty() ? "-"
                   : NumberText(b.Left) + ":" + NumberText(b.Top) + ":" +
                         NumberText(b.Width) + ":" + NumberText(b.Height);
}

bool WriteDocument(const Options& opts, const cDocumentData& doc,
                   std::string& written) {
  written = FromUtf8(opts.out);
  if (!MayWrite(written)) {
    Fail(written + " exists and is not a document tag file; not overwritten");
    written.clear();
    return false;
  }
  std::string err;
  if (!doc.WriteSettings(written, err)) {
    Fail("cannot write " + written + (err.empty() ? "" : ": " + err));
    written.clear();
    return false;
  }
  return true;
}

json ResultJson(const cFieldResult& r) {
  return {{"name", Json(r.Name)},
          {"pseudo", r.Pseudo},
          {"value", Json(r.Value)},
          {"box", Box(r.Box)},
          {"confidence",
           r.Confidence < 0 ? json(nullptr) : json(std::round(r.Confidence))},
          {"page", r.Page},
          {"how", r.How}};
}

void RunExtract(const Options& opts) {
  Extraction x;
  if (!RunExtraction(opts, false, cCaptureOptions(), x)) return;
  std::string written;
  if (!WriteDocument(opts, *x.doc, written)) return;
  if (opts.json) {
    json fields = json::array();
    for (const cFieldResult& r : x.results) {
      fields.push_back(
          {{"name", Json(r.Name)},
           {"pseudo", r.Pseudo},
           {"value", Json(r.Value)},
           {"box", Box(r.Box)},
           {"confidence",
            r.Confidence < 0 ? json(nullptr) : json(std::round(r.Confidence))},
           {"page", r.Page},
           {"how", r.How}});
    }
    PrintJson({{"pages", x.page_count},
               {"identified", x.id.Identified},
               {"template", MatchJson(x.id.Best)},
               {"runner_up", MatchJson(x.id.RunnerUp)},
               {"written", Json(written)},
               {"fields", fields}});
    return;
  }
  PrintIdentification(x);
  std::vector<std::vector<std::string>> rows = {
      {"Field", "Value", "Conf", "Page", "Box", "Found by"}};
  for (const cFieldResult& r : x.results) {
    rows.push_back({(r.Pseudo ? "(pseudo) " : "") + r.Name, r.Value,
                    Confidence(r.Confidence), NumberText(r.Page),
                    BoxText(r.Box), r.How});
  }
  PrintTable(rows);
  PrintLine("Written: " + written);
}

void RunProcess(const Options& opts) {
  Extraction x;
  cCaptureOptions capture;
  capture.LogFile = FromUtf8(opts.log);
  if (!RunExtraction(opts, true, capture, x)) return;
  const cCaptureReport& report = x.report;
  std::string written;
  if (!WriteDocument(opts, *x.doc, written)) return;
  // Capture values come in field order, as the extraction results do.
  auto value_of = [&](const std::string& name) -> const cCaptureValue* {
    for (const cCaptureValue& v : report.Values) {
      if (v.Name == name) return &v;
    }
    return nullptr;
  };
  if (opts.json) {
    json fields = json::array();
    for (const cFieldResult& r : x.results) {
      json j = ResultJson(r);
      j["raw"] = j["value"];
      const cCaptureValue* v = r.Pseudo ? nullptr : value_of(r.Name);
      if (v != nullptr) {
        j["value"] = Json(v->Result);
        j["status"] = v->Status;
        j["message"] = Json(v->Message);
      }
      fields.push_back(j);
    }
    PrintJson({{"pages", x.page_count},
               {"identified", x.id.Identified},
               {"template", MatchJson(x.id.Best)},
               {"runner_up", MatchJson(x.id.RunnerUp)},
               {"written", Json(written)},
               {"status", report.Status},
               {"message", Json(report.Message)},
               {"fields", fields}});
    return;
  }
  PrintIdentification(x);
  std::vector<std::vector<std::string>> rows = {
      {"Field", "Read", "Cleaned", "Conf", "Found by", "Status"}};
  for (const cFieldResult& r : x.results) {
    const cCaptureValue* v = r.Pseudo ? nullptr : value_of(r.Name);
    rows.push_back({(r.Pseudo ? "(pseudo) " : "") + r.Name, r.Value,
                    v != nullptr ? v->Result : r.Value,
                    Confidence(r.Confidence), r.How,
                    v == nullptr     ? std::string("-")
                    : v->Status == 0 ? std::string("ok")
                                     : "FAIL: " + v->Message});
  }
  PrintTable(rows);
  PrintLine(report.Status == 0
                ? std::string("Document: valid")
                : "Document: status " + NumberText(report.Status) + ", " +
                      report.Message);
  PrintLine("Written: " + written);
}

void AddCommonOptions(CLI::App* cmd, Options& opts) {
  cmd->add_option("--profile", opts.profile, "the capture profile file")
      ->required();
  auto* one = cmd->add_option("--template", opts.tpl,
                              "use this template file (no identification)");
  auto* dir = cmd->add_option(
      "--templates", opts.templates,
      "identify the template among the *.tpl files of this directory "
      "(default: the profile's template directory)");
  one->excludes(dir);
  cmd->add_option("--dpi", opts.dpi,
                  "resolution of images that do not state one, and of PDF "
                  "pages rendered for OCR (default 300)");
  cmd->add_option("--lang", opts.lang,
                  "OCR languages, as Tesseract names them (default eng)");
  cmd->add_option("--max-pages", opts.max_pages,
                  "refuse documents with more pages (default 200)");
  cmd->add_option("--jobs", opts.jobs,
                  "read (OCR) this many page files at once (default 1)");
  cmd->add_option("--save-model", opts.save_model,
                  "also write the pages' words as a TSV page file");
  cmd->add_option("--out", opts.out, "the document tag file to write")
      ->required();
  cmd->add_flag("--json", opts.json, "print JSON instead of a table");
  cmd->add_option("PAGE", opts.pages,
                  "page files of one document, in order: images (PNG, JPEG, "
                  "TIFF), PDFs, TSV or hOCR OCR output")
      ->required();
}

}  // namespace

void AddExtractCommands(CLI::App& app) {
  auto opts = std::make_shared<Options>();
  CLI::App* extract = app.add_subcommand(
      "extract",
      "read a document's pages (OCR for images and scanned PDF pages, the "
      "text layer for other PDF pages), identify its template and write a "
      "document tag file holding every field's value as read, with its box");
  AddCommonOptions(extract, *opts);
  extract->callback([opts] { RunExtract(*opts); });

  auto popts = std::make_shared<Options>();
  CLI::App* process = app.add_subcommand(
      "process",
      "extract a document from its pages as \"extract\" does, then run the "
      "capture run over it (validate, clean, set statuses) and write the "
      "cleaned document tag file");
  AddCommonOptions(process, *popts);
  process->add_option("--log", popts->log,
                      "append the pattern evaluation log to this file");
  process->callback([popts] { RunProcess(*popts); });
}

}  // namespace pelinor::cli
