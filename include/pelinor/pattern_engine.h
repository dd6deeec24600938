// The pattern engine: turns a field's pattern specification into regular
// expressions, repairs OCR confusions and coerces dates written with month
// names.
//
// Month-name rules: docs/formats/dates.md.
//
// All texts are Windows-1252 bytes; accented month names are matched as
// Windows-1252 letters and also in their unaccented spellings.
//
// Thread safety: an engine is meant to be created per evaluation and used
// by one thread at a time; separate engines may be used from separate
// threads at once. The month tables shared by all engines are built once,
// on first use, in a thread-safe way.

#ifndef PELINOR_PATTERN_ENGINE_H_
#define PELINOR_PATTERN_ENGINE_H_

#include <string>
#include <string_view>

// Pattern specifications and matching.
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "pelinor/char_mapper.h"
#include "pelinor/collection.h"
#include "pelinor/pattern_element.h"
#include "pelinor/reg_exp.h"
#include "pelinor/repair_trace.h"
#include "pelinor/sbs_char_replace.h"
// End of pattern specifications and matching.

namespace pelinor {

namespace internal {
class SpecProgram;
struct RepairScratch;
}  // namespace internal

// Pattern specifications and matching: the messages.
inline constexpr char kNestedGroupError[] =
    "Nested group in pattern specification";
inline constexpr char kEmptyGroupError[] =
    "Empty group in pattern specification";
inline constexpr char kUnopenedGroupError[] =
    "Closing parenthesis without an opening one in pattern specification";
inline constexpr char kUnclosedGroupError[] =
    "Unclosed group in pattern specification";
inline constexpr char kUnclosedQuoteError[] =
    "Unclosed double quote in pattern specification";
inline constexpr char kUnopenedQuoteError[] =
    "Double quote without an opening one at the end of pattern "
    "specification";
inline constexpr char kNestedBraceError[] =
    "Nested brace section in pattern specification";
inline constexpr char kUnclosedBraceError[] =
    "Unclosed brace section in pattern specification";
inline constexpr char kUnopenedBraceError[] =
    "Closing brace without an opening one in pattern specification";
inline constexpr char kTooManyVariationsError[] =
    "Expression results in too many variations to evaluate";
inline constexpr char kRegExpLoadError[] = "Unable to load vbscript.regexp. (";
// The number of variations that fails an evaluation.
inline constexpr int32_t kVariationLimit = 10000;
// End of the pattern-specification messages.

class cPatternEngine {
 public:
  // =====================================================================
  // Pattern specification and matching
  // =====================================================================

  // Language: docs/formats/patterns.md; mapping file:
  // docs/formats/charmap.md.

  // The specification in sub-pattern form, the assembled expression and
  // each element's expression in element order (set by
  // LoadSBSExpression()).
  std::string SBSFormat;
  std::string RegExpFormat;
  Collection<std::string> RegExpFormats;

  // Evaluate coerced variations of the text, not only the text itself.
  bool PerformCoertion = false;
  // Remove every space (never a tab) from the text before matching.
  bool SuppressSpaces = false;
  // The character-mapping table used by coercion; starts built-in.
  std::shared_ptr<cCharMapper> CharMapper = std::make_shared<cCharMapper>();

  // PipeExpressionToSBS()
  //
  // "A|B|C" gives "(A)(B)(C)"; a text without "|" is returned unchanged.
  static std::string PipeExpressionToSBS(const std::string& strExpression);

  // LoadSBSExpression()
  //
  // Converts `strSpec` to sub-pattern form (kept as SBSFormat), splits it
  // into elements, and builds RegExpFormats and RegExpFormat (an optional
  // element E as "(E){0,1}", a mandatory one as E). An illegal
  // specification gives `bSuccess` false, `strErrMsg` one of the messages
  // above, no elements, and RegExpFormat as it was before the call.
  void LoadSBSExpression(const std::string& strSpec, std::string& strErrMsg,
                         bool& bSuccess);

  // LoadCharacterMappings()
  //
  // CharMapper->LoadCharMap(); returns its success.
  bool LoadCharacterMappings(const std::string& strPath,
                             std::string& strErrMsg);

