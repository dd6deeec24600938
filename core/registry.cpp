// cRegistry: the machine-wide and per-user settings over the platform's
// registry backend.
//
// Format (non-Windows store): see docs/formats/registry-file.md.

#include "pelinor/registry.h"

#include <atomic>

#include "pelinor/file_system.h"
#include "pelinor/settings_snapshot.h"
#include "reg_file_store.h"

namespace pelinor {
namespace registry_internal {
namespace {

std::atomic<const RegistryBackend*> backend_in_use{nullptr};

}  // namespace

void UseBackend(const RegistryBackend* backend) {
  backend_in_use.store(backend);
}

}  // namespace registry_internal

namespace {

using registry_internal::QueryResult;
using registry_internal::SetResult;

// Reads go through a buffer of this many bytes; longer values are not read.
constexpr size_t kReadBufferSize = 1024;

constexpr int32_t kStatusNoKey = -1;
constexpr int32_t kStatusWriteFailed = -10;

// The error number the per-user settings delete reports: "Invalid procedure
// call or argument".
constexpr int32_t kInvalidProcedureCall = 5;

const registry_internal::RegistryBackend& Backend() {
  const registry_internal::RegistryBackend* chosen =
      registry_internal::backend_in_use.load();
  return chosen != nullptr ? *chosen : registry_internal::SystemBackend();
}

int32_t SetStatus(SetResult result) {
  switch (result) {
    case SetResult::kOk:
      return 0;
    case SetResult::kNoKey:
      return kStatusNoKey;
    case SetResult::kWriteFailed:
      break;
  }
  return kStatusWriteFailed;
}

// The registry keeps an empty string as its terminator alone.
std::string NonEmpty(const std::string& value) {
  return value.empty() ? std::string(1, '\0') : value;
}

}  // namespace

std::string MachineSettingsKeyPath(const std::string& application,
                                   const std::string& section) {
  return "Software\\Halvern\\" + application + "\\" + section;
}

std::string UserSettingsKeyPath(const std::string& application,
                                const std::string& section) {
  return "Software\\VB and VBA Program Settings\\" + application + "\\" +
         section;
}

std::string cRegistry::RegGetValue(int32_t hive, const std::string& application,
                                   const std::string& section,
                                   const std::string& key,
                                   const std::string& strDefault) const {
  if (hive == kHkeyLocalMachine) {
    return RegGetStringValue(hive, MachineSettingsKeyPath(application, section),
                             key, strDefault);
  }
  if (application.empty() || section.empty()) return strDefault;
  std::string data;
  if (Backend().QueryValue(
          kHkeyCurrentUser, UserSettingsKeyPath(application, section), key,
          registry_internal::kAnySize, data) != QueryResult::kOk) {
    return strDefault;
  }
  if (!data.empty() && data.back() == '\0') data.pop_back();
  return data;
}

int32_t cRegistry::RegSaveValue(int32_t hive, const std::string& application,
                                const std::string& section,
                                const std::string& key,
                                const std::string& value) const {
  if (hive == kHkeyLocalMachine) {
    return RegSetStringValue(hive, MachineSettingsKeyPath(application, section),
                             key, NonEmpty(value));
  }
  if (application.empty() || section.empty()) return kStatusNoKey;
  // Per-user settings are stored with their terminator counted.
  std::string data = value;
  data += '\0';
  return SetStatus(Backend().SetValue(kHkeyCurrentUser,
                                      UserSettingsKeyPath(application, section),
                                      key, registry_internal::kRegSz, data));
}

int32_t cRegistry::RegDelete(int32_t hive, const std::string& application,
                             const std::string& section) const {
  if (hive == kHkeyLocalMachine) {
    return RegDeleteKeySetting(hive, "Software\\Halvern\\" + application,
                               section);
  }
  if (application.empty() || section.empty()) return kInvalidProcedureCall;
  const auto code = Backend().DeleteKey(
      kHkeyCurrentUser, "Software\\VB and VBA Program Settings\\" + application,
      section);
  return code == registry_internal::kErrorSuccess ? 0 : kInvalidProcedureCall;
}

std::string cRegistry::RegGetStringValue(int32_t hive,
                                         const std::string& keyPath,
                                         const std::string& valueName,
                                         const std::string& strDefault) const {
  std::string data;
  if (Backend().QueryValue(hive, keyPath, valueName, kReadBufferSize, data) !=
          QueryResult::kOk ||
      data.empty()) {
    return strDefault;
  }
  if (data.back() == '\0') data.pop_back();
  return data;
}

int32_t cRegistry::RegSetStringValue(int32_t hive, const std::string& keyPath,
                                     const std::string& valueName,
                                     const std::string& value) const {
  // The length written leaves the terminator out; the registry completes
  // the string itself.
  return SetStatus(Backend().SetValue(
      hive, keyPath, valueName, registry_internal::kRegSz, NonEmpty(value)));
}

int32_t cRegistry::RegDeleteKeySetting(int32_t hive, const std::string& keyPath,
                                       const std::string& subkeyName) const {
  // A parent that cannot be opened reports success.
  return Backend().DeleteKey(hive, keyPath, subkeyName).value_or(0);
}

bool cRegistry::RegDeleteStringValue(const std::string& keyPath,
                                     const std::string& valueName) const {
  return Backend().DeleteValue(kHkeyCurrentUser, keyPath, valueName,
                               /*create_key=*/true) ==
         registry_internal::kErrorSuccess;
}

std::string RegReadString(int32_t hive, const std::string& keyPath,
                          const std::string& valueName,
                          const std::string& strDefault) {
  return cRegistry().RegGetStringValue(hive, keyPath, valueName, strDefault);
}

std::string ReadServerSetting(const std::string& valueName,
                              const std::string& strDefault) {
  // A batch that took a snapshot answers its two settings from it.
  if (const cSettingsSnapshot* snapshot = cSettingsSnapshot::Current()) {
    if (valueName == kLocaleValue) return snapshot->Locale(strDefault);
    if (valueName == kProfileDirValue) {
      return snapshot->ProfileDir().empty() ? strDefault
                                            : snapshot->ProfileDir();
    }
  }
  return RegReadString(kHkeyLocalMachine, kServerKeyPath, valueName,
                       strDefault);
}

std::string ServerProfileDir() {
  const std::string dir = ReadServerSetting(kProfileDirValue, "");
#ifdef _WIN32
  return dir;
#else
  if (dir.empty() || dir[0] == '/') return dir;
  // Relative to the folder of the machine-wide settings file, so that an
  // installation can be moved or run from any current directory.
  const std::string store = registry_internal::MachineStorePath();
  const size_t slash = store.find_last_of('/');
  if (slash == std::string::npos) return dir;
  return JoinPath(store.substr(0, slash == 0 ? 1 : slash), dir);
#endif
}

int32_t RegDeleteValueSetting(int32_t hive, const std::string& keyPath,
                              const std::string& valueName) {
  return Backend()
      .DeleteValue(hive, keyPath, valueName, /*create_key=*/false)
      .value_or(registry_internal::kErrorFileNotFound);
}

std::vector<std::string> RegValueNames(int32_t hive,
                                       const std::string& keyPath) {
  return Backend()
      .ValueNames(hive, keyPath)
      .value_or(std::vector<std::string>());
}

}  // namespace pelinor
