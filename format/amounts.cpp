// Amounts and numerics of the formatter: validation, the GB and US amount
// scans with implied decimals, plain numerics, the look-alike biases, the
// format names and the format log. Rules: docs/formats/amounts.md.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/numeric.h"
#include "pelinor/repair_trace.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The digit each OCR look-alike stands for; 0 where a byte stays itself.
constexpr std::array<char, 256> MakeDigitBias() {
  std::array<char, 256> t{};
  for (unsigned char c : std::string_view("OoQ")) t[c] = '0';
  for (unsigned char c : std::string_view("Ii/\\!|[]()Ll")) t[c] = '1';
  for (unsigned char c : std::string_view("Zz")) t[c] = '2';
  for (unsigned char c : std::string_view("Ss$")) t[c] = '5';
  t[static_cast<unsigned char>('G')] = '6';  // "G" and "g" differ on purpose
  t[static_cast<unsigned char>('g')] = '9';
  t[static_cast<unsigned char>('B')] = '8';
  return t;
}
constexpr std::array<char, 256> kDigitBias = MakeDigitBias();

char BiasCharToNumber(char c) {
  const char biased = kDigitBias[static_cast<unsigned char>(c)];
  return biased != 0 ? biased : c;
}

// Step shared by both number scans: a trailing "-" (or else a leading one)
// makes the number negative; every other "-" is dropped.
void ApplySign(std::string& result) {
  bool negative = false;
  if (!result.empty() && result.back() == '-') {
    result.pop_back();
    negative = true;
  } else if (!result.empty() && result.front() == '-') {
    result.erase(0, 1);
    negative = true;
  }
  std::erase(result, '-');
  if (negative) result.insert(result.begin(), '-');
}

bool FormatLogOn() { return FormatLogWanted(); }

// The trace a routine records into: the caller's, or `local` when only
// the format log wants the steps; null when nobody does.
cRepairTrace* TraceFor(cRepairTrace* trace, cRepairTrace& local, bool log) {
  if (trace != nullptr) return trace;
  return log ? &local : nullptr;
}

std::string Quoted(char c) {
  if (c == ' ') return "space";
  return std::string(1, c);
}

bool IsCurrencySign(char c) {
  return c == '$' || c == '\xA3' || c == '\x80' || c == '\xA5';
}

// A look-alike read as a digit is a repair when a digit stands next to it
// and a guess when it stands among letters.
RiskClass BiasRisk(std::string_view text, size_t i) {
  const bool before = i > 0 && IsDigit(text[i - 1]);
  const bool after = i + 1 < text.size() && IsDigit(text[i + 1]);
  return before || after ? RiskClass::kRepair : RiskClass::kGuess;
}

void TraceBias(cRepairTrace* t, std::string_view text, size_t i, char biased,
               int32_t position) {
  t->AddWithRisk("bias-digit", BiasRisk(text, i),
                 Quoted(text[i]) + " read as " + biased + " at position " +
                     std::to_string(position),
                 position, std::string(1, text[i]), std::string(1, biased));
}

// Records what ApplySign() is about to do with `result`.
void TraceSign(cRepairTrace* t, const std::string& result) {
  if (t == nullptr) return;
  if (!result.empty() && result.back() == '-' && result.size() > 1) {
    std::string moved(1, '-');
    moved.append(result, 0, result.size() - 1);
    t->Add("sign-moved", "trailing - taken as a negative sign", 0, result,
           std::move(moved));
  }
}

}  // namespace

bool cFormat::ValidateAmount(const std::string& value) const {
  const size_t n = value.size();
  const size_t minus = value.find('-');
  if (minus != std::string::npos) {
    if (minus != 0 || n == 1) return false;
    if (value.find('-', minus + 1) != std::string::npos) return false;
  }
  const size_t point = value.find('.');
  if (point != std::string::npos) {
    if (point + 1 == n) return false;
    if (value.find('.', point + 1) != std::string::npos) return false;
  }
  return IsAmountChars(value);
}

bool cFormat::FormatAmount(const std::string& value, std::string& out,
                           int32_t code, cRepairTrace* trace) const {
  const bool log = FormatLogOn();
  cRepairTrace local;
  cRepairTrace* t = TraceFor(trace, local, log);
  const size_t first = t != nullptr ? t->Size() : 0;
  if (log) LogFormatMessage("FormatAmount:" + value);
  bool gbMode = true;
  bool trustPoint = false;
  std::string countryText = "GB";
  switch (code) {
    case 200:
      gbMode = false;
      countryText.clear();
      break;
    case 10200:
      gbMode = false;
      countryText.clear();
      trustPoint = true;
      break;
    case 10004:
      trustPoint = true;
      break;
    default:
      break;
  }
  const bool ok =
      FormatCurrencyValue(value, out, gbMode, countryText, trustPoint, t);
  if (log) LogFormatMessage("FormatAmount>:" + out);
  if (ok && log && t != nullptr) LogRepairSteps(*t, first);
  return ok;
}

