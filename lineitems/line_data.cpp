// Reader and writer of the line rows and cells of the document tag file.
// Format: docs/formats/document.md ("Line rows").

#include "pelinor/line_data.h"

#include <string>

#include "lineitems/tag_records.h"
#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/numeric.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/registry.h"
#include "pelinor/settings_snapshot.h"

namespace pelinor {

using namespace tag_records;  // NOLINT(build/namespaces)

bool IsAmountType(int32_t code) {
  return code == 2 || code == 4 || code == 200 || code == 300;
}

bool IsDateType(int32_t code) {
  return code == 3 || (code >= 100 && code <= 107);
}

namespace {

// The answer of a record writer: false with the line section's message
// once the file has failed.
bool Written(const TextWriter& hFile, std::string& strErrMsg) {
  if (hFile.ok()) return true;
  strErrMsg = kDocTagsLineWriteError;
  return false;
}

}  // namespace

// ---------------------------------------------------------------------------
// cLineItemData
// ---------------------------------------------------------------------------

std::string cLineItemData::EffectivePattern() const {
  auto row = LineData.lock();
  if (!row) return "";
  auto doc = row->Document.lock();
  if (!doc) return "";
  for (const auto& hdr : doc->LineHeaders) {
    if (hdr && EqualsIgnoreCase(hdr->Name, Name)) return hdr->Pattern;
  }
  if (doc->Profile) {
    std::shared_ptr<cLineHdrType> hdr;
    int32_t idx = 0;
    if (doc->Profile->FindLineItemHdr(Name, hdr, idx) && hdr) {
      return hdr->Pattern;
    }
  }
  return "";
}

bool cLineItemData::Validate(const std::string& LogFile) {
  return Validate(LogFile, nullptr);
}

bool cLineItemData::Validate(const std::string& LogFile, cRepairTrace* trace) {
  cFormat format;
  if (IsAmountType(DataType)) return format.ValidateAmount(value);
  if (IsDateType(DataType)) {
    return format.ValidateDate(value, ReadServerSetting(kLocaleValue, "GB"));
  }
  if (DataType == 5) return format.ValidatePostCode(value);
  const std::string pattern = EffectivePattern();
  if (pattern.empty()) return true;
  AppendLogLine(LogFile, "Validation on string");
  std::string out, err;
  return EvaluatePattern(value, pattern, false, true, true, false, out, err,
                         LogFile, trace);
}

void cLineItemData::FormatDataValue(const std::string& LogFile) {
  FormatDataValue(LogFile, nullptr);
}

void cLineItemData::FormatDataValue(const std::string& LogFile,
                                    cRepairTrace* trace) {
  cFormat format;
  std::string copy = value;
  std::string out;
  bool ok = false;
  if (DataType == 2 || DataType == 300) {
    ok = format.FormatNumeric(copy, out, DataType, trace);
  } else if (DataType == 4 || DataType == 200) {
    ok = format.FormatAmount(copy, out, DataType, trace);
  } else if (DataType == 5) {
    ok = format.FormatPostCode(copy, out, DataType, trace);
  } else if (IsDateType(DataType)) {
    cPatternEngine engine;
    engine.CoerceDate(copy, out, format.FormatDescr(DataType), ok, trace);
  } else {
    const std::string pattern = EffectivePattern();
    if (pattern.empty()) return;
    AppendLogLine(LogFile, "Line level OCR extraction on string (coerce)");
    std::string err;
    if (trace == nullptr) {
      ok = EvaluatePattern(copy, pattern, true, true, false, false, out, err,
                           LogFile);
    } else if (const cSettingsSnapshot* s = cSettingsSnapshot::Current()) {
      ok = EvaluatePattern(copy, pattern, true, true, false, false, out, err,
                           LogFile, *s, trace);
    } else {
      cPatternEngine engine;
      ok = EvaluatePatternWith(engine, copy, pattern, true, true, false, false,
                               out, err, LogFile, trace);
    }
  }
  if (ok) value = out;
}

bool cLineItemData::WriteSettings(int32_t lLineIdx, int32_t lColumnIdx,
                                  TextWriter& hFile,
                                  std::string& strErrMsg) const {
  strErrMsg.clear();
  hFile.WriteLineParts({"Line", lLineIdx, "Col", lColumnIdx, "Name:", Name});
  hFile.WriteLineParts({"Line", lLineIdx, "Col", lColumnIdx, "Value:", value});
  hFile.WriteLineParts(
      {"Line", lLineIdx, "Col", lColumnIdx, "Status:", Status});
  hFile.WriteLineParts(
      {"Line", lLineIdx, "Col", lColumnIdx, "Message:", StatusMessage});
  return Written(hFile, strErrMsg);
}

bool cLineItemData::ReadSettings(int32_t /*lLineIdx*/, int32_t /*lColumnIdx*/,
                                 TextReader& hFile, std::string& strErrMsg,
                                 const std::string& strVer) {
  strErrMsg.clear();
  float ver = 0;
  if (!Version(strVer, ver)) {
    strErrMsg = kInvalidVersionError;
    return false;
  }
  if (!ReadItemValue(hFile, Name) || !ReadLineValue(hFile, value) ||
      !ReadItemLong(hFile, Status) || !ReadLineValue(hFile, StatusMessage)) {
    strErrMsg = kDocTagsReadError;
    return false;
  }
  return true;
}

// ---------------------------------------------------------------------------
// cLineData
// ---------------------------------------------------------------------------

void cLineData::CreateLineDataColumns() {
  auto doc = Document.lock();
  if (!doc || !doc->Profile) return;
  for (const auto& hdr : doc->Profile->LineItemHdrs) {
    if (!hdr) continue;
    auto cell = std::make_shared<cLineItemData>();
    cell->Name = hdr->Name;
    cell->DataType = hdr->DataType;
    cell->Flags = hdr->DataFlags;
    cell->LineData = weak_from_this();
    colLineItemData.Add(std::move(cell));
  }
}

bool cLineData::FindLineItem(const std::string& Name, int32_t& LineItDataIdx,
                             std::shared_ptr<cLineItemData>& LineItData) const {
  for (int i = 1; i <= colLineItemData.Count(); ++i) {
    const auto& cell = colLineItemData.Item(i);
    if (cell && EqualsIgnoreCase(cell->Name, Name)) {
      LineItDataIdx = i;
      LineItData = cell;
      return true;
    }
  }
  return false;
}

void cLineData::ClearLineItems() {
  for (int i = colLineItemData.Count(); i >= 1; --i) {
    if (const auto& cell = colLineItemData.Item(i)) cell->ResetOptionItems();
    colLineItemData.Remove(i);
  }
}

bool cLineData::WriteSettings(int32_t lLineIdx, TextWriter& hFile,
                              std::string& strErrMsg) const {
  strErrMsg.clear();
  hFile.WriteLineParts({"Line", lLineIdx, "Status:", Status});
  hFile.WriteLineParts({"Line", lLineIdx, "Message:", StatusMessage});
  hFile.WriteLineParts(
      {"Line", lLineIdx, "Coords:", Left, ":", Top, ":", Width, ":", Height});
  hFile.WriteLineParts({"Line", lLineIdx, "DataLocation:", Location});
  if (!Written(hFile, strErrMsg)) return false;
  // Empty cells are left out and the others numbered without gaps, as
  // the reader numbers them.
  int32_t col = 0;
  for (const auto& cell : colLineItemData) {
    if (cell && !cell->WriteSettings(lLineIdx, ++col, hFile, strErrMsg)) {
      return false;
    }
  }
  return true;
}

bool cLineData::ReadSettings(int32_t lLineIdx, int32_t lNoColumns,
                             TextReader& hFile, std::string& strErrMsg,
                             const std::string& strVer) {
  strErrMsg.clear();
  float ver = 0;
  if (!Version(strVer, ver)) {
    strErrMsg = kInvalidVersionError;
    return false;
  }
  bool ok = ReadItemLong(hFile, Status);
  if (ok && ver >= 0.944f) {
    ok = ReadLineValue(hFile, StatusMessage) &&
         ReadCoords(hFile, Left, Top, Width, Height);
  }
  if (ok && ver >= 0.945f) ok = ReadItemLong(hFile, Location);
  if (!ok) {
    strErrMsg = kDocTagsReadError;
    return false;
  }
  colLineItemData.Reserve(colLineItemData.Count() +
                          RecordsToReserve(hFile, lNoColumns));
  for (int32_t col = 1; col <= lNoColumns; ++col) {
    auto cell = std::make_shared<cLineItemData>();
    cell->LineData = weak_from_this();
    if (!cell->ReadSettings(lLineIdx, col, hFile, strErrMsg, strVer)) {
      return false;
    }
    cell->ColumnIndex = col;
    colLineItemData.Add(std::move(cell));
  }
  return true;
}

}  // namespace pelinor
