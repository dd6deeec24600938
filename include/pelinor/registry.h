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
// Thread safety: cRegistry holds no state; calls from several threads and
// processes are safe (file stores are locked and replaced atomically).

#ifndef PELINOR_REGISTRY_H_
#define PELINOR_REGISTRY_H_

#include <cstdint>
#include <string>

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
  // or `strDefault`.
  std::string RegGetValue(int32_t hive, const std::string& application,
                          const std::string& section, const std::string& key,
                          const std::string& strDefault) const;

  // RegSaveValue()
  //
  // Writes a setting; for HKEY_LOCAL_MACHINE an empty value is stored as
  // one NUL character. Returns the status of the write.
  int32_t RegSaveValue(int32_t hive, const std::string& application,
                       const std::string& section, const std::string& key,
                       const std::string& value) const;

  // RegDelete()
  //
  // Deletes a section's key (HKEY_LOCAL_MACHINE) or the per-user store's
  // section; returns the status.
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
  // Creates or opens the key and writes the value as REG_SZ without its
  // terminator (an empty value as one NUL). 0, -1 (no key) or -10 (write
  // failed).
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
// HKEY_LOCAL_MACHINE, or `strDefault`.
std::string ReadServerSetting(const std::string& valueName,
                              const std::string& strDefault);

}  // namespace pelinor

#endif  // PELINOR_REGISTRY_H_
