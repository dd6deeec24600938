// Internal to the library: the backends behind cRegistry, and the
// registry-file store that stands in for the system registry where there
// is none.
//
// Format: see docs/formats/registry-file.md.
//
// A backend answers the handful of registry operations cRegistry needs,
// each one complete in itself (open, act, close), so that a file store can
// run every call as one locked read-modify-write. Result codes are the
// system's (0 success, 2 not found, 5 access denied).
//
// Thread safety: backends hold no state; every operation may be called from
// any thread and any process at once. RegFile objects are plain values used
// by one thread at a time.

#ifndef PELINOR_CORE_REG_FILE_STORE_H_
#define PELINOR_CORE_REG_FILE_STORE_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pelinor::registry_internal {

// Value types, numbered as the registry numbers them.
inline constexpr uint32_t kRegNone = 0;
inline constexpr uint32_t kRegSz = 1;
inline constexpr uint32_t kRegExpandSz = 2;
inline constexpr uint32_t kRegBinary = 3;
inline constexpr uint32_t kRegDword = 4;
inline constexpr uint32_t kRegMultiSz = 7;

// System result codes the file store reproduces.
inline constexpr int32_t kErrorSuccess = 0;
inline constexpr int32_t kErrorFileNotFound = 2;
inline constexpr int32_t kErrorAccessDenied = 5;

// A query capacity that accepts values of any size.
inline constexpr size_t kAnySize = static_cast<size_t>(-1);

enum class QueryResult { kOk, kNoKey, kNoValue, kTooLarge };
enum class SetResult { kOk, kNoKey, kWriteFailed };

class RegistryBackend {
 public:
  virtual ~RegistryBackend() = default;

  // QueryValue()
  //
  // Reads value `name` ("" for the key's default value) of `key_path`
  // under `hive` into `data`, raw bytes and type unchecked. kTooLarge when
  // the value holds more than `capacity` bytes; `data` is then unspecified.
  virtual QueryResult QueryValue(int32_t hive, std::string_view key_path,
                                 std::string_view name, size_t capacity,
                                 std::string& data) const = 0;

  // SetValue()
  //
  // Creates `key_path` (and any missing parents) and stores the value. As
  // the system's single-byte write does, string types whose bytes do not
  // end in NUL are stored with one NUL added. kNoKey when the key cannot be
  // created or opened for writing, kWriteFailed when the store is not
  // written.
  virtual SetResult SetValue(int32_t hive, std::string_view key_path,
                             std::string_view name, uint32_t type,
                             std::string_view data) const = 0;

  // DeleteKey()
  //
  // Deletes `subkey` of `parent_path` (the parent itself when `subkey` is
  // empty); a key with subkeys is not deleted (5). Returns the raw code,
  // or nothing when the parent cannot be opened for writing.
  virtual std::optional<int32_t> DeleteKey(int32_t hive,
                                           std::string_view parent_path,
                                           std::string_view subkey) const = 0;

  // DeleteValue()
  //
  // Opens `key_path` (creating it first when `create_key` is set) and
  // deletes value `name`. Returns the raw code of the delete (2 when the
  // value is missing), or nothing when the key cannot be had.
  virtual std::optional<int32_t> DeleteValue(int32_t hive,
                                             std::string_view key_path,
                                             std::string_view name,
                                             bool create_key) const = 0;

  // ValueNames()
  //
  // The names of the values of `key_path`, in stored order; nothing when
  // the key is missing.
  virtual std::optional<std::vector<std::string>> ValueNames(
      int32_t hive, std::string_view key_path) const = 0;
};

// SystemBackend()
//
// The registry of this platform: the system registry on Windows, the
// registry-file store elsewhere.
const RegistryBackend& SystemBackend();

// UseBackend()
//
// Makes every registry call of this process go to `backend` (nullptr: back
// to SystemBackend()). For programs that lay a value over the stores, such
// as a locale given on the command line, and for tests.
// REQUIRES: `backend` outlives its use; no registry call runs concurrently
// with the switch.
void UseBackend(const RegistryBackend* backend);

// MachineStorePath()
// UserStorePath()
//
// The files of the machine-wide and per-user stores, from the environment
// at the time of the call: PELINOR_REGISTRY, else /etc/pelinor/registry.reg;
// PELINOR_USER_REGISTRY, else $XDG_CONFIG_HOME/pelinor/registry.reg (an
// absolute XDG_CONFIG_HOME only), else ~/.config/pelinor/registry.reg. ""
// when no home directory can be found.
std::string MachineStorePath();
std::string UserStorePath();

