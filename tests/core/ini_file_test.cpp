#include "pelinor/ini_file.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>
#include <string>
#include <vector>

#include "pelinor/data_parser.h"
#include "pelinor/text.h"
#include "pelinor/text_file.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;
using Strings = std::vector<std::string>;

Strings ToVector(const Collection<std::string>& c) {
  return Strings(c.begin(), c.end());
}

// Writes `data` to a fresh file and answers one look-up from it.
class IniFixture {
 public:
  std::string Write(const std::string& data) {
    std::string path = dir_.File("s" + std::to_string(++count_) + ".ini");
    WriteFile(path, data);
    return path;
  }
  std::string Get(const std::string& data, const std::string& section,
                  const std::string& key) {
    cIniFile ini;
    std::string err;
    return ini.GetSettingString(section, key, "<default>", Write(data), err);
  }

 private:
  TempDir dir_;
  int count_ = 0;
};

TEST(IniFile, LooksUpStrings) {
  struct Case {
    std::string data, section, key, expected;
  } cases[] = {
      {"[A]\r\nKey:1\r\n[B]\r\nKey:2\r\n", "B", "Key", "2"},
      {"[A]\r\nKey:1\r\n[B]\r\nKey:2\r\n", "A", "Key", "1"},
      {"[Main]\r\nKey:v\r\n", "mAIN", "kEY", "v"},
      {"[\xC9t\xE9]\r\nKey:v\r\n", "\xE9T\xC9", "Key", "v"},
      {"[Main]\r\n  Key  :  v w  \r\n", "Main", "Key", "v w"},
      {"[Main]\r\nKey:v\r\n", "Main", " Key", "<default>"},
      {"[Main]\r\nCoords:1:2:3\r\n", "Main", "Coords", "1:2:3"},
      {"[Main]\r\nOther:1\r\n", "Main", "Key", "<default>"},
      {"[Main]\r\nKey:v\r\n", "Missing", "Key", "<default>"},
      {"[Main]\r\nKey:\r\nKey:later\r\n", "Main", "Key", "<default>"},
      {"[Main]\r\nKey\r\nKey:v\r\n", "Main", "Key", "v"},
      {"[A]\r\n[B]\r\nKey:v\r\n", "A", "Key", "<default>"},
      {"[Main]\nKey:lf\n", "Main", "Key", "lf"},
      {"[Main]\rKey:cr\r", "Main", "Key", "cr"},
      {"[Main]\r\nKey:last", "Main", "Key", "last"},
      // The search reads items: a header is found as a later item of a
      // line, and the rest of that line is read before the next lines.
      {"x,[Main]\r\nKey:v\r\n", "Main", "Key", "v"},
      {"x, [Main] ,Key:rest\r\nKey:next\r\n", "Main", "Key", "rest"},
      {"x,[Main],[B]\r\nKey:v\r\n", "Main", "Key", "<default>"},
      {"\"[Main]\"\r\nKey:v\r\n", "Main", "Key", "v"},
      {"\"[Main]\"Key:v\r\n", "Main", "Key", "v"},
      {"\"a\r\n[Main]\r\n\"\r\nKey:inside\r\n[Main]\r\nKey:v\r\n", "Main",
       "Key", "v"},
      // A double quote inside an item does not start a quoted item.
      {"Note:\"[Main]\r\nKey:inside\r\n[Main]\r\nKey:v\r\n", "Main", "Key",
       "v"},
      // Indented headers are found by the search but do not end a section.
      {"  [Main]\r\nKey:v\r\n", "Main", "Key", "v"},
      {"[Main]\r\nA:1\r\n  [Other]\r\nKey:v\r\n", "Main", "Key", "v"},
      {"[Main]\t\r\nKey:v\r\n", "Main", "Key", "<default>"},
  };
  IniFixture fx;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    EXPECT_EQ(fx.Get(c.data, c.section, c.key), c.expected);
  }
}