  // Execute()
  //
  // Matches RegExpFormat against `strText` (without its spaces when
  // SuppressSpaces is set; the removal is made in `strText` itself) or,
  // with PerformCoertion and at least one element, against the text and
  // its coerced variations, each a candidate. The 10000th variation stops
  // the evaluation with kTooManyVariationsError. A pattern that cannot be
  // run gives the regular-expression message. `bSuccess` tells the
  // outcome; `strErrMsg` is set only on failure.
  void Execute(std::string& strText, std::string& strErrMsg, bool& bSuccess);

  // BestCandidateWhole()
  //
  // The longest candidate text (earliest on ties) that the expression
  // matches, accepted only when it is as long as the evaluated text.
  // Otherwise `bSuccess` is false and `strValue` empty.
  void BestCandidateWhole(std::string& strValue, bool& bSuccess);

  // BestCandidateSubPattern()
  //
  // The longest non-empty candidate text (earliest on ties). With
  // `bKeepSurrounding` the evaluated text before the candidate's first
  // non-empty match and after its last one is kept around it. `bSuccess`
  // is false, with `strValue` empty, when no candidate matched any text.
  void BestCandidateSubPattern(std::string& strValue, bool bKeepSurrounding,
                               bool& bSuccess);

  // Elements()
  // MetaRules()
  //
  // The loaded specification's elements and brace sections.
  const std::vector<cPatternElement>& Elements() const { return elements_; }
  const cMetaRules& MetaRules() const { return meta_rules_; }

  // Candidates()
  // EvaluatedText()
  // VariationCount()
  //
  // What the last Execute() produced: the candidates in order, the text
  // after space removal, and the number of variations generated (the text
  // itself included).
  const std::vector<cPatternCandidate>& Candidates() const {
    return candidates_;
  }
  const std::string& EvaluatedText() const { return evaluated_text_; }
  int32_t VariationCount() const { return variation_count_; }

  // BestCandidateIndex()
  //
  // The zero-based index in Candidates() of the candidate the last
  // BestCandidateWhole() or BestCandidateSubPattern() chose; -1 when it
  // chose none.
  int32_t BestCandidateIndex() const { return best_; }

  // =====================================================================
  // Month-name and date coercion
  // =====================================================================

  // CoerceShortMonth()
  //
  // Repairs a misread English month abbreviation: a word of exactly three
  // characters that equals, ignoring case, an abbreviation ("JAN" to
  // "DEC") or differs from one in a single position by a listed OCR
  // confusion ("0CT", "N0V", "5EP", "DFC") gives that abbreviation in
  // upper case. Any other word is returned unchanged.
  std::string CoerceShortMonth(const std::string& strWord) const;

  // CoerceShortMonthInString()
  //
  // Tests every three-character stretch of `strInOut` with
  // CoerceShortMonth(). When exactly one stretch hits, it is replaced by
  // its abbreviation; with none or several the text stays as it is. Logs
  // "cPatternEngine.CoerceShortMonthInString:monthCount=<n>" and
  // "cPatternEngine.CoerceShortMonthInString:strInOut=<text>".
  // With `trace`, a repaired abbreviation is recorded as "month-repaired".
  void CoerceShortMonthInString(std::string& strInOut,
                                cRepairTrace* trace = nullptr) const;

  // coerceNameDate()
  //
  // Reads a date written with an English month name or abbreviation,
  // possibly misread ("12 0CT 2003", "MARCH 3RD 2004"), and sets `strOut`
  // to the stored form: day, month and year joined by "/" in the order of
  // "HalvernLocale". False, with `strOut` unchanged, when no such date is
  // found. Logs "cPatternEngine.coerceNameDate(<text>)" and
  // "cPatternEngine.coerceNameDate post CoerceShortMonthInString-><text>".
  bool coerceNameDate(const std::string& strIn, std::string& strOut,
                      cRepairTrace* trace = nullptr) const;

  // coerceFrenchDate()
  // coercePortugueseDate()
  // coerceSpanishDate()
  // coerceGermanDate()
  // coerceItalianDate()
  //
  // As coerceNameDate() for the month names and abbreviations of one
  // language, accented or not ("12 octobre 2003", "15 de março de 2004",
  // "3. März 2004", "7 dicembre 2004", "fevrier", "marz").
  // They use no engine state, so the formatter calls them without an
  // engine.
  static bool coerceFrenchDate(const std::string& strIn, std::string& strOut);
  static bool coercePortugueseDate(const std::string& strIn,
                                   std::string& strOut);
  static bool coerceSpanishDate(const std::string& strIn, std::string& strOut);
  static bool coerceGermanDate(const std::string& strIn, std::string& strOut);
  static bool coerceItalianDate(const std::string& strIn, std::string& strOut);

