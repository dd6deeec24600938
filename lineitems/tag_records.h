// Internal helpers for the labelled records of the document tag file
// (docs/formats/document.md): the line readers shared by field, row and
// cell records. Not part of the public interface.

#ifndef PELINOR_LINEITEMS_TAG_RECORDS_H_
#define PELINOR_LINEITEMS_TAG_RECORDS_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "pelinor/data_parser.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor::tag_records {

// The line buffer the readers below reuse, so that reading a record costs
// no allocation beyond the value it keeps.
inline std::string& ScratchLine() {
  thread_local std::string line;
  return line;
}

// The blank-trimmed text after the first ':' of `line`, false when the line
// has no ':'. The label before it is not needed by these records.
inline bool ValueAfterLabel(std::string_view line, std::string_view& value) {
  size_t colon = line.find(':');
  if (colon == std::string_view::npos) return false;
  value = Trim(line.substr(colon + 1));
  return true;
}

// Whole-line reading: the value after the label.
inline bool ReadLineValue(TextReader& in, std::string& value) {
  std::string& line = ScratchLine();
  std::string_view text;
  if (!in.ReadLine(line) || !ValueAfterLabel(line, text)) return false;
  value.assign(text);
  return true;
}

// First-item reading (cut at a comma, the rest of the line skipped): the
// value after the label.
inline bool ReadItemValue(TextReader& in, std::string& value) {
  std::string& line = ScratchLine();
  std::string_view text;
  if (!in.ReadFirstItem(line) || !ValueAfterLabel(line, text)) return false;
  value.assign(text);
  return true;
}

// First-item reading of a labelled number.
inline bool ReadItemLong(TextReader& in, int32_t& value) {
  std::string& line = ScratchLine();
  std::string_view text;
  return in.ReadFirstItem(line) && ValueAfterLabel(line, text) &&
         ToLong(text, value);
}

// First-item reading of "Label:left:top:width:height".
inline bool ReadCoords(TextReader& in, int32_t& left, int32_t& top,
                       int32_t& width, int32_t& height) {
  std::string& line = ScratchLine();
  std::string_view rest;
  if (!in.ReadFirstItem(line) || !ValueAfterLabel(line, rest)) return false;
  int32_t n[4];
  for (int i = 0; i < 4; ++i) {
    std::string_view head = rest;
    if (i < 3 && !ValueAfterLabel(rest, rest)) return false;
    if (i < 3) head = Trim(head.substr(0, head.find(':')));
    if (!IsNumeric(head) || !ToLong(head, n[i])) return false;
  }
  left = n[0];
  top = n[1];
  width = n[2];
  height = n[3];
  return true;
}

inline std::string CoordsText(int32_t left, int32_t top, int32_t width,
                              int32_t height) {
  return NumberText(left) + ":" + NumberText(top) + ":" + NumberText(width) +
         ":" + NumberText(height);
}

// The version of `strVer` ("ver0.946"), false when unreadable.
inline bool Version(const std::string& strVer, float& ver) {
  return ParseVersionNumber(strVer, ver);
}

}  // namespace pelinor::tag_records

#endif  // PELINOR_LINEITEMS_TAG_RECORDS_H_
