// The pattern evaluation entry. Rules: docs/formats/patterns.md
// ("Evaluation"); mapping file: docs/formats/charmap.md.

#include "pelinor/evaluate_pattern.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "pattern/memo_matcher.h"
#include "pelinor/file_system.h"
#include "pelinor/log.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"
#include "pelinor/settings_snapshot.h"

namespace pelinor {

namespace {

// Records what the chosen candidate changed: the spaces removed, each
// character a variation mapped within its matches, and the text outside
// the matches that the value leaves out.
void TraceEvaluation(const cPatternEngine& engine, const std::string& original,
                     bool whole, bool keep, cRepairTrace& trace) {
  const std::string& evaluated = engine.EvaluatedText();
  // One-based position in `original` of each evaluated character. Kept
  // per thread, as a batch traces every value it evaluates.
  thread_local std::vector<int32_t> where;
  where.clear();
  where.reserve(evaluated.size());
  size_t spaces = 0;
  int32_t firstSpace = 0;
  for (size_t i = 0; i < original.size(); ++i) {
    if (where.size() < evaluated.size() &&
        original[i] == evaluated[where.size()]) {
      where.push_back(static_cast<int32_t>(i + 1));
    } else if (original[i] == ' ' && spaces++ == 0) {
      firstSpace = static_cast<int32_t>(i + 1);
    }
  }
  while (where.size() < evaluated.size()) {
    where.push_back(static_cast<int32_t>(where.size() + 1));
  }
  if (spaces > 0) {
    trace.Add("spaces-removed",
              std::to_string(spaces) + (spaces == 1 ? " space" : " spaces") +
                  " removed",
              firstSpace, original, evaluated);
  }
  const int32_t index = engine.BestCandidateIndex();
  if (index < 0 || static_cast<size_t>(index) >= engine.Candidates().size()) {
    return;
  }
  const cPatternCandidate& best =
      engine.Candidates()[static_cast<size_t>(index)];
  thread_local std::vector<bool> covered;
  covered.assign(evaluated.size(), false);
  size_t firstMatch = evaluated.size();
  size_t lastMatch = 0;
  for (const cMatch& m : best.Matches) {
    if (m.Length == 0) continue;
    const auto begin = static_cast<size_t>(m.FirstIndex);
    const size_t end =
        std::min(begin + static_cast<size_t>(m.Length), evaluated.size());
    firstMatch = std::min(firstMatch, begin);
    lastMatch = std::max(lastMatch, end);
    for (size_t k = begin; k < end; ++k) {
      covered[k] = true;
      if (k >= best.Variation.size() || best.Variation[k] == evaluated[k]) {
        continue;
      }
      // "<c> at <position> mapped to <c>", built in place.
      std::string sentence(1, evaluated[k]);
      sentence += " at ";
      sentence += std::to_string(where[k]);
      sentence += " mapped to ";
      sentence += best.Variation[k];
      trace.Add("pattern-variation", std::move(sentence), where[k],
                std::string(1, evaluated[k]),
                std::string(1, best.Variation[k]));
    }
  }
  if (whole) return;
  std::string dropped;
  int32_t firstDropped = 0;
  for (size_t k = 0; k < evaluated.size(); ++k) {
    if (covered[k]) continue;
    if (keep && (k < firstMatch || k >= lastMatch)) continue;
    if (dropped.empty()) firstDropped = where[k];
    dropped += evaluated[k];
  }
  if (!dropped.empty()) {
    trace.Add("surrounding-dropped",
              "text outside the matched part dropped: '" + dropped + "'",
              firstDropped, dropped, "");
  }
}

// True when TraceEvaluation() records nothing for the evaluation just made:
// no space was removed, the value is a whole match (nothing outside the
// matches is dropped) and the chosen candidate is the evaluated text
// itself (no character was mapped).
bool RecordsNoRepair(const cPatternEngine& engine, bool spaced, bool whole) {
  if (spaced || !whole) return false;
  const int32_t index = engine.BestCandidateIndex();
  return index < 0 ||
         static_cast<size_t>(index) >= engine.Candidates().size() ||
         engine.Candidates()[static_cast<size_t>(index)].Variation ==
             engine.EvaluatedText();
}

// Gives a new engine the mapping file's table, read now. False, with
// `strErrMsg` set, when the file exists but cannot be read.
bool LoadMappings(cPatternEngine& engine, std::string& strErrMsg) {
  const std::string map_path = CharMapPath();
  return map_path.empty() || !FileExists(map_path) ||
         engine.LoadCharacterMappings(map_path, strErrMsg);
}

// Engines that have loaded a specification, kept per thread for the
// snapshot they were made with: an engine runs any number of texts after
// one LoadSBSExpression(), so evaluations through a snapshot neither
// parse the pattern specification nor build an engine again.
struct LoadedEngine {
  std::unique_ptr<cPatternEngine> engine;
  bool loaded = false;
  // The matcher of a loaded pattern with one way through it (a fixed
  // shape) or a few (listed shapes, as alternatives give), which decides
  // a plain whole-text check by itself.
  std::shared_ptr<const internal::SpecProgram> shapes;
};
struct EngineCache {
  uint64_t snapshot_id = 0;
  std::unordered_map<std::string, LoadedEngine> engines;
};
// Specifications kept per thread; a batch uses a few dozen.
constexpr size_t kCachedEngines = 256;
thread_local EngineCache engine_cache;

LoadedEngine& CachedEngine(const cSettingsSnapshot& snapshot,
                           const std::string& strPatternSpec) {
  EngineCache& cache = engine_cache;
  if (cache.snapshot_id != snapshot.Id()) {
    cache.engines.clear();
    cache.snapshot_id = snapshot.Id();
  }
  auto it = cache.engines.find(strPatternSpec);
  if (it != cache.engines.end()) return it->second;
  if (cache.engines.size() >= kCachedEngines) cache.engines.clear();
  LoadedEngine e;
  e.engine = std::make_unique<cPatternEngine>();
  if (snapshot.CharMapper()) {
    // Copies share the loaded table until one is changed.
    e.engine->CharMapper =
        std::make_shared<cCharMapper>(*snapshot.CharMapper());
  }
  std::string load_error;
  e.engine->LoadSBSExpression(strPatternSpec, load_error, e.loaded);
  if (e.loaded && internal::SpecProgram::CountPaths(e.engine->Elements(),
                                                    e.engine->MetaRules()) <=
                      internal::SpecProgram::kMaxListedPaths) {
    e.shapes = internal::SpecProgram::Build(e.engine->Elements(),
                                            e.engine->MetaRules());
    if (e.shapes != nullptr && e.shapes->Paths() != 1 && !e.shapes->Listed()) {
      e.shapes = nullptr;
    }
  }
  return cache.engines.emplace(strPatternSpec, std::move(e)).first->second;
}

// The evaluation on `engine`, newly made, or with `engine` null on the
// engine cached for `snapshot`. With a snapshot, its mappings are used and
// no file is read.
bool Evaluate(cPatternEngine* engine, std::string& strText,
              const std::string& strPatternSpec, bool bCoerce,
              bool bSuppressSpaces, bool bWhole, bool bKeepSurrounding,
              std::string& strOutput, std::string& strErrMsg,
              const std::string& strLogFile, const cSettingsSnapshot* snapshot,
              cRepairTrace* trace) {
  strErrMsg.clear();
  // Messages are only built when there is a log to write them to.
  const bool logging = !strLogFile.empty();
  if (logging) {
    AppendLogLine(strLogFile, "Evaluating text '" + strText +
                                  "' against pattern spec '" + strPatternSpec +
                                  "'" +
                                  (bCoerce ? " Coertion:on" : " Coertion:off"));
  }

  bool loaded = false;
  if (snapshot != nullptr && !snapshot->CharMapError().empty()) {
    strErrMsg = snapshot->CharMapError();
    AppendLogLine(strLogFile, strErrMsg);
    return false;
  }
  if (engine == nullptr) {
    LoadedEngine& cached = CachedEngine(*snapshot, strPatternSpec);
    // A whole-text check against a fixed shape or a few listed ones, with
    // nothing to log, trace, coerce or remove, is decided by the matcher
    // alone: the engine would find the same matches, and they make up the
    // text (its value) or leave the check failed. Nothing would be logged
    // either way.
    if (cached.shapes != nullptr && bWhole && !logging && trace == nullptr &&
        (!bCoerce || cached.engine->RegExpFormats.Count() == 0) &&
        !(bSuppressSpaces && strText.find(' ') != std::string::npos)) {
      if (const std::optional<bool> whole =
              cached.shapes->WholeMatch(strText)) {
        if (!*whole) {
          strErrMsg = kPatternValidationError;
          return false;
        }
        strOutput = strText;
        return true;
      }
    }
    engine = cached.engine.get();
    loaded = cached.loaded;
  } else {
    if (snapshot != nullptr) {
      if (snapshot->CharMapper()) {
        engine->CharMapper =
            std::make_shared<cCharMapper>(*snapshot->CharMapper());
      }
    } else if (!LoadMappings(*engine, strErrMsg)) {
      AppendLogLine(strLogFile, strErrMsg);
      return false;
    }
    std::string load_error;
    engine->LoadSBSExpression(strPatternSpec, load_error, loaded);
  }
  engine->PerformCoertion = bCoerce;
  engine->SuppressSpaces = bSuppressSpaces;
  if (!loaded) {
    // Matching still runs, with whatever expression the engine holds, and
    // decides the result.
    strErrMsg = kIllegalPatternError;
    AppendLogLine(strLogFile, strErrMsg);
  }

  if (logging) {
    AppendLogLine(strLogFile,
                  "Applying regular expression '" + engine->RegExpFormat + "'");
  }

  bool executed = false;
  // Execute() removes the spaces in `strText` itself; the text as given is
  // kept for the repair steps when there are any to remove.
  const bool spaced = bSuppressSpaces && strText.find(' ') != std::string::npos;
  std::string original;
  if (spaced) original = strText;
  engine->Execute(strText, strErrMsg, executed);
  if (!executed) {
    AppendLogLine(strLogFile, strErrMsg);
    return false;
  }

  std::string value;
  bool chosen = false;
  if (bWhole) {
    engine->BestCandidateWhole(value, chosen);
  } else {
    engine->BestCandidateSubPattern(value, bKeepSurrounding, chosen);
  }
  if (!chosen) {
    strErrMsg = kPatternValidationError;
    AppendLogLine(strLogFile, strErrMsg);
    return false;
  }
  strOutput.swap(value);
  if (logging) AppendLogLine(strLogFile, "Output value:'" + strOutput + "'");
  // The format log only shows repair steps, and a whole match of the text
  // as given, no coerced variation chosen, has none: the log setting is
  // not even read for it.
  const bool formatLog =
      !RecordsNoRepair(*engine, spaced, bWhole) && FormatLogWanted();
  if (trace != nullptr || formatLog) {
    cRepairTrace local;
    cRepairTrace* t = trace != nullptr ? trace : &local;
    const size_t first = t->Size();
    TraceEvaluation(*engine, spaced ? original : strText, bWhole,
                    bKeepSurrounding, *t);
    if (formatLog) LogRepairSteps(*t, first);
  }
  return true;
}

}  // namespace

std::string CharMapPath() {
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    return snapshot->CharMapPath();
  }
  const std::string dir = ServerProfileDir();
  if (dir.empty()) return "";
  return JoinPath(dir, kCharMapFileName);
}

