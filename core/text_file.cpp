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
#include <charconv>
#include <cstdio>
#include <cstring>
#include <utility>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include "pelinor/numeric.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

constexpr size_t kFlushSize = 1 << 16;
// What a new writer's buffer starts with: most record files fit, so they
// are written without the buffer growing.
constexpr size_t kFirstBufferSize = 1 << 13;
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

// The first CR or LF, or with `comma` also the first comma, in [p, end);
// `end` when there is none. Most lines are a few dozen bytes, too short
// for memchr's set-up to pay and too long for a byte loop to be cheap, so
// they are scanned 16 bytes at a time where the machine allows it. Both
// ends are searched for at once, which keeps a file of lone CR line ends
// linear.
const char* FindStop(const char* p, const char* end, bool comma) {
#if defined(__SSE2__)
  const __m128i cr = _mm_set1_epi8('\r');
  const __m128i lf = _mm_set1_epi8('\n');
  const __m128i third = _mm_set1_epi8(comma ? ',' : '\n');
  while (end - p >= 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i hit =
        _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi8(v, cr), _mm_cmpeq_epi8(v, lf)),
                     _mm_cmpeq_epi8(v, third));
    const int mask = _mm_movemask_epi8(hit);
    if (mask != 0) return p + __builtin_ctz(static_cast<unsigned>(mask));
    p += 16;
  }
#endif
  while (p < end && *p != '\r' && *p != '\n' && !(comma && *p == ',')) ++p;
  return p;
}

// Buffers of closed readers and writers, kept per thread for the next
// ones: a batch reads and writes file after file, and would otherwise take
// a fresh buffer from the allocator for each. At most two are kept, of at
// most kKeptBufferMax bytes. The slots are plain storage, emptied by a
// thread-exit hook; readers closed after it (objects destroyed later in
// the thread's exit) free their buffers directly.
constexpr size_t kKeptBufferMax = 1 << 18;
struct KeptBuffers {
  char* data[2];
  size_t capacity[2];
  bool closed;
};
thread_local KeptBuffers kept_buffers;

struct KeptBuffersHook {
  KeptBuffersHook() = default;
  ~KeptBuffersHook() {
    for (int i = 0; i < 2; ++i) {
      delete[] kept_buffers.data[i];
      kept_buffers.data[i] = nullptr;
    }
    kept_buffers.closed = true;
  }
};

// A buffer of at least `size` bytes, and its capacity.
std::unique_ptr<char[]> TakeBuffer(size_t size, size_t& capacity) {
  KeptBuffers& kept = kept_buffers;
  for (int i = 0; i < 2; ++i) {
    if (kept.data[i] != nullptr && kept.capacity[i] >= size) {
      capacity = kept.capacity[i];
      return std::unique_ptr<char[]>(std::exchange(kept.data[i], nullptr));
    }
  }
  // Rounded up, so that the next file of about the same size fits.
  capacity = (std::max<size_t>(size, 1) + 4095) & ~size_t{4095};
  return std::make_unique_for_overwrite<char[]>(capacity);
}

// Keeps `buffer` for TakeBuffer() when it is small enough and larger than
// a kept one it replaces; otherwise frees it.
void GiveBackBuffer(std::unique_ptr<char[]> buffer, size_t capacity) {
  KeptBuffers& kept = kept_buffers;
  if (buffer == nullptr || capacity > kKeptBufferMax || kept.closed) return;
  int slot = kept.capacity[0] <= kept.capacity[1] ? 0 : 1;
  if (kept.data[0] == nullptr)
    slot = 0;
  else if (kept.data[1] == nullptr)
    slot = 1;
  else if (kept.capacity[slot] >= capacity)
    return;
  thread_local KeptBuffersHook hook;  // frees the kept ones at thread exit
  (void)hook;
  delete[] kept.data[slot];
  kept.data[slot] = buffer.release();
  kept.capacity[slot] = capacity;
}