bool cFormat::FormatCurrencyValue(const std::string& value, std::string& out,
                                  bool gbMode, const std::string& countryText,
                                  bool trustPoint, cRepairTrace* trace) const {
  std::string work = value;
  AmountScan scan;
  std::vector<int32_t>& origin = scan.origin;
  if (trace == nullptr) {
    if (!countryText.empty()) RemoveSubstring(work, countryText);
  } else {
    // The same removal, keeping where each remaining character came from.
    origin.reserve(value.size());
    for (size_t i = 0; i < value.size(); ++i) {
      origin.push_back(static_cast<int32_t>(i + 1));
    }
    for (size_t at; !countryText.empty() &&
                    (at = work.find(countryText)) != std::string::npos;) {
      trace->Add(
          "country-removed",
          countryText + " removed at position " + std::to_string(origin[at]),
          origin[at], countryText, "");
      work.erase(at, countryText.size());
      origin.erase(origin.begin() + static_cast<std::ptrdiff_t>(at),
                   origin.begin() +
                       static_cast<std::ptrdiff_t>(at + countryText.size()));
    }
  }
  out.clear();
  const bool ok = FormatNumericCurrency(work, out, gbMode, trustPoint, trace,
                                        trace != nullptr ? &scan : nullptr);
  if (!trustPoint && ok) {
    std::string digits;
    if (trace != nullptr) digits = out;
    // Two implied decimals; a single digit gets ".00" instead, so "5" reads
    // as 5.00 while "45" reads as .45.
    if (out.size() >= 2) {
      out.insert(out.size() - 2, 1, '.');
    } else if (out.size() == 1) {
      out += ".00";
    }
    if (trace != nullptr) {
      TraceImpliedDecimals(scan.decimals, digits, out, *trace);
    }
  }
  return ok;
}

void cFormat::TraceImpliedDecimals(int32_t decimals, const std::string& digits,
                                   const std::string& out,
                                   cRepairTrace& trace) {
  if (digits.size() == 1) {
    trace.Add("whole-units", "a single digit read as whole units", 0, digits,
              out);
    return;
  }
  // A point read with two digits after it is where the implied point
  // goes: nothing was decided.
  if (digits.size() < 2 || decimals == 2) return;
  if (decimals >= 0) {
    trace.Add("point-moved",
              "decimal point ignored, last two digits taken as pence", 0,
              digits, out);
    return;
  }
  trace.Add("implied-decimals",
            "no decimal point, last two digits taken as pence", 0, digits, out);
}

bool cFormat::FormatNumericCurrency(const std::string& value, std::string& out,
                                    bool gbMode, bool trustPoint,
                                    cRepairTrace* t, AmountScan* scan) const {
  // Two readings from one source: without a trace every tracing branch is
  // compiled out, so formatting costs what it did before tracing existed.
  if (t == nullptr)
    return ScanCurrency<false>(value, out, gbMode, trustPoint, nullptr,
                               nullptr);
  return ScanCurrency<true>(value, out, gbMode, trustPoint, t, scan);
}