bool EvaluatePatternWith(cPatternEngine& engine, std::string& strText,
                         const std::string& strPatternSpec, bool bCoerce,
                         bool bSuppressSpaces, bool bWhole,
                         bool bKeepSurrounding, std::string& strOutput,
                         std::string& strErrMsg, const std::string& strLogFile,
                         cRepairTrace* trace) {
  return Evaluate(&engine, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  cSettingsSnapshot::Current(), trace);
}

bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile,
                     cRepairTrace* trace) {
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    return Evaluate(nullptr, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                    bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                    snapshot, trace);
  }
  cPatternEngine engine;
  return Evaluate(&engine, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  nullptr, trace);
}

bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile,
                     const cSettingsSnapshot& settings, cRepairTrace* trace) {
  return Evaluate(nullptr, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  &settings, trace);
}

bool ValidatePatternValue(const std::string& strText,
                          const std::string& strPatternSpec, bool bCoerce,
                          std::string& strValue, std::string& strErrMsg,
                          cRepairTrace* trace) {
  std::string text = strText;
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    return Evaluate(nullptr, text, strPatternSpec, bCoerce, false, true, false,
                    strValue, strErrMsg, "", snapshot, trace);
  }
  cPatternEngine engine;
  return Evaluate(&engine, text, strPatternSpec, bCoerce, false, true, false,
                  strValue, strErrMsg, "", nullptr, trace);
}

bool ValidatePatternValue(const std::string& strText,
                          const std::string& strPatternSpec, bool bCoerce,
                          std::string& strValue, std::string& strErrMsg,
                          const cSettingsSnapshot& settings,
                          cRepairTrace* trace) {
  std::string text = strText;
  return EvaluatePattern(text, strPatternSpec, bCoerce, false, true, false,
                         strValue, strErrMsg, "", settings, trace);
}

}  // namespace pelinor
