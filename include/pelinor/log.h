// Log lines: "yyyy-mm-dd hh:mm:ss message" followed by CR LF, in local
// time, appended by opening and closing the file for every line so that
// several processes may share one log. Logging never fails its caller:
// every error is ignored.
//
// Thread safety: every function may be called from any thread; each line
// is appended with one write, so lines from different writers do not mix.

#ifndef PELINOR_LOG_H_
#define PELINOR_LOG_H_

#include <string>
#include <string_view>

namespace pelinor {

// The environment variable naming the format log.
inline constexpr char kFormatLogVariable[] = "PELINORLOGFORMAT";

// LogLineText()
//
// The line AppendLogLine() writes for `message` now, without its line end.
std::string LogLineText(std::string_view message);

// AppendLogLine()
//
// Appends one log line for `message` to the file at `path` (created when
// missing). Does nothing when `path` is empty.
void AppendLogLine(const std::string& path, std::string_view message);

// FormatLogPath()
//
// The value of PELINORLOGFORMAT, or "" when it is unset or empty.
std::string FormatLogPath();

// LogFormatLine()
//
// Appends `message` to the format log named by PELINORLOGFORMAT; does
// nothing when that variable is unset or empty.
void LogFormatLine(std::string_view message);

}  // namespace pelinor

#endif  // PELINOR_LOG_H_
