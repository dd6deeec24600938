// Record lines and quoted items: the record routines over arbitrary text,
// and the item and line reader over arbitrary bytes.

#include <cstdint>
#include <string>

#include "fuzz_util.h"
#include "pelinor/data_parser.h"
#include "pelinor/text_file.h"

using pelinor::cDataParser;
using pelinor::fuzz::Check;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto parts = pelinor::fuzz::Split(data, size, 4);
  const std::string& label = parts[0];
  const std::string& delimiter = parts[1];
  const std::string& line_end = parts[2];
  const std::string& text = parts[3];
  const cDataParser parser;

  // Walking a file line by line must end: each call moves past a line.
  int32_t start = 1;
  for (size_t steps = 0; steps <= text.size() + 1; ++steps) {
    int32_t end = start;
    const std::string line =
        parser.GetLine(text, start, end, label, delimiter, line_end);
    if (line.empty()) break;
    Check(end > start, "GetLine did not move forward");
    start = end;
  }
  int32_t end = 0;
  std::string value;
  parser.ExtractValue(text, 1, end, label, value, delimiter, line_end);

  std::string name, left, middle, right;
  parser.SplitNameAndValue(text, name, value, delimiter);
  parser.SplitTriplet(text, left, middle, right, delimiter);
  std::string decoded = text;
  parser.DecodeDataFromFile(decoded);

  float version = 0;
  pelinor::ParseVersionNumber(text, version);
  int32_t number = 0;
  pelinor::ParseLabelledLong(text, name, number);
  pelinor::TrailingDigits(text);
  pelinor::TextAfterLast(text, delimiter);

  std::string escaped = text;
  pelinor::EscapeQuotes(escaped);
  Check(escaped.find('"') == std::string::npos, "an escaped text has a quote");
  pelinor::UnescapeQuotes(escaped);
  Check(escaped == text, "unescaping an escaped text changed it");

  // Every reading mode over the same bytes reaches the end.
  for (int mode = 0; mode < 4; ++mode) {
    pelinor::TextReader reader;
    reader.OpenText(text);
    std::string item;
    bool flag = false;
    int32_t n = 0;
    double d = 0;
    for (size_t steps = 0; !reader.AtEnd(); ++steps) {
      Check(steps <= text.size(), "a reader did not move forward");
      const size_t before = reader.Tell();
      switch (mode) {
        case 0:
          reader.ReadLine(item);
          break;
        case 1:
          reader.ReadItem(item);
          break;
        case 2:
          reader.ReadBool(flag);
          break;
        default:
          if (steps % 2 == 0) {
            reader.ReadLong(n);
          } else {
            reader.ReadDouble(d);
          }
      }
      Check(reader.Tell() > before, "a read did not consume anything");
    }
  }
  return 0;
}
