#include "format/date_fast_path.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "format/format_env.h"
#include "pelinor/format.h"
#include "pelinor/settings_snapshot.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::FormatEnv;

// What FormatDate() gives through the full recognition alone: "" with
// false when it reads nothing.
bool FullReading(const std::string& value, int32_t code, std::string& out) {
  const cFormat format;
  std::string day, month, year;
  float confidence = 0;
  if (!format.ValidateRawDate(value, day, month, year, confidence,
                              format.FormatDescr(code))) {
    return false;
  }
  out = day + "/" + month + "/" + year;
  return true;
}

const int32_t kCodes[] = {3, 100, 101, 102, 103, 104, 105, 106, 107, 0, 4};
const char* const kLocales[] = {"", "GB", "US", "us", "JP", "Jp", "FR"};

TEST(FormatPlainNumericDate, ReadsOnlyPlainNumericDates) {
  struct Case {
    const char* value;
    int32_t code;
    const char* locale;
    bool taken;
    const char* expected;
  } cases[] = {
      {"12/10/2003", 100, "", true, "12/10/2003"},
      {"1/2/03", 100, "", true, "01/02/2003"},
      {"31.12.1999", 100, "", true, "31/12/1999"},
      {"5-6-2004", 100, "", true, "05/06/2004"},
      {"5 6 70", 100, "", true, "05/06/1970"},
      {"5:6:69", 100, "", true, "05/06/2069"},
      {"12/10/2003", 100, "US", true, "10/12/2003"},
      {"12/10/2003", 100, "jp", true, "2003/10/12"},
      {"12/31/2003", 101, "", true, "31/12/2003"},
      {"2003/12/31", 102, "", true, "31/12/2003"},
      // Any other format tries day, month and year first in turn.
      {"12/31/2003", 3, "", true, "31/12/2003"},
      {"2003.12.31", 3, "US", true, "12/31/2003"},
      {"29/2/2001", 103, "", true, "29/02/2001"},
      // Values no order reads are left to the full recognition.
      {"31/12/2003", 101, "", false, ""},
      {"30/02/2001", 100, "", false, ""},
      {"1/2/3", 100, "", false, ""},
      {"1/2/1969", 100, "", false, ""},
      {"1/2/2070", 100, "", false, ""},
      {"001/2/2003", 100, "", false, ""},
      {"1/2/20034", 100, "", false, ""},
      // Other shapes are not taken at all.
      {"12/10.2003", 100, "", false, ""},
      {"12//2003", 100, "", false, ""},
      {"/12/10/2003", 100, "", false, ""},
      {"12/10/2003/", 100, "", false, ""},
      {"12/10/2003 ", 100, "", false, ""},
      {"12/1O/2003", 100, "", false, ""},
      {"12 OCT 2003", 100, "", false, ""},
      {"12102003", 100, "", false, ""},
      {"", 100, "", false, ""},
  };
  FormatEnv env;
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.value) + " code " + std::to_string(c.code) +
                 " locale " + c.locale);
    const auto snapshot = cSettingsSnapshot::Make(
        *c.locale == '\0' ? std::nullopt : std::optional<std::string>(c.locale),
        "");
    const ScopedSettingsSnapshot scope(snapshot.get());
    std::string out = "unchanged";
    EXPECT_EQ(internal::FormatPlainNumericDate(c.value, c.code, out), c.taken);
    EXPECT_EQ(out, c.taken ? c.expected : "unchanged");
  }
}

