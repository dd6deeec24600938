// Month tables of the pattern engine's date coercion: the per-letter OCR
// confusion table, the variant sets of the English three-letter
// abbreviations and the month names of six languages.
//
// Every table is built once, on first use, inside a function-local static
// (thread-safe initialisation); afterwards it is only read, so any number
// of threads may use it at once.

#ifndef PELINOR_PATTERN_MONTH_TABLES_H_
#define PELINOR_PATTERN_MONTH_TABLES_H_

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "pelinor/collection.h"

namespace pelinor::month_tables {

// Month m (1 to 12) is the three characters starting at position 3 * m
// (one-based) of kShortMonthText, and at index 3 * (m - 1) of
// kShortMonths.
inline constexpr std::string_view kShortMonthText =
    "  JANFEBMARAPRMAYJUNJULAUGSEPOCTNOVDEC";
inline constexpr std::string_view kShortMonths =
    "JANFEBMARAPRMAYJUNJULAUGSEPOCTNOVDEC";

// The upper-case abbreviation of month m (1 to 12).
inline std::string_view ShortMonth(int m) {
  return kShortMonths.substr(static_cast<size_t>(3 * (m - 1)), 3);
}

// Confusions()
//
// The characters OCR may produce in place of the upper-case letter
// `letter` ("0DQ" for "O"); "" for letters without any (K, W, X, Y, Z) and
// for every other character.
std::string_view Confusions(char letter);

// MonthKey()
//
// The key of a three-character word: first code * 65536 + second code *
// 256 + third code, codes taken as unsigned bytes.
// REQUIRES: word.size() == 3.
int32_t MonthKey(std::string_view word);

// VariantSet()
//
// The keys of month m's abbreviation and of every variant with one
// position replaced by one of its confusions.
// REQUIRES: 1 <= m <= 12.
const Collection<int32_t>& VariantSet(int m);

// MonthOfKey()
//
// The first month (1 to 12) whose variant set holds `key`, or 0.
int MonthOfKey(int32_t key);

// Languages of the name tables.
enum Language : int {
  kEnglish = 0,
  kFrench,
  kPortuguese,
  kSpanish,
  kGerman,
  kItalian,
  kLanguageCount
};

// One language's month names, lower case as Windows-1252 bytes, in month
// order (index 0 is January).
struct MonthNames {
  std::array<std::string_view, 12> full;
  std::array<std::string_view, 12> abbreviation;
};

// Names()
//
// The month names of `language`, exactly as the library defines them
// (Spanish January is abbreviated "eve"; French June and July are "juin"
// and "juil").
const MonthNames& Names(int language);

// FoldChar()
//
// Lower case without accent: Windows-1252 letters with an accent (either
// case) become their base letter; "Ä" and "ä" become "a". Other bytes go
// through LowerChar().
char FoldChar(char c);

// IsWordLetter()
//
// True for a Windows-1252 letter: one that has another case, or "ß".
bool IsWordLetter(char c);

// MatchMonthWord()
//
// The month (1 to 12) named by the folded word `word` in `language`, or 0.
// A word names a month when it equals its folded full name, its folded
// abbreviation or one of the language's extra spellings, or when it has at
// least three letters, is the start of exactly one month's full name and
// equals no other month's name.
int MatchMonthWord(int language, std::string_view word);

// LookAlikeLetters()
//
// The folded letters that OCR may have read as the digit or punctuation
// mark `c`, from the confusion table ("odq" for "0", "il" for "1", "s"
// for "5"); "" for letters and for characters that stand for none.
std::string_view LookAlikeLetters(char c);

// MatchMonthWordRepaired()
//
// As MatchMonthWord(), for a word as read (`word` is not folded): each of
// its characters stands for the name's letter when it folds to it or is a
// look-alike of it (LookAlikeLetters()), so "0ct", "ju1l" and "5ept" name
// their months.
int MatchMonthWordRepaired(int language, std::string_view word);

}  // namespace pelinor::month_tables

#endif  // PELINOR_PATTERN_MONTH_TABLES_H_
