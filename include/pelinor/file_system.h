// File housekeeping shared by every reader and writer.
//
// Thread safety: every function may be called from any thread.

#ifndef PELINOR_FILE_SYSTEM_H_
#define PELINOR_FILE_SYSTEM_H_

#include <string>
#include <string_view>

namespace pelinor {

// FileExists()
//
// True when the file system reports attributes for `path` (a file or a
// directory); false when asking for them fails for any reason.
bool FileExists(const std::string& path);

// DeleteFileQuietly()
//
// Deletes the file at `path`, ignoring every error.
void DeleteFileQuietly(const std::string& path);

// JoinPath()
//
// Joins a directory and a file name with "/", treating a trailing "/" or
// "\" on `dir` as already separated (away from Windows the trailing "\"
// becomes "/", so both name the same file). An empty `dir` gives `name`.
std::string JoinPath(std::string_view dir, std::string_view name);

// FileNameOf()
//
// The part of `path` after its last "/" or "\"; all of it when it has
// neither.
std::string FileNameOf(std::string_view path);

// FileStemOf()
//
// FileNameOf() without its extension (from the last "."). A name whose
// only dot is its first character (".profile") keeps it. Profiles are
// named this way after their settings files.
std::string FileStemOf(std::string_view path);

}  // namespace pelinor

#endif  // PELINOR_FILE_SYSTEM_H_
