// cLineItemExtractor: line tables read off the page model. The rules are
// those of docs/line-items.md.

#include "pelinor/line_item_extractor.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "pelinor/field_data.h"
#include "pelinor/format.h"
#include "pelinor/line_data.h"
#include "pelinor/numeric.h"
#include "pelinor/page_extractor.h"
#include "pelinor/reg_exp.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

constexpr int32_t kDefaultRowSpaceMax = 70;
constexpr int32_t kDefaultEntitySpaceMax = 100;

// A template distance setting: a non-negative number, else `fallback`.
int32_t Distance(const std::string& text, int32_t fallback) {
  double d = 0;
  if (!ToDouble(std::string(TrimBlanks(text)), d) || d < 0 || d > 1e6) {
    return fallback;
  }
  return static_cast<int32_t>(std::lround(d));
}

// The one-based pages a table location names, in order.
std::vector<int32_t> PagesOf(int32_t location, int32_t n) {
  std::vector<int32_t> pages;
  if (location == kLocationFront) {
    if (n > 0) pages.push_back(1);
  } else if (location == kLocationBack) {
    if (n > 0) pages.push_back(n);
  } else if (location == kLocationAll) {
    for (int32_t p = 1; p <= n; ++p) pages.push_back(p);
  } else if (location == kLocationMid) {
    for (int32_t p = 2; p < n; ++p) pages.push_back(p);
  } else if (location > 0 && location <= n) {
    pages.push_back(location);
  }
  return pages;
}

// One entity: words of a line whose gaps stay within the entity space.
struct Entity {
  std::string text;
  cBox box;
};

struct TextLine {
  std::vector<Entity> entities;
  cBox box;
  int32_t page = 0;
};

struct Row {
  std::vector<std::string> cells;  // one per table column
  std::vector<cBox> boxes;
  cBox box;
  int32_t page = 0;
};

// The best run of words on one line of `page` matching `text`; an empty
// box when no run reaches `min_score`. Only lines whose top lies in
// [from, to) are searched.
cBox FindAnchor(const cPage& page, const std::string& text, double min_score,
                int32_t from, int32_t to) {
  cBox best;
  double best_score = 0;
  const size_t limit = text.size() + text.size() / 4 + 2;
  for (const cPageLine& line : page.Lines) {
    const cBox lb = page.ToTemplatePixels(line.Box);
    if (lb.Top < from || lb.Top >= to) continue;
    for (size_t s = 0; s < line.Words.size(); ++s) {
      std::string run;
      cBox box;
      for (size_t e = s; e < line.Words.size(); ++e) {
        const cPageWord& w = page.Words[line.Words[e]];
        if (!run.empty()) run.push_back(' ');
        run += w.Text;
        box.Unite(page.ToTemplatePixels(w.Box));
        if (run.size() > limit) break;
        const double score = TextSimilarity(run, text);
        if (score > best_score + 1e-9) {
          best_score = score;
          best = box;
        }
      }
    }
  }
  return best_score >= min_score ? best : cBox{};
}

// The column (zero-based) that takes an entity: the one it overlaps most
// across; -1 when it overlaps none.
int32_t ColumnOf(const cTableExtract& table, int32_t dx, const cBox& b) {
  int32_t best = -1;
  int32_t best_overlap = 0;
  int32_t i = 0;
  for (const auto& c : table.Columns) {
    if (c) {
      const int32_t left = c->Left + dx;
      const int32_t overlap =
          std::min(b.Right(), left + c->Width) - std::max(b.Left, left);
      if (overlap > best_overlap) {
        best_overlap = overlap;
        best = i;
      }
    }
    ++i;
  }
  return best_overlap > 0 ? best : -1;
}

// The text lines of page `p` inside [top, bottom) and [left, right), as
// entities.
std::vector<TextLine> LinesIn(const cPage& page, int32_t p, int32_t left,
                              int32_t right, int32_t top, int32_t bottom,
                              int32_t entity_space) {
  std::vector<TextLine> out;
  for (const cPageLine& line : page.Lines) {
    TextLine tl;
    tl.page = p;
    for (int32_t wi : line.Words) {
      const cPageWord& w = page.Words[wi];
      const cBox b = page.ToTemplatePixels(w.Box);
      const int32_t cx = b.Left + b.Width / 2;
      const int32_t cy = b.Top + b.Height / 2;
      if (cx < left || cx >= right || cy < top || cy >= bottom) continue;
      if (!tl.entities.empty() &&
          b.Left - tl.entities.back().box.Right() <= entity_space) {
        Entity& e = tl.entities.back();
        e.text.push_back(' ');
        e.text += w.Text;
        e.box.Unite(b);
      } else {
        tl.entities.push_back({w.Text, b});
      }
      tl.box.Unite(b);
    }
    if (!tl.entities.empty()) out.push_back(std::move(tl));
  }
  return out;
}

