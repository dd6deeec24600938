// cTemplate: properties, look-ups, item creation, copying and purging.
// The template file itself is written in template_writer.cpp and read in
// template_reader.cpp.

#include "pelinor/template.h"

#include <string>

#include "pelinor/date_text.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

template <typename T>
bool FindByName(const Collection<std::shared_ptr<T>>& items,
                const std::string& name, std::string T::*field,
                std::shared_ptr<T>& found) {
  const std::shared_ptr<T>* item = FindNamed(items, name, field);
  if (item == nullptr) return false;
  found = *item;
  return true;
}

template <typename T>
std::shared_ptr<T> AddNew(Collection<std::shared_ptr<T>>& items) {
  auto item = std::make_shared<T>();
  items.Add(item);
  return item;
}

template <typename T>
Collection<std::shared_ptr<T>> CopyPlain(
    const Collection<std::shared_ptr<T>>& items) {
  return CopyEach(items,
                  [](const T& item) { return std::make_shared<T>(item); });
}

}  // namespace

double cTemplate::dtTimeLastModified() const {
  double serial = kZeroDate;
  ParseDateText(TimeLastModified, serial);
  return serial;
}

int32_t cTemplate::Resolve(const Inherited<int32_t>& v,
                           int32_t cProfile::*field) const {
  if (v.own) return v.value;
  return Profile != nullptr ? (*Profile).*field : 0;
}

std::string cTemplate::Resolve(const Inherited<std::string>& v,
                               std::string cProfile::*field) const {
  if (v.own) return v.value;
  return Profile != nullptr ? (*Profile).*field : std::string();
}

int32_t cTemplate::DocEndMarkInclusive() const {
  return Resolve(doc_end_mark_inclusive_, &cProfile::DocEndMarkInclusive);
}
void cTemplate::DocEndMarkInclusive(int32_t value) {
  doc_end_mark_inclusive_.value = value;
  doc_end_mark_inclusive_.own = true;
}

int32_t cTemplate::DocEndMarkSideMode() const {
  return Resolve(doc_end_mark_side_mode_, &cProfile::DocEndMarkSideMode);
}
void cTemplate::DocEndMarkSideMode(int32_t value) {
  doc_end_mark_side_mode_.value = value;
  doc_end_mark_side_mode_.own = true;
}

int32_t cTemplate::ExpectedAttachments() const {
  return Resolve(expected_attachments_, &cProfile::ExpectedAttachments);
}
void cTemplate::ExpectedAttachments(int32_t value) {
  expected_attachments_.value = value;
  expected_attachments_.own = true;
}

int32_t cTemplate::FlattenDuplex() const {
  return Resolve(flatten_duplex_, &cProfile::FlattenDuplex);
}
void cTemplate::FlattenDuplex(int32_t value) {
  flatten_duplex_.value = value;
  flatten_duplex_.own = true;
}

int32_t cTemplate::OCRPages() const {
  return Resolve(ocr_pages_, &cProfile::OCRPages);
}
void cTemplate::OCRPages(int32_t value) {
  ocr_pages_.value = value;
  ocr_pages_.own = true;
}

int32_t cTemplate::LineLevel() const {
  return Resolve(line_level_, &cProfile::LineLevel);
}
void cTemplate::LineLevel(int32_t value) {
  line_level_.value = value;
  line_level_.own = true;
}

std::string cTemplate::LineDataRowSpaceMax() const {
  return Resolve(line_data_row_space_max_, &cProfile::LineDataRowSpaceMax);
}
void cTemplate::LineDataRowSpaceMax(const std::string& value) {
  line_data_row_space_max_.value = value;
  line_data_row_space_max_.own = true;
}

std::string cTemplate::LineDataEntitySpaceMax() const {
  return Resolve(line_data_entity_space_max_,
                 &cProfile::LineDataEntitySpaceMax);
}
void cTemplate::LineDataEntitySpaceMax(const std::string& value) {
  line_data_entity_space_max_.value = value;
  line_data_entity_space_max_.own = true;
}

bool cTemplate::FindFieldZones(
    const std::string& strFieldName,
    std::shared_ptr<cExtractZones>& FieldZones) const {
  return FindByName(FieldZoneRefs, strFieldName, &cExtractZones::FieldName,
                    FieldZones);
}

bool cTemplate::FindPseudoFieldZones(
    const std::string& strFieldName,
    std::shared_ptr<cExtractZones>& FieldZones) const {
  return FindByName(PseudoFieldZoneRefs, strFieldName,
                    &cExtractZones::FieldName, FieldZones);
}

bool cTemplate::FindLineHeaders(
    const std::string& strName,
    std::shared_ptr<cLineHdrType>& LineHeader) const {
  return FindByName(LineHeaders, strName, &cLineHdrType::Name, LineHeader);
}

