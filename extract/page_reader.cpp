// cPageReader: page images through Leptonica and Tesseract, PDFs through
// Poppler, and OCR output files (Tesseract TSV, hOCR).
//
// Formats: docs/formats/page-model.md.

#include "pelinor/page_reader.h"

#include <leptonica/allheaders.h>
#include <poppler/cpp/poppler-document.h>
#include <poppler/cpp/poppler-global.h>
#include <poppler/cpp/poppler-image.h>
#include <poppler/cpp/poppler-page-renderer.h>
#include <poppler/cpp/poppler-page.h>
#include <tesseract/baseapi.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>

#include "pelinor/text.h"

namespace pelinor {
namespace {

// Files of OCR output larger than this are refused unread.
constexpr std::uintmax_t kMaxTextFileBytes = 256u << 20;

// Leptonica and Poppler report problems on standard error; the reader
// reports its own messages instead.
void QuietLibraries() {
  static std::once_flag once;
  std::call_once(once, [] {
    setMsgSeverity(L_SEVERITY_NONE);
    poppler::set_debug_error_function([](const std::string&, void*) {},
                                      nullptr);
  });
}

struct PixDeleter {
  void operator()(PIX* p) const { pixDestroy(&p); }
};
using PixPtr = std::unique_ptr<PIX, PixDeleter>;

bool ReadHead(const std::string& path, std::string& head, size_t n) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  head.assign(n, '\0');
  in.read(head.data(), static_cast<std::streamsize>(n));
  head.resize(static_cast<size_t>(in.gcount()));
  return true;
}

bool ReadWhole(const std::string& path, std::string& text,
               std::string& strErrMsg) {
  std::error_code ec;
  const auto size = std::filesystem::file_size(path, ec);
  if (ec) {
    strErrMsg = "Cannot read page file " + path;
    return false;
  }
  if (size > kMaxTextFileBytes) {
    strErrMsg = "Page file too large: " + path;
    return false;
  }
  std::ifstream in(path, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  if (!in && !in.eof()) {
    strErrMsg = "Cannot read page file " + path;
    return false;
  }
  text = s.str();
  return true;
}

bool EndsWithIgnoreCase(const std::string& s, std::string_view suffix) {
  return s.size() >= suffix.size() &&
         EqualsIgnoreCase(std::string_view(s).substr(s.size() - suffix.size()),
                          suffix);
}

// Makes `pix` something Tesseract takes: 1, 8 or 32 bits, no colour map.
PixPtr ForOcr(PixPtr pix) {
  if (pixGetColormap(pix.get()) != nullptr) {
    pix.reset(pixRemoveColormap(pix.get(), REMOVE_CMAP_BASED_ON_SRC));
  }
  if (!pix) return pix;
  const l_int32 d = pixGetDepth(pix.get());
  if (d == 2 || d == 4 || d == 16) pix.reset(pixConvertTo8(pix.get(), 0));
  if (pix && pixGetDepth(pix.get()) == 24) {
    pix.reset(pixConvertTo32(pix.get()));
  }
  return pix;
}

}  // namespace

struct cPageReader::Engine {
  tesseract::TessBaseAPI api;
  std::string language;
  bool ready = false;
};

cPageReader::cPageReader() { QuietLibraries(); }
cPageReader::~cPageReader() = default;

bool cPageReader::ReadFile(const std::string& path, cPageModel& model,
                           std::string& strErrMsg) {
  strErrMsg.clear();
  std::string head;
  if (!ReadHead(path, head, 1024)) {
    strErrMsg = "Cannot read page file " + path;
    return false;
  }
  if (head.empty()) {
    strErrMsg = "Empty page file " + path;
    return false;
  }
  if (head.find("%PDF-") != std::string::npos) {
    return ReadPdf(path, model, strErrMsg);
  }
  const bool markup = EndsWithIgnoreCase(path, ".hocr") ||
                      EndsWithIgnoreCase(path, ".html") ||
                      EndsWithIgnoreCase(path, ".htm") ||
                      std::string_view(Trim(head)).substr(0, 1) == "<";
  if (markup || EndsWithIgnoreCase(path, ".tsv")) {
    std::string text;
    if (!ReadWhole(path, text, strErrMsg)) return false;
    cPageModel read;
    const bool ok = markup ? read.ReadHocr(text, DefaultDpi, strErrMsg)
                           : read.ReadTsv(text, DefaultDpi, strErrMsg);
    if (!ok) {
      strErrMsg = path + ": " + strErrMsg;
      return false;
    }
    if (static_cast<int32_t>(read.Pages.size()) > MaxPages) {
      strErrMsg = path + ": " + std::to_string(read.Pages.size()) +
                  " pages; at most " + std::to_string(MaxPages) + " are read";
      return false;
    }
    for (cPage& p : read.Pages) model.Pages.push_back(std::move(p));
    return true;
  }
  return ReadImage(path, model, strErrMsg);
}

bool cPageReader::ReadImage(const std::string& path, cPageModel& model,
                            std::string& strErrMsg) {
  l_int32 format = 0;
  if (findFileFormat(path.c_str(), &format) != 0 || format == IFF_UNKNOWN) {
    strErrMsg = "Not a page image, PDF, TSV or hOCR file: " + path;
    return false;
  }
  l_int32 pages = 1;
  if (L_FORMAT_IS_TIFF(format)) {
    FILE* f = std::fopen(path.c_str(), "rb");
    if (f == nullptr || tiffGetCount(f, &pages) != 0) pages = 0;
    if (f != nullptr) std::fclose(f);
    if (pages <= 0) {
      strErrMsg = "Cannot read image " + path;
      return false;
    }
  }
  if (pages > MaxPages) {
    strErrMsg = path + ": " + std::to_string(pages) + " pages; at most " +
                std::to_string(MaxPages) + " are read";
    return false;
  }
  // Sizes first, so a huge image is refused before it is decoded.
  for (l_int32 n = 0; n < pages; ++n) {
    l_int32 w = 0, h = 0, bps = 0, spp = 0, res = 0, cmap = 0, fmt = 0;
    const bool ok =
        L_FORMAT_IS_TIFF(format)
            ? readHeaderTiff(path.c_str(), n, &w, &h, &bps, &spp, &res, &cmap,
                             &fmt) == 0
            : pixReadHeader(path.c_str(), &fmt, &w, &h, &bps, &spp, &cmap) == 0;
    if (!ok || w <= 0 || h <= 0) {
      strErrMsg = "Cannot read image " + path;
      return false;
    }
    if (static_cast<int64_t>(w) * h > MaxPixels) {
      strErrMsg = "Image too large: " + path + " page " +
                  std::to_string(n + 1) + " is " + std::to_string(w) + " x " +
                  std::to_string(h) + " pixels; at most " +
                  std::to_string(MaxPixels) + " pixels are read";
      return false;
    }
  }
  std::vector<cPage> read;
  for (l_int32 n = 0; n < pages; ++n) {
    PixPtr pix(L_FORMAT_IS_TIFF(format) ? pixReadTiff(path.c_str(), n)
                                        : pixRead(path.c_str()));
    if (!pix) {
      strErrMsg = "Cannot read image " + path;
      return false;
    }
    const l_int32 xres = pixGetXRes(pix.get());
    const int32_t dpi = xres >= 50 && xres <= 4800 ? xres : DefaultDpi;
    pix = ForOcr(std::move(pix));
    cPage page;
    if (!pix || !Ocr(pix.get(), dpi, page, strErrMsg)) {
      if (strErrMsg.empty()) strErrMsg = "Cannot read image " + path;
      return false;
    }
    read.push_back(std::move(page));
  }
  for (cPage& p : read) model.Pages.push_back(std::move(p));
  return true;
}

bool cPageReader::Ocr(void* image, int32_t dpi, cPage& page,
                      std::string& strErrMsg) {
  PIX* pix = static_cast<PIX*>(image);
  if (!engine_ || engine_->language != Language) {
    engine_ = std::make_unique<Engine>();
    engine_->language = Language;
    engine_->api.SetVariable("debug_file", "/dev/null");
    if (engine_->api.Init(nullptr, Language.c_str(),
                          tesseract::OEM_LSTM_ONLY) != 0) {
      engine_.reset();
      strErrMsg = "Cannot start OCR for language \"" + Language +
                  "\" (is its tesseract-ocr language package installed?)";
      return false;
    }
    engine_->api.SetVariable("debug_file", "/dev/null");
    engine_->api.SetPageSegMode(tesseract::PSM_AUTO);
    engine_->ready = true;
  }
  tesseract::TessBaseAPI& api = engine_->api;
  api.SetImage(pix);
  api.SetSourceResolution(dpi);
  if (api.Recognize(nullptr) != 0) {
    api.Clear();
    strErrMsg = "OCR failed";
    return false;
  }
  std::unique_ptr<char[]> tsv(api.GetTSVText(0));
  api.Clear();
  ++ocr_pages_;
  cPageModel one;
  if (tsv != nullptr && tsv[0] != '\0') {
    if (!one.ReadTsv(tsv.get(), dpi, strErrMsg)) return false;
  }
  page = one.Pages.empty() ? cPage() : std::move(one.Pages.front());
  page.Width = pixGetWidth(pix);
  page.Height = pixGetHeight(pix);
  page.Dpi = dpi;
  return true;
}

bool cPageReader::ReadPdf(const std::string& path, cPageModel& model,
                          std::string& strErrMsg) {
  std::unique_ptr<poppler::document> doc(
      poppler::document::load_from_file(path));
  if (!doc) {
    strErrMsg = "Cannot read PDF " + path;
    return false;
  }
  if (doc->is_locked()) {
    strErrMsg = "PDF is password protected: " + path;
    return false;
  }
  const int n = doc->pages();
  if (n <= 0) {
    strErrMsg = "PDF has no pages: " + path;
    return false;
  }
  if (n > MaxPages) {
    strErrMsg = path + ": " + std::to_string(n) + " pages; at most " +
                std::to_string(MaxPages) + " are read";
    return false;
  }
  const double scale = kTemplateDpi / 72.0;
  std::vector<cPage> read;
  for (int i = 0; i < n; ++i) {
    std::unique_ptr<poppler::page> pg(doc->create_page(i));
    if (!pg) {
      strErrMsg =
          "Cannot read page " + std::to_string(i + 1) + " of PDF " + path;
      return false;
    }
    const poppler::rectf rect = pg->page_rect();
    cPage page;
    page.Dpi = kTemplateDpi;
    page.Width = static_cast<int32_t>(std::lround(rect.width() * scale));
    page.Height = static_cast<int32_t>(std::lround(rect.height() * scale));
    for (const poppler::text_box& tb : pg->text_list()) {
      const poppler::byte_array utf8 = tb.text().to_utf8();
      std::string text = WordText(std::string_view(utf8.data(), utf8.size()));
      if (text.empty()) continue;
      const poppler::rectf b = tb.bbox();
      cPageWord w;
      w.Text = std::move(text);
      w.Box = {static_cast<int32_t>(std::lround(b.left() * scale)),
               static_cast<int32_t>(std::lround(b.top() * scale)),
               static_cast<int32_t>(std::lround(b.width() * scale)),
               static_cast<int32_t>(std::lround(b.height() * scale))};
      w.Confidence = 100;
      page.Words.push_back(std::move(w));
    }
    if (!page.Words.empty()) {
      page.GroupLines();
      read.push_back(std::move(page));
      continue;
    }
    // No text layer: render and OCR.
    const double px = rect.width() * RenderDpi / 72.0;
    const double py = rect.height() * RenderDpi / 72.0;
    if (px * py > static_cast<double>(MaxPixels)) {
      strErrMsg = "Page " + std::to_string(i + 1) + " of PDF " + path +
                  " is too large to render at " + std::to_string(RenderDpi) +
                  " dpi";
      return false;
    }
    poppler::page_renderer renderer;
    renderer.set_render_hints(poppler::page_renderer::antialiasing |
                              poppler::page_renderer::text_antialiasing);
    const poppler::image img =
        renderer.render_page(pg.get(), RenderDpi, RenderDpi);
    if (!img.is_valid() || img.format() != poppler::image::format_argb32) {
      strErrMsg =
          "Cannot render page " + std::to_string(i + 1) + " of PDF " + path;
      return false;
    }
    PixPtr pix(pixCreate(img.width(), img.height(), 8));
    if (!pix) {
      strErrMsg =
          "Cannot render page " + std::to_string(i + 1) + " of PDF " + path;
      return false;
    }
    for (int y = 0; y < img.height(); ++y) {
      const auto* row = reinterpret_cast<const uint8_t*>(img.const_data()) +
                        static_cast<size_t>(y) * img.bytes_per_row();
      l_uint32* line = pixGetData(pix.get()) + y * pixGetWpl(pix.get());
      for (int x = 0; x < img.width(); ++x) {
        // ARGB32 in native order: blue, green, red, alpha on little endian.
        const uint8_t* p = row + 4 * x;
        const int grey = (p[0] * 29 + p[1] * 150 + p[2] * 77) >> 8;
        SET_DATA_BYTE(line, x, grey);
      }
    }
    pixSetResolution(pix.get(), RenderDpi, RenderDpi);
    if (!Ocr(pix.get(), RenderDpi, page, strErrMsg)) return false;
    read.push_back(std::move(page));
  }
  for (cPage& p : read) model.Pages.push_back(std::move(p));
  return true;
}

}  // namespace pelinor
