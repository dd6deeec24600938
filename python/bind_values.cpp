// Bindings of the value logic: the formatter, the pattern engine and its
// evaluation entry, the character mapper, the registry and settings files.

#include <optional>
#include <tuple>

#include "pelinor/char_mapper.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/format.h"
#include "pelinor/ini_file.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"
#include "pelinor/settings_snapshot.h"
#include "python/binding_util.h"

namespace pelinor::python {
namespace {

using OptText = std::optional<Text>;
using DateParts = std::optional<std::tuple<Text, Text, Text, float>>;

// A routine of the form bool F(value, out, code, trace) as
// (value, code, trace=None) -> str | None.
template <typename F>
auto Formatted(F f) {
  return [f](const cFormat& fmt, const Text& value, int32_t code,
             Maybe<cRepairTrace> trace) -> OptText {
    std::string out;
    if (!(fmt.*f)(value.bytes, out, code, trace.ptr)) return std::nullopt;
    return Text{out};
  };
}

template <typename F>
auto DatePartsOf(F f) {
  return [f](const cFormat& fmt, const Text& value, int32_t mode) -> DateParts {
    std::string day, month, year;
    float confidence = 0;
    if (!(fmt.*f)(value.bytes, day, month, year, confidence, mode)) {
      return std::nullopt;
    }
    return std::make_tuple(Text{day}, Text{month}, Text{year}, confidence);
  };
}

// A static language routine bool F(in, out) as in -> str | None.
auto Coerced(bool (*f)(const std::string&, std::string&)) {
  return [f](const Text& in) -> OptText {
    std::string out;
    if (!f(in.bytes, out)) return std::nullopt;
    return Text{out};
  };
}

void BindTrace(py::module_& m) {
  py::class_<cRepairStep>(
      m, "cRepairStep",
      "One step of a repair trace: the rule's code, a sentence, the "
      "one-based position in the text given (0: the whole value), the part "
      "before and after, and the risk class ('cosmetic', 'repair', "
      "'guess').")
      .def_property_readonly("Rule",
                             [](const cRepairStep& r) { return Text{r.Rule}; })
      .def_property_readonly(
          "Sentence", [](const cRepairStep& r) { return Text{r.Sentence}; })
      .def_readonly("Position", &cRepairStep::Position)
      .def_property_readonly(
          "Before", [](const cRepairStep& r) { return Text{r.Before}; })
      .def_property_readonly("After",
                             [](const cRepairStep& r) { return Text{r.After}; })
      .def_property_readonly(
          "Risk",
          [](const cRepairStep& r) {
            return Text{std::string(RiskClassName(r.Risk))};
          },
          "'cosmetic', 'repair' or 'guess'.")
      .def("__repr__", [](const cRepairStep& r) {
        return py::str("<cRepairStep {} {} at {}: {!r} -> {!r}>")
            .format(DecodeCp1252(r.Rule), DecodeCp1252(RiskClassName(r.Risk)),
                    r.Position, DecodeCp1252(r.Before), DecodeCp1252(r.After));
      });
  py::class_<cRepairTrace, std::shared_ptr<cRepairTrace>>(
      m, "cRepairTrace",
      "What the formatter and the pattern engine changed in an OCR text, or "
      "how they read it, step by step. Pass one as `trace` to a Format...() "
      "routine, CoerceDate() or EvaluatePattern(); results are the same "
      "with or without one.")
      .def(py::init<>())
      .def("Steps", &cRepairTrace::Steps, "The steps in order (copies).")
      .def("Size", &cRepairTrace::Size, "The number of steps.")
      .def("__len__", &cRepairTrace::Size)
      .def(
          "Highest",
          [](const cRepairTrace& t, size_t from) {
            return Text{std::string(RiskClassName(t.Highest(from)))};
          },
          py::arg("from_") = 0,
          "The highest risk class among the steps from `from_` on; '' when "
          "there are none.")
      .def(
          "Sentences",
          [](const cRepairTrace& t, size_t from) {
            return Text{t.Sentences(from)};
          },
          py::arg("from_") = 0,
          "The sentences of the steps from `from_` on, joined by '; '.")
      .def("Clear", &cRepairTrace::Clear, "Removes every step.");
}

void BindFormat(py::module_& m) {
  py::class_<cFormat>(
      m, "cFormat",
      "The value formatter: validation and normalisation of amounts, "
      "numerics, dates and United Kingdom postcodes read by OCR.\n\n"
      "Results use '.' as decimal point and a leading '-' for negatives, "
      "with no thousands separators. Format...() routines answer the "
      "normalised text, or None when the value cannot be read. Date "
      "routines read the machine-wide setting 'HalvernLocale'. Stateless: "
      "one object may be shared.")
      .def(py::init<>())
      .def(
          "ValidateAmount",
          [](const cFormat& f, const Text& v) {
            return f.ValidateAmount(v.bytes);
          },
          py::arg("value"),
          "True when `value` is an optional leading '-', digits and at most "
          "one '.', the point not last: '.5' and '-.5' pass; '', '-', '5-', "
          "'12.', '1.2.3' and '12a' fail.")
      .def("FormatAmount", Formatted(&cFormat::FormatAmount), py::arg("value"),
           py::arg("code") = 4, py::arg("trace") = py::none(),
           "The normalised amount, or None. `code` 4 (and any code other "
           "than those below) reads GB amounts: 'GB' is removed and the two "
           "last digits are implied decimals ('12.50' and '1250' give "
           "'12.50'); 200 reads US amounts ('$', 's', 'S' are dollar signs); "
           "10004 and 10200 are 4 and 200 with the recognised decimal point "
           "trusted."
           " With `trace` (a cRepairTrace), each step that changed or "
           "interpreted the text is appended to it.")
      .def("FormatNumeric", Formatted(&cFormat::FormatNumeric),
           py::arg("value"), py::arg("code") = 2, py::arg("trace") = py::none(),
           "The normalised number, or None: the right-most decimal "
           "separator (',' for code 300, '.' otherwise) becomes the point, "
           "other separators are dropped, look-alikes become digits."
           " With `trace` (a cRepairTrace), each step that changed or "
           "interpreted the text is appended to it.")
      .def(
          "FormatDescr",
          [](const cFormat& f, int32_t code) {
            return Text{f.FormatDescr(code)};
          },
          py::arg("code"),
          "The format name of a data-type code ('AMOUNT', 'DATEGB', ...); "
          "'' for codes without one.")
      .def(
          "BiasToNumber",
          [](const cFormat& f, const Text& v) {
            std::string s = v.bytes;
            f.BiasToNumber(s);
            return Text{s};
          },
          py::arg("value"),
          "`value` with OCR look-alikes of digits rewritten: O o Q -> 0; "
          "I i / \\ ! | [ ] ( ) L l -> 1; Z z -> 2; S s $ -> 5; G -> 6; "
          "g -> 9; B -> 8.")
      .def(
          "BiasToUCASECharacter",
          [](const cFormat& f, const Text& v, const Text& allowed) {
            std::string s = v.bytes;
            f.BiasToUCASECharacter(s, allowed.bytes);
            return Text{s};
          },
          py::arg("value"), py::arg("allowed"),
          "`value` with look-alikes of upper-case letters rewritten, only "
          "towards letters that occur in `allowed`.")
      .def(
          "LogFormatMessage",
          [](const cFormat& f, const Text& msg) {
            f.LogFormatMessage(msg.bytes);
          },
          py::arg("strMsg"),
          "Appends `strMsg` to the format log named by PELINORLOGFORMAT, if "
          "set.")
      .def(
          "ValidateDate",
          [](const cFormat& f, const Text& v, const Text& country) {
            return f.ValidateDate(v.bytes, country.bytes);
          },
          py::arg("value"), py::arg("country") = Text{"GB"},
          "True when `value` is three parts separated by '/' in the order of "
          "`country` ('US' month/day/year, 'JP' year/month/day, else "
          "day/month/year) and the parts form a valid date.")
      .def(
          "FormatDate",
          [](const cFormat& f, const Text& value, int32_t code,
             Maybe<cSettingsSnapshot> settings) -> OptText {
            std::string out;
            const bool ok = settings.ptr ? f.FormatDate(value.bytes, out, code,
                                                        *settings.ptr)
                                         : f.FormatDate(value.bytes, out, code);
            if (!ok) return std::nullopt;
            return Text{out};
          },
          py::arg("value"), py::arg("code") = 3,
          py::arg("settings") = py::none(),
          "The stored form of the raw OCR date `value` (day, month and "
          "year joined by '/' in the order of 'HalvernLocale', or of "
          "`settings`' locale without reading the registry), read with the "
          "format name of `code`; None when no date is recognised.")
      .def(
          "ValidateRawDate",
          [](const cFormat& f, const Text& v, const Text& name) -> DateParts {
            std::string day, month, year;
            float confidence = 0;
            if (!f.ValidateRawDate(v.bytes, day, month, year, confidence,
                                   name.bytes)) {
              return std::nullopt;
            }
            return std::make_tuple(Text{day}, Text{month}, Text{year},
                                   confidence);
          },
          py::arg("value"), py::arg("name") = Text{"DATEGB"},
          "Recognises a raw OCR date with the format name `name`: month "
          "names, separated parts, digits only, separators misread as ones. "
          "Answers (day, month, year, confidence) arranged for the locale, "
          "confidence 1.0 or 0.7 for a two-digit year; None when no date is "
          "recognised.")
      .def("ValidateDatePartsDDMMYY",
           DatePartsOf(&cFormat::ValidateDatePartsDDMMYY), py::arg("value"),
           py::arg("mode") = 100,
           "(day, month, year, confidence) from three parts split by the "
           "first of '/', '.', ' ', '-', ':' that occurs twice; `mode` 100 "
           "day-month-year, 101 month-day-year, 102 year-month-day. None "
           "when the parts do not form a date.")
      .def("ValidateDatePartsNumeric",
           DatePartsOf(&cFormat::ValidateDatePartsNumeric), py::arg("value"),
           py::arg("mode") = 100,
           "(day, month, year, confidence) from exactly 6 or 8 digits in "
           "the order of `mode`; None otherwise.")
      .def(
          "ValidateDateParsed",
          [](const cFormat& f, const Text& day, const Text& month,
             const Text& year) -> std::optional<std::tuple<Text, Text, Text>> {
            std::string d = day.bytes, mo = month.bytes, y = year.bytes;
            if (!f.ValidateDateParsed(d, mo, y)) return std::nullopt;
            return std::make_tuple(Text{d}, Text{mo}, Text{y});
          },
          py::arg("day"), py::arg("month"), py::arg("year"),
          "(day, month, year) with two, two and four digits when the parts "
          "form a date (years 00-69 are 2000-2069, 70-99 1970-1999; four "
          "digits must lie in 1970-2069); None otherwise.")
      .def(
          "ValidatePostCode",
          [](const cFormat& f, const Text& v) {
            return f.ValidatePostCode(v.bytes);
          },
          py::arg("value"),
          "True for 'GIR 0AA' and for an outward code followed by an inward "
          "code; blanks are ignored.")
      .def("FormatPostCode", Formatted(&cFormat::FormatPostCode),
           py::arg("value"), py::arg("code") = 5, py::arg("trace") = py::none(),
           "The postcode with OCR confusions repaired position by position, "
           "as outward code, blank, inward code; None when the shape cannot "
           "be repaired."
           " With `trace` (a cRepairTrace), each step that changed or "
           "interpreted the text is appended to it.")
      .def(
          "IsInwardCode",
          [](const cFormat& f, const Text& v) {
            return f.IsInwardCode(v.bytes);
          },
          py::arg("code"), "A digit and two inward letters.")
      .def(
          "IsOutwardCode",
          [](const cFormat& f, const Text& v) {
            return f.IsOutwardCode(v.bytes);
          },
          py::arg("code"),
          "2 to 4 characters starting with an upper-case letter: A9, A99, "
          "AA9, A9A, AA99 and AA9A shapes.")
      .def(
          "IsStrictOutwardCode",
          [](const cFormat& f, const Text& v) {
            return f.IsStrictOutwardCode(v.bytes);
          },
          py::arg("code"),
          "The stricter outward test (letters restricted per position).");
}

void BindPattern(py::module_& m) {
  py::class_<cMap>(m, "cMap", "One character mapping: CharFrom -> CharTo.")
      .def(py::init<>())
      .def_property(
          "CharFrom", [](const cMap& c) { return Text{c.CharFrom}; },
          [](cMap& c, const Text& v) { c.CharFrom = v.bytes; })
      .def_property(
          "CharTo", [](const cMap& c) { return Text{c.CharTo}; },
          [](cMap& c, const Text& v) { c.CharTo = v.bytes; });

  py::class_<cCharMapper, std::shared_ptr<cCharMapper>>(
      m, "cCharMapper",
      "The character-mapping table used by OCR coercion; starts with the "
      "156 built-in mappings.")
      .def(py::init<>())
      .def("Count", &cCharMapper::Count, "The number of mappings.")
      .def("__len__", &cCharMapper::Count)
      .def(
          "Item",
          [](const cCharMapper& c, int32_t i) {
            if (i < 1 || i > c.Count()) throw py::index_error("out of range");
            return c.Item(i);
          },
          py::arg("i"), "The mapping at the one-based index `i`.")
      .def(
          "Add",
          [](cCharMapper& c, const Text& from, const Text& to) {
            c.Add(from.bytes, to.bytes);
          },
          py::arg("CharFrom"), py::arg("CharTo"),
          "Appends a mapping, visited after all the others.")
      .def("Clear", &cCharMapper::Clear, "Removes every mapping.")
      .def(
          "LoadCharMap",
          [](cCharMapper& c, const Path& path) {
            std::string err;
            bool ok = false;
            c.LoadCharMap(path.bytes, err, ok);
            Check(ok, err);
          },
          py::arg("path"),
          "Replaces the table with the mapping file's lines. Raises "
          "pelinor.Error with the reader's message (the table stays as it "
          "was).")
      .def(
          "Map",
          [](const cCharMapper& c, const Text& text,
             const Text& wanted) -> OptText {
            std::string s = text.bytes;
            bool found = false;
            c.Map(s, wanted.bytes, found);
            if (!found) return std::nullopt;
            return Text{s};
          },
          py::arg("text"), py::arg("wantedSet"),
          "`text` with the first qualifying mapping applied (every "
          "occurrence of its CharFrom), or None when none qualifies.");

  py::class_<cMatch>(m, "cMatch", "One regular-expression match.")
      .def_property_readonly("value",
                             [](const cMatch& c) { return Text{c.value}; })
      .def_readonly("FirstIndex", &cMatch::FirstIndex,
                    "Zero-based position in the searched text.")
      .def_readonly("Length", &cMatch::Length, "Length in bytes.");

  py::class_<cPatternElement>(m, "cPatternElement",
                              "One element of a loaded specification.")
      .def_property_readonly(
          "Text", [](const cPatternElement& e) { return Text{e.Text}; })
      .def_readonly("Optional", &cPatternElement::Optional)
      .def_property_readonly("Expression", [](const cPatternElement& e) {
        return Text{e.Expression};
      });

  py::class_<cPatternCandidate>(
      m, "cPatternCandidate",
      "One evaluated variation of the text with its matches.")
      .def_property_readonly(
          "Variation",
          [](const cPatternCandidate& c) { return Text{c.Variation}; })
      .def_property_readonly(
          "Text", [](const cPatternCandidate& c) { return Text{c.Text}; })
      .def_property_readonly("Matches", [](const cPatternCandidate& c) {
        std::vector<cMatch> out(c.Matches.begin(), c.Matches.end());
        return out;
      });

  py::class_<cPatternEngine, std::shared_ptr<cPatternEngine>> engine(
      m, "cPatternEngine",
      "The pattern engine: turns a pattern specification into regular "
      "expressions, repairs OCR confusions and coerces dates written with "
      "month names. Meant to be created per evaluation.");
  engine.def(py::init<>());
  TextMember(engine, "SBSFormat", &cPatternEngine::SBSFormat,
             "The specification in sub-pattern form.");
  TextMember(engine, "RegExpFormat", &cPatternEngine::RegExpFormat,
             "The assembled regular expression.");
  engine
      .def_readonly("RegExpFormats", &cPatternEngine::RegExpFormats,
                    "Each element's expression in element order.")
      .def_readwrite("PerformCoertion", &cPatternEngine::PerformCoertion,
                     "Evaluate coerced variations of the text too.")
      .def_readwrite("SuppressSpaces", &cPatternEngine::SuppressSpaces,
                     "Remove every space from the text before matching.")
      .def_readwrite("CharMapper", &cPatternEngine::CharMapper,
                     "The character-mapping table used by coercion.")
      .def_static(
          "PipeExpressionToSBS",
          [](const Text& e) {
            return Text{cPatternEngine::PipeExpressionToSBS(e.bytes)};
          },
          py::arg("strExpression"), "'A|B|C' gives '(A)(B)(C)'.")
      .def(
          "LoadSBSExpression",
          [](cPatternEngine& e, const Text& spec) {
            std::string err;
            bool ok = false;
            e.LoadSBSExpression(spec.bytes, err, ok);
            Check(ok, err);
          },
          py::arg("strSpec"),
          "Loads a pattern specification: sets SBSFormat, RegExpFormats and "
          "RegExpFormat. Raises pelinor.Error with the library's message "
          "for an illegal specification.")
      .def(
          "LoadCharacterMappings",
          [](cPatternEngine& e, const Path& path) {
            std::string err;
            Check(e.LoadCharacterMappings(path.bytes, err), err);
          },
          py::arg("strPath"),
          "Loads a character-mapping file into CharMapper; raises "
          "pelinor.Error on failure.")
      .def(
          "Execute",
          [](cPatternEngine& e, const Text& text) {
            std::string s = text.bytes, err;
            bool ok = false;
            e.Execute(s, err, ok);
            Check(ok, err);
          },
          py::arg("strText"),
          "Matches RegExpFormat against the text (and, with PerformCoertion, "
          "its coerced variations). Raises pelinor.Error with the library's "
          "message on failure. Candidates() then holds the results.")
      .def(
          "BestCandidateWhole",
          [](cPatternEngine& e) -> OptText {
            std::string v;
            bool ok = false;
            e.BestCandidateWhole(v, ok);
            if (!ok) return std::nullopt;
            return Text{v};
          },
          "The longest candidate text that the expression matches as a "
          "whole, or None.")
      .def(
          "BestCandidateSubPattern",
          [](cPatternEngine& e, bool keep) -> OptText {
            std::string v;
            bool ok = false;
            e.BestCandidateSubPattern(v, keep, ok);
            if (!ok) return std::nullopt;
            return Text{v};
          },
          py::arg("bKeepSurrounding") = false,
          "The longest non-empty candidate text (with the evaluated text "
          "around it when `bKeepSurrounding`), or None.")
      .def("Elements", &cPatternEngine::Elements,
           "The loaded specification's elements (copies).")
      .def("Candidates", &cPatternEngine::Candidates,
           "The candidates of the last Execute() (copies).")
      .def(
          "EvaluatedText",
          [](const cPatternEngine& e) { return Text{e.EvaluatedText()}; },
          "The text of the last Execute() after space removal.")
      .def("VariationCount", &cPatternEngine::VariationCount,
           "The number of variations the last Execute() generated.")
      .def(
          "CoerceShortMonth",
          [](const cPatternEngine& e, const Text& w) {
            return Text{e.CoerceShortMonth(w.bytes)};
          },
          py::arg("strWord"),
          "A misread three-letter English month abbreviation repaired "
          "('0CT' -> 'OCT'); any other word unchanged.")
      .def(
          "CoerceShortMonthInString",
          [](const cPatternEngine& e, const Text& s,
             Maybe<cRepairTrace> trace) {
            std::string v = s.bytes;
            e.CoerceShortMonthInString(v, trace.ptr);
            return Text{v};
          },
          py::arg("strInOut"), py::arg("trace") = py::none(),
          "The text with its one misread month abbreviation repaired (none "
          "or several: unchanged); recorded in `trace` as "
          "'month-repaired'.")
      .def(
          "coerceNameDate",
          [](const cPatternEngine& e, const Text& in,
             Maybe<cRepairTrace> trace) -> OptText {
            std::string out;
            if (!e.coerceNameDate(in.bytes, out, trace.ptr))
              return std::nullopt;
            return Text{out};
          },
          py::arg("strIn"), py::arg("trace") = py::none(),
          "The stored form of a date written with an English month name "
          "('12 0CT 2003'), or None; its steps go to `trace`.")
      .def_static("coerceFrenchDate",
                  Coerced(&cPatternEngine::coerceFrenchDate), py::arg("strIn"),
                  "As coerceNameDate() for French month names.")
      .def_static("coercePortugueseDate",
                  Coerced(&cPatternEngine::coercePortugueseDate),
                  py::arg("strIn"),
                  "As coerceNameDate() for Portuguese month names.")
      .def_static("coerceSpanishDate",
                  Coerced(&cPatternEngine::coerceSpanishDate), py::arg("strIn"),
                  "As coerceNameDate() for Spanish month names.")
      .def_static("coerceGermanDate",
                  Coerced(&cPatternEngine::coerceGermanDate), py::arg("strIn"),
                  "As coerceNameDate() for German month names.")
      .def_static("coerceItalianDate",
                  Coerced(&cPatternEngine::coerceItalianDate), py::arg("strIn"),
                  "As coerceNameDate() for Italian month names.")
      .def(
          "CoerceDate",
          [](const cPatternEngine& e, const Text& in, const Text& format,
             Maybe<cRepairTrace> trace) -> OptText {
            std::string out;
            bool ok = false;
            e.CoerceDate(in.bytes, out, format.bytes, ok, trace.ptr);
            if (!ok) return std::nullopt;
            return Text{out};
          },
          py::arg("strIn"), py::arg("strDateFormat"),
          py::arg("trace") = py::none(),
          "The date text formatted for the date format name "
          "('DATEFR' ... 'DATEIT' select their month names, others the "
          "English ones, then the general coercion); None on failure. Each "
          "step that changed or interpreted the text goes to `trace`.");

  m.attr("kIllegalPatternError") = kIllegalPatternError;
  m.attr("kPatternValidationError") = kPatternValidationError;
  m.def(
      "CharMapPath", [] { return Path{CharMapPath()}; },
      "The path of 'CharMap.txt' in the directory named by 'ProfileDir', or "
      "'' when that setting is missing or empty.");
  m.def(
      "EvaluatePattern",
      [](const Text& text, const Text& spec, bool coerce, bool suppress,
         bool whole, bool keep, const Path& log,
         Maybe<cSettingsSnapshot> settings, Maybe<cRepairTrace> trace) {
        std::string t = text.bytes, out, err;
        bool ok = false;
        if (settings.ptr) {
          ok = EvaluatePattern(t, spec.bytes, coerce, suppress, whole, keep,
                               out, err, log.bytes, *settings.ptr, trace.ptr);
        } else {
          cPatternEngine engine;
          ok = EvaluatePatternWith(engine, t, spec.bytes, coerce, suppress,
                                   whole, keep, out, err, log.bytes, trace.ptr);
        }
        Check(ok, err, kPatternValidationError);
        return Text{out};
      },
      py::arg("strText"), py::arg("strPatternSpec"), py::arg("bCoerce") = false,
      py::arg("bSuppressSpaces") = false, py::arg("bWhole") = true,
      py::arg("bKeepSurrounding") = false, py::arg("strLogFile") = Path{},
      py::arg("settings") = py::none(), py::arg("trace") = py::none(),
      "Checks `strText` against `strPatternSpec` and answers the chosen "
      "value: with `bWhole` the matches must cover the whole text, "
      "otherwise the longest matched text is taken (with the text around it "
      "when `bKeepSurrounding`). `bCoerce` also tries coerced variations; "
      "`bSuppressSpaces` removes the text's spaces first. Raises "
      "pelinor.Error with the mapping file's message, the matching message "
      "or kPatternValidationError. Progress lines go to `strLogFile` when "
      "given. With `settings` the snapshot's mappings are used and neither "
      "the registry nor the mapping file is read. With `trace`, a "
      "successful evaluation records the spaces removed, each character a "
      "variation mapped and the text left outside the matches.");
  m.def(
      "ValidatePatternValue",
      [](const Text& text, const Text& spec, bool coerce,
         Maybe<cRepairTrace> trace) {
        std::string value, err;
        Check(ValidatePatternValue(text.bytes, spec.bytes, coerce, value, err,
                                   trace.ptr),
              err, kPatternValidationError);
        return Text{value};
      },
      py::arg("strText"), py::arg("strPatternSpec"), py::arg("bCoerce") = false,
      py::arg("trace") = py::none(),
      "The value chosen by a whole match with spaces kept and no log; raises "
      "pelinor.Error as EvaluatePattern() does; steps go to `trace`.");
}

void BindSettings(py::module_& m) {
  m.attr("kHkeyClassesRoot") = kHkeyClassesRoot;
  m.attr("kHkeyCurrentUser") = kHkeyCurrentUser;
  m.attr("kHkeyLocalMachine") = kHkeyLocalMachine;
  m.attr("kHkeyUsers") = kHkeyUsers;
  py::class_<cRegistry>(
      m, "cRegistry",
      "Machine-wide and per-user registry settings. Elsewhere than Windows "
      "both stores are '.reg' text files named by PELINOR_REGISTRY and "
      "PELINOR_USER_REGISTRY. Reads fall back to the default; writes answer "
      "a status (0 success, -1 key not available, -10 write failed).")
      .def(py::init<>())
      .def(
          "RegGetValue",
          [](const cRegistry& r, int32_t hive, const Text& app,
             const Text& section, const Text& key, const Text& def) {
            return Text{r.RegGetValue(hive, app.bytes, section.bytes, key.bytes,
                                      def.bytes)};
          },
          py::arg("hive"), py::arg("application"), py::arg("section"),
          py::arg("key"), py::arg("strDefault") = Text{},
          "A setting of an application's section, or `strDefault`.")
      .def(
          "RegSaveValue",
          [](const cRegistry& r, int32_t hive, const Text& app,
             const Text& section, const Text& key, const Text& value) {
            return r.RegSaveValue(hive, app.bytes, section.bytes, key.bytes,
                                  value.bytes);
          },
          py::arg("hive"), py::arg("application"), py::arg("section"),
          py::arg("key"), py::arg("value"),
          "Writes a setting; answers the status of the write.")
      .def(
          "RegDelete",
          [](const cRegistry& r, int32_t hive, const Text& app,
             const Text& section) {
            return r.RegDelete(hive, app.bytes, section.bytes);
          },
          py::arg("hive"), py::arg("application"), py::arg("section"),
          "Deletes a section; 0, or the status of the failed delete.")
      .def(
          "RegGetStringValue",
          [](const cRegistry& r, int32_t hive, const Text& path,
             const Text& name, const Text& def) {
            return Text{
                r.RegGetStringValue(hive, path.bytes, name.bytes, def.bytes)};
          },
          py::arg("hive"), py::arg("keyPath"), py::arg("valueName"),
          py::arg("strDefault") = Text{},
          "A value read through a 1024-byte buffer, or `strDefault` when it "
          "is missing, too long or empty.")
      .def(
          "RegSetStringValue",
          [](const cRegistry& r, int32_t hive, const Text& path,
             const Text& name, const Text& value) {
            return r.RegSetStringValue(hive, path.bytes, name.bytes,
                                       value.bytes);
          },
          py::arg("hive"), py::arg("keyPath"), py::arg("valueName"),
          py::arg("value"), "Writes a string value; 0, -1 or -10.");
  m.def(
      "RegReadString",
      [](int32_t hive, const Text& path, const Text& name, const Text& def) {
        return Text{RegReadString(hive, path.bytes, name.bytes, def.bytes)};
      },
      py::arg("hive"), py::arg("keyPath"), py::arg("valueName"),
      py::arg("strDefault") = Text{},
      "Reads a value with the rules of cRegistry.RegGetStringValue().");
  m.def(
      "ReadServerSetting",
      [](const Text& name, const Text& def) {
        return Text{ReadServerSetting(name.bytes, def.bytes)};
      },
      py::arg("valueName"), py::arg("strDefault") = Text{},
      "The server's setting ('HalvernLocale', 'ProfileDir') from "
      "HKEY_LOCAL_MACHINE, or `strDefault`.");

  py::class_<cIniFile, std::shared_ptr<cIniFile>>(
      m, "cIniFile",
      "A sectioned settings file ('[Section]' headers, 'Name:Value' "
      "records). The first call opens the file it names; later calls read "
      "that same file until CloseFile(). A missing file raises pelinor.Error "
      "('Cannot find file ' + name).")
      .def(py::init<>())
      .def(
          "GetSettingString",
          [](cIniFile& f, const Text& section, const Text& name,
             const Text& def, const Path& file) {
            std::string err;
            std::string v = f.GetSettingString(section.bytes, name.bytes,
                                               def.bytes, file.bytes, err);
            Check(err.empty(), err);
            return Text{v};
          },
          py::arg("strSection"), py::arg("strName"), py::arg("strDefault"),
          py::arg("strFileName"),
          "The trimmed value of the first record `strName` in section "
          "`strSection` (both ignoring case), or `strDefault`.")
      .def(
          "GetSettingLong",
          [](cIniFile& f, const Text& section, const Text& name, int32_t def,
             const Path& file) {
            std::string err;
            int32_t v = f.GetSettingLong(section.bytes, name.bytes, def,
                                         file.bytes, err);
            Check(err.empty(), err);
            return v;
          },
          py::arg("strSection"), py::arg("strName"), py::arg("lDefault"),
          py::arg("strFileName"),
          "As GetSettingString(), as a 32-bit integer rounded half to even; "
          "the default when not numeric.")
      .def(
          "GetSettingDouble",
          [](cIniFile& f, const Text& section, const Text& name, double def,
             const Path& file) {
            std::string err;
            double v = f.GetSettingDouble(section.bytes, name.bytes, def,
                                          file.bytes, err);
            Check(err.empty(), err);
            return v;
          },
          py::arg("strSection"), py::arg("strName"), py::arg("dblDefault"),
          py::arg("strFileName"), "As GetSettingString(), as a number.")
      .def(
          "FindHeader",
          [](cIniFile& f, const Text& section, const Path& file) {
            std::string err;
            int32_t v = f.FindHeader(section.bytes, file.bytes, err);
            Check(err.empty(), err);
            return v != 0;
          },
          py::arg("strSection"), py::arg("strFileName"),
          "Whether section `strSection` exists.")
      .def(
          "GetStrings",
          [](cIniFile& f, const Path& file, const Text& header) {
            std::string err;
            Collection<std::string> lines;
            f.GetStrings(file.bytes, header.bytes, lines, err);
            Check(err.empty(), err);
            return lines;
          },
          py::arg("strFileName"), py::arg("Header"),
          "The non-empty lines of section `Header`, as they stand.")
      .def("CloseFile", &cIniFile::CloseFile, "Closes the open file, if any.");
}

}  // namespace

void BindValues(py::module_& m) {
  BindCollection<std::string>(m, "StringCollection",
                              "A one-based list of texts.");
  BindTrace(m);
  BindFormat(m);
  BindPattern(m);
  BindSettings(m);
}

}  // namespace pelinor::python