template <bool kTraced>
bool cFormat::ScanCurrency(const std::string& value, std::string& out,
                           bool gbMode, bool trustPoint, cRepairTrace* t,
                           AmountScan* scan) const {
  const bool log = FormatLogOn();
  if (log) LogFormatMessage("--> FormatNumericCurrency: " + value);
  std::string_view text = Trim(value);
  // One-based position in the caller's text of text[i].
  const size_t trimmed = static_cast<size_t>(text.data() - value.data());
  const auto where = [&](size_t i) {
    const size_t k = trimmed + i;
    return scan != nullptr && k < scan->origin.size()
               ? scan->origin[k]
               : static_cast<int32_t>(k + 1);
  };

  // A leading one-look-alike is kept only when a number follows it;
  // otherwise it is more likely a stray mark (a bar or a currency glyph).
  size_t skipped = 0;
  if (!text.empty()) {
    const char first = text.front();
    if (first == '1' || first == '!' || first == '|' || first == 'l') {
      char next = '0';
      for (size_t i = 1; i < text.size(); ++i) {
        if (text[i] != '.' && text[i] != ' ' && text[i] != ',') {
          next = text[i];
          break;
        }
      }
      if (!IsDigit(next) && !IsDigit(BiasCharToNumber(next))) {
        if constexpr (kTraced) {
          t->Add("leading-mark-dropped",
                 "leading " + Quoted(first) + " dropped: no number follows it",
                 where(0), std::string(1, first), "");
        }
        text.remove_prefix(1);
        skipped = 1;
      }
    }
  }

  std::string result;
  result.reserve(text.size());
  bool digitSeen = false;
  bool pointTaken = false;
  int junk = 0;
  size_t separators = 0;
  int32_t firstSeparator = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (IsDigit(c)) {
      result += c;
      digitSeen = true;
      junk = 0;
      if constexpr (kTraced) {
        if (scan != nullptr && scan->decimals >= 0) ++scan->decimals;
      }
      continue;
    }
    if (c == '-') {
      result += c;
      continue;
    }
    if (!gbMode && (c == '$' || c == 's' || c == 'S')) {
      if constexpr (kTraced) {
        t->Add("currency-skipped",
               Quoted(c) + " skipped at position " +
                   std::to_string(where(i + skipped)),
               where(i + skipped), std::string(1, c), "");
      }
      continue;
    }
    const char biased = BiasCharToNumber(c);
    if (IsDigit(biased)) {
      if constexpr (kTraced) TraceBias(t, text, i, biased, where(i + skipped));
      result += biased;
      if constexpr (kTraced) {
        if (scan != nullptr && scan->decimals >= 0) ++scan->decimals;
      }
      continue;
    }
    if (c == '.' && trustPoint) {
      if (pointTaken) {
        if constexpr (kTraced) {
          t->Add("reading-stopped",
                 "reading stopped at the second point at position " +
                     std::to_string(where(i + skipped)),
                 where(i + skipped), std::string(text.substr(i)), "");
        }
        break;
      }
      result += '.';
      pointTaken = true;
      continue;
    }
    if (c == '.' || c == ' ' || c == ',') {
      if constexpr (kTraced) {
        if (c != '.' && separators++ == 0) {
          firstSeparator = where(i + skipped);
        }
        if (c == '.') scan->decimals = 0;
      }
      continue;
    }
    if constexpr (kTraced) {
      if (IsCurrencySign(c)) {
        t->Add("currency-skipped",
               Quoted(c) + " skipped at position " +
                   std::to_string(where(i + skipped)),
               where(i + skipped), std::string(1, c), "");
      } else {
        t->Add("char-dropped",
               Quoted(c) + " dropped at position " +
                   std::to_string(where(i + skipped)),
               where(i + skipped), std::string(1, c), "");
      }
    }
    if (digitSeen) {
      ++junk;
      if (c == '~' || junk >= 2) {
        if constexpr (kTraced)
          if (i + 1 < text.size()) {
            t->Add("reading-stopped",
                   "reading stopped at position " +
                       std::to_string(where(i + skipped)) +
                       ": the rest is ignored",
                   where(i + skipped), std::string(text.substr(i + 1)), "");
          }
        break;
      }
    }
  }
  if (kTraced && separators > 0) {
    t->Add("separator-dropped",
           std::to_string(separators) +
               (separators == 1 ? " separator" : " separators") +
               " (space or comma) removed",
           firstSeparator, "", "");
  }

  if constexpr (kTraced) TraceSign(t, result);
  ApplySign(result);
  bool ok = false;
  if (IsNumeric(result)) {
    out = result;
    ok = true;
  }
  if (log) LogFormatMessage("<-- FormatNumericCurrency: " + out);
  return ok;
}

namespace {

// Reads `value` as a number whose decimal separator is `separator` into
// `result`, from the right, so that the right-most separator is the
// decimal point; other separators, currency signs and stray characters are
// dropped and look-alikes read as digits. With kTraced every step goes to
// `t`; without, every tracing branch is compiled out. False when no number
// is left.
template <bool kTraced>
bool ReadNumeric(const std::string& value, char separator, std::string& result,
                 cRepairTrace* t) {
  const size_t first = kTraced ? t->Size() : 0;
  // Collected reversed and turned round once at the end.
  result.clear();
  result.reserve(value.size());
  bool pointPlaced = false;
  size_t separators = 0;
  int32_t firstSeparator = 0;
  for (size_t k = value.size(); k-- > 0;) {
    const char c = value[k];
    const auto position = static_cast<int32_t>(k + 1);
    if (IsDigit(c) || c == '-') {
      result += c;
    } else if (c == separator) {
      if (!pointPlaced) {
        result += '.';
        pointPlaced = true;
        if constexpr (kTraced) {
          if (c == ',') {
            t->Add("decimal-comma",
                   "decimal comma at position " + std::to_string(k + 1) +
                       " read as a point",
                   position, ",", ".");
          }
        }
      } else if constexpr (kTraced) {
        ++separators;
        firstSeparator = position;
      }
    } else {
      const char biased = BiasCharToNumber(c);
      if (IsDigit(biased)) {
        result += biased;
        if constexpr (kTraced) TraceBias(t, value, k, biased, position);
      } else if constexpr (kTraced) {
        if (c == ' ' || c == ',' || c == '.' || c == '\'') {
          ++separators;
          firstSeparator = position;
        } else if (IsCurrencySign(c)) {
          t->Add("currency-skipped",
                 Quoted(c) + " skipped at position " + std::to_string(k + 1),
                 position, std::string(1, c), "");
        } else {
          t->Add("char-dropped",
                 Quoted(c) + " dropped at position " + std::to_string(k + 1),
                 position, std::string(1, c), "");
        }
      }
    }
  }
  std::reverse(result.begin(), result.end());
  if constexpr (kTraced) {
    t->Reverse(first);
    if (separators > 0) {
      t->Add("separator-dropped",
             std::to_string(separators) +
                 (separators == 1 ? " separator" : " separators") + " removed",
             firstSeparator, "", "");
    }
    TraceSign(t, result);
  }
  ApplySign(result);
  return !(result.empty() || result == "-" || result.back() == '.');
}

}  // namespace

