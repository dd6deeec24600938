// The pattern evaluation entry. Rules: docs/formats/patterns.md
// ("Evaluation"); mapping file: docs/formats/charmap.md.

#include "pelinor/evaluate_pattern.h"

#include "pelinor/file_system.h"
#include "pelinor/log.h"
#include "pelinor/registry.h"
#include "pelinor/settings_snapshot.h"

namespace pelinor {

namespace {

// Gives `engine` the mapping file's table: from `snapshot` when there is
// one (no file access), else read now. False, with `strErrMsg` set, when
// the file exists but cannot be read.
bool LoadMappings(cPatternEngine& engine, const cSettingsSnapshot* snapshot,
                  std::string& strErrMsg) {
  if (snapshot != nullptr) {
    if (!snapshot->CharMapError().empty()) {
      strErrMsg = snapshot->CharMapError();
      return false;
    }
    if (snapshot->CharMapper()) {
      // Copies share the loaded table until one is changed.
      engine.CharMapper =
          std::make_shared<cCharMapper>(*snapshot->CharMapper());
    }
    return true;
  }
  const std::string map_path = CharMapPath();
  return map_path.empty() || !FileExists(map_path) ||
         engine.LoadCharacterMappings(map_path, strErrMsg);
}

bool Evaluate(cPatternEngine& engine, std::string& strText,
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

  if (!LoadMappings(engine, snapshot, strErrMsg)) {
    AppendLogLine(strLogFile, strErrMsg);
    return false;
  }

  engine.PerformCoertion = bCoerce;
  engine.SuppressSpaces = bSuppressSpaces;

  bool loaded = false;
  std::string load_error;
  engine.LoadSBSExpression(strPatternSpec, load_error, loaded);
  if (!loaded) {
    // Matching still runs, with whatever expression the engine holds, and
    // decides the result.
    strErrMsg = kIllegalPatternError;
    AppendLogLine(strLogFile, strErrMsg);
  }

  if (logging) {
    AppendLogLine(strLogFile,
                  "Applying regular expression '" + engine.RegExpFormat + "'");
  }

  bool executed = false;
  engine.Execute(strText, strErrMsg, executed);
  if (!executed) {
    AppendLogLine(strLogFile, strErrMsg);
    return false;
  }

  std::string value;
  bool chosen = false;
  if (bWhole) {
    engine.BestCandidateWhole(value, chosen);
  } else {
    engine.BestCandidateSubPattern(value, bKeepSurrounding, chosen);
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
  return Evaluate(engine, strText, strPatternSpec, bCoerce, bSuppressSpaces,
                  bWhole, bKeepSurrounding, strOutput, strErrMsg, strLogFile,
                  cSettingsSnapshot::Current());
}

bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile) {
  cPatternEngine engine;
  return EvaluatePatternWith(engine, strText, strPatternSpec, bCoerce,
                             bSuppressSpaces, bWhole, bKeepSurrounding,
                             strOutput, strErrMsg, strLogFile);
}

bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile,
                     const cSettingsSnapshot& settings) {
  cPatternEngine engine;
  return Evaluate(engine, strText, strPatternSpec, bCoerce, bSuppressSpaces,
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
