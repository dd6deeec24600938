// The "template" verbs: a template file shown as the library reads it
// (with the values it inherits from a profile and the marker files beside
// it), and a template of any version written out in the current one.
//
// Format: see docs/formats/template.md.

#include <iostream>
#include <memory>
#include <string>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"

namespace pelinor::cli {
namespace {

// Keys keep the order of the template's properties.
using json = nlohmann::ordered_json;

struct Options {
  std::string file;
  std::string out;
  std::string profile;
  bool json = false;
};

json Anchor(const cAnchorRef& a) {
  return {
      {"Name", Json(a.Name)}, {"XOffset", a.XOffset}, {"YOffset", a.YOffset}};
}

json Anchors(const Collection<std::shared_ptr<cAnchorRef>>& list) {
  json out = json::array();
  for (const auto& a : list) {
    if (a != nullptr) out.push_back(Anchor(*a));
  }
  return out;
}

json Entry(const cExtractZones& e, bool pseudo) {
  json zones = json::array();
  for (const auto& z : e.Zones) {
    if (z == nullptr) continue;
    zones.push_back({{"Left", z->LeftValue()},
                     {"Top", z->TopValue()},
                     {"Width", z->WidthValue()},
                     {"Height", z->HeightValue()}});
  }
  json out = {{"FieldName", Json(e.FieldName)}};
  if (pseudo) {
    out["CaptionSearch"] = Json(e.CaptionSearch);
    out["DataLocationOverride"] = e.DataLocationOverride;
  } else {
    out["AnchorRefs"] = Anchors(e.AnchorRefs);
    out["DataTypeOverride"] = e.DataTypeOverride;
    out["DataLocationOverride"] = e.DataLocationOverride;
    out["PatternOverride"] = Json(e.PatternOverride);
    out["PatternModeOverride"] = e.PatternModeOverride;
    out["AutoTemplate"] = e.AutoTemplate;
  }
  out["Zones"] = zones;
  return out;
}

json Table(const cTableExtract& t) {
  json pages = json::array();
  for (int32_t p : t.IgnorePages) pages.push_back(p);
  json columns = json::array();
  for (const auto& c : t.Columns) {
    if (c == nullptr) continue;
    columns.push_back(
        {{"Name", Json(c->Name)}, {"Left", c->Left}, {"Width", c->Width}});
  }
  return {{"Left", t.Left},
          {"Top", t.Top},
          {"Width", t.Width},
          {"Height", t.Height},
          {"TopAnchorRefs", Anchors(t.TopAnchorRefs)},
          {"BottomAnchorRefs", Anchors(t.BottomAnchorRefs)},
          {"Location", Json(LocationText(t.Location))},
          {"PageExtract", t.PageExtract},
          {"IgnorePages", pages},
          {"SheetNo", t.SheetNo},
          {"Columns", columns}};
}

json Conditions(const ExpressionList& list) {
  json out = json::array();
  for (const auto& e : list) {
    if (e == nullptr) continue;
    json c = {{"Name", Json(e->Name)}, {"Operation", Json(e->Operation)}};
    if (e->TakesValue()) c["value"] = Json(e->value);
    out.push_back(c);
  }
  return out;
}

json Describe(const cTemplate& t) {
  json fields = json::array();
  for (const auto& e : t.FieldZoneRefs) {
    if (e != nullptr) fields.push_back(Entry(*e, false));
  }
  json pseudo = json::array();
  for (const auto& e : t.PseudoFieldZoneRefs) {
    if (e != nullptr) pseudo.push_back(Entry(*e, true));
  }
  json tables = json::array();
  for (const auto& table : t.LineTables) {
    if (table != nullptr) tables.push_back(Table(*table));
  }
  json rules = json::array();
  for (const auto& r : t.ColLineDataRules) {
    if (r == nullptr) continue;
    rules.push_back({{"PropagateFrom", Json(r->PropagateFrom)},
                     {"PropagateTo", Json(r->PropagateTo)},
                     {"PropagateRows", Json(r->PropagateRows)}});
  }
  json headers = json::array();
  for (const auto& h : t.LineHeaders) {
    if (h == nullptr) continue;
    headers.push_back({{"Name", Json(h->Name)},
                       {"DataType", h->DataType},
                       {"Pattern", Json(h->Pattern)},
                       {"PtnMode", h->PtnMode}});
  }
  return {
      {"Version", Json(t.Version)},
      {"TemplateIdentifier", Json(t.TemplateIdentifier)},
      {"TemplateDisambiguatedID", Json(t.TemplateDisambiguatedID)},
      {"ScannerProfile", Json(t.ScannerProfile)},
      {"PelinorProfile", Json(t.PelinorProfile)},
      {"TemplateIDDatumX", Json(t.TemplateIDDatumX)},
      {"TemplateIDDatumY", Json(t.TemplateIDDatumY)},
      {"UserData", Json(t.UserData)},
      {"UserDataPrimary", t.UserDataPrimary},
      {"ExtractType", t.ExtractType},
      {"Disambiguate", t.Disambiguate},
      {"LineLevel", t.LineLevel()},
      {"OCRPages", t.OCRPages()},
      {"FlattenDuplex", t.FlattenDuplex()},
      {"DocEndMarks", Anchors(t.DocEndMarks)},
      {"DocEndMarkInclusive", t.DocEndMarkInclusive()},
      {"DocEndMarkSideMode", t.DocEndMarkSideMode()},
      {"ExpectedAttachments", t.ExpectedAttachments()},
      {"UserName", Json(t.UserName)},
      {"TimeLastModified", Json(t.TimeLastModified)},
      {"FieldZoneRefs", fields},
      {"PseudoFieldZoneRefs", pseudo},
      {"LineTables", tables},
      {"ColLineDataRules", rules},
      {"LineDataPartition", t.LineDataPartition},
      {"LineDataDiscardStart", t.LineDataDiscardStart},
      {"LineDataDiscardEnd", t.LineDataDiscardEnd},
      {"LineDataEntitySpaceMax", Json(t.LineDataEntitySpaceMax())},
      {"LineDataRowSpaceMax", Json(t.LineDataRowSpaceMax())},
      {"LineDataConditions", Conditions(t.LineDataConditions)},
      {"LineDataEndConditions", Conditions(t.LineDataEndConditions)},
      {"LineDataRptConditions", Conditions(t.LineDataRptConditions)},
      {"LineHeaders", headers},
      {"DAInvoicesOverride", t.DAInvoicesOverride()},
      {"ContentReuseOverride", t.ContentReuseOverride()},
  };
}

// The text form: "Name: value" lines, lists counted and numbered, nested
// objects indented. The JSON texts are UTF-8 already.
void PrintText(const json& object, const std::string& indent) {
  for (const auto& [key, v] : object.items()) {
    const std::string label = indent + key;
    if (v.is_string()) {
      const std::string s = v.get<std::string>();
      WriteStdout(label + (s.empty() ? ":" : ": " + s) + "\n");
    } else if (v.is_array()) {
      WriteStdout(label + " (" + std::to_string(v.size()) + ")" +
                  (v.empty() ? "" : ":") + "\n");
      size_t i = 0;
      for (const auto& item : v) {
        if (item.is_object()) {
          WriteStdout(indent + "  [" + std::to_string(++i) + "]\n");
          PrintText(item, indent + "    ");
        } else {
          WriteStdout(indent + "  - " + item.dump() + "\n");
        }
      }
    } else {
      WriteStdout(label + ": " + v.dump() + "\n");
    }
  }
}

// The profile name given to the reader: the file's name without directory
// and extension.
std::string ProfileName(const std::string& file) {
  return FromUtf8(FileStemOf(file));
}

bool ReadTemplate(const std::string& typed, cTemplate& t) {
  if (!CheckConfigurationFile(typed, ConfigForm::kVersioned)) return false;
  WarnIfUtf8(typed);
  std::string err;
  ClearFileError();
  if (t.ReadSettings(typed, err)) return true;
  FailFile(typed, err);
  return false;
}

// Sets the profile named by --profile, if any, as the template's.
bool SetProfile(const Options& opts, cTemplate& t) {
  if (opts.profile.empty()) return true;
  if (!CheckConfigurationFile(opts.profile, ConfigForm::kVersioned)) {
    return false;
  }
  auto profile = std::make_shared<cProfile>();
  std::string err;
  ClearFileError();
  if (!profile->ReadSettings(ProfileName(opts.profile), opts.profile, err)) {
    FailFile(opts.profile, err);
    return false;
  }
  t.Profile = profile;
  return true;
}

void RunShow(const Options& opts) {
  auto t = cTemplate::New();
  if (!SetProfile(opts, *t) || !ReadTemplate(opts.file, *t)) return;
  const json described = Describe(*t);
  if (opts.json) {
    // As PrintJson() prints, with the keys in property order.
    WriteStdout(described.dump(2) + "\n");
  } else {
    PrintText(described, "");
  }
}

void RunUpgrade(const Options& opts) {
  auto t = cTemplate::New();
  if (!SetProfile(opts, *t) || !ReadTemplate(opts.file, *t)) return;
  if (t->Profile != nullptr) {
    // The current form stores these switches; an older file inherited
    // them. Storing the profile's values keeps the template's behaviour.
    t->LineLevel(t->LineLevel());
    t->OCRPages(t->OCRPages());
    t->FlattenDuplex(t->FlattenDuplex());
    t->DocEndMarkInclusive(t->DocEndMarkInclusive());
    t->DocEndMarkSideMode(t->DocEndMarkSideMode());
    t->ExpectedAttachments(t->ExpectedAttachments());
    t->LineDataRowSpaceMax(t->LineDataRowSpaceMax());
    t->LineDataEntitySpaceMax(t->LineDataEntitySpaceMax());
  }
  std::string err;
  ClearFileError();
  if (!t->WriteSettings(opts.out, err)) {
    FailFile(opts.out, err);
    return;
  }
  WriteStdout("Wrote " + opts.out + " (" + kVersionLine +
              ", read from version " + ToUtf8(t->Version) + ")\n");
}

}  // namespace

void AddTemplateCommands(CLI::App& app) {
  CLI::App* group = app.add_subcommand(
      "template", "Read template files and move them to the current version");
  group->require_subcommand(1);
  auto opts = std::make_shared<Options>();

  CLI::App* show = group->add_subcommand(
      "show",
      "Read a template file of any version and show everything it holds: "
      "identification, field and pseudo-field zones with their anchors and "
      "overrides, document-end marks, line tables, rules, conditions, line "
      "header overrides and the marker-file overrides beside it. Properties "
      "the template does not set show the profile's value (with --profile) "
      "or 0");
  show->add_option("FILE", opts->file, "the template file")->required();
  show->add_option("--profile", opts->profile,
                   "a profile settings file whose values the template "
                   "inherits");
  show->add_flag("--json", opts->json, "print JSON instead of text");
  show->callback([opts] { RunShow(*opts); });

  CLI::App* upgrade = group->add_subcommand(
      "upgrade",
      "Read a template file of any version and write it in the current "
      "form (ver0.946); groups the old file did not have take their "
      "defaults, or with --profile the profile's values");
  upgrade->add_option("IN", opts->file, "the template file to read")
      ->required();
  upgrade
      ->add_option("OUT", opts->out,
                   "the template file to write (replaced; may be IN)")
      ->required();
  upgrade->add_option(
      "--profile", opts->profile,
      "a profile settings file: switches the old file did not store take "
      "the profile's values instead of 0");
  upgrade->callback([opts] { RunUpgrade(*opts); });
}

}  // namespace pelinor::cli