// Appends the decimal form of `n`, as NumberText() writes it.
void AppendInteger(std::string& out, int64_t n) {
  char buf[24];
  const auto res = std::to_chars(buf, buf + sizeof buf, n);
  out.append(buf, static_cast<size_t>(res.ptr - buf));
}

}  // namespace

TextReader::~TextReader() { Close(); }

TextReader::TextReader(TextReader&& other) noexcept {
  *this = std::move(other);
}

TextReader& TextReader::operator=(TextReader&& other) noexcept {
  if (this == &other) return *this;
  Close();
  // Mapped and read contents do not move; a string's may.
  const bool in_string = other.map_ == nullptr && other.read_ == nullptr;
  owned_ = std::move(other.owned_);
  read_ = std::move(other.read_);
  read_capacity_ = other.read_capacity_;
  map_ = other.map_;
  map_size_ = other.map_size_;
  data_ = in_string ? std::string_view(owned_) : other.data_;
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
      open_ = true;
      return true;
    }
  }
  // Read the size reported, then whatever a growing file added since. The
  // buffer is not cleared first: every byte served is one read.
  size_t capacity = 0;
  std::unique_ptr<char[]> data = TakeBuffer(size, capacity);
  std::string grown;
  size_t got = 0;
  char probe[4096];
  for (;;) {
    bool room = got < size;
    char* dst = room ? data.get() + got : probe;
    size_t want = room ? size - got : sizeof probe;
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
      grown.append(probe, static_cast<size_t>(n));
    }
  }
  ::close(fd);
  if (!grown.empty()) {
    grown.insert(0, data.get(), got);
    GiveBackBuffer(std::move(data), capacity);
    OpenText(std::move(grown));
    return true;
  }
  read_ = std::move(data);
  read_capacity_ = capacity;
  data_ = std::string_view(read_.get(), got);
  has_nuls_ = std::memchr(data_.data(), '\0', data_.size()) != nullptr;
  pos_ = 0;
  open_ = true;
  return true;
}

void TextReader::OpenText(std::string data) {
  Close();
  owned_ = std::move(data);
  data_ = owned_;
  has_nuls_ = std::memchr(data_.data(), '\0', data_.size()) != nullptr;
  pos_ = 0;
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
  GiveBackBuffer(std::move(read_), read_capacity_);
  read_capacity_ = 0;
  data_ = {};
  has_nuls_ = false;
  pos_ = 0;
  open_ = false;
}

// CR LF, CR or LF. Inline: every read ends with it.
inline void TextReader::SkipLineEnd() {
  const size_t size = data_.size();
  if (pos_ < size && data_[pos_] == '\r') ++pos_;
  if (pos_ < size && data_[pos_] == '\n') ++pos_;
}

size_t TextReader::LineEnd() const {
  const char* base = data_.data();
  return static_cast<size_t>(FindStop(base + pos_, base + data_.size(), false) -
                             base);
}

bool TextReader::ReadLine(std::string& line) {
  std::string_view text;
  if (!ReadLineView(text)) return false;
  line.assign(text);
  return true;
}

