// Line-level data of one document: rows (cLineData) of cells
// (cLineItemData), and the option items that fields and cells carry.
//
// Format: the row and cell records of the document tag file, see
// docs/formats/document.md ("Line rows").
//
// Ownership: a row owns its cells through std::shared_ptr; a cell points
// back to its row, and a row to its document, with a std::weak_ptr.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_LINE_DATA_H_
#define PELINOR_LINE_DATA_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/collection.h"
#include "pelinor/repair_trace.h"
#include "pelinor/text_file.h"

namespace pelinor {

class cDocumentData;
class cLineData;

// cOptionItem
//
// One choice offered for a field or a cell; stored for clients only.
class cOptionItem {
 public:
  std::string Name;
  std::string value;
};

class cLineItemData {
 public:
  std::weak_ptr<cLineData> LineData;  // the owning row
  std::string Name;                   // the line-item header name
  std::string value;
  int32_t Status = 0;
  std::string StatusMessage;
  int32_t DataType = 0;
  int32_t Flags = 0;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t ColumnIndex = 0;
  int32_t DataEntryType = 0;
  Collection<std::shared_ptr<cOptionItem>> OptionItems;

  // EffectivePattern()
  //
  // The cell's pattern: that of the document's line header named `Name`,
  // else that of the profile's line-item header type, else "".
  std::string EffectivePattern() const;

  // Validate()
  //
  // Checks `value` by `DataType`: amounts and numerics (2, 4, 200, 300),
  // dates (3, 100-107, locale from "HalvernLocale"), postcodes (5), any
  // other type through the effective pattern (always true when it is
  // empty; the value comes back with its blanks removed). Never changes
  // `Status` or `StatusMessage`.
  bool Validate(const std::string& LogFile);

  // Validate() that also adds to `trace`, when not null, how a pattern
  // check read a valid value (the blanks it removed, text it mapped).
  bool Validate(const std::string& LogFile, cRepairTrace* trace);

  // FormatDataValue()
  //
  // Normalises `value` in place by `DataType`; pattern types take the best
  // sub-pattern candidate with OCR coercion. On failure `value` is kept.
  void FormatDataValue(const std::string& LogFile);

  // FormatDataValue() that also adds to `trace`, when not null, the steps
  // that changed the value.
  void FormatDataValue(const std::string& LogFile, cRepairTrace* trace);

  // ResetOptionItems()
  //
  // Empties `OptionItems`, last item first.
  void ResetOptionItems() { OptionItems.Clear(); }

  // WriteSettings() / ReadSettings()
  //
  // The cell's four records "Line" L "Col" C "Name:", "Value:", "Status:",
  // "Message:". WriteSettings() fails with kDocTagsLineWriteError once
  // `hFile` has failed. ReadSettings() is positional and fails with
  // "Error reading document tags file. Incorrect parameter" (what was read
  // stays set) or "Invalid version number".
  bool WriteSettings(int32_t lLineIdx, int32_t lColumnIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;
  bool ReadSettings(int32_t lLineIdx, int32_t lColumnIdx, TextReader& hFile,
                    std::string& strErrMsg, const std::string& strVer);
};

class cLineData : public std::enable_shared_from_this<cLineData> {
  struct PrivateTag {
    explicit PrivateTag() = default;
  };

 public:
  // New()
  //
  // Makes an empty row. Its children point back to it through
  // std::weak_ptr, so a row exists only behind std::shared_ptr: it
  // cannot be made on the stack or copied.
  static std::shared_ptr<cLineData> New() {
    return std::make_shared<cLineData>(PrivateTag{});
  }
  explicit cLineData(PrivateTag) {}
  cLineData(const cLineData&) = delete;
  cLineData& operator=(const cLineData&) = delete;

  std::weak_ptr<cDocumentData> Document;
  int32_t Status = 0;
  std::string StatusMessage;
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  int32_t Location = 0;
  int32_t AvgTop = 0;           // kept for layout, not written
  int32_t AvgHeightToBase = 0;  // kept for layout, not written
  Collection<std::shared_ptr<cLineItemData>> colLineItemData;

  // CreateLineDataColumns()
  //
  // Appends one cell per line-item header type of the document's profile,
  // in the profile's order, with its name, data type and flags (no key).
  // Does nothing without a document or profile.
  void CreateLineDataColumns();

  // FindLineItem()
  //
  // The first cell whose Name equals `Name` ignoring letter case
  // (Windows-1252), as every look-up by name does. False, outputs
  // untouched, when there is none.
  bool FindLineItem(const std::string& Name, int32_t& LineItDataIdx,
                    std::shared_ptr<cLineItemData>& LineItData) const;

  // ClearLineItems()
  //
  // Removes every cell, last first, after emptying its option items.
  void ClearLineItems();

  // WriteSettings()
  //
  // The row's four lines (Status, Message, Coords, DataLocation) and then
  // the records of every cell that is not empty, numbered 1, 2, ... as the
  // reader numbers them. Fails with kDocTagsLineWriteError (or the cell's
  // message) once `hFile` has failed.
  bool WriteSettings(int32_t lLineIdx, TextWriter& hFile,
                     std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads what WriteSettings() wrote, for `lNoColumns` cells: the Message
  // and Coords lines only from version 0.944 on, DataLocation from 0.945
  // on. Cells read before a failure stay in the row.
  bool ReadSettings(int32_t lLineIdx, int32_t lNoColumns, TextReader& hFile,
                    std::string& strErrMsg, const std::string& strVer);
};

// The reader messages shared by every record of the document tag file.
inline constexpr char kDocTagsReadError[] =
    "Error reading document tags file. Incorrect parameter";
inline constexpr char kInvalidVersionError[] = "Invalid version number";

// The writer messages of the document tag file: the file cannot be
// created; a line of the document itself, or the file as a whole, cannot
// be written; a field, pseudo field, line anchor or end mark cannot be
// written; a row or cell cannot be written. A row whose number of cells
// differs from the first row's is refused with kDocTagsWriteError followed
// by "Row L has a different number of cells (n) from the first row (c).".
inline constexpr char kDocTagsCreateError[] =
    "Unable to create document tags file";
inline constexpr char kDocTagsWriteError[] =
    "Error writing to document tags file. ";
inline constexpr char kDocTagsFieldWriteError[] =
    "Error writing to document tags file, field section. ";
inline constexpr char kDocTagsLineWriteError[] =
    "Error writing to document tags file, line level section. ";

// IsAmountType() / IsDateType()
//
// The data-type groups: amounts and numerics (2, 4, 200, 300) and dates
// (3, 100-107).
bool IsAmountType(int32_t code);
bool IsDateType(int32_t code);

}  // namespace pelinor

#endif  // PELINOR_LINE_DATA_H_
