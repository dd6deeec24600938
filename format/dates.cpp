// Dates of the formatter: the plain day/month/year check, the recognition
// of raw OCR dates in their many shapes and the stored form arranged for
// the installation's locale. Rules: docs/formats/dates.md.

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

#include "format/date_fast_path.h"
#include "pelinor/format.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/registry.h"
#include "pelinor/settings_snapshot.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Value of a short run of digits (callers check the digits and length).
int SmallNumber(std::string_view digits) {
  int n = 0;
  for (const char c : digits) n = n * 10 + (c - '0');
  return n;
}

void PadTwo(std::string& part) {
  if (part.size() == 1) part.insert(part.begin(), '0');
}

// Characters that stand for the "/" between date parts when OCR reads it
// as a one.
bool IsOneLike(char c) {
  return std::string_view("!1iI\\/Ll|[]").find(c) != std::string_view::npos;
}

constexpr std::string_view kShortMonths =
    "JANFEBMARAPRMAYJUNJULAUGSEPOCTNOVDEC";
constexpr std::array<std::string_view, 12> kFullMonths = {
    "JANUARY", "FEBRUARY", "MARCH",     "APRIL",   "MAY",      "JUNE",
    "JULY",    "AUGUST",   "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};

// Which group a format name belongs to for the choice of parse modes.
enum class DateGroup { kDayFirst, kPortuguese, kUS, kJapan, kAny };

DateGroup GroupOf(const std::string& upperName) {
  if (upperName == "DATEGB" || upperName == "DATEFR" || upperName == "DATEES" ||
      upperName == "DATEDE" || upperName == "DATEIT") {
    return DateGroup::kDayFirst;
  }
  if (upperName == "DATEPT") return DateGroup::kPortuguese;
  if (upperName == "DATEUS") return DateGroup::kUS;
  if (upperName == "DATEJAPAN") return DateGroup::kJapan;
  return DateGroup::kAny;
}

// Modes for the separated and digits-only shapes.
std::initializer_list<int32_t> PartModes(DateGroup group) {
  static constexpr std::initializer_list<int32_t> kDay = {100};
  static constexpr std::initializer_list<int32_t> kUS = {101};
  static constexpr std::initializer_list<int32_t> kJapan = {102};
  static constexpr std::initializer_list<int32_t> kAll = {100, 101, 102};
  switch (group) {
    case DateGroup::kDayFirst:
    case DateGroup::kPortuguese:
      return kDay;
    case DateGroup::kUS:
      return kUS;
    case DateGroup::kJapan:
      return kJapan;
    case DateGroup::kAny:
      break;
  }
  return kAll;
}

// Modes for the misread-separator shape, where Portuguese dates try all
// three orders.
std::initializer_list<int32_t> MisreadModes(DateGroup group) {
  return group == DateGroup::kPortuguese ? PartModes(DateGroup::kAny)
                                         : PartModes(group);
}

// Assigns the parts a, b, c (in text order) for `mode`; false for an
// unknown mode.
bool AssignByMode(int32_t mode, std::string_view a, std::string_view b,
                  std::string_view c, std::string& day, std::string& month,
                  std::string& year) {
  switch (mode) {
    case 100:
      day = a, month = b, year = c;
      return true;
    case 101:
      month = a, day = b, year = c;
      return true;
    case 102:
      year = a, month = b, day = c;
      return true;
    default:
      return false;
  }
}

}  // namespace

bool cFormat::ValidateDate(const std::string& value,
                           const std::string& country) const {
  const std::string upper = UCase(country);
  const int32_t mode = upper == "US" ? 101 : upper == "JP" ? 102 : 100;
  const size_t first = value.find('/');
  if (first == std::string::npos || first + 1 == value.size()) return false;
  const size_t second = value.find('/', first + 1);
  if (second == std::string::npos || second + 1 == value.size()) return false;
  std::string day, month, year;
  const std::string_view v(value);
  AssignByMode(mode, v.substr(0, first),
               v.substr(first + 1, second - first - 1), v.substr(second + 1),
               day, month, year);
  return ValidateDateParsed(day, month, year);
}