  // CoerceDate()
  //
  // Formats the date text `strIn` for the date format `strDateFormat`
  // (compared ignoring case): "DATEFR", "DATEPT", "DATEES", "DATEDE" and
  // "DATEIT" select their language's month names, any other name the
  // English ones. When that fails, the general coercion reads the text as
  // cFormat::FormatDate() does for the same format name. `bSuccess` tells
  // whether `strOut` was set; on failure `strOut` is unchanged.
  //
  // With `trace`, each step that changed or interpreted the text is
  // appended to it (docs/repair-trace.md); with the format log on, the
  // steps are also logged after the existing lines.
  void CoerceDate(const std::string& strIn, std::string& strOut,
                  const std::string& strDateFormat, bool& bSuccess,
                  cRepairTrace* trace = nullptr) const;

  // =====================================================================
  // Format log
  // =====================================================================

  // LogFormatMessage()
  //
  // Appends `strMsg` to the format log named by PELINORLOGFORMAT, if set.
  void LogFormatMessage(const std::string& strMsg) const;

 private:
  // Pattern specifications and matching.
  // Creates the regular-expression object when it does not exist yet;
  // false with `strErrMsg` set when that fails.
  bool EnsureRegExp(std::string& strErrMsg);
  // Makes the text and its coerced variations the candidates' variations,
  // in order; false when the limit is reached. `plain_run` tells whether
  // the first candidate's matches, those of the text, are already found.
  bool GenerateVariations(const std::string& text, bool& plain_run);
  // Joins each candidate's match values into its candidate text.
  void BuildCandidateTexts();
  // Runs RegExpFormat over `text` with Global set: through the loaded
  // specification's own matcher while RegExpFormat is the expression the
  // load assembled, else through the regular-expression object.
  // REQUIRES: EnsureRegExp() succeeded.
  bool RunExpression(std::string_view text, cMatchCollection& matches,
                     std::string& strErrMsg);

  std::vector<cPatternElement> elements_;
  cMetaRules meta_rules_;
  std::unique_ptr<cRegExp> regexp_;  // created on first use
  std::vector<cPatternCandidate> candidates_;
  std::string evaluated_text_;
  int32_t variation_count_ = 0;
  int32_t best_ = -1;
  // The last loaded specification's matcher and the expression it stands
  // for; null when the pattern specification is too long for it.
  std::shared_ptr<const internal::SpecProgram> program_;
  std::string loaded_expression_;
  // Specifications loaded so far, and that count when the last Execute()
  // ran the loaded expression (kNotLoaded when it ran another): while both
  // agree and RegExpFormat is still the loaded expression, a candidate's
  // matches are those the expression gives for its variation now.
  static constexpr uint64_t kNotLoaded = ~uint64_t{0};
  uint64_t loads_ = 0;
  uint64_t executed_load_ = kNotLoaded;
  // Whether RegExpFormat is the loaded expression, found once by the
  // Execute() or BestCandidateWhole() under way for its RunExpression()
  // calls.
  bool run_loaded_ = false;
  // The shapes coercion lines texts up with, by text length, for the load
  // counted `shapes_load_`: an engine that runs many texts finds them once
  // per length.
  uint64_t shapes_load_ = kNotLoaded;
  std::unordered_map<size_t, std::vector<std::string>> shapes_;
  // Working storage of GenerateVariations(), kept so that an engine that
  // runs many texts allocates it once.
  std::shared_ptr<internal::RepairScratch> scratch_;
  // End of pattern specifications and matching.

  // Reads a date with a month name of the table `language` (an index of
  // the month tables) and writes its stored form to `strOut`.
  // With `trace`, the month word is recorded; `formatLanguage` is the
  // language the date format asked for, so that a name read in another one
  // is recorded too.
  static bool coerceLanguageDate(int language, const std::string& strIn,
                                 std::string& strOut,
                                 cRepairTrace* trace = nullptr,
                                 int formatLanguage = -1);
  // Records the year, day/month order and layout steps of a coerced date.
  static void TraceDateResult(const std::string& strIn,
                              const std::string& strOut, bool named,
                              cRepairTrace& trace);
};

}  // namespace pelinor

#endif  // PELINOR_PATTERN_ENGINE_H_
