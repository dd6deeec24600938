// Extraction from pages.
//
// - BM_ExtractPage: a 40-field template (zones, a fifth of them anchored)
//   on a page model of 600 words; the aim is under 1 ms per page, OCR
//   excluded. BM_PageModelCopy (copying the same page model) is the floor.
// - BM_ExtractSample: the sample invoice's template (zones, anchors,
//   captions, a pattern search) on its stored OCR model.
// - BM_ReadPdfTextLayer / BM_OcrSampleScan: reading the sample's PDF text
//   layer, and OCR of the 300 dpi sample scans. The scan benchmark also
//   reports field accuracy: the share of the samples' published values that
//   the cleaned fields match exactly, for the scans and for the PDFs
//   (coolblue2 is a PDF only, read with the template made from coolblue1).
// - BM_OcrJobs: two scans OCR'd by one or two threads.

#include <benchmark/benchmark.h>

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/field_data.h"
#include "pelinor/page_extractor.h"
#include "pelinor/page_reader.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"

namespace {

using namespace pelinor;

// prefix + number, built by appending (g++ 12 warns wrongly about
// "literal" + std::to_string()).
std::string Named(const char* prefix, int n) {
  std::string s(prefix);
  s += std::to_string(n);
  return s;
}

std::string Source(const std::string& rel) {
  return std::string(PELINOR_SOURCE_DIR) + "/" + rel;
}

// 30 lines of 20 words; the template's field i reads word (i % 20) of line
// i / 2 + 5.
cPageModel BigPage() {
  cPageModel model;
  cPage page;
  page.Width = 2480;
  page.Height = 3508;
  page.Words.push_back({"ACME", {200, 100, 150, 50}, 95});
  page.Words.push_back({"SUPPLIES", {370, 100, 260, 50}, 95});
  for (int line = 0; line < 30; ++line) {
    for (int w = 0; w < 20; ++w) {
      page.Words.push_back({Named("W", line * 20 + w),
                            {100 + w * 115, 300 + line * 100, 100, 40},
                            90});
    }
  }
  page.GroupLines();
  model.Pages.push_back(std::move(page));
  return model;
}

struct Setup {
  std::shared_ptr<cProfile> profile = std::make_shared<cProfile>();
  std::shared_ptr<cTemplate> tpl = cTemplate::New();
};

Setup FortyFields() {
  Setup s;
  s.profile->Name = "Bench";
  s.tpl->Profile = s.profile;
  s.tpl->TemplateIdentifier = "ACME SUPPLIES";
  s.tpl->TemplateIDDatumX = "200";
  s.tpl->TemplateIDDatumY = "100";
  for (int i = 0; i < 40; ++i) {
    auto ft = std::make_shared<cFieldType>();
    ft->Name = Named("F", i);
    ft->DataType = 1;
    s.profile->FieldTypes.Add(ft);
    auto e = s.tpl->CreateExtractZones();
    e->FieldName = ft->Name;
    const int line = i / 2 + 5;
    auto z = e->CreateExtractZone();
    z->Left(std::to_string(90 + (i % 20) * 115));
    z->Top(std::to_string(290 + line * 100));
    z->Width("120");
    z->Height("60");
    if (i % 5 == 0) {
      auto a = e->CreateAnchorRef();
      a->Name = Named("W", line * 20);
      a->XOffset = z->LeftValue();
      a->YOffset = z->TopValue();
    }
  }
  return s;
}

void BM_PageModelCopy(benchmark::State& state) {
  const cPageModel model = BigPage();
  for (auto _ : state) {
    cPageModel copy = model;
    benchmark::DoNotOptimize(copy);
  }
}
BENCHMARK(BM_PageModelCopy)->Unit(benchmark::kMicrosecond);

void BM_ExtractPage(benchmark::State& state) {
  const cPageModel model = BigPage();
  const Setup s = FortyFields();
  cPageExtractor x;
  size_t found = 0;
  for (auto _ : state) {
    const cTemplateMatch m = x.Locate(model, "bench", s.tpl);
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, s.profile, m, doc, results);
    found = 0;
    for (const cFieldResult& r : results) found += r.Value.empty() ? 0 : 1;
    benchmark::DoNotOptimize(doc);
  }
  state.counters["fields_found"] = static_cast<double>(found);
}
BENCHMARK(BM_ExtractPage)->Unit(benchmark::kMicrosecond);