bool cFormat::ValidateDateParsed(std::string& day, std::string& month,
                                 std::string& year) const {
  if (day.size() > 2 || month.size() > 2 || year.size() > 4) return false;
  if (!IsAllDigits(day) || !IsAllDigits(month) || !IsAllDigits(year)) {
    return false;
  }
  if (!NormaliseYear(year)) return false;
  const int m = SmallNumber(month);
  if (m < 1 || m > 12) return false;
  if (!IsValidDay(SmallNumber(day), m)) return false;
  PadTwo(day);
  PadTwo(month);
  return true;
}

bool cFormat::FormatDate(const std::string& value, std::string& out,
                         int32_t code) const {
  // Plain numeric dates, the common case, are read without the month-name
  // searches; the reading gives what the full one below would.
  if (internal::FormatPlainNumericDate(value, code, out)) return true;
  std::string day, month, year;
  float confidence = 0;
  if (!ValidateRawDate(value, day, month, year, confidence,
                       FormatDescr(code))) {
    return false;
  }
  out = day + "/" + month + "/" + year;
  return true;
}

bool cFormat::FormatDate(const std::string& value, std::string& out,
                         int32_t code,
                         const cSettingsSnapshot& settings) const {
  const ScopedSettingsSnapshot scope(&settings);
  return FormatDate(value, out, code);
}

bool cFormat::ValidateRawDate(const std::string& value, std::string& day,
                              std::string& month, std::string& year,
                              float& confidence,
                              const std::string& name) const {
  const std::string upper = UCase(name);

  // Month names: the pattern engine knows the five other languages.
  bool (*language)(const std::string&, std::string&) = nullptr;
  if (upper == "DATEFR") language = &cPatternEngine::coerceFrenchDate;
  if (upper == "DATEPT") language = &cPatternEngine::coercePortugueseDate;
  if (upper == "DATEES") language = &cPatternEngine::coerceSpanishDate;
  if (upper == "DATEDE") language = &cPatternEngine::coerceGermanDate;
  if (upper == "DATEIT") language = &cPatternEngine::coerceItalianDate;
  if (language != nullptr) {
    std::string stored;
    if (language(value, stored)) {
      // The stored form is the three parts in locale order joined by "/".
      const size_t first = stored.find('/');
      const size_t second = stored.find('/', first + 1);
      day = stored.substr(0, first);
      month = stored.substr(first + 1, second - first - 1);
      year = stored.substr(second + 1);
      confidence = 1.0f;
      return true;
    }
  } else {
    const EnglishMonth found = FindEnglishMonth(value);
    for (const int32_t mode : {1, 2, 3}) {
      if (ReadMonthNameDate(value, found, day, month, year, mode)) {
        confidence = 1.0f;
        return true;
      }
    }
  }

  const DateGroup group = GroupOf(upper);
  for (const int32_t mode : PartModes(group)) {
    if (ValidateDatePartsDDMMYY(value, day, month, year, confidence, mode)) {
      return true;
    }
  }
  for (const int32_t mode : PartModes(group)) {
    if (ValidateDatePartsNumeric(value, day, month, year, confidence, mode)) {
      return true;
    }
  }
  if (value.size() > 6) {
    for (const int32_t mode : MisreadModes(group)) {
      if (ValidateDateMisreadSeparators(value, day, month, year, confidence,
                                        mode)) {
        return true;
      }
    }
  }
  return false;
}

bool cFormat::ValidateDatePartsDDMMYY(const std::string& value,
                                      std::string& day, std::string& month,
                                      std::string& year, float& confidence,
                                      int32_t mode) const {
  day.clear();
  month.clear();
  year.clear();
  size_t first = std::string::npos;
  size_t second = std::string::npos;
  for (const char separator : std::string_view("/. -:")) {
    first = value.find(separator);
    if (first == std::string::npos) continue;
    second = value.find(separator, first + 1);
    if (second != std::string::npos) break;
  }
  if (second == std::string::npos) return false;
  const std::string_view v(value);
  if (!AssignByMode(mode, Trim(v.substr(0, first)),
                    Trim(v.substr(first + 1, second - first - 1)),
                    Trim(v.substr(second + 1)), day, month, year)) {
    return false;
  }
  day = KeepDateChars(day);
  month = KeepDateChars(month);
  year = KeepDateChars(year);
  const bool shortYear = year.size() == 2;
  if (!ValidateDateParsed(day, month, year)) return false;
  confidence = shortYear ? 0.7f : 1.0f;
  ApplyDateLocale(day, month, year);
  return true;
}

