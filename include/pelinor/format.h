// The value formatter: validation and normalisation of amounts, numerics,
// dates and United Kingdom postcodes read by OCR.
//
// Rules for users: docs/formats/amounts.md (amounts, numerics, postcodes)
// and docs/formats/dates.md (dates and month names).
//
// All texts are Windows-1252 bytes. Results use "." as decimal point and a
// leading "-" for negatives, with no thousands separators. No routine
// raises an error: failure is the false result.
//
// Thread safety: cFormat holds no state; one object may be used from
// several threads at once. Date routines read the machine-wide setting
// "HalvernLocale" from the registry (or from the thread's
// ScopedSettingsSnapshot, settings_snapshot.h) and logging reads
// PELINORLOGFORMAT on every call.

#ifndef PELINOR_FORMAT_H_
#define PELINOR_FORMAT_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "pelinor/repair_trace.h"

namespace pelinor {

class cPatternEngine;
class cSettingsSnapshot;

class cFormat {
 public:
  // ---------------------------------------------------------------------
  // Amounts and numerics
  // ---------------------------------------------------------------------

  // ValidateAmount()
  //
  // True when `value` is an optional leading "-", digits and at most one
  // ".", the point not last: ".5" and "-.5" pass; "", "-", "5-", "12.",
  // "1.2.3" and "12a" fail.
  bool ValidateAmount(const std::string& value) const;

  // FormatAmount()
  //
  // Normalises the OCR text of an amount. `code` 4 (and any code other
  // than those below) reads GB amounts: "GB" is removed and the two last
  // digits are implied decimals ("12.50" and "1250" give "12.50"); 200
  // reads US amounts ("$", "s", "S" are dollar signs); 10004 and 10200 are
  // 4 and 200 with the recognised decimal point trusted. On success `out`
  // is the normalised number and the result is true; else `out` is "".
  // Writes "FormatAmount:" lines to the format log. When `trace` is given
  // each step that changed or interpreted the text is appended to it
  // (docs/repair-trace.md); with the format log on, the steps are also
  // logged after the existing lines.
  bool FormatAmount(const std::string& value, std::string& out, int32_t code,
                    cRepairTrace* trace = nullptr) const;

  // FormatNumeric()
  //
  // Normalises a plain number: the right-most decimal separator ("," for
  // code 300, "." otherwise) becomes the point, other separators are
  // dropped, look-alike characters are biased to digits. False, with
  // `out` unchanged, when nothing usable remains or the result ends in its
  // point.
  // `trace` as for FormatAmount().
  bool FormatNumeric(const std::string& value, std::string& out, int32_t code,
                     cRepairTrace* trace = nullptr) const;

  // FormatDescr()
  //
  // The format name of a data-type code ("AMOUNT", "DATEGB", ...); "" for
  // codes without one.
  std::string FormatDescr(int32_t code) const;

  // BiasToNumber()
  //
  // Rewrites OCR look-alikes of digits in place: O o Q -> 0; I i / \ ! |
  // [ ] ( ) L l -> 1; Z z -> 2; S s $ -> 5; G -> 6; g -> 9; B -> 8.
  void BiasToNumber(std::string& value) const;

  // BiasToUCASECharacter()
  //
  // Rewrites look-alikes of upper-case letters in place, but only towards
  // letters that occur in `allowed` (one-likes to "I", else "L"; "0" to
  // "O", else "Q"; "2" "Z"; "5" and "$" "S"; "6" "G"; "8" "B"). Upper-case
  // letters and every other character stay.
  void BiasToUCASECharacter(std::string& value,
                            const std::string& allowed) const;

  // LogFormatMessage()
  //
  // Appends `strMsg` to the format log named by PELINORLOGFORMAT, if set.
  void LogFormatMessage(const std::string& strMsg) const;

  // ---------------------------------------------------------------------
  // Dates
  // ---------------------------------------------------------------------

  // ValidateDate()
  //
  // True when `value` is three parts separated by "/" in the order of
  // `country` ("US" month/day/year, "JP" year/month/day, else
  // day/month/year, compared ignoring case) and the parts pass
  // ValidateDateParsed(). The value itself is not changed.
  bool ValidateDate(const std::string& value, const std::string& country) const;

  // FormatDate()
  //
  // Recognises the raw date `value` with the format name of `code`
  // (ValidateRawDate()) and, on success, sets `out` to the stored form:
  // day, month and year joined by "/" in the order of "HalvernLocale".
  // On failure `out` is unchanged.
  bool FormatDate(const std::string& value, std::string& out,
                  int32_t code) const;

  // FormatDate() in the order of `settings`' locale, without reading the
  // registry.
  bool FormatDate(const std::string& value, std::string& out, int32_t code,
                  const cSettingsSnapshot& settings) const;

  // ValidateRawDate()
  //
  // Recognises a raw OCR date by trying, in order: month names (the
  // pattern engine's language routine for "DATEFR", "DATEPT", "DATEES",
  // "DATEDE", "DATEIT"; English names otherwise), separated parts, digits
  // only and separators misread as ones. On success `day`, `month` and
  // `year` hold two, two and four digits already arranged for the locale,
  // and `confidence` is 1.0, or 0.7 for a two-digit year.
  bool ValidateRawDate(const std::string& value, std::string& day,
                       std::string& month, std::string& year, float& confidence,
                       const std::string& name) const;

  // ValidateDatePartsDDMMYY()
  //
  // Reads three parts split by the first of "/", ".", " ", "-", ":" that
  // occurs twice; `mode` 100 is day-month-year, 101 month-day-year, 102
  // year-month-day.
  bool ValidateDatePartsDDMMYY(const std::string& value, std::string& day,
                               std::string& month, std::string& year,
                               float& confidence, int32_t mode) const;

