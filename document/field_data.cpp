// Reader and writer of the field records of the document tag file (fields,
// pseudo fields, line pseudos, document-end marks), and the resolution,
// validation and formatting of field values.
// Format: docs/formats/document.md ("Field records").

#include "pelinor/field_data.h"

#include <string>

#include "lineitems/tag_records.h"
#include "pelinor/document_data.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/numeric.h"
#include "pelinor/pattern_engine.h"
#include "pelinor/registry.h"
#include "pelinor/repair_trace.h"

namespace pelinor {

using namespace tag_records;  // NOLINT(build/namespaces)

bool DataTypesCompatible(int32_t p, int32_t t) {
  if (IsAmountType(p) != IsAmountType(t)) return false;
  if (IsDateType(p) != IsDateType(t)) return false;
  if ((p == 5 || p == 1) && t != p) return false;
  if ((t == 5 || t == 1) && p != t) return false;
  return true;
}

namespace {

bool IsFixedLocation(int32_t loc) { return loc >= -5 && loc <= -2; }

}  // namespace

// ---------------------------------------------------------------------------
// Resolution
// ---------------------------------------------------------------------------

std::shared_ptr<cFieldType> cFieldData::FieldTypeRef() const {
  std::shared_ptr<cFieldType> type;
  auto doc = Document.lock();
  if (doc && doc->Profile && doc->Profile->FindField(Name, type)) return type;
  return nullptr;
}

std::shared_ptr<cExtractZones> cFieldData::ExtractionZonesRef() const {
  std::shared_ptr<cExtractZones> zones;
  auto doc = Document.lock();
  if (doc && doc->Template && doc->Template->FindFieldZones(Name, zones)) {
    return zones;
  }
  return nullptr;
}

int32_t cFieldData::TemplateDataType() const {
  auto z = ExtractionZonesRef();
  return z ? z->DataTypeOverride : kNoOverride;
}
int32_t cFieldData::TemplateDataLocation() const {
  auto z = ExtractionZonesRef();
  return z ? z->DataLocationOverride : kNoOverride;
}
int32_t cFieldData::TemplatePtnMode() const {
  auto z = ExtractionZonesRef();
  return z ? z->PatternModeOverride : kNoOverride;
}
std::string cFieldData::TemplatePattern() const {
  auto z = ExtractionZonesRef();
  return z ? z->PatternOverride : std::string(kUseDefaultProperty);
}
int32_t cFieldData::ProfileDataType() const {
  auto t = FieldTypeRef();
  return t ? t->DataType : 0;
}
int32_t cFieldData::ProfileDataLocation() const {
  auto t = FieldTypeRef();
  return t ? t->DataLocation : 0;
}
int32_t cFieldData::ProfilePtnMode() const {
  auto t = FieldTypeRef();
  return t ? t->PtnMode : 0;
}
std::string cFieldData::ProfilePattern() const {
  auto t = FieldTypeRef();
  return t ? t->Pattern : std::string();
}

std::string cFieldData::GetDefault() const {
  auto t = FieldTypeRef();
  return t ? t->Default : std::string();
}

int32_t cFieldData::DefaultDataType() const {
  auto type = FieldTypeRef();
  if (!type) return 0;
  auto zones = ExtractionZonesRef();
  if (zones && zones->DataTypeOverride != kNoOverride &&
      DataTypesCompatible(type->DataType, zones->DataTypeOverride)) {
    return zones->DataTypeOverride;
  }
  return type->DataType;
}

int32_t cFieldData::DefaultDataLocation() const {
  auto type = FieldTypeRef();
  if (!type) return 0;
  auto zones = ExtractionZonesRef();
  if (zones && zones->DataLocationOverride != kNoOverride &&
      !IsFixedLocation(type->DataLocation) &&
      !IsFixedLocation(zones->DataLocationOverride)) {
    return zones->DataLocationOverride;
  }
  return type->DataLocation;
}

int32_t cFieldData::DataType() const {
  return data_type_ != 0 ? data_type_ : DefaultDataType();
}

int32_t cFieldData::DataLocation() const {
  return data_location_ != 0 ? data_location_ : DefaultDataLocation();
}

std::string cFieldData::Pattern() const {
  std::string pattern = TemplatePattern();
  if (pattern == kUseDefaultProperty) return ProfilePattern();
  return pattern;
}

// ---------------------------------------------------------------------------
// Validation and formatting
// ---------------------------------------------------------------------------

bool cFieldData::Validate(std::string& LogFile) {
  cFormat format;
  const int32_t type = DataType();
  if (IsAmountType(type)) return format.ValidateAmount(value);
  if (IsDateType(type)) {
    return format.ValidateDate(value, ReadServerSetting(kLocaleValue, "GB"));
  }
  if (type == 5) return format.ValidatePostCode(value);
  const std::string pattern = Pattern();
  if (pattern.empty()) return true;
  AppendLogLine(LogFile, "Validation on string");
  std::string out, err;
  return EvaluatePattern(value, pattern, false, true, true, false, out, err,
                         LogFile);
}

void cFieldData::FormatDataValue() { FormatDataValue(nullptr); }

void cFieldData::FormatDataValue(cRepairTrace* trace) {
  cFormat format;
  const int32_t type = DataType();
  std::string copy = value;
  std::string out;
  bool ok = false;
  if (type == 2 || type == 300) {
    ok = format.FormatNumeric(copy, out, type, trace);
  } else if (type == 4 || type == 200) {
    // The lines are only built when the format log is written.
    if (FormatLogWanted()) {
      auto doc = Document.lock();
      const cTemplate* tpl = doc ? doc->Template.get() : nullptr;
      std::string msg = "cFieldData.FormatDataValue:" + value;
      LogFormatMessage(msg);
      msg = "cFieldData.FormatDataValue -> template is " +
            (tpl ? tpl->TemplateIdentifier : std::string());
      LogFormatMessage(msg);
      msg = "cFieldData.FormatDataValue -> template capture profile is " +
            (tpl ? tpl->PelinorProfile : std::string());
      LogFormatMessage(msg);
      msg = "cFieldData.FormatDataValue -> template scanner profile is " +
            (tpl ? tpl->ScannerProfile : std::string());
      LogFormatMessage(msg);
    }
    ok = format.FormatAmount(copy, out, type, trace);
  } else if (type == 5) {
    ok = format.FormatPostCode(copy, out, type, trace);
  } else if (IsDateType(type)) {
    cPatternEngine engine;
    engine.CoerceDate(copy, out, format.FormatDescr(DefaultDataType()), ok,
                      trace);
  }
  if (ok) value = out;
}

void cFieldData::CopyProperties(cFieldData& Target) const {
  Target.Name = Name;
  Target.value = value;
  Target.Status = Status;
  Target.StatusMessage = StatusMessage;
  Target.Left = Left;
  Target.Top = Top;
  Target.Width = Width;
  Target.Height = Height;
  Target.DataEntryType = DataEntryType;
  Target.data_type_ = data_type_;
  Target.data_location_ = data_location_;
  Target.OptionItems.Clear();
  for (const auto& item : OptionItems) {
    if (item) Target.OptionItems.Add(std::make_shared<cOptionItem>(*item));
  }
}

void cFieldData::LogFormatMessage(std::string& strMsg) const {
  LogFormatLine(strMsg);
}

// ---------------------------------------------------------------------------
// Records
// ---------------------------------------------------------------------------

void cFieldData::WriteRecords(const char* prefix, int32_t TagIdx,
                              TextWriter& hFile, bool value_lines,
                              bool status_lines, bool type_line) const {
  const std::string_view head = prefix;
  hFile.WriteLineParts({head, TagIdx, "Name:", Name});
  if (value_lines) hFile.WriteLineParts({head, TagIdx, "Value:", value});
  if (status_lines) {
    hFile.WriteLineParts({head, TagIdx, "Status:", Status});
    hFile.WriteLineParts({head, TagIdx, "Message:", StatusMessage});
  }
  hFile.WriteLineParts({head, TagIdx, "DataLocation:", DataLocation()});
  if (type_line) {
    hFile.WriteLineParts({head, TagIdx, "DataType:", DataType()});
  }
  hFile.WriteLineParts(
      {head, TagIdx, "Coords:", Left, ":", Top, ":", Width, ":", Height});
}

namespace {

// The answer of a record writer: false with the field section's message
// once the file has failed.
bool Written(const TextWriter& hFile, std::string& strErrMsg) {
  if (hFile.ok()) return true;
  strErrMsg = kDocTagsFieldWriteError;
  return false;
}

}  // namespace

bool cFieldData::WriteSettings(int32_t TagIdx, TextWriter& hFile,
                               std::string& strErrMsg) const {
  strErrMsg.clear();
  WriteRecords("Field", TagIdx, hFile, true, true, true);
  return Written(hFile, strErrMsg);
}

bool cFieldData::WritePseudoSettings(int32_t TagIdx, TextWriter& hFile,
                                     std::string& strErrMsg) const {
  strErrMsg.clear();
  WriteRecords("Field", TagIdx, hFile, true, false, false);
  return Written(hFile, strErrMsg);
}

bool cFieldData::WriteLinePseudoSettings(int32_t TagIdx, TextWriter& hFile,
                                         std::string& strErrMsg) const {
  strErrMsg.clear();
  WriteRecords("LLAnchor", TagIdx, hFile, false, false, false);
  return Written(hFile, strErrMsg);
}

bool cFieldData::WriteDocEndMarkSettings(int32_t TagIdx, TextWriter& hFile,
                                         std::string& strErrMsg) const {
  strErrMsg.clear();
  WriteRecords("DocEndMark", TagIdx, hFile, false, false, false);
  return Written(hFile, strErrMsg);
}

bool cFieldData::ReadRecords(TextReader& hFile, std::string& strErrMsg,
                             const std::string& strVer, bool value_lines,
                             bool status_lines, bool type_line) {
  strErrMsg.clear();
  float ver = 0;
  if (!Version(strVer, ver)) {
    strErrMsg = kInvalidVersionError;
    return false;
  }
  bool ok = ReadItemValue(hFile, Name);
  if (ok && value_lines) ok = ReadLineValue(hFile, value);
  if (ok && status_lines) {
    ok = ReadItemLong(hFile, Status) && ReadLineValue(hFile, StatusMessage);
  }
  if (ok && ver >= 0.901f) ok = ReadItemLong(hFile, data_location_);
  if (ok && type_line && ver >= 0.936f) ok = ReadItemLong(hFile, data_type_);
  if (ok && ver >= 0.917f) ok = ReadCoords(hFile, Left, Top, Width, Height);
  if (!ok) strErrMsg = kDocTagsReadError;
  return ok;
}

bool cFieldData::ReadSettings(int32_t /*TagIdx*/, TextReader& hFile,
                              std::string& strErrMsg,
                              const std::string& strVer) {
  return ReadRecords(hFile, strErrMsg, strVer, true, true, true);
}

bool cFieldData::ReadPseudoSettings(int32_t /*TagIdx*/, TextReader& hFile,
                                    std::string& strErrMsg,
                                    const std::string& strVer) {
  return ReadRecords(hFile, strErrMsg, strVer, true, false, false);
}

bool cFieldData::ReadLinePseudoSettings(int32_t /*TagIdx*/, TextReader& hFile,
                                        std::string& strErrMsg,
                                        const std::string& strVer) {
  return ReadRecords(hFile, strErrMsg, strVer, false, false, false);
}

bool cFieldData::ReadDocEndMarkSettings(int32_t /*TagIdx*/, TextReader& hFile,
                                        std::string& strErrMsg,
                                        const std::string& strVer) {
  return ReadRecords(hFile, strErrMsg, strVer, false, false, false);
}

}  // namespace pelinor
