// Page files: arbitrary bytes read as Tesseract TSV and as hOCR. A model
// that reads writes as TSV and reads back to the same words, boxes and
// lines; extraction over it (identification, zones, anchors, captions,
// search) runs to completion.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "fuzz_util.h"
#include "pelinor/page_extractor.h"
#include "pelinor/page_model.h"

using pelinor::cPageModel;
using pelinor::fuzz::Check;

namespace {

// Appends the parts one by one (g++ 12 warns wrongly about chains of
// std::string + std::to_string()).
std::string Describe(const cPageModel& model) {
  std::string out;
  auto num = [&out](int32_t v, char after) {
    out += std::to_string(v);
    out.push_back(after);
  };
  for (const auto& page : model.Pages) {
    out += "page ";
    num(page.Width, 'x');
    num(page.Height, '\n');
    for (size_t l = 0; l < page.Lines.size(); ++l) {
      for (int32_t w : page.Lines[l].Words) {
        const auto& word = page.Words[w];
        out += word.Text;
        out.push_back('@');
        num(word.Box.Left, ',');
        num(word.Box.Top, ',');
        num(word.Box.Width, ',');
        num(word.Box.Height, ' ');
      }
      out.push_back('\n');
    }
  }
  return out;
}

void Extract(const cPageModel& model) {
  auto profile = std::make_shared<pelinor::cProfile>();
  const char* captions[] = {"Invoice", "Total", ""};
  const char* names[] = {"F0", "F1", "F2"};
  for (int i = 0; i < 3; ++i) {
    auto ft = std::make_shared<pelinor::cFieldType>();
    ft->Name = names[i];
    ft->DataType = i == 1 ? 4 : 1;
    ft->DataLocation = i == 2 ? -6 : 0;
    ft->CaptionSearch = captions[i];
    ft->Pattern = i == 2 ? "LL00" : "";
    profile->FieldTypes.Add(ft);
  }
  auto tpl = pelinor::cTemplate::New();
  tpl->Profile = profile;
  tpl->TemplateIdentifier = "ACME INVOICE";
  tpl->TemplateIDDatumX = "100";
  tpl->TemplateIDDatumY = "100";
  auto e = tpl->CreateExtractZones();
  e->FieldName = "F0";
  auto z = e->CreateExtractZone();
  z->Left("0");
  z->Top("0");
  z->Width("2000");
  z->Height("2000");
  e->CreateAnchorRef()->Name = "Total";
  pelinor::cPageExtractor x;
  std::shared_ptr<pelinor::cDocumentData> doc;
  std::vector<pelinor::cFieldResult> results;
  x.Extract(model, profile, x.Locate(model, "t", tpl), doc, results);
  Check(results.size() == 3, "one result per field");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  for (int kind = 0; kind < 2; ++kind) {
    cPageModel model;
    std::string err;
    const bool ok = kind == 0 ? model.ReadTsv(text, 300, err)
                              : model.ReadHocr(text, 300, err);
    if (!ok) {
      Check(model.Pages.empty(), "a failed read adds no page");
      continue;
    }
    cPageModel back;
    Check(back.ReadTsv(model.WriteTsv(), 300, err), "written TSV reads");
    Check(Describe(back) == Describe(model), "TSV round trip");
    Extract(model);
  }
  return 0;
}
