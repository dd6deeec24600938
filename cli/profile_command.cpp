// The "profile", "detect" and "scan" verbs: a capture profile, a template
// detection configuration and a scan profile, shown as the library reads
// them, and the record form of a profile written out.
//
// Format: see docs/formats/profile.md and
// docs/formats/detection-and-scan.md.

#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/profile.h"
#include "pelinor/scan_profile.h"
#include "pelinor/tp_detect_type.h"

namespace pelinor::cli {
namespace {

// One object's properties in the classes' interface order, rendered either
// as JSON (named as the properties) or as indented "Name: value" text.
class Props {
 public:
  Props& Text(const char* name, const std::string& cp1252) {
    items_.push_back({name, cp1252});
    return *this;
  }
  Props& Number(const char* name, int32_t value) {
    items_.push_back({name, value});
    return *this;
  }
  Props& Flag(const char* name, bool value) {
    items_.push_back({name, value});
    return *this;
  }
  Props& Texts(const char* name, const Collection<std::string>& list) {
    items_.push_back(
        {name, std::vector<std::string>(list.begin(), list.end())});
    return *this;
  }
  Props& Objects(const char* name, std::vector<Props> list) {
    items_.push_back({name, std::move(list)});
    return *this;
  }

  nlohmann::json ToJson() const {
    nlohmann::json out = nlohmann::json::object();
    for (const Item& item : items_) {
      nlohmann::json& v = out[item.name];
      if (auto* s = std::get_if<std::string>(&item.value)) {
        v = Json(*s);
      } else if (auto* n = std::get_if<int32_t>(&item.value)) {
        v = *n;
      } else if (auto* b = std::get_if<bool>(&item.value)) {
        v = *b;
      } else if (auto* l = std::get_if<std::vector<std::string>>(&item.value)) {
        v = nlohmann::json::array();
        for (const std::string& s : *l) v.push_back(Json(s));
      } else {
        v = nlohmann::json::array();
        for (const Props& p : std::get<std::vector<Props>>(item.value)) {
          v.push_back(p.ToJson());
        }
      }
    }
    return out;
  }

  void Print(const std::string& indent = "") const {
    for (const Item& item : items_) {
      const std::string label = indent + item.name;
      if (auto* s = std::get_if<std::string>(&item.value)) {
        PrintLine(s->empty() ? label + ":" : label + ": " + *s);
      } else if (auto* n = std::get_if<int32_t>(&item.value)) {
        PrintLine(label + ": " + NumberText(*n));
      } else if (auto* b = std::get_if<bool>(&item.value)) {
        PrintLine(label + (*b ? ": true" : ": false"));
      } else if (auto* l = std::get_if<std::vector<std::string>>(&item.value)) {
        PrintLine(label + " (" + NumberText(static_cast<int32_t>(l->size())) +
                  ")" + (l->empty() ? "" : ":"));
        for (const std::string& s : *l) PrintLine(indent + "  - " + s);
      } else {
        const auto& list = std::get<std::vector<Props>>(item.value);
        PrintLine(label + " (" + NumberText(static_cast<int32_t>(list.size())) +
                  ")" + (list.empty() ? "" : ":"));
        for (size_t i = 0; i < list.size(); ++i) {
          PrintLine(indent + "  [" + NumberText(static_cast<int64_t>(i + 1)) +
                    "]");
          list[i].Print(indent + "    ");
        }
      }
    }
  }