bool cFormat::ValidateDatePartsNumeric(const std::string& value,
                                       std::string& day, std::string& month,
                                       std::string& year, float& confidence,
                                       int32_t mode) const {
  day.clear();
  month.clear();
  year.clear();
  if ((value.size() != 6 && value.size() != 8) || !IsAllDigits(value)) {
    return false;
  }
  const std::string_view v(value);
  if (mode == 102) {
    const size_t n = v.size();
    year = v.substr(0, n - 4);
    month = v.substr(n - 4, 2);
    day = v.substr(n - 2);
  } else if (!AssignByMode(mode, v.substr(0, 2), v.substr(2, 2), v.substr(4),
                           day, month, year)) {
    return false;
  }
  const bool shortYear = year.size() == 2;
  if (!ValidateDateParsed(day, month, year)) return false;
  confidence = shortYear ? 0.7f : 1.0f;
  ApplyDateLocale(day, month, year);
  return true;
}

bool cFormat::ValidateDateMisreadSeparators(
    const std::string& value, std::string& day, std::string& month,
    std::string& year, float& confidence, int32_t mode) const {
  const size_t n = value.size();
  if (n < 6) return false;
  // Zero-based positions of the two separators.
  const size_t first = mode == 102 ? n - 6 : 2;
  const size_t second = mode == 102 ? n - 3 : 5;
  if (!IsOneLike(value[first]) || !IsOneLike(value[second])) return false;
  const std::string joined = value.substr(0, first) +
                             value.substr(first + 1, second - first - 1) +
                             value.substr(second + 1);
  return ValidateDatePartsNumeric(joined, day, month, year, confidence, mode);
}

bool cFormat::ValidateMonthNameDate(const std::string& value, std::string& day,
                                    std::string& month, std::string& year,
                                    int32_t mode) const {
  return ReadMonthNameDate(value, FindEnglishMonth(value), day, month, year,
                           mode);
}

cFormat::EnglishMonth cFormat::FindEnglishMonth(std::string_view value) {
  // The search form is upper case with "0" read as "O" and "1" as "L", so
  // that letters misread as digits inside the month name still match.
  const auto at = [&value](size_t k) {
    const char c = UpperChar(value[k]);
    return c == '0' ? 'O' : c == '1' ? 'L' : c;
  };
  // The earliest calendar month wins, wherever it stands; for it the first
  // occurrence counts.
  EnglishMonth found;
  int best = 13;
  for (size_t k = 0; k + 3 <= value.size(); ++k) {
    const char first = at(k);
    if (std::string_view("JFMASOND").find(first) == std::string_view::npos) {
      continue;
    }
    const char second = at(k + 1);
    const char third = at(k + 2);
    for (int m = 1; m < best; ++m) {
      const std::string_view abbr = kShortMonths.substr(3 * (m - 1), 3);
      if (abbr[0] == first && abbr[1] == second && abbr[2] == third) {
        best = m;
        found.begin = k;
        break;
      }
    }
  }
  if (best == 13) return found;
  found.number = best;
  // The word ends after the full name when it is written out.
  const std::string_view full = kFullMonths[best - 1];
  found.end = found.begin + 3;
  if (found.begin + full.size() <= value.size()) {
    size_t k = 3;
    while (k < full.size() && at(found.begin + k) == full[k]) ++k;
    if (k == full.size()) found.end = found.begin + full.size();
  }
  return found;
}