// Values of the shapes the quick reading looks at and of those around it:
// digit runs of every length, every separator, stray letters and
// look-alikes of digits and of ones.
std::vector<std::string> GeneratedValues() {
  std::vector<std::string> values;
  std::mt19937 rng(20031012);
  const std::string separators = "/. -:";
  const std::string noise = "/. -:0123456789OoIl!|\\OCTocJANmar";
  const auto pick = [&rng](const std::string& from) {
    return from[std::uniform_int_distribution<size_t>(0, from.size() - 1)(rng)];
  };
  const auto digits = [&rng](int n) {
    std::string s;
    for (int i = 0; i < n; ++i) {
      s += static_cast<char>('0' + std::uniform_int_distribution<>(0, 9)(rng));
    }
    return s;
  };
  for (int i = 0; i < 12000; ++i) {
    std::uniform_int_distribution<> length(0, 5);
    const char a = pick(separators);
    const char b =
        std::uniform_int_distribution<>(0, 7)(rng) == 0 ? pick(separators) : a;
    std::string v =
        digits(length(rng)) + a + digits(length(rng)) + b + digits(length(rng));
    // Small numbers, so that valid days and months come up often.
    if (i % 3 == 0) {
      v = std::to_string(std::uniform_int_distribution<>(0, 32)(rng)) + a +
          std::to_string(std::uniform_int_distribution<>(0, 13)(rng)) + b +
          (i % 2 == 0 ? digits(2) : "19" + digits(2));
    }
    // Now and then one character changed, added or the text cut.
    switch (std::uniform_int_distribution<>(0, 9)(rng)) {
      case 0:
        if (!v.empty()) {
          v[std::uniform_int_distribution<size_t>(0, v.size() - 1)(rng)] =
              pick(noise);
        }
        break;
      case 1:
        v.insert(std::uniform_int_distribution<size_t>(0, v.size())(rng), 1,
                 pick(noise));
        break;
      case 2:
        v.resize(std::uniform_int_distribution<size_t>(0, v.size())(rng));
        break;
      default:
        break;
    }
    values.push_back(v);
  }
  return values;
}

// The values of the formatter's and the pattern evaluator's fuzz corpora
// (after the format code byte and the country or specification).
std::vector<std::string> CorpusValues() {
  std::vector<std::string> values;
  for (const char* folder : {"format", "pattern"}) {
    const std::filesystem::path dir =
        std::filesystem::path(PELINOR_SOURCE_DIR) / "fuzz/corpus" / folder;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
      const std::string bytes = testing::ReadFile(entry.path().string());
      values.push_back(bytes);
      const size_t nul = bytes.find('\0');
      if (nul != std::string::npos) values.push_back(bytes.substr(nul + 1));
      if (bytes.size() > 1) values.push_back(bytes.substr(1));
    }
  }
  EXPECT_GT(values.size(), 20u);
  return values;
}

TEST(FormatPlainNumericDate, AgreesWithTheFullRecognition) {
  FormatEnv env;
  std::vector<std::string> values = GeneratedValues();
  for (std::string& v : CorpusValues()) values.push_back(std::move(v));
  size_t taken = 0;
  size_t left = 0;
  const cFormat format;
  for (const char* locale : kLocales) {
    const auto snapshot = cSettingsSnapshot::Make(
        *locale == '\0' ? std::nullopt : std::optional<std::string>(locale),
        "");
    const ScopedSettingsSnapshot scope(snapshot.get());
    for (const int32_t code : kCodes) {
      for (const std::string& value : values) {
        std::string full = "unset";
        const bool full_ok = FullReading(value, code, full);
        std::string quick = "unset";
        const bool quick_ok =
            internal::FormatPlainNumericDate(value, code, quick);
        std::string formatted = "unset";
        const bool formatted_ok = format.FormatDate(value, formatted, code);
        // A value the quick reading leaves goes to the full one, which
        // may still read it; one it takes reads as the full one does.
        if ((quick_ok ? !full_ok || quick != full : quick != "unset") ||
            formatted_ok != full_ok || formatted != full) {
          ADD_FAILURE() << "value '" << value << "' code " << code
                        << " locale '" << locale << "': full " << full_ok
                        << " '" << full << "', quick " << quick_ok << " '"
                        << quick << "', FormatDate " << formatted_ok << " '"
                        << formatted << "'";
          return;
        }
        (quick_ok ? taken : left) += 1;
      }
    }
  }
  // Both outcomes are well represented.
  EXPECT_GT(taken, 30000u);
  EXPECT_GT(left, 30000u);
}

TEST(FormatPlainNumericDate, ReadsTheRegistryWithoutASnapshot) {
  struct Case {
    const char* locale;
    const char* expected;
  } cases[] = {
      {"", "05/06/2004"},
      {"US", "06/05/2004"},
      {"JP", "2004/06/05"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.locale);
    FormatEnv env(c.locale);
    std::string out;
    ASSERT_TRUE(internal::FormatPlainNumericDate("5-6-2004", 100, out));
    EXPECT_EQ(out, c.expected);
    std::string full;
    ASSERT_TRUE(FullReading("5-6-2004", 100, full));
    EXPECT_EQ(out, full);
  }
}

}  // namespace
}  // namespace pelinor
