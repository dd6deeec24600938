// Tagged record lines ("Label:Value") and the shared record routines.
//
// Format: see docs/formats/record-lines.md.
//
// A record line is a label, a delimiter and a value; the label is the text
// before the first delimiter and the value everything after it, further
// delimiters included. Only the space character counts as padding. All
// positions are one-based; every search is exact (case-sensitive), except
// label comparison in GetLine(), which ignores case.
//
// Thread safety: cDataParser holds no state; every function here is pure
// apart from FileExists()/DeleteFileQuietly() (file_system.h).

#ifndef PELINOR_DATA_PARSER_H_
#define PELINOR_DATA_PARSER_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "pelinor/collection.h"
#include "pelinor/file_system.h"

namespace pelinor {

class cDataParser {
 public:
  // GetLine()
  //
  // Finds the first line at or after `lStart` in `strFileData` whose label
  // equals `strLabel` ignoring case (any label when `strLabel` is empty).
  // Lines are the texts before each occurrence of `strCharLineEnd`, so text
  // after the last line end is never examined. A line without the
  // delimiter is skipped; the label is taken untrimmed after the line is
  // trimmed, so "Name :x" does not match "Name". On a match sets `lEnd` to
  // the first position after that line's end and returns the trimmed line;
  // otherwise returns "" and leaves `lEnd` untouched. `lStart` is never
  // changed: a caller walking a file sets it to `lEnd` between calls.
  std::string GetLine(const std::string& strFileData, int32_t lStart,
                      int32_t& lEnd, const std::string& strLabel,
                      const std::string& strDelimiter,
                      const std::string& strCharLineEnd) const;

  // ExtractValue()
  //
  // GetLine() followed by SplitNameAndValue() of the line found; the value
  // goes to `strExtractedValue`. False, with `strExtractedValue` untouched,
  // when no line is found.
  bool ExtractValue(const std::string& strData, int32_t lStart, int32_t& lEnd,
                    const std::string& strLabel, std::string& strExtractedValue,
                    const std::string& strDelimiter,
                    const std::string& strCharLineEnd) const;

  // SplitNameAndValue()
  //
  // Splits at the first `strDelimiter`: `strName` is the trimmed text
  // before it, `strValue` the trimmed text from one character after the
  // delimiter's first character (so a longer delimiter leaves its remaining
  // characters at the front of the value). False, outputs untouched, when
  // the delimiter is absent. An empty value is a successful split.
  bool SplitNameAndValue(const std::string& strLine, std::string& strName,
                         std::string& strValue,
                         const std::string& strDelimiter) const;

  // DecodeDataFromFile()
  //
  // Undoes the file escaping of line breaks in place: "\\" gives "\",
  // "\r" a carriage return, "\n" a line feed; any other pair and a final
  // lone backslash are kept as they stand.
  void DecodeDataFromFile(std::string& strIn) const;

  // SplitTriplet()
  //
  // Splits "left:middle:right". `strLeft` is the trimmed text before the
  // first delimiter. When the delimiter ends the line, returns true with
  // middle and right untouched. Otherwise the rest after the first
  // delimiter is split with SplitNameAndValue() into middle and right;
  // when the rest has no delimiter, `strMiddle` is the rest untrimmed and
  // `strRight` is untouched. False, outputs untouched, without delimiter.
  bool SplitTriplet(const std::string& strLine, std::string& strLeft,
                    std::string& strMiddle, std::string& strRight,
                    const std::string& strDelimiter) const;
};

// EscapeQuotes()
//
// Rewrites `text` with every backslash doubled and every double quote
// replaced by the two characters "\Q", so that it survives the quoted
// item form.
void EscapeQuotes(std::string& text);

// UnescapeQuotes()
//
// Inverse of EscapeQuotes(): "\\" gives "\", "\Q" a double quote; any
// other backslash pair and a final lone backslash are kept.
void UnescapeQuotes(std::string& text);

// ParseVersionNumber()
//
// For a line of at least 4 characters, converts the text from the fourth
// character on with LeadingNumber() into `value` and returns true (the
// first three characters are not checked). Shorter lines: false, `value`
// untouched.
bool ParseVersionNumber(const std::string& line, float& value);

// ParseLabelledLong()
//
// Splits `line` at ":"; true when that succeeds and the value is numeric,
// with `name` set and `value` the value rounded half to even. Otherwise
// false with `value` untouched.
bool ParseLabelledLong(const std::string& line, std::string& name,
                       int32_t& value);

// TrailingDigits()
//
// The longest run of "0"-"9" at the end of `text` ("Zone12" gives "12").
std::string TrailingDigits(std::string_view text);

// TextAfterLast()
//
// The text after the last occurrence of the one-character `separator`;
// "" when the separator does not occur.
std::string TextAfterLast(std::string_view text, std::string_view separator);

// The version line every writer stamps, and its value.
inline constexpr char kVersionLine[] = "ver0.946";

}  // namespace pelinor

#endif  // PELINOR_DATA_PARSER_H_
