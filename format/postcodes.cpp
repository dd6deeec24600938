// United Kingdom postcodes of the formatter: validation, the strict outward
// check and the position-by-position repair of OCR confusions. Rules:
// docs/formats/amounts.md (section "Postcodes").

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/repair_trace.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

constexpr char kAnyLetter[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr char kInwardLetters[] = "ABDEFGHJLNPQRSTUWXYZ";
constexpr std::string_view kStrictFirst = "ABCDEFGHIJKLMNOPRSTUWYZ";
constexpr std::string_view kStrictSecond = "ABCDEFGHKLMNOPQRSTUVWXY";
constexpr std::string_view kStrictThird = "ABCDEFGHJKSTUW";

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return c >= 'A' && c <= 'Z'; }
bool IsAlnum(char c) { return IsDigit(c) || IsLetter(c); }
bool In(std::string_view set, char c) {
  return set.find(c) != std::string_view::npos;
}

// The inward-letter test compares character codes: the range ">" to "B"
// passes as a whole, so ">", "?" and "@" count as inward letters.
bool IsInwardLetter(char c) {
  return (c >= '>' && c <= 'B') || In(kInwardLetters, c);
}

}  // namespace

bool cFormat::ValidatePostCode(const std::string& value) const {
  std::string code = value;
  RemoveChar(code, ' ');
  if (code.size() < 5 || code.size() > 7) return false;
  if (code == "GIR0AA") return true;
  const std::string_view v(code);
  return IsInwardCode(v.substr(v.size() - 3)) &&
         IsOutwardCode(v.substr(0, v.size() - 3));
}

bool cFormat::IsInwardCode(std::string_view code) const {
  return code.size() == 3 && IsDigit(code[0]) && IsInwardLetter(code[1]) &&
         IsInwardLetter(code[2]);
}

bool cFormat::IsOutwardCode(std::string_view code) const {
  if (code.size() < 2 || code.size() > 4 || !IsLetter(code[0])) return false;
  switch (code.size()) {
    case 2:
      return IsDigit(code[1]);
    case 3:
      return IsAlnum(code[1]) && IsAlnum(code[2]) &&
             !(IsLetter(code[1]) && IsLetter(code[2]));
    default:
      return IsLetter(code[1]) && IsDigit(code[2]) && IsAlnum(code[3]);
  }
}

bool cFormat::IsStrictOutwardCode(std::string_view code) const {
  const size_t n = code.size();
  if (n < 2 || n > 4 || !In(kStrictFirst, code[0])) return false;
  const char second = code[1];
  if (n == 2) return IsDigit(second);
  if (n == 4) {
    // "G" is allowed in the fourth position but not the third (below).
    return In(kStrictSecond, second) && IsDigit(code[2]) &&
           (IsDigit(code[3]) || In(kStrictThird, code[3]));
  }
  const char third = code[2];
  if (!IsDigit(second) && !In(kStrictSecond, second)) return false;
  if (!IsDigit(third) && !(In(kStrictThird, third) && third != 'G')) {
    return false;
  }
  return !IsLetter(second) || IsDigit(third);
}

bool cFormat::FormatPostCode(const std::string& value, std::string& out,
                             int32_t code, cRepairTrace* trace) const {
  // Postcodes write nothing to the format log, so only a caller's trace
  // records steps.
  if (trace == nullptr) return FormatPostCodeSteps(value, out, code);
  const bool ok = FormatPostCodeSteps(value, out, code);
  if (ok) TracePostCode(value, out, *trace);
  return ok;
}

