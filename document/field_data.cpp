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

namespace {

// The profile's field type and the template's zones named like a field,
// valid while `doc` is held; either is null when missing. Found without
// copying shared pointers: values resolve through here many times each.
struct Resolved {
  std::shared_ptr<cDocumentData> doc;
  const cFieldType* type = nullptr;
  const cExtractZones* zones = nullptr;
};

enum Wanted { kType = 1, kZones = 2 };

Resolved Resolve(const cFieldData& f, int wanted) {
  Resolved r;
  r.doc = f.Document.lock();
  if (!r.doc) return r;
  if ((wanted & kType) != 0 && r.doc->Profile) {
    const auto* t =
        FindNamed(r.doc->Profile->FieldTypes, f.Name, &cFieldType::Name);
    if (t != nullptr) r.type = t->get();
  }
  if ((wanted & kZones) != 0 && r.doc->Template) {
    const auto* z = FindNamed(r.doc->Template->FieldZoneRefs, f.Name,
                              &cExtractZones::FieldName);
    if (z != nullptr) r.zones = z->get();
  }
  return r;
}

}  // namespace

std::shared_ptr<cExtractZones> cFieldData::ExtractionZonesRef() const {
  std::shared_ptr<cExtractZones> zones;
  auto doc = Document.lock();
  if (doc && doc->Template && doc->Template->FindFieldZones(Name, zones)) {
    return zones;
  }
  return nullptr;
}

int32_t cFieldData::TemplateDataType() const {
  const Resolved r = Resolve(*this, kZones);
  return r.zones ? r.zones->DataTypeOverride : kNoOverride;
}
int32_t cFieldData::TemplateDataLocation() const {
  const Resolved r = Resolve(*this, kZones);
  return r.zones ? r.zones->DataLocationOverride : kNoOverride;
}
int32_t cFieldData::TemplatePtnMode() const {
  const Resolved r = Resolve(*this, kZones);
  return r.zones ? r.zones->PatternModeOverride : kNoOverride;
}
std::string cFieldData::TemplatePattern() const {
  const Resolved r = Resolve(*this, kZones);
  return r.zones ? r.zones->PatternOverride : std::string(kUseDefaultProperty);
}
int32_t cFieldData::ProfileDataType() const {
  const Resolved r = Resolve(*this, kType);
  return r.type ? r.type->DataType : 0;
}
int32_t cFieldData::ProfileDataLocation() const {
  const Resolved r = Resolve(*this, kType);
  return r.type ? r.type->DataLocation : 0;
}
int32_t cFieldData::ProfilePtnMode() const {
  const Resolved r = Resolve(*this, kType);
  return r.type ? r.type->PtnMode : 0;
}
std::string cFieldData::ProfilePattern() const {
  const Resolved r = Resolve(*this, kType);
  return r.type ? r.type->Pattern : std::string();
}

std::string cFieldData::GetDefault() const {
  const Resolved r = Resolve(*this, kType);
  return r.type ? r.type->Default : std::string();
}

namespace {

int32_t DefaultTypeOf(const Resolved& r) {
  if (!r.type) return 0;
  if (r.zones && r.zones->DataTypeOverride != kNoOverride &&
      DataTypesCompatible(r.type->DataType, r.zones->DataTypeOverride)) {
    return r.zones->DataTypeOverride;
  }
  return r.type->DataType;
}

const std::string& PatternOf(const Resolved& r) {
  static const std::string kNone;
  if (r.zones && r.zones->PatternOverride != kUseDefaultProperty) {
    return r.zones->PatternOverride;
  }
  return r.type ? r.type->Pattern : kNone;
}

}  // namespace

int32_t cFieldData::DefaultDataType() const {
  if (pin_.on) return pin_.default_type;
  return DefaultTypeOf(Resolve(*this, kType | kZones));
}

int32_t cFieldData::DefaultDataLocation() const {
  const Resolved r = Resolve(*this, kType | kZones);
  if (!r.type) return 0;
  if (r.zones && r.zones->DataLocationOverride != kNoOverride &&
      !IsFixedLocation(r.type->DataLocation) &&
      !IsFixedLocation(r.zones->DataLocationOverride)) {
    return r.zones->DataLocationOverride;
  }
  return r.type->DataLocation;
}

int32_t cFieldData::DataType() const {
  return data_type_ != 0 ? data_type_ : DefaultDataType();
}

int32_t cFieldData::DataLocation() const {
  return data_location_ != 0 ? data_location_ : DefaultDataLocation();
}

void cFieldData::PinResolution() {
  const Resolved r = Resolve(*this, kType | kZones);
  pin_.default_type = DefaultTypeOf(r);
  pin_.pattern = PatternOf(r);
  pin_.on = true;
}

std::string cFieldData::Pattern() const {
  if (pin_.on) return pin_.pattern;
  return PatternOf(Resolve(*this, kType | kZones));
}

// ---------------------------------------------------------------------------
// Validation and formatting
// ---------------------------------------------------------------------------

bool cFieldData::Validate(std::string& LogFile) {
  return Validate(LogFile, nullptr);
}

bool cFieldData::Validate(std::string& LogFile, cRepairTrace* trace) {
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
                         LogFile, trace);
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
