// The "capture" verb: the main job run over whole documents. Each document
// tag file is read, given its profile and template, every field and every
// line-item cell is validated and cleaned, the status of each value and of
// the document is set, and the tag file is written back.
//
// Format: see docs/formats/document.md.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/file_system.h"
#include "pelinor/format.h"
#include "pelinor/numeric.h"
#include "pelinor/profile.h"
#include "pelinor/registry.h"
#include "pelinor/template.h"

namespace pelinor::cli {
namespace {

using json = nlohmann::ordered_json;

// The status a value or document gets when it fails validation.
constexpr int32_t kInvalidStatus = 2;

struct Options {
  std::string profile;
  std::string tpl;
  std::string log;
  std::string out_dir;
  bool in_place = false;
  bool json = false;
  std::vector<std::string> files;
};

// One checked value, for the report.
struct Checked {
  std::string name;  // field name, or "Line 2 Quantity" for a cell
  std::string raw;
  std::string value;
  int32_t status = 0;
  std::string message;
};

// The message naming the format a value of `type` must have.
std::string ExpectedFormat(int32_t type, const std::string& pattern) {
  if (type == 4 || type == 200) return "Amount expected, for example 1234.50";
  if (type == 2 || type == 300) return "Number expected, for example 1234.5";
  if (type == 5) return "UK postcode expected, for example SW1A 1AA";
  if (IsDateType(type)) {
    const std::string locale = ReadServerSetting(kLocaleValue, "GB");
    if (locale == "US") return "Date expected as mm/dd/yyyy";
    if (locale == "JP") return "Date expected as yyyy/mm/dd";
    return "Date expected as dd/mm/yyyy";
  }
  return "Value does not match the pattern " + pattern;
}

// Checks and cleans one value the way a capture step does: a value that
// passes is normalised in place; one that fails is cleaned (formatter, or
// the pattern with OCR coercion) and checked again. `validate` and
// `format` are the value's own Validate() and FormatDataValue().
template <typename Validate, typename Format>
void CheckValue(std::string& value, int32_t type, const std::string& pattern,
                Validate validate, Format format, int32_t& status,
                std::string& message) {
  const bool pattern_type =
      !IsAmountType(type) && !IsDateType(type) && type != 5;
  bool valid = validate();
  if (valid) {
    format();
  } else if (pattern_type) {
    std::string cleaned, err;
    valid = ValidatePatternValue(value, pattern, true, cleaned, err);
    if (valid) value = cleaned;
  } else {
    format();
    valid = validate();
  }
  status = valid ? 0 : kInvalidStatus;
  message = valid ? "" : ExpectedFormat(type, pattern);
}

// The pattern a cell is checked against: its line header's.
std::string CellPattern(const cDocumentData& doc, const std::string& name) {
  for (const auto& h : doc.LineHeaders) {
    if (h && EqualsIgnoreCase(h->Name, name)) return h->Pattern;
  }
  return "";
}

std::vector<Checked> Capture(cDocumentData& doc, std::string& log) {
  std::vector<Checked> report;
  for (const auto& f : doc.Fields) {
    if (!f) continue;
    Checked c{f->Name, f->value, "", 0, ""};
    CheckValue(
        f->value, f->DataType(), f->Pattern(), [&] { return f->Validate(log); },
        [&] { f->FormatDataValue(); }, f->Status, f->StatusMessage);
    c.value = f->value;
    c.status = f->Status;
    c.message = f->StatusMessage;
    report.push_back(c);
  }
  doc.ClearLineHeaders();
  doc.UpdateLineHeaders(doc.Profile, doc.Template);
  int32_t line = 0;
  for (const auto& row : doc.LineData) {
    ++line;
    if (!row) continue;
    bool row_valid = true;
    for (const auto& cell : row->colLineItemData) {
      if (!cell) continue;
      for (const auto& h : doc.LineHeaders) {
        if (h && EqualsIgnoreCase(h->Name, cell->Name)) {
          cell->DataType = h->DataType;
          cell->Flags = h->DataFlags;
          break;
        }
      }
      Checked c{"Line " + NumberText(line) + " " + cell->Name, cell->value, "",
                0, ""};
      CheckValue(
          cell->value, cell->DataType, CellPattern(doc, cell->Name),
          [&] { return cell->Validate(log); },
          [&] { cell->FormatDataValue(log); }, cell->Status,
          cell->StatusMessage);
      row_valid = row_valid && cell->Status == 0;
      c.value = cell->value;
      c.status = cell->Status;
      c.message = cell->StatusMessage;
      report.push_back(c);
    }
    row->Status = row_valid ? 0 : kInvalidStatus;
    row->StatusMessage = row_valid ? "" : "A value of the line is not valid";
  }
  std::string failed;
  int count = 0;
  for (const Checked& c : report) {
    if (c.status == 0) continue;
    ++count;
    failed += (failed.empty() ? "" : ", ") + c.name;
  }
  doc.Status = count == 0 ? 0 : kInvalidStatus;
  doc.StatusMessage = count == 0
                          ? ""
                          : NumberText(count) +
                                (count == 1 ? " value is not valid: "
                                            : " values are not valid: ") +
                                failed;
  return report;
}

std::string BaseName(const std::string& path) {
  return path.substr(path.find_last_of("/\\") + 1);
}

std::string StemOf(const std::string& path) {
  std::string base = BaseName(path);
  const size_t dot = base.rfind('.');
  if (dot != std::string::npos && dot > 0) base.resize(dot);
  return base;
}

void PrintTable(const std::string& file, const cDocumentData& doc,
                const std::vector<Checked>& report) {
  const char* heads[] = {"Field", "Raw value", "Result", "Status"};
  size_t w[3] = {5, 9, 6};
  for (const Checked& c : report) {
    w[0] = std::max(w[0], c.name.size());
    w[1] = std::max(w[1], c.raw.size());
    w[2] = std::max(w[2], c.value.size());
  }
  auto pad = [](const std::string& s, size_t n) {
    return s + std::string(n > s.size() ? n - s.size() : 0, ' ');
  };
  PrintLine(file + ": " +
            (doc.Status == 0 ? std::string("valid")
                             : "status " + NumberText(doc.Status) + ", " +
                                   doc.StatusMessage));
  PrintLine("  " + pad(heads[0], w[0]) + "  " + pad(heads[1], w[1]) + "  " +
            pad(heads[2], w[2]) + "  " + heads[3]);
  for (const Checked& c : report) {
    PrintLine("  " + pad(c.name, w[0]) + "  " + pad(c.raw, w[1]) + "  " +
              pad(c.value, w[2]) + "  " +
              (c.status == 0 ? std::string("ok") : "FAIL: " + c.message));
  }
  PrintLine("");
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
  if (opts.in_place && !opts.out_dir.empty()) {
    Fail("--out-dir and --in-place cannot be used together");
    return;
  }
  if (!opts.out_dir.empty()) {
    std::error_code ec;
    std::filesystem::create_directories(opts.out_dir, ec);
  }
  std::string err;
  auto profile = std::make_shared<cProfile>();
  const std::string profile_file = FromUtf8(opts.profile);
  if (!profile->ReadSettings(StemOf(profile_file), profile_file, err)) {
    Fail(err);
    return;
  }
  auto tpl = cTemplate::New();
  tpl->Profile = profile;
  if (!tpl->ReadSettings(FromUtf8(opts.tpl), err)) {
    Fail(err);
    return;
  }
  std::string log = FromUtf8(opts.log);
  const bool progress = !opts.json && opts.files.size() > 1 && isatty(2);
  json all = json::array();
  size_t done = 0;
  for (const std::string& typed : opts.files) {
    const std::string file = FromUtf8(typed);
    auto doc = cDocumentData::New();
    if (!doc->ReadSettings(file, err)) {
      Fail(file + ": " + err);
      if (opts.json)
        all.push_back({{"file", Json(file)}, {"error", Json(err)}});
      continue;
    }
    doc->Profile = profile;
    doc->Template = tpl;
    const std::vector<Checked> report = Capture(*doc, log);
    std::string written;
    if (opts.in_place || !opts.out_dir.empty()) {
      written = opts.in_place
                    ? file
                    : JoinPath(FromUtf8(opts.out_dir), BaseName(file));
      if (!doc->WriteSettings(written, err)) {
        Fail("cannot write " + written + ": " + err);
        written.clear();
      }
    }
    if (opts.json) {
      json values = json::array();
      for (const Checked& c : report) {
        values.push_back({{"name", Json(c.name)},
                          {"raw", Json(c.raw)},
                          {"value", Json(c.value)},
                          {"status", c.status},
                          {"message", Json(c.message)}});
      }
      all.push_back({{"file", Json(file)},
                     {"written", Json(written)},
                     {"status", doc->Status},
                     {"message", Json(doc->StatusMessage)},
                     {"values", values}});
    } else {
      if (progress) std::fprintf(stderr, "\r%*s\r", 50, "");
      PrintTable(file, *doc, report);
    }
    if (progress) Progress(++done, opts.files.size());
  }
  if (opts.json) std::cout << all.dump(2) << "\n";
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
    doc->Profile = std::make_shared<cProfile>();
    const std::string file = FromUtf8(opts.profile);
    if (!doc->Profile->ReadSettings(StemOf(file), file, err)) {
      Fail(err);
      return nullptr;
    }
  }
  if (!opts.tpl.empty()) {
    doc->Template = cTemplate::New();
    doc->Template->Profile = doc->Profile;
    if (!doc->Template->ReadSettings(FromUtf8(opts.tpl), err)) {
      Fail(err);
      return nullptr;
    }
  }
  if (!doc->ReadSettings(FromUtf8(opts.file), err)) {
    Fail(err);
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

void RunUpgrade(const DocOptions& opts) {
  auto doc = LoadDocument(opts);
  if (!doc) return;
  std::string err;
  const std::string out = FromUtf8(opts.out);
  if (!doc->WriteSettings(out, err)) Fail("cannot write " + out + ": " + err);
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
  capture->add_option("--out-dir", opts->out_dir,
                      "write the captured tag files into this directory");
  capture->add_flag("--in-place", opts->in_place,
                    "rewrite each tag file in place");
  capture->add_flag("--json", opts->json, "print JSON instead of tables");
  capture->add_option("DOC", opts->files, "document tag files")->required();
  capture->callback([opts] { RunCapture(*opts); });
}

}  // namespace pelinor::cli
