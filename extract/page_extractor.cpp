// cPageExtractor: template identification and field extraction on a page
// model. The rules are those of docs/extraction.md.

#include "pelinor/page_extractor.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>

#include "pelinor/evaluate_pattern.h"
#include "pelinor/field_data.h"
#include "pelinor/format.h"
#include "pelinor/line_data.h"
#include "pelinor/line_item_extractor.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

// Letters and digits only, upper-cased: what text matching compares.
std::string MatchKey(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (char c : s) {
    const unsigned char b = static_cast<unsigned char>(c);
    if ((b >= '0' && b <= '9') || (b >= 'A' && b <= 'Z') ||
        (b >= 'a' && b <= 'z') || b >= 0xC0 || b == 0x8A || b == 0x8C ||
        b == 0x8E || b == 0x9A || b == 0x9C || b == 0x9E || b == 0x9F) {
      out.push_back(UpperChar(c));
    }
  }
  return out;
}

// The edit distance of `a` and `b`, or any value above `max` once it is
// sure to exceed `max` (a row whose smallest entry passes `max` ends it).
size_t EditDistance(std::string_view a, std::string_view b,
                    size_t max = std::numeric_limits<size_t>::max()) {
  if (a.size() < b.size()) std::swap(a, b);
  if (a.size() - b.size() > max) return max + 1;
  thread_local std::vector<size_t> row;
  row.resize(b.size() + 1);
  for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (size_t i = 1; i <= a.size(); ++i) {
    size_t diag = row[0];
    row[0] = i;
    size_t low = row[0];
    for (size_t j = 1; j <= b.size(); ++j) {
      const size_t up = row[j];
      row[j] = std::min(
          {row[j] + 1, row[j - 1] + 1, diag + (a[i - 1] == b[j - 1] ? 0 : 1)});
      diag = up;
      low = std::min(low, row[j]);
    }
    if (low > max) return max + 1;
  }
  return row[b.size()];
}

// 1 - distance / longer length; 0 when either is empty. Scores below
// `floor` may come out as any value below `floor`.
double KeySimilarity(std::string_view a, std::string_view b, double floor = 0) {
  if (a.empty() || b.empty()) return 0;
  const size_t longer = std::max(a.size(), b.size());
  const double allowed = (1.0 - floor) * static_cast<double>(longer) + 1e-9;
  const size_t max = allowed <= 0 ? 0 : static_cast<size_t>(allowed);
  const size_t d = EditDistance(a, b, max);
  if (d > max) return std::max(0.0, floor - 1.0 / longer);
  return 1.0 - static_cast<double>(d) / longer;
}

// One page seen in template pixels, with the match key of every word.
struct PageView {
  const cPage* page = nullptr;
  std::vector<cBox> boxes;
  std::vector<std::string> keys;
  // Words of three or more characters without a letter or digit: table
  // rules and leader dots read as text. No value takes them.
  std::vector<bool> noise;
};

std::vector<PageView> MakeViews(const cPageModel& model, size_t max_pages) {
  std::vector<PageView> views;
  const size_t n = std::min(model.Pages.size(), max_pages);
  views.reserve(n);
  for (size_t p = 0; p < n; ++p) {
    PageView v;
    v.page = &model.Pages[p];
    v.boxes.reserve(v.page->Words.size());
    v.keys.reserve(v.page->Words.size());
    for (const cPageWord& w : v.page->Words) {
      v.boxes.push_back(v.page->ToTemplatePixels(w.Box));
      v.keys.push_back(MatchKey(w.Text));
      v.noise.push_back(v.keys.back().empty() && w.Text.size() >= 3);
    }
    views.push_back(std::move(v));
  }
  return views;
}

struct TextHit {
  double score = 0;
  double distance = 0;
  cBox box;
  int32_t first = -1;  // word indices, inclusive
  int32_t last = -1;
  size_t line = 0;
};

