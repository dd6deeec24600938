// The capture of a document whose values are arbitrary texts, one field of
// every data type and pattern kind and a row of cells, in each locale.
// The first byte picks the locale, whether stored values are checked
// again, whether guesses go to review and whether a template overrides
// data types and a pattern; the rest are the values, separated by
// NUL bytes, each optionally led by a byte 1 to 3 that gives its stored
// status (0, 2 or 3, with the message a capture stores with it; otherwise
// 1, not validated).
//
// Properties: capturing the written document again writes the same bytes,
// and so does checking every value again once each accepted value is in
// its stored form; an accepted value validates as it stands; a valid
// value has no message and a changed one is reported changed; the report has
// one entry for each field and cell.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "fuzz_util.h"
#include "pelinor/capture_run.h"
#include "pelinor/document_data.h"
#include "pelinor/extract_zone.h"
#include "pelinor/field_data.h"
#include "pelinor/field_type.h"
#include "pelinor/line_data.h"
#include "pelinor/line_hdr_type.h"
#include "pelinor/profile.h"
#include "pelinor/settings_snapshot.h"
#include "pelinor/template.h"
#include "pelinor/text.h"

namespace {

struct Kind {
  const char* name;
  int32_t type;
  const char* pattern;
};

// Every data type the capture formats, and pattern fields of each shape
// the example profile uses (fixed, optional tail, alternatives, literal
// separators, letters only, none).
constexpr Kind kFields[] = {
    {"Amount4", 4, ""},
    {"Amount200", 200, ""},
    {"Number2", 2, ""},
    {"Number300", 300, ""},
    {"PostCode", 5, ""},
    {"Date3", 3, ""},
    {"Date100", 100, ""},
    {"Date101", 101, ""},
    {"Date102", 102, ""},
    {"Date103", 103, ""},
    {"Date104", 104, ""},
    {"Date105", 105, ""},
    {"Date106", 106, ""},
    {"Date107", 107, ""},
    {"Invoice", 1, "LL000000"},
    {"VAT", 1, "GB000000000(000)"},
    {"Order", 1, "PO000000|PO-000000"},
    {"Sort", 1, "00-00-00"},
    {"Currency", 1, "LLL"},
    {"Free", 1, ""},
};
constexpr Kind kCells[] = {
    {"Description", 1, ""},
    {"Quantity", 2, ""},
    {"UnitPrice", 4, ""},
    {"Code", 1, "LL000"},
};
constexpr const char* kLocales[] = {"GB", "US", "JP"};

// A template's overrides: data types of the same group (a date read in
// another order, an amount read as a comma amount, a number as a comma
// number) and a pattern of its own.
struct Override {
  const char* name;
  int32_t type;
  const char* pattern;
};
constexpr Override kOverrides[] = {
    {"Date3", 101, nullptr},   {"Date100", 106, nullptr},
    {"Date104", 3, nullptr},   {"Amount4", 200, nullptr},
    {"Number2", 300, nullptr}, {"Order", pelinor::kNoOverride, "PO000000"},
};

std::shared_ptr<pelinor::cProfile> MakeProfile() {
  auto profile = std::make_shared<pelinor::cProfile>();
  for (const Kind& k : kFields) {
    auto t = std::make_shared<pelinor::cFieldType>();
    t->Name = k.name;
    t->DataType = k.type;
    t->Pattern = k.pattern;
    profile->FieldTypes.Add(t);
  }
  for (const Kind& k : kCells) {
    auto h = std::make_shared<pelinor::cLineHdrType>();
    h->Name = k.name;
    h->DataType = k.type;
    h->Pattern = k.pattern;
    profile->LineItemHdrs.Add(h);
  }
  return profile;
}

std::shared_ptr<pelinor::cTemplate> MakeTemplate(
    const std::shared_ptr<pelinor::cProfile>& profile) {
  auto tpl = pelinor::cTemplate::New();
  tpl->Profile = profile;
  for (const Override& o : kOverrides) {
    auto z = std::make_shared<pelinor::cExtractZones>();
    z->FieldName = o.name;
    z->DataTypeOverride = o.type;
    if (o.pattern != nullptr) z->PatternOverride = o.pattern;
    tpl->FieldZoneRefs.Add(z);
  }
  return tpl;
}

// Takes a leading status byte off `value` and stores it as a captured
// document would: status 0 without a message, 3 with the review message.
// True when the value was stored as accepted (status 0 or 3).
template <typename Value>
bool SetStored(Value& v, std::string text) {
  v.Status = 1;
  if (!text.empty() && text[0] >= 1 && text[0] <= 3) {
    v.Status = text[0] == 1 ? 0 : text[0] == 2 ? 2 : 3;
    v.StatusMessage = v.Status == 0   ? ""
                      : v.Status == 3 ? "Check: stored earlier"
                                      : "stored as not valid";
    text.erase(0, 1);
  }
  // A value as a tag file gives it: one line, without the spaces around it.
  std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
  v.value = pelinor::Trim(text);
  return v.Status == 0 || v.Status == 3;
}

// Captures the document written at `path` again and returns the bytes it
// writes, "" when it cannot be read.
std::string Recapture(const std::string& path,
                      const std::shared_ptr<pelinor::cProfile>& profile,
                      const std::shared_ptr<pelinor::cTemplate>& tpl,
                      const pelinor::cCaptureOptions& options,
                      const pelinor::cSettingsSnapshot& settings,
                      const char* tag) {
  auto doc = pelinor::cDocumentData::New();
  std::string err;
  if (!doc->ReadSettings(path, err)) return "";
  doc->Profile = profile;
  doc->Template = tpl;
  pelinor::CaptureDocument(*doc, options, &settings);
  const std::string out = pelinor::fuzz::ScratchPath(tag);
  pelinor::fuzz::Check(doc->WriteSettings(out, err),
                       "a recaptured document could not be written");
  return pelinor::fuzz::ReadBytes(out);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  static const auto profile = MakeProfile();
  static const auto with_overrides = MakeTemplate(profile);
  static const std::shared_ptr<const pelinor::cSettingsSnapshot> settings[] = {
      pelinor::cSettingsSnapshot::Make(std::string(kLocales[0]), ""),
      pelinor::cSettingsSnapshot::Make(std::string(kLocales[1]), ""),
      pelinor::cSettingsSnapshot::Make(std::string(kLocales[2]), ""),
  };
  const pelinor::cSettingsSnapshot& snapshot = *settings[data[0] % 3];
  pelinor::cCaptureOptions options;
  options.Recheck = (data[0] & 0x10) != 0;
  options.ReviewGuess = (data[0] & 0x20) != 0;
  const std::shared_ptr<pelinor::cTemplate> tpl =
      (data[0] & 0x40) != 0 ? with_overrides : nullptr;

  constexpr size_t kFieldCount = std::size(kFields);
  constexpr size_t kCellCount = std::size(kCells);
  std::vector<std::string> values =
      pelinor::fuzz::Split(data + 1, size - 1, kFieldCount + kCellCount);

  auto doc = pelinor::cDocumentData::New();
  doc->Profile = profile;
  doc->Template = tpl;
  // Which values were stored as accepted before this capture.
  std::vector<bool> preset(kFieldCount + kCellCount, false);
  for (size_t i = 0; i < kFieldCount; ++i) {
    auto f = doc->CreateField();
    f->Name = kFields[i].name;
    preset[i] = SetStored(*f, values[i]);
  }
  auto row = doc->CreateLineData();
  for (size_t i = 0; i < kCellCount; ++i) {
    auto cell = std::make_shared<pelinor::cLineItemData>();
    cell->Name = kCells[i].name;
    preset[kFieldCount + i] = SetStored(*cell, values[kFieldCount + i]);
    cell->LineData = row;
    row->colLineItemData.Add(cell);
  }

  const pelinor::cCaptureReport report =
      pelinor::CaptureDocument(*doc, options, &snapshot);
  pelinor::fuzz::Check(report.Values.size() == kFieldCount + kCellCount,
                       "the report misses a value");
  for (const pelinor::cCaptureValue& v : report.Values) {
    pelinor::fuzz::Check(v.Status != 0 || v.Message.empty(),
                         "a valid value has a message");
    pelinor::fuzz::Check(v.Changed == (v.Result != v.Raw),
                         "a value's change is misreported");
  }
  // A value the capture accepted is in its stored form: it validates as it
  // stands, and the check leaves it so. One accepted before, and not
  // checked again, is left as it was given.
  {
    const pelinor::ScopedSettingsSnapshot scope(&snapshot);
    std::string log;
    size_t i = 0;
    const auto check_accepted = [&](const auto& values) {
      for (const auto& v : values) {
        if (v->Status == 0 && (!preset[i] || options.Recheck)) {
          const std::string stored = v->value;
          pelinor::fuzz::Check(v->Validate(log) && v->value == stored,
                               "an accepted value does not validate as stored");
        }
        ++i;
      }
    };
    check_accepted(doc->Fields);
    check_accepted(row->colLineItemData);
  }

  std::string err;
  const std::string first = pelinor::fuzz::ScratchPath("captured");
  pelinor::fuzz::Check(doc->WriteSettings(first, err),
                       "a captured document could not be written");
  const std::string written = pelinor::fuzz::ReadBytes(first);
  pelinor::fuzz::Check(
      Recapture(first, profile, tpl, options, snapshot, "again") == written,
      "capturing a captured document changed it");
  // Checked again, every value the capture accepted stays as it is. A
  // value stored as accepted before this capture may not be in its stored
  // form: the first check cleans it, and a second changes nothing.
  pelinor::cCaptureOptions recheck = options;
  recheck.Recheck = true;
  const std::string rechecked =
      Recapture(first, profile, tpl, recheck, snapshot, "rechecked");
  if (std::find(preset.begin(), preset.end(), true) != preset.end()) {
    const std::string once =
        pelinor::fuzz::WriteScratch("rechecked-once", rechecked);
    pelinor::fuzz::Check(Recapture(once, profile, tpl, recheck, snapshot,
                                   "rechecked-twice") == rechecked,
                         "checking a rechecked document again changed it");
  } else {
    pelinor::fuzz::Check(rechecked == written,
                         "checking a captured document again changed it");
  }
  return 0;
}
