#include "pelinor/char_mapper.h"

#include <gtest/gtest.h>

#include <string>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::TempDir;
using testing::WriteFile;

// The mappings written "from>to" and joined by " ".
std::string Table(const cCharMapper& mapper) {
  std::string out;
  for (int32_t i = 1; i <= mapper.Count(); ++i) {
    if (i > 1) out += " ";
    out += mapper.Item(i).CharFrom + ">" + mapper.Item(i).CharTo;
  }
  return out;
}

TEST(CharMapper, StartsWithTheBuiltInTableInOrder) {
  cCharMapper mapper;
  ASSERT_EQ(mapper.Count(), 156);
  struct Case {
    int32_t index;
    const char* mapping;
  };
  // The first and last mapping of every group.
  const Case cases[] = {
      {1, "/>I"},   {8, "$>s"},   {9, "D>B"},   {36, "U>W"},  {37, "e>c"},
      {52, "u>w"},  {53, "A>a"},  {78, "Z>z"},  {79, "O>0"},  {84, "B>8"},
      {93, "S>$"},  {94, "a>A"},  {119, "z>Z"}, {120, "o>0"}, {124, "g>9"},
      {133, "s>$"}, {134, "0>o"}, {141, "6>G"}, {148, "8>B"}, {156, "1>\\"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.index);
    const cMap& m = mapper.Item(c.index);
    EXPECT_EQ(m.CharFrom + ">" + m.CharTo, c.mapping);
  }
  // Changing one mapper leaves the table of the others alone.
  mapper.Add("x", "y");
  mapper.Clear();
  EXPECT_EQ(mapper.Count(), 0);
  EXPECT_EQ(cCharMapper().Count(), 156);
}

TEST(CharMapper, MapAppliesTheFirstSuitableMapping) {
  struct Case {
    std::string text, wanted, expected;
    bool found;
  };
  const Case cases[] = {{"1O5", kDigitsSet, "105", true},
                        {"O0O", kDigitsSet, "000", true},
                        {"105", kDigitsSet, "105", false},
                        {"abc", kUpperCaseAlphaSet, "Abc", true},
                        {"S5", "$", "$5", true},
                        {"lo", "01", "l0", true},
                        {"x", kLowerCaseAlphaSet, "x", false},
                        {"B8", kLowerCaseAlphaSet, "b8", true},
                        {"", kDigitsSet, "", false}};
  cCharMapper mapper;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text + " to " + c.wanted);
    std::string text = c.text;
    bool found = !c.found;
    mapper.Map(text, c.wanted, found);
    EXPECT_EQ(text, c.expected);
    EXPECT_EQ(found, c.found);
  }
}

TEST(CharMapper, TellsSetMembership) {
  struct Case {
    std::string text, set;
    bool in;
  };
  const Case cases[] = {{"5x", kDigitsSet, true},
                        {"x5", kDigitsSet, false},
                        {"Q", kUpperCaseAlphaSet, true},
                        {"q", kUpperCaseAlphaSet, false},
                        {"\xC9", kUpperCaseAlphaSet, false},
                        {"q", kLowerCaseAlphaSet, true},
                        {"#", kDigitsSet, false},
                        {"-", "+-", true},
                        {"*", "+-", false},
                        {"", "abc", false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text + " in " + c.set);
    EXPECT_EQ(IsCharInSet(c.text, c.set), c.in);
  }
}

TEST(CharMapper, LoadsMappingFiles) {
  struct Case {
    std::string contents, message;
    const char* table;  // null: the load fails
  };
  const Case cases[] = {
      {"ver1.0\r\nO:0\r\n1:I\r\n", "", "O>0 1>I"},
      {"ver1.0\nO:0\nI:1", "", "O>0 I>1"},
      // Lines that are not exactly "x:y" are skipped.
      {"ver1.0\r\nO:0 \r\n::0\r\n:::\r\nO0\r\nO:00\r\n\r\n:\r\n", "", ""},
      {"ver1.0\r\n :0\r\nO: \r\n", "", ">0 O>"},
      {"ver1,x:y\r\nO:0\r\n", "", "x>y O>0"},
      {"ver1.0", "", ""},
      {"AB\r\nO:0\r\n", kCharMapVersionError, nullptr},
      {"ver,O:0\r\n", kCharMapVersionError, nullptr},
      {"", "Error reading character mapping file. Input past end of file",
       nullptr}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.contents);
    TempDir dir;
    WriteFile(dir.File("CharMap.txt"), c.contents);
    cCharMapper mapper;
    mapper.Add("q", "Q");
    std::string error = "stale";
    bool ok = c.table == nullptr;
    mapper.LoadCharMap(dir.File("CharMap.txt"), error, ok);
    EXPECT_EQ(ok, c.table != nullptr);
    EXPECT_EQ(error, c.message);
    if (c.table != nullptr) {
      EXPECT_EQ(Table(mapper), c.table);
    } else {
      EXPECT_EQ(mapper.Count(), 157);  // unchanged
    }
  }
}

TEST(CharMapper, ReportsFilesThatCannotBeRead) {
  TempDir dir;
  struct Case {
    std::string path, message;
  };
  const Case cases[] = {{dir.File("missing.txt"), kCharMapAccessError},
                        {"", kCharMapAccessError},
                        {dir.path(),
                         "Unable to open character mapping file. "
                         "Path/File access error"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    cCharMapper mapper;
    std::string error;
    bool ok = true;
    mapper.LoadCharMap(c.path, error, ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(error, c.message);
    EXPECT_EQ(mapper.Count(), 156);
  }
}

}  // namespace
}  // namespace pelinor