TEST(IniFile, LooksUpNumbers) {
  struct Case {
    std::string value;
    int32_t as_long;
    float as_single;
    double as_double;
  } cases[] = {
      {"2.5", 2, 2.5f, 2.5},
      {"3.5", 4, 3.5f, 3.5},
      {" -7 ", -7, -7.0f, -7.0},
      {"1e3", 1000, 1000.0f, 1000.0},
      {"0.946", 1, 0.946f, 0.946},
      {"abc", -1, -1.5f, -2.5},
      {"", -1, -1.5f, -2.5},
      {"12px", -1, -1.5f, -2.5},
      {"99999999999", -1, 99999999999.0f, 99999999999.0},
      {"1e300", -1, -1.5f, 1e300},
  };
  IniFixture fx;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    std::string path = fx.Write("[N]\r\nV:" + c.value + "\r\n");
    cIniFile ini;
    std::string err;
    EXPECT_EQ(ini.GetSettingLong("N", "V", -1, path, err), c.as_long);
    EXPECT_EQ(ini.GetSettingSingle("N", "V", -1.5f, path, err), c.as_single);
    EXPECT_EQ(ini.GetSettingDouble("N", "V", -2.5, path, err), c.as_double);
    EXPECT_EQ(ini.GetSettingLong("N", "Missing", 42, path, err), 42);
    EXPECT_EQ(err, "");
  }
}

TEST(IniFile, ReportsMissingFileAndKeepsTheFirstFileOpen) {
  IniFixture fx;
  std::string first = fx.Write("[S]\r\nKey:first\r\n");
  std::string second = fx.Write("[S]\r\nKey:second\r\n");
  std::string missing = first + ".none";
  cIniFile ini;
  std::string err = "stale";
  Collection<std::string> lines;
  lines.Add("kept");
  EXPECT_EQ(ini.GetSettingString("S", "Key", "d", missing, err), "d");
  EXPECT_EQ(err, "Cannot find file " + missing);
  EXPECT_EQ(ini.GetSettingLong("S", "Key", 5, missing, err), 5);
  EXPECT_EQ(ini.FindHeader("S", missing, err), 0);
  EXPECT_EQ(ini.GetStrings(missing, "S", lines, err), 0);
  EXPECT_EQ(ToVector(lines), Strings{"kept"});
  EXPECT_EQ(err, "Cannot find file " + missing);

  EXPECT_EQ(ini.GetSettingString("S", "Key", "d", first, err), "first");
  EXPECT_EQ(err, "");
  EXPECT_EQ(ini.GetSettingString("S", "Key", "d", second, err), "first");
  err = "stale";
  EXPECT_EQ(ini.GetSettingString("S", "Key", "d", missing, err), "first");
  EXPECT_EQ(err, "");
  ini.CloseFile();
  EXPECT_EQ(ini.GetSettingString("S", "Key", "d", second, err), "second");
}

TEST(IniFile, CollectsSectionLines) {
  const std::string file =
      "[First]\r\n  spaced line  \r\n\r\nKey:1\r\n[Last]\r\nx\r\ny";
  struct Case {
    std::string data, header;
    Strings lines;
    int32_t result;
  } cases[] = {
      {file, "first", {"  spaced line  ", "Key:1"}, 0},
      {file, "Last", {"x", "y"}, 1},
      {file, "None", {}, 0},
      {"[A]\r\n", "A", {}, 1},
      {"x,[A],tail\r\nnext\r\n[B]\r\n", "A", {"tail", "next"}, 0},
      {"x,[A],[B]\r\nnext\r\n", "A", {}, 0},
      {"x,[A]", "A", {}, 1},
  };
  IniFixture fx;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data + " / " + c.header);
    cIniFile ini;
    std::string err;
    Collection<std::string> lines;
    lines.Add("stale");
    EXPECT_EQ(ini.GetStrings(fx.Write(c.data), c.header, lines, err), c.result);
    EXPECT_EQ(ToVector(lines), c.lines);
  }
}