// The run of words on one line that best matches `target` (a match key).
// Ties go to the run nearest (ref_x, ref_y) when `use_ref`, else to the
// first in reading order. `only_line` limits the search to one line.
TextHit FindText(const PageView& v, const std::string& target, bool use_ref,
                 int32_t ref_x, int32_t ref_y,
                 size_t only_line = std::numeric_limits<size_t>::max()) {
  TextHit best;
  if (target.empty()) return best;
  const size_t limit = target.size() + target.size() / 4 + 2;
  const auto& lines = v.page->Lines;
  for (size_t l = 0; l < lines.size(); ++l) {
    if (only_line != std::numeric_limits<size_t>::max() && l != only_line) {
      continue;
    }
    const auto& words = lines[l].Words;
    for (size_t s = 0; s < words.size(); ++s) {
      if (v.keys[words[s]].empty()) continue;
      std::string run;
      cBox box;
      for (size_t e = s; e < words.size(); ++e) {
        const int32_t w = words[e];
        if (v.keys[w].empty()) continue;
        run += v.keys[w];
        box.Unite(v.boxes[w]);
        if (run.size() > limit) break;
        // Only a run at least as good as the best so far matters.
        const double score = KeySimilarity(run, target, best.score);
        if (score < best.score - 1e-9) continue;
        const double dist =
            use_ref ? std::hypot(static_cast<double>(box.Left - ref_x),
                                 static_cast<double>(box.Top - ref_y))
                    : 0;
        const bool better =
            score > best.score + 1e-9 ||
            (use_ref && best.first >= 0 && dist < best.distance);
        if (better) {
          best = {score, dist, box, words[s], w, l};
        }
      }
    }
  }
  return best;
}

// The pages (zero-based) a data location names; `on_page` is false for
// the codes that are not page locations.
std::vector<size_t> PagesFor(int32_t location, size_t n, bool& on_page) {
  on_page = true;
  std::vector<size_t> pages;
  if (n == 0) return pages;
  if (location == 0) {
    pages.push_back(0);
  } else if (location == -1) {
    pages.push_back(n - 1);
  } else if (location == -6) {
    for (size_t p = 0; p < n; ++p) pages.push_back(p);
  } else if (location == -7) {
    for (size_t p = 1; p + 1 < n; ++p) pages.push_back(p);
  } else if (location > 0) {
    if (static_cast<size_t>(location) <= n) {
      pages.push_back(static_cast<size_t>(location) - 1);
    }
  } else {
    on_page = false;
  }
  return pages;
}

cBox Moved(const cExtractZone& z, int32_t dx, int32_t dy) {
  return {z.LeftValue() + dx, z.TopValue() + dy, z.WidthValue(),
          z.HeightValue()};
}

bool Holds(const cBox& zone, const cBox& word) {
  const int32_t cx = word.Left + word.Width / 2;
  const int32_t cy = word.Top + word.Height / 2;
  return cx >= zone.Left && cx <= zone.Right() && cy >= zone.Top &&
         cy <= zone.Bottom();
}

// Fills `r` from words (indices in reading order) of page `p`.
void TakeWords(const PageView& v, size_t p, const std::vector<int32_t>& words,
               const char* how, cFieldResult& r) {
  r.Value.clear();
  r.Box = {};
  r.Confidence = 100;
  for (int32_t w : words) {
    if (!r.Value.empty()) r.Value.push_back(' ');
    r.Value += v.page->Words[w].Text;
    r.Box.Unite(v.boxes[w]);
    r.Confidence = std::min(r.Confidence, v.page->Words[w].Confidence);
  }
  r.Page = static_cast<int32_t>(p + 1);
  r.How = how;
}

bool VerticallyTogether(const cBox& a, const cBox& b) {
  const int32_t overlap =
      std::min(a.Bottom(), b.Bottom()) - std::max(a.Top, b.Top);
  return overlap * 2 >= std::min(a.Height, b.Height);
}

// Extends a run that starts at word `first` to the right along its band
// while the gaps stay under twice the word height.
std::vector<int32_t> RunFrom(const PageView& v, int32_t first) {
  std::vector<int32_t> band;
  const cBox& f = v.boxes[first];
  for (size_t w = 0; w < v.boxes.size(); ++w) {
    if (!v.noise[w] && VerticallyTogether(v.boxes[w], f) &&
        v.boxes[w].Left >= f.Left) {
      band.push_back(static_cast<int32_t>(w));
    }
  }
  std::sort(band.begin(), band.end(), [&](int32_t a, int32_t b) {
    return v.boxes[a].Left < v.boxes[b].Left;
  });
  std::vector<int32_t> run;
  int32_t right = f.Left;
  const int32_t gap = std::max(2 * f.Height, 1);
  for (int32_t w : band) {
    if (!run.empty() && v.boxes[w].Left - right > gap) break;
    run.push_back(w);
    right = std::max(right, v.boxes[w].Right());
  }
  return run;
}