  // ValidateDatePartsNumeric()
  //
  // Reads a value of exactly 6 or 8 digits in the order of `mode`.
  bool ValidateDatePartsNumeric(const std::string& value, std::string& day,
                                std::string& month, std::string& year,
                                float& confidence, int32_t mode) const;

  // ValidateDateParsed()
  //
  // Checks day (1-2 digits), month (1-2 digits, 1-12) and year (2 or 4
  // digits; 00-69 is 2000-2069, 70-99 is 1970-1999, four digits must lie in
  // 1970-2069). February has 29 days in every year. On success day and
  // month get two digits and the year four.
  bool ValidateDateParsed(std::string& day, std::string& month,
                          std::string& year) const;

  // ---------------------------------------------------------------------
  // Postcodes
  // ---------------------------------------------------------------------

  // ValidatePostCode()
  //
  // True for "GIR 0AA" and for an outward code (IsOutwardCode()) followed
  // by an inward code (IsInwardCode()); blanks are ignored.
  bool ValidatePostCode(const std::string& value) const;

  // FormatPostCode()
  //
  // Repairs OCR confusions position by position and sets `out` to outward
  // code, blank, inward code. `code` is not used. False, with `out`
  // unchanged, when the shape cannot be repaired.
  // `trace` as for FormatAmount().
  bool FormatPostCode(const std::string& value, std::string& out, int32_t code,
                      cRepairTrace* trace = nullptr) const;

  // IsInwardCode()
  //
  // A digit and two inward letters. The letter test accepts "ABDEFGHJLNPQ
  // RSTUWXYZ" and every character whose code lies from ">" to "B" (so ">",
  // "?" and "@" pass), as installed sites expect.
  bool IsInwardCode(std::string_view code) const;

  // IsOutwardCode()
  //
  // 2 to 4 characters starting with an upper-case letter: A9, A99, AA9,
  // A9A, AA99 and AA9A shapes.
  bool IsOutwardCode(std::string_view code) const;

  // IsStrictOutwardCode()
  //
  // The stricter outward test (letters restricted per position). Not used
  // by ValidatePostCode(); offered to callers that want it.
  bool IsStrictOutwardCode(std::string_view code) const;

 private:
  // The pattern engine's date coercion shares the English month-name
  // routine and the date helpers below.
  friend class cPatternEngine;

  bool FormatCurrencyValue(const std::string& value, std::string& out,
                           bool gbMode, const std::string& countryText,
                           bool trustPoint,
                           cRepairTrace* trace = nullptr) const;
  // What a traced amount scan tells the implied-decimal step: where each
  // character of the scanned text came from (one-based, in the caller's
  // text) and how many digits followed the last point read (-1: none).
  struct AmountScan {
    std::vector<int32_t> origin;
    int32_t decimals = -1;
  };
  bool FormatNumericCurrency(const std::string& value, std::string& out,
                             bool gbMode, bool trustPoint,
                             cRepairTrace* trace = nullptr,
                             AmountScan* scan = nullptr) const;
  // FormatNumericCurrency() with the tracing branches compiled in or out.
  template <bool kTraced>
  bool ScanCurrency(const std::string& value, std::string& out, bool gbMode,
                    bool trustPoint, cRepairTrace* t, AmountScan* scan) const;
  // FormatPostCode() without tracing, and the trace of its result.
  bool FormatPostCodeSteps(const std::string& value, std::string& out,
                           int32_t code) const;
  static void TracePostCode(const std::string& value, const std::string& out,
                            cRepairTrace& trace);
  // Records how the implied decimal point of an amount was decided.
  static void TraceImpliedDecimals(int32_t decimals, const std::string& digits,
                                   const std::string& out, cRepairTrace& trace);
  static void RemoveSubstring(std::string& value, std::string_view part);
  static void RemoveChar(std::string& value, char c);
  static bool IsAmountChars(std::string_view value);

  // ApplyDateLocale() reorders day, month and year for "HalvernLocale":
  // "US" swaps day and month, "JP" swaps day and year.
  void ApplyDateLocale(std::string& day, std::string& month,
                       std::string& year) const;
  bool ValidateMonthNameDate(const std::string& value, std::string& day,
                             std::string& month, std::string& year,
                             int32_t mode) const;
  // The English month a value names, found once for the three readings of
  // ValidateMonthNameDate(): its number (0 for none) and where its word
  // begins and ends.
  struct EnglishMonth {
    int number = 0;
    size_t begin = 0;
    size_t end = 0;
  };
  static EnglishMonth FindEnglishMonth(std::string_view value);
  bool ReadMonthNameDate(const std::string& value, const EnglishMonth& found,
                         std::string& day, std::string& month,
                         std::string& year, int32_t mode) const;
  bool ValidateDateMisreadSeparators(const std::string& value, std::string& day,
                                     std::string& month, std::string& year,
                                     float& confidence, int32_t mode) const;
  static bool NormaliseYear(std::string& year);
  static bool IsValidDay(int day, int month);
  static bool IsAllDigits(std::string_view s);
  static bool IsDigitLookalike(char c);
  // A digit or a look-alike that may stand in a number beside a month
  // name; "\" and "/" separate parts there instead.
  static bool IsDateNumberChar(char c);
  static std::string KeepDateChars(std::string_view s);

  bool FormatInwardCode(std::string& code) const;
  bool FormatOutwardCode(std::string& code) const;
  static std::string StripPostCodeJunk(std::string_view value);
};

}  // namespace pelinor

#endif  // PELINOR_FORMAT_H_
