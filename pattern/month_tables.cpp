// Month tables of the pattern engine's date coercion. Rules:
// docs/formats/dates.md.

#include "pattern/month_tables.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "pelinor/text.h"

namespace pelinor::month_tables {
namespace {

// Accented month names are Windows-1252 bytes; a hex escape is closed
// before a following hex letter ("d\xE9" "cembre").
constexpr std::array<MonthNames, kLanguageCount> kNames = {{
    {{"january", "february", "march", "april", "may", "june", "july", "august",
      "september", "october", "november", "december"},
     {"jan", "feb", "mar", "apr", "may", "jun", "jul", "aug", "sep", "oct",
      "nov", "dec"}},
    {{"janvier", "f\xE9vrier", "mars", "avril", "mai", "juin", "juillet",
      "ao\xFBt", "septembre", "octobre", "novembre",
      "d\xE9"
      "cembre"},
     {"jan", "f\xE9v", "mar", "avr", "mai", "juin", "juil", "ao\xFB", "sep",
      "oct", "nov",
      "d\xE9"
      "c"}},
    {{"janeiro", "fevereiro", "mar\xE7o", "abril", "maio", "junho", "julho",
      "agosto", "setembro", "outubro", "novembro", "dezembro"},
     {"jan", "fev", "mar", "abr", "mai", "jun", "jul", "ago", "set", "out",
      "nov", "dez"}},
    {{"enero", "febrero", "marzo", "abril", "mayo", "junio", "julio", "agosto",
      "septiembre", "octubre", "noviembre", "diciembre"},
     {"eve", "feb", "mar", "abr", "may", "jun", "jul", "ago", "sep", "oct",
      "nov", "dic"}},
    {{"januar", "februar", "m\xE4rz", "april", "mai", "juni", "juli", "august",
      "september", "oktober", "november", "dezember"},
     {"jan", "feb", "m\xE4r", "apr", "mai", "jun", "jul", "aug", "sep", "okt",
      "nov", "dez"}},
    {{"gennaio", "febbraio", "marzo", "aprile", "maggio", "giugno", "luglio",
      "agosto", "settembre", "ottobre", "novembre", "dicembre"},
     {"gen", "feb", "mar", "apr", "mag", "giu", "lug", "ago", "set", "ott",
      "nov", "dic"}},
}};

// Spellings that write an umlaut as two letters ("ae").
struct ExtraSpelling {
  int language;
  std::string_view word;
  int month;
};
constexpr ExtraSpelling kExtraSpellings[] = {{kGerman, "maerz", 3}};

struct FoldedNames {
  std::array<std::string, 12> full;
  std::array<std::string, 12> abbreviation;
};

std::string Fold(std::string_view s) {
  std::string folded(s);
  for (char& c : folded) c = FoldChar(c);
  return folded;
}

const std::array<FoldedNames, kLanguageCount>& AllFolded() {
  static const std::array<FoldedNames, kLanguageCount> folded = [] {
    std::array<FoldedNames, kLanguageCount> t;
    for (int l = 0; l < kLanguageCount; ++l) {
      for (size_t m = 0; m < 12; ++m) {
        t[l].full[m] = Fold(kNames[l].full[m]);
        t[l].abbreviation[m] = Fold(kNames[l].abbreviation[m]);
      }
    }
    return t;
  }();
  return folded;
}

struct Variants {
  std::array<Collection<int32_t>, 12> sets;
  // (key, first month holding it), sorted by key, for the searches.
  std::vector<std::pair<int32_t, int>> lookup;
};

const Variants& AllVariants() {
  static const Variants variants = [] {
    Variants v;
    for (int m = 1; m <= 12; ++m) {
      const std::string_view abbr = ShortMonth(m);
      Collection<int32_t>& set = v.sets[static_cast<size_t>(m - 1)];
      set.Add(MonthKey(abbr));
      for (size_t pos = 0; pos < 3; ++pos) {
        for (const char x : Confusions(abbr[pos])) {
          std::string variant(abbr);
          variant[pos] = x;
          set.Add(MonthKey(variant));
        }
      }
      for (const int32_t key : set) v.lookup.emplace_back(key, m);
    }
    // Stable sort keeps the earliest month first among equal keys.
    std::stable_sort(
        v.lookup.begin(), v.lookup.end(),
        [](const auto& a, const auto& b) { return a.first < b.first; });
    return v;
  }();
  return variants;
}

}  // namespace

std::string_view Confusions(char letter) {
  switch (letter) {
    case 'A':
      return "4";
    case 'B':
      return "8";
    case 'C':
      return "G";
    case 'D':
      return "O0";
    case 'E':
      return "F";
    case 'F':
      return "EP";
    case 'G':
      return "69";
    case 'H':
      return "B";
    case 'I':
      return "|!1JLT";
    case 'J':
      return "ID";
    case 'L':
      return "1IJ!|";
    case 'M':
      return "N";
    case 'N':
      return "M";
    case 'O':
      return "0DQ";
    case 'P':
      return "FR";
    case 'Q':
      return "O0";
    case 'R':
      return "P";
    case 'S':
      return "5";
    case 'T':
      return "I";
    case 'U':
      return "V";
    case 'V':
      return "U";
    default:
      return "";
  }
}

int32_t MonthKey(std::string_view word) {
  const auto code = [&word](size_t i) {
    return static_cast<int32_t>(static_cast<unsigned char>(word[i]));
  };
  return code(0) * 65536 + code(1) * 256 + code(2);
}

const Collection<int32_t>& VariantSet(int m) {
  return AllVariants().sets[static_cast<size_t>(m - 1)];
}

int MonthOfKey(int32_t key) {
  const auto& lookup = AllVariants().lookup;
  const auto it = std::lower_bound(
      lookup.begin(), lookup.end(), key,
      [](const auto& entry, int32_t k) { return entry.first < k; });
  return it != lookup.end() && it->first == key ? it->second : 0;
}

const MonthNames& Names(int language) {
  return kNames[static_cast<size_t>(language)];
}

char FoldChar(char c) {
  const unsigned char u = static_cast<unsigned char>(LowerChar(c));
  if (u >= 0xE0 && u <= 0xE5) return 'a';
  if (u == 0xE7) return 'c';
  if (u >= 0xE8 && u <= 0xEB) return 'e';
  if (u >= 0xEC && u <= 0xEF) return 'i';
  if (u == 0xF1) return 'n';
  if ((u >= 0xF2 && u <= 0xF6) || u == 0xF8) return 'o';
  if (u >= 0xF9 && u <= 0xFC) return 'u';
  if (u == 0xFD || u == 0xFF) return 'y';
  if (u == 0x9A) return 's';
  if (u == 0x9E) return 'z';
  return static_cast<char>(u);
}

bool IsWordLetter(char c) {
  return UpperChar(c) != LowerChar(c) || c == '\xDF';
}

int MatchMonthWord(int language, std::string_view word) {
  const FoldedNames& names = AllFolded()[static_cast<size_t>(language)];
  for (size_t m = 0; m < 12; ++m) {
    if (word == names.full[m] || word == names.abbreviation[m]) {
      return static_cast<int>(m) + 1;
    }
  }
  for (const ExtraSpelling& extra : kExtraSpellings) {
    if (extra.language == language && word == extra.word) return extra.month;
  }
  if (word.size() < 3) return 0;
  int found = 0;
  for (size_t m = 0; m < 12; ++m) {
    if (names.full[m].starts_with(word)) {
      if (found != 0) return 0;  // "jui": June or July cannot be told
      found = static_cast<int>(m) + 1;
    }
  }
  return found;
}

std::string_view LookAlikeLetters(char c) {
  // Built from Confusions(): every letter that lists `c`.
  static const std::array<std::string, 256> table = [] {
    std::array<std::string, 256> t;
    for (char letter = 'A'; letter <= 'Z'; ++letter) {
      for (const char x : Confusions(letter)) {
        if (IsWordLetter(x)) continue;
        t[static_cast<unsigned char>(x)].push_back(LowerChar(letter));
      }
    }
    return t;
  }();
  return table[static_cast<unsigned char>(c)];
}

namespace {

// True when the character `read` stands for the folded name letter `c`.
bool Fits(char read, char c) {
  if (FoldChar(read) == c) return true;
  return LookAlikeLetters(read).find(c) != std::string_view::npos;
}

// True when `word` stands for all of `name` (`whole`) or for its start.
bool FitsName(std::string_view word, std::string_view name, bool whole) {
  if (whole ? word.size() != name.size() : word.size() > name.size()) {
    return false;
  }
  for (size_t i = 0; i < word.size(); ++i) {
    if (!Fits(word[i], name[i])) return false;
  }
  return true;
}

}  // namespace

int MatchMonthWordRepaired(int language, std::string_view word) {
  const FoldedNames& names = AllFolded()[static_cast<size_t>(language)];
  for (size_t m = 0; m < 12; ++m) {
    if (FitsName(word, names.full[m], true) ||
        FitsName(word, names.abbreviation[m], true)) {
      return static_cast<int>(m) + 1;
    }
  }
  for (const ExtraSpelling& extra : kExtraSpellings) {
    if (extra.language == language && FitsName(word, extra.word, true)) {
      return extra.month;
    }
  }
  if (word.size() < 3) return 0;
  int found = 0;
  for (size_t m = 0; m < 12; ++m) {
    if (FitsName(word, names.full[m], false)) {
      if (found != 0) return 0;
      found = static_cast<int>(m) + 1;
    }
  }
  return found;
}

}  // namespace pelinor::month_tables
