// cLineDataRules, one rule by which a value propagates between the rows
// of line-level data, and cExpression, one condition of the expressions
// that recognise the start, the end and the repetition of line items.
//
// Format: see docs/formats/template.md ("Rules" and "Conditions").
//
// Both are written and read by their template as lists: a count line,
// then the records of each item numbered from 1.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_LINE_DATA_RULES_H_
#define PELINOR_LINE_DATA_RULES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/text_file.h"

namespace pelinor {

class cLineDataRules {
 public:
  std::string PropagateFrom;
  std::string PropagateTo;
  std::string PropagateRows;
};

class cExpression {
 public:
  std::string Name;       // the line-item header tested
  std::string Operation;  // "EMPTY" and "NOT EMPTY" take no value
  std::string value;

  // The same three values under their member names.
  std::string& mvarName() { return Name; }
  std::string& mvarOperation() { return Operation; }
  std::string& mvarValue() { return value; }

  // TakesValue()
  //
  // False for the operations "EMPTY" and "NOT EMPTY", whose record has no
  // value part.
  bool TakesValue() const;
};

using LineDataRulesList = Collection<std::shared_ptr<cLineDataRules>>;
using ExpressionList = Collection<std::shared_ptr<cExpression>>;

// WriteLineDataRules()
//
// Writes "LineLevelRules:" with the count, then per rule n the lines
// "DataPropagateFrom" n ":", "DataPropagateTo" n ":" and
// "DataPropagateRows" n ":" with their values. False with "Error writing
// to template file, line level rules section. " when a write failed.
bool WriteLineDataRules(const LineDataRulesList& rules, TextWriter& hFile,
                        std::string& strErrMsg);

// ReadLineDataRules()
//
// Reads what WriteLineDataRules() wrote (the count as an item, the rule
// lines as whole lines) and appends the rules to `rules`. False with
// "Error reading template file. Incorrect parameter" on a missing count
// or line; the rules read before stay.
bool ReadLineDataRules(LineDataRulesList& rules, TextReader& hFile,
                       std::string& strErrMsg);

// WriteExpressions()
//
// Writes `label` (such as "LineLevelStartExpr:") with the count, then per
// condition n the line "Expr" n ":" Name ":" Operation, followed by ":"
// value unless the operation takes none. False with "Error writing to
// template file, line level expression section. " when a write failed.
bool WriteExpressions(const std::string& label, const ExpressionList& list,
                      TextWriter& hFile, std::string& strErrMsg);

// ReadExpressions()
//
// Reads what WriteExpressions() wrote and appends the conditions to
// `list`. The value keeps any further ":". False with "Error reading
// template file. Incorrect parameter" on a missing count or a line
// without name and operation.
bool ReadExpressions(ExpressionList& list, TextReader& hFile,
                     std::string& strErrMsg);

}  // namespace pelinor

#endif  // PELINOR_LINE_DATA_RULES_H_
