// The pattern engine's month-name and date coercion: misread English
// abbreviations, month names of six languages and the date coercion used
// when a date field's value is formatted. Rules: docs/formats/dates.md.

#include "pelinor/pattern_engine.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "pattern/month_tables.h"
#include "pelinor/format.h"
#include "pelinor/log.h"
#include "pelinor/repair_trace.h"
#include "pelinor/text.h"

namespace pelinor {
namespace {

namespace mt = month_tables;

// No month name of any language is longer ("septiembre").
constexpr size_t kLongestMonthWord = 10;

bool FormatLogOn() { return FormatLogWanted(); }

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// A maximal run of number characters that holds a digit. Requiring a
// digit keeps words such as "il" or "le" from being taken for numbers,
// while a misread "2OO4" is kept whole (and then refused) rather than cut
// short.
struct NumberRun {
  size_t begin;
  size_t end;
  size_t firstDigit;
  size_t lastDigit;
};

// `isNumberChar` is the formatter's rule for characters of a date number.
std::vector<NumberRun> FindNumberRuns(std::string_view text,
                                      bool (*isNumberChar)(char)) {
  std::vector<NumberRun> runs;
  size_t i = 0;
  while (i < text.size()) {
    if (!isNumberChar(text[i])) {
      ++i;
      continue;
    }
    NumberRun run{i, i, std::string_view::npos, 0};
    for (; i < text.size() && isNumberChar(text[i]); ++i) {
      if (!IsDigit(text[i])) continue;
      if (run.firstDigit == std::string_view::npos) run.firstDigit = i;
      run.lastDigit = i;
    }
    run.end = i;
    if (run.firstDigit != std::string_view::npos) runs.push_back(run);
  }
  return runs;
}

constexpr const char* kLanguageNames[] = {"English", "French", "Portuguese",
                                          "Spanish", "German", "Italian"};

// The language to name for `word`, read as month `m` through the table of
// `language`: the first whose full name of that month the word spells
// (ignoring case), since a word such as "März" also starts another
// language's name once its accent is folded away.
int NamingLanguage(int language, const std::string& word, int m) {
  const std::string upper = UCase(word);
  for (int l = 0; l < mt::kLanguageCount; ++l) {
    if (UCase(std::string(mt::Names(l).full[static_cast<size_t>(m - 1)])) ==
        upper) {
      return l;
    }
  }
  return language;
}

// Records how the month word text[begin, end) was read as month `m`.
void TraceMonthWord(int language, int formatLanguage, std::string_view text,
                    size_t begin, size_t end, int m, cRepairTrace& trace) {
  const std::string word(text.substr(begin, end - begin));
  language = NamingLanguage(language, word, m);
  const auto position = static_cast<int32_t>(begin + 1);
  bool lookAlike = false;
  for (const char c : word) lookAlike |= !mt::IsWordLetter(c);
  const std::string name(mt::Names(language).full[static_cast<size_t>(m - 1)]);
  if (lookAlike) {
    trace.Add("month-repaired", word + " read as " + name, position, word,
              name);
  } else {
    trace.Add("month-name", word + " read as month " + std::to_string(m),
              position, word, word);
  }
  if (formatLanguage >= 0 && formatLanguage != language) {
    trace.Add("other-language",
              word + " read as a month name in " + kLanguageNames[language],
              position, word, word);
  }
}

}  // namespace

std::string cPatternEngine::CoerceShortMonth(const std::string& strWord) const {
  if (strWord.size() != 3) return strWord;
  const int m = mt::MonthOfKey(mt::MonthKey(UCase(strWord)));
  return m == 0 ? strWord : std::string(mt::ShortMonth(m));
}

void cPatternEngine::CoerceShortMonthInString(std::string& strInOut,
                                              cRepairTrace* trace) const {
  strInOut = UCase(strInOut);
  int count = 0;
  size_t lastPos = 0;
  int lastMonth = 0;
  for (size_t i = 0; i + 3 <= strInOut.size(); ++i) {
    const int m =
        mt::MonthOfKey(mt::MonthKey(std::string_view(strInOut).substr(i, 3)));
    if (m != 0) {
      ++count;
      lastPos = i;
      lastMonth = m;
    }
  }
  const bool log = FormatLogOn();
  if (log) {
    LogFormatMessage("cPatternEngine.CoerceShortMonthInString:monthCount=" +
                     std::to_string(count));
  }
  // Two or more hits cannot be told apart, so only a single one is
  // repaired.
  if (count == 1) {
    const std::string_view abbreviation = mt::ShortMonth(lastMonth);
    if (trace != nullptr && strInOut.compare(lastPos, 3, abbreviation) != 0) {
      const std::string read = strInOut.substr(lastPos, 3);
      const auto position = static_cast<int32_t>(lastPos + 1);
      trace->Add("month-repaired",
                 read + " read as " + std::string(abbreviation), position, read,
                 std::string(abbreviation));
    }
    strInOut.replace(lastPos, 3, abbreviation);
  }
  if (log) {
    LogFormatMessage("cPatternEngine.CoerceShortMonthInString:strInOut=" +
                     strInOut);
  }
}

bool cPatternEngine::coerceNameDate(const std::string& strIn,
                                    std::string& strOut,
                                    cRepairTrace* trace) const {
  const bool log = FormatLogOn();
  if (log) LogFormatMessage("cPatternEngine.coerceNameDate(" + strIn + ")");
  std::string text = UCase(strIn);
  // The repair is recorded only when the date is then read.
  cRepairTrace repaired;
  CoerceShortMonthInString(text, trace != nullptr ? &repaired : nullptr);
  if (log) {
    LogFormatMessage(
        "cPatternEngine.coerceNameDate post CoerceShortMonthInString->" + text);
  }
  const cFormat format;
  std::string day, month, year;
  const cFormat::EnglishMonth found = cFormat::FindEnglishMonth(text);
  for (const int32_t mode : {1, 2, 3}) {
    if (format.ReadMonthNameDate(text, found, day, month, year, mode)) {
      strOut = day + "/" + month + "/" + year;
      if (trace != nullptr) {
        for (const cRepairStep& step : repaired.Steps()) {
          trace->AddWithRisk(step.Rule, step.Risk, step.Sentence, step.Position,
                             step.Before, step.After);
        }
      }
      return true;
    }
  }
  return false;
}

bool cPatternEngine::coerceLanguageDate(int language, const std::string& strIn,
                                        std::string& strOut,
                                        cRepairTrace* trace,
                                        int formatLanguage) {
  const std::string_view text(strIn);
  const size_t n = text.size();
  // A digit or mark that looks like a letter belongs to a word when a
  // letter follows it ("0ctobre", "ju1l") or when it ends a word ("AU6"),
  // so that a number written right after a month ("OCT2003") stays a
  // number.
  const auto isLookAlike = [&text](size_t k) {
    return !mt::LookAlikeLetters(text[k]).empty();
  };
  const auto isWordChar = [&](size_t k) {
    if (mt::IsWordLetter(text[k])) return true;
    if (!isLookAlike(k)) return false;
    if (k + 1 < n && mt::IsWordLetter(text[k + 1])) return true;
    return k > 0 && mt::IsWordLetter(text[k - 1]) &&
           (k + 1 == n || !IsDigit(text[k + 1]));
  };

  std::string word;
  const cFormat format;
  // Numbers are found once; month words come in increasing order, so the
  // last number before a word and the first after it only move forward.
  std::vector<NumberRun> runs;
  bool runsFound = false;
  size_t beforeCount = 0;  // runs with a digit before the current word
  size_t afterIndex = 0;   // first run with a digit after the current word
  for (size_t i = 0; i < n; ++i) {
    // A month word starts where no letter stands before it.
    if (!isWordChar(i) || (i > 0 && mt::IsWordLetter(text[i - 1]))) continue;
    size_t j = i;
    word.clear();
    while (j < n && isWordChar(j) && word.size() <= kLongestMonthWord) {
      word += text[j++];
    }
    if (word.size() > kLongestMonthWord) continue;  // keeps long runs linear
    const int m = mt::MatchMonthWordRepaired(language, word);
    if (m == 0) continue;
    if (!runsFound) {
      runs = FindNumberRuns(text, &cFormat::IsDateNumberChar);
      runsFound = true;
    }
    while (beforeCount < runs.size() && runs[beforeCount].firstDigit < i) {
      ++beforeCount;
    }
    while (afterIndex < runs.size() && runs[afterIndex].lastDigit < j) {
      ++afterIndex;
    }
    // Runs are cut at the month word: "0" of "0ctobre" is no number.
    const auto slice = [&text](size_t begin, size_t end) {
      return std::string(text.substr(begin, end - begin));
    };
    std::string day, year;
    if (beforeCount > 0 && afterIndex < runs.size()) {
      // The day stands before the month ("12 mars 2004", "3. März") and
      // the year after it.
      const NumberRun& before = runs[beforeCount - 1];
      const NumberRun& after = runs[afterIndex];
      day = slice(before.begin, std::min(before.end, i));
      year = slice(std::max(after.begin, j), after.end);
    } else if (beforeCount == 0 && afterIndex + 1 < runs.size()) {
      // Nothing before: both follow ("dicembre 7, 2004").
      const NumberRun& first = runs[afterIndex];
      day = slice(std::max(first.begin, j), first.end);
      year = slice(runs[afterIndex + 1].begin, runs[afterIndex + 1].end);
    } else {
      continue;
    }
    std::string month = std::to_string(m);
    if (!format.ValidateDateParsed(day, month, year)) continue;
    format.ApplyDateLocale(day, month, year);
    strOut = day + "/" + month + "/" + year;
    if (trace != nullptr)
      TraceMonthWord(language, formatLanguage, text, i, j, m, *trace);
    return true;
  }
  return false;
}

bool cPatternEngine::coerceFrenchDate(const std::string& strIn,
                                      std::string& strOut) {
  return coerceLanguageDate(mt::kFrench, strIn, strOut);
}

bool cPatternEngine::coercePortugueseDate(const std::string& strIn,
                                          std::string& strOut) {
  return coerceLanguageDate(mt::kPortuguese, strIn, strOut);
}

bool cPatternEngine::coerceSpanishDate(const std::string& strIn,
                                       std::string& strOut) {
  return coerceLanguageDate(mt::kSpanish, strIn, strOut);
}

bool cPatternEngine::coerceGermanDate(const std::string& strIn,
                                      std::string& strOut) {
  return coerceLanguageDate(mt::kGerman, strIn, strOut);
}

bool cPatternEngine::coerceItalianDate(const std::string& strIn,
                                       std::string& strOut) {
  return coerceLanguageDate(mt::kItalian, strIn, strOut);
}

void cPatternEngine::CoerceDate(const std::string& strIn, std::string& strOut,
                                const std::string& strDateFormat,
                                bool& bSuccess, cRepairTrace* trace) const {
  const bool log = FormatLogOn();
  cRepairTrace local;
  cRepairTrace* t = trace != nullptr ? trace : (log ? &local : nullptr);
  const size_t first = t != nullptr ? t->Size() : 0;
  const std::string name = UCase(strDateFormat);
  int language = mt::kEnglish;
  if (name == "DATEFR") {
    language = mt::kFrench;
  } else if (name == "DATEPT") {
    language = mt::kPortuguese;
  } else if (name == "DATEES") {
    language = mt::kSpanish;
  } else if (name == "DATEDE") {
    language = mt::kGerman;
  } else if (name == "DATEIT") {
    language = mt::kItalian;
  }
  bool ok = language == mt::kEnglish
                ? coerceNameDate(strIn, strOut, t)
                : coerceLanguageDate(language, strIn, strOut, t, language);
  bool named = ok;
  if (!ok) {
    // The general coercion: first the month names of every language (a
    // name says more than stray digits), then the formatter's reading of
    // the same format.
    // Without a letter there is no month name to read.
    const bool letters = std::any_of(
        strIn.begin(), strIn.end(), [](char c) { return mt::IsWordLetter(c); });
    for (int other = 0; letters && !ok && other < mt::kLanguageCount; ++other) {
      ok = coerceLanguageDate(other, strIn, strOut, t, language);
    }
    named = ok;
    std::string day, month, year;
    float confidence = 0;
    if (!ok && cFormat().ValidateRawDate(strIn, day, month, year, confidence,
                                         strDateFormat)) {
      strOut = day + "/" + month + "/" + year;
      ok = true;
    }
  }
  if (ok && t != nullptr) TraceDateResult(strIn, strOut, named, *t);
  if (ok && log && t != nullptr) LogRepairSteps(*t, first);
  bSuccess = ok;
}

void cPatternEngine::TraceDateResult(const std::string& strIn,
                                     const std::string& strOut, bool named,
                                     cRepairTrace& trace) {
  // The stored form holds three numbers joined by "/"; the year is the
  // four-digit one.
  std::vector<std::string> parts;
  for (size_t from = 0;;) {
    const size_t slash = strOut.find('/', from);
    parts.push_back(strOut.substr(from, slash - from));
    if (slash == std::string::npos) break;
    from = slash + 1;
  }
  if (parts.size() != 3) return;
  const size_t y = parts[0].size() == 4 ? 0 : 2;
  const std::string& year = parts[y];
  if (year.size() == 4 && strIn.find(year) == std::string::npos) {
    const std::string shortYear = year.substr(2);
    const size_t at = strIn.rfind(shortYear);
    trace.Add("two-digit-year", shortYear + " read as " + year,
              at == std::string::npos ? 0 : static_cast<int32_t>(at + 1),
              shortYear, year);
  }
  if (!named) {
    // Numbers only: when both of the other two could be a month, the
    // order came from the locale.
    const std::string& a = parts[y == 0 ? 1 : 0];
    const std::string& b = parts[y == 0 ? 2 : 1];
    const int first = std::atoi(a.c_str());
    const int second = std::atoi(b.c_str());
    if (first != second && first >= 1 && first <= 12 && second >= 1 &&
        second <= 12) {
      trace.Add("day-month-order",
                "day and month could be either way round: " + a + "/" + b +
                    " taken in the locale's order",
                0, strIn, strOut);
    }
  }
  if (strIn != strOut) {
    trace.Add("date-layout", "written as " + strOut, 0, strIn, strOut);
  }
}

void cPatternEngine::LogFormatMessage(const std::string& strMsg) const {
  LogFormatLine(strMsg);
}

}  // namespace pelinor
