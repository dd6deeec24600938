// Registry files ("Windows Registry Editor Version 5.00" text): the parser,
// the writer and the file store built on them, plus the system-registry
// backend on Windows.
//
// Format: see docs/formats/registry-file.md.

#include "reg_file_store.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <system_error>
#include <utility>

#include "pelinor/file_system.h"
#include "pelinor/registry.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#endif

namespace pelinor::registry_internal {
namespace {

constexpr std::string_view kHeader5 = "Windows Registry Editor Version 5.00";
constexpr std::string_view kHeader4 = "REGEDIT4";

// Beyond this many characters a hex list is continued on the next line.
constexpr size_t kHexLineLimit = 76;

bool StartsWith(std::string_view s, std::string_view prefix) {
  return s.size() >= prefix.size() &&
         EqualsIgnoreCase(s.substr(0, prefix.size()), prefix);
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

// Parses 1 to `max_digits` hex digits making up all of `text`.
std::optional<uint32_t> ParseHexNumber(std::string_view text,
                                       size_t max_digits) {
  if (text.empty() || text.size() > max_digits) return std::nullopt;
  uint32_t n = 0;
  for (char c : text) {
    const int d = HexDigit(c);
    if (d < 0) return std::nullopt;
    n = n * 16 + static_cast<uint32_t>(d);
  }
  return n;
}

// The file's text as single bytes. UTF-16LE (with its byte-order mark, as
// exported on Windows) is converted to Windows-1252; characters outside the
// code page become "?".
std::string DecodeFile(std::string_view bytes) {
  if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') {
    std::string out;
    out.reserve(bytes.size() / 2);
    for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
      const unsigned unit = static_cast<unsigned char>(bytes[i]) |
                            static_cast<unsigned char>(bytes[i + 1]) << 8;
      if (unit >= 0xD800 && unit <= 0xDBFF && i + 3 < bytes.size()) {
        const unsigned next = static_cast<unsigned char>(bytes[i + 2]) |
                              static_cast<unsigned char>(bytes[i + 3]) << 8;
        if (next >= 0xDC00 && next <= 0xDFFF) i += 2;  // one character
      }
      const int byte = Windows1252Of(unit);
      out += byte < 0 ? '?' : static_cast<char>(byte);
    }
    return out;
  }
  if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") {
    bytes.remove_prefix(3);
  }
  return std::string(bytes);
}

// Reads a quoted text starting at text[pos] == '"', undoing the \\ and \"
// escapes (any other backslash stands for itself). Returns the position
// after the closing quote, or npos when there is none.
size_t ParseQuoted(std::string_view text, size_t pos, std::string& out) {
  out.clear();
  for (size_t i = pos + 1; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') return i + 1;
    if (c == '\\' && i + 1 < text.size() &&
        (text[i + 1] == '\\' || text[i + 1] == '"')) {
      out += text[++i];
    } else {
      out += c;
    }
  }
  return std::string_view::npos;
}

std::string Quote(std::string_view text) {
  std::string out = "\"";
  for (char c : text) {
    if (c == '\\' || c == '"') out += '\\';
    out += c;
  }
  out += '"';
  return out;
}

// "xx,xx,..." with optional blanks around the items and one optional
// trailing comma.
bool ParseHexList(std::string_view list, std::string& out) {
  out.clear();
  list = TrimBlanks(list);
  if (list.empty()) return true;
  if (list.back() == ',') list.remove_suffix(1);
  size_t start = 0;
  while (true) {
    const size_t comma = list.find(',', start);
    const std::string_view item = TrimBlanks(list.substr(
        start, comma == std::string_view::npos ? comma : comma - start));
    const auto byte = ParseHexNumber(item, 2);
    if (!byte) return false;
    out += static_cast<char>(*byte);
    if (comma == std::string_view::npos) return true;
    start = comma + 1;
  }
}

// A REG_SZ value of text plus one NUL, where the text can stand in quotes on
// one line.
bool IsPlainString(const RegFileValue& value) {
  if (value.type != kRegSz || value.data.empty() || value.data.back() != '\0')
    return false;
  return value.data.find_first_of(std::string_view("\0\r\n", 3)) ==
         value.data.size() - 1;
}