TEST(IniFile, ReadsStates) {
  struct Case {
    std::string line;
    Strings state;  // number, description, on-hold message; {} if skipped
  } cases[] = {
      {"STATE12:Awaiting check:Held for checking",
       {"12", "Awaiting check", "Held for checking"}},
      {"state3:Scanned", {"3", "Scanned", "Scanned"}},
      {"STATE7:", {"7", "Unknown description", "Unknown description"}},
      {"STATE8: Foo ", {"8", " Foo ", " Foo "}},
      {"STATE9::On hold", {"9", "Unknown description", "On hold"}},
      {"STATE 10:a:b:c", {" 10", "a", "b:c"}},
      {"STATE1.5e1:x:y", {"1.5e1", "x", "y"}},
      {"STATEX:Foo", {}},
      {"STATE", {}},
      {"STATE:x", {}},
      {"STATE11", {}},
      {"  STATE12:x", {}},
  };
  IniFixture fx;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    cIniFile ini;
    std::string err;
    Collection<std::string> nums, descs, holds;
    std::string path = fx.Write("[States]\r\n" + c.line + "\r\n[Next]\r\n");
    EXPECT_EQ(ini.GetPELINORStates(path, nums, descs, holds, err), 0);
    Strings got;
    if (nums.Count() == 1 && descs.Count() == 1 && holds.Count() == 1) {
      got = {nums.Item(1), descs.Item(1), holds.Item(1)};
    }
    EXPECT_EQ(got, c.state);
    EXPECT_EQ(nums.Count(), c.state.empty() ? 0 : 1);
  }
  cIniFile ini;
  std::string err;
  Collection<std::string> nums, descs, holds;
  std::string path =
      fx.Write("[States]\r\nSTATE1:a\r\nSTATEX:b\r\nSTATE2:c:d\r\n");
  EXPECT_EQ(ini.GetPELINORStates(path, nums, descs, holds, err), 1);
  EXPECT_EQ(ToVector(nums), (Strings{"1", "2"}));
  EXPECT_EQ(ToVector(holds), (Strings{"a", "d"}));
}

TEST(IniFile, SurvivesMalformedFiles) {
  const std::string long_line(10000, 'x');
  struct Case {
    std::string data, expected;
  } cases[] = {
      {"", "<default>"},
      {"[", "<default>"},
      {"\"[Main]", "<default>"},
      {"\"", "<default>"},
      {"\r\r\n\n,,,\"\"", "<default>"},
      {"[Main]\r\nKey:tru", "tru"},
      {"[Main]\r\nKey:" + long_line + "\r\n", long_line},
      {long_line + ",[Main]," + long_line + ":v\r\nKey:w", "w"},
      {std::string("[Ma\0in]\r\nKey:v\0w\r\n", 18), std::string("v\0w", 3)},
      {std::string("\0[Main]\0\r\nKey:v\r\n", 16), "v"},
  };
  IniFixture fx;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data.substr(0, 40));
    EXPECT_EQ(fx.Get(c.data, "Main", "Key"), c.expected);
  }
}

// The section search done the slow way, item by item from the start of the
// file for every call, with the lines then read whole.
struct Reference {
  std::optional<size_t> start;
  Strings lines;  // every line of the section, empty ones included
  int32_t result = 0;
};

Reference ReadReference(const std::string& data, const std::string& section) {
  Reference ref;
  TextReader r;
  r.OpenText(data);
  std::string item;
  while (r.ReadItem(item)) {
    if (item.size() >= 2 && item.front() == '[' && item.back() == ']' &&
        UCase(item.substr(1, item.size() - 2)) == UCase(section)) {
      ref.start = r.Tell();
      break;
    }
  }
  if (!ref.start) return ref;
  std::string line;
  ref.result = 1;
  while (r.ReadLine(line)) {
    if (!line.empty() && line.front() == '[' && line.back() == ']') {
      ref.result = 0;
      break;
    }
    ref.lines.push_back(line);
  }
  return ref;
}

