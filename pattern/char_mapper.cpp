// The character-mapping table and its file, "CharMap.txt".
// Format: docs/formats/charmap.md.

#include "pelinor/char_mapper.h"

#include <cerrno>
#include <utility>

#include "pelinor/file_system.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"

namespace pelinor {
namespace {

// The built-in mappings, two characters each: what OCR produced, then what
// it may stand for. The order decides which mapping Map() applies first.
constexpr const char* kBuiltIn[] = {
    // Slash and dollar.
    "/I", "/1", "/i", "/l", "/!", "/|", "$S", "$s",
    // Upper-case letter confusions.
    "DB", "BD", "EB", "BE", "ED", "DE", "FE", "EF", "LI", "IL", "JI", "IJ",
    "LJ", "JL", "OQ", "QO", "IT", "TI", "MN", "NM", "RP", "PR", "VU", "UV",
    "VW", "WV", "WU", "UW",
    // Lower-case letter confusions.
    "ec", "ce", "il", "li", "ji", "ij", "lj", "jl", "nm", "mn", "vu", "uv",
    "vw", "wv", "wu", "uw",
    // Upper to lower case.
    "Aa", "Bb", "Cc", "Dd", "Ee", "Ff", "Gg", "Hh", "Ii", "Jj", "Kk", "Ll",
    "Mm", "Nn", "Oo", "Pp", "Qq", "Rr", "Ss", "Tt", "Uu", "Vv", "Ww", "Xx",
    "Yy", "Zz",
    // Upper-case letters to digits and punctuation.
    "O0", "I1", "Z2", "S5", "G6", "B8", "I!", "I(", "I)", "I[", "I]", "I|",
    "I/", "I\\", "S$",
    // Lower to upper case.
    "aA", "bB", "cC", "dD", "eE", "fF", "gG", "hH", "iI", "jJ", "kK", "lL",
    "mM", "nN", "oO", "pP", "qQ", "rR", "sS", "tT", "uU", "vV", "wW", "xX",
    "yY", "zZ",
    // Lower-case letters to digits and punctuation.
    "o0", "l1", "z2", "s5", "g9", "i!", "i(", "i)", "i[", "i]", "i|", "i/",
    "i\\", "s$",
    // Digits to letters and punctuation.
    "0o", "0O", "0Q", "1i", "1I", "1l", "1L", "6G", "9g", "2z", "2Z", "5s",
    "5S", "5$", "8B", "1!", "1(", "1)", "1[", "1]", "1|", "1/", "1\\"};

static_assert(sizeof kBuiltIn / sizeof kBuiltIn[0] == 156);

std::shared_ptr<std::vector<cMap>> BuiltInTable() {
  static const auto* table = [] {
    auto* t = new std::shared_ptr<std::vector<cMap>>(
        std::make_shared<std::vector<cMap>>());
    for (const char* pair : kBuiltIn) {
      (*t)->push_back(cMap{std::string(1, pair[0]), std::string(1, pair[1])});
    }
    return t;
  }();
  return *table;
}

// The reason given after the open message, in the words of the runtime
// that defined the file.
std::string OpenErrorText(int error) {
  if (error == EACCES || error == EPERM) return "Permission denied";
  return "Path/File access error";
}

}  // namespace

bool IsCharInSet(std::string_view text, std::string_view set) {
  if (text.empty()) return false;
  const char c = text[0];
  if (set == kDigitsSet) return c >= '0' && c <= '9';
  if (set == kUpperCaseAlphaSet) return c >= 'A' && c <= 'Z';
  if (set == kLowerCaseAlphaSet) return c >= 'a' && c <= 'z';
  return set.find(c) != std::string_view::npos;
}

const std::vector<cMap>& BuiltInCharMappings() { return *BuiltInTable(); }

cCharMapper::cCharMapper() : table_(BuiltInTable()) {}

int32_t cCharMapper::Count() const {
  return static_cast<int32_t>(table_->size());
}

const cMap& cCharMapper::Item(int32_t i) const {
  static const cMap kEmpty;
  if (i < 1 || i > Count()) return kEmpty;
  return (*table_)[static_cast<size_t>(i - 1)];
}

std::vector<cMap>& cCharMapper::Own() {
  // The built-in table always holds a reference of its own, so it is
  // copied before the first change.
  if (table_.use_count() != 1) {
    table_ = std::make_shared<std::vector<cMap>>(*table_);
  }
  return *table_;
}

void cCharMapper::Add(const std::string& CharFrom, const std::string& CharTo) {
  Own().push_back(cMap{CharFrom, CharTo});
}

void cCharMapper::Clear() { table_ = std::make_shared<std::vector<cMap>>(); }

void cCharMapper::LoadCharMap(const std::string& path, std::string& strErrMsg,
                              bool& success) {
  strErrMsg.clear();
  success = false;
  if (!FileExists(path)) {
    strErrMsg = kCharMapAccessError;
    return;
  }
  TextReader reader;
  errno = 0;
  if (!reader.Open(path)) {
    strErrMsg = kCharMapOpenError + OpenErrorText(errno);
    return;
  }
  std::string version;
  if (!reader.ReadItem(version)) {
    strErrMsg = std::string(kCharMapReadError) + "Input past end of file";
    return;
  }
  // The number after "ver" is not checked against anything; only its
  // presence is.
  if (version.size() < 4) {
    strErrMsg = kCharMapVersionError;
    return;
  }
  auto table = std::make_shared<std::vector<cMap>>();
  std::string line;
  while (reader.ReadLine(line)) {
    if (line.size() != 3 || line.find(':') != 1) continue;
    table->push_back(cMap{std::string(Trim(line.substr(0, 1))),
                          std::string(Trim(line.substr(2, 1)))});
  }
  table_ = std::move(table);
  success = true;
}

void cCharMapper::Map(std::string& text, std::string_view wantedSet,
                      bool& found) const {
  found = false;
  for (const cMap& m : *table_) {
    if (m.CharFrom.empty() || !IsCharInSet(m.CharTo, wantedSet)) continue;
    size_t at = text.find(m.CharFrom);
    if (at == std::string::npos) continue;
    std::string out;
    out.reserve(text.size());
    size_t from = 0;
    while (at != std::string::npos) {
      out.append(text, from, at - from);
      out.append(m.CharTo);
      from = at + m.CharFrom.size();
      at = text.find(m.CharFrom, from);
    }
    out.append(text, from, std::string::npos);
    text = std::move(out);
    found = true;
    return;
  }
}

}  // namespace pelinor
