// The pattern evaluation entry: the one call through which field and
// line-item data check an OCR text against a pattern specification.
// Rules: docs/formats/patterns.md ("Evaluation").
//
// Each call creates its own engine, reads the optional character-mapping
// file "CharMap.txt" from the directory named by the machine-wide setting
// "ProfileDir", loads the pattern, matches and picks the value, and
// appends its progress to the caller's log file.
//
// The overloads that take a cSettingsSnapshot (and every call made on a
// thread with a ScopedSettingsSnapshot) use the snapshot's mappings and
// touch neither the registry nor the file system.
//
// Thread safety: calls share nothing but the compiled-pattern cache and
// immutable snapshots, and may run on several threads at once.

#ifndef PELINOR_EVALUATE_PATTERN_H_
#define PELINOR_EVALUATE_PATTERN_H_

#include <string>

#include "pelinor/pattern_engine.h"

namespace pelinor {

class cSettingsSnapshot;

inline constexpr char kIllegalPatternError[] = "Illegal pattern specification";
inline constexpr char kPatternValidationError[] = "Pattern validation failed.";
inline constexpr char kCharMapFileName[] = "CharMap.txt";

// CharMapPath()
//
// The path of "CharMap.txt" in the directory named by "ProfileDir"
// (ServerProfileDir(): relative to the settings file's folder), or ""
// when that setting is missing or empty. A trailing "/" or "\" on the
// setting gives the same path as none.
std::string CharMapPath();

// EvaluatePattern()
//
// Checks `strText` against `strPatternSpec` and sets `strOutput` to the
// chosen value: with `bWhole` the matches must cover the whole text,
// otherwise the longest matched text is taken (with the text around it
// when `bKeepSurrounding`). `bCoerce` also tries coerced variations of the
// text; `bSuppressSpaces` removes the spaces of `strText` itself first.
// Returns true on success. On failure `strOutput` is unchanged and
// `strErrMsg` holds the mapping file's message, the matching message, or
// kPatternValidationError; an illegal specification sets
// kIllegalPatternError and matching goes on with an empty expression.
// Lines are appended to `strLogFile` (nothing when it is empty): the
// "Evaluating text" line first, then errors, "Applying regular
// expression" and "Output value:" as they occur. With `trace`, a successful
// evaluation records its steps as EvaluatePatternWith() does.
bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile,
                     cRepairTrace* trace = nullptr);

// EvaluatePattern() with the mappings of `settings` (its CharMapError()
// fails the evaluation as an unreadable file would), whatever the registry
// and the profile directory hold now.
bool EvaluatePattern(std::string& strText, const std::string& strPatternSpec,
                     bool bCoerce, bool bSuppressSpaces, bool bWhole,
                     bool bKeepSurrounding, std::string& strOutput,
                     std::string& strErrMsg, const std::string& strLogFile,
                     const cSettingsSnapshot& settings,
                     cRepairTrace* trace = nullptr);

// EvaluatePatternWith()
//
// EvaluatePattern() run on `engine`, so that a tool can show the elements
// and candidates afterwards. With `trace`, a successful evaluation records
// the spaces it removed, each character a variation mapped
// ("pattern-variation") and the text left outside the matches
// (docs/repair-trace.md); with the format log on, the steps are logged
// there too.
// REQUIRES: `engine` is newly created.
bool EvaluatePatternWith(cPatternEngine& engine, std::string& strText,
                         const std::string& strPatternSpec, bool bCoerce,
                         bool bSuppressSpaces, bool bWhole,
                         bool bKeepSurrounding, std::string& strOutput,
                         std::string& strErrMsg, const std::string& strLogFile,
                         cRepairTrace* trace = nullptr);

// ValidatePatternValue()
//
// The form used for values of data types that have no formatter: whole
// match, spaces kept, no log. True with `strValue` set to the chosen value,
// else false with `strErrMsg` set as EvaluatePattern() does.
bool ValidatePatternValue(const std::string& strText,
                          const std::string& strPatternSpec, bool bCoerce,
                          std::string& strValue, std::string& strErrMsg,
                          cRepairTrace* trace = nullptr);

// ValidatePatternValue() with the mappings of `settings`.
bool ValidatePatternValue(const std::string& strText,
                          const std::string& strPatternSpec, bool bCoerce,
                          std::string& strValue, std::string& strErrMsg,
                          const cSettingsSnapshot& settings,
                          cRepairTrace* trace = nullptr);

}  // namespace pelinor

#endif  // PELINOR_EVALUATE_PATTERN_H_
