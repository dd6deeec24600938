// cDocumentData: the extracted data of one document and its tag file.
//
// Format: docs/formats/document.md.
//
// Ownership: the document owns its fields, rows and line headers through
// std::shared_ptr; they point back to it with std::weak_ptr, so create the
// document with cDocumentData::New() before calling Create...(). `Profile` and
// `Template` are shared, not owned, and never stored in the file.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_DOCUMENT_DATA_H_
#define PELINOR_DOCUMENT_DATA_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/field_data.h"
#include "pelinor/line_data.h"
#include "pelinor/line_hdr_type.h"
#include "pelinor/profile.h"
#include "pelinor/template.h"

namespace pelinor {

class cDocumentData : public std::enable_shared_from_this<cDocumentData> {
  struct PrivateTag {
    explicit PrivateTag() = default;
  };

 public:
  // New()
  //
  // Makes an empty document. Its children point back to it through
  // std::weak_ptr, so a document exists only behind std::shared_ptr: it
  // cannot be made on the stack or copied.
  static std::shared_ptr<cDocumentData> New() {
    return std::make_shared<cDocumentData>(PrivateTag{});
  }
  explicit cDocumentData(PrivateTag) {}
  cDocumentData(const cDocumentData&) = delete;
  cDocumentData& operator=(const cDocumentData&) = delete;

  int32_t Status = 0;
  std::string StatusMessage;
  std::string ProfileName;
  std::shared_ptr<cProfile> Profile;
  std::shared_ptr<cTemplate> Template;
  Collection<std::shared_ptr<cFieldData>> Fields;
  Collection<std::shared_ptr<cFieldData>> PseudoFields;
  Collection<std::shared_ptr<cFieldData>> LinePseudos;
  Collection<std::shared_ptr<cFieldData>> DocEndMarks;
  Collection<std::shared_ptr<cLineData>> LineData;
  Collection<std::shared_ptr<cLineHdrType>> LineHeaders;
  std::shared_ptr<cLineData> LineEntryRow;
  int32_t FirstSheetIndex = 0;
  int32_t LastSheetIndex = 0;
  int32_t FirstSideBack = 0;
  int32_t LastSideBack = 0;
  int32_t PrimaryStatus = 0;
  std::string PrimaryStatusMessage;

  // WriteSettings()
  //
  // Writes the whole tag file, replacing `FileName` only when complete.
  // Empty items (null pointers) are neither written nor counted. Refuses,
  // before writing anything, rows whose number of cells (empty ones left
  // out) differs from the first row's: the reader reads every row with the
  // first row's count. On failure returns false with the message
  // (kDocTagsCreateError, the row message of line_data.h, the failing
  // item's message or kDocTagsWriteError); the file that was at
  // `FileName`, if any, is left as it was and no temporary file remains.
  bool WriteSettings(const std::string& FileName, std::string& strErrMsg) const;

  // WriteSettingsIfChanged()
  //
  // As WriteSettings(), except that a file at `FileName` that already holds
  // exactly these bytes is left untouched, and no temporary file is made
  // beside it; `bUnchanged` then says so.
  bool WriteSettingsIfChanged(const std::string& FileName, bool& bUnchanged,
                              std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Appends what the tag file holds to this document. Fails with
  // kInvalidVersionError, kDocTagsReadError or an item reader's message;
  // what was read so far stays.
  bool ReadSettings(const std::string& FileName, std::string& strErrMsg);
  bool ReadSettings(TextReader& hFile, std::string& strErrMsg);

  // The Create...() methods append a new item pointing to this document.
  std::shared_ptr<cFieldData> CreateField();
  std::shared_ptr<cFieldData> CreatePseudoField();
  std::shared_ptr<cFieldData> CreateLinePseudo();
  std::shared_ptr<cFieldData> CreateDocEndMark();
  std::shared_ptr<cLineData> CreateLineData();
  std::shared_ptr<cLineData> CreateLineEntryRow();
  std::shared_ptr<cLineHdrType> CreateLineHeader();
  std::shared_ptr<cFieldData> NewFieldData();

  void ResetPseudoFields() { PseudoFields.Clear(); }
  void ResetLinePseudos() { LinePseudos.Clear(); }
  void ResetDocEndMarks() { DocEndMarks.Clear(); }
  void ClearLinePseudos() { LinePseudos.Clear(); }
  void ClearDocEndMarks() { DocEndMarks.Clear(); }
  void ClearLineHeaders() { LineHeaders.Clear(); }
  void ClearLineItems() { LineData.Clear(); }
  void ClearLineEntryRow() { LineEntryRow.reset(); }

  // Find() / FindPseudo()
  //
  // The first item whose Name equals `FieldName` ignoring case; false with
  // the outputs untouched when there is none.
  bool Find(const std::string& FieldName, int32_t& FieldIdx,
            std::shared_ptr<cFieldData>& FieldData) const;
  bool FindPseudo(const std::string& FieldName, int32_t& FieldIdx,
                  std::shared_ptr<cFieldData>& FieldData) const;

  // FindLinePseudo() / FindDocEndMark()
  //
  // As Find(); when `strLocation` is numeric the item's resolved
  // DataLocation must equal it too.
  bool FindLinePseudo(const std::string& strLocation,
                      const std::string& FieldName, int32_t& FieldIdx,
                      std::shared_ptr<cFieldData>& FieldData) const;
  bool FindDocEndMark(const std::string& strLocation,
                      const std::string& FieldName, int32_t& FieldIdx,
                      std::shared_ptr<cFieldData>& FieldData) const;

  // Copy()
  //
  // Copies this document into `Target` (created when null), appending to
  // what it holds. Items are new objects pointing to `Target`.
  void Copy(std::shared_ptr<cDocumentData>& Target) const;

  // Purge()
  //
  // Removes every field and pseudo field and clears the end marks.
  void Purge();

  // UpdateLineHeaders()
  //
  // Rebuilds the line headers: replaces them by one header per profile
  // header type, in the profile's order, taking data type, pattern mode and
  // pattern from the template's header where it sets them. Calling it
  // again gives the same headers. Does nothing without a profile.
  void UpdateLineHeaders(const std::shared_ptr<cProfile>& objProfile,
                         const std::shared_ptr<cTemplate>& objTemplate);

  // PopulateLineDataProperties()
  //
  // Copies `Source` with its cells into `Target`, appending the cells.
  void PopulateLineDataProperties(const cLineData& Source,
                                  cLineData& Target) const;

 private:
  // WriteSettings(), committed with TextWriter::CommitIfChanged() when
  // `unchanged` is not null.
  bool Write(const std::string& FileName, bool* unchanged,
             std::string& strErrMsg) const;

  static bool FindIn(const Collection<std::shared_ptr<cFieldData>>& items,
                     const std::string& strLocation,
                     const std::string& FieldName, int32_t& FieldIdx,
                     std::shared_ptr<cFieldData>& FieldData);
};

}  // namespace pelinor

#endif  // PELINOR_DOCUMENT_DATA_H_
