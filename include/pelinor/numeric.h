// The one numeric rule and the conversions built on it.
//
// A text is numeric when, after trimming spaces and tabs, it is an optional
// sign, digits with at most one decimal point (at least one digit), and an
// optional exponent ("e" or "E", an optional sign, digits). The decimal
// point is always "."; no locale is consulted. Every reader and value
// routine of the library uses this rule and these conversions.
//
// Thread safety: every function here is pure.

#ifndef PELINOR_NUMERIC_H_
#define PELINOR_NUMERIC_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace pelinor {

// IsNumeric()
//
// True when `s` follows the numeric rule above.
bool IsNumeric(std::string_view s);

// ToDouble()
//
// Converts a numeric text to a 64-bit float. Returns false, leaving `out`
// untouched, when `s` is not numeric or its magnitude overflows.
bool ToDouble(std::string_view s, double& out);

// ToSingle()
//
// Like ToDouble(), rounded to a 32-bit float; false outside its range.
bool ToSingle(std::string_view s, float& out);

// ToLong()
//
// Converts a numeric text to a 32-bit integer, rounding fractions to the
// nearest integer with ties to even ("2.5" gives 2, "3.5" gives 4).
// Returns false, leaving `out` untouched, when `s` is not numeric or the
// rounded value lies outside the 32-bit range.
bool ToLong(std::string_view s, int32_t& out);

// PlainDigitsToLong()
//
// ToLong() for the common case of stored files, up to nine digits after
// an optional '-', converted exactly and inline; false, leaving `out`
// untouched, for any other text (which ToLong() may still accept).
inline bool PlainDigitsToLong(std::string_view s, int32_t& out) {
  const size_t first = !s.empty() && s[0] == '-' ? 1 : 0;
  if (s.size() == first || s.size() - first > 9) return false;
  int32_t v = 0;
  for (size_t i = first; i < s.size(); ++i) {
    const unsigned d = static_cast<unsigned char>(s[i]) - '0';
    if (d > 9) return false;
    v = v * 10 + static_cast<int32_t>(d);
  }
  out = first == 0 ? v : -v;
  return true;
}

// ToInteger()
//
// As ToLong() for the 16-bit range.
bool ToInteger(std::string_view s, int16_t& out);

// RoundToLong()
//
// Rounds `value` half to even into `out`; false (out untouched) when the
// result lies outside the 32-bit range or `value` is not finite.
bool RoundToLong(double value, int32_t& out);

// LeadingNumber()
//
// The lenient conversion used for version texts: digits and at most one
// decimal point taken from the start of `s`, stopping at the first other
// character; no digits give 0. "0.946abc" gives 0.946, "x1" gives 0.
double LeadingNumber(std::string_view s);

// NumberText()
//
// The plain decimal form in which the files store numbers: integers as
// digits with a leading "-" when negative; floating values in the shortest
// form that reads back to the same value, with "." as decimal point, a
// leading "0" before the point ("0.946") and no trailing point ("3").
std::string NumberText(int32_t value);
std::string NumberText(int64_t value);
std::string NumberText(double value);
std::string NumberText(float value);

}  // namespace pelinor

#endif  // PELINOR_NUMERIC_H_
