// Recognition of the date texts stored in queue and status files, and the
// serial date values they convert to.
//
// A date value is a double counting days from the zero date 1899-12-30
// 00:00:00, the fraction giving the time of day. Recognised texts:
//   yyyy-mm-dd[ hh:mm[:ss]]
//   m/d/yyyy[ h:mm[:ss][ AM|PM]]
// with optional surrounding blanks; fields must form a real calendar date
// and time (hours 0-23, or 1-12 with AM/PM).
//
// Thread safety: every function is pure.

#ifndef PELINOR_DATE_TEXT_H_
#define PELINOR_DATE_TEXT_H_

#include <string>
#include <string_view>

namespace pelinor {

// The zero date: 1899-12-30 00:00:00.
inline constexpr double kZeroDate = 0.0;

// ParseDateText()
//
// Converts a recognised date text to its serial value. False, with
// `serial` untouched, for any other text.
bool ParseDateText(std::string_view text, double& serial);

// IsDateText()
//
// True when ParseDateText() accepts `text`.
bool IsDateText(std::string_view text);

// DateSerial()
//
// The serial value of a calendar date and time; false when the fields do
// not form a valid date (years 100-9999) and time.
bool DateSerial(int year, int month, int day, int hour, int minute, int second,
                double& serial);

// FormatDateTime()
//
// "yyyy-mm-dd hh:mm:ss" for a serial value.
std::string FormatDateTime(double serial);

}  // namespace pelinor

#endif  // PELINOR_DATE_TEXT_H_
