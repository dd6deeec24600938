// cPageReader: turns page files into a page model (page_model.h).
//
//   - images (PNG, JPEG, TIFF with all its pages, and whatever else
//     Leptonica reads) are OCR'd with Tesseract;
//   - PDF pages give their text layer's words and boxes directly; a page
//     without text is rendered with Poppler and OCR'd;
//   - OCR made elsewhere is read as Tesseract TSV (".tsv") or hOCR (".hocr",
//     ".html", ".htm", or text starting with markup).
//
// The kind of a file is taken from its first bytes, not its name, except
// for TSV, which has no signature. Formats: docs/formats/page-model.md;
// rules: docs/extraction.md.
//
// Limits keep a bad file from exhausting the machine: an image larger than
// `MaxPixels` and a PDF with more than `MaxPages` pages are refused with a
// message before anything is decoded or rendered.
//
// Thread safety: a reader is used by one thread at a time; separate readers
// may run at once (each has its own OCR engine).

#ifndef PELINOR_PAGE_READER_H_
#define PELINOR_PAGE_READER_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/page_model.h"

namespace pelinor {

class cPageReader {
 public:
  cPageReader();
  ~cPageReader();
  cPageReader(const cPageReader&) = delete;
  cPageReader& operator=(const cPageReader&) = delete;

  std::string Language = "eng";       // Tesseract languages, "eng+deu"
  int32_t RenderDpi = kTemplateDpi;   // resolution PDF pages are OCR'd at
  int32_t DefaultDpi = kTemplateDpi;  // images and TSV without their own
  int64_t MaxPixels = 100'000'000;    // per image or rendered page
  int32_t MaxPages = 200;             // per file

  // ReadFile()
  //
  // Appends the pages of `path` to `model`. False with `strErrMsg` set
  // (and `model` unchanged) when the file cannot be read, is of no known
  // kind, breaks a limit, or OCR cannot start.
  bool ReadFile(const std::string& path, cPageModel& model,
                std::string& strErrMsg);

  // OcrPages()
  //
  // Number of pages OCR'd so far by this reader (text-layer pages and
  // TSV/hOCR files are not counted).
  int32_t OcrPages() const { return ocr_pages_; }

 private:
  struct Engine;
  bool ReadImage(const std::string& path, cPageModel& model,
                 std::string& strErrMsg);
  bool ReadPdf(const std::string& path, cPageModel& model,
               std::string& strErrMsg);
  // OCRs an 8/24/32-bit image held as a Leptonica PIX.
  bool Ocr(void* pix, int32_t dpi, cPage& page, std::string& strErrMsg);

  std::unique_ptr<Engine> engine_;
  int32_t ocr_pages_ = 0;
};

}  // namespace pelinor

#endif  // PELINOR_PAGE_READER_H_
