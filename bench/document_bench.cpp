// Document tag files: reading and writing a large document, reading and
// writing the example invoice against copying it, and the capture of one
// example invoice (validate and format every field).

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "pelinor/document_data.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"
#include "pelinor/text_file.h"

namespace {

using pelinor::cDocumentData;

std::string Example(const std::string& name) {
  return std::string(PELINOR_SOURCE_DIR) + "/examples/" + name;
}

char generated_path[64];

void RemoveGenerated() { std::remove(generated_path); }

// A large document written once as a tag file: the example invoice with
// 10,000 fields and 1,000 line-item rows of 5 cells.
const std::string& LargeTagFile() {
  static const std::string path = [] {
    std::snprintf(generated_path, sizeof generated_path,
                  "/tmp/pelinor-bench-document-%ld.tag",
                  static_cast<long>(getpid()));
    auto doc = cDocumentData::New();
    std::string err;
    doc->ReadSettings(Example("documents/INV0001.tag"), err);
    for (int i = 0; i < 10000; ++i) {
      auto field = doc->CreateField();
      field->Name = "Amount" + std::to_string(i);
      field->value = "1,234.5" + std::to_string(i % 10);
      field->Left = 100 + i;
      field->Top = 200 + i;
      field->Width = 300;
      field->Height = 40;
    }
    static const char* const kColumns[] = {"Code", "Description", "Quantity",
                                           "Price", "Total"};
    doc->ClearLineItems();
    for (int row = 0; row < 1000; ++row) {
      auto line = doc->CreateLineData();
      line->Left = 50;
      line->Top = 1000 + 30 * row;
      line->Width = 2000;
      line->Height = 28;
      for (int col = 0; col < 5; ++col) {
        auto cell = std::make_shared<pelinor::cLineItemData>();
        cell->LineData = line;
        cell->Name = kColumns[col];
        cell->value = col == 1 ? "Widget, blue, boxed " + std::to_string(row)
                               : std::to_string(row * 7 + col) + ".50";
        cell->Left = 50 + 400 * col;
        cell->Top = line->Top;
        cell->Width = 380;
        cell->Height = 28;
        cell->ColumnIndex = col + 1;
        line->colLineItemData.Add(cell);
      }
    }
    doc->WriteSettings(generated_path, err);
    std::atexit(RemoveGenerated);
    return std::string(generated_path);
  }();
  return path;
}

// The size of a file the benchmark wrote itself.
int64_t FileSize(const std::string& path) {
  return static_cast<int64_t>(std::filesystem::file_size(path));
}

void BM_TagFileRead(benchmark::State& state) {
  const std::string& path = LargeTagFile();
  std::string err;
  for (auto _ : state) {
    auto doc = cDocumentData::New();
    bool ok = doc->ReadSettings(path, err);
    benchmark::DoNotOptimize(ok);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          FileSize(path));
}
BENCHMARK(BM_TagFileRead)->Unit(benchmark::kMillisecond);

void BM_TagFileWrite(benchmark::State& state) {
  auto doc = cDocumentData::New();
  std::string err;
  doc->ReadSettings(LargeTagFile(), err);
  const std::string out = LargeTagFile() + ".out";
  for (auto _ : state) {
    bool ok = doc->WriteSettings(out, err);
    benchmark::DoNotOptimize(ok);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                          FileSize(out));
  std::remove(out.c_str());
}
BENCHMARK(BM_TagFileWrite)->Unit(benchmark::kMillisecond);

// Where the example benchmarks write: a file of this process in /tmp.
std::string ExampleOutPath() {
  return "/tmp/pelinor-bench-example-" + std::to_string(getpid()) + ".tag";
}

// The example invoice (3 KB) read and written back as a document, one
// file after another as a batch does, against the floor of copying the
// same file through the same reader and writer without parsing it.
void BM_ExampleTagFileReadWrite(benchmark::State& state) {
  const std::string in = Example("documents/INV0001.tag");
  const std::string out = ExampleOutPath();
  std::string err;
  for (auto _ : state) {
    auto doc = cDocumentData::New();
    bool ok = doc->ReadSettings(in, err) && doc->WriteSettings(out, err);
    benchmark::DoNotOptimize(ok);
  }
  state.SetItemsProcessed(state.iterations());
  std::remove(out.c_str());
}
BENCHMARK(BM_ExampleTagFileReadWrite)->Unit(benchmark::kMicrosecond);

void BM_ExampleTagFileCopyFloor(benchmark::State& state) {
  const std::string in = Example("documents/INV0001.tag");
  const std::string out = ExampleOutPath();
  for (auto _ : state) {
    pelinor::TextReader r;
    pelinor::TextWriter w;
    bool ok = r.Open(in) && w.Create(out);
    if (ok) w.Write(r.Data());
    ok = ok && w.Commit();
    benchmark::DoNotOptimize(ok);
  }
  state.SetItemsProcessed(state.iterations());
  std::remove(out.c_str());
}
BENCHMARK(BM_ExampleTagFileCopyFloor)->Unit(benchmark::kMicrosecond);

// Validates and formats every field of the example invoice, as the
// capture run does, with the example profile, template and registry.
void BM_CaptureInvoiceFields(benchmark::State& state) {
  setenv("PELINOR_REGISTRY", Example("registry.reg").c_str(), 1);
  std::string err;
  auto profile = std::make_shared<pelinor::cProfile>();
  profile->ReadSettings("Invoices", Example("profiles/Invoices.ini"), err);
  auto tpl = pelinor::cTemplate::New();
  tpl->Profile = profile;
  tpl->ReadSettings(Example("templates/AcmeSupplies.tpl"), err);
  auto original = cDocumentData::New();
  original->ReadSettings(Example("documents/INV0001.tag"), err);
  std::string log;
  for (auto _ : state) {
    state.PauseTiming();
    auto doc = cDocumentData::New();
    doc->ReadSettings(Example("documents/INV0001.tag"), err);
    doc->Profile = profile;
    doc->Template = tpl;
    state.ResumeTiming();
    for (const auto& field : doc->Fields) {
      if (field->Validate(log)) field->FormatDataValue();
    }
  }
  state.counters["fields"] = static_cast<double>(original->Fields.Count());
}
BENCHMARK(BM_CaptureInvoiceFields)->Unit(benchmark::kMicrosecond);

}  // namespace