void cFormat::TracePostCode(const std::string& value, const std::string& out,
                            cRepairTrace& trace) {
  if (value == out) return;
  // The characters of the text other than blanks, with their positions,
  // line up with those of the result unless the repair dropped the marks
  // between them ("EC1A-1BB"); then the letters and digits line up.
  std::string kept;
  std::vector<int32_t> where;
  for (size_t i = 0; i < value.size(); ++i) {
    if (value[i] == ' ') continue;
    kept += value[i];
    where.push_back(static_cast<int32_t>(i + 1));
  }
  std::string result = out;
  std::erase(result, ' ');
  size_t others = 0;
  int32_t firstOther = 0;
  if (kept.size() != result.size()) {
    std::string alnum;
    std::vector<int32_t> alnumWhere;
    for (size_t i = 0; i < kept.size(); ++i) {
      if (IsAlnum(UpperChar(kept[i]))) {
        alnum += kept[i];
        alnumWhere.push_back(where[i]);
      } else if (others++ == 0) {
        firstOther = where[i];
      }
    }
    kept = std::move(alnum);
    where = std::move(alnumWhere);
  }
  if (others > 0) {
    trace.Add("separator-dropped",
              std::to_string(others) + (others == 1 ? " mark" : " marks") +
                  " removed",
              firstOther, "", "");
  }
  if (kept.size() != result.size()) {
    trace.Add("char-dropped", "characters dropped to fit the postcode shape", 0,
              value, out);
    return;
  }
  for (size_t i = 0; i < kept.size(); ++i) {
    const char from = kept[i];
    const char to = result[i];
    if (from == to) continue;
    const std::string at = " at position " + std::to_string(where[i]);
    if (UpperChar(from) == to) {
      trace.Add("case-changed", std::string(1, from) + " written as " + to + at,
                where[i], std::string(1, from), std::string(1, to));
    } else {
      trace.Add(IsDigit(to) ? "bias-digit" : "bias-letter",
                std::string(1, from) + " read as " + to + at, where[i],
                std::string(1, from), std::string(1, to));
    }
  }
  std::string spaced = value;
  for (char& c : spaced) c = UpperChar(c);
  if (spaced.find(' ') != out.find(' ') || spaced.size() != out.size()) {
    trace.Add("postcode-shape", "written as outward code, space, inward code",
              0, value, out);
  }
}

bool cFormat::FormatPostCodeSteps(const std::string& value, std::string& out,
                                  int32_t /*code*/) const {
  if (value == "GIR 0AA") {
    out = value;
    return true;
  }
  std::string outward;
  std::string inward;
  const size_t blank = value.find(' ');
  if (blank != std::string::npos) {
    outward = value.substr(0, blank);
    inward = value.substr(blank + 1);
  }
  if (blank == std::string::npos || inward.size() != 3 || outward.size() < 2 ||
      outward.size() > 4) {
    const std::string cleaned = StripPostCodeJunk(value);
    if (cleaned.size() < 5 || cleaned.size() > 7) return false;
    outward = cleaned.substr(0, cleaned.size() - 3);
    inward = cleaned.substr(cleaned.size() - 3);
  }
  if (!FormatInwardCode(inward) || !FormatOutwardCode(outward)) return false;
  out = outward + " " + inward;
  return true;
}

bool cFormat::FormatInwardCode(std::string& code) const {
  if (code.size() != 3) return false;
  if (!IsDigit(code[0])) {
    std::string c(1, code[0]);
    BiasToNumber(c);
    if (!IsDigit(c[0])) return false;
    code[0] = c[0];
  }
  for (size_t i = 1; i < 3; ++i) {
    if (IsInwardLetter(code[i])) continue;
    std::string c(1, code[i]);
    BiasToUCASECharacter(c, kInwardLetters);
    if (c[0] == 'I') c[0] = 'L';
    if (!IsInwardLetter(c[0])) return false;
    code[i] = c[0];
  }
  return true;
}

bool cFormat::FormatOutwardCode(std::string& code) const {
  const size_t n = code.size();
  if (n < 2 || n > 4) return false;
  const auto toDigit = [this](char& c) {
    if (IsDigit(c)) return true;
    std::string s(1, c);
    BiasToNumber(s);
    if (!IsDigit(s[0])) return false;
    c = s[0];
    return true;
  };
  const auto toLetter = [this](char& c) {
    if (IsLetter(c)) return true;
    std::string s(1, c);
    BiasToUCASECharacter(s, kAnyLetter);
    if (!IsLetter(s[0])) return false;
    c = s[0];
    return true;
  };
  // A digit where one is likely, else a letter.
  const auto toAlnum = [&](char& c) { return toDigit(c) || toLetter(c); };

  if (!toLetter(code[0])) return false;
  if (n == 2) return toDigit(code[1]);
  if (n == 4) return toLetter(code[1]) && toDigit(code[2]) && toAlnum(code[3]);

  // Three characters: A9A, A99 or AA9. The third settles the second.
  char& second = code[1];
  char& third = code[2];
  if (!toAlnum(third)) return false;
  if (IsLetter(third)) return toDigit(second);  // A9A
  if (second == '0') {
    second = 'O';  // no district number starts with a zero: AA9
  } else if (second == 'I') {
    second = '1';  // "I" is never a second letter: A99
  }
  return IsAlnum(second) || toAlnum(second);
}

std::string cFormat::StripPostCodeJunk(std::string_view value) {
  // Kept: letters and digits, and the marks the bias routines can turn
  // into one (one-likes and "$"). Blanks, punctuation and the rest go.
  std::string kept;
  kept.reserve(value.size());
  for (const char c : value) {
    if (IsAlnum(c) || (c >= 'a' && c <= 'z') || In("/\\!|[]()$", c)) {
      kept += c;
    }
  }
  return kept;
}

}  // namespace pelinor
