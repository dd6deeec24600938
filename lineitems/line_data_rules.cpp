// Line-level rules and conditions of the template file.
//
// Format: see docs/formats/template.md.

#include "pelinor/line_data_rules.h"

#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/extract_zone.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "template/record_io.h"

namespace pelinor {
namespace {

constexpr char kWriteFault[] = "57 Device I/O error";

}  // namespace

bool cExpression::TakesValue() const {
  return Operation != "EMPTY" && Operation != "NOT EMPTY";
}

bool WriteLineDataRules(const LineDataRulesList& rules, TextWriter& hFile,
                        std::string& strErrMsg) {
  strErrMsg.clear();
  hFile.WriteLine("LineLevelRules:" + NumberText(rules.Count()));
  int32_t n = 0;
  const cLineDataRules empty;
  for (const auto& rule : rules) {
    const std::string idx = NumberText(++n);
    const cLineDataRules& r = rule != nullptr ? *rule : empty;
    hFile.WriteLine("DataPropagateFrom" + idx + ":" + r.PropagateFrom);
    hFile.WriteLine("DataPropagateTo" + idx + ":" + r.PropagateTo);
    hFile.WriteLine("DataPropagateRows" + idx + ":" + r.PropagateRows);
  }
  if (!hFile.ok()) {
    strErrMsg = std::string(
                    "Error writing to template file, line level rules "
                    "section. ") +
                kWriteFault;
    return false;
  }
  return true;
}

bool ReadLineDataRules(LineDataRulesList& rules, TextReader& hFile,
                       std::string& strErrMsg) {
  strErrMsg.clear();
  int32_t count = 0;
  if (!template_io::ReadLabelledLong(hFile, count)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  for (int32_t i = 0; i < count; ++i) {
    auto rule = std::make_shared<cLineDataRules>();
    if (!template_io::ReadSplitLine(hFile, rule->PropagateFrom) ||
        !template_io::ReadSplitLine(hFile, rule->PropagateTo) ||
        !template_io::ReadSplitLine(hFile, rule->PropagateRows)) {
      strErrMsg = kTemplateIncorrectParameter;
      return false;
    }
    rules.Add(rule);
  }
  return true;
}

bool WriteExpressions(const std::string& label, const ExpressionList& list,
                      TextWriter& hFile, std::string& strErrMsg) {
  strErrMsg.clear();
  hFile.WriteLine(label + NumberText(list.Count()));
  int32_t n = 0;
  const cExpression empty;
  for (const auto& item : list) {
    const cExpression& e = item != nullptr ? *item : empty;
    std::string line =
        "Expr" + NumberText(++n) + ":" + e.Name + ":" + e.Operation;
    if (e.TakesValue()) line += ":" + e.value;
    hFile.WriteLine(line);
  }
  if (!hFile.ok()) {
    strErrMsg = std::string(
                    "Error writing to template file, line level expression "
                    "section. ") +
                kWriteFault;
    return false;
  }
  return true;
}

bool ReadExpressions(ExpressionList& list, TextReader& hFile,
                     std::string& strErrMsg) {
  strErrMsg.clear();
  int32_t count = 0;
  if (!template_io::ReadLabelledLong(hFile, count)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  const cDataParser parser;
  for (int32_t i = 0; i < count; ++i) {
    std::string rest;
    auto e = std::make_shared<cExpression>();
    if (!template_io::ReadSplitLine(hFile, rest) ||
        !parser.SplitTriplet(rest, e->Name, e->Operation, e->value, ":")) {
      strErrMsg = kTemplateIncorrectParameter;
      return false;
    }
    // A value-less record leaves the operation as it stood after the
    // name; spaces are not part of it.
    e->Operation = std::string(Trim(e->Operation));
    list.Add(e);
  }
  return true;
}

}  // namespace pelinor
