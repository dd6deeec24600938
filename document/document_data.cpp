// Reader and writer of the document tag file, and the look-ups, creation
// and copying of a document's items.
// Format: docs/formats/document.md.

#include "pelinor/document_data.h"

#include <string>

#include "lineitems/tag_records.h"
#include "pelinor/data_parser.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {

using namespace tag_records;  // NOLINT(build/namespaces)

// ---------------------------------------------------------------------------
// Tag file
// ---------------------------------------------------------------------------

namespace {

// The number of items a collection holds that are not empty: only those
// are written, so only those are counted.
template <typename T>
int32_t CountSet(const Collection<std::shared_ptr<T>>& items) {
  int32_t n = 0;
  for (const auto& item : items) n += item != nullptr;
  return n;
}

// Every row is read back with the first row's number of cells, so a row
// with another number would read back short or break the file. False with
// the message naming the first such row.
bool SameCellCounts(const Collection<std::shared_ptr<cLineData>>& rows,
                    int32_t& columns, std::string& strErrMsg) {
  columns = 0;
  int32_t line = 0;
  for (const auto& row : rows) {
    if (!row) continue;
    const int32_t cells = CountSet(row->colLineItemData);
    if (++line == 1) {
      columns = cells;
    } else if (cells != columns) {
      strErrMsg = std::string(kDocTagsWriteError) + "Row " + NumberText(line) +
                  " has a different number of cells (" + NumberText(cells) +
                  ") from the first row (" + NumberText(columns) + ").";
      return false;
    }
  }
  return true;
}

}  // namespace

bool cDocumentData::WriteSettings(const std::string& FileName,
                                  std::string& strErrMsg) const {
  return Write(FileName, nullptr, strErrMsg);
}

bool cDocumentData::WriteSettingsIfChanged(const std::string& FileName,
                                           bool& bUnchanged,
                                           std::string& strErrMsg) const {
  return Write(FileName, &bUnchanged, strErrMsg);
}

bool cDocumentData::Write(const std::string& FileName, bool* unchanged,
                          std::string& strErrMsg) const {
  if (unchanged != nullptr) *unchanged = false;
  strErrMsg.clear();
  int32_t columns = 0;
  if (!SameCellCounts(LineData, columns, strErrMsg)) return false;
  TextWriter out;
  // A file that may hold these bytes already gets its temporary file only
  // when it is to be replaced.
  if (!(unchanged != nullptr ? out.CreateWhenNeeded(FileName)
                             : out.Create(FileName))) {
    strErrMsg = kDocTagsCreateError;
    return false;
  }
  // The writer keeps the old file until Commit(): any failure below
  // abandons the new one and leaves the target as it was.
  auto fail = [&out, &strErrMsg]() {
    out.Abandon();
    if (strErrMsg.empty()) {
      strErrMsg = out.temp_failed() ? kDocTagsCreateError : kDocTagsWriteError;
    }
    return false;
  };
  out.WriteLine(kVersionLine);
  out.WriteLineParts({"DocStatus:", Status});
  out.WriteLineParts({"DocMessage:", StatusMessage});
  out.WriteLine(ProfileName);
  out.WriteLineParts({"LastSheetIndex:", LastSheetIndex});
  using Writer = bool (cFieldData::*)(int32_t, TextWriter&, std::string&) const;
  const struct {
    const char* count_label;
    const Collection<std::shared_ptr<cFieldData>>& items;
    Writer write;
  } groups[] = {
      {"FieldsCount:", Fields, &cFieldData::WriteSettings},
      {"PseudoFieldsCount:", PseudoFields, &cFieldData::WritePseudoSettings},
      {"LLAnchorCount:", LinePseudos, &cFieldData::WriteLinePseudoSettings},
      {"DocEndMarksCount:", DocEndMarks, &cFieldData::WriteDocEndMarkSettings},
  };
  for (const auto& group : groups) {
    out.WriteLineParts({group.count_label, CountSet(group.items)});
    if (!out.ok()) return fail();
    int32_t i = 0;
    for (const auto& f : group.items) {
      if (f && !((*f).*group.write)(++i, out, strErrMsg)) return fail();
    }
  }
  out.WriteLineParts({"LineCount:", CountSet(LineData)});
  out.WriteLineParts({"ColumnCount:", columns});
  if (!out.ok()) return fail();
  int32_t i = 0;
  for (const auto& row : LineData) {
    if (row && !row->WriteSettings(++i, out, strErrMsg)) return fail();
  }
  if (!(unchanged != nullptr ? out.CommitIfChanged(*unchanged)
                             : out.Commit())) {
    return fail();
  }
  return true;
}