// Digits in groups with an optional sign, ending in a decimal point or comma
// and two digits: "1,234.50", "-717,97", "1 234,50", "12.00".
bool LooksLikeAmount(std::string_view t) {
  size_t i = 0;
  if (i < t.size() && (t[i] == '-' || t[i] == '+')) ++i;
  const size_t start = i;
  while (i < t.size() && ((t[i] >= '0' && t[i] <= '9') || t[i] == ',' ||
                          t[i] == '.' || t[i] == ' ' || t[i] == '\'')) {
    ++i;
  }
  if (i != t.size() || t.size() - start < 4) return false;
  const size_t n = t.size();
  return (t[n - 3] == '.' || t[n - 3] == ',') && t[n - 2] >= '0' &&
         t[n - 2] <= '9' && t[n - 1] >= '0' && t[n - 1] <= '9' &&
         t[start] >= '0' && t[start] <= '9';
}

bool IsSeparator(std::string_view t) {
  return t == ":" || t == "-" || t == "\x96" || t == "\x97" || t == "=";
}

// The caption rules: the words right of the caption on its line, else the
// nearest words below it.
bool ByCaption(const PageView& v, size_t p, const std::string& caption,
               double min_score, cFieldResult& r) {
  const TextHit hit = FindText(v, MatchKey(caption), false, 0, 0);
  if (hit.first < 0 || hit.score < min_score) return false;
  const cBox& cap = hit.box;
  const int32_t h = std::max(cap.Height, 1);
  // Right: the nearest word whose left edge lies past the caption.
  int32_t first = -1;
  for (size_t w = 0; w < v.boxes.size(); ++w) {
    const cBox& b = v.boxes[w];
    if (v.noise[w]) continue;
    if (b.Left < cap.Right() - h / 4 || !VerticallyTogether(b, cap)) continue;
    if (b.Left - cap.Right() > 10 * h) continue;
    if (first < 0 || b.Left < v.boxes[first].Left) {
      first = static_cast<int32_t>(w);
    }
  }
  if (first >= 0) {
    std::vector<int32_t> run = RunFrom(v, first);
    // A colon or dash between caption and value is not part of the value.
    size_t skip = 0;
    while (skip + 1 < run.size() &&
           IsSeparator(v.page->Words[run[skip]].Text)) {
      ++skip;
    }
    run.erase(run.begin(), run.begin() + static_cast<ptrdiff_t>(skip));
    TakeWords(v, p, run, "caption right", r);
    return true;
  }
  // Below: the highest word under the caption that overlaps it across.
  for (size_t w = 0; w < v.boxes.size(); ++w) {
    const cBox& b = v.boxes[w];
    if (v.noise[w]) continue;
    if (b.Top < cap.Bottom() - h / 4 || b.Top - cap.Bottom() > 4 * h) continue;
    if (b.Right() < cap.Left || b.Left > cap.Right()) continue;
    if (first < 0 || b.Top < v.boxes[first].Top ||
        (b.Top == v.boxes[first].Top && b.Left < v.boxes[first].Left)) {
      first = static_cast<int32_t>(w);
    }
  }
  if (first < 0) return false;
  // Start the run at the leftmost word of the band that touches the caption
  // column, so a value that begins left of the caption is kept whole.
  for (size_t w = 0; w < v.boxes.size(); ++w) {
    const cBox& b = v.boxes[w];
    if (VerticallyTogether(b, v.boxes[first]) && b.Left < v.boxes[first].Left &&
        b.Right() >= cap.Left - 2 * h) {
      first = static_cast<int32_t>(w);
    }
  }
  TakeWords(v, p, RunFrom(v, first), "caption below", r);
  return true;
}

