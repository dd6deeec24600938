// Reads generated pages whose text positions are known: a PDF with a text
// layer written here, the same page rendered to an image (OCR), put into a
// PDF without text (rendered and OCR'd) and into a two-page TIFF.

#include "pelinor/page_reader.h"

#include <gtest/gtest.h>
#include <leptonica/allheaders.h>
#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-image.h>
#include <poppler/cpp/poppler-page-renderer.h>
#include <poppler/cpp/poppler-page.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "test_util.h"

namespace pelinor {
namespace {

struct PdfWord {
  double x, baseline, size;  // points, from the top left
  std::string text;
};

// A PDF of `pages` pages of w x h points, each showing `words` in
// Helvetica.
std::string MakeTextPdf(double w, double h, const std::vector<PdfWord>& words,
                        int pages = 1) {
  std::vector<std::string> objects;
  std::string kids;
  for (int p = 0; p < pages; ++p) {
    kids += std::to_string(4 + 2 * p) + " 0 R ";
  }
  objects.push_back("<< /Type /Catalog /Pages 2 0 R >>");
  objects.push_back("<< /Type /Pages /Kids [" + kids + "] /Count " +
                    std::to_string(pages) + " >>");
  objects.push_back(
      "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica "
      "/Encoding /WinAnsiEncoding >>");
  std::string content;
  for (const PdfWord& word : words) {
    content += "BT /F1 " + std::to_string(word.size) + " Tf " +
               std::to_string(word.x) + " " +
               std::to_string(h - word.baseline) + " Td (" + word.text +
               ") Tj ET\n";
  }
  for (int p = 0; p < pages; ++p) {
    objects.push_back("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " +
                      std::to_string(w) + " " + std::to_string(h) +
                      "] /Resources << /Font << /F1 3 0 R >> >> "
                      "/Contents " +
                      std::to_string(5 + 2 * p) + " 0 R >>");
    objects.push_back("<< /Length " + std::to_string(content.size()) +
                      " >>\nstream\n" + content + "endstream");
  }
  std::string pdf = "%PDF-1.4\n";
  std::vector<size_t> offsets;
  for (size_t i = 0; i < objects.size(); ++i) {
    offsets.push_back(pdf.size());
    pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const size_t xref = pdf.size();
  pdf += "xref\n0 " + std::to_string(objects.size() + 1) +
         "\n0000000000 65535 f \n";
  for (size_t off : offsets) {
    char line[32];
    std::snprintf(line, sizeof line, "%010zu 00000 n \n", off);
    pdf += line;
  }
  pdf += "trailer\n<< /Size " + std::to_string(objects.size() + 1) +
         " /Root 1 0 R >>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n";
  return pdf;
}

// A page of 288 x 144 points (4 x 2 inches), large print for OCR.
const std::vector<PdfWord>& SampleWords() {
  static const std::vector<PdfWord> words = {
      {24, 40, 18, "Invoice"},
      {150, 40, 18, "INV-0042"},
      {24, 100, 18, "Total"},
      {150, 100, 18, "1234.50"},
  };
  return words;
}

// Renders page 1 of a PDF at 300 dpi as an 8-bit grey image.
PIX* Render(const std::string& pdf_path) {
  std::unique_ptr<poppler::document> doc(
      poppler::document::load_from_file(pdf_path));
  if (!doc) return nullptr;
  std::unique_ptr<poppler::page> page(doc->create_page(0));
  poppler::page_renderer r;
  r.set_render_hints(poppler::page_renderer::antialiasing |
                     poppler::page_renderer::text_antialiasing);
  const poppler::image img = r.render_page(page.get(), 300, 300);
  PIX* pix = pixCreate(img.width(), img.height(), 8);
  for (int y = 0; y < img.height(); ++y) {
    const auto* row = reinterpret_cast<const uint8_t*>(img.const_data()) +
                      static_cast<size_t>(y) * img.bytes_per_row();
    l_uint32* line = pixGetData(pix) + y * pixGetWpl(pix);
    for (int x = 0; x < img.width(); ++x) {
      SET_DATA_BYTE(line, x,
                    (row[4 * x] + row[4 * x + 1] + row[4 * x + 2]) / 3);
    }
  }
  pixSetResolution(pix, 300, 300);
  return pix;
}

std::vector<std::string> Texts(const cPage& page) {
  std::vector<std::string> out;
  for (const cPageWord& w : page.Words) out.push_back(w.Text);
  return out;
}

// The OCR'd page holds the text layer's words at the same places: left
// edges within 8 pixels, vertical centres within 20.
void ExpectSameWords(const cPage& ocr, const cPage& layer) {
  EXPECT_EQ(Texts(ocr), Texts(layer));
  if (ocr.Words.size() != layer.Words.size()) return;
  for (size_t i = 0; i < ocr.Words.size(); ++i) {
    SCOPED_TRACE(layer.Words[i].Text);
    const cBox& a = ocr.Words[i].Box;
    const cBox& b = layer.Words[i].Box;
    EXPECT_NEAR(a.Left, b.Left, 8);
    EXPECT_NEAR(a.Top + a.Height / 2, b.Top + b.Height / 2, 20);
    EXPECT_GT(ocr.Words[i].Confidence, 50);
  }
  EXPECT_EQ(ocr.Lines.size(), layer.Lines.size());
}

class PageReaderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    pdf_ = dir_.File("page.pdf");
    testing::WriteFile(pdf_, MakeTextPdf(288, 144, SampleWords()));
    std::string err;
    ASSERT_TRUE(reader_.ReadFile(pdf_, layer_, err)) << err;
    ASSERT_EQ(layer_.Pages.size(), 1u);
  }

