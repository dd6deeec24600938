// The "pattern" verb: checks OCR texts against a pattern specification the
// way field validation does, and shows the expression and the candidates.
// Language: docs/formats/patterns.md.

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "cli/repair_explain.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/pattern_engine.h"

namespace pelinor::cli {
namespace {

struct PatternOptions {
  std::string spec;  // UTF-8 from the command line
  std::vector<std::string> texts;
  std::string log_file;       // handed on as given
  std::string registry_file;  // handed on as given
  bool coerce = false;
  bool keep_spaces = false;
  bool sub_pattern = false;
  bool keep_surrounding = false;
  bool show_regex = false;
  bool json = false;
  bool explain = false;
};

nlohmann::json ElementsJson(const cPatternEngine& engine) {
  nlohmann::json out = nlohmann::json::array();
  for (const cPatternElement& e : engine.Elements()) {
    out.push_back({{"Text", Json(e.Text)},
                   {"Optional", e.Optional},
                   {"Expression", Json(e.Expression)}});
  }
  return out;
}

nlohmann::json CandidatesJson(const cPatternEngine& engine) {
  nlohmann::json out = nlohmann::json::array();
  for (const cPatternCandidate& c : engine.Candidates()) {
    nlohmann::json matches = nlohmann::json::array();
    for (const cMatch& m : c.Matches) {
      matches.push_back({{"value", Json(m.value)},
                         {"FirstIndex", m.FirstIndex},
                         {"Length", m.Length}});
    }
    out.push_back({{"Variation", Json(c.Variation)},
                   {"Text", Json(c.Text)},
                   {"Matches", matches}});
  }
  return out;
}

// Prints the pattern's expression and elements; false (after
// Fail()) when the pattern is illegal.
bool ShowRegex(const std::string& spec) {
  cPatternEngine engine;
  std::string error;
  bool ok = false;
  engine.LoadSBSExpression(spec, error, ok);
  if (!ok) {
    Fail(std::string(kIllegalPatternError) + ": " + error);
    return false;
  }
  PrintLine("RegExpFormat: " + engine.RegExpFormat);
  int i = 0;
  for (const cPatternElement& e : engine.Elements()) {
    PrintLine("Element " + std::to_string(++i) +
              (e.Optional ? " (optional): " : " (mandatory): ") + e.Text +
              " => " + e.Expression);
  }
  return true;
}

void RunPattern(const PatternOptions& opts) {
  // Only coercion reads the registry (ProfileDir, where CharMap.txt is).
  if (!UseRegistryFile(opts.registry_file, opts.coerce)) return;
  const std::string spec = FromUtf8(opts.spec);
  if (opts.texts.empty() && !opts.show_regex) {
    Fail("give at least one TEXT (or --show-regex)", 2);
    return;
  }
  // A bad specification is the caller's mistake, not a text that fails.
  if (!CheckPatternSpec(spec)) return;
  if (opts.show_regex && !opts.json && !ShowRegex(spec)) return;

  nlohmann::json results = nlohmann::json::array();
  bool all_ok = true;
  for (const std::string& arg : opts.texts) {
    const std::string original = FromUtf8(arg);
    std::string text = original;
    std::string value;
    std::string error;
    cPatternEngine engine;
    cRepairTrace trace;
    const bool ok = EvaluatePatternWith(
        engine, text, spec, opts.coerce, !opts.keep_spaces, !opts.sub_pattern,
        opts.keep_surrounding, value, error, opts.log_file, &trace);
    all_ok = all_ok && ok;
    if (opts.json) {
      results.push_back({{"text", Json(original)},
                         {"evaluated", Json(engine.EvaluatedText())},
                         {"success", ok},
                         {"value", Json(ok ? value : "")},
                         {"error", Json(error)},
                         {"variations", engine.VariationCount()},
                         {"changed", ok && value != original},
                         {"steps", StepsJson(trace)},
                         {"candidates", CandidatesJson(engine)}});
    } else if (ok) {
      PrintLine(value);
      if (opts.explain) PrintSteps(trace);
    } else {
      Fail(original + ": " + error);
    }
  }
  if (!opts.json) return;
  cPatternEngine engine;
  std::string load_error;
  bool loaded = false;
  engine.LoadSBSExpression(spec, load_error, loaded);
  PrintJson({{"spec", Json(spec)},
             {"sbs", Json(engine.SBSFormat)},
             {"legal", loaded},
             {"spec_error", Json(load_error)},
             {"regex", Json(engine.RegExpFormat)},
             {"elements", ElementsJson(engine)},
             {"results", results}});
  if (!all_ok || (opts.show_regex && !loaded)) SetExitStatus(1);
}

}  // namespace

void AddPatternCommand(CLI::App& app) {
  auto opts = std::make_shared<PatternOptions>();
  CLI::App* cmd = app.add_subcommand(
      "pattern",
      "Check OCR texts against a pattern specification and print the value "
      "chosen for each (exit status 1 when any fails)");
  cmd->footer(
      "Specifications: 0 a digit, L an upper-case letter, l a lower-case "
      "letter, \"...\" literal text, (...) an optional element, A|B the "
      "same as (A)(B), {00??} two to four digits. Coercion also tries "
      "texts with look-alike characters replaced through CharMap.txt in "
      "the ProfileDir directory (else the built-in table). See "
      "docs/formats/patterns.md and docs/formats/charmap.md.\n"
      "Example: pelinor pattern --spec LL000000L --coerce AB12345GC");
  cmd->add_option("--spec", opts->spec,
                  "the pattern specification, e.g. LL000000L or 0000|LL")
      ->required();
  cmd->add_option("TEXT", opts->texts, "OCR texts to check");
  cmd->add_flag("--coerce", opts->coerce,
                "also try variations with look-alike characters replaced");
  cmd->add_flag("--keep-spaces", opts->keep_spaces,
                "match the texts with their spaces (default: removed)");
  cmd->add_flag("--sub-pattern", opts->sub_pattern,
                "take the longest matching part of a text instead of "
                "requiring the whole text to match");
  cmd->add_flag("--keep-surrounding", opts->keep_surrounding,
                "with --sub-pattern: keep the text around the match");
  cmd->add_option("--log", opts->log_file,
                  "append the evaluation's progress lines to FILE")
      ->type_name("FILE");
  cmd->add_option("--registry", opts->registry_file,
                  "machine-wide registry file naming ProfileDir (overrides "
                  "PELINOR_REGISTRY)")
      ->type_name("FILE");
  cmd->add_flag("--show-regex", opts->show_regex,
                "print the regular expression and the elements first");
  cmd->add_flag("--explain", opts->explain,
                "print under each value the steps that changed it, each with "
                "its risk class (docs/repair-trace.md)");
  cmd->add_flag("--json", opts->json,
                "print the expression, elements, candidates and errors as "
                "JSON");
  cmd->callback([opts] { RunPattern(*opts); });
}

}  // namespace pelinor::cli