void AppendValueLines(const RegFileValue& value,
                      std::vector<std::string>& lines) {
  std::string line = value.name.empty() ? "@" : Quote(value.name);
  line += '=';
  if (IsPlainString(value)) {
    lines.push_back(
        line +
        Quote(std::string_view(value.data).substr(0, value.data.size() - 1)));
    return;
  }
  char buf[16];
  if (value.type == kRegDword && value.data.size() == 4) {
    uint32_t n = 0;
    for (int i = 3; i >= 0; --i) {
      n = n << 8 | static_cast<unsigned char>(value.data[i]);
    }
    std::snprintf(buf, sizeof buf, "%08x", static_cast<unsigned>(n));
    lines.push_back(line + "dword:" + buf);
    return;
  }
  if (value.type == kRegBinary) {
    line += "hex:";
  } else {
    std::snprintf(buf, sizeof buf, "%x", static_cast<unsigned>(value.type));
    line += std::string("hex(") + buf + "):";
  }
  for (size_t i = 0; i < value.data.size(); ++i) {
    std::snprintf(buf, sizeof buf, "%02x",
                  static_cast<unsigned char>(value.data[i]));
    line += buf;
    if (i + 1 == value.data.size()) break;
    line += ',';
    if (line.size() > kHexLineLimit) {
      lines.push_back(line + "\\");
      line = "  ";
    }
  }
  lines.push_back(line);
}

// Parses the data part of a value line (after "="), joining hex-list
// continuation lines from `lines` after index `i` (advancing `i`). Returns
// false for a malformed entry; `remove` is set for a deletion ("-").
bool ParseData(std::string_view rest, const std::vector<std::string>& lines,
               size_t& i, uint32_t& type, std::string& data, bool& remove) {
  remove = false;
  if (!rest.empty() && rest[0] == '"') {
    const size_t end = ParseQuoted(rest, 0, data);
    if (end == std::string_view::npos || !TrimBlanks(rest.substr(end)).empty())
      return false;
    type = kRegSz;
    data += '\0';
    return true;
  }
  if (rest == "-") {
    remove = true;
    return true;
  }
  if (StartsWith(rest, "dword:")) {
    const auto n = ParseHexNumber(TrimBlanks(rest.substr(6)), 8);
    if (!n) return false;
    type = kRegDword;
    data.clear();
    for (int b = 0; b < 4; ++b) data += static_cast<char>(*n >> (8 * b) & 0xFF);
    return true;
  }
  if (!StartsWith(rest, "hex")) return false;
  rest.remove_prefix(3);
  if (!rest.empty() && rest[0] == '(') {
    const size_t close = rest.find(')');
    if (close == std::string_view::npos) return false;
    const auto n = ParseHexNumber(rest.substr(1, close - 1), 8);
    if (!n) return false;
    type = *n;
    rest.remove_prefix(close + 1);
  } else {
    type = kRegBinary;
  }
  if (rest.empty() || rest[0] != ':') return false;
  std::string list(rest.substr(1));
  while (!list.empty() && list.back() == '\\' && i + 1 < lines.size()) {
    list.pop_back();
    list += TrimBlanks(lines[++i]);
  }
  return ParseHexList(list, data);
}

}  // namespace

// ---------------------------------------------------------------------------
// Keys and values

RegFileValue* RegFileKey::FindValue(std::string_view name) {
  for (RegFileValue& v : values) {
    if (EqualsIgnoreCase(v.name, name)) return &v;
  }
  return nullptr;
}

const RegFileValue* RegFileKey::FindValue(std::string_view name) const {
  return const_cast<RegFileKey*>(this)->FindValue(name);
}

void RegFileKey::SetValue(std::string_view name, uint32_t type,
                          std::string_view data) {
  RegFileValue* v = FindValue(name);
  if (v == nullptr) {
    v = &values.emplace_back();
    v->name = std::string(name);
  }
  v->type = type;
  v->data = std::string(data);
}