bool TextReader::ReadLineView(std::string_view& text) {
  if (pos_ >= data_.size()) return false;
  const size_t end = LineEnd();
  text = data_.substr(pos_, end - pos_);
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

bool TextReader::ReadFirstItemView(std::string_view& text) {
  return ReadItemView(text, true);
}

void TextReader::SkipRestOfLine() {
  if (pos_ >= data_.size()) return;
  pos_ = LineEnd();
  SkipLineEnd();
}

bool TextReader::ReadItemImpl(std::string& item, bool& quoted,
                              bool whole_line) {
  std::string_view span;
  if (!ReadItemSpan(span, quoted, whole_line)) return false;
  item.assign(span);
  if (has_nuls_) DropNuls(item);
  return true;
}

bool TextReader::ReadItemView(std::string_view& item, bool whole_line) {
  bool quoted;
  if (!ReadItemSpan(item, quoted, whole_line)) return false;
  if (has_nuls_ && item.find('\0') != std::string_view::npos) {
    scratch_.assign(item);
    DropNuls(scratch_);
    item = scratch_;
  }
  return true;
}

// Inline: the typed and view reads are little more than this.
inline bool TextReader::ReadItemSpan(std::string_view& item, bool& quoted,
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
    item = std::string_view(base + start, end - start);
    pos_ = end < size ? end + 1 : size;
    while (pos_ < size && blank(base[pos_])) ++pos_;
    if (pos_ < size && base[pos_] == ',') {
      ++pos_;
    } else {
      line_ended = pos_ >= size || base[pos_] == '\r' || base[pos_] == '\n';
      SkipLineEnd();
    }
  } else {
    const size_t end =
        static_cast<size_t>(FindStop(base + pos_, base + size, true) - base);
    size_t trimmed = end;
    while (trimmed > pos_ &&
           (base[trimmed - 1] == ' ' || base[trimmed - 1] == '\0')) {
      --trimmed;
    }
    item = std::string_view(base + pos_, trimmed - pos_);
    pos_ = end;
    if (pos_ < size && base[pos_] == ',') {
      ++pos_;
    } else {
      line_ended = true;
      SkipLineEnd();
    }
  }
  if (whole_line && !line_ended) SkipRestOfLine();
  return true;
}

bool TextReader::ReadBool(bool& value) {
  std::string_view item;
  if (!ReadItemView(item, false)) return false;
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
  std::string_view item;
  return ReadItemView(item, false) && ToLong(BooleanAsNumber(item), value);
}

bool TextReader::ReadInteger(int16_t& value) {
  std::string_view item;
  return ReadItemView(item, false) && ToInteger(BooleanAsNumber(item), value);
}

bool TextReader::ReadSingle(float& value) {
  std::string_view item;
  return ReadItemView(item, false) && ToSingle(BooleanAsNumber(item), value);
}

bool TextReader::ReadDouble(double& value) {
  std::string_view item;
  return ReadItemView(item, false) && ToDouble(BooleanAsNumber(item), value);
}

void ItemValue::AppendTo(std::string& out) const {
  if (const auto* text = std::get_if<std::string_view>(&v_)) {
    out.push_back('"');
    out.append(*text);
    out.push_back('"');
  } else if (const auto* b = std::get_if<bool>(&v_)) {
    out.append(*b ? "#TRUE#" : "#FALSE#");
  } else if (const auto* n = std::get_if<int64_t>(&v_)) {
    AppendInteger(out, *n);
  } else if (const auto* f = std::get_if<float>(&v_)) {
    out.append(NumberText(*f));
  } else {
    out.append(NumberText(std::get<double>(v_)));
  }
}

TextWriter::~TextWriter() { Abandon(); }

bool TextWriter::Create(const std::string& path) {
  if (!Start(path)) return false;
  if (MakeTemp()) return true;
  started_ = false;
  return false;
}

bool TextWriter::CreateWhenNeeded(const std::string& path) {
  return Start(path);
}

bool TextWriter::Start(const std::string& path) {
  Abandon();
  error_ = 0;
  temp_failed_ = false;
  target_ = ResolveLinks(path);
  struct stat st;
  const bool exists = ::stat(target_.c_str(), &st) == 0;
  if (exists && S_ISDIR(st.st_mode)) {
    Fail(EISDIR);
    return false;
  }
  // mkstemp creates the file private; it gets the target's permissions,
  // or the usual ones for a new file.
  mode_ = exists ? (st.st_mode & 07777) : 0644;
  target_size_ = exists && S_ISREG(st.st_mode) ? st.st_size : -1;
  flushed_ = 0;
  used_ = 0;
  started_ = true;
  ok_ = true;
  return true;
}

bool TextWriter::MakeTemp() {
  const size_t slash = target_.find_last_of('/');
  const size_t base = slash == std::string::npos ? 0 : slash + 1;
  temp_.assign(target_, 0, base);
  temp_.append(".").append(target_, base).append(".tmp-XXXXXX");
  // The slot is claimed first so that the file is listed a few
  // instructions after it exists.
  slot_ = ClaimTempSlot(temp_.size());
  fd_ = ::mkstemp(temp_.data());
  if (fd_ < 0) {
    const int error = errno;
    UnlistTempFile(slot_);
    slot_ = -1;
    temp_.clear();
    temp_failed_ = true;
    Fail(error);
    return false;
  }
  ListTempFile(slot_, temp_);
  ::fchmod(fd_, static_cast<mode_t>(mode_));
  return true;
}