std::shared_ptr<cProfile> SampleProfile(const std::string& name = "Coolblue") {
  auto p = std::make_shared<cProfile>();
  const std::string file = Source("examples/profiles/" + name + ".ini");
  std::string err;
  p->ReadSettings(name, file, err);
  return p;
}

std::shared_ptr<cTemplate> SampleTemplate(
    const std::shared_ptr<cProfile>& p, const std::string& name = "Coolblue") {
  auto t = cTemplate::New();
  t->Profile = p;
  std::string err;
  t->ReadSettings(Source("examples/templates/" + name + ".tpl"), err);
  return t;
}

void BM_ExtractSample(benchmark::State& state) {
  cPageReader reader;
  cPageModel model;
  std::string err;
  if (!reader.ReadFile(Source("tests/data/extract/coolblue1-scan.tsv"), model,
                       err)) {
    state.SkipWithError(err.c_str());
    return;
  }
  auto profile = SampleProfile();
  auto tpl = SampleTemplate(profile);
  cPageExtractor x;
  for (auto _ : state) {
    const cTemplateMatch m = x.Locate(model, "Coolblue.tpl", tpl);
    std::shared_ptr<cDocumentData> doc;
    std::vector<cFieldResult> results;
    x.Extract(model, profile, m, doc, results);
    benchmark::DoNotOptimize(doc);
  }
}
BENCHMARK(BM_ExtractSample)->Unit(benchmark::kMicrosecond);

void BM_ReadPdfTextLayer(benchmark::State& state) {
  cPageReader reader;
  for (auto _ : state) {
    cPageModel model;
    std::string err;
    if (!reader.ReadFile(Source("examples/samples/coolblue1.pdf"), model,
                         err)) {
      state.SkipWithError(err.c_str());
      return;
    }
    benchmark::DoNotOptimize(model);
  }
}
BENCHMARK(BM_ReadPdfTextLayer)->Unit(benchmark::kMillisecond);

// The published values of examples/samples/NAME.json as the capture run
// writes them (dates day/month/year in the GB locale, amounts with a point
// and two decimals).
struct Sample {
  std::string profile;  // and template
  std::string file;     // examples/samples/FILE.pdf and FILE-scan.png
  std::map<std::string, std::string> published;
  bool scan = true;  // coolblue2 has no scan; its template was made
                     // from coolblue1, so it is the unseen case
};

const std::vector<Sample>& Samples() {
  static const std::vector<Sample> samples = {
      {"Coolblue",
       "coolblue1",
       {{"InvoiceNumber", "993548900"},
        {"InvoiceDate", "19/04/2014"},
        {"TotalAmount", "717.97"},
        {"NetAmount", "593.36"},
        {"VATNumber", "NL810433941B01"},
        {"IBAN", "NL50INGB0683251309"},
        {"ChamberOfCommerce", "24330087"},
        {"BIC", "INGBNL2A"}}},
      {"AzureInterior",
       "AzureInterior",
       {{"InvoiceNumber", "INV/2023/03/0008"},
        {"InvoiceDate", "20/03/2023"},
        {"DueDate", "04/04/2023"},
        {"Reference", "CUSTREF123"},
        {"NetAmount", "262.90"},
        {"TaxAmount", "16.94"},
        {"TotalAmount", "279.84"},
        {"IBAN", "US1234567890"},
        {"PaymentReference", "202309097001"},
        {"SupplierZip", "94538"}}},
      {"Coolblue",
       "coolblue2",
       {{"InvoiceNumber", "992288600"},
        {"InvoiceDate", "29/03/2014"},
        {"TotalAmount", "4904.94"},
        {"NetAmount", "4053.67"},
        {"VATNumber", "NL810433941B01"},
        {"IBAN", "NL50INGB0683251309"},
        {"ChamberOfCommerce", "24330087"},
        {"BIC", "INGBNL2A"}},
       false},
  };
  return samples;
}

