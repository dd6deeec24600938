// The text-file objects behind every record file: whole-line and item
// reading, quoted-item writing, and the temporary-file-and-rename writer.
// Formats: docs/formats/quoted-items.md and docs/formats/record-lines.md.

#include "pelinor/text_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

constexpr size_t kFlushSize = 1 << 16;
constexpr size_t kMapThreshold = 1 << 20;

thread_local int last_file_error = 0;

void NoteFileError(int error) {
  if (error != 0) last_file_error = error;
}

// The temporary files of writes in flight, readable from a signal handler:
// fixed storage, and a state per slot that the handler only loads. A slot
// is claimed (kFilling) while its path is copied in and released only after
// the temporary file is renamed or removed, so the handler never reads a
// half-copied path and at worst unlinks a name that no longer exists.
constexpr int kTempSlots = 256;
constexpr size_t kTempPathMax = 4096;
enum : int { kSlotFree = 0, kSlotFilling = 1, kSlotLive = 2 };
std::atomic<int> temp_slot_state[kTempSlots];
char temp_slot_path[kTempSlots][kTempPathMax];

// Claims a slot for a path of `size` bytes; -1 when none is free.
int ClaimTempSlot(size_t size) {
  if (size >= kTempPathMax) return -1;
  for (int i = 0; i < kTempSlots; ++i) {
    int expected = kSlotFree;
    if (temp_slot_state[i].compare_exchange_strong(expected, kSlotFilling)) {
      return i;
    }
  }
  return -1;
}

void ListTempFile(int slot, const std::string& path) {
  if (slot < 0) return;
  std::memcpy(temp_slot_path[slot], path.c_str(), path.size() + 1);
  temp_slot_state[slot].store(kSlotLive);
}

void UnlistTempFile(int slot) {
  if (slot >= 0) temp_slot_state[slot].store(kSlotFree);
}

// Follows symbolic links from `path` to the file they name (at most 40, as
// the system does), so that writing replaces the target, not the link. A
// dangling link gives the path it points to, which the write then creates.
std::string ResolveLinks(const std::string& path) {
  std::string current = path;
  for (int hops = 0; hops < 40; ++hops) {
    struct stat st;
    if (::lstat(current.c_str(), &st) != 0 || !S_ISLNK(st.st_mode)) break;
    std::string target(static_cast<size_t>(st.st_size) + 1, '\0');
    ssize_t n = ::readlink(current.c_str(), target.data(), target.size());
    if (n <= 0 || static_cast<size_t>(n) >= target.size()) break;
    target.resize(static_cast<size_t>(n));
    if (target[0] != '/') {
      const size_t slash = current.find_last_of('/');
      if (slash != std::string::npos) {
        target = current.substr(0, slash + 1) + target;
      }
    }
    current = std::move(target);
  }
  return current;
}

void DropNuls(std::string& s) {
  if (std::memchr(s.data(), '\0', s.size()) == nullptr) return;
  std::string out;
  out.reserve(s.size());
  for (char c : s) {
    if (c != '\0') out.push_back(c);
  }
  s.swap(out);
}

// Bytes that end an unquoted item.
struct StopTable {
  bool stop[256] = {};
  constexpr StopTable() {
    stop[static_cast<unsigned char>(',')] = true;
    stop[static_cast<unsigned char>('\r')] = true;
    stop[static_cast<unsigned char>('\n')] = true;
  }
};
constexpr StopTable kStops;

}  // namespace

TextReader::~TextReader() { Close(); }

TextReader::TextReader(TextReader&& other) noexcept {
  *this = std::move(other);
}

TextReader& TextReader::operator=(TextReader&& other) noexcept {
  if (this == &other) return *this;
  Close();
  bool owned = other.map_ == nullptr;
  owned_ = std::move(other.owned_);
  map_ = other.map_;
  map_size_ = other.map_size_;
  data_ = owned ? std::string_view(owned_) : other.data_;
  pos_ = other.pos_;
  has_nuls_ = other.has_nuls_;
  open_ = other.open_;
  other.map_ = nullptr;
  other.map_size_ = 0;
  other.Close();
  return *this;
}