void TextWriter::Fail(int error) {
  ok_ = false;
  if (error_ == 0) error_ = error;
  NoteFileError(error);
}

void TextWriter::Flush() {
  if (fd_ < 0 && started_ && ok_ && used_ != 0) MakeTemp();
  size_t done = 0;
  while (fd_ >= 0 && ok_ && done < used_) {
    ssize_t n = ::write(fd_, buffer_.get() + done, used_ - done);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) {
      Fail(n < 0 ? errno : EIO);
      break;
    }
    done += static_cast<size_t>(n);
  }
  flushed_ += done;
  used_ = 0;
}

inline void TextWriter::Reserve(size_t n) {
  if (capacity_ - used_ >= n) return;
  Grow(n);
}

void TextWriter::Grow(size_t n) {
  size_t capacity = 0;
  auto grown = TakeBuffer(
      std::max({kFirstBufferSize, 2 * capacity_, used_ + n}), capacity);
  if (used_ != 0) std::memcpy(grown.get(), buffer_.get(), used_);
  GiveBackBuffer(std::exchange(buffer_, std::move(grown)), capacity_);
  capacity_ = capacity;
}

void TextWriter::Write(std::string_view text) {
  if (!started_) {
    Fail(EBADF);
    return;
  }
  Reserve(text.size());
  if (!text.empty())
    std::memcpy(buffer_.get() + used_, text.data(), text.size());
  used_ += text.size();
  if (used_ >= kFlushSize) Flush();
}

void TextWriter::WriteLine(std::string_view line) {
  Write(line);
  Write("\r\n");
}

namespace {

// Copies the `n` bytes at `s` to `p` and returns the end of the copy. The
// parts of a record line (labels, names, short values) are nearly all 16
// bytes or shorter; those are copied with two overlapping moves of a fixed
// size, which compile to a few instructions instead of a call.
inline char* CopyPart(char* p, const char* s, size_t n) {
  if (n >= 8 && n <= 16) {
    uint64_t head, tail;
    std::memcpy(&head, s, 8);
    std::memcpy(&tail, s + n - 8, 8);
    std::memcpy(p, &head, 8);
    std::memcpy(p + n - 8, &tail, 8);
  } else if (n >= 4 && n < 8) {
    uint32_t head, tail;
    std::memcpy(&head, s, 4);
    std::memcpy(&tail, s + n - 4, 4);
    std::memcpy(p, &head, 4);
    std::memcpy(p + n - 4, &tail, 4);
  } else if (n > 0 && n < 4) {
    p[0] = s[0];
    p[n / 2] = s[n / 2];
    p[n - 1] = s[n - 1];
  } else if (n != 0) {
    std::memcpy(p, s, n);
  }
  return p + n;
}

}  // namespace

void TextWriter::WriteLineParts(std::initializer_list<LinePart> parts) {
  if (!started_) {
    Fail(EBADF);
    return;
  }
  // Room for the longest form of every part and the line end is made once;
  // each part is then written in place.
  constexpr size_t kNumberMax = 20;  // "-9223372036854775808"
  size_t most = 2;
  for (const LinePart& part : parts) {
    most += part.is_number_ ? kNumberMax : part.text_.size();
  }
  Reserve(most);
  char* p = buffer_.get() + used_;
  for (const LinePart& part : parts) {
    if (part.is_number_) {
      if (part.number_ >= 0 && part.number_ < 10) {
        *p++ = static_cast<char>('0' + part.number_);
      } else {
        p = std::to_chars(p, p + kNumberMax, part.number_).ptr;
      }
    } else {
      p = CopyPart(p, part.text_.data(), part.text_.size());
    }
  }
  *p++ = '\r';
  *p++ = '\n';
  used_ = static_cast<size_t>(p - buffer_.get());
  if (used_ >= kFlushSize) Flush();
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
  if (!started_) return false;
  // A writer created when needed has no temporary file yet when its bytes
  // all stayed in the buffer, or there are none.
  if (fd_ < 0 && ok_) MakeTemp();
  started_ = false;
  Flush();
  ReleaseBuffer();
  if (fd_ >= 0 && ::close(fd_) != 0) Fail(errno);
  fd_ = -1;
  if (ok_ && ::rename(temp_.c_str(), target_.c_str()) == 0) {
    UnlistTempFile(slot_);
    slot_ = -1;
    temp_.clear();
    return true;
  }
  if (ok_) Fail(errno);
  RemoveTemp();
  ok_ = false;
  return false;
}