// Published values of `s` matched exactly by the cleaned fields of `model`.
int Matched(const Sample& s, const cPageModel& model) {
  auto profile = SampleProfile(s.profile);
  auto tpl = SampleTemplate(profile, s.profile);
  cPageExtractor x;
  std::shared_ptr<cDocumentData> doc;
  std::vector<cFieldResult> results;
  x.Extract(model, profile, x.Locate(model, s.profile, tpl), doc, results);
  CaptureDocument(*doc, cCaptureOptions(), nullptr);
  int hits = 0;
  for (const auto& [name, value] : s.published) {
    int32_t idx = 0;
    std::shared_ptr<cFieldData> f;
    if (doc->Find(name, idx, f) && f->value == value) ++hits;
  }
  return hits;
}

// OCR of one sample scan per iteration; the counters give the share of
// published values matched over the samples, from the scans and from the
// PDFs.
void BM_OcrSampleScan(benchmark::State& state) {
  int scan_hits = 0, scan_total = 0, pdf_hits = 0, pdf_total = 0;
  std::vector<const Sample*> scans;
  for (const Sample& s : Samples()) {
    if (s.scan) scans.push_back(&s);
  }
  size_t i = 0;
  for (auto _ : state) {
    const Sample& s = *scans[i++ % scans.size()];
    cPageReader reader;
    cPageModel model;
    std::string err;
    if (!reader.ReadFile(Source("examples/samples/" + s.file + "-scan.png"),
                         model, err)) {
      state.SkipWithError(err.c_str());
      return;
    }
    state.PauseTiming();
    if (i <= scans.size()) {
      scan_hits += Matched(s, model);
      scan_total += static_cast<int>(s.published.size());
    }
    state.ResumeTiming();
  }
  for (const Sample& s : Samples()) {
    cPageReader reader;
    cPageModel pdf;
    std::string err;
    reader.ReadFile(Source("examples/samples/" + s.file + ".pdf"), pdf, err);
    pdf_hits += Matched(s, pdf);
    pdf_total += static_cast<int>(s.published.size());
  }
  state.counters["scan_fields"] = scan_total;
  state.counters["scan_accuracy"] =
      scan_total ? double(scan_hits) / scan_total : 0;
  state.counters["pdf_fields"] = pdf_total;
  state.counters["pdf_accuracy"] = pdf_total ? double(pdf_hits) / pdf_total : 0;
}
BENCHMARK(BM_OcrSampleScan)->Unit(benchmark::kMillisecond)->Iterations(2);

// The two sample scans read as one document by 1 or 2 threads, each with
// its own reader, as `pelinor process --jobs N` does. Run with
// OMP_THREAD_LIMIT=1 so that Tesseract's own threads do not compete.
void BM_OcrJobs(benchmark::State& state) {
  const std::vector<std::string> files = {
      Source("examples/samples/coolblue1-scan.png"),
      Source("examples/samples/AzureInterior-scan.png")};
  const size_t jobs = static_cast<size_t>(state.range(0));
  for (auto _ : state) {
    std::vector<cPageModel> read(files.size());
    std::atomic<size_t> next{0};
    auto work = [&] {
      cPageReader reader;
      std::string err;
      for (size_t i; (i = next++) < files.size();) {
        reader.ReadFile(files[i], read[i], err);
      }
    };
    std::vector<std::thread> threads;
    for (size_t t = 1; t < jobs; ++t) threads.emplace_back(work);
    work();
    for (std::thread& t : threads) t.join();
    benchmark::DoNotOptimize(read);
  }
  state.counters["pages"] = static_cast<double>(files.size());
}
BENCHMARK(BM_OcrJobs)
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Iterations(1);

}  // namespace