  testing::TempDir dir_;
  std::string pdf_;
  cPageReader reader_;
  cPageModel layer_;
};

TEST_F(PageReaderTest, PdfTextLayerGivesWordsAndBoxes) {
  const cPage& page = layer_.Pages[0];
  EXPECT_EQ(reader_.OcrPages(), 0);
  EXPECT_EQ(page.Dpi, 300);
  EXPECT_EQ(page.Width, 1200);
  EXPECT_EQ(page.Height, 600);
  ASSERT_EQ(page.Lines.size(), 2u);
  EXPECT_EQ(page.LineText(0), "Invoice INV-0042");
  EXPECT_EQ(page.LineText(1), "Total 1234.50");
  for (size_t i = 0; i < page.Words.size(); ++i) {
    const PdfWord& w = SampleWords()[i];
    SCOPED_TRACE(w.text);
    const double scale = 300.0 / 72;
    EXPECT_NEAR(page.Words[i].Box.Left, w.x * scale, 1.5);
    // The box spans the font's height around the baseline.
    EXPECT_LT(page.Words[i].Box.Top, w.baseline * scale);
    EXPECT_GT(page.Words[i].Box.Bottom(), w.baseline * scale);
    EXPECT_NEAR(page.Words[i].Box.Height, w.size * scale, w.size * scale / 3);
    EXPECT_FLOAT_EQ(page.Words[i].Confidence, 100);
  }
}

TEST_F(PageReaderTest, OcrOfImagesAndScannedPdfs) {
  PIX* pix = Render(pdf_);
  ASSERT_NE(pix, nullptr);
  const std::string png = dir_.File("page.png");
  ASSERT_EQ(pixWrite(png.c_str(), pix, IFF_PNG), 0);
  // A PDF holding only the image: no text layer, so it is rendered.
  l_uint8* data = nullptr;
  size_t size = 0;
  ASSERT_EQ(pixWriteMemPdf(&data, &size, pix, 300, "scan"), 0);
  const std::string scanned_pdf = dir_.File("scan.pdf");
  testing::WriteFile(scanned_pdf,
                     std::string(reinterpret_cast<char*>(data), size));
  lept_free(data);
  // A two-page TIFF.
  const std::string tiff = dir_.File("pages.tif");
  ASSERT_EQ(pixWriteTiff(tiff.c_str(), pix, IFF_TIFF_ZIP, "w"), 0);
  ASSERT_EQ(pixWriteTiff(tiff.c_str(), pix, IFF_TIFF_ZIP, "a"), 0);
  pixDestroy(&pix);

  struct Case {
    std::string file;
    size_t pages;
  };
  const std::vector<Case> cases = {{png, 1}, {scanned_pdf, 1}, {tiff, 2}};
  int ocr = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    cPageModel model;
    std::string err;
    ASSERT_TRUE(reader_.ReadFile(c.file, model, err)) << err;
    ASSERT_EQ(model.Pages.size(), c.pages);
    ocr += static_cast<int>(c.pages);
    EXPECT_EQ(reader_.OcrPages(), ocr);
    for (const cPage& page : model.Pages) {
      EXPECT_EQ(page.Dpi, 300);
      EXPECT_NEAR(page.Width, 1200, 2);
      EXPECT_NEAR(page.Height, 600, 2);
      ExpectSameWords(page, layer_.Pages[0]);
    }
  }
}