// Searches the page text for a value of the field's pattern, or of its data
// type when it has no pattern.
bool BySearch(const PageView& v, size_t p, cFieldData& scratch,
              double min_score, cFieldResult& r) {
  const std::string pattern = scratch.Pattern();
  const int32_t type = scratch.DataType();
  const auto& lines = v.page->Lines;
  if (!pattern.empty()) {
    std::string best;
    size_t best_line = 0;
    for (size_t l = 0; l < lines.size(); ++l) {
      std::string text = v.page->LineText(l);
      std::string out, err;
      if (EvaluatePattern(text, pattern, true, false, false, false, out, err,
                          "") &&
          out.size() > best.size()) {
        best = out;
        best_line = l;
      }
    }
    if (best.empty()) return false;
    const TextHit hit = FindText(v, MatchKey(best), false, 0, 0, best_line);
    std::vector<int32_t> words;
    if (hit.first >= 0 && hit.score >= min_score) {
      for (int32_t w : lines[best_line].Words) {
        if (w >= hit.first && w <= hit.last) words.push_back(w);
      }
    }
    TakeWords(v, p, words, "search", r);
    r.Value = best;
    if (words.empty()) r.Confidence = -1;
    return true;
  }
  if (!IsAmountType(type) && !IsDateType(type) && type != 5) return false;
  // Runs of up to four words of one line that begin and end with a word
  // holding a digit and are valid for the type as they stand or once
  // cleaned (as the capture run cleans them); amounts must also look like
  // one (LooksLikeAmount), since cleaning makes an amount of any digits. The
  // longest text wins, the first in reading order on ties.
  auto has_digit = [&](int32_t w) {
    const std::string& t = v.page->Words[w].Text;
    return std::any_of(t.begin(), t.end(),
                       [](char c) { return c >= '0' && c <= '9'; });
  };
  const bool amount = IsAmountType(type);
  std::string log;
  std::vector<int32_t> best;
  size_t best_size = 0;
  for (const cPageLine& line : lines) {
    for (size_t s = 0; s < line.Words.size(); ++s) {
      if (!has_digit(line.Words[s])) continue;
      std::string text;
      for (size_t n = 1; n <= 4 && s + n <= line.Words.size(); ++n) {
        if (n > 1) text.push_back(' ');
        text += v.page->Words[line.Words[s + n - 1]].Text;
        if (text.size() <= best_size || !has_digit(line.Words[s + n - 1])) {
          continue;
        }
        if (amount && !LooksLikeAmount(text)) continue;
        scratch.value = text;
        bool valid = scratch.Validate(log);
        if (!valid) {
          scratch.value = text;
          scratch.FormatDataValue();
          valid = scratch.Validate(log);
        }
        if (valid) {
          best.assign(line.Words.begin() + s, line.Words.begin() + s + n);
          best_size = text.size();
        }
      }
    }
  }
  if (best.empty()) return false;
  TakeWords(v, p, best, "search", r);
  return true;
}

struct Shift {
  int32_t dx = 0;
  int32_t dy = 0;
};

// The shift of a field's zones on page `v`: the anchor's when the entry has
// one that is found, else the page's.
Shift AnchorShift(const PageView& v, const cTemplate& tpl,
                  const cExtractZones& entry, Shift page, double min_score,
                  bool& anchored) {
  anchored = false;
  if (entry.AnchorRefs.Count() == 0 || !entry.AnchorRefs.Item(1)) return page;
  const cAnchorRef& anchor = *entry.AnchorRefs.Item(1);
  if (anchor.Name.empty()) return page;
  std::shared_ptr<cExtractZones> ref;
  if (tpl.FindPseudoFieldZones(anchor.Name, ref) && ref &&
      ref->Zones.Count() > 0) {
    // The anchor is a pseudo field of the template: its first zone's top
    // left is where the anchor's text lies on the template.
    const cExtractZone& z = *ref->Zones.Item(1);
    const std::string text =
        ref->CaptionSearch.empty() ? anchor.Name : ref->CaptionSearch;
    const TextHit hit =
        FindText(v, MatchKey(text), true, z.LeftValue() + page.dx,
                 z.TopValue() + page.dy);
    if (hit.first < 0 || hit.score < min_score) return page;
    anchored = true;
    return {hit.box.Left - z.LeftValue(), hit.box.Top - z.TopValue()};
  }
  // The anchor's name is its text, a label on the line of the value: the
  // first zone is centred vertically on it, and moves across with the page.
  if (!entry.Zones.Item(1)) return page;
  const cExtractZone& z = *entry.Zones.Item(1);
  const TextHit hit =
      FindText(v, MatchKey(anchor.Name), true, anchor.XOffset + page.dx,
               anchor.YOffset + page.dy);
  if (hit.first < 0 || hit.score < min_score) return page;
  anchored = true;
  const int32_t zone_centre = z.TopValue() + z.HeightValue() / 2;
  const int32_t anchor_centre = hit.box.Top + hit.box.Height / 2;
  return {page.dx, anchor_centre - zone_centre};
}