bool RegFileKey::RemoveValue(std::string_view name) {
  RegFileValue* v = FindValue(name);
  if (v == nullptr) return false;
  values.erase(values.begin() + (v - values.data()));
  return true;
}

std::optional<std::string> CanonicalKeyPath(std::string_view path) {
  while (!path.empty() && path.back() == '\\') path.remove_suffix(1);
  if (path.empty() ||
      path.find_first_of(std::string_view("\0\r\n", 3)) !=
          std::string_view::npos ||
      path.find("\\\\") != std::string_view::npos) {
    return std::nullopt;
  }
  const size_t slash = path.find('\\');
  std::string root = UCase(path.substr(0, slash));
  if (root.empty()) return std::nullopt;
  static constexpr std::pair<std::string_view, std::string_view> kShort[] = {
      {"HKLM", "HKEY_LOCAL_MACHINE"},
      {"HKCU", "HKEY_CURRENT_USER"},
      {"HKCR", "HKEY_CLASSES_ROOT"},
      {"HKU", "HKEY_USERS"},
      {"HKCC", "HKEY_CURRENT_CONFIG"}};
  for (const auto& [abbrev, full] : kShort) {
    if (root == abbrev) root = full;
  }
  if (slash != std::string_view::npos) root += UCase(path.substr(slash));
  return root;
}

// ---------------------------------------------------------------------------
// The file

bool IsRegistryText(std::string_view bytes) {
  if (bytes.empty()) return true;
  const bool utf16 =
      bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE';
  if (!utf16 && bytes.find('\0') != std::string_view::npos) return false;
  const std::string text = DecodeFile(bytes);
  if (utf16 && text.find('\0') != std::string::npos) return false;
  if (text.empty()) return true;  // a byte-order mark alone
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find_first_of("\r\n", pos);
    if (end == std::string::npos) end = text.size();
    const std::string_view line =
        TrimBlanks(std::string_view(text).substr(pos, end - pos));
    if (!line.empty()) return line == kHeader5 || line == kHeader4;
    pos = end + 1;
  }
  return false;
}

StoreFileState InspectStoreFile(const std::string& file, int* error) {
  std::error_code ec;
  (void)std::filesystem::status(file, ec);
  if (ec) {
    if (ec == std::errc::no_such_file_or_directory) {
      return StoreFileState::kMissing;
    }
    if (error != nullptr) *error = ec.value();
    return StoreFileState::kUnreadable;
  }
  TextReader reader;
  ClearFileError();
  if (!reader.Open(file)) {
    if (error != nullptr) *error = LastFileError();
    return StoreFileState::kUnreadable;
  }
  return IsRegistryText(reader.Data()) ? StoreFileState::kReady
                                       : StoreFileState::kForeign;
}

RegFile RegFile::Parse(std::string_view bytes) {
  TextReader reader;
  reader.OpenText(DecodeFile(bytes));
  std::vector<std::string> lines;
  for (std::string line; reader.ReadLine(line);) lines.push_back(line);

  RegFile file;
  // Index of the open key section; kNoSection before the first one.
  constexpr size_t kNoSection = static_cast<size_t>(-1);
  size_t current = kNoSection;
  std::vector<std::string> pending_comments;
  std::string name, data;
  for (size_t i = 0; i < lines.size(); ++i) {
    const std::string_view text = TrimBlanks(lines[i]);
    if (text.empty() || text == kHeader5 || text == kHeader4) continue;
    if (text[0] == ';') {
      pending_comments.emplace_back(text);
      continue;
    }
    if (text[0] == '[') {
      current = kNoSection;
      if (text.back() != ']') continue;
      std::string_view inner = text.substr(1, text.size() - 2);
      const bool remove = !inner.empty() && inner[0] == '-';
      if (remove) inner.remove_prefix(1);
      const auto match = CanonicalKeyPath(inner);
      if (!match) continue;
      if (remove) {
        file.RemoveTree(*match);
        continue;
      }
      RegFileKey* key = file.FindKey(*match);
      if (key == nullptr) {
        key = &file.keys_.emplace_back();
        key->path =
            std::string(inner.substr(0, inner.find_last_not_of('\\') + 1));
        key->match = *match;
      }
      key->comments.insert(key->comments.end(), pending_comments.begin(),
                           pending_comments.end());
      pending_comments.clear();
      current = static_cast<size_t>(key - file.keys_.data());
      continue;
    }

    size_t pos;
    if (text[0] == '@') {
      name.clear();
      pos = 1;
    } else if (text[0] == '"') {
      pos = ParseQuoted(text, 0, name);
      if (pos == std::string_view::npos) continue;
    } else {
      continue;
    }
    std::string_view rest = TrimBlanks(text.substr(pos));
    if (rest.empty() || rest[0] != '=') continue;
    rest = TrimBlanks(rest.substr(1));
    uint32_t type = kRegSz;
    bool remove = false;
    if (!ParseData(rest, lines, i, type, data, remove) ||
        current == kNoSection) {
      continue;
    }
    RegFileKey& key = file.keys_[current];
    if (remove) {
      key.RemoveValue(name);
      continue;
    }
    key.SetValue(name, type, data);
    std::vector<std::string>& comments = key.FindValue(name)->comments;
    comments.insert(comments.end(), pending_comments.begin(),
                    pending_comments.end());
    pending_comments.clear();
  }
  file.trailing_comments_ = std::move(pending_comments);
  return file;
}

