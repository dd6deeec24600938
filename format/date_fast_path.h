// The quick reading of plain numeric dates ("12/10/2003", "1.2.03",
// "2003-12-31") that cFormat::FormatDate() tries before its full
// recognition. Rules: docs/formats/dates.md.
//
// Thread safety: stateless; reads the locale as FormatDate() does.

#ifndef PELINOR_FORMAT_DATE_FAST_PATH_H_
#define PELINOR_FORMAT_DATE_FAST_PATH_H_

#include <cstdint>
#include <string>
#include <string_view>

namespace pelinor::internal {

// FormatPlainNumericDate()
//
// Reads `value` when it is three runs of digits split by two of the same
// separator ("/", ".", " ", "-" or ":") and nothing else, in the orders
// FormatDate() tries for the format of `code`. Returns true with `out` set
// to exactly what FormatDate() gives for such a value. Returns false, with
// `out` unchanged, for any other value or when no order reads it: the full
// recognition then decides (it may still read the value, for example with
// a separator misread as a one).
//
// A value of this shape holds no letter, so neither an English month nor
// a month of another language can be found in it, and the full
// recognition reaches the separated parts with the same outcome.
bool FormatPlainNumericDate(std::string_view value, int32_t code,
                            std::string& out);

}  // namespace pelinor::internal

#endif  // PELINOR_FORMAT_DATE_FAST_PATH_H_
