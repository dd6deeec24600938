#include "pelinor/date_text.h"

#include <cmath>
#include <cstdio>

#include "pelinor/text.h"

namespace pelinor {
namespace {

// Days from 1970-01-01 to a proleptic Gregorian date.
long DaysFromCivil(long y, long m, long d) {
  y -= m <= 2;
  const long era = (y >= 0 ? y : y - 399) / 400;
  const long yoe = y - era * 400;
  const long doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const long doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(long z, int& y, int& m, int& d) {
  z += 719468;
  const long era = (z >= 0 ? z : z - 146096) / 146097;
  const long doe = z - era * 146097;
  const long yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const long doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const long mp = (5 * doy + 2) / 153;
  d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
  m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
  y = static_cast<int>(yoe + era * 400 + (m <= 2));
}

const long kZeroDay = DaysFromCivil(1899, 12, 30);

bool IsLeap(int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }

int DaysInMonth(int y, int m) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}

// A cursor over the text with small token readers.
struct Cursor {
  std::string_view s;
  size_t i = 0;

  bool Digits(size_t min, size_t max, int& value) {
    size_t n = 0;
    value = 0;
    while (i < s.size() && n < max && s[i] >= '0' && s[i] <= '9') {
      value = value * 10 + (s[i] - '0');
      ++i;
      ++n;
    }
    return n >= min && !(i < s.size() && s[i] >= '0' && s[i] <= '9');
  }
  bool Char(char c) {
    if (i < s.size() && s[i] == c) {
      ++i;
      return true;
    }
    return false;
  }
  bool Done() const { return i == s.size(); }
};

// Reads " h:mm[:ss][ AM|PM]" when present. `allow_ampm` is false for the
// ISO form.
bool ReadTime(Cursor& c, bool allow_ampm, int& h, int& mi, int& se) {
  h = mi = se = 0;
  if (c.Done()) return true;
  if (!c.Char(' ')) return false;
  while (c.Char(' ')) {
  }
  if (!c.Digits(1, 2, h) || !c.Char(':') || !c.Digits(2, 2, mi)) return false;
  if (c.Char(':') && !c.Digits(2, 2, se)) return false;
  if (c.Done()) return h <= 23 && mi <= 59 && se <= 59;
  if (!allow_ampm || !c.Char(' ')) return false;
  while (c.Char(' ')) {
  }
  std::string_view rest = c.s.substr(c.i);
  bool pm;
  if (EqualsIgnoreCase(rest, "AM")) {
    pm = false;
  } else if (EqualsIgnoreCase(rest, "PM")) {
    pm = true;
  } else {
    return false;
  }
  c.i = c.s.size();
  if (h < 1 || h > 12 || mi > 59 || se > 59) return false;
  h = (h % 12) + (pm ? 12 : 0);
  return true;
}

}  // namespace

bool DateSerial(int year, int month, int day, int hour, int minute, int second,
                double& serial) {
  if (year < 100 || year > 9999 || month < 1 || month > 12 || day < 1 ||
      day > DaysInMonth(year, month) || hour < 0 || hour > 23 || minute < 0 ||
      minute > 59 || second < 0 || second > 59) {
    return false;
  }
  double days = static_cast<double>(DaysFromCivil(year, month, day) - kZeroDay);
  double time = (hour * 3600 + minute * 60 + second) / 86400.0;
  // Before the zero date the time of day still counts away from it.
  serial = days < 0 ? days - time : days + time;
  return true;
}

bool ParseDateText(std::string_view text, double& serial) {
  Cursor c{TrimBlanks(text)};
  int y = 0, m = 0, d = 0, h = 0, mi = 0, se = 0;
  bool iso = c.s.size() > 4 && c.s[4] == '-';
  if (iso) {
    if (!c.Digits(4, 4, y) || !c.Char('-') || !c.Digits(1, 2, m) ||
        !c.Char('-') || !c.Digits(1, 2, d) || !ReadTime(c, false, h, mi, se)) {
      return false;
    }
  } else {
    if (!c.Digits(1, 2, m) || !c.Char('/') || !c.Digits(1, 2, d) ||
        !c.Char('/') || !c.Digits(4, 4, y) || !ReadTime(c, true, h, mi, se)) {
      return false;
    }
  }
  return DateSerial(y, m, d, h, mi, se, serial);
}

bool IsDateText(std::string_view text) {
  double serial;
  return ParseDateText(text, serial);
}

std::string FormatDateTime(double serial) {
  if (!std::isfinite(serial)) serial = 0;
  double whole = std::trunc(serial);
  long seconds = std::lround(std::fabs(serial - whole) * 86400.0);
  long days = static_cast<long>(whole);
  if (seconds >= 86400) {
    seconds -= 86400;
    days += serial < 0 ? -1 : 1;
  }
  int y, m, d;
  CivilFromDays(days + kZeroDay, y, m, d);
  char buf[48];
  std::snprintf(buf, sizeof buf, "%04d-%02d-%02d %02ld:%02ld:%02ld", y, m, d,
                seconds / 3600, (seconds / 60) % 60, seconds % 60);
  return buf;
}

}  // namespace pelinor