bool AllHold(const ExpressionList& conditions, const cTableExtract& table,
             const Row& row) {
  for (const auto& c : conditions) {
    if (!c) continue;
    std::string value;
    int32_t i = 0;
    for (const auto& col : table.Columns) {
      if (col && EqualsIgnoreCase(col->Name, c->Name)) {
        value = row.cells[i];
        break;
      }
      ++i;
    }
    if (!ConditionHolds(*c, value)) return false;
  }
  return true;
}

int32_t ColumnIndex(const cTableExtract& table, const std::string& name) {
  int32_t i = 0;
  for (const auto& col : table.Columns) {
    if (col && EqualsIgnoreCase(col->Name, name)) return i;
    ++i;
  }
  return -1;
}

// The propagation rules, in order (docs/line-items.md).
void Propagate(const cTemplate& tpl, const cTableExtract& table,
               const cDocumentData& doc, std::vector<Row>& rows) {
  for (const auto& rule : tpl.ColLineDataRules) {
    if (!rule) continue;
    const int32_t to = ColumnIndex(table, std::string(Trim(rule->PropagateTo)));
    if (to < 0) continue;
    const int32_t from =
        ColumnIndex(table, std::string(Trim(rule->PropagateFrom)));
    std::string field_value;
    if (from < 0) {
      int32_t idx = 0;
      std::shared_ptr<cFieldData> f;
      if (!doc.Find(std::string(Trim(rule->PropagateFrom)), idx, f) || !f) {
        continue;
      }
      field_value = f->value;
    }
    const std::string mode = UCase(TrimBlanks(rule->PropagateRows));
    int32_t only = 0;
    if (IsNumeric(mode)) {
      int32_t n = 0;
      if (!ToLong(mode, n) || n < 1) continue;
      only = n;
    }
    std::string carried = field_value;
    for (size_t r = 0; r < rows.size(); ++r) {
      if (from >= 0 && !TrimBlanks(rows[r].cells[from]).empty()) {
        carried = rows[r].cells[from];
      }
      const bool target_empty = TrimBlanks(rows[r].cells[to]).empty();
      bool take = false;
      if (only > 0) {
        take = static_cast<int32_t>(r + 1) == only;
      } else if (mode == "ALL") {
        take = true;
      } else if (mode == "FIRST") {
        take = r == 0;
      } else if (mode == "LAST") {
        take = r + 1 == rows.size();
      } else {  // "EMPTY" and blank
        take = target_empty;
      }
      if (take && !carried.empty()) rows[r].cells[to] = carried;
    }
  }
}

}  // namespace

bool ConditionHolds(const cExpression& condition, const std::string& value) {
  const std::string op = UCase(TrimBlanks(condition.Operation));
  const std::string_view v = TrimBlanks(value);
  const std::string_view want = TrimBlanks(condition.value);
  if (op == "EMPTY") return v.empty();
  if (op == "NOT EMPTY") return !v.empty();
  if (op == "=") return EqualsIgnoreCase(v, want);
  if (op == "<>") return !EqualsIgnoreCase(v, want);
  if (op == "CONTAINS" || op == "NOT CONTAINS") {
    const bool in = UCase(v).find(UCase(want)) != std::string::npos;
    return op == "CONTAINS" ? in : !in;
  }
  if (op == "STARTS") {
    return UCase(v).rfind(UCase(want), 0) == 0;
  }
  if (op == "NUMERIC" || op == "NOT NUMERIC") {
    std::string digits;
    for (char c : v) {
      if (c == ' ' || c == '\t' || c == '$' || c == '\x80' || c == '\xA3') {
        continue;
      }
      digits.push_back(c);
    }
    // Thousands separators of either convention, then the decimal comma.
    std::string dot = digits;
    dot.erase(std::remove(dot.begin(), dot.end(), ','), dot.end());
    std::string comma = digits;
    comma.erase(std::remove(comma.begin(), comma.end(), '.'), comma.end());
    std::replace(comma.begin(), comma.end(), ',', '.');
    const cFormat f;
    const bool numeric =
        !digits.empty() && (f.ValidateAmount(dot) || f.ValidateAmount(comma));
    return op == "NUMERIC" ? numeric : !numeric;
  }
  if (op == "LIKE") {
    cRegExp re;
    re.Pattern = std::string(want);
    re.IgnoreCase = true;
    return re.Test(v);
  }
  return false;
}

