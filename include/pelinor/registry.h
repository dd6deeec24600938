// Access to the machine-wide and per-user registry settings.
//
// Format (non-Windows store): see docs/formats/registry-file.md.
//
// HKEY_LOCAL_MACHINE settings live under "Software\Halvern\" + application
// + "\" + section; any other hive means the per-user application settings
// store (application, section, key). On Windows the system registry is
// used; elsewhere both stores are text files in the "Windows Registry
// Editor Version 5.00" format: the machine-wide one named by the
// environment variable PELINOR_REGISTRY (default /etc/pelinor/registry.reg)
// and the per-user one by PELINOR_USER_REGISTRY (default
// $XDG_CONFIG_HOME/pelinor/registry.reg, else ~/.config/pelinor/...).
//
// Nothing here raises an error: reads fall back to the default, writes and
// deletes return a status (0 success, -1 key not available, -10 write
// failed, or a raw system code for key deletion).
//
// The per-user store holds application settings under HKEY_CURRENT_USER
// "Software\VB and VBA Program Settings\" + application + "\" + section,
// one string value per key, as the system's own per-user settings calls
// keep them.
//
// Thread safety: cRegistry holds no state; calls from several threads and
// processes are safe (file stores are locked and replaced atomically).

#ifndef PELINOR_REGISTRY_H_
#define PELINOR_REGISTRY_H_

#include <cstdint>
#include <string>
#include <vector>

namespace pelinor {

// Predefined hive handles, as the 32-bit values clients pass.
inline constexpr int32_t kHkeyClassesRoot = static_cast<int32_t>(0x80000000u);
inline constexpr int32_t kHkeyCurrentUser = static_cast<int32_t>(0x80000001u);
inline constexpr int32_t kHkeyLocalMachine = static_cast<int32_t>(0x80000002u);
inline constexpr int32_t kHkeyUsers = static_cast<int32_t>(0x80000003u);

// The server's own settings: application, section and values.
inline constexpr char kServerApplication[] = "Pelinor Server";
inline constexpr char kServerSection[] = "Default";
inline constexpr char kServerKeyPath[] =
    "Software\\Halvern\\Pelinor Server\\Default";
inline constexpr char kLocaleValue[] = "HalvernLocale";
inline constexpr char kProfileDirValue[] = "ProfileDir";

class cRegistry {
 public:
  // RegGetValue()
  //
  // For HKEY_LOCAL_MACHINE, RegGetStringValue() of "Software\Halvern\" +
  // application + "\" + section; for other hives the per-user store's value
  // (any length, less one trailing NUL), or `strDefault` when the value is
  // missing or the application or section is empty.
  std::string RegGetValue(int32_t hive, const std::string& application,
                          const std::string& section, const std::string& key,
                          const std::string& strDefault) const;

  // RegSaveValue()
  //
  // Writes a setting; for HKEY_LOCAL_MACHINE an empty value is stored as
  // one NUL character. Returns the status of the write: for the per-user
  // store too 0, -1 (no key; also an empty application or section) or -10.
  int32_t RegSaveValue(int32_t hive, const std::string& application,
                       const std::string& section, const std::string& key,
                       const std::string& value) const;

  // RegDelete()
  //
  // Deletes a section's key (HKEY_LOCAL_MACHINE, the status of
  // RegDeleteKeySetting()) or the per-user store's section with all its
  // values: 0, or 5 ("Invalid procedure call or argument") when the section
  // is missing or empty, the application is empty or the delete fails.
  int32_t RegDelete(int32_t hive, const std::string& application,
                    const std::string& section) const;

  // RegGetStringValue()
  //
  // Reads a value through a 1024-byte buffer: the default when the key or
  // value is missing, longer than the buffer, or of size 0; otherwise the
  // returned bytes, less one trailing NUL when the last byte is NUL.
  std::string RegGetStringValue(int32_t hive, const std::string& keyPath,
                                const std::string& valueName,
                                const std::string& strDefault) const;

  // RegSetStringValue()
  //
  // Creates or opens the key and writes the value as REG_SZ with a length
  // that leaves its terminator out (an empty value as one NUL); the
  // registry keeps the string terminated all the same, so a value reads
  // back whole up to 1023 characters. 0, -1 (no key) or -10 (write failed).
  int32_t RegSetStringValue(int32_t hive, const std::string& keyPath,
                            const std::string& valueName,
                            const std::string& value) const;

  // RegDeleteKeySetting()
  //
  // Deletes subkey `subkeyName` of `keyPath`; the raw result of the delete,
  // and 0 when the parent key cannot be opened.
  int32_t RegDeleteKeySetting(int32_t hive, const std::string& keyPath,
                              const std::string& subkeyName) const;

  // RegDeleteStringValue()
  //
  // Creates or opens `keyPath` under HKEY_CURRENT_USER and deletes the
  // value; true when the delete succeeded.
  bool RegDeleteStringValue(const std::string& keyPath,
                            const std::string& valueName) const;
};

// RegReadString()
//
// Reads a value with exactly the rules of cRegistry::RegGetStringValue().
std::string RegReadString(int32_t hive, const std::string& keyPath,
                          const std::string& valueName,
                          const std::string& strDefault);

// ReadServerSetting()
//
// The server's setting `valueName` ("HalvernLocale", "ProfileDir") from
// HKEY_LOCAL_MACHINE, or `strDefault`. On a thread where a
// ScopedSettingsSnapshot is active, "HalvernLocale" and "ProfileDir" come
// from that snapshot instead (settings_snapshot.h).
std::string ReadServerSetting(const std::string& valueName,
                              const std::string& strDefault);

// ServerProfileDir()
//
// "ProfileDir" as a directory to open: a relative value is taken relative
// to the folder of the machine-wide settings file (not the current
// directory); "" when the setting is missing or empty.
std::string ServerProfileDir();

// MachineSettingsKeyPath()
// UserSettingsKeyPath()
//
// The key paths of an application's section: "Software\Halvern\" +
// application + "\" + section under HKEY_LOCAL_MACHINE, and
// "Software\VB and VBA Program Settings\" + application + "\" + section
// under HKEY_CURRENT_USER.
std::string MachineSettingsKeyPath(const std::string& application,
                                   const std::string& section);
std::string UserSettingsKeyPath(const std::string& application,
                                const std::string& section);

// RegDeleteValueSetting()
//
// Deletes value `valueName` of an existing key, never creating the key:
// 0 when deleted, 2 when the key or the value is missing, otherwise the
// raw system code (5 when the store cannot be written).
int32_t RegDeleteValueSetting(int32_t hive, const std::string& keyPath,
                              const std::string& valueName);

// RegValueNames()
//
// The names of the values of `keyPath` in stored order ("" names the
// key's default value); empty when the key is missing.
std::vector<std::string> RegValueNames(int32_t hive,
                                       const std::string& keyPath);

}  // namespace pelinor

#endif  // PELINOR_REGISTRY_H_
