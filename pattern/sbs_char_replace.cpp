// Brace sections of pattern specifications ("{0000??}").
// Language: docs/formats/patterns.md.

#include "pelinor/sbs_char_replace.h"

namespace pelinor {
namespace {

// Longer sections are refused: no field value needs them, and the
// coercion expands sections into every length they allow.
constexpr size_t kMaxSectionPositions = 255;

}  // namespace

void AppendEscapedChar(std::string& out, char c) {
  switch (c) {
    case '[':
    case '\\':
    case '^':
    case '$':
    case '|':
    case '?':
    case '*':
    case '+':
    case '(':
    case ')':
    case '{':
    case '}':
      out.push_back('\\');
      break;
    default:
      break;
  }
  out.push_back(c);
}

std::string PlaceholderExpression(char c) {
  switch (c) {
    case '0':
      return "\\d";
    case 'L':
      return "[A-Z]";
    case 'l':
      return "[a-z]";
    default: {
      std::string out;
      AppendEscapedChar(out, c);
      return out;
    }
  }
}

bool cSBSCharReplace::Parse(std::string_view contents, std::string& strErrMsg) {
  size_t required = 0;
  while (required < contents.size() && contents[required] == contents[0]) {
    ++required;
  }
  size_t optional = 0;
  while (required + optional < contents.size() &&
         contents[required + optional] == '?') {
    ++optional;
  }
  if (required == 0 || required + optional != contents.size() ||
      contents[0] == '?' || contents[0] == '"' ||
      contents.size() > kMaxSectionPositions) {
    strErrMsg = kBraceSectionError;
    return false;
  }
  MinLen = static_cast<int32_t>(required);
  MaxLen = static_cast<int32_t>(required + optional);
  Rules.assign(1, contents[0]);
  return true;
}

std::string cSBSCharReplace::Expression() const {
  std::string out = PlaceholderExpression(Rules.empty() ? '?' : Rules[0]);
  out.push_back('{');
  out.append(std::to_string(MinLen));
  out.push_back(',');
  out.append(std::to_string(MaxLen));
  out.push_back('}');
  return out;
}

bool cMetaRules::AddCharReplaceLine(const std::string& contents,
                                    std::string& strErrMsg) {
  auto section = std::make_shared<cSBSCharReplace>();
  if (!section->Parse(contents, strErrMsg)) return false;
  CharReplaceLines.Add(contents);
  CharReplaceComps.Add(std::move(section));
  return true;
}

Collection<std::string> cMetaRules::GetCharReplaceSequences(
    int32_t index) const {
  Collection<std::string> out;
  const std::shared_ptr<cSBSCharReplace>& section =
      CharReplaceComps.Item(index);
  if (section == nullptr || section->Rules.empty()) return out;
  for (int32_t n = section->MinLen; n <= section->MaxLen; ++n) {
    out.Add(std::string(static_cast<size_t>(n), section->Rules[0]));
  }
  return out;
}

void cMetaRules::Clear() {
  CharReplaceLines.Clear();
  CharReplaceComps.Clear();
}

}  // namespace pelinor
