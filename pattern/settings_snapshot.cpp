// cSettingsSnapshot: the server settings and the mapping file of a batch,
// read once. Registry file: docs/formats/registry-file.md; mapping file:
// docs/formats/charmap.md.

#include "pelinor/settings_snapshot.h"

#include <atomic>

#include "pelinor/char_mapper.h"
#include "pelinor/evaluate_pattern.h"
#include "pelinor/file_system.h"
#include "pelinor/log.h"
#include "pelinor/registry.h"

namespace pelinor {
namespace {

thread_local const cSettingsSnapshot* current_snapshot = nullptr;
std::atomic<uint64_t> last_snapshot_id{0};

}  // namespace

std::shared_ptr<const cSettingsSnapshot> cSettingsSnapshot::Take() {
  // An empty value reads the same as a missing one in every routine that
  // uses the locale ("" and "GB" both mean day/month/year).
  std::string locale = ReadServerSetting(kLocaleValue, "");
  return Make(locale.empty() ? std::nullopt
                             : std::optional<std::string>(std::move(locale)),
              ServerProfileDir());
}

std::shared_ptr<const cSettingsSnapshot> cSettingsSnapshot::Make(
    std::optional<std::string> locale, const std::string& profile_dir) {
  // The constructor is private, so make_shared cannot be used.
  std::shared_ptr<cSettingsSnapshot> s(new cSettingsSnapshot());
  s->id_ = ++last_snapshot_id;
  s->locale_ = std::move(locale);
  s->profile_dir_ = profile_dir;
  if (!profile_dir.empty()) {
    s->char_map_path_ = JoinPath(profile_dir, kCharMapFileName);
  }
  s->LoadCharMap();
  s->format_log_on_ = !FormatLogPath().empty();
  return s;
}

void cSettingsSnapshot::LoadCharMap() {
  if (char_map_path_.empty() || !FileExists(char_map_path_)) return;
  auto mapper = std::make_shared<cCharMapper>();
  bool ok = false;
  mapper->LoadCharMap(char_map_path_, char_map_error_, ok);
  if (ok) {
    char_mapper_ = std::move(mapper);
  } else if (char_map_error_.empty()) {
    char_map_error_ = kCharMapAccessError;
  }
}

const cSettingsSnapshot* cSettingsSnapshot::Current() {
  return current_snapshot;
}

ScopedSettingsSnapshot::ScopedSettingsSnapshot(
    const cSettingsSnapshot* snapshot)
    : previous_(current_snapshot) {
  current_snapshot = snapshot;
}

ScopedSettingsSnapshot::~ScopedSettingsSnapshot() {
  current_snapshot = previous_;
}

}  // namespace pelinor
