// The "settings" verbs: look-ups in sectioned settings files ("[Section]"
// header lines and "Name:Value" records), answered by cIniFile exactly as
// the library's own readers see them.
//
// Format: see docs/formats/settings-files.md.

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "pelinor/file_system.h"
#include "pelinor/ini_file.h"
#include "pelinor/numeric.h"

namespace pelinor::cli {
namespace {

struct SettingsOptions {
  // The settings file, handed on as given: it is a path of this system,
  // not a text of the library.
  std::string file;
  // Arguments, as UTF-8 from the command line.
  std::string section;
  std::string key;
  std::optional<std::string> default_value;
  std::string type = "string";
  bool json = false;
};

// Reports a failed call; false when there was nothing to report. The
// library's only message names the file, which is shown as typed.
bool FailedToOpen(const std::string& err, const std::string& file) {
  if (err.empty()) return false;
  if (!FileExists(file)) {
    FailFile(file, "cannot read", ENOENT);
    return true;
  }
  std::string message = err;
  if (message.size() >= file.size() &&
      message.compare(message.size() - file.size(), file.size(), file) == 0) {
    message = message.substr(0, message.size() - file.size()) + PathText(file);
  }
  Fail(message);
  return true;
}

// Opens the file and checks that `section` (Windows-1252) is in it.
bool RequireSection(cIniFile& ini, const SettingsOptions& opts,
                    const std::string& section) {
  std::string err;
  const int32_t found = ini.FindHeader(section, opts.file, err);
  if (FailedToOpen(err, opts.file)) return false;
  if (found == 0) {
    Fail("Section not found: " + section);
    return false;
  }
  return true;
}

nlohmann::json FileJson(const SettingsOptions& opts) {
  return Json(PathText(opts.file));
}

// A numeric --default, or the type's zero; nothing (after Fail()) when the
// text given is not a number of that type.
template <typename T, typename Convert>
std::optional<T> NumericDefault(const SettingsOptions& opts, Convert convert) {
  T value{};
  if (opts.default_value && !convert(FromUtf8(*opts.default_value), value)) {
    Fail("--default is not a " + opts.type +
             " number: " + FromUtf8(*opts.default_value),
         2);
    return std::nullopt;
  }
  return value;
}

void RunGet(const SettingsOptions& opts) {
  if (!CheckConfigurationFile(opts.file, ConfigForm::kSectioned)) return;
  cIniFile ini;
  std::string err;
  const std::string section = FromUtf8(opts.section);
  const std::string key = FromUtf8(opts.key);
  std::string text;
  nlohmann::json value;
  if (opts.type == "single") {
    auto d = NumericDefault<float>(
        opts, [](std::string_view t, float& f) { return ToSingle(t, f); });
    if (!d) return;
    const float f = ini.GetSettingSingle(section, key, *d, opts.file, err);
    text = NumberText(f);
    // The shortest text of the float, so JSON shows 0.946 and not the
    // float's exact binary value.
    value = std::stod(text);
  } else if (opts.type == "double") {
    auto d = NumericDefault<double>(
        opts, [](std::string_view t, double& v) { return ToDouble(t, v); });
    if (!d) return;
    const double v = ini.GetSettingDouble(section, key, *d, opts.file, err);
    text = NumberText(v);
    value = v;
  } else if (opts.type == "long") {
    auto d = NumericDefault<int32_t>(
        opts, [](std::string_view t, int32_t& l) { return ToLong(t, l); });
    if (!d) return;
    const int32_t l = ini.GetSettingLong(section, key, *d, opts.file, err);
    text = NumberText(l);
    value = l;
  } else {
    text = ini.GetSettingString(section, key,
                                FromUtf8(opts.default_value.value_or("")),
                                opts.file, err);
    value = Json(text);
  }
  if (FailedToOpen(err, opts.file)) return;
  if (!opts.json) {
    PrintLine(text);
    return;
  }
  PrintJson({{"file", FileJson(opts)},
             {"section", Json(section)},
             {"key", Json(key)},
             {"type", opts.type},
             {"value", value}});
}

void RunSection(const SettingsOptions& opts) {
  if (!CheckConfigurationFile(opts.file, ConfigForm::kSectioned)) return;
  cIniFile ini;
  const std::string section = FromUtf8(opts.section);
  if (!RequireSection(ini, opts, section)) return;
  std::string err;
  Collection<std::string> lines;
  const int32_t reached_end = ini.GetStrings(opts.file, section, lines, err);
  if (!opts.json) {
    for (const std::string& line : lines) PrintLine(line);
    return;
  }
  nlohmann::json list = nlohmann::json::array();
  for (const std::string& line : lines) list.push_back(Json(line));
  PrintJson({{"file", FileJson(opts)},
             {"section", Json(section)},
             {"lines", list},
             {"reached_end", reached_end == 1}});
}

void RunStates(const SettingsOptions& opts) {
  if (!CheckConfigurationFile(opts.file, ConfigForm::kSectioned)) return;
  cIniFile ini;
  if (!RequireSection(ini, opts, "States")) return;
  std::string err;
  Collection<std::string> numbers;
  Collection<std::string> descriptions;
  Collection<std::string> on_hold;
  const int32_t reached_end =
      ini.GetPELINORStates(opts.file, numbers, descriptions, on_hold, err);
  if (opts.json) {
    nlohmann::json states = nlohmann::json::array();
    for (int i = 1; i <= numbers.Count(); ++i) {
      states.push_back({{"number", Json(numbers.Item(i))},
                        {"description", Json(descriptions.Item(i))},
                        {"on_hold_message", Json(on_hold.Item(i))}});
    }
    PrintJson({{"file", FileJson(opts)},
               {"states", states},
               {"reached_end", reached_end == 1}});
    return;
  }
  // One Windows-1252 byte is one character, so byte counts align columns.
  std::vector<std::vector<std::string>> rows = {
      {"Number", "Description", "On-hold message"}};
  for (int i = 1; i <= numbers.Count(); ++i) {
    rows.push_back({numbers.Item(i), descriptions.Item(i), on_hold.Item(i)});
  }
  size_t widths[2] = {0, 0};
  for (const auto& row : rows) {
    widths[0] = std::max(widths[0], row[0].size());
    widths[1] = std::max(widths[1], row[1].size());
  }
  for (const auto& row : rows) {
    std::string line = row[0];
    line.append(widths[0] - row[0].size() + 2, ' ');
    line += row[1];
    line.append(widths[1] - row[1].size() + 2, ' ');
    line += row[2];
    PrintLine(line);
  }
}

}  // namespace

void AddSettingsCommand(CLI::App& app) {
  auto opts = std::make_shared<SettingsOptions>();
  CLI::App* settings = app.add_subcommand(
      "settings",
      "Read sectioned settings files (\"[Section]\" lines followed by "
      "\"Name:Value\" records), such as capture profiles");
  settings->footer(
      "Exit status: 0 on success; 1 when the file cannot be read or is not "
      "a settings file (a directory, empty, binary, without any "
      "\"[Section]\" line) or, for section and states, when the section is "
      "not in the file (\"Section not found: ...\"); 2 for a --default that "
      "is not a number of the --type asked for. Section and setting names are "
      "compared ignoring case. See docs/formats/settings-files.md.");
  settings->require_subcommand(1);

  CLI::App* get = settings->add_subcommand(
      "get",
      "Print the value of setting KEY in SECTION: the first record of that "
      "name in the section, trimmed. A missing section, a missing record "
      "and an empty value all print the default; for the number types so "
      "does a value that is not a number (long rounds halves to even)");
  get->add_option("FILE", opts->file, "the settings file")->required();
  get->add_option("SECTION", opts->section, "section name, e.g. Main")
      ->required();
  get->add_option("KEY", opts->key, "setting name, e.g. TemplateDir")
      ->required();
  get->add_option("--default", opts->default_value,
                  "value printed when the setting is missing (default: "
                  "empty, or 0 for the number types)");
  get->add_option("--type", opts->type,
                  "read the value as string (default), single, double or "
                  "long")
      ->check(CLI::IsMember({"string", "single", "double", "long"}));
  get->add_flag("--json", opts->json,
                "print file, section, key, type and value as JSON");
  get->callback([opts] { RunGet(*opts); });

  CLI::App* section = settings->add_subcommand(
      "section",
      "Print the non-empty lines of SECTION as they stand, up to the next "
      "section header or the end of the file. Exits with status 1 and "
      "\"Section not found: SECTION\" when the file has no such section");
  section->add_option("FILE", opts->file, "the settings file")->required();
  section->add_option("SECTION", opts->section, "section name, e.g. Field1")
      ->required();
  section->add_flag("--json", opts->json,
                    "print {file, section, lines, reached_end} as JSON; "
                    "reached_end tells whether the section ran to the end "
                    "of the file rather than to another section");
  section->callback([opts] { RunSection(*opts); });

  CLI::App* states = settings->add_subcommand(
      "states",
      "Print the document states of the \"States\" section "
      "(STATEn:description:on-hold message lines) as a table of number, "
      "description and on-hold message. Exits with status 1 and \"Section "
      "not found: States\" when the file has no such section");
  states->add_option("FILE", opts->file, "the settings file")->required();
  states->add_flag("--json", opts->json,
                   "print {file, states: [{number, description, "
                   "on_hold_message}], reached_end} as JSON");
  states->callback([opts] { RunStates(*opts); });
}

}  // namespace pelinor::cli
