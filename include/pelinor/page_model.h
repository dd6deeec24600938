// The page model: what OCR or a PDF text layer saw on each page of a
// document, as words with boxes and confidences, grouped into lines in
// reading order. Extraction (page_extractor.h) works on this model only, so
// a client with its own OCR fills it and uses the rest of the library.
//
// Formats read and written here: Tesseract TSV and hOCR, see
// docs/formats/page-model.md.
//
// Coordinates are pixels of the page at its own resolution (`Dpi`), origin
// at the top left; `ToTemplatePixels()` converts to the 300 dpi pixels that
// template zones use.
//
// Ownership: a model owns its pages, a page its words and lines (plain
// values, no pointers).
//
// Thread safety: a model is a value; separate models are independent, and a
// const model may be read from several threads.

#ifndef PELINOR_PAGE_MODEL_H_
#define PELINOR_PAGE_MODEL_H_

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor {

// The resolution of template coordinates: zones, anchors and datums are
// pixels of a page scanned at 300 dpi.
inline constexpr int32_t kTemplateDpi = 300;

// A rectangle in pixels; Width and Height of 0 mean an empty box.
struct cBox {
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;

  int32_t Right() const { return Left + Width; }
  int32_t Bottom() const { return Top + Height; }
  bool Empty() const { return Width <= 0 || Height <= 0; }

  // Unite()
  //
  // Grows this box to cover `other` as well; an empty box takes `other`.
  void Unite(const cBox& other);

  friend bool operator==(const cBox&, const cBox&) = default;
};

// One word: its text (Windows-1252), box and confidence (0 to 100; 100 for
// a PDF text layer).
struct cPageWord {
  std::string Text;
  cBox Box;
  float Confidence = 100;
};

// One line: indices into cPage::Words, left to right.
struct cPageLine {
  std::vector<int32_t> Words;
  cBox Box;
};

class cPage {
 public:
  int32_t Width = 0;   // pixels
  int32_t Height = 0;  // pixels
  int32_t Dpi = kTemplateDpi;
  std::vector<cPageWord> Words;  // in reading order once GroupLines() ran
  std::vector<cPageLine> Lines;  // top to bottom

  // GroupLines()
  //
  // Builds `Lines` from the word boxes and reorders `Words` into reading
  // order: a word joins the line whose vertical band holds its vertical
  // centre (bands are tested from the top down, with words taken by their
  // top); lines run top to bottom, words left to right. Words with an empty
  // text are dropped.
  void GroupLines();

  // GroupLines()
  //
  // The same, but the lines are given: `line_of[i]` is the line key of
  // word i (words with the same key form one line, as an OCR engine
  // reported them). Lines are then ordered by their top, words by left.
  // REQUIRES: line_of.size() == Words.size().
  void GroupLines(const std::vector<int64_t>& line_of);

  // LineText()
  //
  // The words of line `line` joined by one blank.
  std::string LineText(size_t line) const;

  // Text()
  //
  // Every line's text, joined by "\n".
  std::string Text() const;

  // ToTemplatePixels()
  //
  // `box` (page pixels) in 300 dpi pixels, rounded to the nearest pixel.
  cBox ToTemplatePixels(const cBox& box) const;
};

class cPageModel {
 public:
  std::vector<cPage> Pages;

  // ReadTsv()
  //
  // Appends the pages of Tesseract TSV text (the 12 tab-separated columns
  // level, page_num, block_num, par_num, line_num, word_num, left, top,
  // width, height, conf, text, with or without the header line; level 1
  // rows give page sizes, level 5 rows give words). Text is UTF-8 and is
  // stored as Windows-1252. Page resolution is `dpi`. False with
  // `strErrMsg` set ("Not a TSV page file: line N" and the like) when a row
  // is malformed; the model is then left as it was.
  bool ReadTsv(std::string_view text, int32_t dpi, std::string& strErrMsg);

  // ReadHocr()
  //
  // Appends the pages of hOCR text: elements of class "ocr_page" (with
  // "bbox" and optional "scan_res" in their title), "ocr_line" /
  // "ocrx_line" / "ocr_caption" / "ocr_header" / "ocr_textfloat" lines and
  // "ocrx_word" words ("bbox", optional "x_wconf"). Entities &amp; &lt;
  // &gt; &quot; &apos; and numeric ones are decoded. Pages without
  // "scan_res" take `dpi`. False with `strErrMsg` set when no page is found
  // or a bbox is malformed; the model is then left as it was.
  bool ReadHocr(std::string_view text, int32_t dpi, std::string& strErrMsg);

  // WriteTsv()
  //
  // The model as Tesseract TSV (header line, one level-1 row per page, one
  // level-4 row per line and one level-5 row per word; text as UTF-8), so
  // that ReadTsv() gives the same pages back.
  std::string WriteTsv() const;
};

// WordText()
//
// The text of a word as OCR engines and PDF text layers give it (UTF-8) as
// the model keeps it: Windows-1252, control characters (tabs, line ends)
// turned into blanks, leading and trailing blanks removed.
std::string WordText(std::string_view utf8);

}  // namespace pelinor

#endif  // PELINOR_PAGE_MODEL_H_