// Section names worth asking for in `data`: every header item it holds.
Strings HeaderItems(const std::string& data) {
  Strings names = {"A", "zz", ""};
  TextReader r;
  r.OpenText(data);
  std::string item;
  while (r.ReadItem(item)) {
    if (item.size() >= 2 && item.front() == '[' && item.back() == ']') {
      names.push_back(item.substr(1, item.size() - 2));
    }
  }
  return names;
}

void ExpectSameAsReference(const std::string& path, const std::string& data) {
  const cDataParser parser;
  cIniFile ini;  // one object answers every question about the file
  std::string err;
  for (const std::string& section : HeaderItems(data)) {
    SCOPED_TRACE("section " + section);
    Reference ref = ReadReference(data, section);
    EXPECT_EQ(ini.FindHeader(section, path, err), ref.start ? 1 : 0);
    Collection<std::string> got;
    Strings expected;
    for (const std::string& l : ref.lines) {
      if (!l.empty()) expected.push_back(l);
    }
    EXPECT_EQ(ini.GetStrings(path, section, got, err), ref.result);
    EXPECT_EQ(ToVector(got), expected);
    for (const std::string key : {"K", "k", "x", ""}) {
      std::string want = "<default>";
      for (const std::string& l : ref.lines) {
        std::string name, value;
        if (parser.SplitNameAndValue(l, name, value, ":") &&
            EqualsIgnoreCase(name, key)) {
          if (!value.empty()) want = value;
          break;
        }
      }
      EXPECT_EQ(ini.GetSettingString(section, key, "<default>", path, err),
                want)
          << "key " << key;
    }
  }
}

TEST(IniFile, IndexMatchesItemByItemSearch) {
  Strings corpus = {
      "x,[A]\r\nK:1\r\n[A]\r\nK:2\r\n",
      "\"[A]\",K:q\r\nK:1\r\n",
      "\"a,\r\n[A]\r\n\" ,[B]\r\nK:b\r\n",
      "\"[A]\"  \t\r\nK:1\r\n",
      "\"[A]\"\r\r\nK:1",
      std::string("[A]\0,K:1\r\nK:2\n", 15),
      std::string("\"[A\0]\"\r\nK:1", 12),
      "[a]\r[A]\rK:1\r\n[B]\nk:2\n",
      " \t[A] \r\n\t[A]\r\nK: x \r\n",
  };
  // Indented headers make every section run to the end of the file, so
  // the look-ups take the per-name index.
  std::string indented;
  for (int i = 0; i < 300; ++i) {
    indented += "  [S" + std::to_string(i % 150) + "]\r\n";
    if (i % 7 == 0) indented += "K:" + std::to_string(i) + "\r\n";
    if (i % 11 == 0) indented += "x:" + std::to_string(i) + "\r\n";
  }
  corpus.push_back(indented);
  // Random files built from the bytes and pieces that steer the item and
  // line readers.
  const Strings pieces = {"[A]", "[a]", "[B]",   "[]",   "[",
                          "]",   "K:1", "k : 2", "K:",   "x:3",
                          ",",   "\"",  " ",     "\t",   "\r\n",
                          "\r",  "\n",  ":",     "\xE9", std::string(1, '\0')};
  std::mt19937 rng(20240611);
  for (int f = 0; f < 1500; ++f) {
    std::string data;
    size_t count = 1 + rng() % 30;
    for (size_t i = 0; i < count; ++i) data += pieces[rng() % pieces.size()];
    corpus.push_back(data);
  }
  TempDir dir;
  for (size_t i = 0; i < corpus.size(); ++i) {
    SCOPED_TRACE("file " + std::to_string(i) + ": " + corpus[i].substr(0, 80));
    std::string path = dir.File("f" + std::to_string(i) + ".ini");
    WriteFile(path, corpus[i]);
    ExpectSameAsReference(path, corpus[i]);
  }
}

}  // namespace
}  // namespace pelinor
