// Internal helpers for the labelled records of the document tag file
// (docs/formats/document.md): the line readers shared by field, row and
// cell records. Not part of the public interface.

#ifndef PELINOR_LINEITEMS_TAG_RECORDS_H_
#define PELINOR_LINEITEMS_TAG_RECORDS_H_

#include <cstdint>
#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/numeric.h"
#include "pelinor/text_file.h"

namespace pelinor::tag_records {

// Whole-line reading: the value after the label.
inline bool ReadLineValue(TextReader& in, std::string& value) {
  std::string line, name;
  if (!in.ReadLine(line)) return false;
  return cDataParser().SplitNameAndValue(line, name, value, ":");
}

// First-item reading: the value after the label.
inline bool ReadItemValue(TextReader& in, std::string& value) {
  std::string line, name;
  if (!in.ReadItem(line)) return false;
  return cDataParser().SplitNameAndValue(line, name, value, ":");
}

// First-item reading of a labelled number.
inline bool ReadItemLong(TextReader& in, int32_t& value) {
  std::string line, name;
  if (!in.ReadItem(line)) return false;
  return ParseLabelledLong(line, name, value);
}

// First-item reading of "Label:left:top:width:height".
inline bool ReadCoords(TextReader& in, int32_t& left, int32_t& top,
                       int32_t& width, int32_t& height) {
  std::string rest;
  if (!ReadItemValue(in, rest)) return false;
  int32_t n[4];
  cDataParser parser;
  for (int i = 0; i < 4; ++i) {
    std::string head, tail;
    if (i < 3) {
      if (!parser.SplitNameAndValue(rest, head, tail, ":")) return false;
    } else {
      head = rest;
    }
    if (!IsNumeric(head) || !ToLong(head, n[i])) return false;
    rest = tail;
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
