// Shared plumbing of the pelinor command-line program: text conversion
// between people (UTF-8) and the library (Windows-1252), output, errors
// and the exit status.

#ifndef PELINOR_CLI_CLI_UTIL_H_
#define PELINOR_CLI_CLI_UTIL_H_

#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor::cli {

// FromUtf8()
//
// Converts UTF-8 text (command-line arguments) to Windows-1252. Characters
// with no Windows-1252 form become "?"; bytes that are not valid UTF-8
// are taken as Windows-1252 already.
std::string FromUtf8(std::string_view utf8);

// ToUtf8()
//
// Converts Windows-1252 text to UTF-8. The five undefined bytes (0x81,
// 0x8D, 0x8F, 0x90, 0x9D) map to the control characters of the same code;
// NUL and other control bytes are kept.
std::string ToUtf8(std::string_view cp1252);

// Json()
//
// A JSON string holding the UTF-8 form of a Windows-1252 text.
nlohmann::json Json(std::string_view cp1252);

// PrintLine()
//
// Writes a Windows-1252 text and a line feed to standard output as UTF-8.
void PrintLine(std::string_view cp1252);

// PrintJson()
//
// Writes `value` (already UTF-8) to standard output, indented, and a
// line feed.
void PrintJson(const nlohmann::json& value);

// Fail()
//
// Writes "pelinor: " + a Windows-1252 message to standard error as UTF-8
// and makes the program exit with status `code` (1 by default).
void Fail(std::string_view cp1252_message, int code = 1);

// ExitStatus()
//
// The status the program exits with; 0 until Fail() or SetExitStatus().
int ExitStatus();
void SetExitStatus(int code);

}  // namespace pelinor::cli

#endif  // PELINOR_CLI_CLI_UTIL_H_