TEST_F(PageReaderTest, BadFilesGiveMessages) {
  const std::string empty = dir_.File("empty.png");
  testing::WriteFile(empty, "");
  const std::string text = dir_.File("text.png");
  testing::WriteFile(text, "hello, not an image\n");
  const std::string broken = dir_.File("broken.pdf");
  testing::WriteFile(broken, "%PDF-1.4\nthis is no pdf\n");
  const std::string many = dir_.File("many.pdf");
  testing::WriteFile(many, MakeTextPdf(100, 100, {{10, 50, 10, "x"}}, 500));
  const std::string tsv = dir_.File("bad.tsv");
  testing::WriteFile(tsv, "5\t1\tx\n");
  const std::string huge = dir_.File("huge.png");
  {
    PIX* pix = pixCreate(20000, 20000, 1);
    ASSERT_NE(pix, nullptr);
    ASSERT_EQ(pixWrite(huge.c_str(), pix, IFF_PNG), 0);
    pixDestroy(&pix);
  }
  const std::string missing = dir_.File("missing.png");
  struct Case {
    std::string file, message;
  };
  const std::vector<Case> cases = {
      {empty, "Empty page file " + empty},
      {text, "Not a page image, PDF, TSV or hOCR file: " + text},
      {broken, "Cannot read PDF " + broken},
      {many, many + ": 500 pages; at most 200 are read"},
      {tsv, tsv + ": Not a TSV page file: line 1"},
      {huge, "Image too large: " + huge +
                 " page 1 is 20000 x 20000 pixels; at most 100000000 pixels "
                 "are read"},
      {missing, "Cannot read page file " + missing},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    cPageModel model;
    std::string err;
    EXPECT_FALSE(reader_.ReadFile(c.file, model, err));
    EXPECT_EQ(err, c.message);
    EXPECT_TRUE(model.Pages.empty());
  }
  EXPECT_EQ(reader_.OcrPages(), 0);
  // A language without its data cannot start OCR.
  {
    const std::string small = dir_.File("small.png");
    PIX* pix = pixCreate(200, 100, 8);
    pixSetAllArbitrary(pix, 255);
    ASSERT_EQ(pixWrite(small.c_str(), pix, IFF_PNG), 0);
    pixDestroy(&pix);
    cPageReader reader;
    reader.Language = "zzz";
    cPageModel model;
    std::string err;
    EXPECT_FALSE(reader.ReadFile(small, model, err));
    EXPECT_EQ(err,
              "Cannot start OCR for language \"zzz\" (is its tesseract-ocr "
              "language package installed?)");
    EXPECT_TRUE(model.Pages.empty());
    // A blank page reads as a page without words.
    reader.Language = "eng";
    ASSERT_TRUE(reader.ReadFile(small, model, err)) << err;
    ASSERT_EQ(model.Pages.size(), 1u);
    EXPECT_TRUE(model.Pages[0].Words.empty());
    EXPECT_EQ(model.Pages[0].Width, 200);
  }
  // With a higher limit the 500 text pages are read.
  reader_.MaxPages = 500;
  cPageModel model;
  std::string err;
  ASSERT_TRUE(reader_.ReadFile(many, model, err)) << err;
  EXPECT_EQ(model.Pages.size(), 500u);
}

TEST_F(PageReaderTest, ReadsTsvAndHocrFiles) {
  const std::string tsv = dir_.File("page.tsv");
  testing::WriteFile(tsv, layer_.WriteTsv());
  const std::string hocr = dir_.File("page.hocr");
  testing::WriteFile(
      hocr,
      "<?xml version='1.0'?>\n<html><body><div class='ocr_page' "
      "title='bbox 0 0 600 300; scan_res 150 150'><span class='ocrx_word' "
      "title='bbox 10 20 60 40; x_wconf 80'>Invoice</span></div></body>"
      "</html>");
  cPageModel model;
  std::string err;
  ASSERT_TRUE(reader_.ReadFile(tsv, model, err)) << err;
  ASSERT_TRUE(reader_.ReadFile(hocr, model, err)) << err;
  ASSERT_EQ(model.Pages.size(), 2u);
  EXPECT_EQ(Texts(model.Pages[0]), Texts(layer_.Pages[0]));
  EXPECT_EQ(model.Pages[1].Dpi, 150);
  EXPECT_EQ(Texts(model.Pages[1]), std::vector<std::string>{"Invoice"});
  EXPECT_EQ(reader_.OcrPages(), 0);
}

}  // namespace
}  // namespace pelinor