std::vector<cLineTableResult> cLineItemExtractor::Extract(
    const cPageModel& model, int32_t shift_x, int32_t shift_y,
    cDocumentData& doc) const {
  std::vector<cLineTableResult> results;
  if (!doc.Template || doc.Template->LineTables.Count() == 0) return results;
  const cTemplate& tpl = *doc.Template;
  doc.ClearLineHeaders();
  doc.UpdateLineHeaders(doc.Profile, doc.Template);
  const int32_t row_space =
      Distance(tpl.LineDataRowSpaceMax(), kDefaultRowSpaceMax);
  const int32_t entity_space =
      Distance(tpl.LineDataEntitySpaceMax(), kDefaultEntitySpaceMax);
  const int32_t n_pages = static_cast<int32_t>(model.Pages.size());
  const bool duplex = tpl.FlattenDuplex() == 0;
  int32_t table_no = 0;
  for (const auto& tp : tpl.LineTables) {
    ++table_no;
    if (!tp || tp->Columns.Count() == 0) continue;
    const cTableExtract& table = *tp;
    cLineTableResult res;
    res.Table = table_no;
    const size_t ncols = static_cast<size_t>(table.Columns.Count());

    // Text lines of every page the table is read on, top to bottom.
    std::vector<TextLine> lines;
    for (int32_t p : PagesOf(table.Location, n_pages)) {
      bool ignored = false;
      for (int32_t ig : table.IgnorePages) ignored = ignored || ig == p;
      if (ignored) continue;
      if (table.SheetNo > 0 && (duplex ? (p + 1) / 2 : p) != table.SheetNo) {
        continue;
      }
      if (table.PageExtract > 0 &&
          static_cast<int32_t>(res.Pages.size()) >= table.PageExtract) {
        break;
      }
      const cPage& page = model.Pages[p - 1];
      const cBox page_box =
          page.ToTemplatePixels({0, 0, page.Width, page.Height});
      const int32_t left = table.Width > 0 ? table.Left + shift_x : 0;
      const int32_t right = table.Width > 0
                                ? table.Left + shift_x + table.Width
                                : std::numeric_limits<int32_t>::max();
      int32_t top = table.Top + shift_y;
      int32_t bottom = table.Height > 0 ? table.Top + shift_y + table.Height
                                        : std::max(page_box.Bottom(), top + 1);
      if (table.TopAnchorRefs.Count() > 0 && table.TopAnchorRefs.Item(1) &&
          !table.TopAnchorRefs.Item(1)->Name.empty()) {
        const cAnchorRef& a = *table.TopAnchorRefs.Item(1);
        const cBox hit = FindAnchor(page, a.Name, MinScore,
                                    std::numeric_limits<int32_t>::min(),
                                    std::numeric_limits<int32_t>::max());
        if (!hit.Empty()) top = hit.Bottom() + 1 + a.YOffset;
      }
      if (table.BottomAnchorRefs.Count() > 0 &&
          table.BottomAnchorRefs.Item(1) &&
          !table.BottomAnchorRefs.Item(1)->Name.empty()) {
        const cAnchorRef& a = *table.BottomAnchorRefs.Item(1);
        const cBox hit = FindAnchor(page, a.Name, MinScore, top,
                                    std::numeric_limits<int32_t>::max());
        if (!hit.Empty()) bottom = hit.Top + a.YOffset;
      }
      res.Pages.push_back(p);
      std::vector<TextLine> found =
          LinesIn(page, p, left, right, top, bottom, entity_space);
      for (TextLine& l : found) lines.push_back(std::move(l));
    }
    res.LinesRead = static_cast<int32_t>(lines.size());

    // Rows: a line continues the row above (a wrapped line) when it lies
    // within the row space below it, fills only text columns the row's
    // first line filled and leaves at least one of those empty.
    // Columns of a header with a value type (amount, number, date,
    // postcode): a wrapped line never holds one.
    std::vector<bool> typed(ncols, false);
    for (size_t c = 0; c < ncols; ++c) {
      const auto& col = table.Columns.Item(static_cast<int>(c) + 1);
      for (const auto& h : doc.LineHeaders) {
        if (col && h && EqualsIgnoreCase(h->Name, col->Name)) {
          typed[c] = IsAmountType(h->DataType) || IsDateType(h->DataType) ||
                     h->DataType == 5;
          break;
        }
      }
    }
    std::vector<Row> rows;
    std::vector<bool> first_line_filled;
    for (const TextLine& l : lines) {
      std::vector<std::string> cells(ncols);
      std::vector<cBox> boxes(ncols);
      for (const Entity& e : l.entities) {
        const int32_t c = ColumnOf(table, shift_x, e.box);
        if (c < 0) continue;
        if (!cells[c].empty()) cells[c].push_back(' ');
        cells[c] += e.text;
        boxes[c].Unite(e.box);
      }
      bool any = false;
      for (const auto& c : cells) any = any || !c.empty();
      if (!any) continue;
      bool continues = false;
      if (!rows.empty() && rows.back().page == l.page &&
          l.box.Top - rows.back().box.Bottom() <= row_space) {
        // A wrapped line only adds to columns the row's first line filled,
        // and leaves at least one of them empty.
        continues = true;
        bool leaves_one = false;
        for (size_t c = 0; c < ncols; ++c) {
          if (!cells[c].empty() && (!first_line_filled[c] || typed[c])) {
            continues = false;
          }
          if (cells[c].empty() && first_line_filled[c]) leaves_one = true;
        }
        continues = continues && leaves_one;
      }
      if (continues) {
        Row& r = rows.back();
        for (size_t c = 0; c < ncols; ++c) {
          if (cells[c].empty()) continue;
          r.cells[c] += " " + cells[c];
          r.boxes[c].Unite(boxes[c]);
        }
        r.box.Unite(l.box);
        continue;
      }
      first_line_filled.assign(ncols, false);
      for (size_t c = 0; c < ncols; ++c)
        first_line_filled[c] = !cells[c].empty();
      rows.push_back({std::move(cells), std::move(boxes), l.box, l.page});
    }
    res.RowsFormed = static_cast<int32_t>(rows.size());

    // Start and end conditions, discards, repeat conditions.
    size_t start = 0;
    if (tpl.LineDataConditions.Count() > 0) {
      while (start < rows.size() &&
             !AllHold(tpl.LineDataConditions, table, rows[start])) {
        ++start;
      }
    }
    size_t end = rows.size();
    if (tpl.LineDataEndConditions.Count() > 0) {
      for (size_t r = start; r < rows.size(); ++r) {
        if (AllHold(tpl.LineDataEndConditions, table, rows[r])) {
          end = r;
          break;
        }
      }
    }
    const size_t discard_start =
        static_cast<size_t>(std::max(tpl.LineDataDiscardStart, 0));
    const size_t discard_end =
        static_cast<size_t>(std::max(tpl.LineDataDiscardEnd, 0));
    start = std::min(end, start + discard_start);
    end = end - std::min(end - start, discard_end);
    std::vector<Row> kept;
    for (size_t r = start; r < end; ++r) {
      if (tpl.LineDataRptConditions.Count() > 0 &&
          !AllHold(tpl.LineDataRptConditions, table, rows[r])) {
        continue;
      }
      kept.push_back(std::move(rows[r]));
    }
    Propagate(tpl, table, doc, kept);

    for (const Row& r : kept) {
      auto row = doc.CreateLineData();
      row->Left = r.box.Left;
      row->Top = r.box.Top;
      row->Width = r.box.Width;
      row->Height = r.box.Height;
      row->Location = r.page;
      for (const auto& h : doc.LineHeaders) {
        if (!h) continue;
        auto cell = std::make_shared<cLineItemData>();
        cell->LineData = row;
        cell->Name = h->Name;
        cell->DataType = h->DataType;
        cell->Flags = h->DataFlags;
        cell->Status = 1;  // not validated, as a new field
        cell->StatusMessage = kNotValidatedMessage;
        const int32_t c = ColumnIndex(table, h->Name);
        if (c >= 0) {
          cell->value = r.cells[c];
          cell->Left = r.boxes[c].Left;
          cell->Top = r.boxes[c].Top;
          cell->Width = r.boxes[c].Width;
          cell->Height = r.boxes[c].Height;
          cell->ColumnIndex = c + 1;
        }
        row->colLineItemData.Add(cell);
      }
    }
    res.RowsKept = static_cast<int32_t>(kept.size());
    results.push_back(std::move(res));
  }
  return results;
}

}  // namespace pelinor
