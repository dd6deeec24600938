// Shared plumbing of the pelinor command-line program: text conversion
// between people (UTF-8) and the library (Windows-1252), output, errors
// and the exit status.

#ifndef PELINOR_CLI_CLI_UTIL_H_
#define PELINOR_CLI_CLI_UTIL_H_

#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor::cli {

// Thrown by FromUtf8() for a character that Windows-1252 cannot hold; the
// program reports what() after "pelinor: " and exits with status 2.
class EncodingError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// FromUtf8()
//
// Converts UTF-8 text (command-line arguments) to Windows-1252. Bytes that
// are not valid UTF-8 are taken as Windows-1252 already. A character with
// no Windows-1252 form throws EncodingError naming it ("\"中\" (U+4E2D) in
// \"中文\" cannot be written in Windows-1252"), because the files would
// otherwise silently hold "?" in its place.
std::string FromUtf8(std::string_view utf8);

// PathText()
//
// FromUtf8() for texts that are only shown, such as file names in
// messages: characters with no Windows-1252 form become "?".
std::string PathText(std::string_view utf8);

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

// WriteStdout()
//
// Writes UTF-8 text to standard output as it stands. The first failure's
// system error number is kept for FlushStdout().
void WriteStdout(std::string_view utf8);

// FlushStdout()
//
// Flushes standard output: 0 when everything written so far reached it,
// else the system error number of the first failure (EPIPE for a closed
// pipe, ENOSPC for a full disk).
int FlushStdout();

// PrintJsonLine()
//
// Writes `value` (already UTF-8) to standard output on one line, for the
// --json-lines form: one object per line, written as soon as it is known.
void PrintJsonLine(const nlohmann::json& value);

// FileErrorText()
//
// "<file>: <what>: <system reason>", or "<file>: <what>" when `error` is 0;
// `file` is a path as typed (not transcoded), `what` Windows-1252. When
// `what` names the file already ("Cannot create file <file>"), the leading
// "<file>: " is left out.
std::string FileErrorText(const std::string& file, std::string_view what,
                          int error);

// FailFile()
//
// Fail(FileErrorText(file, what, error)): a failure about one file, naming
// it and the system's reason. `error` defaults to the reason the library's
// latest failed file open or write on this thread gave (LastFileError()).
void FailFile(const std::string& file, std::string_view what, int error = -1);

// Warn()
//
// Writes "pelinor: warning: " + a Windows-1252 message to standard error;
// the exit status is unchanged.
void Warn(std::string_view cp1252_message);

// The outline a configuration file must have.
enum class ConfigForm {
  kSectioned,  // at least one "[Section]" header line
  kVersioned,  // a version line ("ver" and a number) first
};

// CheckConfigurationFile()
//
// True when `file` can be configuration of `form`: a readable, non-empty
// text file (no NUL bytes) with that outline. Otherwise Fail()s with one
// line naming the file ("<file>: is a directory, not a configuration
// file", "... is empty, ...", "... is not a text file", "... has no
// section ...", "... has no version line ...", or the system's reason it
// cannot be read) and answers false. Readers answer such files with their
// defaults, which would hide the mistake.
bool CheckConfigurationFile(const std::string& file, ConfigForm form);

// WarnIfUtf8()
//
// The file formats are Windows-1252: warns when `file` starts with a UTF-8
// byte-order mark or is valid UTF-8 holding non-ASCII characters, since
// such characters read as two or three Windows-1252 characters each.
void WarnIfUtf8(const std::string& file);

// UseRegistryFile()
//
// Points the library's machine-wide registry at `file` when one is given
// (a --registry option). When the verb `needed` the registry this time,
// checks the file in force if one was named by `file` or PELINOR_REGISTRY:
// true when it is a registry file; false (after Fail()) when it is
// missing, unreadable or not a registry export. The default store may be
// absent (the settings' defaults apply).
bool UseRegistryFile(const std::string& file, bool needed);

// CheckPatternSpec()
//
// True when the Windows-1252 pattern specification `spec` is legal;
// otherwise Fail()s with status 2 ("invalid pattern specification
// \"...\": ..."), so that a bad specification is told apart from values
// that do not match a good one (status 1).
bool CheckPatternSpec(const std::string& spec);

// ProgressWanted()
//
// True when a progress bar may be drawn on standard error: it is a
// terminal and TERM is not "dumb".
bool ProgressWanted();

// HelpWidth()
//
// The width help text is wrapped to: the terminal's columns when standard
// output is a terminal, else 80.
size_t HelpWidth();

// WrapText()
//
// Wraps every line of `text` longer than `width` at blanks. Continuation
// lines are indented to the line's description column (the text after the
// first run of two or more blanks past its indent), else to its indent.
std::string WrapText(std::string_view text, size_t width);

// NearestName()
//
// The name among `names` closest to `typed` by edit distance, when that
// distance is at most a third of the longer name (rounded up); "" when none
// is that close.
std::string NearestName(std::string_view typed,
                        const std::vector<std::string>& names);

// InstallSignalHandlers()
//
// Makes SIGTERM, SIGINT and SIGHUP remove the temporary files of writes in
// flight (RemoveTemporaryFiles()) before the program dies of the signal as
// it would have, and lets a closed pipe (SIGPIPE) end the program quietly
// whatever disposition the parent left.
void InstallSignalHandlers();

// ExitStatus()
//
// The status the program exits with; 0 until Fail() or SetExitStatus().
int ExitStatus();
void SetExitStatus(int code);

}  // namespace pelinor::cli

#endif  // PELINOR_CLI_CLI_UTIL_H_
