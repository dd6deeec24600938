// cPageModel: line grouping, and the two OCR output formats it reads and
// writes (Tesseract TSV and hOCR).
//
// Formats: docs/formats/page-model.md.

#include "pelinor/page_model.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <numeric>

#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

// A malformed input is cut off here so that a huge bad file costs no more
// than reading it once.
constexpr size_t kMaxWordsPerPage = 200000;

bool ParseInt(std::string_view s, int64_t& out) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\r')) {
    s.remove_prefix(1);
  }
  while (!s.empty() && (s.back() == ' ' || s.back() == '\r')) {
    s.remove_suffix(1);
  }
  if (s.empty()) return false;
  auto [p, ec] = std::from_chars(s.data(), s.data() + s.size(), out);
  return ec == std::errc() && p == s.data() + s.size();
}

bool ParseFloat(std::string_view s, float& out) {
  return ToSingle(Trim(s), out);
}

std::vector<std::string_view> SplitTabs(std::string_view line) {
  std::vector<std::string_view> cols;
  size_t start = 0;
  while (true) {
    const size_t tab = line.find('\t', start);
    if (tab == std::string_view::npos) {
      cols.push_back(line.substr(start));
      return cols;
    }
    cols.push_back(line.substr(start, tab - start));
    start = tab + 1;
  }
}

// Page coordinates beyond this (330 feet at 300 dpi) are no page's: such a
// file is refused rather than clamped, since a clamped box would not read
// back as it was written.
constexpr int64_t kMaxCoordinate = 1000000;

bool InPageRange(double v) { return v >= 0 && v <= kMaxCoordinate; }

int32_t Clamp32(int64_t v) {
  return static_cast<int32_t>(std::clamp<int64_t>(v, -1000000000, 1000000000));
}

}  // namespace

std::string WordText(std::string_view utf8) {
  std::string text = Utf8ToWindows1252(utf8);
  for (char& c : text) {
    if (static_cast<unsigned char>(c) < 0x20) c = ' ';
  }
  return std::string(Trim(text));
}

void cBox::Unite(const cBox& other) {
  if (other.Empty()) return;
  if (Empty()) {
    *this = other;
    return;
  }
  const int32_t right = std::max(Right(), other.Right());
  const int32_t bottom = std::max(Bottom(), other.Bottom());
  Left = std::min(Left, other.Left);
  Top = std::min(Top, other.Top);
  Width = right - Left;
  Height = bottom - Top;
}

void cPage::GroupLines() {
  std::erase_if(Words, [](const cPageWord& w) { return w.Text.empty(); });
  std::vector<size_t> order(Words.size());
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) {
    return Words[a].Box.Top < Words[b].Box.Top;
  });
  // Each open line keeps its band; a word joins the last-opened line whose
  // band holds its vertical centre.
  struct Band {
    int32_t top, bottom;
    std::vector<size_t> words;
  };
  std::vector<Band> bands;
  for (size_t i : order) {
    const cBox& b = Words[i].Box;
    const int32_t centre = b.Top + b.Height / 2;
    Band* home = nullptr;
    for (auto it = bands.rbegin(); it != bands.rend(); ++it) {
      // Both centres inside the other's range: a tall word (a heading)
      // does not swallow the smaller lines beside it.
      const int32_t band_centre = (it->top + it->bottom) / 2;
      if (centre >= it->top && centre <= it->bottom && band_centre >= b.Top &&
          band_centre <= b.Bottom()) {
        home = &*it;
        break;
      }
      // Bands are opened top-down; one whose bottom lies far above this
      // word cannot take it, nor can any before it that ends higher still.
      if (it->bottom < b.Top - b.Height * 4) break;
    }
    if (home == nullptr) {
      bands.push_back({b.Top, b.Bottom(), {}});
      home = &bands.back();
    }
    home->words.push_back(i);
  }
  std::vector<int64_t> line_of(Words.size());
  for (size_t l = 0; l < bands.size(); ++l) {
    for (size_t i : bands[l].words) line_of[i] = static_cast<int64_t>(l);
  }
  GroupLines(line_of);
}

