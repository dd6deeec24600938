// Reading and writing a large template: 1,000 field entries (each with an
// anchor, two overrides and two zones), 100 pseudo fields and 20 line
// tables of six columns, with rules, conditions and line headers (about
// 0.4 MB, CR LF line ends).
//
// Both directions must stay linear in the size of the file: the reader
// takes each line once, in order, and the writer builds the file in one
// pass beside its target.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <string>

#include "pelinor/template.h"

namespace {

std::shared_ptr<pelinor::cTemplate> LargeTemplate(int fields, int tables) {
  auto t = pelinor::cTemplate::New();
  t->TemplateIdentifier = "LARGE SUPPLIER INVOICE";
  t->PelinorProfile = "Invoices";
  t->FlattenDuplex(1);
  for (int i = 1; i <= fields; ++i) {
    auto e = t->CreateExtractZones();
    e->FieldName = "Field" + std::to_string(i);
    e->CreateAnchorRef()->Name = "Caption " + std::to_string(i);
    e->DataTypeOverride = 4;
    e->PatternOverride = "000-000";
    for (int z = 0; z < 2; ++z) {
      auto zone = e->CreateExtractZone();
      zone->Left(std::to_string(100 + i));
      zone->Top(std::to_string(200 + 80 * z));
      zone->Width("600");
      zone->Height("70");
    }
  }
  for (int i = 1; i <= fields / 10; ++i) {
    auto e = t->CreatePseudoExtractZones();
    e->FieldName = "Pseudo" + std::to_string(i);
    e->CaptionSearch = "Caption";
    e->DataLocationOverride = 0;
    e->CreateExtractZone()->Left("10");
  }
  for (int i = 1; i <= tables; ++i) {
    auto table = t->CreateLineTable();
    table->Left = 100;
    table->Top = 900 + i;
    table->Width = 2200;
    table->Height = 1800;
    table->Location = pelinor::kLocationAll;
    table->CreateTopAnchorRef()->Name = "Description";
    table->IgnorePages.Add(3);
    for (int c = 1; c <= 6; ++c) {
      auto col = table->CreateColumn();
      col->Left = 100 * c;
      col->Width = 100;
      col->Name = "Column" + std::to_string(c);
    }
  }
  t->CreateLineDataRules()->PropagateFrom = "Description";
  auto start = t->CreateLineDataCondition();
  start->Name = "Quantity";
  start->Operation = "NOT EMPTY";
  t->CreateLineHeader()->Name = "Quantity";
  return t;
}

std::string TempPath(const char* name) {
  return "/tmp/pelinor_template_bench_" + std::to_string(getpid()) + name;
}

void BM_TemplateWriteSettings(benchmark::State& state) {
  const auto t = LargeTemplate(static_cast<int>(state.range(0)), 20);
  const std::string path = TempPath("_w.tpl");
  std::string err;
  for (auto _ : state) {
    if (!t->WriteSettings(path, err)) state.SkipWithError(err.c_str());
  }
  std::remove(path.c_str());
}
BENCHMARK(BM_TemplateWriteSettings)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

void BM_TemplateReadSettings(benchmark::State& state) {
  const std::string path = TempPath("_r.tpl");
  std::string err;
  LargeTemplate(static_cast<int>(state.range(0)), 20)->WriteSettings(path, err);
  for (auto _ : state) {
    auto t = pelinor::cTemplate::New();
    if (!t->ReadSettings(path, err)) state.SkipWithError(err.c_str());
    benchmark::DoNotOptimize(t->FieldZoneRefs.Count());
  }
  std::remove(path.c_str());
}
BENCHMARK(BM_TemplateReadSettings)
    ->Arg(100)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
