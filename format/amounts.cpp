// Amounts and numerics of the formatter: validation, the GB and US amount
// scans with implied decimals, plain numerics, the look-alike biases, the
// format names and the format log. Rules: docs/formats/amounts.md.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/numeric.h"
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

bool FormatLogOn() { return !FormatLogPath().empty(); }

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
                           int32_t code) const {
  const bool log = FormatLogOn();
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
      FormatCurrencyValue(value, out, gbMode, countryText, trustPoint);
  if (log) LogFormatMessage("FormatAmount>:" + out);
  return ok;
}

bool cFormat::FormatCurrencyValue(const std::string& value, std::string& out,
                                  bool gbMode, const std::string& countryText,
                                  bool trustPoint) const {
  std::string work = value;
  if (!countryText.empty()) RemoveSubstring(work, countryText);
  out.clear();
  const bool ok = FormatNumericCurrency(work, out, gbMode, trustPoint);
  if (!trustPoint && ok) {
    // Two implied decimals; a single digit gets ".00" instead, so "5" reads
    // as 5.00 while "45" reads as .45.
    if (out.size() >= 2) {
      out.insert(out.size() - 2, 1, '.');
    } else if (out.size() == 1) {
      out += ".00";
    }
  }
  return ok;
}

bool cFormat::FormatNumericCurrency(const std::string& value, std::string& out,
                                    bool gbMode, bool trustPoint) const {
  const bool log = FormatLogOn();
  if (log) LogFormatMessage("--> FormatNumericCurrency: " + value);
  std::string_view text = Trim(value);

  // A leading one-look-alike is kept only when a number follows it;
  // otherwise it is more likely a stray mark (a bar or a currency glyph).
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
        text.remove_prefix(1);
      }
    }
  }

  std::string result;
  result.reserve(text.size());
  bool digitSeen = false;
  bool pointTaken = false;
  int junk = 0;
  for (const char c : text) {
    if (IsDigit(c)) {
      result += c;
      digitSeen = true;
      junk = 0;
      continue;
    }
    if (c == '-') {
      result += c;
      continue;
    }
    if (!gbMode && (c == '$' || c == 's' || c == 'S')) continue;
    const char biased = BiasCharToNumber(c);
    if (IsDigit(biased)) {
      result += biased;
      continue;
    }
    if (c == '.' && trustPoint) {
      if (pointTaken) break;
      result += '.';
      pointTaken = true;
      continue;
    }
    if (c != '.' && c != ' ' && c != ',' && digitSeen) {
      ++junk;
      if (c == '~' || junk >= 2) break;
    }
  }

  ApplySign(result);
  bool ok = false;
  if (IsNumeric(result)) {
    out = result;
    ok = true;
  }
  if (log) LogFormatMessage("<-- FormatNumericCurrency: " + out);
  return ok;
}

bool cFormat::FormatNumeric(const std::string& value, std::string& out,
                            int32_t code) const {
  const char separator = code == 300 ? ',' : '.';
  // Built from the right, so the right-most separator is the decimal point;
  // collected reversed and turned round once at the end.
  std::string result;
  result.reserve(value.size());
  bool pointPlaced = false;
  for (auto it = value.rbegin(); it != value.rend(); ++it) {
    const char c = *it;
    if (IsDigit(c) || c == '-') {
      result += c;
    } else if (c == separator) {
      if (!pointPlaced) {
        result += '.';
        pointPlaced = true;
      }
    } else {
      const char biased = BiasCharToNumber(c);
      if (IsDigit(biased)) result += biased;
    }
  }
  std::reverse(result.begin(), result.end());
  ApplySign(result);
  if (result.empty() || result == "-" || result.back() == '.') return false;
  out = result;
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