void cPage::GroupLines(const std::vector<int64_t>& line_of) {
  std::map<int64_t, std::vector<size_t>> by_key;
  for (size_t i = 0; i < Words.size() && i < line_of.size(); ++i) {
    if (!Words[i].Text.empty()) by_key[line_of[i]].push_back(i);
  }
  struct Group {
    cBox box;
    std::vector<size_t> words;
  };
  std::vector<Group> groups;
  groups.reserve(by_key.size());
  for (auto& [key, words] : by_key) {
    std::stable_sort(words.begin(), words.end(), [&](size_t a, size_t b) {
      return Words[a].Box.Left < Words[b].Box.Left;
    });
    Group g;
    for (size_t i : words) g.box.Unite(Words[i].Box);
    if (g.box.Empty() && !words.empty()) g.box = Words[words.front()].Box;
    g.words = std::move(words);
    groups.push_back(std::move(g));
  }
  std::stable_sort(groups.begin(), groups.end(),
                   [](const Group& a, const Group& b) {
                     return a.box.Top != b.box.Top ? a.box.Top < b.box.Top
                                                   : a.box.Left < b.box.Left;
                   });
  std::vector<cPageWord> words;
  words.reserve(Words.size());
  Lines.clear();
  Lines.reserve(groups.size());
  for (const Group& g : groups) {
    cPageLine line;
    line.Box = g.box;
    for (size_t i : g.words) {
      line.Words.push_back(static_cast<int32_t>(words.size()));
      words.push_back(std::move(Words[i]));
    }
    Lines.push_back(std::move(line));
  }
  Words = std::move(words);
}

std::string cPage::LineText(size_t line) const {
  std::string out;
  if (line >= Lines.size()) return out;
  for (int32_t w : Lines[line].Words) {
    if (!out.empty()) out.push_back(' ');
    out += Words[w].Text;
  }
  return out;
}

std::string cPage::Text() const {
  std::string out;
  for (size_t l = 0; l < Lines.size(); ++l) {
    if (l > 0) out.push_back('\n');
    out += LineText(l);
  }
  return out;
}

cBox cPage::ToTemplatePixels(const cBox& box) const {
  if (Dpi == kTemplateDpi || Dpi <= 0) return box;
  const double f = static_cast<double>(kTemplateDpi) / Dpi;
  auto s = [f](int32_t v) { return Clamp32(std::llround(v * f)); };
  return {s(box.Left), s(box.Top), s(box.Width), s(box.Height)};
}

// ---------------------------------------------------------------------------
// Tesseract TSV
// ---------------------------------------------------------------------------

bool cPageModel::ReadTsv(std::string_view text, int32_t dpi,
                         std::string& strErrMsg) {
  strErrMsg.clear();
  std::vector<cPage> pages;
  std::vector<std::vector<int64_t>> keys;
  std::map<int64_t, size_t> page_index;
  size_t line_no = 0;
  size_t pos = 0;
  auto page_for = [&](int64_t num) -> size_t {
    auto it = page_index.find(num);
    if (it != page_index.end()) return it->second;
    pages.emplace_back();
    pages.back().Dpi = dpi;
    keys.emplace_back();
    page_index[num] = pages.size() - 1;
    return pages.size() - 1;
  };
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) end = text.size();
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    ++line_no;
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    if (line.empty()) continue;
    if (line_no == 1 && line.substr(0, 5) == "level") continue;
    const auto cols = SplitTabs(line);
    int64_t v[10];
    bool ok = cols.size() >= 11;
    for (size_t i = 0; ok && i < 10; ++i) ok = ParseInt(cols[i], v[i]);
    float conf = 0;
    ok = ok && ParseFloat(cols[10], conf);
    for (size_t i = 6; ok && i < 10; ++i) {
      ok = InPageRange(static_cast<double>(v[i]));
    }
    if (!ok) {
      strErrMsg = "Not a TSV page file: line " + std::to_string(line_no);
      return false;
    }
    const int64_t level = v[0];
    const size_t p = page_for(v[1]);
    cPage& page = pages[p];
    const cBox box{Clamp32(v[6]), Clamp32(v[7]), Clamp32(v[8]), Clamp32(v[9])};
    if (level == 1) {
      page.Width = std::max(page.Width, box.Right());
      page.Height = std::max(page.Height, box.Bottom());
    } else if (level == 5) {
      const std::string word =
          WordText(cols.size() > 11 ? cols[11] : std::string_view());
      if (word.empty()) continue;
      if (page.Words.size() >= kMaxWordsPerPage) {
        strErrMsg = "Too many words on page " + std::to_string(v[1]);
        return false;
      }
      page.Words.push_back({word, box, std::clamp(conf, 0.0f, 100.0f)});
      keys[p].push_back((v[2] << 40) | (v[3] << 20) | v[4]);
    }
  }
  if (pages.empty()) {
    strErrMsg = "Not a TSV page file: no page";
    return false;
  }
  for (size_t p = 0; p < pages.size(); ++p) pages[p].GroupLines(keys[p]);
  for (cPage& page : pages) Pages.push_back(std::move(page));
  return true;
}

