// Sectioned settings files: "[Section]" header lines and "Name:Value"
// records, read by cIniFile.
//
// Format: see docs/formats/settings-files.md.
//
// A section is found by reading the file item by item (the item mode of
// TextReader) from its start until an item "[name]" matches; the section's
// lines are then read whole from the position right after that item, up to
// the next line that is itself a header. Doing that per call makes reading
// every setting of a large file quadratic, so the file is indexed once when
// it is opened:
//   - one pass splits it into lines and classifies each (header line,
//     setting with its trimmed name and value, other);
//   - one pass walks the items and records, for the first item naming each
//     section, where its lines start (the rest of the item's line when the
//     item ended mid-line, then whole lines from a line index).
// Items that start with a double quote and lines holding NUL bytes are
// read by TextReader::ReadItem itself, so the item semantics come from one
// place; the fast path only handles plain unquoted items, which it reads
// exactly as ReadItem does. Look-ups then scan only the section's own
// lines, or, for sections that run on for very many lines (header items
// that are not header lines, such as indented headers), a per-name index of
// line numbers built on first need.

#include "pelinor/ini_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <new>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pelinor/data_parser.h"
#include "pelinor/file_system.h"
#include "pelinor/numeric.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor {
namespace {

// Byte classes of the line scan: flags a line collects, and the line end.
constexpr uint8_t kComma = 1;
constexpr uint8_t kNul = 2;
constexpr uint8_t kColon = 4;
constexpr uint8_t kLineEnd = 0x80;

constexpr std::array<uint8_t, 256> MakeByteClasses() {
  std::array<uint8_t, 256> classes{};
  classes[static_cast<unsigned char>(',')] = kComma;
  classes[0] = kNul;
  classes[static_cast<unsigned char>(':')] = kColon;
  classes[static_cast<unsigned char>('\r')] = kLineEnd;
  classes[static_cast<unsigned char>('\n')] = kLineEnd;
  return classes;
}
constexpr std::array<uint8_t, 256> kByteClasses = MakeByteClasses();

// Sections whose lines run on longer than this are answered from the
// per-name index instead of a scan.
constexpr size_t kScanLimit = 64;

// Positions are kept in 32 bits to keep the index small; larger files are
// treated as unreadable.
using Pos = uint32_t;
constexpr size_t kMaxFileSize = UINT32_MAX - 1;
constexpr size_t kNone = static_cast<size_t>(-1);

enum class Kind : uint8_t { kOther, kHeader, kSetting };

// One line as whole-line reading returns it, classified. Positions are
// byte offsets into the file's contents.
struct Line {
  Pos start = 0;  // the text, without its line end
  Pos end = 0;
  Pos next = 0;        // the position after the line end
  Pos name_begin = 0;  // kSetting: the trimmed text before the first ":"
  Pos name_end = 0;
  Pos value_begin = 0;  // kSetting: the trimmed text after it
  Pos value_end = 0;
  Kind kind = Kind::kOther;
  uint8_t flags = 0;  // kComma | kNul
};

// Classifies the text [start, end) of `data`; `colon` is the position of
// its first ":", or kNone. The split is the one of
// cDataParser::SplitNameAndValue() with ":", done on views because the
// index splits every line of the file.
Line ClassifyLine(const char* data, size_t start, size_t end, size_t next,
                  size_t colon) {
  Line line;
  line.start = static_cast<Pos>(start);
  line.end = static_cast<Pos>(end);
  line.next = static_cast<Pos>(next);
  if (end > start && data[start] == '[' && data[end - 1] == ']') {
    line.kind = Kind::kHeader;
  } else if (colon != kNone) {
    line.kind = Kind::kSetting;
    std::string_view name = Trim(std::string_view(data + start, colon - start));
    std::string_view value =
        Trim(std::string_view(data + colon + 1, end - colon - 1));
    line.name_begin = static_cast<Pos>(name.data() - data);
    line.name_end = static_cast<Pos>(line.name_begin + name.size());
    line.value_begin = static_cast<Pos>(value.data() - data);
    line.value_end = static_cast<Pos>(line.value_begin + value.size());
  }
  return line;
}

bool IsHeaderItem(std::string_view item) {
  return item.size() >= 2 && item.front() == '[' && item.back() == ']';
}

}  // namespace

struct cIniFile::Index {
  // Where a section's lines start: optionally the rest of the line that
  // held its header item, then whole lines from `first`.
  struct Section {
    std::optional<Line> lead;
    size_t first = 0;
  };

