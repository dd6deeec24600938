// cBatchSplitter: cuts a scanned batch (the pages of a multi-page TIFF or
// PDF, or of a folder of page files, in one page model) into documents. A
// page whose identifier text matches a template starts a document; a
// document end mark of the template ends one; the template's expected
// attachments stay with it; duplex sheets are kept whole unless the
// template flattens duplex. The rules are written down in
// docs/workflow.md ("Batches into documents").
//
// Thread safety: a splitter holds only settings; Split() may run on
// several threads at once for separate batches (templates are only read).

#ifndef PELINOR_BATCH_SPLITTER_H_
#define PELINOR_BATCH_SPLITTER_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pelinor/page_extractor.h"
#include "pelinor/page_model.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"

namespace pelinor {

// One document of a batch.
struct cBatchDocument {
  std::vector<int32_t> Pages;   // zero-based pages of the batch, in order
  bool Identified = false;      // the first page matched a template
  cTemplateMatch Match;         // the template (Template null when none)
  int32_t FirstSheetIndex = 0;  // one-based sheets of the batch
  int32_t LastSheetIndex = 0;
  int32_t FirstSideBack = 0;  // 1 when the page is the back of its sheet
  int32_t LastSideBack = 0;
  bool EndedByMark = false;  // a document end mark closed the document
};

class cBatchSplitter {
 public:
  cPageExtractor Extractor;  // identifies pages (its MinScore applies)

  // Split()
  //
  // The documents of `batch`, in page order; every page belongs to
  // exactly one document. Pages before the first identified page form an
  // unidentified document. `profile` gives FlattenDuplex before a
  // template is known.
  std::vector<cBatchDocument> Split(
      const cPageModel& batch, const std::shared_ptr<cProfile>& profile,
      const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
          candidates) const;

  // PagesOf()
  //
  // A page model holding copies of the pages of `doc`.
  static cPageModel PagesOf(const cPageModel& batch, const cBatchDocument& doc);
};

// HasEndMark()
//
// Whether page `page` shows one of `tpl`'s document end marks: a run of
// words on one line whose text matches the mark's name with a
// TextSimilarity() of at least `min_score`.
bool HasEndMark(const cPage& page, const cTemplate& tpl, double min_score);

}  // namespace pelinor

#endif  // PELINOR_BATCH_SPLITTER_H_
