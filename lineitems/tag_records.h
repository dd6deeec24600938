// Internal helpers for the labelled records of the document tag file
// (docs/formats/document.md): the line readers shared by field, row and
// cell records. Not part of the public interface.
//
// Writers write their lines with TextWriter::WriteLineParts(), so that a
// record costs no string built for it.

#ifndef PELINOR_LINEITEMS_TAG_RECORDS_H_
#define PELINOR_LINEITEMS_TAG_RECORDS_H_

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "pelinor/data_parser.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor::tag_records {

// `s` without leading and trailing spaces, as Trim() gives it; most values
// have none, and those are returned without the call.
inline std::string_view TrimSpaces(std::string_view s) {
  if (s.empty() || (s.front() != ' ' && s.back() != ' ')) return s;
  return Trim(s);
}

// The blank-trimmed text after the first ':' of `line`, false when the line
// has no ':'. The label before it is not needed by these records.
inline bool ValueAfterLabel(std::string_view line, std::string_view& value) {
  size_t colon = line.find(':');
  if (colon == std::string_view::npos) return false;
  value = TrimSpaces(line.substr(colon + 1));
  return true;
}

// ToLong() of a record's number. Nearly every number of a tag file is a
// few plain digits; those are converted here without the call (ToLong()
// gives them the same value), anything else by ToLong().
inline bool NumberValue(std::string_view text, int32_t& value) {
  return PlainDigitsToLong(text, value) || ToLong(text, value);
}

// Whole-line reading: the value after the label.
inline bool ReadLineValue(TextReader& in, std::string& value) {
  std::string_view line, text;
  if (!in.ReadLineView(line) || !ValueAfterLabel(line, text)) return false;
  value.assign(text);
  return true;
}

// First-item reading (cut at a comma, the rest of the line skipped): the
// value after the label.
inline bool ReadItemValue(TextReader& in, std::string& value) {
  std::string_view line, text;
  if (!in.ReadFirstItemView(line) || !ValueAfterLabel(line, text)) {
    return false;
  }
  value.assign(text);
  return true;
}

// First-item reading of a labelled number.
inline bool ReadItemLong(TextReader& in, int32_t& value) {
  std::string_view line, text;
  return in.ReadFirstItemView(line) && ValueAfterLabel(line, text) &&
         NumberValue(text, value);
}

// First-item reading of "Label:left:top:width:height". Each number is
// trimmed of spaces and must be numeric; a fifth ':' leaves the last
// number unreadable.
inline bool ReadCoords(TextReader& in, int32_t& left, int32_t& top,
                       int32_t& width, int32_t& height) {
  std::string_view line, rest;
  if (!in.ReadFirstItemView(line) || !ValueAfterLabel(line, rest)) {
    return false;
  }
  int32_t n[4];
  for (int i = 0; i < 4; ++i) {
    std::string_view head = rest;
    if (i < 3) {
      const size_t colon = rest.find(':');
      if (colon == std::string_view::npos) return false;
      head = TrimSpaces(rest.substr(0, colon));
      rest = TrimSpaces(rest.substr(colon + 1));
    }
    if (!NumberValue(head, n[i])) return false;
  }
  left = n[0];
  top = n[1];
  width = n[2];
  height = n[3];
  return true;
}

// The room to make for a count of `n` records read from `in`: never more
// than the rest of the file could hold at 64 bytes a record (real records
// take more), so a damaged count reserves little and reads to the end.
inline int RecordsToReserve(const TextReader& in, int32_t n) {
  const size_t fit = (in.Data().size() - in.Tell()) / 64;
  return n <= 0 ? 0 : static_cast<int>(std::min<size_t>(n, fit));
}

// The version of `strVer` ("ver0.946"), false when unreadable. Every
// record of a file is read with the file's one version line, so the last
// line converted on this thread is remembered with its number.
inline bool Version(const std::string& strVer, float& ver) {
  struct Memo {
    char text[16];
    size_t size = 0;  // 0: nothing remembered (a version line has 4 or more)
    float ver = 0;
  };
  thread_local Memo memo;
  if (memo.size != 0 && strVer.size() == memo.size &&
      std::memcmp(strVer.data(), memo.text, memo.size) == 0) {
    ver = memo.ver;
    return true;
  }
  if (!ParseVersionNumber(strVer, ver)) return false;
  if (strVer.size() <= sizeof memo.text) {
    std::memcpy(memo.text, strVer.data(), strVer.size());
    memo.size = strVer.size();
    memo.ver = ver;
  }
  return true;
}

}  // namespace pelinor::tag_records

#endif  // PELINOR_LINEITEMS_TAG_RECORDS_H_