  TextReader reader;
  std::vector<Line> lines;
  // next_header[i]: the first header line at or after line i (or the
  // number of lines); one entry more than `lines`.
  std::vector<Pos> next_header;
  // Upper-cased section name -> its first header item.
  std::unordered_map<std::string, Section> sections;
  // Upper-cased setting name -> the lines holding it, ascending.
  std::unordered_map<std::string, std::vector<Pos>> names;
  bool names_built = false;

  std::string last_query;  // the section name asked for last, as given
  const Section* last_section = nullptr;
  bool has_last = false;

  const char* data() const { return reader.Data().data(); }
  std::string_view Text(const Line& l) const {
    return std::string_view(data() + l.start, l.end - l.start);
  }
  std::string_view Name(const Line& l) const {
    return std::string_view(data() + l.name_begin, l.name_end - l.name_begin);
  }
  std::string_view Value(const Line& l) const {
    return std::string_view(data() + l.value_begin,
                            l.value_end - l.value_begin);
  }

  bool Build();
  void ScanLines();
  void ScanItems();
  void NoteItem(std::string_view item, size_t after, size_t hint);
  Section MakeSection(size_t after, size_t hint) const;

  const Section* FindSection(const std::string& name);
  std::optional<std::string_view> FindValue(const Section& s,
                                            const std::string& name);
  // Calls visit(text) for each line of the section in order; returns true
  // when the section ran to the end of the file.
  template <typename Visit>
  bool ForEachLine(const Section& s, Visit visit) const;
};

bool cIniFile::Index::Build() {
  if (reader.Data().size() > kMaxFileSize) return false;
  ScanLines();
  ScanItems();
  return true;
}

void cIniFile::Index::ScanLines() {
  const char* base = data();
  const size_t n = reader.Data().size();
  // Generous: untouched capacity costs address space, not time.
  lines.reserve(n / 8 + 16);
  size_t i = 0;
  while (i < n) {
    const size_t start = i;
    size_t colon = kNone;
    uint8_t flags = 0;
    for (; i < n; ++i) {
      uint8_t k = kByteClasses[static_cast<unsigned char>(base[i])];
      if (k == 0) continue;
      if (k == kLineEnd) break;
      if (k == kColon && colon == kNone) colon = i;
      flags |= k;
    }
    const size_t end = i;
    if (i < n) {
      i += (base[i] == '\r' && i + 1 < n && base[i + 1] == '\n') ? 2 : 1;
    }
    lines.push_back(ClassifyLine(base, start, end, i, colon));
    lines.back().flags = flags & (kComma | kNul);
  }
  next_header.assign(lines.size() + 1, static_cast<Pos>(lines.size()));
  for (size_t j = lines.size(); j-- > 0;) {
    next_header[j] = lines[j].kind == Kind::kHeader ? static_cast<Pos>(j)
                                                    : next_header[j + 1];
  }
}

void cIniFile::Index::ScanItems() {
  const char* base = data();
  const size_t n = reader.Data().size();
  size_t c = 0;  // where the next item read starts
  size_t li = 0;
  std::string item;
  while (c < n) {
    while (li < lines.size() && lines[li].next <= c) ++li;
    if (li == lines.size()) break;
    const Line& line = lines[li];
    const size_t end = line.end;
    if ((line.flags & kNul) == 0 && c <= end) {
      // Plain unquoted items, read as ReadItem reads them: leading spaces
      // and tabs skipped, up to a comma or the line end, trailing spaces
      // dropped, the comma or line end consumed.
      size_t s = c;
      bool quote = false;
      for (;;) {
        size_t b = s;
        while (b < end && (base[b] == ' ' || base[b] == '\t')) ++b;
        if (b < end && base[b] == '"') {
          quote = true;
          break;
        }
        size_t e = end;
        if (line.flags & kComma) {
          const void* comma = std::memchr(base + b, ',', end - b);
          if (comma != nullptr) {
            e = static_cast<size_t>(static_cast<const char*>(comma) - base);
          }
        }
        const bool at_comma = e < end;
        if (b < e && base[b] == '[') {
          NoteItem(RTrim(std::string_view(base + b, e - b)),
                   at_comma ? e + 1 : line.next, li);
        }
        if (!at_comma) break;
        s = e + 1;
      }
      if (!quote) {
        c = line.next;
        continue;
      }
      c = s;
    }
    // Quoted items (they may span lines) and items holding NUL bytes.
    reader.Seek(c);
    if (!reader.ReadItem(item)) break;
    const size_t after = reader.Tell();
    NoteItem(item, after, li);
    if (after <= c) break;
    c = after;
  }
}

