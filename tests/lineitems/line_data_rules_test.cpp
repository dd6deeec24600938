#include "pelinor/line_data_rules.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "pelinor/extract_zone.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::ReadFile;
using testing::TempDir;

template <typename Fn>
std::string Written(Fn write) {
  TempDir dir;
  TextWriter w;
  EXPECT_TRUE(w.Create(dir.File("t")));
  write(w);
  EXPECT_TRUE(w.Commit());
  return ReadFile(dir.File("t"));
}

TEST(LineDataRules, RoundTrip) {
  LineDataRulesList rules;
  for (const cLineDataRules& rule : {cLineDataRules{"PO", "Description", "ALL"},
                                     cLineDataRules{"Qty", "", "1,2"}}) {
    rules.Add(std::make_shared<cLineDataRules>(rule));
  }
  const std::string expected =
      "LineLevelRules:2\r\nDataPropagateFrom1:PO\r\n"
      "DataPropagateTo1:Description\r\nDataPropagateRows1:ALL\r\n"
      "DataPropagateFrom2:Qty\r\nDataPropagateTo2:\r\n"
      "DataPropagateRows2:1,2\r\n";
  std::string err = "stale";
  EXPECT_EQ(Written([&](TextWriter& w) {
              EXPECT_TRUE(WriteLineDataRules(rules, w, err));
            }),
            expected);
  EXPECT_EQ(err, "");
  TextReader in;
  in.OpenText(expected + "NEXT\r\n");
  LineDataRulesList back;
  EXPECT_TRUE(ReadLineDataRules(back, in, err));
  ASSERT_EQ(back.Count(), 2);
  EXPECT_EQ(back.Item(1)->PropagateTo, "Description");
  EXPECT_EQ(back.Item(2)->PropagateRows, "1,2");
  std::string rest;
  EXPECT_TRUE(in.ReadLine(rest));
  EXPECT_EQ(rest, "NEXT");
}

TEST(Expression, WritesValueOnlyWhenTheOperationTakesOne) {
  struct Case {
    std::string name, operation, value;
    std::string line;
  } cases[] = {
      {"Qty", "EMPTY", "ignored", "Expr1:Qty:EMPTY"},
      {"Qty", "NOT EMPTY", "ignored", "Expr1:Qty:NOT EMPTY"},
      {"Description", "=", "Total", "Expr1:Description:=:Total"},
      {"Code", "LIKE", "A:B", "Expr1:Code:LIKE:A:B"},
      {"Code", "empty", "x", "Expr1:Code:empty:x"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    ExpressionList list;
    auto e = std::make_shared<cExpression>();
    e->Name = c.name;
    e->Operation = c.operation;
    e->value = c.value;
    list.Add(e);
    std::string err;
    const std::string text = Written([&](TextWriter& w) {
      EXPECT_TRUE(WriteExpressions("LineLevelEndExpr:", list, w, err));
    });
    EXPECT_EQ(text, "LineLevelEndExpr:1\r\n" + c.line + "\r\n");
    TextReader in;
    in.OpenText(text);
    ExpressionList back;
    EXPECT_TRUE(ReadExpressions(back, in, err));
    ASSERT_EQ(back.Count(), 1);
    EXPECT_EQ(back.Item(1)->Name, c.name);
    EXPECT_EQ(back.Item(1)->Operation, c.operation);
    EXPECT_EQ(back.Item(1)->value, e->TakesValue() ? c.value : "");
  }
}

TEST(Expression, RejectsMalformedLists) {
  struct Case {
    std::string body;
    int read;
  } cases[] = {
      {"", 0},
      {"LineLevelStartExpr:two\r\n", 0},
      {"LineLevelStartExpr:2\r\nExpr1:Qty:EMPTY\r\n", 1},
      {"LineLevelStartExpr:1\r\nExpr1:Qty\r\n", 0},
      {"LineLevelStartExpr:1\r\nNoDelimiter\r\n", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    TextReader in;
    in.OpenText(c.body);
    ExpressionList list;
    std::string err;
    EXPECT_FALSE(ReadExpressions(list, in, err));
    EXPECT_EQ(err, kTemplateIncorrectParameter);
    EXPECT_EQ(list.Count(), c.read);
  }
}

}  // namespace
}  // namespace pelinor