std::shared_ptr<cExtractZones> cTemplate::CreateExtractZones() {
  auto entry = AddNew(FieldZoneRefs);
  entry->Template = weak_from_this();
  return entry;
}

std::shared_ptr<cExtractZones> cTemplate::CreatePseudoExtractZones() {
  auto entry = AddNew(PseudoFieldZoneRefs);
  entry->Template = weak_from_this();
  entry->Catagory = 2;
  return entry;
}

std::shared_ptr<cLineHdrType> cTemplate::CreateLineHeader() {
  auto header = AddNew(LineHeaders);
  header->DataType = kNoOverride;
  header->Pattern = kUseDefaultProperty;
  header->PtnMode = kNoOverride;
  return header;
}

std::shared_ptr<cTableExtract> cTemplate::CreateLineTable() {
  return AddNew(LineTables);
}
std::shared_ptr<cAnchorRef> cTemplate::CreateDocEndMark() {
  return AddNew(DocEndMarks);
}
std::shared_ptr<cLineDataRules> cTemplate::CreateLineDataRules() {
  return AddNew(ColLineDataRules);
}
std::shared_ptr<cExpression> cTemplate::CreateLineDataCondition() {
  return AddNew(LineDataConditions);
}
std::shared_ptr<cExpression> cTemplate::CreateLineDataEndCondition() {
  return AddNew(LineDataEndConditions);
}
std::shared_ptr<cExpression> cTemplate::CreateLineDataRptCondition() {
  return AddNew(LineDataRptConditions);
}

void cTemplate::Copy(std::shared_ptr<cTemplate>& Target) const {
  if (Target == nullptr) Target = cTemplate::New();
  if (Target.get() == this) return;
  cTemplate& t = *Target;
  t.Version = Version;
  t.Profile = Profile;
  t.ScannerProfile = ScannerProfile;
  t.PelinorProfile = PelinorProfile;
  t.UserName = UserName;
  t.TimeLastModified = TimeLastModified;
  t.TemplateIdentifier = TemplateIdentifier;
  t.TemplateDisambiguatedID = TemplateDisambiguatedID;
  t.TemplateIDDatumX = TemplateIDDatumX;
  t.TemplateIDDatumY = TemplateIDDatumY;
  t.UserData = UserData;
  t.UserDataPrimary = UserDataPrimary;
  t.ExtractType = ExtractType;
  t.Disambiguate = Disambiguate;
  t.LineDataPartition = LineDataPartition;
  t.LineDataDiscardStart = LineDataDiscardStart;
  t.LineDataDiscardEnd = LineDataDiscardEnd;
  t.LineDataVertAlignTol = LineDataVertAlignTol;
  t.doc_end_mark_inclusive_ = doc_end_mark_inclusive_;
  t.doc_end_mark_side_mode_ = doc_end_mark_side_mode_;
  t.expected_attachments_ = expected_attachments_;
  t.flatten_duplex_ = flatten_duplex_;
  t.ocr_pages_ = ocr_pages_;
  t.line_level_ = line_level_;
  t.line_data_row_space_max_ = line_data_row_space_max_;
  t.line_data_entity_space_max_ = line_data_entity_space_max_;
  t.da_invoices_override_ = da_invoices_override_;
  t.content_reuse_override_ = content_reuse_override_;

  const std::weak_ptr<cTemplate> owner = Target;
  auto copy_entry = [&owner](const cExtractZones& entry) {
    std::shared_ptr<cExtractZones> copy;
    entry.Copy(copy);
    copy->Template = owner;
    return copy;
  };
  t.FieldZoneRefs = CopyEach(FieldZoneRefs, copy_entry);
  t.PseudoFieldZoneRefs = CopyEach(PseudoFieldZoneRefs, copy_entry);
  t.LineTables = CopyEach(LineTables, [](const cTableExtract& table) {
    std::shared_ptr<cTableExtract> copy;
    table.Copy(copy);
    return copy;
  });
  t.DocEndMarks = CopyPlain(DocEndMarks);
  t.ColLineDataRules = CopyPlain(ColLineDataRules);
  t.LineDataConditions = CopyPlain(LineDataConditions);
  t.LineDataEndConditions = CopyPlain(LineDataEndConditions);
  t.LineDataRptConditions = CopyPlain(LineDataRptConditions);
  t.LineHeaders = CopyPlain(LineHeaders);
}

void cTemplate::Purge() {
  FieldZoneRefs.Clear();
  PseudoFieldZoneRefs.Clear();
  DocEndMarks.Clear();
  ColLineDataRules.Clear();
  LineDataConditions.Clear();
  LineDataEndConditions.Clear();
  LineDataRptConditions.Clear();
  LineHeaders.Clear();
}

void cTemplate::PurgeTplLineTables() { LineTables.Clear(); }

}  // namespace pelinor
