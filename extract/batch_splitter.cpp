// cBatchSplitter: a batch of pages into documents. The rules are those of
// docs/workflow.md ("Batches into documents").

#include "pelinor/batch_splitter.h"

#include <algorithm>

namespace pelinor {
namespace {

// A sheet: one page, or a front and its back when duplex is kept.
struct Sheet {
  int32_t first = 0;  // zero-based pages
  int32_t last = 0;
};

// Whether a mark on a page of side `back` counts under `side_mode`: 0 any
// side, 1 fronts only, 2 backs only.
bool SideAllowed(int32_t side_mode, bool back) {
  if (side_mode == 1) return !back;
  if (side_mode == 2) return back;
  return true;
}

bool SheetHasMark(const cPageModel& batch, const Sheet& s, const cTemplate& tpl,
                  bool duplex, double min_score) {
  if (tpl.DocEndMarks.Count() == 0) return false;
  for (int32_t p = s.first; p <= s.last; ++p) {
    const bool back = duplex && p > s.first;
    if (!SideAllowed(tpl.DocEndMarkSideMode(), back)) continue;
    if (HasEndMark(batch.Pages[p], tpl, min_score)) return true;
  }
  return false;
}

}  // namespace

bool HasEndMark(const cPage& page, const cTemplate& tpl, double min_score) {
  for (const auto& mark : tpl.DocEndMarks) {
    if (!mark || mark->Name.empty()) continue;
    const size_t limit = mark->Name.size() + mark->Name.size() / 4 + 2;
    for (const cPageLine& line : page.Lines) {
      for (size_t s = 0; s < line.Words.size(); ++s) {
        std::string run;
        for (size_t e = s; e < line.Words.size(); ++e) {
          if (!run.empty()) run.push_back(' ');
          run += page.Words[line.Words[e]].Text;
          if (run.size() > limit) break;
          if (TextSimilarity(run, mark->Name) >= min_score) return true;
        }
      }
    }
  }
  return false;
}

cPageModel cBatchSplitter::PagesOf(const cPageModel& batch,
                                   const cBatchDocument& doc) {
  cPageModel m;
  m.Pages.reserve(doc.Pages.size());
  for (int32_t p : doc.Pages) m.Pages.push_back(batch.Pages[p]);
  return m;
}

std::vector<cBatchDocument> cBatchSplitter::Split(
    const cPageModel& batch, const std::shared_ptr<cProfile>& profile,
    const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
        candidates) const {
  std::vector<cBatchDocument> docs;
  const int32_t n = static_cast<int32_t>(batch.Pages.size());
  const bool duplex = profile && profile->FlattenDuplex == 0;
  std::vector<Sheet> sheets;
  for (int32_t p = 0; p < n; p += duplex ? 2 : 1) {
    sheets.push_back({p, duplex ? std::min(p + 1, n - 1) : p});
  }

  auto identify = [&](int32_t page) {
    cPageModel one;
    one.Pages.push_back(batch.Pages[page]);
    return Extractor.Identify(one, candidates);
  };
  auto add_sheet = [&](cBatchDocument& d, size_t s) {
    for (int32_t p = sheets[s].first; p <= sheets[s].last; ++p) {
      d.Pages.push_back(p);
    }
    d.LastSheetIndex = static_cast<int32_t>(s + 1);
    d.LastSideBack = duplex && sheets[s].last > sheets[s].first ? 1 : 0;
  };
  auto start = [&](size_t s, const cIdentification& id) {
    cBatchDocument d;
    d.Identified = id.Identified;
    if (id.Identified) d.Match = id.Best;
    d.FirstSheetIndex = static_cast<int32_t>(s + 1);
    d.FirstSideBack = 0;
    add_sheet(d, s);
    docs.push_back(std::move(d));
  };

  bool closed = false;      // the last document ended at an end mark
  int32_t attachments = 0;  // sheets still to keep with the closed one
  for (size_t s = 0; s < sheets.size(); ++s) {
    if (!docs.empty() && closed && attachments > 0) {
      add_sheet(docs.back(), s);
      --attachments;
      continue;
    }
    const cTemplate* cur = docs.empty() || !docs.back().Match.Template
                               ? nullptr
                               : docs.back().Match.Template.get();
    const cIdentification id = identify(sheets[s].first);
    // A document of a template with end marks runs to its mark: a page of
    // the same template before it (a continuation page with the same
    // heading) starts nothing.
    const bool awaits_mark = cur != nullptr && cur->DocEndMarks.Count() > 0 &&
                             id.Identified && id.Best.Template.get() == cur;
    bool begins = docs.empty() || closed || (id.Identified && !awaits_mark);
    // A mark that does not belong to the ending document is on the first
    // sheet of the next one.
    if (!begins && cur != nullptr && cur->DocEndMarkInclusive() == 0 &&
        SheetHasMark(batch, sheets[s], *cur, duplex, Extractor.MinScore)) {
      begins = true;
    }
    if (begins) {
      start(s, id);
    } else {
      add_sheet(docs.back(), s);
    }
    closed = false;
    const cTemplate* now = docs.back().Match.Template.get();
    if (now != nullptr && now->DocEndMarkInclusive() != 0 &&
        SheetHasMark(batch, sheets[s], *now, duplex, Extractor.MinScore)) {
      closed = true;
      docs.back().EndedByMark = true;
      attachments = std::max(now->ExpectedAttachments(), 0);
    }
  }
  return docs;
}

}  // namespace pelinor