std::string cPageModel::WriteTsv() const {
  std::string out =
      "level\tpage_num\tblock_num\tpar_num\tline_num\tword_num\tleft\ttop\t"
      "width\theight\tconf\ttext\n";
  auto row = [&out](int level, size_t page, size_t line, size_t word,
                    const cBox& b, const std::string& conf,
                    const std::string& text) {
    out += std::to_string(level) + "\t" + std::to_string(page) + "\t" +
           (level > 1 ? "1\t1\t" : "0\t0\t") + std::to_string(line) + "\t" +
           std::to_string(word) + "\t" + std::to_string(b.Left) + "\t" +
           std::to_string(b.Top) + "\t" + std::to_string(b.Width) + "\t" +
           std::to_string(b.Height) + "\t" + conf + "\t" + text + "\n";
  };
  for (size_t p = 0; p < Pages.size(); ++p) {
    const cPage& page = Pages[p];
    row(1, p + 1, 0, 0, {0, 0, page.Width, page.Height}, "-1", "");
    for (size_t l = 0; l < page.Lines.size(); ++l) {
      row(4, p + 1, l + 1, 0, page.Lines[l].Box, "-1", "");
      size_t n = 0;
      for (int32_t w : page.Lines[l].Words) {
        const cPageWord& word = page.Words[w];
        row(5, p + 1, l + 1, ++n, word.Box, NumberText(word.Confidence),
            Windows1252ToUtf8(word.Text));
      }
    }
  }
  return out;
}

// ---------------------------------------------------------------------------
// hOCR
// ---------------------------------------------------------------------------

namespace {

std::string DecodeEntities(std::string_view s) {
  std::string out;
  out.reserve(s.size());
  for (size_t i = 0; i < s.size(); ++i) {
    if (s[i] != '&') {
      out.push_back(s[i]);
      continue;
    }
    const size_t semi = s.find(';', i);
    if (semi == std::string_view::npos || semi - i > 10) {
      out.push_back('&');
      continue;
    }
    const std::string_view name = s.substr(i + 1, semi - i - 1);
    std::string rep;
    if (name == "amp")
      rep = "&";
    else if (name == "lt")
      rep = "<";
    else if (name == "gt")
      rep = ">";
    else if (name == "quot")
      rep = "\"";
    else if (name == "apos")
      rep = "'";
    else if (name.size() > 1 && name[0] == '#') {
      uint32_t cp = 0;
      const bool hex = name[1] == 'x' || name[1] == 'X';
      const std::string_view digits = name.substr(hex ? 2 : 1);
      auto [p, ec] = std::from_chars(
          digits.data(), digits.data() + digits.size(), cp, hex ? 16 : 10);
      if (ec == std::errc() && p == digits.data() + digits.size() &&
          cp < 0x110000) {
        // Kept as UTF-8, like the text around it.
        AppendUtf8(rep, cp);
      }
    }
    if (rep.empty()) {
      out.push_back('&');
      continue;
    }
    out += rep;
    i = semi;
  }
  return out;
}

// The value of attribute `name` in the tag text `tag`, or npos-marked empty.
bool Attribute(std::string_view tag, std::string_view name,
               std::string_view& value) {
  size_t at = 0;
  while ((at = tag.find(name, at)) != std::string_view::npos) {
    const bool start_ok =
        at > 0 && (tag[at - 1] == ' ' || tag[at - 1] == '\t' ||
                   tag[at - 1] == '\n' || tag[at - 1] == '\r');
    size_t eq = at + name.size();
    while (eq < tag.size() && tag[eq] == ' ') ++eq;
    if (!start_ok || eq >= tag.size() || tag[eq] != '=') {
      at += name.size();
      continue;
    }
    size_t q = eq + 1;
    while (q < tag.size() && tag[q] == ' ') ++q;
    if (q >= tag.size()) return false;
    const char quote = tag[q];
    if (quote != '"' && quote != '\'') return false;
    const size_t close = tag.find(quote, q + 1);
    if (close == std::string_view::npos) return false;
    value = tag.substr(q + 1, close - q - 1);
    return true;
  }
  return false;
}

// Numbers after `key` in a hOCR title ("bbox 1 2 3 4; x_wconf 90").
std::vector<double> TitleNumbers(std::string_view title, std::string_view key) {
  std::vector<double> out;
  size_t at = 0;
  while ((at = title.find(key, at)) != std::string_view::npos) {
    if (at == 0 || title[at - 1] == ' ' || title[at - 1] == ';') break;
    at += key.size();
  }
  if (at == std::string_view::npos) return out;
  size_t i = at + key.size();
  while (i < title.size() && title[i] != ';') {
    while (i < title.size() && title[i] == ' ') ++i;
    size_t j = i;
    while (j < title.size() && title[j] != ' ' && title[j] != ';') ++j;
    if (j > i) {
      double n = 0;
      if (!ToDouble(title.substr(i, j - i), n)) return {};
      out.push_back(n);
    }
    i = j;
  }
  return out;
}

bool HasClass(std::string_view classes, std::string_view name) {
  size_t at = 0;
  while ((at = classes.find(name, at)) != std::string_view::npos) {
    const size_t end = at + name.size();
    if ((at == 0 || classes[at - 1] == ' ') &&
        (end == classes.size() || classes[end] == ' '))
      return true;
    at = end;
  }
  return false;
}

}  // namespace