bool TextReader::Open(const std::string& path) {
  Close();
  int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    NoteFileError(errno);
    return false;
  }
  struct stat st;
  if (::fstat(fd, &st) != 0) {
    NoteFileError(errno);
    ::close(fd);
    return false;
  }
  if (!S_ISREG(st.st_mode)) {
    NoteFileError(S_ISDIR(st.st_mode) ? EISDIR : EINVAL);
    ::close(fd);
    return false;
  }
  const size_t size = static_cast<size_t>(st.st_size);
  if (size >= kMapThreshold) {
    // Large files are mapped: filling fresh memory costs far more than
    // sharing the pages the system already holds.
    int flags = MAP_PRIVATE;
#ifdef MAP_POPULATE
    flags |= MAP_POPULATE;
#endif
    void* p = ::mmap(nullptr, size, PROT_READ, flags, fd, 0);
    if (p != MAP_FAILED) {
      ::close(fd);
      map_ = p;
      map_size_ = size;
      data_ = std::string_view(static_cast<const char*>(p), size);
      has_nuls_ = std::memchr(p, '\0', size) != nullptr;
      pos_ = 0;
      lf_cached_ = false;
      open_ = true;
      return true;
    }
  }
  // Read the size reported, then whatever a growing file added since.
  std::string data;
  data.resize(size);
  size_t got = 0;
  char probe[4096];
  for (;;) {
    bool room = got < data.size();
    char* dst = room ? data.data() + got : probe;
    size_t want = room ? data.size() - got : sizeof probe;
    ssize_t n = ::read(fd, dst, want);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) {
      ::close(fd);
      return false;
    }
    if (n == 0) break;
    if (room) {
      got += static_cast<size_t>(n);
    } else {
      data.append(probe, static_cast<size_t>(n));
      got = data.size();
    }
  }
  ::close(fd);
  data.resize(got);
  OpenText(std::move(data));
  return true;
}

void TextReader::OpenText(std::string data) {
  Close();
  owned_ = std::move(data);
  data_ = owned_;
  has_nuls_ = std::memchr(data_.data(), '\0', data_.size()) != nullptr;
  pos_ = 0;
  lf_cached_ = false;
  open_ = true;
}

void TextReader::Close() {
  if (map_ != nullptr) {
    ::munmap(map_, map_size_);
    map_ = nullptr;
    map_size_ = 0;
  }
  owned_.clear();
  owned_.shrink_to_fit();
  data_ = {};
  has_nuls_ = false;
  pos_ = 0;
  lf_cached_ = false;
  open_ = false;
}

void TextReader::SkipLineEnd() {
  if (pos_ >= data_.size()) return;
  if (data_[pos_] == '\r') {
    ++pos_;
    if (pos_ < data_.size() && data_[pos_] == '\n') ++pos_;
  } else if (data_[pos_] == '\n') {
    ++pos_;
  }
}

size_t TextReader::LineEnd() {
  const size_t size = data_.size();
  const char* base = data_.data();
  // The next LF is cached so that files with lone CR line ends do not make
  // every line search to the end of the data.
  if (!lf_cached_ || next_lf_ < pos_) {
    const void* lf = std::memchr(base + pos_, '\n', size - pos_);
    next_lf_ =
        lf ? static_cast<size_t>(static_cast<const char*>(lf) - base) : size;
    lf_cached_ = true;
  }
  const void* cr = std::memchr(base + pos_, '\r', next_lf_ - pos_);
  return cr ? static_cast<size_t>(static_cast<const char*>(cr) - base)
            : next_lf_;
}

bool TextReader::ReadLine(std::string& line) {
  if (pos_ >= data_.size()) return false;
  const size_t end = LineEnd();
  line.assign(data_.data() + pos_, end - pos_);
  pos_ = end;
  SkipLineEnd();
  return true;
}

bool TextReader::ReadItem(std::string& item) {
  bool quoted;
  return ReadItem(item, quoted);
}

bool TextReader::ReadItem(std::string& item, bool& quoted) {
  return ReadItemImpl(item, quoted, false);
}

bool TextReader::ReadFirstItem(std::string& item) {
  bool quoted;
  return ReadItemImpl(item, quoted, true);
}

void TextReader::SkipRestOfLine() {
  if (pos_ >= data_.size()) return;
  pos_ = LineEnd();
  SkipLineEnd();
}