// One value: zones, else caption, else search, over the pages `pages`.
cFieldResult TakeValue(const std::vector<PageView>& views, const cTemplate& tpl,
                       int32_t location, const cExtractZones* entry,
                       const std::string& caption, cFieldData* scratch,
                       Shift page_shift, double min_score) {
  cFieldResult r;
  bool on_page = true;
  const std::vector<size_t> pages = PagesFor(location, views.size(), on_page);
  r.How = on_page ? "not found" : "not on a page";
  const bool has_zones = entry != nullptr && entry->Zones.Count() > 0;
  for (size_t p : pages) {
    const PageView& v = views[p];
    if (has_zones) {
      bool anchored = false;
      const Shift s =
          AnchorShift(v, tpl, *entry, page_shift, min_score, anchored);
      std::vector<cBox> zones;
      for (const auto& z : entry->Zones) {
        if (z) zones.push_back(Moved(*z, s.dx, s.dy));
      }
      std::vector<int32_t> words;
      for (size_t w = 0; w < v.boxes.size(); ++w) {
        if (v.noise[w]) continue;
        for (const cBox& z : zones) {
          if (Holds(z, v.boxes[w])) {
            words.push_back(static_cast<int32_t>(w));
            break;
          }
        }
      }
      if (!words.empty()) {
        TakeWords(v, p, words, anchored ? "anchored zone" : "zone", r);
        return r;
      }
    } else if (!caption.empty()) {
      if (ByCaption(v, p, caption, min_score, r)) return r;
    } else if (scratch != nullptr) {
      if (BySearch(v, p, *scratch, min_score, r)) return r;
    }
  }
  return r;
}

void Store(const cFieldResult& r, cFieldData& f) {
  f.value = r.Value;
  f.Left = r.Box.Left;
  f.Top = r.Box.Top;
  f.Width = r.Box.Width;
  f.Height = r.Box.Height;
}

}  // namespace

double TextSimilarity(std::string_view a, std::string_view b) {
  return KeySimilarity(MatchKey(a), MatchKey(b));
}

cTemplateMatch cPageExtractor::Locate(
    const cPageModel& model, const std::string& file,
    const std::shared_ptr<cTemplate>& tpl) const {
  cTemplateMatch m;
  m.File = file;
  m.Template = tpl;
  if (!tpl || model.Pages.empty()) return m;
  const std::string key = MatchKey(tpl->TemplateIdentifier);
  if (key.empty()) return m;
  const std::string dx = std::string(Trim(tpl->TemplateIDDatumX));
  const std::string dy = std::string(Trim(tpl->TemplateIDDatumY));
  double fx = 0, fy = 0;
  const bool has_datum = ToDouble(dx, fx) && ToDouble(dy, fy) &&
                         std::abs(fx) < 1e9 && std::abs(fy) < 1e9;
  const int32_t x = has_datum ? static_cast<int32_t>(std::lround(fx)) : 0;
  const int32_t y = has_datum ? static_cast<int32_t>(std::lround(fy)) : 0;
  const std::vector<PageView> views = MakeViews(model, 1);
  const TextHit hit = FindText(views[0], key, has_datum, x, y);
  if (hit.first < 0) return m;
  m.Score = hit.score;
  m.Found = hit.box;
  if (has_datum) {
    m.Distance = hit.distance;
    m.ShiftX = hit.box.Left - x;
    m.ShiftY = hit.box.Top - y;
  }
  return m;
}

cIdentification cPageExtractor::Identify(
    const cPageModel& model,
    const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
        candidates) const {
  std::vector<cTemplateMatch> all;
  all.reserve(candidates.size());
  for (const auto& [file, tpl] : candidates) {
    all.push_back(Locate(model, file, tpl));
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const cTemplateMatch& a, const cTemplateMatch& b) {
                     if (std::abs(a.Score - b.Score) > 1e-9) {
                       return a.Score > b.Score;
                     }
                     return a.Distance < b.Distance;
                   });
  cIdentification id;
  if (!all.empty()) id.Best = all[0];
  if (all.size() > 1) id.RunnerUp = all[1];
  id.Identified = !all.empty() && all[0].Score >= MinScore;
  return id;
}

