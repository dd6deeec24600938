// cPageExtractor: from a page model (page_model.h) to document data. It
// identifies the template of a document from its first page, measures how
// far the page lies from the template's layout, and takes every field of
// the profile (and every pseudo field of the template) from the pages:
// from the field's zones, next to its caption, or by searching the text
// for a value of its type or pattern.
//
// Every rule (coordinates, page selection by data location, the identifier
// score, the caption and search rules) is written down in
// docs/extraction.md.
//
// Ownership: results hold shared references to the templates and the
// document they name.
//
// Thread safety: an extractor holds only settings; its const members may be
// called from several threads at once on separate models and documents
// (templates and profiles are only read).

#ifndef PELINOR_PAGE_EXTRACTOR_H_
#define PELINOR_PAGE_EXTRACTOR_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/page_model.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"

namespace pelinor {

// Where a template's identifier text was found on the first page.
struct cTemplateMatch {
  std::string File;  // the template's file (or the caller's name for it)
  std::shared_ptr<cTemplate> Template;
  double Score = 0;     // 1 - edit distance / length, 0 when not found
  cBox Found;           // the identifier's words, 300 dpi pixels
  double Distance = 0;  // from the datum to Found's top left, pixels
  int32_t ShiftX = 0;   // Found's top left minus the datum
  int32_t ShiftY = 0;
};

struct cIdentification {
  bool Identified = false;  // Best.Score reached MinScore
  cTemplateMatch Best;      // highest score (nearest datum on ties)
  cTemplateMatch RunnerUp;  // the next template, Template null if none
};

// How one value was found, for reports.
struct cFieldResult {
  std::string Name;
  bool Pseudo = false;
  std::string Value;      // raw text as read from the page
  cBox Box;               // 300 dpi pixels; empty when nothing was found
  float Confidence = -1;  // lowest word confidence; -1 when no words
  int32_t Page = 0;       // one-based; 0 when nothing was found
  std::string How;        // "zone", "anchored zone", "caption right",
                          // "caption below", "search", "not found",
                          // "not on a page"
};

class cPageExtractor {
 public:
  // The lowest score (1 - edit distance / length) at which an identifier,
  // caption or anchor text counts as found.
  double MinScore = 0.75;

  // Locate()
  //
  // Finds `tpl`'s identifier text on the first page of `model`. A template
  // without identifier text, or a model without pages, scores 0.
  cTemplateMatch Locate(const cPageModel& model, const std::string& file,
                        const std::shared_ptr<cTemplate>& tpl) const;

  // Identify()
  //
  // Locates every candidate ({file, template}) and ranks them by score,
  // then by distance from the datum, then by their order.
  cIdentification Identify(
      const cPageModel& model,
      const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
          candidates) const;

  // Extract()
  //
  // Makes the document of `model` for `profile` and `match.Template`: one
  // field per profile field type (in profile order) and one pseudo field
  // per pseudo zone entry of the template, values as read (status 1, "Tag
  // has not been validated"), boxes in `Coords`. `doc` gets the profile,
  // template, profile name and page count (LastSheetIndex). `results`
  // tells how each value was found, fields first. The line items of the
  // template's line tables follow (line_item_extractor.h).
  // REQUIRES: profile and match.Template are set.
  void Extract(const cPageModel& model,
               const std::shared_ptr<cProfile>& profile,
               const cTemplateMatch& match, std::shared_ptr<cDocumentData>& doc,
               std::vector<cFieldResult>& results) const;
};

// The message of a page that no template fits, before "(best FILE, score
// S)".
inline constexpr char kNotIdentifiedMessage[] =
    "page not identified: no template's identifier text was found";

// What ExtractDocument() and ProcessDocument() give.
struct cPageDocument {
  cIdentification Identification;
  std::shared_ptr<cDocumentData> Document;
  std::vector<cFieldResult> Results;
  cCaptureReport Capture;  // ProcessDocument() only
};

// ExtractDocument()
//
// Identify() then Extract() with the chosen template. With `forced` (one
// template named by the caller) the first candidate is used even when its
// identifier is not found, then without a shift. False when no page was
// read, no candidate is given, or no template fits (kNotIdentifiedMessage
// + " (best FILE, score S)", S rounded to two decimals); `out.Document` is
// then null.
bool ExtractDocument(
    const cPageExtractor& extractor, const cPageModel& model,
    const std::shared_ptr<cProfile>& profile,
    const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
        candidates,
    bool forced, cPageDocument& out, std::string& strErrMsg);

// ProcessDocument()
//
// ExtractDocument(), then the capture run (CaptureDocument()) over the
// document in memory: the values are validated, cleaned and given their
// statuses. Nothing is written.
bool ProcessDocument(
    const cPageExtractor& extractor, const cPageModel& model,
    const std::shared_ptr<cProfile>& profile,
    const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
        candidates,
    bool forced, const cCaptureOptions& options, cPageDocument& out,
    std::string& strErrMsg);

// ReadTemplateDirectory()
//
// Reads every "*.tpl" file of `dir` (sorted by name) with `profile` set on
// each. False with `strErrMsg` naming the file when one cannot be read, or
// when the directory holds no template.
bool ReadTemplateDirectory(
    const std::string& dir, const std::shared_ptr<cProfile>& profile,
    std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>& templates,
    std::string& strErrMsg);

// TextSimilarity()
//
// 1 - (edit distance / longer length) between `a` and `b` after both are
// upper-cased and reduced to letters and digits; 0 when either is empty.
double TextSimilarity(std::string_view a, std::string_view b);

}  // namespace pelinor

#endif  // PELINOR_PAGE_EXTRACTOR_H_