// IsRegistryText()
//
// True when `bytes` are a registry export this store may replace: empty,
// or text without NUL bytes (UTF-16LE with its byte-order mark, or single
// bytes after an optional UTF-8 byte-order mark) whose first non-blank line
// is "Windows Registry Editor Version 5.00" or "REGEDIT4". Anything else
// (a settings file, a binary file) is someone else's file and is never
// overwritten.
bool IsRegistryText(std::string_view bytes);

enum class StoreFileState {
  kMissing,     // no file at that path
  kReady,       // a registry file (or an empty file)
  kForeign,     // a file that is not a registry export
  kUnreadable,  // cannot be opened or read (a directory, no permission)
};

// InspectStoreFile()
//
// What is at `file`. For kUnreadable, `*error` (when given) receives the
// system error number.
StoreFileState InspectStoreFile(const std::string& file, int* error = nullptr);

// One value of a registry file: raw bytes and type, with the comment lines
// written above it.
struct RegFileValue {
  std::string name;  // "" is the key's default value ("@")
  uint32_t type = kRegSz;
  std::string data;
  std::vector<std::string> comments;
};

// One key section of a registry file.
struct RegFileKey {
  std::string path;   // as written, root name included
  std::string match;  // canonical upper-case form used for comparisons
  std::vector<std::string> comments;  // comment lines above the header
  std::vector<RegFileValue> values;   // in file order

  RegFileValue* FindValue(std::string_view name);
  const RegFileValue* FindValue(std::string_view name) const;

  // SetValue()
  //
  // Replaces the value in place, or appends it.
  void SetValue(std::string_view name, uint32_t type, std::string_view data);

  // RemoveValue()
  //
  // False when there is no such value.
  bool RemoveValue(std::string_view name);
};

// CanonicalKeyPath()
//
// The comparison form of a full key path ("HKEY_LOCAL_MACHINE\Software"):
// upper case, the short root names (HKLM, HKCU, HKCR, HKU, HKCC) spelled
// out, trailing backslashes dropped. Nothing when the path is empty or has
// an empty or otherwise unusable component.
std::optional<std::string> CanonicalKeyPath(std::string_view path);

// The contents of one registry file, in file order.
class RegFile {
 public:
  // Parse()
  //
  // Reads a file's bytes: UTF-16LE with its byte-order mark or single-byte
  // text (an UTF-8 byte-order mark is skipped), any line ends. Deletion
  // entries are applied; malformed lines are skipped.
  static RegFile Parse(std::string_view bytes);

  // Lines()
  //
  // The file as this library writes it, one entry per line, without line
  // ends.
  std::vector<std::string> Lines() const;

  // FindKey()
  //
  // The section of the key whose canonical path is `match`, or null.
  RegFileKey* FindKey(std::string_view match);
  const RegFileKey* FindKey(std::string_view match) const;

  // KeyExists()
  //
  // True when the key has a section, or a section lies below it, or it is
  // a root.
  bool KeyExists(std::string_view match) const;

  // HasSubkeys()
  bool HasSubkeys(std::string_view match) const;

  // CreateKey()
  //
  // The key's section, added when missing: before its first subkey's
  // section, else at the end.
  // REQUIRES: match == CanonicalKeyPath(path).
  RegFileKey& CreateKey(std::string_view path, std::string_view match);

  // RemoveTree()
  //
  // Drops the key's section and those of its subkeys.
  void RemoveTree(std::string_view match);

  const std::vector<RegFileKey>& keys() const { return keys_; }

 private:
  std::vector<RegFileKey> keys_;
  std::vector<std::string> trailing_comments_;
};

// The registry-file store: HKEY_LOCAL_MACHINE in MachineStorePath(),
// HKEY_CURRENT_USER in UserStorePath(); other hives have no store. Each
// call reads the file afresh; changes are made under an exclusive lock on
// "<file>.lock" and replace the file in one rename.
class RegFileStore : public RegistryBackend {
 public:
  QueryResult QueryValue(int32_t hive, std::string_view key_path,
                         std::string_view name, size_t capacity,
                         std::string& data) const override;
  SetResult SetValue(int32_t hive, std::string_view key_path,
                     std::string_view name, uint32_t type,
                     std::string_view data) const override;
  std::optional<int32_t> DeleteKey(int32_t hive, std::string_view parent_path,
                                   std::string_view subkey) const override;
  std::optional<int32_t> DeleteValue(int32_t hive, std::string_view key_path,
                                     std::string_view name,
                                     bool create_key) const override;
  std::optional<std::vector<std::string>> ValueNames(
      int32_t hive, std::string_view key_path) const override;
};

}  // namespace pelinor::registry_internal

#endif  // PELINOR_CORE_REG_FILE_STORE_H_