std::vector<std::string> RegFile::Lines() const {
  std::vector<std::string> lines = {std::string(kHeader5), ""};
  for (const RegFileKey& key : keys_) {
    lines.insert(lines.end(), key.comments.begin(), key.comments.end());
    lines.push_back("[" + key.path + "]");
    for (const RegFileValue& value : key.values) {
      lines.insert(lines.end(), value.comments.begin(), value.comments.end());
      AppendValueLines(value, lines);
    }
    lines.emplace_back();
  }
  lines.insert(lines.end(), trailing_comments_.begin(),
               trailing_comments_.end());
  return lines;
}

namespace {

bool IsBelow(std::string_view match, std::string_view ancestor) {
  return match.size() > ancestor.size() && match.starts_with(ancestor) &&
         match[ancestor.size()] == '\\';
}

}  // namespace

RegFileKey* RegFile::FindKey(std::string_view match) {
  for (RegFileKey& key : keys_) {
    if (key.match == match) return &key;
  }
  return nullptr;
}

const RegFileKey* RegFile::FindKey(std::string_view match) const {
  return const_cast<RegFile*>(this)->FindKey(match);
}

bool RegFile::KeyExists(std::string_view match) const {
  return match.find('\\') == std::string_view::npos ||
         FindKey(match) != nullptr || HasSubkeys(match);
}

bool RegFile::HasSubkeys(std::string_view match) const {
  return std::any_of(keys_.begin(), keys_.end(), [&](const RegFileKey& key) {
    return IsBelow(key.match, match);
  });
}

RegFileKey& RegFile::CreateKey(std::string_view path, std::string_view match) {
  if (RegFileKey* key = FindKey(match)) return *key;
  const auto below = std::find_if(
      keys_.begin(), keys_.end(),
      [&](const RegFileKey& key) { return IsBelow(key.match, match); });
  RegFileKey& key = *keys_.emplace(below);
  key.path = std::string(path.substr(0, path.find_last_not_of('\\') + 1));
  key.match = std::string(match);
  return key;
}

void RegFile::RemoveTree(std::string_view match) {
  std::erase_if(keys_, [&](const RegFileKey& key) {
    return key.match == match || IsBelow(key.match, match);
  });
}

// ---------------------------------------------------------------------------
// Store locations

std::string MachineStorePath() {
  const char* env = std::getenv("PELINOR_REGISTRY");
  if (env != nullptr && *env != '\0') return env;
  return "/etc/pelinor/registry.reg";
}

