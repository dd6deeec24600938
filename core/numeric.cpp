#include "pelinor/numeric.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "pelinor/text.h"

namespace pelinor {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Parses `s` (already trimmed) by the numeric rule. Returns the text that
// std::from_chars accepts (without a leading "+"), or false.
bool Scan(std::string_view s, std::string_view& body, bool& negative) {
  size_t i = 0;
  negative = false;
  if (i < s.size() && (s[i] == '+' || s[i] == '-')) {
    negative = s[i] == '-';
    ++i;
  }
  size_t mantissa_start = i;
  size_t digits = 0;
  bool point = false;
  for (; i < s.size(); ++i) {
    if (IsDigit(s[i])) {
      ++digits;
    } else if (s[i] == '.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  if (digits == 0) return false;
  if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
    size_t j = i + 1;
    if (j < s.size() && (s[j] == '+' || s[j] == '-')) ++j;
    size_t exp_digits = 0;
    while (j < s.size() && IsDigit(s[j])) {
      ++j;
      ++exp_digits;
    }
    if (exp_digits == 0) return false;
    i = j;
  }
  if (i != s.size()) return false;
  body = s.substr(mantissa_start);
  return true;
}

// The power of ten just above the value of a valid numeric body: positive
// for values of 1 or more, zero or negative for smaller ones.
long DecimalMagnitude(std::string_view body) {
  size_t e = body.find_first_of("eE");
  std::string_view mantissa = body.substr(0, e);
  long exponent = 0;
  if (e != std::string_view::npos) {
    std::string_view ex = body.substr(e + 1);
    bool neg = !ex.empty() && ex[0] == '-';
    if (!ex.empty() && (ex[0] == '-' || ex[0] == '+')) ex.remove_prefix(1);
    for (char c : ex) {
      if (exponent < 100000) exponent = exponent * 10 + (c - '0');
    }
    if (neg) exponent = -exponent;
  }
  size_t point = mantissa.find('.');
  std::string_view whole = mantissa.substr(0, point);
  size_t first = whole.find_first_not_of('0');
  if (first != std::string_view::npos) {
    return static_cast<long>(whole.size() - first) + exponent;
  }
  long leading_zeros = 0;
  if (point != std::string_view::npos) {
    for (char c : mantissa.substr(point + 1)) {
      if (c != '0') break;
      --leading_zeros;
    }
  }
  return leading_zeros + exponent;
}

}  // namespace

bool IsNumeric(std::string_view s) {
  std::string_view body;
  bool negative;
  return Scan(TrimBlanks(s), body, negative);
}

bool ToDouble(std::string_view s, double& out) {
  std::string_view body;
  bool negative;
  if (!Scan(TrimBlanks(s), body, negative)) return false;
  double v = 0;
  auto [ptr, ec] = std::from_chars(body.data(), body.data() + body.size(), v,
                                   std::chars_format::general);
  if (ptr != body.data() + body.size()) return false;
  if (ec == std::errc::result_out_of_range) {
    // Too small to represent is zero; too large fails.
    if (DecimalMagnitude(body) > 0) return false;
    v = 0;
  } else if (ec != std::errc()) {
    return false;
  }
  out = negative ? -v : v;
  return true;
}

bool ToSingle(std::string_view s, float& out) {
  double d;
  if (!ToDouble(s, d)) return false;
  if (std::fabs(d) > static_cast<double>(std::numeric_limits<float>::max())) {
    return false;
  }
  out = static_cast<float>(d);
  return true;
}

bool RoundToLong(double value, int32_t& out) {
  if (!std::isfinite(value)) return false;
  double r = std::nearbyint(value);  // the default mode rounds half to even
  if (r < -2147483648.0 || r > 2147483647.0) return false;
  out = static_cast<int32_t>(r);
  return true;
}

bool ToLong(std::string_view s, int32_t& out) {
  // Plain digits convert exactly without the floating-point path.
  if (PlainDigitsToLong(s, out)) return true;
  double d;
  return ToDouble(s, d) && RoundToLong(d, out);
}

bool ToInteger(std::string_view s, int16_t& out) {
  int32_t v;
  if (!ToLong(s, v) || v < -32768 || v > 32767) return false;
  out = static_cast<int16_t>(v);
  return true;
}

double LeadingNumber(std::string_view s) {
  size_t i = 0;
  bool point = false;
  bool digits = false;
  for (; i < s.size(); ++i) {
    if (IsDigit(s[i])) {
      digits = true;
    } else if (s[i] == '.' && !point) {
      point = true;
    } else {
      break;
    }
  }
  if (!digits) return 0;
  std::string_view body = s.substr(0, i);
  if (body.back() == '.') body.remove_suffix(1);
  double v = 0;
  std::from_chars(body.data(), body.data() + body.size(), v,
                  std::chars_format::fixed);
  return v;
}

std::string NumberText(int32_t value) {
  return NumberText(static_cast<int64_t>(value));
}

std::string NumberText(int64_t value) { return std::to_string(value); }

namespace {

template <typename F>
std::string FloatText(F value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  if (value == 0) return "0";
  char buf[64];
  auto res = std::to_chars(buf, buf + sizeof buf, value);
  std::string out(buf, res.ptr);
  for (char& c : out) {
    if (c == 'e') c = 'E';
  }
  return out;
}

}  // namespace

std::string NumberText(double value) { return FloatText(value); }
std::string NumberText(float value) { return FloatText(value); }

}  // namespace pelinor