bool cPageModel::ReadHocr(std::string_view text, int32_t dpi,
                          std::string& strErrMsg) {
  strErrMsg.clear();
  std::vector<cPage> pages;
  std::vector<std::vector<int64_t>> keys;
  int64_t line_key = 0;
  // An open word collects its text until its element closes; nested
  // elements inside a word (<strong>, <em>) only add text.
  bool in_word = false;
  int word_depth = 0;
  std::string word_text;
  cBox word_box;
  float word_conf = 100;
  size_t i = 0;
  while (i < text.size()) {
    const size_t lt = text.find('<', i);
    if (lt == std::string_view::npos) break;
    if (in_word) word_text.append(text.substr(i, lt - i));
    const size_t gt = text.find('>', lt);
    if (gt == std::string_view::npos) break;
    const std::string_view tag = text.substr(lt + 1, gt - lt - 1);
    i = gt + 1;
    if (tag.empty() || tag[0] == '!' || tag[0] == '?') continue;
    if (tag[0] == '/') {
      if (in_word && --word_depth == 0) {
        in_word = false;
        const std::string w = WordText(DecodeEntities(word_text));
        if (!w.empty() && !pages.empty()) {
          if (pages.back().Words.size() >= kMaxWordsPerPage) {
            strErrMsg = "Too many words on a page";
            return false;
          }
          pages.back().Words.push_back({w, word_box, word_conf});
          keys.back().push_back(line_key);
        }
      }
      continue;
    }
    const bool self_closing = tag.back() == '/';
    if (in_word) {
      if (!self_closing) ++word_depth;
      continue;
    }
    std::string_view classes, title;
    if (!Attribute(tag, "class", classes)) continue;
    Attribute(tag, "title", title);
    auto bbox = [&](cBox& box) {
      const std::vector<double> n = TitleNumbers(title, "bbox");
      if (n.size() != 4 || n[2] < n[0] || n[3] < n[1] ||
          !std::all_of(n.begin(), n.end(), InPageRange)) {
        strErrMsg =
            "Not a hOCR page file: bad bbox \"" + std::string(title) + "\"";
        return false;
      }
      box = {Clamp32(std::llround(n[0])), Clamp32(std::llround(n[1])),
             Clamp32(std::llround(n[2] - n[0])),
             Clamp32(std::llround(n[3] - n[1]))};
      return true;
    };
    if (HasClass(classes, "ocr_page")) {
      cBox box;
      if (!bbox(box)) return false;
      pages.emplace_back();
      keys.emplace_back();
      pages.back().Width = box.Right();
      pages.back().Height = box.Bottom();
      const std::vector<double> res = TitleNumbers(title, "scan_res");
      pages.back().Dpi = !res.empty() && res[0] >= 1 && res[0] <= 10000
                             ? static_cast<int32_t>(std::lround(res[0]))
                             : dpi;
    } else if (HasClass(classes, "ocr_line") ||
               HasClass(classes, "ocrx_line") ||
               HasClass(classes, "ocr_caption") ||
               HasClass(classes, "ocr_header") ||
               HasClass(classes, "ocr_textfloat")) {
      ++line_key;
    } else if (HasClass(classes, "ocrx_word")) {
      if (!bbox(word_box)) return false;
      const std::vector<double> c = TitleNumbers(title, "x_wconf");
      word_conf =
          c.empty() ? 100.0f : static_cast<float>(std::clamp(c[0], 0.0, 100.0));
      word_text.clear();
      if (self_closing) continue;
      in_word = true;
      word_depth = 1;
    }
  }
  if (pages.empty()) {
    strErrMsg = "Not a hOCR page file: no ocr_page element";
    return false;
  }
  for (size_t p = 0; p < pages.size(); ++p) pages[p].GroupLines(keys[p]);
  for (cPage& page : pages) Pages.push_back(std::move(page));
  return true;
}

}  // namespace pelinor