bool cDocumentData::ReadSettings(const std::string& FileName,
                                 std::string& strErrMsg) {
  strErrMsg.clear();
  TextReader in;
  if (!in.Open(FileName)) {
    strErrMsg = kDocTagsReadError;
    return false;
  }
  return ReadSettings(in, strErrMsg);
}

bool cDocumentData::ReadSettings(TextReader& in, std::string& strErrMsg) {
  strErrMsg.clear();
  std::string ver_line;
  float ver = 0;
  if (!in.ReadFirstItem(ver_line) || !ParseVersionNumber(ver_line, ver)) {
    strErrMsg = kInvalidVersionError;
    return false;
  }
  auto fail = [&strErrMsg]() {
    if (strErrMsg.empty()) strErrMsg = kDocTagsReadError;
    return false;
  };
  // Counts are taken as a number of records to read, never as a size to
  // reserve: a damaged count then ends at the end of the file, and a
  // negative one reads nothing.
  auto read_count = [&in](int32_t& n) { return ReadItemLong(in, n); };
  int32_t n = 0;
  if (!ReadItemLong(in, Status)) return fail();
  if (!ReadLineValue(in, StatusMessage)) return fail();
  if (!in.ReadFirstItem(ProfileName)) return fail();
  if (ver >= 0.926f && !ReadItemLong(in, LastSheetIndex)) return fail();

  auto self = weak_from_this();
  if (!read_count(n)) return fail();
  Fields.Reserve(Fields.Count() + RecordsToReserve(in, n));
  for (int32_t i = 1; i <= n; ++i) {
    auto f = std::make_shared<cFieldData>();
    f->Document = self;
    if (!f->ReadSettings(i, in, strErrMsg, ver_line)) return fail();
    Fields.Add(std::move(f));
  }
  if (ver >= 0.917f) {
    if (!read_count(n)) return fail();
    for (int32_t i = 1; i <= n; ++i) {
      auto f = std::make_shared<cFieldData>();
      f->Document = self;
      if (!f->ReadPseudoSettings(i, in, strErrMsg, ver_line)) return fail();
      PseudoFields.Add(std::move(f));
    }
  }
  if (ver >= 0.922f) {
    if (!read_count(n)) return fail();
    for (int32_t i = 1; i <= n; ++i) {
      auto f = std::make_shared<cFieldData>();
      f->Document = self;
      if (!f->ReadLinePseudoSettings(i, in, strErrMsg, ver_line)) {
        return fail();
      }
      LinePseudos.Add(std::move(f));
    }
  }
  if (ver >= 0.928f) {
    if (!read_count(n)) return fail();
    for (int32_t i = 1; i <= n; ++i) {
      auto f = std::make_shared<cFieldData>();
      f->Document = self;
      if (!f->ReadDocEndMarkSettings(i, in, strErrMsg, ver_line)) {
        return fail();
      }
      DocEndMarks.Add(std::move(f));
    }
  }
  if (ver >= 0.918f) {
    int32_t columns = 0;
    if (!read_count(n) || !read_count(columns)) return fail();
    LineData.Reserve(LineData.Count() + RecordsToReserve(in, n));
    for (int32_t i = 1; i <= n; ++i) {
      auto row = cLineData::New();
      row->Document = self;
      if (!row->ReadSettings(i, columns, in, strErrMsg, ver_line)) {
        return fail();
      }
      LineData.Add(std::move(row));
    }
  }
  return true;
}