void cIniFile::Index::NoteItem(std::string_view item, size_t after,
                               size_t hint) {
  if (!IsHeaderItem(item)) return;
  auto [it, inserted] =
      sections.try_emplace(UCase(item.substr(1, item.size() - 2)));
  if (inserted) it->second = MakeSection(after, hint);
}

cIniFile::Index::Section cIniFile::Index::MakeSection(size_t after,
                                                      size_t hint) const {
  Section s;
  // The line that holds position `after`: mostly the hint or the line
  // after it.
  size_t li = hint;
  while (li < lines.size() && li <= hint + 1 && lines[li].next <= after) ++li;
  if (li < lines.size() &&
      (lines[li].start > after || lines[li].next <= after)) {
    auto it = std::upper_bound(
        lines.begin(), lines.end(), after,
        [](size_t pos, const Line& l) { return pos < l.next; });
    li = static_cast<size_t>(it - lines.begin());
  }
  if (li >= lines.size()) {
    s.first = lines.size();
    return s;
  }
  const Line& line = lines[li];
  if (after <= line.start) {
    s.first = li;
    return s;
  }
  // The item ended mid-line (or inside the line end): the rest of the line
  // is read first.
  const size_t end = std::max<size_t>(after, line.end);
  std::string_view rest(data() + after, end - after);
  size_t colon = rest.find(':');
  s.lead =
      ClassifyLine(data(), after, end, line.next,
                   colon == std::string_view::npos ? kNone : after + colon);
  s.first = li + 1;
  return s;
}

const cIniFile::Index::Section* cIniFile::Index::FindSection(
    const std::string& name) {
  if (has_last && last_query == name) return last_section;
  auto it = sections.find(UCase(name));
  last_section = it == sections.end() ? nullptr : &it->second;
  last_query = name;
  has_last = true;
  return last_section;
}

std::optional<std::string_view> cIniFile::Index::FindValue(
    const Section& s, const std::string& name) {
  // Names mostly match with their case too; the exact comparison spares
  // the case table for those.
  auto matches = [this, &name](const Line& line) {
    if (line.kind != Kind::kSetting ||
        line.name_end - line.name_begin != name.size()) {
      return false;
    }
    std::string_view n = Name(line);
    return n == name || EqualsIgnoreCase(n, name);
  };
  if (s.lead) {
    if (s.lead->kind == Kind::kHeader) return std::nullopt;
    if (matches(*s.lead)) return Value(*s.lead);
  }
  const size_t stop = next_header[s.first];
  if (stop - s.first <= kScanLimit) {
    for (size_t i = s.first; i < stop; ++i) {
      if (matches(lines[i])) return Value(lines[i]);
    }
    return std::nullopt;
  }
  if (!names_built) {
    for (size_t i = 0; i < lines.size(); ++i) {
      if (lines[i].kind == Kind::kSetting) {
        names[UCase(Name(lines[i]))].push_back(static_cast<Pos>(i));
      }
    }
    names_built = true;
  }
  auto it = names.find(UCase(name));
  if (it == names.end()) return std::nullopt;
  auto at = std::lower_bound(it->second.begin(), it->second.end(), s.first);
  if (at == it->second.end() || *at >= stop) return std::nullopt;
  return Value(lines[*at]);
}

template <typename Visit>
bool cIniFile::Index::ForEachLine(const Section& s, Visit visit) const {
  if (s.lead) {
    if (s.lead->kind == Kind::kHeader) return false;
    visit(Text(*s.lead));
  }
  const size_t stop = next_header[s.first];
  for (size_t i = s.first; i < stop; ++i) visit(Text(lines[i]));
  return stop == lines.size();
}

cIniFile::cIniFile() = default;
cIniFile::~cIniFile() = default;

