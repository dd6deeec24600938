// The pattern specification language: piped and sub-pattern forms, the
// element splitter, escaping, brace sections and the assembled expression.
// Language: docs/formats/patterns.md.

#include <cstdint>
#include <string>
#include <vector>

#include "pattern/memo_matcher.h"
#include "pelinor/pattern_engine.h"

namespace pelinor {
namespace {

// Patterns with more ways through them than this are matched by the
// engine's own matcher.
constexpr uint64_t kMaxBacktrackPaths = 256;

struct RawElement {
  std::string text;
  bool optional;
};

// Splits a sub-pattern specification into its elements: runs of text
// outside parentheses are mandatory, groups in parentheses optional, and
// double quotes make parentheses literal. The last character has rules of
// its own, because it must close whatever is still open.
bool SplitElements(const std::string& spec, std::vector<RawElement>& out,
                   std::string& strErrMsg) {
  bool in_quote = false;
  bool in_group = false;
  bool started = false;
  std::string buffer;
  auto fail = [&](const char* message) {
    strErrMsg = message;
    return false;
  };
  const size_t n = spec.size();
  for (size_t i = 0; i < n; ++i) {
    const char c = spec[i];
    if (i + 1 < n) {
      if (c == '(' && !in_quote) {
        if (in_group) return fail(kNestedGroupError);
        if (started) out.push_back({buffer, false});
        in_group = true;
        started = true;
        buffer.clear();
      } else if (c == ')' && !in_quote) {
        if (!in_group) return fail(kUnopenedGroupError);
        if (buffer.empty()) return fail(kEmptyGroupError);
        out.push_back({buffer, true});
        in_group = false;
        started = false;
        buffer.clear();
      } else {
        if (c == '"') in_quote = !in_quote;
        started = true;
        buffer.push_back(c);
      }
      continue;
    }
    // The last character.
    if (c == ')') {
      if (in_quote) return fail(kUnclosedQuoteError);
      if (!in_group) return fail(kUnopenedGroupError);
      if (buffer.empty()) return fail(kEmptyGroupError);
      out.push_back({buffer, true});
      return true;
    }
    if (c == '(') return fail(kUnclosedGroupError);
    if (c == '"' && !in_quote) return fail(kUnopenedQuoteError);
    buffer.push_back(c);
    if (in_group) return fail(kUnclosedGroupError);
    out.push_back({buffer, false});
  }
  return true;
}

// Turns one element's text into its positions and expression, adding its
// brace sections to `rules`.
bool ConvertElement(const std::string& text, cMetaRules& rules,
                    cPatternElement& element, std::string& strErrMsg) {
  bool quoted = false;
  bool in_brace = false;
  std::string section;
  for (char c : text) {
    if (in_brace) {
      if (c == '{') {
        strErrMsg = kNestedBraceError;
        return false;
      }
      if (c != '}') {
        section.push_back(c);
        continue;
      }
      if (!rules.AddCharReplaceLine(section, strErrMsg)) return false;
      const int32_t index = rules.CharReplaceComps.Count();
      element.Slots.push_back(cPatternSlot{section[0], false, index});
      element.Expression += rules.CharReplaceComps.Item(index)->Expression();
      in_brace = false;
      continue;
    }
    if (c == '"') {
      quoted = !quoted;
    } else if (quoted) {
      element.Slots.push_back(cPatternSlot{c, true, 0});
      if (c == '.') {
        element.Expression += "\\.";
      } else {
        AppendEscapedChar(element.Expression, c);
      }
    } else if (c == '{') {
      in_brace = true;
      section.clear();
    } else if (c == '}') {
      strErrMsg = kUnopenedBraceError;
      return false;
    } else {
      element.Slots.push_back(cPatternSlot{c, false, 0});
      element.Expression += PlaceholderExpression(c);
    }
  }
  if (in_brace) {
    strErrMsg = kUnclosedBraceError;
    return false;
  }
  return true;
}

}  // namespace

std::string cPatternEngine::PipeExpressionToSBS(
    const std::string& strExpression) {
  if (strExpression.find('|') == std::string::npos) return strExpression;
  std::string out;
  out.reserve(strExpression.size() * 2 + 2);
  size_t from = 0;
  while (true) {
    size_t bar = strExpression.find('|', from);
    out.push_back('(');
    out.append(strExpression, from,
               bar == std::string::npos ? std::string::npos : bar - from);
    out.push_back(')');
    if (bar == std::string::npos) break;
    from = bar + 1;
  }
  return out;
}

void cPatternEngine::LoadSBSExpression(const std::string& strSpec,
                                       std::string& strErrMsg, bool& bSuccess) {
  bSuccess = false;
  ++loads_;
  elements_.clear();
  RegExpFormats.Clear();
  meta_rules_.Clear();
  SBSFormat = PipeExpressionToSBS(strSpec);
  std::vector<RawElement> raw;
  if (!SplitElements(SBSFormat, raw, strErrMsg)) return;
  std::vector<cPatternElement> elements;
  elements.reserve(raw.size());
  for (RawElement& r : raw) {
    cPatternElement element;
    element.Text = std::move(r.text);
    element.Optional = r.optional;
    if (!ConvertElement(element.Text, meta_rules_, element, strErrMsg)) {
      meta_rules_.Clear();
      return;
    }
    elements.push_back(std::move(element));
  }
  std::string expression;
  for (const cPatternElement& element : elements) {
    RegExpFormats.Add(element.Expression);
    if (element.Optional) {
      expression += "(" + element.Expression + "){0,1}";
    } else {
      expression += element.Expression;
    }
  }
  elements_ = std::move(elements);
  RegExpFormat = std::move(expression);
  // Many ways through the pattern: the engine's own matcher bounds the
  // work. One, or a few: fixed shapes, which the matcher checks directly,
  // faster than the compiled expression. Between them the expression is
  // faster and cannot blow up.
  program_ = nullptr;
  const uint64_t paths =
      internal::SpecProgram::CountPaths(elements_, meta_rules_);
  if (paths > kMaxBacktrackPaths || paths == 1) {
    program_ = internal::SpecProgram::Build(elements_, meta_rules_);
  } else if (paths <= internal::SpecProgram::kMaxListedPaths) {
    program_ = internal::SpecProgram::Build(elements_, meta_rules_);
    if (program_ != nullptr && !program_->Listed()) program_ = nullptr;
  }
  loaded_expression_ = RegExpFormat;
  bSuccess = true;
}

bool cPatternEngine::LoadCharacterMappings(const std::string& strPath,
                                           std::string& strErrMsg) {
  bool success = false;
  if (CharMapper == nullptr) CharMapper = std::make_shared<cCharMapper>();
  CharMapper->LoadCharMap(strPath, strErrMsg, success);
  return success;
}

}  // namespace pelinor
