// The "validate" and "format" verbs: check and normalise OCR values as
// amounts, numerics, dates and postcodes, the way a field of that data
// type is checked and formatted.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "cli/repair_explain.h"
#include "core/reg_file_store.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/format.h"
#include "pelinor/numeric.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"
#include "pelinor/text.h"

namespace pelinor::cli {
namespace {

struct FormatOptions {
  std::string type;                 // code or format name, UTF-8
  std::string locale;               // empty: "HalvernLocale" from the registry
  std::string registry_file;        // handed on as given
  std::vector<std::string> values;  // UTF-8
  std::string spec;  // pattern for data types without a formatter, UTF-8
  bool coerce = false;
  bool json = false;
  bool json_lines = false;
  bool explain = false;
};

enum class Family { kAmount, kNumeric, kDate, kPostCode, kNone };

// The registry with the server's "HalvernLocale" laid over it, so that the
// formatter, which reads the locale from the registry, works in the locale
// given on the command line. Everything else goes to the real stores.
class LocaleOverlay : public registry_internal::RegistryBackend {
 public:
  explicit LocaleOverlay(std::string locale)
      : data_(std::move(locale) + '\0'),
        key_(
            UCase(MachineSettingsKeyPath(kServerApplication, kServerSection))) {
  }

  registry_internal::QueryResult QueryValue(int32_t hive,
                                            std::string_view key_path,
                                            std::string_view name,
                                            size_t capacity,
                                            std::string& data) const override {
    if (hive == kHkeyLocalMachine && UCase(key_path) == key_ &&
        EqualsIgnoreCase(name, kLocaleValue)) {
      if (data_.size() > capacity) {
        return registry_internal::QueryResult::kTooLarge;
      }
      data = data_;
      return registry_internal::QueryResult::kOk;
    }
    return system().QueryValue(hive, key_path, name, capacity, data);
  }
  registry_internal::SetResult SetValue(int32_t hive, std::string_view key_path,
                                        std::string_view name, uint32_t type,
                                        std::string_view data) const override {
    return system().SetValue(hive, key_path, name, type, data);
  }
  std::optional<int32_t> DeleteKey(int32_t hive, std::string_view parent_path,
                                   std::string_view subkey) const override {
    return system().DeleteKey(hive, parent_path, subkey);
  }
  std::optional<int32_t> DeleteValue(int32_t hive, std::string_view key_path,
                                     std::string_view name,
                                     bool create_key) const override {
    return system().DeleteValue(hive, key_path, name, create_key);
  }
  std::optional<std::vector<std::string>> ValueNames(
      int32_t hive, std::string_view key_path) const override {
    return system().ValueNames(hive, key_path);
  }

 private:
  static const registry_internal::RegistryBackend& system() {
    return registry_internal::SystemBackend();
  }
  std::string data_;
  std::string key_;
};

// Applies --registry and --locale; false after Fail(). Dates and
// postcodes read the locale from the registry, coercion ProfileDir.
bool PrepareRegistry(const FormatOptions& opts, Family family) {
  const bool needed =
      ((family == Family::kDate || family == Family::kPostCode) &&
       opts.locale.empty()) ||
      (family == Family::kNone && opts.coerce);
  if (!UseRegistryFile(opts.registry_file, needed)) return false;
  if (!opts.locale.empty()) {
    const std::string locale = UCase(FromUtf8(opts.locale));
    if (locale != "GB" && locale != "US" && locale != "JP") {
      Fail("--locale takes GB, US or JP, not \"" + locale + "\"", 2);
      return false;
    }
    static const LocaleOverlay* overlay = nullptr;
    delete overlay;
    overlay = new LocaleOverlay(locale);
    registry_internal::UseBackend(overlay);
  }
  return true;
}

// The codes that have a format name, in the order the names are listed.
constexpr std::array<int32_t, 14> kNamedCodes = {
    2, 300, 3, 4, 200, 5, 100, 101, 102, 103, 104, 105, 106, 107};

Family FamilyOf(int32_t code) {
  switch (code) {
    case 2:
    case 300:
      return Family::kNumeric;
    case 4:
    case 200:
    case 10004:
    case 10200:
      return Family::kAmount;
    case 5:
      return Family::kPostCode;
    case 3:
      return Family::kDate;
    default:
      return code >= 100 && code <= 107 ? Family::kDate : Family::kNone;
  }
}

// The data-type code named by `text`: a number, or a format name ignoring
// case. Nothing (after Fail()) for anything else.
std::optional<int32_t> ParseType(const std::string& text) {
  int32_t code = 0;
  if (ToLong(text, code)) return code;
  const cFormat format;
  for (const int32_t named : kNamedCodes) {
    if (EqualsIgnoreCase(format.FormatDescr(named), text)) return named;
  }
  Fail("unknown data type \"" + text +
       "\": use a code (4, 10004, ...) or a name (AMOUNT, DATEGB, POSTCODE, "
       "...)");
  return std::nullopt;
}

// The name used in messages: the format name, or the code itself.
std::string TypeLabel(int32_t code) {
  std::string name = cFormat().FormatDescr(code);
  return name.empty() ? std::to_string(code) : name;
}

struct Answer {
  std::string input;
  bool valid = false;
  std::string output;    // the normalised value; the input itself when checked
  std::string message;   // why the value failed
  std::string shown;     // what the text line shows after the tab
  bool changed = false;  // formatting changed the text
  cRepairTrace trace;    // what formatting changed, and why
};

// Prints the answers as they come: a text line or a JSON line each, or
// one JSON array at the end. Sets a failing exit status when any value
// failed.
class Reporter {
 public:
  explicit Reporter(const FormatOptions& opts) : opts_(opts) {}
  ~Reporter() {
    if (opts_.json && !opts_.json_lines) PrintJson(all_);
    if (failed_ && ExitStatus() == 0) SetExitStatus(1);
  }
  Reporter(const Reporter&) = delete;
  Reporter& operator=(const Reporter&) = delete;

