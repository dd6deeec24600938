// cTableExtract, one line-level table of a template: its rectangle, the
// anchors bounding it, the pages it is read on and its columns; and
// cColumnExtract, one column of such a table.
//
// Format: see docs/formats/template.md ("Line tables").
//
// Only the first anchor of each anchor collection is stored in the file.
// A table's page location is written as a word for the four special
// values (0 "FRONT", -1 "BACK", -6 "ALL", -7 "MID") and as a number
// otherwise.
//
// Ownership: a table owns its anchors and columns through std::shared_ptr.
//
// Thread safety: an object is used by one thread at a time.

#ifndef PELINOR_TABLE_EXTRACT_H_
#define PELINOR_TABLE_EXTRACT_H_

#include <cstdint>
#include <memory>
#include <string>

#include "pelinor/anchor_ref.h"
#include "pelinor/collection.h"
#include "pelinor/text_file.h"

namespace pelinor {

// The page locations that have a word in the file.
inline constexpr int32_t kLocationFront = 0;
inline constexpr int32_t kLocationBack = -1;
inline constexpr int32_t kLocationAll = -6;
inline constexpr int32_t kLocationMid = -7;

class cColumnExtract {
 public:
  int32_t Left = 0;
  int32_t Width = 0;
  std::string Name;  // the line-item header the column fills
  // The transfer settings are not stored in the template file.
  std::string TransferTo;
  std::string TransferRows;
  int32_t TransferDiscard = 0;

  // WriteSettings()
  //
  // Writes "Table" + tabidx + "Col" + colidx + "Left:", "Width:" and
  // "Name:". Clears `strErrMsg`; on a failed write returns false with
  // "Error writing to template file, line level columns section. "
  // followed by the error number and description.
  bool WriteSettings(TextWriter& hFile, int32_t tabidx, int32_t colidx,
                     std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads the three lines as whole lines, values after their labels.
  // False with "Error reading template file. Incorrect parameter" on a
  // missing line or a non-numeric Left or Width; values read stay set.
  bool ReadSettings(TextReader& hFile, std::string& strErrMsg);

  // Copy()
  //
  // Copies every property into `Target`, creating it when empty.
  void Copy(std::shared_ptr<cColumnExtract>& Target) const;
};

class cTableExtract {
 public:
  int32_t Left = 0;
  int32_t Top = 0;
  int32_t Width = 0;
  int32_t Height = 0;
  // 0 front page, -1 back page, -6 all pages, -7 middle pages, otherwise
  // a page number.
  int32_t Location = 0;
  std::string TopAnchorRef;     // not stored in the file
  std::string BottomAnchorRef;  // not stored in the file
  Collection<std::shared_ptr<cAnchorRef>> TopAnchorRefs;
  Collection<std::shared_ptr<cAnchorRef>> BottomAnchorRefs;
  Collection<int32_t> IgnorePages;
  int32_t PageExtract = 0;
  int32_t SheetNo = 0;
  Collection<std::shared_ptr<cColumnExtract>> Columns;

  // CreateColumn() / CreateTopAnchorRef() / CreateBottomAnchorRef()
  //
  // Appends a new item to the matching collection and returns it.
  std::shared_ptr<cColumnExtract> CreateColumn();
  std::shared_ptr<cAnchorRef> CreateTopAnchorRef();
  std::shared_ptr<cAnchorRef> CreateBottomAnchorRef();

  // Copy()
  //
  // Copies every property into `Target` (created when empty) and gives it
  // new collections of new member objects.
  void Copy(std::shared_ptr<cTableExtract>& Target) const;

  // WriteSettings()
  //
  // Writes the table's lines labelled "Table" + tabidx: the rectangle, the
  // first top and bottom anchors as "name:x:y" (empty without one), the
  // location, PageExtract, the ignored pages, SheetNo and the columns.
  // Clears `strErrMsg`; on a failed write returns false with "Error
  // writing to template file, line level table section. " (or the column
  // message) followed by the error number and description.
  bool WriteSettings(TextWriter& hFile, int32_t tabidx,
                     std::string& strErrMsg) const;

  // ReadSettings()
  //
  // Reads a table written into a file of version `strVer`: PageExtract
  // and the ignored pages from 0.923, SheetNo from 0.924. An anchor value
  // "name:x:y" adds an anchor only when x and y are numeric; a value
  // without ":" adds an anchor of that name at 0, 0; an empty one adds
  // none. Failures: "Invalid version number", or "Error reading template
  // file. Incorrect parameter" for a missing line, a non-numeric value or
  // an unknown location word; what was read stays set.
  bool ReadSettings(TextReader& hFile, std::string& strErrMsg,
                    const std::string& strVer);
};

// LocationText()
//
// The written form of a table location: a word or the number.
std::string LocationText(int32_t location);

// ParseLocation()
//
// The inverse of LocationText(); the words are accepted in any letter
// case. False, `location` untouched, for any other text.
bool ParseLocation(const std::string& text, int32_t& location);

// ParseAnchorValue()
//
// Adds to `anchors` the anchor described by a stored anchor value, as
// tables and document-end marks store them: "" adds nothing; "name:x:y"
// adds an anchor when x and y are numeric; a value without ":" adds an
// anchor of that name at offsets 0, 0.
void ParseAnchorValue(const std::string& value,
                      Collection<std::shared_ptr<cAnchorRef>>& anchors);

// AnchorValue()
//
// The stored form of the first anchor of `anchors`: "name:x:y", or ""
// when the collection is empty.
std::string AnchorValue(const Collection<std::shared_ptr<cAnchorRef>>& anchors);

}  // namespace pelinor

#endif  // PELINOR_TABLE_EXTRACT_H_
