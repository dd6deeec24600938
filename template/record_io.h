// Small reading helpers shared by the template file's readers: every line
// of a template is either read for its first item (cut at a comma, the
// rest of the line skipped) or as a whole line, and split at its first ":"
// into a label and a value.

#ifndef PELINOR_TEMPLATE_RECORD_IO_H_
#define PELINOR_TEMPLATE_RECORD_IO_H_

#include <cstdint>
#include <string>

#include "pelinor/data_parser.h"
#include "pelinor/text_file.h"

namespace pelinor::template_io {

// Reads the first item of a line and splits it; false at the end of the
// file or when the item holds no ":".
inline bool ReadSplitItem(TextReader& in, std::string& value) {
  std::string line, label;
  return in.ReadFirstItem(line) &&
         cDataParser().SplitNameAndValue(line, label, value, ":");
}

// As ReadSplitItem() for a whole line, keeping the label.
inline bool ReadSplitLine(TextReader& in, std::string& label,
                          std::string& value) {
  std::string line;
  return in.ReadLine(line) &&
         cDataParser().SplitNameAndValue(line, label, value, ":");
}

inline bool ReadSplitLine(TextReader& in, std::string& value) {
  std::string label;
  return ReadSplitLine(in, label, value);
}

// Reads the first item of a line as a labelled integer; `value` is
// untouched on failure.
inline bool ReadLabelledLong(TextReader& in, int32_t& value) {
  std::string line, label;
  return in.ReadFirstItem(line) && ParseLabelledLong(line, label, value);
}

}  // namespace pelinor::template_io

#endif  // PELINOR_TEMPLATE_RECORD_IO_H_
