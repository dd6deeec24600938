// cLineItemExtractor: the line items of a document, read off its pages
// (page_model.h) through the line tables of its template. Each table's
// area is cut out of the pages its location names, bounded by its top and
// bottom anchors when they are found; words are assigned to the columns,
// text lines become rows or continue the row above, and the template's
// start, end and repeat conditions, discard counts and propagation rules
// decide which rows are kept and what they hold. The rows become cLineData
// with one cLineItemData per line header of the document.
//
// Every rule is written down in docs/line-items.md.
//
// Thread safety: an extractor holds only settings; Extract() may run on
// several threads at once for separate documents (templates and profiles
// are only read).

#ifndef PELINOR_LINE_ITEM_EXTRACTOR_H_
#define PELINOR_LINE_ITEM_EXTRACTOR_H_

#include <cstdint>
#include <string>
#include <vector>

#include "pelinor/document_data.h"
#include "pelinor/line_data_rules.h"
#include "pelinor/page_model.h"
#include "pelinor/template.h"

namespace pelinor {

// What one table gave, for reports.
struct cLineTableResult {
  int32_t Table = 0;           // one-based index in the template's LineTables
  std::vector<int32_t> Pages;  // one-based pages read
  int32_t LinesRead = 0;       // text lines inside the area
  int32_t RowsFormed = 0;      // rows before conditions and discards
  int32_t RowsKept = 0;        // rows added to the document
};

class cLineItemExtractor {
 public:
  // The lowest score (TextSimilarity()) at which an anchor counts as found.
  double MinScore = 0.75;

  // Extract()
  //
  // Adds the line items of `model` to `doc` for every line table of
  // `doc.Template`: the document's line headers are rebuilt from profile
  // and template first (when the template has tables), then each kept row
  // is appended with CreateLineData() and one cell per line header, the
  // column of the same name giving its value and box. Rows are located in
  // 300 dpi pixels; the template's coordinates are moved by (`shift_x`,
  // `shift_y`), the identifier's shift on the first page. Values are raw
  // (cells not validated yet, as new fields); the capture run cleans them.
  // REQUIRES: doc.Profile is set.
  std::vector<cLineTableResult> Extract(const cPageModel& model,
                                        int32_t shift_x, int32_t shift_y,
                                        cDocumentData& doc) const;
};

// ConditionHolds()
//
// Whether `value` (a cell's text) meets `condition`: "EMPTY" / "NOT EMPTY"
// (after trimming blanks), "=" / "<>" (ignoring case and surrounding
// blanks), "CONTAINS" / "NOT CONTAINS" and "STARTS" (ignoring case),
// "NUMERIC" / "NOT NUMERIC" (an amount that cFormat accepts, in any
// locale), "LIKE" (the value matches the regular expression of `value`,
// ignoring case). An unknown operation never holds.
bool ConditionHolds(const cExpression& condition, const std::string& value);

}  // namespace pelinor

#endif  // PELINOR_LINE_ITEM_EXTRACTOR_H_
