// The "registry" verbs: read, write, delete and list the machine-wide and
// per-user settings that cRegistry keeps.

#include <cerrno>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "cli/cli_util.h"
#include "cli/commands.h"
#include "core/reg_file_store.h"
#include "pelinor/registry.h"
#include "pelinor/text.h"

namespace pelinor::cli {
namespace {

struct RegistryOptions {
  // Store files; file names are handed on as given, never transcoded.
  std::string machine_file;
  std::string user_file;
  // Arguments, as UTF-8 from the command line.
  std::string hive = "HKLM";
  std::string application = kServerApplication;
  std::string section = kServerSection;
  std::string key;
  std::string value;
  std::string default_value;
  bool json = false;
};

// A setting's address with its texts in Windows-1252.
struct Setting {
  int32_t hive = kHkeyLocalMachine;
  std::string application;
  std::string section;
  std::string key;

  std::string KeyPath() const {
    return hive == kHkeyLocalMachine
               ? MachineSettingsKeyPath(application, section)
               : UserSettingsKeyPath(application, section);
  }
  std::string Location() const {
    return std::string(hive == kHkeyLocalMachine ? "HKEY_LOCAL_MACHINE"
                                                 : "HKEY_CURRENT_USER") +
           "\\" + KeyPath();
  }
};

std::optional<int32_t> ParseHive(const std::string& text) {
  const std::string name = UCase(text);
  if (name == "HKLM" || name == "HKEY_LOCAL_MACHINE") return kHkeyLocalMachine;
  if (name == "HKCU" || name == "HKEY_CURRENT_USER") return kHkeyCurrentUser;
  return std::nullopt;
}

// Checks the store file of `hive` before a verb uses it: a file that is not
// a registry export is never read as an empty store nor replaced, and a
// missing file is an error unless the verb may create it. False after
// Fail().
bool CheckStore(int32_t hive, bool may_create) {
  using registry_internal::StoreFileState;
  const std::string file = hive == kHkeyLocalMachine
                               ? registry_internal::MachineStorePath()
                               : registry_internal::UserStorePath();
  if (file.empty()) {
    Fail("no per-user registry file: set PELINOR_USER_REGISTRY or HOME");
    return false;
  }
  int error = 0;
  switch (registry_internal::InspectStoreFile(file, &error)) {
    case StoreFileState::kReady:
      return true;
    case StoreFileState::kMissing:
      if (may_create) return true;
      FailFile(file, "cannot read registry file", ENOENT);
      return false;
    case StoreFileState::kForeign:
      FailFile(file,
               "not a registry file (no \"Windows Registry Editor Version "
               "5.00\" header); left unchanged",
               0);
      return false;
    case StoreFileState::kUnreadable:
      break;
  }
  FailFile(file, "cannot read registry file", error);
  return false;
}

// Points the library at the stores named on the command line, then reads
// the setting's address from the arguments and checks the hive's store
// file. Nothing (after Fail()) for an unknown hive or an unusable store.
std::optional<Setting> Prepare(const RegistryOptions& opts,
                               bool may_create = false) {
  if (!opts.machine_file.empty()) {
    setenv("PELINOR_REGISTRY", opts.machine_file.c_str(), 1);
  }
  if (!opts.user_file.empty()) {
    setenv("PELINOR_USER_REGISTRY", opts.user_file.c_str(), 1);
  }
  const auto hive = ParseHive(opts.hive);
  if (!hive) {
    Fail("unknown hive \"" + PathText(opts.hive) + "\": use HKLM or HKCU", 2);
    return std::nullopt;
  }
  if (!CheckStore(*hive, may_create)) return std::nullopt;
  return Setting{*hive, FromUtf8(opts.application), FromUtf8(opts.section),
                 FromUtf8(opts.key)};
}

void AddAddress(CLI::App& cmd, RegistryOptions& opts, bool with_key) {
  cmd.add_option("HIVE", opts.hive,
                 "HKLM (machine-wide) or HKCU (per-user); the full names "
                 "HKEY_LOCAL_MACHINE and HKEY_CURRENT_USER work too")
      ->required();
  cmd.add_option("APPLICATION", opts.application,
                 "application, e.g. \"Pelinor Server\"")
      ->required();
  cmd.add_option("SECTION", opts.section, "section, e.g. Default")->required();
  if (with_key) {
    cmd.add_option("KEY", opts.key, "setting name, e.g. HalvernLocale")
        ->required();
  }
}

void RunGet(const RegistryOptions& opts) {
  const auto s = Prepare(opts);
  if (!s) return;
  const std::string value =
      cRegistry().RegGetValue(s->hive, s->application, s->section, s->key,
                              FromUtf8(opts.default_value));
  if (!opts.json) {
    PrintLine(value);
    return;
  }
  PrintJson({{"hive", Json(s->hive == kHkeyLocalMachine ? "HKEY_LOCAL_MACHINE"
                                                        : "HKEY_CURRENT_USER")},
             {"application", Json(s->application)},
             {"section", Json(s->section)},
             {"key", Json(s->key)},
             {"value", Json(value)}});
}

void RunSet(const RegistryOptions& opts) {
  const auto s = Prepare(opts, true);
  if (!s) return;
  const int32_t status = cRegistry().RegSaveValue(
      s->hive, s->application, s->section, s->key, FromUtf8(opts.value));
  if (status != 0) {
    const std::string file = s->hive == kHkeyLocalMachine
                                 ? registry_internal::MachineStorePath()
                                 : registry_internal::UserStorePath();
    FailFile(file, "cannot save " + s->key + " in " + s->Location());
  }
}

void RunDelete(const RegistryOptions& opts) {
  const auto s = Prepare(opts);
  if (!s) return;
  const int32_t status =
      cRegistry().RegDelete(s->hive, s->application, s->section);
  if (status != 0) {
    Fail("cannot delete " + s->Location() + " (status " +
         std::to_string(status) + ")");
  }
}

void RunDeleteValue(const RegistryOptions& opts) {
  const auto s = Prepare(opts);
  if (!s) return;
  const int32_t status = RegDeleteValueSetting(s->hive, s->KeyPath(), s->key);
  if (status == 2) {
    Fail("no value " + s->key + " in " + s->Location());
  } else if (status != 0) {
    Fail("cannot delete " + s->key + " in " + s->Location() + " (status " +
         std::to_string(status) + ")");
  }
}

void RunList(const RegistryOptions& opts) {
  const auto s = Prepare(opts);
  if (!s) return;
  const cRegistry registry;
  nlohmann::json values = nlohmann::json::array();
  for (const std::string& name : RegValueNames(s->hive, s->KeyPath())) {
    const std::string value =
        registry.RegGetValue(s->hive, s->application, s->section, name, "");
    if (opts.json) {
      values.push_back({{"name", Json(name)}, {"value", Json(value)}});
    } else {
      PrintLine((name.empty() ? "@" : name) + "=" + value);
    }
  }
  if (opts.json) PrintJson(values);
}

}  // namespace

void AddRegistryCommand(CLI::App& app) {
  auto opts = std::make_shared<RegistryOptions>();
  CLI::App* registry = app.add_subcommand(
      "registry",
      "Read and change settings: machine-wide (HKLM, key "
      "Software\\Halvern\\<application>\\<section>) and per-user (HKCU)");
  registry->footer(
      "Without a system registry the settings live in registry files: "
      "$PELINOR_REGISTRY (default /etc/pelinor/registry.reg) for HKLM and "
      "$PELINOR_USER_REGISTRY (default ~/.config/pelinor/registry.reg) for "
      "HKCU. A store file that is not a registry export (no \"Windows "
      "Registry Editor Version 5.00\" line) is refused and left unchanged; "
      "a missing one is an error except for set, which creates it. See "
      "docs/formats/registry-file.md.");
  registry->require_subcommand(1);
  registry->fallthrough();
  registry
      ->add_option("--registry", opts->machine_file,
                   "machine-wide registry file (overrides "
                   "PELINOR_REGISTRY)")
      ->type_name("FILE");
  registry
      ->add_option("--user-registry", opts->user_file,
                   "per-user registry file (overrides "
                   "PELINOR_USER_REGISTRY)")
      ->type_name("FILE");

  CLI::App* get = registry->add_subcommand(
      "get", "Print a setting, or the default when it is missing");
  AddAddress(*get, *opts, true);
  get->add_option("--default", opts->default_value,
                  "text printed when the setting is missing (default: "
                  "empty)");
  get->add_flag("--json", opts->json, "print the setting as JSON");
  get->callback([opts] { RunGet(*opts); });

  CLI::App* set = registry->add_subcommand(
      "set", "Write a setting, creating its key and store file as needed");
  AddAddress(*set, *opts, true);
  set->add_option("VALUE", opts->value, "the text to store")->required();
  set->callback([opts] { RunSet(*opts); });

  CLI::App* del = registry->add_subcommand(
      "delete", "Delete a section with all its settings");
  AddAddress(*del, *opts, false);
  del->callback([opts] { RunDelete(*opts); });

  CLI::App* del_value = registry->add_subcommand(
      "delete-value", "Delete one setting of a section");
  AddAddress(*del_value, *opts, true);
  del_value->callback([opts] { RunDeleteValue(*opts); });

  CLI::App* list = registry->add_subcommand(
      "list",
      "Print every setting of a section as name=value (default: the server's "
      "HKLM \"Pelinor Server\" Default)");
  list->add_option("HIVE", opts->hive, "HKLM or HKCU (default HKLM)");
  list->add_option("APPLICATION", opts->application,
                   "application (default \"Pelinor Server\")");
  list->add_option("SECTION", opts->section, "section (default Default)");
  list->add_flag("--json", opts->json,
                 "print a JSON array of {name, value} objects");
  list->callback([opts] { RunList(*opts); });
}

}  // namespace pelinor::cli
