// Tagged record lines and the shared record routines.
// Format: docs/formats/record-lines.md.

#include "pelinor/data_parser.h"

#include <limits>

#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {

std::string cDataParser::GetLine(const std::string& strFileData, int32_t lStart,
                                 int32_t& lEnd, const std::string& strLabel,
                                 const std::string& strDelimiter,
                                 const std::string& strCharLineEnd) const {
  // An empty line end would find the same empty line forever.
  if (lStart < 1 || strCharLineEnd.empty() ||
      strFileData.size() >=
          static_cast<size_t>(std::numeric_limits<int32_t>::max())) {
    return "";
  }
  const std::string label = UCase(strLabel);
  size_t pos = static_cast<size_t>(lStart);
  for (;;) {
    size_t eol = InStr(pos, strFileData, strCharLineEnd);
    if (eol == 0) return "";
    std::string_view candidate =
        Trim(std::string_view(strFileData).substr(pos - 1, eol - pos));
    size_t d = InStr(1, candidate, strDelimiter);
    if (d != 0) {
      std::string_view found = candidate.substr(0, d - 1);
      if (label.empty() || EqualsIgnoreCase(found, label)) {
        lEnd = static_cast<int32_t>(eol + strCharLineEnd.size());
        return std::string(candidate);
      }
    }
    pos = eol + strCharLineEnd.size();
  }
}

bool cDataParser::ExtractValue(const std::string& strData, int32_t lStart,
                               int32_t& lEnd, const std::string& strLabel,
                               std::string& strExtractedValue,
                               const std::string& strDelimiter,
                               const std::string& strCharLineEnd) const {
  std::string line =
      GetLine(strData, lStart, lEnd, strLabel, strDelimiter, strCharLineEnd);
  if (line.empty()) return false;
  std::string name;
  return SplitNameAndValue(line, name, strExtractedValue, strDelimiter);
}

bool cDataParser::SplitNameAndValue(const std::string& strLine,
                                    std::string& strName, std::string& strValue,
                                    const std::string& strDelimiter) const {
  size_t p = InStr(1, strLine, strDelimiter);
  if (p == 0) return false;
  std::string_view line(strLine);
  strName = std::string(Trim(line.substr(0, p - 1)));
  // The value starts one character after the delimiter's first character,
  // whatever the delimiter's length.
  strValue = std::string(Trim(line.substr(p)));
  return true;
}

void cDataParser::DecodeDataFromFile(std::string& strIn) const {
  std::string out;
  out.reserve(strIn.size());
  for (size_t i = 0; i < strIn.size(); ++i) {
    char c = strIn[i];
    if (c != '\\' || i + 1 == strIn.size()) {
      out.push_back(c);
      continue;
    }
    char next = strIn[++i];
    if (next == '\\') {
      out.push_back('\\');
    } else if (next == 'r') {
      out.push_back('\r');
    } else if (next == 'n') {
      out.push_back('\n');
    } else {
      out.push_back('\\');
      out.push_back(next);
    }
  }
  strIn.swap(out);
}

bool cDataParser::SplitTriplet(const std::string& strLine, std::string& strLeft,
                               std::string& strMiddle, std::string& strRight,
                               const std::string& strDelimiter) const {
  size_t p = InStr(1, strLine, strDelimiter);
  if (p == 0) return false;
  strLeft = std::string(Trim(std::string_view(strLine).substr(0, p - 1)));
  if (p == strLine.size()) return true;
  std::string rest = strLine.substr(p);
  std::string middle;
  std::string right;
  if (SplitNameAndValue(rest, middle, right, strDelimiter)) {
    strMiddle = std::move(middle);
    strRight = std::move(right);
  } else {
    strMiddle = std::move(rest);
  }
  return true;
}

void EscapeQuotes(std::string& text) {
  std::string out;
  out.reserve(text.size() + 8);
  for (char c : text) {
    if (c == '"') {
      out.append("\\Q");
    } else if (c == '\\') {
      out.append("\\\\");
    } else {
      out.push_back(c);
    }
  }
  text.swap(out);
}

void UnescapeQuotes(std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c != '\\' || i + 1 == text.size()) {
      out.push_back(c);
      continue;
    }
    char next = text[++i];
    if (next == '\\') {
      out.push_back('\\');
    } else if (next == 'Q') {
      out.push_back('"');
    } else {
      out.push_back('\\');
      out.push_back(next);
    }
  }
  text.swap(out);
}

bool ParseVersionNumber(const std::string& line, float& value) {
  if (line.size() < 4) return false;
  value = static_cast<float>(LeadingNumber(std::string_view(line).substr(3)));
  return true;
}

bool ParseLabelledLong(const std::string& line, std::string& name,
                       int32_t& value) {
  std::string label;
  std::string text;
  if (!cDataParser().SplitNameAndValue(line, label, text, ":")) return false;
  name = std::move(label);
  return ToLong(text, value);
}

std::string TrailingDigits(std::string_view text) {
  size_t b = text.size();
  while (b > 0 && text[b - 1] >= '0' && text[b - 1] <= '9') --b;
  return std::string(text.substr(b));
}

std::string TextAfterLast(std::string_view text, std::string_view separator) {
  if (separator.size() != 1) return "";
  size_t at = text.rfind(separator[0]);
  return at == std::string_view::npos ? "" : std::string(text.substr(at + 1));
}

}  // namespace pelinor