// ---------------------------------------------------------------------------
// Items
// ---------------------------------------------------------------------------

std::shared_ptr<cFieldData> cDocumentData::NewFieldData() {
  auto f = std::make_shared<cFieldData>();
  f->Document = weak_from_this();
  return f;
}

std::shared_ptr<cFieldData> cDocumentData::CreateField() {
  auto f = NewFieldData();
  Fields.Add(f);
  return f;
}

std::shared_ptr<cFieldData> cDocumentData::CreatePseudoField() {
  auto f = NewFieldData();
  PseudoFields.Add(f);
  return f;
}

std::shared_ptr<cFieldData> cDocumentData::CreateLinePseudo() {
  auto f = NewFieldData();
  LinePseudos.Add(f);
  return f;
}

std::shared_ptr<cFieldData> cDocumentData::CreateDocEndMark() {
  auto f = NewFieldData();
  DocEndMarks.Add(f);
  return f;
}

std::shared_ptr<cLineData> cDocumentData::CreateLineData() {
  auto row = cLineData::New();
  row->Document = weak_from_this();
  LineData.Add(row);
  return row;
}

std::shared_ptr<cLineData> cDocumentData::CreateLineEntryRow() {
  LineEntryRow = cLineData::New();
  LineEntryRow->Document = weak_from_this();
  return LineEntryRow;
}

std::shared_ptr<cLineHdrType> cDocumentData::CreateLineHeader() {
  auto hdr = std::make_shared<cLineHdrType>();
  LineHeaders.Add(hdr);
  return hdr;
}

bool cDocumentData::FindIn(const Collection<std::shared_ptr<cFieldData>>& items,
                           const std::string& strLocation,
                           const std::string& FieldName, int32_t& FieldIdx,
                           std::shared_ptr<cFieldData>& FieldData) {
  int32_t location = 0;
  const bool by_location =
      IsNumeric(strLocation) && ToLong(strLocation, location);
  const std::string wanted = UCase(FieldName);
  for (int i = 1; i <= items.Count(); ++i) {
    const auto& f = items.Item(i);
    if (!f || UCase(f->Name) != wanted) continue;
    if (by_location && f->DataLocation() != location) continue;
    FieldIdx = i;
    FieldData = f;
    return true;
  }
  return false;
}

bool cDocumentData::Find(const std::string& FieldName, int32_t& FieldIdx,
                         std::shared_ptr<cFieldData>& FieldData) const {
  return FindIn(Fields, "", FieldName, FieldIdx, FieldData);
}

bool cDocumentData::FindPseudo(const std::string& FieldName, int32_t& FieldIdx,
                               std::shared_ptr<cFieldData>& FieldData) const {
  return FindIn(PseudoFields, "", FieldName, FieldIdx, FieldData);
}

bool cDocumentData::FindLinePseudo(
    const std::string& strLocation, const std::string& FieldName,
    int32_t& FieldIdx, std::shared_ptr<cFieldData>& FieldData) const {
  return FindIn(LinePseudos, strLocation, FieldName, FieldIdx, FieldData);
}

bool cDocumentData::FindDocEndMark(
    const std::string& strLocation, const std::string& FieldName,
    int32_t& FieldIdx, std::shared_ptr<cFieldData>& FieldData) const {
  return FindIn(DocEndMarks, strLocation, FieldName, FieldIdx, FieldData);
}

// ---------------------------------------------------------------------------
// Copying and maintenance
// ---------------------------------------------------------------------------