  void Add(const Answer& a) {
    failed_ |= !a.valid;
    if (!opts_.json && !opts_.json_lines) {
      PrintLine(a.input + "\t" + a.shown);
      if (opts_.explain) PrintSteps(a.trace);
      return;
    }
    nlohmann::json object = {
        {"input", Json(a.input)},   {"valid", a.valid},
        {"output", Json(a.output)}, {"message", Json(a.message)},
        {"changed", a.changed},     {"steps", StepsJson(a.trace)}};
    if (opts_.json_lines) {
      PrintJsonLine(object);
    } else {
      all_.push_back(std::move(object));
    }
  }

 private:
  const FormatOptions& opts_;
  nlohmann::json all_ = nlohmann::json::array();
  bool failed_ = false;
};

// Checks every value against the pattern `opts.spec`, as a field of a
// data type without a formatter is checked; the chosen value is the output.
void RunPattern(const FormatOptions& opts) {
  if (!PrepareRegistry(opts, Family::kNone)) return;
  const std::string spec = FromUtf8(opts.spec);
  if (!CheckPatternSpec(spec)) return;
  Reporter report(opts);
  for (const std::string& arg : opts.values) {
    Answer a;
    a.input = FromUtf8(arg);
    a.valid = ValidatePatternValue(a.input, spec, opts.coerce, a.output,
                                   a.message, &a.trace);
    if (!a.valid) a.output.clear();
    a.changed = a.valid && a.output != a.input;
    a.shown = a.valid ? a.output : a.message;
    report.Add(a);
  }
}

// Formats `input` as the data type `code` of `family` does, recording the
// steps in `trace` when it is given.
bool FormatValue(int32_t code, Family family, const std::string& input,
                 std::string& output, cRepairTrace* trace) {
  const cFormat format;
  switch (family) {
    case Family::kAmount:
      return format.FormatAmount(input, output, code, trace);
    case Family::kNumeric:
      return format.FormatNumeric(input, output, code, trace);
    case Family::kDate: {
      bool ok = false;
      cPatternEngine().CoerceDate(input, output, format.FormatDescr(code), ok,
                                  trace);
      return ok;
    }
    default:
      return format.FormatPostCode(input, output, code, trace);
  }
}

void RunValidate(const FormatOptions& opts) {
  const auto code = ParseType(FromUtf8(opts.type));
  if (!code) return;
  const Family family = FamilyOf(*code);
  if (family == Family::kNone) {
    if (!opts.spec.empty()) return RunPattern(opts);
    Fail("data type " + TypeLabel(*code) +
         " has no validation of its own; such fields are checked against "
         "their pattern: give it with --spec");
    return;
  }
  if (!PrepareRegistry(opts, family)) return;
  const std::string locale = ReadServerSetting(kLocaleValue, "GB");
  const cFormat format;
  Reporter report(opts);
  for (const std::string& arg : opts.values) {
    Answer a;
    a.input = FromUtf8(arg);
    // Validation changes nothing; the trace shows what formatting the
    // value would repair.
    if (opts.explain || opts.json || opts.json_lines) {
      std::string formatted;
      FormatValue(*code, family, a.input, formatted, &a.trace);
    }
    switch (family) {
      case Family::kAmount:
      case Family::kNumeric:
        a.valid = format.ValidateAmount(a.input);
        break;
      case Family::kDate:
        a.valid = format.ValidateDate(a.input, locale);
        break;
      default:
        a.valid = format.ValidatePostCode(a.input);
        break;
    }
    if (a.valid) {
      a.output = a.input;
      a.shown = "ok";
    } else {
      a.message = "not a valid " + TypeLabel(*code);
      if (family == Family::kDate) a.message += " for locale " + locale;
      a.shown = a.message;
    }
    report.Add(a);
  }
}

void RunFormat(const FormatOptions& opts) {
  const auto code = ParseType(FromUtf8(opts.type));
  if (!code) return;
  const Family family = FamilyOf(*code);
  if (family == Family::kNone) {
    if (!opts.spec.empty()) return RunPattern(opts);
    Fail("data type " + TypeLabel(*code) +
         " has no formatting of its own; give its pattern with --spec");
    return;
  }
  if (!PrepareRegistry(opts, family)) return;
  Reporter report(opts);
  const bool traced = opts.explain || opts.json || opts.json_lines;
  for (const std::string& arg : opts.values) {
    Answer a;
    a.input = FromUtf8(arg);
    a.valid = FormatValue(*code, family, a.input, a.output,
                          traced ? &a.trace : nullptr);
    if (a.valid) {
      a.changed = a.output != a.input;
      a.shown = a.output;
    } else {
      a.output.clear();
      a.message = "cannot be formatted as " + TypeLabel(*code);
      a.shown = a.message;
    }
    report.Add(a);
  }
}

CLI::App* AddVerb(CLI::App& app, const char* name, const char* description,
                  FormatOptions& opts) {
  CLI::App* cmd = app.add_subcommand(name, description);
  cmd->add_option("--type,-t", opts.type,
                  "data type: a code (2, 300, 3, 4, 200, 5, 100-107; "
                  "10004/10200 for amounts with a trusted point) or its "
                  "name (NUMERIC, NUMERIC_COMMA, DATE, AMOUNT, AMOUNTUS, "
                  "POSTCODE, DATEGB, DATEUS, DATEJAPAN, DATEFR, DATEPT, "
                  "DATEES, DATEDE, DATEIT)")
      ->required();
  cmd->add_option("VALUE", opts.values,
                  "values to check; put \"--\" before values that start "
                  "with \"-\"")
      ->required();
  cmd->add_option("--spec", opts.spec,
                  "pattern specification for data types without a formatter "
                  "(docs/formats/patterns.md); the value chosen by the "
                  "pattern is the result");
  cmd->add_flag("--coerce", opts.coerce,
                "with --spec: try character-mapping variations of the value");
  cmd->add_flag("--json", opts.json,
                "print a JSON array of {input, valid, output, message, "
                "changed, steps}");
  cmd->add_flag("--explain", opts.explain,
                "print under each value the steps that changed or "
                "interpreted it, each with its risk class (cosmetic, repair, "
                "guess; docs/repair-trace.md)");
  cmd->add_flag("--json-lines", opts.json_lines,
                "print one JSON object {input, valid, output, message} per "
                "line, each as soon as its value is done");
  cmd->add_option("--locale", opts.locale,
                  "date order: GB (day/month/year), US (month/day/year) or "
                  "JP (year/month/day); default: the registry's "
                  "HalvernLocale, else GB");
  cmd->add_option("--registry", opts.registry_file,
                  "machine-wide registry file naming HalvernLocale and "
                  "ProfileDir (overrides PELINOR_REGISTRY)")
      ->type_name("FILE");
  cmd->footer(
      "Prints one line per value: the value, a tab and the result or the "
      "error text. Exits with status 1 when any value fails, 2 for an "
      "invalid --spec or --locale. With "
      "PELINORLOGFORMAT set, the format log lines are appended to that "
      "file. Rules: docs/formats/amounts.md and docs/formats/dates.md.");
  return cmd;
}

}  // namespace

void AddFormatCommands(CLI::App& app) {
  auto validate_opts = std::make_shared<FormatOptions>();
  CLI::App* validate =
      AddVerb(app, "validate",
              "Check values as a field of a data type is checked: amounts and "
              "numerics, dates in the locale's order, UK postcodes",
              *validate_opts);
  validate->callback([validate_opts] { RunValidate(*validate_opts); });

  auto format_opts = std::make_shared<FormatOptions>();
  CLI::App* format = AddVerb(
      app, "format",
      "Normalise OCR values as a field of a data type is formatted: "
      "amounts, numerics, dates (month names in six languages, stored in "
      "the order of the registry's HalvernLocale) and UK postcodes",
      *format_opts);
  format->callback([format_opts] { RunFormat(*format_opts); });
}

}  // namespace pelinor::cli
