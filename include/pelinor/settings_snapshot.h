// The server settings a batch of work reads once: the date locale, the
// profile directory and the character-mapping file "CharMap.txt" found
// there, and whether a format log is wanted.
//
// The library's per-call functions (cFormat's date routines,
// EvaluatePattern(), ReadServerSetting()) read the registry, and the
// mapping file, on every call, so that a change made by an administrator is
// seen at once. A batch that captures thousands of values opts out of that
// by taking one snapshot and handing it down: either explicitly, through
// the overloads that take a cSettingsSnapshot, or for one thread at a time
// through ScopedSettingsSnapshot, which the routines deep inside the
// formatter and the pattern engine consult.
//
// Ownership and thread safety: a snapshot is immutable once taken and is
// shared through std::shared_ptr<const cSettingsSnapshot>; any number of
// threads may use one at once. A ScopedSettingsSnapshot affects only the
// thread that created it.

#ifndef PELINOR_SETTINGS_SNAPSHOT_H_
#define PELINOR_SETTINGS_SNAPSHOT_H_

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace pelinor {

class cCharMapper;

class cSettingsSnapshot {
 public:
  // Take()
  //
  // Reads "HalvernLocale" and "ProfileDir" from the machine-wide settings
  // (ServerProfileDir() resolves a relative directory) and loads
  // "CharMap.txt" from that directory when the file exists. A mapping file
  // that cannot be read is not an error here: its message is kept and
  // every evaluation through the snapshot fails with it, as a per-call
  // evaluation would.
  static std::shared_ptr<const cSettingsSnapshot> Take();

  // Make()
  //
  // A snapshot from given values, for callers that keep their settings
  // elsewhere: `locale` as "HalvernLocale" would hold it (nullopt: not
  // set), `profile_dir` the directory of "CharMap.txt" ("" for none),
  // loaded as Take() does.
  static std::shared_ptr<const cSettingsSnapshot> Make(
      std::optional<std::string> locale, const std::string& profile_dir);

  // Locale()
  //
  // "HalvernLocale" as read, or `strDefault` when it was not set.
  std::string Locale(const std::string& strDefault) const {
    return locale_.value_or(strDefault);
  }

  // LocaleValue()
  //
  // "HalvernLocale" as read; nullopt when it was not set.
  const std::optional<std::string>& LocaleValue() const { return locale_; }

  // ProfileDir()
  //
  // The resolved profile directory; "" when none is set.
  const std::string& ProfileDir() const { return profile_dir_; }

  // CharMapPath()
  //
  // The path of "CharMap.txt" in ProfileDir(), or "" without a directory.
  const std::string& CharMapPath() const { return char_map_path_; }

  // CharMapper()
  //
  // The mappings loaded from CharMapPath(); null when there is no such
  // file (evaluations then use the built-in mappings) or it failed to load.
  const std::shared_ptr<const cCharMapper>& CharMapper() const {
    return char_mapper_;
  }

  // CharMapError()
  //
  // The loader's message when CharMapPath() exists but could not be read;
  // "" otherwise.
  const std::string& CharMapError() const { return char_map_error_; }

  // FormatLogOn()
  //
  // Whether PELINORLOGFORMAT named a format log when the snapshot was
  // made. Under a ScopedSettingsSnapshot, FormatLogWanted() answers from
  // this instead of reading the environment for every value.
  bool FormatLogOn() const { return format_log_on_; }

  // Id()
  //
  // A number no other snapshot of this process has, so that caches built
  // for one snapshot are never used with another.
  uint64_t Id() const { return id_; }

  // Current()
  //
  // The snapshot a ScopedSettingsSnapshot installed on this thread, or
  // null.
  static const cSettingsSnapshot* Current();

 private:
  cSettingsSnapshot() = default;
  void LoadCharMap();

  uint64_t id_ = 0;
  std::optional<std::string> locale_;
  std::string profile_dir_;
  std::string char_map_path_;
  std::shared_ptr<const cCharMapper> char_mapper_;
  std::string char_map_error_;
  bool format_log_on_ = false;
};

// ScopedSettingsSnapshot
//
// While alive, this thread's reads of "HalvernLocale" and "ProfileDir"
// through ReadServerSetting(), and the mapping file used by
// EvaluatePattern(), come from `snapshot` instead of the registry and the
// file system. Scopes nest; the previous one is restored on destruction.
// REQUIRES: `snapshot` outlives the scope; destroyed on the creating
// thread.
class ScopedSettingsSnapshot {
 public:
  explicit ScopedSettingsSnapshot(const cSettingsSnapshot* snapshot);
  ~ScopedSettingsSnapshot();
  ScopedSettingsSnapshot(const ScopedSettingsSnapshot&) = delete;
  ScopedSettingsSnapshot& operator=(const ScopedSettingsSnapshot&) = delete;

 private:
  const cSettingsSnapshot* previous_;
};

}  // namespace pelinor

#endif  // PELINOR_SETTINGS_SNAPSHOT_H_