void cDocumentData::Copy(std::shared_ptr<cDocumentData>& Target) const {
  if (!Target) Target = cDocumentData::New();
  cDocumentData& t = *Target;
  t.Status = Status;
  t.StatusMessage = StatusMessage;
  t.ProfileName = ProfileName;
  t.Profile = Profile;
  t.Template = Template;
  t.FirstSheetIndex = FirstSheetIndex;
  t.LastSheetIndex = LastSheetIndex;
  t.FirstSideBack = FirstSideBack;
  t.LastSideBack = LastSideBack;
  t.PrimaryStatus = PrimaryStatus;
  t.PrimaryStatusMessage = PrimaryStatusMessage;
  auto copy_each = [](const Collection<std::shared_ptr<cFieldData>>& from,
                      auto create) {
    for (const auto& f : from) {
      if (f) f->CopyProperties(*create());
    }
  };
  copy_each(Fields, [&t] { return t.CreateField(); });
  copy_each(PseudoFields, [&t] { return t.CreatePseudoField(); });
  copy_each(LinePseudos, [&t] { return t.CreateLinePseudo(); });
  copy_each(DocEndMarks, [&t] { return t.CreateDocEndMark(); });
  for (const auto& row : LineData) {
    if (row) PopulateLineDataProperties(*row, *t.CreateLineData());
  }
  if (LineEntryRow) {
    PopulateLineDataProperties(*LineEntryRow, *t.CreateLineEntryRow());
  }
  for (const auto& h : LineHeaders) {
    if (!h) continue;
    auto n = t.CreateLineHeader();
    n->Name = h->Name;
    n->DisplayName = h->DisplayName;
    n->DataFlags = h->DataFlags;
    n->DataType = h->DataType;
    n->Hidden = h->Hidden;
    n->ReadOnly = h->ReadOnly;
    n->PtnAllowOverride = h->PtnAllowOverride;
    n->InternalValidateLevel = h->InternalValidateLevel;
    n->Pattern = h->Pattern;
    n->PtnMode = h->PtnMode;
  }
}

void cDocumentData::PopulateLineDataProperties(const cLineData& Source,
                                               cLineData& Target) const {
  Target.Status = Source.Status;
  Target.StatusMessage = Source.StatusMessage;
  Target.Left = Source.Left;
  Target.Top = Source.Top;
  Target.Width = Source.Width;
  Target.Height = Source.Height;
  Target.Location = Source.Location;
  Target.AvgTop = Source.AvgTop;
  Target.AvgHeightToBase = Source.AvgHeightToBase;
  for (const auto& cell : Source.colLineItemData) {
    if (!cell) continue;
    auto n = std::make_shared<cLineItemData>(*cell);
    n->LineData = Target.weak_from_this();
    n->OptionItems.Clear();
    for (const auto& item : cell->OptionItems) {
      if (item) n->OptionItems.Add(std::make_shared<cOptionItem>(*item));
    }
    Target.colLineItemData.Add(std::move(n));
  }
}

void cDocumentData::Purge() {
  Fields.Clear();
  PseudoFields.Clear();
  ClearDocEndMarks();
}

void cDocumentData::UpdateLineHeaders(
    const std::shared_ptr<cProfile>& objProfile,
    const std::shared_ptr<cTemplate>& objTemplate) {
  if (!objProfile) return;
  // Rebuilt, not appended to: updating twice must not repeat the headers.
  ClearLineHeaders();
  for (const auto& def : objProfile->LineItemHdrs) {
    if (!def) continue;
    auto hdr = std::make_shared<cLineHdrType>();
    hdr->Name = def->Name;
    hdr->DisplayName = def->DisplayName;
    hdr->DataFlags = def->DataFlags;
    hdr->InternalValidateLevel = def->InternalValidateLevel;
    hdr->Hidden = def->Hidden;
    hdr->ReadOnly = def->ReadOnly;
    hdr->PtnAllowOverride = def->PtnAllowOverride;
    hdr->DataType = def->DataType;
    hdr->PtnMode = def->PtnMode;
    hdr->Pattern = def->Pattern;
    std::shared_ptr<cLineHdrType> over;
    if (objTemplate && objTemplate->FindLineHeaders(def->Name, over) && over) {
      if (over->DataType != kNoOverride) hdr->DataType = over->DataType;
      if (over->PtnMode != kNoOverride) hdr->PtnMode = over->PtnMode;
      if (over->Pattern != kUseDefaultProperty) hdr->Pattern = over->Pattern;
    }
    LineHeaders.Add(std::move(hdr));
  }
}

}  // namespace pelinor