 private:
  using Value = std::variant<std::string, int32_t, bool,
                             std::vector<std::string>, std::vector<Props>>;
  struct Item {
    const char* name;
    Value value;
  };
  std::vector<Item> items_;
};

void Show(const Props& props, bool json) {
  if (json) {
    PrintJson(props.ToJson());
  } else {
    props.Print();
  }
}

// Reports a library message about `file`, naming the file (as it was
// typed) and the system's reason when there is one.
void FailWith(const std::string& message, const std::string& file) {
  FailFile(file, message);
}

template <typename T>
std::vector<Props> Each(const Collection<std::shared_ptr<T>>& list,
                        Props (*describe)(const T&)) {
  std::vector<Props> out;
  for (const auto& item : list) {
    if (item != nullptr) out.push_back(describe(*item));
  }
  return out;
}

Props Describe(const cAnchorRef& a) {
  Props p;
  p.Text("Name", a.Name)
      .Number("XOffset", a.XOffset)
      .Number("YOffset", a.YOffset);
  return p;
}

Props Describe(const cFieldType& f) {
  Props p;
  p.Text("Name", f.Name)
      .Text("DisplayName", f.DisplayName)
      .Number("DataType", f.DataType)
      .Number("DataLocation", f.DataLocation)
      .Text("CaptionSearch", f.CaptionSearch)
      .Number("Catagory", f.Catagory)
      .Text("Default", f.Default)
      .Number("Hidden", f.Hidden)
      .Text("Pattern", f.Pattern)
      .Number("PtnMode", f.PtnMode)
      .Number("PtnAllowOverride", f.PtnAllowOverride)
      .Text("Candidate", f.Candidate)
      .Number("InternalValidateLevel", f.InternalValidateLevel)
      .Objects("AnchorRefs", Each<cAnchorRef>(f.AnchorRefs, &Describe));
  return p;
}

Props Describe(const cLineHdrType& h) {
  Props p;
  p.Text("Name", h.Name)
      .Text("DisplayName", h.DisplayName)
      .Number("DataType", h.DataType)
      .Number("DataFlags", h.DataFlags)
      .Number("InternalValidateLevel", h.InternalValidateLevel)
      .Number("Hidden", h.Hidden)
      .Number("ReadOnly", h.ReadOnly)
      .Text("Pattern", h.Pattern)
      .Number("PtnMode", h.PtnMode)
      .Number("PtnAllowOverride", h.PtnAllowOverride);
  return p;
}

Props Describe(const cPelinorState& s) {
  Props p;
  p.Number("State", s.State)
      .Text("tbcDisplayMessage", s.tbcDisplayMessage)
      .Text("OnHoldDisplayMessage", s.OnHoldDisplayMessage);
  return p;
}

Props Describe(const cProfile& pr) {
  Props p;
  p.Text("Name", pr.Name)
      .Text("Version", pr.Version)
      .Text("DisplayName", pr.DisplayName)
      .Text("ValidateScript", pr.ValidateScript)
      .Text("ExportScript", pr.ExportScript)
      .Text("TemplateConfig", pr.TemplateConfig)
      .Text("RejectScript", pr.RejectScript)
      .Text("DeleteScript", pr.DeleteScript)
      .Text("OnEntryScript", pr.OnEntryScript)
      .Text("TemplateDir", pr.TemplateDir)
      .Text("QueueDirRemote", pr.QueueDirRemote)
      .Text("QueueDirLocal", pr.QueueDirLocal)
      .Number("DeletePrompt", pr.DeletePrompt)
      .Number("LastClientViewMode", pr.LastClientViewMode)
      .Number("InternalValidateLevel", pr.InternalValidateLevel)
      .Number("FlattenDuplex", pr.FlattenDuplex)
      .Number("OCRPages", pr.OCRPages)
      .Number("OutputPagesText", pr.OutputPagesText)
      .Number("LineLevel", pr.LineLevel)
      .Text("LineDataRowSpaceMax", pr.LineDataRowSpaceMax)
      .Text("LineDataEntitySpaceMax", pr.LineDataEntitySpaceMax)
      .Number("DocEndMarkInclusive", pr.DocEndMarkInclusive)
      .Number("DocEndMarkSideMode", pr.DocEndMarkSideMode)
      .Number("ExpectedAttachments", pr.ExpectedAttachments)
      .Number("InvalidState", pr.InvalidState)
      .Text("TemplateDetectPages", pr.TemplateDetectPages)
      .Number("LineLevelEnabled", pr.LineLevelEnabled)
      .Number("OCREnabled", pr.OCREnabled)
      .Texts("Allowed", pr.Allowed)
      .Objects("PelinorStates",
               Each<cPelinorState>(pr.PelinorStates, &Describe))
      .Texts("OnHoldReasons", pr.OnHoldReasons)
      .Texts("DeleteReasons", pr.DeleteReasons)
      .Objects("FieldTypes", Each<cFieldType>(pr.FieldTypes, &Describe))
      .Objects("PseudoFieldTypes",
               Each<cFieldType>(pr.PseudoFieldTypes, &Describe))
      .Objects("LineItemHdrs", Each<cLineHdrType>(pr.LineItemHdrs, &Describe));
  return p;
}

Props Describe(const cTpDetectType& t) {
  Props p;
  p.Text("TemplateType", t.TemplateType())
      .Text("DisplayName", t.DisplayName())
      .Text("Format", t.Format())
      .Number("Locate", t.Locate())
      .Number("FloatDistanceConst", t.FloatDistanceConst())
      .Text("Country", t.Country())
      .Text("CountryFormat", t.CountryFormat())
      .Number("MinDigits", t.MinDigits())
      .Number("MaxDigits", t.MaxDigits())
      .Text("DelimsAllowed", t.DelimsAllowed())
      .Flag("SpacesAllowed", t.SpacesAllowed())
      .Texts("SearchStrings", t.SearchStrings());
  return p;
}

Props Describe(const cOCRProps& o) {
  Props p;
  p.Text("EngineSettings", o.EngineSettings)
      .Text("EngineType", o.EngineType)
      .Text("EngineSubType", o.EngineSubType)
      .Text("EngineDescription", o.EngineDescription);
  return p;
}

struct Options {
  // Paths are handed on as given: they name files of this system.
  std::string file;
  std::string out;
  std::string name;  // UTF-8, as typed
  bool json = false;
};

// The profile name given to the reader: --name, or the file's name
// without directory and extension.
std::string ProfileName(const Options& opts) {
  if (!opts.name.empty()) return FromUtf8(opts.name);
  return FromUtf8(FileStemOf(opts.file));
}

bool ReadProfile(const Options& opts, cProfile& profile) {
  if (!CheckConfigurationFile(opts.file, ConfigForm::kVersioned)) return false;
  WarnIfUtf8(opts.file);
  std::string err;
  ClearFileError();
  if (profile.ReadSettings(ProfileName(opts), opts.file, err)) return true;
  FailWith(err, opts.file);
  return false;
}

void RunProfileShow(const Options& opts) {
  cProfile profile;
  if (ReadProfile(opts, profile)) Show(Describe(profile), opts.json);
}

void RunProfileWriteRecord(const Options& opts) {
  cProfile profile;
  if (!ReadProfile(opts, profile)) return;
  std::string err;
  ClearFileError();
  if (!profile.WriteSettings(opts.out, err)) {
    FailWith(err, opts.out);
    return;
  }
  PrintLine("Wrote " + PathText(opts.out) + " (record form, " +
            NumberText(profile.FieldTypes.Count()) + " field types)");
}

void RunDetectShow(const Options& opts) {
  if (!CheckConfigurationFile(opts.file, ConfigForm::kSectioned)) return;
  WarnIfUtf8(opts.file);
  cTpDetectTypes detect;
  std::string err;
  if (!detect.ReadSettings(opts.file, err)) {
    FailWith(err, opts.file);
    return;
  }
  Props p;
  p.Text("SkipFirstNoPages", detect.SkipFirstNoPages)
      .Number("Validate", detect.Validate)
      .Texts("Discard", detect.Discard)
      .Objects("Types", Each<cTpDetectType>(detect.Types, &Describe));
  Show(p, opts.json);
}

void RunScanShow(const Options& opts) {
  if (!CheckConfigurationFile(opts.file, ConfigForm::kSectioned)) return;
  WarnIfUtf8(opts.file);
  cScanProfile scan;
  std::string err;
  if (!scan.ReadSettings(opts.file, err)) {
    FailWith(err, opts.file);
    return;
  }
  Props p;
  p.Number("UnpackedFormat", scan.UnpackedFormat)
      .Number("OCRFromMaster", scan.OCRFromMaster)
      .Number("PerformOCR", scan.PerformOCR)
      .Number("ExtractType", scan.ExtractType)
      .Number("trustDecimalPoint", scan.trustDecimalPoint())
      .Objects("RegularPasses", Each<cOCRProps>(scan.RegularPasses, &Describe))
      .Objects("DotMatrixPasses",
               Each<cOCRProps>(scan.DotMatrixPasses, &Describe));
  Show(p, opts.json);
}

CLI::App* AddShow(CLI::App* group, const std::shared_ptr<Options>& opts,
                  const std::string& description, const char* file_help,
                  const char* json_help) {
  CLI::App* show = group->add_subcommand("show", description);
  show->add_option("FILE", opts->file, file_help)->required();
  show->add_flag("--json", opts->json, json_help);
  return show;
}

}  // namespace

void AddProfileCommands(CLI::App& app) {
  auto opts = std::make_shared<Options>();

  CLI::App* profile = app.add_subcommand(
      "profile",
      "Read capture profiles: the settings form (version 0.91 and later) "
      "and the older record form");
  profile->footer(
      "Exit status: 0 on success; 1 with the file's name and the reason "
      "when the profile cannot be read: the system's reason, \"has no "
      "version line\" for a file that is not a profile, or the reader's "
      "message (\"Reading profile. Unable to find ...\"). See "
      "docs/formats/profile.md.");
  profile->require_subcommand(1);
  CLI::App* show = AddShow(
      profile, opts,
      "Print the whole profile as read: main settings, permitted users, "
      "document states (100 to 199 only), hold and delete reasons, field "
      "types, pseudo field types (category other than 1) and line-item "
      "header types",
      "the profile settings file",
      "print the profile as JSON, named as the library's properties");
  show->add_option("--name", opts->name,
                   "the profile name recorded in Name (default: the file "
                   "name without its extension)");
  show->callback([opts] { RunProfileShow(*opts); });

  CLI::App* write = profile->add_subcommand(
      "write-record",
      "Read FILE and write its record form to OUT: the version line "
      "\"ver0.946\", the scripts, the templates configuration and the "
      "field types (name, display name, type, page number, caption search "
      "and validation level). Only those are kept; the version stamped "
      "makes the file read back in the settings form");
  write->add_option("FILE", opts->file, "the profile settings file")
      ->required();
  write->add_option("OUT", opts->out, "the record file to write (replaced)")
      ->required();
  write->callback([opts] { RunProfileWriteRecord(*opts); });

  CLI::App* detect =
      app.add_subcommand("detect", "Read template detection configurations");
  detect->require_subcommand(1);
  AddShow(detect, opts,
          "Print the detection settings: pages to skip, validation, "
          "discard words and each identifier type (\"TYPE1\", \"TYPE2\", "
          "... up to the first gap, then \"TYPE256\") with its defaults "
          "and clamps applied. See docs/formats/detection-and-scan.md",
          "the detection settings file",
          "print the configuration as JSON, named as the library's "
          "properties")
      ->callback([opts] { RunDetectShow(*opts); });

  CLI::App* scan = app.add_subcommand("scan", "Read scan profiles");
  scan->require_subcommand(1);
  AddShow(scan, opts,
          "Print the scan profile: its \"Main\" switches (1 when absent) "
          "and the regular and dot-matrix OCR passes it names. See "
          "docs/formats/detection-and-scan.md",
          "the scan settings file",
          "print the scan profile as JSON, named as the library's "
          "properties")
      ->callback([opts] { RunScanShow(*opts); });
}

}  // namespace pelinor::cli