std::string UserStorePath() {
  const char* env = std::getenv("PELINOR_USER_REGISTRY");
  if (env != nullptr && *env != '\0') return env;
  const char* xdg = std::getenv("XDG_CONFIG_HOME");
  if (xdg != nullptr && xdg[0] == '/') {
    return JoinPath(xdg, "pelinor/registry.reg");
  }
  std::string home;
  if (const char* h = std::getenv("HOME"); h != nullptr && *h != '\0') {
    home = h;
  }
#ifndef _WIN32
  if (home.empty()) {
    passwd entry;
    passwd* found = nullptr;
    char buf[4096];
    if (getpwuid_r(getuid(), &entry, buf, sizeof buf, &found) == 0 &&
        found != nullptr && found->pw_dir != nullptr) {
      home = found->pw_dir;
    }
  }
#endif
  if (home.empty()) return "";
  return JoinPath(home, ".config/pelinor/registry.reg");
}

#ifndef _WIN32
// ---------------------------------------------------------------------------
// The file store

namespace {

struct Location {
  std::string file;
  std::string root;
};

std::optional<Location> Locate(int32_t hive) {
  Location loc;
  if (hive == kHkeyLocalMachine) {
    loc = {MachineStorePath(), "HKEY_LOCAL_MACHINE"};
  } else if (hive == kHkeyCurrentUser) {
    loc = {UserStorePath(), "HKEY_CURRENT_USER"};
  } else {
    return std::nullopt;
  }
  if (loc.file.empty()) return std::nullopt;
  return loc;
}

bool IsStringType(uint32_t type) {
  return type == kRegSz || type == kRegExpandSz || type == kRegMultiSz;
}

std::string FullPath(const Location& loc, std::string_view key_path) {
  while (!key_path.empty() && key_path.back() == '\\') {
    key_path.remove_suffix(1);
  }
  if (key_path.empty()) return loc.root;
  return loc.root + "\\" + std::string(key_path);
}

// Reads the store; a missing file is an empty store. False when the file
// exists but cannot be read, or, when the contents are read to be changed
// and written back, when it is not a registry export: a change never
// replaces a file that is not the store's own. Reads stay lenient and take
// whatever lines parse.
bool LoadStore(const std::string& file, RegFile& contents, bool for_change) {
  TextReader reader;
  contents = RegFile();
  if (!reader.Open(file)) return !FileExists(file);
  if (for_change && !IsRegistryText(reader.Data())) return false;
  contents = RegFile::Parse(reader.Data());
  return true;
}

// The parsed contents of a store for reading. Parsed files are kept and
// reused while the file's identity, size and times stay the same; every
// write replaces the file (a new inode), so a change is always seen.
std::shared_ptr<const RegFile> ReadStore(const std::string& file) {
  struct Entry {
    struct stat st;
    std::shared_ptr<const RegFile> contents;
  };
  static std::mutex mu;
  static std::map<std::string, Entry>* cache = new std::map<std::string, Entry>;
  static const auto empty = std::make_shared<const RegFile>();

  struct stat st;
  if (::stat(file.c_str(), &st) != 0) return empty;
  auto same = [&st](const struct stat& old) {
    return old.st_dev == st.st_dev && old.st_ino == st.st_ino &&
           old.st_size == st.st_size &&
           old.st_mtim.tv_sec == st.st_mtim.tv_sec &&
           old.st_mtim.tv_nsec == st.st_mtim.tv_nsec &&
           old.st_ctim.tv_sec == st.st_ctim.tv_sec &&
           old.st_ctim.tv_nsec == st.st_ctim.tv_nsec;
  };
  {
    std::lock_guard<std::mutex> lock(mu);
    auto it = cache->find(file);
    if (it != cache->end() && same(it->second.st)) return it->second.contents;
  }
  auto contents = std::make_shared<RegFile>();
  LoadStore(file, *contents, false);  // an unreadable store reads as empty
  std::lock_guard<std::mutex> lock(mu);
  if (cache->size() >= 16) cache->clear();
  (*cache)[file] = Entry{st, contents};
  return contents;
}

// Holds an exclusive lock on "<file>.lock" (creating the store's directory
// and the lock file as needed) for the life of the object.
class StoreLock {
 public:
  explicit StoreLock(const std::string& file) {
    const std::filesystem::path dir = std::filesystem::path(file).parent_path();
    if (!dir.empty()) {
      std::error_code ec;
      std::filesystem::create_directories(dir, ec);
    }
    fd_ = open((file + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (fd_ < 0) return;
    int rc;
    do {
      rc = flock(fd_, LOCK_EX);
    } while (rc != 0 && errno == EINTR);
    if (rc != 0) {
      close(fd_);
      fd_ = -1;
    }
  }
  ~StoreLock() {
    if (fd_ >= 0) close(fd_);  // releases the lock
  }
  StoreLock(const StoreLock&) = delete;
  StoreLock& operator=(const StoreLock&) = delete;

  bool held() const { return fd_ >= 0; }

 private:
  int fd_ = -1;
};

enum class Outcome { kDone, kNoStore, kNotWritten };

// Runs `change` on the store's contents under the lock and, when it reports
// a change, replaces the file. kNoStore when the store cannot be locked or
// read, kNotWritten when the new file cannot be written.
template <typename Change>
Outcome Modify(const std::string& file, Change&& change) {
  StoreLock lock(file);
  if (!lock.held()) return Outcome::kNoStore;
  RegFile contents;
  if (!LoadStore(file, contents, true)) return Outcome::kNoStore;
  if (!change(contents)) return Outcome::kDone;
  TextWriter writer;
  if (!writer.Create(file)) return Outcome::kNotWritten;
  for (const std::string& line : contents.Lines()) writer.WriteLine(line);
  return writer.Commit() ? Outcome::kDone : Outcome::kNotWritten;
}

}  // namespace

QueryResult RegFileStore::QueryValue(int32_t hive, std::string_view key_path,
                                     std::string_view name, size_t capacity,
                                     std::string& data) const {
  const auto loc = Locate(hive);
  if (!loc) return QueryResult::kNoKey;
  const auto match = CanonicalKeyPath(FullPath(*loc, key_path));
  if (!match) return QueryResult::kNoKey;
  const auto store = ReadStore(loc->file);
  const RegFile& contents = *store;
  if (!contents.KeyExists(*match)) return QueryResult::kNoKey;
  const RegFileKey* key = contents.FindKey(*match);
  const RegFileValue* value = key ? key->FindValue(name) : nullptr;
  if (value == nullptr) return QueryResult::kNoValue;
  if (value->data.size() > capacity) return QueryResult::kTooLarge;
  data = value->data;
  return QueryResult::kOk;
}

SetResult RegFileStore::SetValue(int32_t hive, std::string_view key_path,
                                 std::string_view name, uint32_t type,
                                 std::string_view data) const {
  const auto loc = Locate(hive);
  if (!loc) return SetResult::kNoKey;
  const std::string path = FullPath(*loc, key_path);
  const auto match = CanonicalKeyPath(path);
  if (!match) return SetResult::kNoKey;
  // A value name cannot hold a line end or NUL in the file.
  if (name.find_first_of(std::string_view("\0\r\n", 3)) !=
      std::string_view::npos) {
    return SetResult::kWriteFailed;
  }
  std::string bytes(data);
  if (IsStringType(type) && !bytes.empty() && bytes.back() != '\0') {
    bytes += '\0';
  }
  switch (Modify(loc->file, [&](RegFile& contents) {
    contents.CreateKey(path, *match).SetValue(name, type, bytes);
    return true;
  })) {
    case Outcome::kDone:
      return SetResult::kOk;
    case Outcome::kNoStore:
      return SetResult::kNoKey;
    case Outcome::kNotWritten:
      break;
  }
  return SetResult::kWriteFailed;
}

std::optional<int32_t> RegFileStore::DeleteKey(int32_t hive,
                                               std::string_view parent_path,
                                               std::string_view subkey) const {
  const auto loc = Locate(hive);
  if (!loc) return std::nullopt;
  const std::string parent = FullPath(*loc, parent_path);
  const auto parent_match = CanonicalKeyPath(parent);
  if (!parent_match) return std::nullopt;
  {
    // A missing parent needs no lock (and must not create the store).
    const auto store = ReadStore(loc->file);
    const RegFile& contents = *store;
    if (!contents.KeyExists(*parent_match)) return std::nullopt;
  }
  const auto target_match = CanonicalKeyPath(
      subkey.empty() ? parent : parent + "\\" + std::string(subkey));
  std::optional<int32_t> code;
  const Outcome outcome = Modify(loc->file, [&](RegFile& contents) {
    if (!contents.KeyExists(*parent_match)) return false;
    if (!target_match) {
      code = kErrorFileNotFound;
    } else if (target_match->find('\\') == std::string::npos ||
               contents.HasSubkeys(*target_match)) {
      code = kErrorAccessDenied;  // a root, or a key with subkeys
    } else if (!contents.KeyExists(*target_match)) {
      code = kErrorFileNotFound;
    } else {
      contents.RemoveTree(*target_match);
      code = kErrorSuccess;
      return true;
    }
    return false;
  });
  switch (outcome) {
    case Outcome::kDone:
      return code;
    case Outcome::kNoStore:
      return std::nullopt;
    case Outcome::kNotWritten:
      break;
  }
  return kErrorAccessDenied;
}

std::optional<int32_t> RegFileStore::DeleteValue(int32_t hive,
                                                 std::string_view key_path,
                                                 std::string_view name,
                                                 bool create_key) const {
  const auto loc = Locate(hive);
  if (!loc) return std::nullopt;
  const std::string path = FullPath(*loc, key_path);
  const auto match = CanonicalKeyPath(path);
  if (!match) return std::nullopt;
  if (!create_key) {
    // Nothing to change: answer without taking the lock.
    const auto store = ReadStore(loc->file);
    const RegFile& contents = *store;
    if (!contents.KeyExists(*match)) return std::nullopt;
    const RegFileKey* key = contents.FindKey(*match);
    if (key == nullptr || key->FindValue(name) == nullptr) {
      return kErrorFileNotFound;
    }
  }
  std::optional<int32_t> code;
  const Outcome outcome = Modify(loc->file, [&](RegFile& contents) {
    RegFileKey* key = contents.FindKey(*match);
    bool changed = false;
    if (key == nullptr && !contents.KeyExists(*match)) {
      if (!create_key) return false;
      key = &contents.CreateKey(path, *match);
      changed = true;
    }
    if (key != nullptr && key->RemoveValue(name)) {
      code = kErrorSuccess;
      return true;
    }
    code = kErrorFileNotFound;
    return changed;
  });
  switch (outcome) {
    case Outcome::kDone:
      return code;
    case Outcome::kNoStore:
      // Without create_key the key was seen to exist: it is the store that
      // cannot be changed.
      if (create_key) return std::nullopt;
      return kErrorAccessDenied;
    case Outcome::kNotWritten:
      break;
  }
  return kErrorAccessDenied;
}

std::optional<std::vector<std::string>> RegFileStore::ValueNames(
    int32_t hive, std::string_view key_path) const {
  const auto loc = Locate(hive);
  if (!loc) return std::nullopt;
  const auto match = CanonicalKeyPath(FullPath(*loc, key_path));
  if (!match) return std::nullopt;
  const auto store = ReadStore(loc->file);
  const RegFile& contents = *store;
  if (!contents.KeyExists(*match)) return std::nullopt;
  std::vector<std::string> names;
  if (const RegFileKey* key = contents.FindKey(*match)) {
    for (const RegFileValue& value : key->values) names.push_back(value.name);
  }
  return names;
}

const RegistryBackend& SystemBackend() {
  static const RegFileStore store;
  return store;
}

#else  // _WIN32
// ---------------------------------------------------------------------------
// The system registry

namespace {

HKEY RootKey(int32_t hive) {
  // The predefined handles are sign-extended 32-bit constants.
  return reinterpret_cast<HKEY>(
      static_cast<ULONG_PTR>(static_cast<LONG_PTR>(hive)));
}

// A key handle closed when the object goes.
class OpenKey {
 public:
  OpenKey() = default;
  ~OpenKey() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  bool Open(int32_t hive, std::string_view path, REGSAM access) {
    return RegOpenKeyExA(RootKey(hive), std::string(path).c_str(), 0, access,
                         &key_) == ERROR_SUCCESS &&
           key_ != nullptr;
  }
  bool Create(int32_t hive, std::string_view path) {
    DWORD disposition = 0;
    char no_class[] = "";
    return RegCreateKeyExA(RootKey(hive), std::string(path).c_str(), 0,
                           no_class, 0, KEY_ALL_ACCESS, nullptr, &key_,
                           &disposition) == ERROR_SUCCESS &&
           key_ != nullptr;
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

class SystemRegistry : public RegistryBackend {
 public:
  QueryResult QueryValue(int32_t hive, std::string_view key_path,
                         std::string_view name, size_t capacity,
                         std::string& data) const override {
    OpenKey key;
    if (!key.Open(hive, key_path, KEY_QUERY_VALUE)) return QueryResult::kNoKey;
    const std::string value_name(name);
    DWORD size = 0;
    LONG rc;
    if (capacity == kAnySize) {
      rc = RegQueryValueExA(key.get(), value_name.c_str(), nullptr, nullptr,
                            nullptr, &size);
      if (rc != ERROR_SUCCESS) return QueryResult::kNoValue;
      capacity = size;
    }
    data.assign(capacity, '\0');
    size = static_cast<DWORD>(capacity);
    rc = RegQueryValueExA(key.get(), value_name.c_str(), nullptr, nullptr,
                          reinterpret_cast<BYTE*>(data.data()), &size);
    if (rc == ERROR_MORE_DATA) return QueryResult::kTooLarge;
    if (rc != ERROR_SUCCESS) return QueryResult::kNoValue;
    data.resize(size);
    return QueryResult::kOk;
  }

  SetResult SetValue(int32_t hive, std::string_view key_path,
                     std::string_view name, uint32_t type,
                     std::string_view data) const override {
    OpenKey key;
    if (!key.Create(hive, key_path)) return SetResult::kNoKey;
    // A std::string keeps a NUL after the counted bytes, which the system
    // relies on when it completes a string value.
    const std::string bytes(data);
    const LONG rc =
        RegSetValueExA(key.get(), std::string(name).c_str(), 0, type,
                       reinterpret_cast<const BYTE*>(bytes.data()),
                       static_cast<DWORD>(bytes.size()));
    return rc == ERROR_SUCCESS ? SetResult::kOk : SetResult::kWriteFailed;
  }

  std::optional<int32_t> DeleteKey(int32_t hive, std::string_view parent_path,
                                   std::string_view subkey) const override {
    OpenKey parent;
    if (!parent.Open(hive, parent_path, KEY_ALL_ACCESS)) return std::nullopt;
    return static_cast<int32_t>(
        RegDeleteKeyA(parent.get(), std::string(subkey).c_str()));
  }

  std::optional<int32_t> DeleteValue(int32_t hive, std::string_view key_path,
                                     std::string_view name,
                                     bool create_key) const override {
    OpenKey key;
    if (!(create_key ? key.Create(hive, key_path)
                     : key.Open(hive, key_path, KEY_ALL_ACCESS))) {
      return std::nullopt;
    }
    return static_cast<int32_t>(
        RegDeleteValueA(key.get(), std::string(name).c_str()));
  }

  std::optional<std::vector<std::string>> ValueNames(
      int32_t hive, std::string_view key_path) const override {
    OpenKey key;
    if (!key.Open(hive, key_path, KEY_QUERY_VALUE)) return std::nullopt;
    std::vector<std::string> names;
    char buf[16384];
    for (DWORD index = 0;; ++index) {
      DWORD length = sizeof buf;
      const LONG rc = RegEnumValueA(key.get(), index, buf, &length, nullptr,
                                    nullptr, nullptr, nullptr);
      if (rc != ERROR_SUCCESS) break;
      names.emplace_back(buf, length);
    }
    return names;
  }
};

}  // namespace

const RegistryBackend& SystemBackend() {
  static const SystemRegistry registry;
  return registry;
}

#endif  // _WIN32

}  // namespace pelinor::registry_internal
