// The pattern evaluation entry. Rules: docs/formats/patterns.md
// ("Evaluation"); mapping file: docs/formats/charmap.md.

#include "pelinor/evaluate_pattern.h"

#include <memory>
#include <unordered_map>

#include "pelinor/file_system.h"
#include "pelinor/log.h"
#include "pelinor/registry.h"
#include "pelinor/settings_snapshot.h"

namespace pelinor {

namespace {

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
// parse the specification nor build an engine again.
struct LoadedEngine {
  std::unique_ptr<cPatternEngine> engine;
  bool loaded = false;
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
  return cache.engines.emplace(strPatternSpec, std::move(e)).first->second;
}

// The evaluation on `engine`, newly made, or with `engine` null on the
// engine cached for `snapshot`. With a snapshot, its mappings are used and
// no file is read.
bool Evaluate(cPatternEngine* engine, std::string& strText,
              const std::string& strPatternSpec, bool bCoerce,
              bool bSuppressSpaces, bool bWhole, bool bKeepSurrounding,
              std::string& strOutput, std::string& strErrMsg,
              const std::string& strLogFile,
              const cSettingsSnapshot* snapshot) {
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
  strOutput = value;
  if (logging) AppendLogLine(strLogFile, "Output value:'" + strOutput + "'");
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
                         std::string& strErrMsg,
                         const std::string& strLogFile) {
  return Evaluate(&engine, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  cSettingsSnapshot::Current());
}

bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile) {
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    return Evaluate(nullptr, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                    bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                    snapshot);
  }
  cPatternEngine engine;
  return Evaluate(&engine, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  nullptr);
}

bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile,
                     const cSettingsSnapshot& settings) {
  return Evaluate(nullptr, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  &settings);
}

bool ValidatePatternValue(const std::string& strText,
                          const std::string& strPatternSpec, bool bCoerce,
                          std::string& strValue, std::string& strErrMsg) {
  std::string text = strText;
  return EvaluatePattern(text, strPatternSpec, bCoerce, false, true, false,
                         strValue, strErrMsg, "");
}

bool ValidatePatternValue(const std::string& strText,
                          const std::string& strPatternSpec, bool bCoerce,
                          std::string& strValue, std::string& strErrMsg,
                          const cSettingsSnapshot& settings) {
  std::string text = strText;
  return EvaluatePattern(text, strPatternSpec, bCoerce, false, true, false,
                         strValue, strErrMsg, "", settings);
}

}  // namespace pelinor