bool TextReader::ReadItemImpl(std::string& item, bool& quoted,
                              bool whole_line) {
  const size_t size = data_.size();
  if (pos_ >= size) return false;
  const char* base = data_.data();
  // NUL bytes read as if they were not there, here as around the item.
  const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\0'; };
  while (pos_ < size && blank(base[pos_])) ++pos_;
  quoted = pos_ < size && base[pos_] == '"';
  // What ends the item: its line end (consumed), or a comma or other text
  // that the quoted item form leaves for the next read.
  bool line_ended = false;
  if (quoted) {
    const size_t start = pos_ + 1;
    // Most items are short: look at their bytes directly before handing a
    // long one to memchr.
    size_t end = start;
    const size_t quick = std::min(size, start + 32);
    while (end < quick && base[end] != '"') ++end;
    if (end == quick && end < size) {
      const void* q = std::memchr(base + end, '"', size - end);
      end = q ? static_cast<size_t>(static_cast<const char*>(q) - base) : size;
    }
    item.assign(base + start, end - start);
    pos_ = end < size ? end + 1 : size;
    while (pos_ < size && blank(base[pos_])) ++pos_;
    if (pos_ < size && base[pos_] == ',') {
      ++pos_;
    } else {
      line_ended = pos_ >= size || base[pos_] == '\r' || base[pos_] == '\n';
      SkipLineEnd();
    }
  } else {
    size_t end = pos_;
    while (end < size && !kStops.stop[static_cast<unsigned char>(base[end])]) {
      ++end;
    }
    size_t trimmed = end;
    while (trimmed > pos_ &&
           (base[trimmed - 1] == ' ' || base[trimmed - 1] == '\0')) {
      --trimmed;
    }
    item.assign(base + pos_, trimmed - pos_);
    pos_ = end;
    if (pos_ < size && base[pos_] == ',') {
      ++pos_;
    } else {
      line_ended = true;
      SkipLineEnd();
    }
  }
  if (whole_line && !line_ended) SkipRestOfLine();
  if (has_nuls_) DropNuls(item);
  return true;
}

bool TextReader::ReadBool(bool& value) {
  std::string& item = scratch_;
  if (!ReadItem(item)) return false;
  if (item == "#TRUE#" || EqualsIgnoreCase(item, "#TRUE#") ||
      EqualsIgnoreCase(item, "True")) {
    value = true;
    return true;
  }
  if (item == "#FALSE#" || EqualsIgnoreCase(item, "#FALSE#") ||
      EqualsIgnoreCase(item, "False")) {
    value = false;
    return true;
  }
  double d;
  if (!ToDouble(item, d)) return false;
  value = d != 0;
  return true;
}

namespace {

// Reads the Boolean literals as the numbers they stand for.
std::string_view BooleanAsNumber(std::string_view item) {
  if (EqualsIgnoreCase(item, "#TRUE#")) return "-1";
  if (EqualsIgnoreCase(item, "#FALSE#")) return "0";
  return item;
}

}  // namespace

bool TextReader::ReadLong(int32_t& value) {
  std::string& item = scratch_;
  if (!ReadItem(item)) return false;
  // Most stored numbers are short plain integers: convert those directly.
  size_t digits = item.size() - (!item.empty() && item[0] == '-');
  if (digits > 0 && digits <= 9) {
    int32_t n = 0;
    size_t i = item.size() - digits;
    for (; i < item.size() && item[i] >= '0' && item[i] <= '9'; ++i) {
      n = n * 10 + (item[i] - '0');
    }
    if (i == item.size()) {
      value = item[0] == '-' ? -n : n;
      return true;
    }
  }
  return ToLong(BooleanAsNumber(item), value);
}

bool TextReader::ReadInteger(int16_t& value) {
  std::string& item = scratch_;
  return ReadItem(item) && ToInteger(BooleanAsNumber(item), value);
}

bool TextReader::ReadSingle(float& value) {
  std::string& item = scratch_;
  return ReadItem(item) && ToSingle(BooleanAsNumber(item), value);
}

bool TextReader::ReadDouble(double& value) {
  std::string& item = scratch_;
  return ReadItem(item) && ToDouble(BooleanAsNumber(item), value);
}