bool cIniFile::EnsureOpen(const std::string& strFileName,
                          std::string& strErrMsg) {
  if (index_ != nullptr) {
    strErrMsg.clear();
    return true;
  }
  if (!FileExists(strFileName)) {
    strErrMsg = "Cannot find file " + strFileName;
    return false;
  }
  // A file that exists but cannot be read (a directory, no permission, no
  // memory for it) ends the call quietly with the defaults.
  strErrMsg.clear();
  try {
    auto index = std::make_unique<Index>();
    if (!index->reader.Open(strFileName) || !index->Build()) return false;
    index_ = std::move(index);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

std::string cIniFile::GetSettingString(const std::string& strSection,
                                       const std::string& strName,
                                       const std::string& strDefault,
                                       const std::string& strFileName,
                                       std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return strDefault;
  const Index::Section* s = index_->FindSection(strSection);
  if (s == nullptr) return strDefault;
  std::optional<std::string_view> v = index_->FindValue(*s, strName);
  if (!v || v->empty()) return strDefault;
  return std::string(*v);
}

namespace {

// The value of a numeric look-up: `found` converted when it is numeric
// and in range, the default otherwise.
template <typename T, typename Convert>
T NumericSetting(const std::optional<std::string_view>& found, T dflt,
                 Convert convert) {
  T out = dflt;
  if (found && !found->empty() && convert(*found, out)) return out;
  return dflt;
}

}  // namespace

float cIniFile::GetSettingSingle(const std::string& strSection,
                                 const std::string& strName, float sgDefault,
                                 const std::string& strFileName,
                                 std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return sgDefault;
  const Index::Section* s = index_->FindSection(strSection);
  if (s == nullptr) return sgDefault;
  return NumericSetting(
      index_->FindValue(*s, strName), sgDefault,
      [](std::string_view t, float& f) { return ToSingle(t, f); });
}

double cIniFile::GetSettingDouble(const std::string& strSection,
                                  const std::string& strName, double dblDefault,
                                  const std::string& strFileName,
                                  std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return dblDefault;
  const Index::Section* s = index_->FindSection(strSection);
  if (s == nullptr) return dblDefault;
  return NumericSetting(
      index_->FindValue(*s, strName), dblDefault,
      [](std::string_view t, double& d) { return ToDouble(t, d); });
}

int32_t cIniFile::GetSettingLong(const std::string& strSection,
                                 const std::string& strName, int32_t lDefault,
                                 const std::string& strFileName,
                                 std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return lDefault;
  const Index::Section* s = index_->FindSection(strSection);
  if (s == nullptr) return lDefault;
  return NumericSetting(
      index_->FindValue(*s, strName), lDefault,
      [](std::string_view t, int32_t& l) { return ToLong(t, l); });
}

int32_t cIniFile::FindHeader(const std::string& strSection,
                             const std::string& strFileName,
                             std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return 0;
  return index_->FindSection(strSection) != nullptr ? 1 : 0;
}

int32_t cIniFile::GetStrings(const std::string& strFileName,
                             const std::string& Header,
                             Collection<std::string>& colstrings,
                             std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return 0;
  colstrings = Collection<std::string>();
  const Index::Section* s = index_->FindSection(Header);
  if (s == nullptr) return 0;
  bool reached_end =
      index_->ForEachLine(*s, [&colstrings](std::string_view line) {
        if (!line.empty()) colstrings.Add(std::string(line));
      });
  return reached_end ? 1 : 0;
}

int32_t cIniFile::GetPELINORStates(const std::string& strFileName,
                                   Collection<std::string>& colstates,
                                   Collection<std::string>& coltbcmsgs,
                                   Collection<std::string>& colonholdmsgs,
                                   std::string& strErrMsg) {
  if (!EnsureOpen(strFileName, strErrMsg)) return 0;
  colstates = Collection<std::string>();
  coltbcmsgs = Collection<std::string>();
  colonholdmsgs = Collection<std::string>();
  const Index::Section* s = index_->FindSection("States");
  if (s == nullptr) return 0;
  const cDataParser parser;
  bool reached_end = index_->ForEachLine(*s, [&](std::string_view line) {
    if (line.size() <= 5 || UCase(line.substr(0, 5)) != "STATE") return;
    std::string left;
    std::string description;
    std::string on_hold;
    if (!parser.SplitTriplet(std::string(line), left, description, on_hold,
                             ":")) {
      return;
    }
    std::string number(Mid(left, 6));
    if (!IsNumeric(number)) return;
    if (description.empty()) description = "Unknown description";
    if (on_hold.empty()) on_hold = description;
    colstates.Add(std::move(number));
    coltbcmsgs.Add(std::move(description));
    colonholdmsgs.Add(std::move(on_hold));
  });
  return reached_end ? 1 : 0;
}

void cIniFile::CloseFile() { index_.reset(); }

}  // namespace pelinor