bool cFormat::FormatNumeric(const std::string& value, std::string& out,
                            int32_t code, cRepairTrace* trace) const {
  const char separator = code == 300 ? ',' : '.';
  std::string result;
  if (trace == nullptr) {
    if (!ReadNumeric<false>(value, separator, result, nullptr)) return false;
    // Only a changed value has repair steps; the format log, checked only
    // then, gets them from the traced reading.
    if (result != value && FormatLogWanted()) {
      cRepairTrace steps;
      return FormatNumeric(value, out, code, &steps);
    }
    out = std::move(result);
    return true;
  }
  const size_t first = trace->Size();
  if (!ReadNumeric<true>(value, separator, result, trace)) return false;
  out = std::move(result);
  LogRepairSteps(*trace, first);
  return true;
}

std::string cFormat::FormatDescr(int32_t code) const {
  switch (code) {
    case 2:
      return "NUMERIC";
    case 300:
      return "NUMERIC_COMMA";
    case 3:
      return "DATE";
    case 4:
      return "AMOUNT";
    case 200:
      return "AMOUNTUS";
    case 5:
      return "POSTCODE";
    case 100:
      return "DATEGB";
    case 101:
      return "DATEUS";
    case 102:
      return "DATEJAPAN";
    case 103:
      return "DATEFR";
    case 104:
      return "DATEPT";
    case 105:
      return "DATEES";
    case 106:
      return "DATEDE";
    case 107:
      return "DATEIT";
    default:
      return "";
  }
}

void cFormat::BiasToNumber(std::string& value) const {
  for (char& c : value) c = BiasCharToNumber(c);
}

void cFormat::BiasToUCASECharacter(std::string& value,
                                   const std::string& allowed) const {
  const auto allows = [&allowed](char letter) {
    return allowed.find(letter) != std::string::npos;
  };
  for (char& c : value) {
    if (c >= 'A' && c <= 'Z') continue;
    switch (c) {
      case '/':
      case '1':
      case '\\':
      case '!':
      case '|':
      case '[':
      case ']':
        if (allows('I')) {
          c = 'I';
        } else if (allows('L')) {
          c = 'L';
        }
        break;
      case '0':
        if (allows('O')) {
          c = 'O';
        } else if (allows('Q')) {
          c = 'Q';
        }
        break;
      case '2':
        if (allows('Z')) c = 'Z';
        break;
      case '5':
      case '$':
        if (allows('S')) c = 'S';
        break;
      case '6':
        if (allows('G')) c = 'G';
        break;
      case '8':
        if (allows('B')) c = 'B';
        break;
      default:
        break;
    }
  }
}

void cFormat::LogFormatMessage(const std::string& strMsg) const {
  LogFormatLine(strMsg);
}

void cFormat::RemoveSubstring(std::string& value, std::string_view part) {
  if (part.empty()) return;
  // Removing the first occurrence again and again: after a cut at `pos`, a
  // new occurrence can only begin where the joined text starts to differ.
  size_t from = 0;
  for (;;) {
    const size_t pos = value.find(part, from);
    if (pos == std::string::npos) return;
    value.erase(pos, part.size());
    from = pos >= part.size() - 1 ? pos - (part.size() - 1) : 0;
  }
}

void cFormat::RemoveChar(std::string& value, char c) { std::erase(value, c); }

bool cFormat::IsAmountChars(std::string_view value) {
  if (value.empty()) return false;
  for (const char c : value) {
    if (!IsDigit(c) && c != '.' && c != '-') return false;
  }
  return true;
}

}  // namespace pelinor