void cPageExtractor::Extract(const cPageModel& model,
                             const std::shared_ptr<cProfile>& profile,
                             const cTemplateMatch& match,
                             std::shared_ptr<cDocumentData>& doc,
                             std::vector<cFieldResult>& results) const {
  doc = cDocumentData::New();
  doc->Profile = profile;
  doc->Template = match.Template;
  doc->ProfileName = profile->Name;
  doc->LastSheetIndex = static_cast<int32_t>(model.Pages.size());
  results.clear();
  const std::vector<PageView> views =
      MakeViews(model, std::numeric_limits<size_t>::max());
  const Shift page{match.ShiftX, match.ShiftY};
  const cTemplate& tpl = *match.Template;
  for (const auto& ft : profile->FieldTypes) {
    if (!ft) continue;
    auto f = doc->CreateField();
    f->Name = ft->Name;
    const std::shared_ptr<cExtractZones> entry = f->ExtractionZonesRef();
    auto scratch = doc->NewFieldData();
    scratch->Name = ft->Name;
    cFieldResult r =
        TakeValue(views, tpl, f->DataLocation(), entry.get(), ft->CaptionSearch,
                  scratch.get(), page, MinScore);
    r.Name = ft->Name;
    Store(r, *f);
    results.push_back(std::move(r));
  }
  for (const auto& entry : tpl.PseudoFieldZoneRefs) {
    if (!entry) continue;
    auto f = doc->CreatePseudoField();
    f->Name = entry->FieldName;
    const int32_t location = entry->DataLocationOverride == kNoOverride
                                 ? 0
                                 : entry->DataLocationOverride;
    f->DataLocation(location);
    cFieldResult r = TakeValue(views, tpl, location, entry.get(),
                               entry->CaptionSearch, nullptr, page, MinScore);
    r.Name = entry->FieldName;
    r.Pseudo = true;
    Store(r, *f);
    results.push_back(std::move(r));
  }
  cLineItemExtractor line_items;
  line_items.MinScore = MinScore;
  line_items.Extract(model, match.ShiftX, match.ShiftY, *doc);
}

bool ExtractDocument(
    const cPageExtractor& extractor, const cPageModel& model,
    const std::shared_ptr<cProfile>& profile,
    const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
        candidates,
    bool forced, cPageDocument& out, std::string& strErrMsg) {
  strErrMsg.clear();
  out = cPageDocument();
  if (model.Pages.empty()) {
    strErrMsg = "no page was read";
    return false;
  }
  if (candidates.empty() || !profile) {
    strErrMsg = "no template to identify the page with";
    return false;
  }
  out.Identification = extractor.Identify(
      model,
      forced ? std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>(
                   candidates.begin(), candidates.begin() + 1)
             : candidates);
  cTemplateMatch match = out.Identification.Best;
  if (!out.Identification.Identified) {
    if (!forced) {
      strErrMsg = std::string(kNotIdentifiedMessage) + " (best " + match.File +
                  ", score " + NumberText(std::round(match.Score * 100) / 100) +
                  ")";
      return false;
    }
    // A template named by the caller is used as it lies, without a shift.
    match.ShiftX = 0;
    match.ShiftY = 0;
  }
  extractor.Extract(model, profile, match, out.Document, out.Results);
  return true;
}

bool ProcessDocument(
    const cPageExtractor& extractor, const cPageModel& model,
    const std::shared_ptr<cProfile>& profile,
    const std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>&
        candidates,
    bool forced, const cCaptureOptions& options, cPageDocument& out,
    std::string& strErrMsg) {
  if (!ExtractDocument(extractor, model, profile, candidates, forced, out,
                       strErrMsg)) {
    return false;
  }
  out.Capture = CaptureDocument(*out.Document, options, nullptr);
  return true;
}

bool ReadTemplateDirectory(
    const std::string& dir, const std::shared_ptr<cProfile>& profile,
    std::vector<std::pair<std::string, std::shared_ptr<cTemplate>>>& templates,
    std::string& strErrMsg) {
  strErrMsg.clear();
  std::vector<std::string> files;
  std::error_code ec;
  for (std::filesystem::directory_iterator it(dir, ec), end; !ec && it != end;
       it.increment(ec)) {
    const std::string name = it->path().filename().string();
    if (name.size() > 4 &&
        EqualsIgnoreCase(std::string_view(name).substr(name.size() - 4),
                         ".tpl") &&
        it->is_regular_file(ec)) {
      files.push_back(it->path().string());
    }
  }
  if (ec) {
    strErrMsg = "Cannot read template directory " + dir;
    return false;
  }
  if (files.empty()) {
    strErrMsg = "No template (*.tpl) in " + dir;
    return false;
  }
  std::sort(files.begin(), files.end());
  for (const std::string& file : files) {
    auto tpl = cTemplate::New();
    tpl->Profile = profile;
    std::string err;
    if (!tpl->ReadSettings(file, err)) {
      strErrMsg = file + ": " + err;
      return false;
    }
    templates.emplace_back(file, tpl);
  }
  return true;
}

}  // namespace pelinor