bool cFormat::ReadMonthNameDate(const std::string& value,
                                const EnglishMonth& found, std::string& day,
                                std::string& month, std::string& year,
                                int32_t mode) const {
  day.clear();
  month.clear();
  year.clear();
  if (found.number == 0 || found.end >= value.size()) return false;
  const int monthNumber = found.number;
  const size_t p = found.begin;
  const size_t end = found.end;

  std::string dayText;
  std::string yearText;
  if (mode == 1) {
    for (size_t i = 0; i < p; ++i) {
      if (IsDateNumberChar(value[i])) dayText += value[i];
    }
    // The year is the first number after the month; anything after it
    // (a time, a reference) is ignored.
    size_t i = end;
    while (i < value.size() && !IsDigit(value[i])) ++i;
    size_t start = i;
    while (start > end && IsDateNumberChar(value[start - 1])) --start;
    while (i < value.size() && IsDateNumberChar(value[i])) ++i;
    yearText = value.substr(start, i - start);
  } else if (mode == 2 || mode == 3) {
    if (p != 0) return false;
    // An ordinal suffix would glue the day to the year; the first suffix
    // found anywhere (month name included) becomes a separator throughout.
    std::string upper = UCase(value);
    for (const std::string_view suffix : {"ST", "ND", "RD", "TH"}) {
      if (upper.find(suffix) == std::string::npos) continue;
      std::string replaced;
      replaced.reserve(upper.size());
      for (size_t at = 0; at < upper.size();) {
        if (upper.compare(at, suffix.size(), suffix) == 0) {
          replaced += ',';
          at += suffix.size();
        } else {
          replaced += upper[at++];
        }
      }
      upper.swap(replaced);
      break;
    }
    // Numbers after the month, gathered from the end; separators end a
    // number and any other character is passed over.
    std::array<std::string, 2> numbers;  // in reading order from the end
    int count = 0;
    std::string current;
    const auto flush = [&] {
      if (current.empty()) return;
      if (count < 2) {
        numbers[count] = std::string(current.rbegin(), current.rend());
      }
      ++count;
      current.clear();
    };
    for (size_t i = upper.size(); i > end; --i) {
      const char c = upper[i - 1];
      if (IsDateNumberChar(c)) {
        current += c;
      } else if (std::string_view(". -:,").find(c) != std::string_view::npos) {
        flush();
      }
    }
    flush();
    if (count != 2) return false;
    // numbers[1] stands first in the text.
    dayText = mode == 2 ? numbers[1] : numbers[0];
    yearText = mode == 2 ? numbers[0] : numbers[1];
  } else {
    return false;
  }

  if (!IsAllDigits(dayText) || dayText.size() > 2) return false;
  if (!IsAllDigits(yearText) || yearText.size() > 4) return false;
  if (!IsValidDay(SmallNumber(dayText), monthNumber)) return false;
  if (!NormaliseYear(yearText)) return false;
  day = dayText;
  PadTwo(day);
  month = std::string(1, static_cast<char>('0' + monthNumber / 10)) +
          static_cast<char>('0' + monthNumber % 10);
  year = yearText;
  ApplyDateLocale(day, month, year);
  return true;
}

void cFormat::ApplyDateLocale(std::string& day, std::string& month,
                              std::string& year) const {
  const std::string locale = UCase(ReadServerSetting(kLocaleValue, "GB"));
  if (locale == "US") {
    day.swap(month);
  } else if (locale == "JP") {
    day.swap(year);
  }
}

bool cFormat::NormaliseYear(std::string& year) {
  if (year.size() == 2) {
    const int y = SmallNumber(year);
    year = std::to_string(y >= 70 ? 1900 + y : 2000 + y);
    return true;
  }
  if (year.size() == 4) {
    const int y = SmallNumber(year);
    return y >= 1970 && y <= 2069;
  }
  return false;
}

bool cFormat::IsValidDay(int day, int month) {
  if (day < 1) return false;
  switch (month) {
    case 4:
    case 6:
    case 9:
    case 11:
      return day <= 30;
    case 2:
      return day <= 29;  // every year: no leap-year test
    default:
      return day <= 31;
  }
}

bool cFormat::IsAllDigits(std::string_view s) {
  if (s.empty()) return false;
  for (const char c : s) {
    if (!IsDigit(c)) return false;
  }
  return true;
}

bool cFormat::IsDigitLookalike(char c) {
  return std::string_view("OoQiI/\\!|[]()lLGgzZB").find(c) !=
         std::string_view::npos;
}

bool cFormat::IsDateNumberChar(char c) {
  return IsDigit(c) || (c != '\\' && c != '/' && IsDigitLookalike(c));
}

std::string cFormat::KeepDateChars(std::string_view s) {
  std::string kept;
  kept.reserve(s.size());
  for (const char c : s) {
    if (IsDigit(c) || IsDigitLookalike(c)) kept += c;
  }
  return kept;
}

}  // namespace pelinor
