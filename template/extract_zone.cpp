// Field entries of the template file: the zone lines, the ordinary field
// entry with its anchor and overrides, and the pseudo field entry.
//
// Format: see docs/formats/template.md.

#include "pelinor/extract_zone.h"

#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/numeric.h"
#include "template/record_io.h"

namespace pelinor {
namespace {

constexpr char kFieldWriteError[] =
    "Error writing to template file, field section. ";

void SetFromText(const std::string& value, int32_t& target) {
  int32_t number = 0;
  if (ToLong(value, number)) target = number;
}

}  // namespace

std::string cExtractZone::Left() const { return NumberText(left_); }
void cExtractZone::Left(const std::string& value) { SetFromText(value, left_); }
std::string cExtractZone::Top() const { return NumberText(top_); }
void cExtractZone::Top(const std::string& value) { SetFromText(value, top_); }
std::string cExtractZone::Width() const { return NumberText(width_); }
void cExtractZone::Width(const std::string& value) {
  SetFromText(value, width_);
}
std::string cExtractZone::Height() const { return NumberText(height_); }
void cExtractZone::Height(const std::string& value) {
  SetFromText(value, height_);
}

bool cExtractZone::WriteSettings(int32_t FieldIdx, int32_t ZoneIdx,
                                 TextWriter& hFile,
                                 std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix =
      "Field" + NumberText(FieldIdx) + "Zone" + NumberText(ZoneIdx);
  hFile.WriteLine(prefix + "Left:" + NumberText(left_));
  hFile.WriteLine(prefix + "Top:" + NumberText(top_));
  hFile.WriteLine(prefix + "Width:" + NumberText(width_));
  hFile.WriteLine(prefix + "Height:" + NumberText(height_));
  if (!hFile.ok()) {
    strErrMsg = kFieldWriteError;
    return false;
  }
  return true;
}

bool cExtractZone::ReadSettings(int32_t /*FieldIdx*/, int32_t /*ZoneIdx*/,
                                TextReader& hFile, std::string& strErrMsg) {
  strErrMsg.clear();
  for (int32_t* target : {&left_, &top_, &width_, &height_}) {
    if (!template_io::ReadLabelledLong(hFile, *target)) {
      strErrMsg = kTemplateIncorrectParameter;
      return false;
    }
  }
  return true;
}

void cExtractZone::Copy(std::shared_ptr<cExtractZone>& Target) const {
  if (Target == nullptr) Target = std::make_shared<cExtractZone>();
  *Target = *this;
}

int32_t cExtractZones::OverrideCount() const {
  return (DataTypeOverride != kNoOverride ? 1 : 0) +
         (DataLocationOverride != kNoOverride ? 1 : 0) +
         (PatternModeOverride != kNoOverride ? 1 : 0) +
         (PatternOverride != kUseDefaultProperty ? 1 : 0);
}

bool cExtractZones::WriteSettings(int32_t FieldIdx, TextWriter& hFile,
                                  std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix = "Field" + NumberText(FieldIdx);
  const auto& anchor = AnchorRefs.Item(1);
  hFile.WriteLine(prefix + "FieldName:" + FieldName);
  hFile.WriteLine(prefix + "AnchorRef:" +
                  (anchor != nullptr ? anchor->Name : std::string()));
  hFile.WriteLine(prefix + "OverrideCount:" + NumberText(OverrideCount()));
  if (DataTypeOverride != kNoOverride) {
    hFile.WriteLine(prefix + "Type:" + NumberText(DataTypeOverride));
  }
  if (DataLocationOverride != kNoOverride) {
    hFile.WriteLine(prefix + "Location:" + NumberText(DataLocationOverride));
  }
  if (PatternOverride != kUseDefaultProperty) {
    hFile.WriteLine(prefix + "Pattern:" + PatternOverride);
  }
  if (PatternModeOverride != kNoOverride) {
    hFile.WriteLine(prefix + "PatternMode:" + NumberText(PatternModeOverride));
  }
  hFile.WriteLine(prefix + "AutoTemplate:" + NumberText(AutoTemplate));
  hFile.WriteLine(prefix + "ZoneCount:" + NumberText(Zones.Count()));
  if (!hFile.ok()) {
    strErrMsg = kFieldWriteError;
    return false;
  }
  int32_t z = 0;
  for (const auto& zone : Zones) {
    ++z;
    if (zone == nullptr) {
      strErrMsg = kFieldWriteError;
      return false;
    }
    if (!zone->WriteSettings(FieldIdx, z, hFile, strErrMsg)) return false;
  }
  return true;
}

bool cExtractZones::ReadZones(int32_t TagIdx, TextReader& hFile,
                              std::string& strErrMsg) {
  int32_t count = 0;
  if (!template_io::ReadLabelledLong(hFile, count)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  for (int32_t z = 1; z <= count; ++z) {
    auto zone = std::make_shared<cExtractZone>();
    if (!zone->ReadSettings(TagIdx, z, hFile, strErrMsg)) return false;
    Zones.Add(zone);
  }
  return true;
}

bool cExtractZones::ReadSettings(int32_t TagIdx, TextReader& hFile,
                                 std::string& strErrMsg,
                                 const std::string& strVer) {
  float ver = 0;
  if (!ParseVersionNumber(strVer, ver)) {
    strErrMsg = "Invalid version number";
    return false;
  }
  strErrMsg.clear();
  auto fail = [&strErrMsg]() {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  };
  std::string value;
  if (!template_io::ReadSplitItem(hFile, value)) return fail();
  FieldName = value;
  std::shared_ptr<cAnchorRef> anchor;
  if (ver >= 0.917f) {
    if (!template_io::ReadSplitItem(hFile, value)) return fail();
    if (!value.empty()) {
      anchor = std::make_shared<cAnchorRef>();
      anchor->Name = value;
      AnchorRefs.Add(anchor);
    }
  }
  if (ver >= 0.901f) {
    int32_t count = 0;
    if (!template_io::ReadLabelledLong(hFile, count)) return fail();
    std::string label;
    for (int32_t i = 0; i < count; ++i) {
      if (!template_io::ReadSplitLine(hFile, label, value)) return fail();
      // The order matters: "PatternMode" also contains "Pattern".
      int32_t* number = nullptr;
      if (label.find("Type") != std::string::npos) {
        number = &DataTypeOverride;
      } else if (label.find("Location") != std::string::npos) {
        number = &DataLocationOverride;
      } else if (label.find("PatternMode") != std::string::npos) {
        number = &PatternModeOverride;
      } else if (label.find("Pattern") != std::string::npos) {
        PatternOverride = value;
        continue;
      } else {
        continue;
      }
      if (!ToLong(value, *number)) return fail();
    }
  }
  if (ver >= 0.939f) {
    if (!template_io::ReadLabelledLong(hFile, AutoTemplate)) return fail();
  }
  if (!ReadZones(TagIdx, hFile, strErrMsg)) return false;
  if (anchor != nullptr && Zones.Count() > 0) {
    anchor->XOffset = Zones.Item(1)->LeftValue();
    anchor->YOffset = Zones.Item(1)->TopValue();
  }
  return true;
}

bool cExtractZones::WritePseudoSettings(int32_t FieldIdx, TextWriter& hFile,
                                        std::string& strErrMsg) const {
  strErrMsg.clear();
  const std::string prefix = "Field" + NumberText(FieldIdx);
  hFile.WriteLine(prefix + "FieldName:" + FieldName);
  hFile.WriteLine(prefix + "CaptionSearch:" + CaptionSearch);
  hFile.WriteLine(prefix + "Location:" + NumberText(DataLocationOverride));
  hFile.WriteLine(prefix + "ZoneCount:" + NumberText(Zones.Count()));
  if (!hFile.ok()) {
    strErrMsg = kFieldWriteError;
    return false;
  }
  int32_t z = 0;
  for (const auto& zone : Zones) {
    ++z;
    if (zone == nullptr) {
      strErrMsg = kFieldWriteError;
      return false;
    }
    if (!zone->WriteSettings(FieldIdx, z, hFile, strErrMsg)) return false;
  }
  return true;
}

bool cExtractZones::ReadPseudoSettings(int32_t TagIdx, TextReader& hFile,
                                       std::string& strErrMsg,
                                       const std::string& strVer) {
  float ver = 0;
  if (!ParseVersionNumber(strVer, ver)) {
    strErrMsg = "Invalid version number";
    return false;
  }
  strErrMsg.clear();
  Catagory = 2;
  std::string value;
  if (!template_io::ReadSplitItem(hFile, value)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  FieldName = value;
  if (!template_io::ReadSplitItem(hFile, value)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  CaptionSearch = value;
  if (!template_io::ReadLabelledLong(hFile, DataLocationOverride)) {
    strErrMsg = kTemplateIncorrectParameter;
    return false;
  }
  return ReadZones(TagIdx, hFile, strErrMsg);
}

void cExtractZones::Copy(std::shared_ptr<cExtractZones>& Target) const {
  if (Target == nullptr) Target = std::make_shared<cExtractZones>();
  cExtractZones& t = *Target;
  t.Template = Template;
  t.FieldName = FieldName;
  t.DataLocationOverride = DataLocationOverride;
  t.DataTypeOverride = DataTypeOverride;
  t.CaptionSearch = CaptionSearch;
  t.Catagory = Catagory;
  t.AutoTemplate = AutoTemplate;
  t.PatternOverride = PatternOverride;
  t.PatternModeOverride = PatternModeOverride;
  t.AnchorRefs =
      CopyEach(AnchorRefs, [](const cAnchorRef& a) { return a.CreateNew(); });
  t.Zones = CopyEach(Zones, [](const cExtractZone& z) {
    std::shared_ptr<cExtractZone> copy;
    z.Copy(copy);
    return copy;
  });
}

std::shared_ptr<cExtractZone> cExtractZones::CreateExtractZone() {
  auto zone = std::make_shared<cExtractZone>();
  Zones.Add(zone);
  return zone;
}

std::shared_ptr<cAnchorRef> cExtractZones::CreateAnchorRef() {
  auto anchor = std::make_shared<cAnchorRef>();
  AnchorRefs = Collection<std::shared_ptr<cAnchorRef>>();
  AnchorRefs.Add(anchor);
  return anchor;
}

}  // namespace pelinor
