// The quick reading of plain numeric dates. Rules: docs/formats/dates.md.
//
// It repeats, for the one shape it accepts, the steps of the separated
// parts reading in dates.cpp: the first separator that occurs twice splits
// the value, the parts are checked by ValidateDateParsed()'s rules and
// arranged by ApplyDateLocale()'s. tests/format/date_fast_path_test.cpp
// compares the two over generated and collected values.

#include "format/date_fast_path.h"

#include <optional>
#include <string>

#include "pelinor/registry.h"
#include "pelinor/settings_snapshot.h"
#include "pelinor/text.h"

namespace pelinor::internal {
namespace {

struct Part {
  int value = 0;
  int digits = 0;
};

// The orders FormatDate() tries for `code` (see GroupOf() and PartModes()
// in dates.cpp): 100 day-month-year, 101 month-day-year, 102
// year-month-day, 0 ends the list.
const int32_t* ModesOf(int32_t code) {
  static constexpr int32_t kDay[] = {100, 0};
  static constexpr int32_t kUS[] = {101, 0};
  static constexpr int32_t kJapan[] = {102, 0};
  static constexpr int32_t kAll[] = {100, 101, 102, 0};
  switch (code) {
    case 100:  // DATEGB
    case 103:  // DATEFR
    case 104:  // DATEPT
    case 105:  // DATEES
    case 106:  // DATEDE
    case 107:  // DATEIT
      return kDay;
    case 101:
      return kUS;
    case 102:
      return kJapan;
    default:
      return kAll;
  }
}

bool IsSeparator(char c) {
  return c == '/' || c == '.' || c == ' ' || c == '-' || c == ':';
}

// ValidateDateParsed() and NormaliseYear() on numbers already read: day
// and month of one or two digits, month 1-12, a day the month can have
// (29 in February), a year of two digits (70-99 19xx, else 20xx) or four
// (1970-2069).
bool Check(const Part& day, const Part& month, Part& year) {
  if (day.digits > 2 || month.digits > 2) return false;
  if (year.digits == 2) {
    year.value += year.value >= 70 ? 1900 : 2000;
  } else if (year.digits != 4 || year.value < 1970 || year.value > 2069) {
    return false;
  }
  if (month.value < 1 || month.value > 12 || day.value < 1) return false;
  switch (month.value) {
    case 4:
    case 6:
    case 9:
    case 11:
      return day.value <= 30;
    case 2:
      return day.value <= 29;
    default:
      return day.value <= 31;
  }
}

// The stored order of "HalvernLocale": 0 day first, 1 "US" (month first),
// 2 "JP" (year first), compared ignoring case as ApplyDateLocale() does.
int OrderOf(std::string_view locale) {
  if (locale.size() != 2) return 0;
  const char a = UpperChar(locale[0]);
  const char b = UpperChar(locale[1]);
  if (a == 'U' && b == 'S') return 1;
  if (a == 'J' && b == 'P') return 2;
  return 0;
}

int LocaleOrder() {
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    // An unset locale reads as "GB": day first.
    const std::optional<std::string>& locale = snapshot->LocaleValue();
    return locale ? OrderOf(*locale) : 0;
  }
  return OrderOf(ReadServerSetting(kLocaleValue, "GB"));
}

void PutTwo(char*& p, int n) {
  *p++ = static_cast<char>('0' + n / 10);
  *p++ = static_cast<char>('0' + n % 10);
}

}  // namespace

bool FormatPlainNumericDate(std::string_view value, int32_t code,
                            std::string& out) {
  // Three runs of 1-4 digits split by two of one separator. Longer runs
  // cannot be read by any order, so the full recognition takes them.
  Part parts[3];
  int k = 0;
  char separator = '\0';
  for (const char c : value) {
    if (c >= '0' && c <= '9') {
      Part& p = parts[k];
      if (++p.digits > 4) return false;
      p.value = p.value * 10 + (c - '0');
    } else if (IsSeparator(c) && (separator == '\0' || c == separator) &&
               k < 2 && parts[k].digits > 0) {
      separator = c;
      ++k;
    } else {
      return false;
    }
  }
  if (k != 2 || parts[2].digits == 0) return false;

  for (const int32_t* mode = ModesOf(code); *mode != 0; ++mode) {
    // The parts a, b, c in text order as AssignByMode() gives them.
    Part day = parts[0], month = parts[1], year = parts[2];
    if (*mode == 101) {
      day = parts[1];
      month = parts[0];
    } else if (*mode == 102) {
      year = parts[0];
      day = parts[2];
    }
    if (!Check(day, month, year)) continue;
    char text[10];
    char* p = text;
    const auto put_year = [&p, &year] {
      PutTwo(p, year.value / 100);
      PutTwo(p, year.value % 100);
    };
    switch (LocaleOrder()) {
      case 1:  // month/day/year
        PutTwo(p, month.value);
        *p++ = '/';
        PutTwo(p, day.value);
        *p++ = '/';
        put_year();
        break;
      case 2:  // year/month/day
        put_year();
        *p++ = '/';
        PutTwo(p, month.value);
        *p++ = '/';
        PutTwo(p, day.value);
        break;
      default:
        PutTwo(p, day.value);
        *p++ = '/';
        PutTwo(p, month.value);
        *p++ = '/';
        put_year();
        break;
    }
    out.assign(text, static_cast<size_t>(p - text));
    return true;
  }
  return false;
}

}  // namespace pelinor::internal
