#include "pelinor/page_model.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pelinor {
namespace {

constexpr char kHeader[] =
    "level\tpage_num\tblock_num\tpar_num\tline_num\tword_num\tleft\ttop\t"
    "width\theight\tconf\ttext\n";

// "text@left,top,width,height" per word, lines separated by " | ".
std::string Describe(const cPage& page) {
  std::string out;
  for (size_t l = 0; l < page.Lines.size(); ++l) {
    if (l > 0) out += " | ";
    for (size_t k = 0; k < page.Lines[l].Words.size(); ++k) {
      const cPageWord& w = page.Words[page.Lines[l].Words[k]];
      if (k > 0) out += " ";
      out += w.Text + "@" + std::to_string(w.Box.Left) + "," +
             std::to_string(w.Box.Top) + "," + std::to_string(w.Box.Width) +
             "," + std::to_string(w.Box.Height);
    }
  }
  return out;
}

TEST(PageModelTest, ReadsTesseractTsv) {
  struct Case {
    std::string tsv;
    bool ok;
    std::string expected;  // Describe() of page 1, or the message
  };
  const std::vector<Case> cases = {
      // Lines come from block/par/line numbers and are ordered by their top;
      // words in a line by their left edge.
      {std::string(kHeader) +
           "1\t1\t0\t0\t0\t0\t0\t0\t2480\t3508\t-1\t\n"
           "5\t1\t1\t1\t2\t1\t300\t200\t80\t40\t91.5\tTotal\n"
           "5\t1\t1\t1\t1\t2\t500\t100\t60\t40\t88\tNo\n"
           "5\t1\t1\t1\t1\t1\t300\t100\t150\t40\t90\tInvoice\n",
       true, "Invoice@300,100,150,40 No@500,100,60,40 | Total@300,200,80,40"},
      // No header line; CR LF line ends; blank words dropped.
      {"5\t1\t1\t1\t1\t1\t10\t20\t30\t40\t95\tA\r\n"
       "5\t1\t1\t1\t1\t2\t50\t20\t30\t40\t95\t \r\n",
       true, "A@10,20,30,40"},
      // UTF-8 text is stored as Windows-1252.
      {"5\t1\t1\t1\t1\t1\t10\t20\t30\t40\t95\t\xE2\x82\xAC"
       "12\n",
       true,
       "\x80"
       "12@10,20,30,40"},
      {std::string(kHeader) + "5\t1\t1\t1\t1\t1\t10\t20\t30\n", false,
       "Not a TSV page file: line 2"},
      {"5\t1\t1\t1\t1\t1\tten\t20\t30\t40\t95\tA\n", false,
       "Not a TSV page file: line 1"},
      {std::string(kHeader), false, "Not a TSV page file: no page"},
      // Boxes no page can have would not read back as they were written.
      {"5\t1\t1\t1\t1\t1\t10\t20\t30\t24802222222222\t95\tA\n", false,
       "Not a TSV page file: line 1"},
      {"5\t1\t1\t1\t1\t1\t-10\t20\t30\t40\t95\tA\n", false,
       "Not a TSV page file: line 1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.tsv);
    cPageModel model;
    std::string err = "old";
    ASSERT_EQ(model.ReadTsv(c.tsv, 300, err), c.ok);
    if (!c.ok) {
      EXPECT_EQ(err, c.expected);
      EXPECT_TRUE(model.Pages.empty());
      continue;
    }
    EXPECT_EQ(err, "");
    ASSERT_EQ(model.Pages.size(), 1u);
    EXPECT_EQ(Describe(model.Pages[0]), c.expected);
  }
}

TEST(PageModelTest, TsvKeepsPagesSizesAndConfidence) {
  const std::string tsv = std::string(kHeader) +
                          "1\t1\t0\t0\t0\t0\t0\t0\t1240\t1754\t-1\t\n"
                          "5\t1\t1\t1\t1\t1\t10\t20\t30\t40\t61.25\tA\n"
                          "1\t2\t0\t0\t0\t0\t0\t0\t1000\t800\t-1\t\n"
                          "5\t2\t1\t1\t1\t1\t10\t20\t30\t40\t140\tB\n";
  cPageModel model;
  std::string err;
  ASSERT_TRUE(model.ReadTsv(tsv, 150, err)) << err;
  ASSERT_EQ(model.Pages.size(), 2u);
  EXPECT_EQ(model.Pages[0].Width, 1240);
  EXPECT_EQ(model.Pages[0].Height, 1754);
  EXPECT_EQ(model.Pages[0].Dpi, 150);
  EXPECT_FLOAT_EQ(model.Pages[0].Words[0].Confidence, 61.25f);
  EXPECT_EQ(model.Pages[1].Width, 1000);
  // Confidence is kept within 0 to 100.
  EXPECT_FLOAT_EQ(model.Pages[1].Words[0].Confidence, 100.0f);
}

TEST(PageModelTest, ReadsHocr) {
  struct Case {
    std::string hocr;
    bool ok;
    std::string expected;
    int dpi;
  };
  const std::string page =
      "<div class='ocr_page' title='image \"x.png\"; bbox 0 0 2480 3508; "
      "scan_res 300 300'>";
  const std::vector<Case> cases = {
      {page +
           "<span class='ocr_line' title='bbox 100 100 400 140'>"
           "<span class='ocrx_word' title='bbox 100 100 250 140; x_wconf 93'>"
           "Invoice</span> <span class='ocrx_word' title='bbox 260 100 300 "
           "140; x_wconf 90'>No</span></span>"
           "<span class='ocr_line' title='bbox 100 200 400 240'>"
           "<span class='ocrx_word' title='bbox 100 200 200 240'>"
           "<strong>A&amp;B</strong></span>"
           "<span class='ocrx_word' title='bbox 210 200 300 240'>&#8364;5"
           "</span></span></div>",
       true,
       "Invoice@100,100,150,40 No@260,100,40,40 | A&B@100,200,100,40 "
       "\x80"
       "5@210,200,90,40",
       300},
      // No scan_res: the caller's resolution.
      {"<div class=\"ocr_page\" title=\"bbox 0 0 100 100\">"
       "<span class=\"ocrx_word\" title=\"bbox 1 2 11 22\">x</span></div>",
       true, "x@1,2,10,20", 200},
      // Line ends and tabs inside a word become blanks.
      {"<div class='ocr_page' title='bbox 0 0 100 100'>"
       "<span class='ocrx_word' title='bbox 1 2 11 22'>\ta\r\nb </span></div>",
       true, "a  b@1,2,10,20", 200},
      {page + "<span class='ocrx_word' title='bbox 10 10 5 5'>x</span>", false,
       "Not a hOCR page file: bad bbox \"bbox 10 10 5 5\"", 0},
      {"<div class='ocr_page' title='bbox 5 0 24802222222222 3508'></div>",
       false, "Not a hOCR page file: bad bbox \"bbox 5 0 24802222222222 3508\"",
       0},
      {"<html><body><p>no page</p></body></html>", false,
       "Not a hOCR page file: no ocr_page element", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.hocr);
    cPageModel model;
    std::string err;
    ASSERT_EQ(model.ReadHocr(c.hocr, 200, err), c.ok);
    if (!c.ok) {
      EXPECT_EQ(err, c.expected);
      EXPECT_TRUE(model.Pages.empty());
      continue;
    }
    ASSERT_EQ(model.Pages.size(), 1u);
    EXPECT_EQ(Describe(model.Pages[0]), c.expected);
    EXPECT_EQ(model.Pages[0].Dpi, c.dpi);
  }
}

TEST(PageModelTest, HocrConfidenceAndPageSize) {
  cPageModel model;
  std::string err;
  ASSERT_TRUE(model.ReadHocr(
      "<div class='ocr_page' title='bbox 0 0 1240 1754'>"
      "<span class='ocrx_word' title='bbox 1 2 11 22; x_wconf 42'>x</span>"
      "<span class='ocrx_word' title='bbox 20 2 31 22'>y</span></div>",
      300, err))
      << err;
  EXPECT_EQ(model.Pages[0].Width, 1240);
  EXPECT_EQ(model.Pages[0].Height, 1754);
  EXPECT_FLOAT_EQ(model.Pages[0].Words[0].Confidence, 42.0f);
  EXPECT_FLOAT_EQ(model.Pages[0].Words[1].Confidence, 100.0f);
}

TEST(PageModelTest, GroupsLinesFromBoxes) {
  struct Case {
    std::string name;
    std::vector<cPageWord> words;
    std::string expected;
  };
  const std::vector<Case> cases = {
      {"reading order",
       {{"b", {300, 105, 50, 40}, 90},
        {"c", {100, 200, 50, 40}, 90},
        {"a", {100, 100, 50, 40}, 90}},
       "a@100,100,50,40 b@300,105,50,40 | c@100,200,50,40"},
      // A tall heading beside two small lines takes neither of them.
      {"tall word",
       {{"HEAD", {100, 100, 400, 120}, 90},
        {"one", {1000, 110, 80, 40}, 90},
        {"two", {1000, 170, 80, 40}, 90}},
       "HEAD@100,100,400,120 | one@1000,110,80,40 | two@1000,170,80,40"},
      // Words that merely touch vertically form two lines.
      {"stacked",
       {{"up", {100, 100, 50, 40}, 90}, {"down", {100, 141, 50, 40}, 90}},
       "up@100,100,50,40 | down@100,141,50,40"},
      {"empty words dropped",
       {{"", {0, 0, 10, 10}, 90}, {"x", {5, 5, 10, 10}, 90}},
       "x@5,5,10,10"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    cPage page;
    page.Words = c.words;
    page.GroupLines();
    EXPECT_EQ(Describe(page), c.expected);
  }
}

TEST(PageModelTest, LineTextAndPageText) {
  cPage page;
  page.Words = {{"Total", {100, 500, 80, 40}, 90},
                {"12.50", {200, 500, 80, 40}, 80},
                {"Invoice", {100, 100, 80, 40}, 90}};
  page.GroupLines();
  EXPECT_EQ(page.LineText(0), "Invoice");
  EXPECT_EQ(page.LineText(1), "Total 12.50");
  EXPECT_EQ(page.LineText(7), "");
  EXPECT_EQ(page.Text(), "Invoice\nTotal 12.50");
}

TEST(PageModelTest, ScalesToTemplatePixels) {
  struct Case {
    int dpi;
    cBox in, out;
  };
  const std::vector<Case> cases = {
      {300, {10, 20, 30, 40}, {10, 20, 30, 40}},
      {150, {10, 20, 30, 41}, {20, 40, 60, 82}},
      {600, {10, 21, 30, 40}, {5, 11, 15, 20}},
      {200, {100, 0, 1, 1}, {150, 0, 2, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dpi);
    cPage page;
    page.Dpi = c.dpi;
    EXPECT_EQ(page.ToTemplatePixels(c.in), c.out);
  }
}

TEST(PageModelTest, TsvRoundTrip) {
  cPageModel model;
  std::string err;
  ASSERT_TRUE(model.ReadHocr(
      "<div class='ocr_page' title='bbox 0 0 2480 3508'>"
      "<span class='ocr_line'>"
      "<span class='ocrx_word' title='bbox 100 100 250 140; x_wconf 93'>"
      "Caf&#233;</span>"
      "<span class='ocrx_word' title='bbox 300 100 350 140; x_wconf 12.5'>"
      "1,5</span></span>"
      "<span class='ocr_line'>"
      "<span class='ocrx_word' title='bbox 100 300 250 340'>end</span>"
      "</span></div>",
      300, err))
      << err;
  cPageModel back;
  ASSERT_TRUE(back.ReadTsv(model.WriteTsv(), 300, err)) << err;
  ASSERT_EQ(back.Pages.size(), 1u);
  EXPECT_EQ(Describe(back.Pages[0]), Describe(model.Pages[0]));
  EXPECT_EQ(back.Pages[0].Width, 2480);
  EXPECT_EQ(back.Pages[0].Height, 3508);
  EXPECT_FLOAT_EQ(back.Pages[0].Words[1].Confidence, 12.5f);
  EXPECT_EQ(back.Pages[0].Words[0].Text, "Caf\xE9");
}

TEST(PageModelTest, BoxUnion) {
  struct Case {
    cBox a, b, out;
  };
  const std::vector<Case> cases = {
      {{}, {1, 2, 3, 4}, {1, 2, 3, 4}},
      {{1, 2, 3, 4}, {}, {1, 2, 3, 4}},
      {{10, 10, 10, 10}, {0, 15, 5, 20}, {0, 10, 20, 25}},
  };
  for (const Case& c : cases) {
    cBox box = c.a;
    box.Unite(c.b);
    EXPECT_EQ(box, c.out);
  }
}

}  // namespace
}  // namespace pelinor