void ItemValue::AppendTo(std::string& out) const {
  if (const auto* text = std::get_if<std::string_view>(&v_)) {
    out.push_back('"');
    out.append(*text);
    out.push_back('"');
  } else if (const auto* b = std::get_if<bool>(&v_)) {
    out.append(*b ? "#TRUE#" : "#FALSE#");
  } else if (const auto* n = std::get_if<int64_t>(&v_)) {
    out.append(NumberText(*n));
  } else if (const auto* f = std::get_if<float>(&v_)) {
    out.append(NumberText(*f));
  } else {
    out.append(NumberText(std::get<double>(v_)));
  }
}

TextWriter::~TextWriter() { Abandon(); }

bool TextWriter::Create(const std::string& path) {
  Abandon();
  error_ = 0;
  target_ = ResolveLinks(path);
  struct stat st;
  const bool exists = ::stat(target_.c_str(), &st) == 0;
  if (exists && S_ISDIR(st.st_mode)) {
    Fail(EISDIR);
    return false;
  }
  size_t slash = target_.find_last_of('/');
  std::string dir =
      slash == std::string::npos ? "" : target_.substr(0, slash + 1);
  std::string base =
      slash == std::string::npos ? target_ : target_.substr(slash + 1);
  temp_ = dir + "." + base + ".tmp-XXXXXX";
  // The slot is claimed first so that the file is listed a few
  // instructions after it exists.
  slot_ = ClaimTempSlot(temp_.size());
  fd_ = ::mkstemp(temp_.data());
  if (fd_ < 0) {
    const int error = errno;
    UnlistTempFile(slot_);
    slot_ = -1;
    temp_.clear();
    Fail(error);
    return false;
  }
  ListTempFile(slot_, temp_);
  // mkstemp creates the file private; give it the target's permissions, or
  // the usual ones for a new file.
  mode_t mode = exists ? (st.st_mode & 07777) : 0644;
  ::fchmod(fd_, mode);
  ok_ = true;
  buffer_.clear();
  return true;
}

void TextWriter::Fail(int error) {
  ok_ = false;
  if (error_ == 0) error_ = error;
  NoteFileError(error);
}

void TextWriter::Flush() {
  size_t done = 0;
  while (fd_ >= 0 && ok_ && done < buffer_.size()) {
    ssize_t n = ::write(fd_, buffer_.data() + done, buffer_.size() - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      Fail(n < 0 ? errno : EIO);
      break;
    }
    done += static_cast<size_t>(n);
  }
  buffer_.clear();
}

void TextWriter::Write(std::string_view text) {
  if (fd_ < 0) {
    Fail(EBADF);
    return;
  }
  buffer_.append(text);
  if (buffer_.size() >= kFlushSize) Flush();
}

void TextWriter::WriteLine(std::string_view line) {
  Write(line);
  Write("\r\n");
}

void TextWriter::WriteItems(std::initializer_list<ItemValue> items) {
  std::string line;
  bool first = true;
  for (const ItemValue& item : items) {
    if (!first) line.push_back(',');
    first = false;
    item.AppendTo(line);
  }
  WriteLine(line);
}

bool TextWriter::Commit() {
  if (fd_ < 0) return false;
  Flush();
  if (::close(fd_) != 0) Fail(errno);
  fd_ = -1;
  if (ok_ && ::rename(temp_.c_str(), target_.c_str()) == 0) {
    UnlistTempFile(slot_);
    slot_ = -1;
    temp_.clear();
    return true;
  }
  if (ok_) Fail(errno);
  ::unlink(temp_.c_str());
  UnlistTempFile(slot_);
  slot_ = -1;
  temp_.clear();
  ok_ = false;
  return false;
}

void TextWriter::Abandon() {
  if (fd_ >= 0) {
    ::close(fd_);
    fd_ = -1;
  }
  if (!temp_.empty()) {
    ::unlink(temp_.c_str());
    temp_.clear();
  }
  UnlistTempFile(slot_);
  slot_ = -1;
  buffer_.clear();
  ok_ = false;
}

int LastFileError() { return last_file_error; }

void ClearFileError() { last_file_error = 0; }

void RemoveTemporaryFiles() {
  for (int i = 0; i < kTempSlots; ++i) {
    if (temp_slot_state[i].load() == kSlotLive) ::unlink(temp_slot_path[i]);
  }
}

}  // namespace pelinor