namespace {

// Reads up to `n` bytes of `fd` into `to`, across short reads; the count
// read, or -1 on an error.
ssize_t ReadFully(int fd, char* to, size_t n) {
  size_t done = 0;
  while (done < n) {
    const ssize_t got = ::read(fd, to + done, n - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  return static_cast<ssize_t>(done);
}

}  // namespace

bool TextWriter::TargetHoldsTheSame() {
  if (target_size_ < 0 ||
      static_cast<uint64_t>(target_size_) != flushed_ + used_) {
    return false;
  }
  const int target = ::open(target_.c_str(), O_RDONLY | O_CLOEXEC);
  if (target < 0) return false;
  bool same = true;
  // The flushed part is compared with the temporary file, a block at a
  // time; the buffered rest with the buffer.
  constexpr size_t kBlock = 1 << 16;
  const size_t block =
      static_cast<size_t>(std::min<uint64_t>(kBlock, flushed_ + used_ + 1));
  std::unique_ptr<char[]> a(flushed_ > 0 ? new char[block] : nullptr);
  std::unique_ptr<char[]> b(new char[block]);
  uint64_t at = 0;
  while (same && at < flushed_) {
    const size_t n =
        static_cast<size_t>(std::min<uint64_t>(block, flushed_ - at));
    same = ::pread(fd_, a.get(), n, static_cast<off_t>(at)) ==
               static_cast<ssize_t>(n) &&
           ReadFully(target, b.get(), n) == static_cast<ssize_t>(n) &&
           std::memcmp(a.get(), b.get(), n) == 0;
    at += n;
  }
  for (size_t done = 0; same && done < used_;) {
    const size_t n = std::min(block, used_ - done);
    same = ReadFully(target, b.get(), n) == static_cast<ssize_t>(n) &&
           std::memcmp(buffer_.get() + done, b.get(), n) == 0;
    done += n;
  }
  // Nothing may follow: the file could have grown since Create().
  char extra;
  same = same && ReadFully(target, &extra, 1) == 0;
  ::close(target);
  return same;
}

void TextWriter::RemoveTemp() {
  if (!temp_.empty()) ::unlink(temp_.c_str());
  UnlistTempFile(slot_);
  slot_ = -1;
  temp_.clear();
}

bool TextWriter::CommitIfChanged(bool& unchanged) {
  unchanged = false;
  if (!started_) return false;
  if (ok_ && TargetHoldsTheSame()) {
    Abandon();
    unchanged = true;
    return true;
  }
  return Commit();
}

void TextWriter::Abandon() {
  if (fd_ >= 0) {
    ::close(fd_);
    fd_ = -1;
  }
  RemoveTemp();
  ReleaseBuffer();
  started_ = false;
  ok_ = false;
}

void TextWriter::ReleaseBuffer() {
  GiveBackBuffer(std::move(buffer_), capacity_);
  capacity_ = 0;
  used_ = 0;
}

int LastFileError() { return last_file_error; }

void ClearFileError() { last_file_error = 0; }

void RemoveTemporaryFiles() {
  for (int i = 0; i < kTempSlots; ++i) {
    if (temp_slot_state[i].load() == kSlotLive) ::unlink(temp_slot_path[i]);
  }
}

}  // namespace pelinor
