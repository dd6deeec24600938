#include "pelinor/text_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <iterator>
#include <string_view>
#include <vector>

#include "test_util.h"

namespace pelinor {
namespace {

using testing::FileNames;
using testing::ReadFile;
using testing::TempDir;
using testing::WriteFile;

std::vector<std::string> AllLines(std::string data) {
  TextReader r;
  r.OpenText(std::move(data));
  std::vector<std::string> lines;
  std::string line;
  while (r.ReadLine(line)) lines.push_back(line);
  return lines;
}

std::vector<std::string> AllItems(std::string data) {
  TextReader r;
  r.OpenText(std::move(data));
  std::vector<std::string> items;
  std::string item;
  while (r.ReadItem(item)) items.push_back(item);
  return items;
}

using Strings = std::vector<std::string>;

std::vector<std::string> AllFirstItems(std::string data) {
  TextReader r;
  r.OpenText(std::move(data));
  std::vector<std::string> items;
  std::string item;
  while (r.ReadFirstItem(item)) items.push_back(item);
  return items;
}

TEST(TextReader, ReadsWholeLinesWithAnyLineEnd) {
  struct Case {
    std::string data;
    Strings lines;
  } cases[] = {
      {"a\r\nb\r\n", {"a", "b"}},
      {"a\nb", {"a", "b"}},
      {"a\rb\r", {"a", "b"}},
      {"a\r\r\nb", {"a", "", "b"}},
      {"\r\n\r\n", {"", ""}},
      {"", {}},
      {"x, y \"q\" \r\n", {"x, y \"q\" "}},
      {std::string("n\0l\n", 4), {std::string("n\0l", 3)}},
      {"mac\rmixed\nwin\r\n", {"mac", "mixed", "win"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    EXPECT_EQ(AllLines(c.data), c.lines);
  }
}

TEST(TextReader, ReadsItems) {
  struct Case {
    std::string data;
    Strings items;
  } cases[] = {
      {"\"a\",1,#TRUE#\r\n", {"a", "1", "#TRUE#"}},
      {"  x  ,\ty\r\n", {"x", "y"}},
      {"\"a,b\r\nc\",d\r\n", {"a,b\r\nc", "d"}},
      {"\"q\"  ,\"r\"\r\n", {"q", "r"}},
      // Text after a closing quote that is neither comma nor line end is
      // read as the next item.
      {"\"q\"x,y\n", {"q", "x", "y"}},
      {"\r\n\r\nz\r\n", {"", "", "z"}},
      {"Label:1,2:3\r\n", {"Label:1", "2:3"}},
      {"\"open", {"open"}},
      {"a,", {"a"}},
      {std::string("a\0b,c", 5), {"ab", "c"}},
      // NUL bytes count for nothing, also where blanks or quotes matter.
      {std::string("\0 300\0 ,x", 9), {"300", "x"}},
      {std::string("\0\"q,r\"\0,y", 9), {"q,r", "y"}},
      {"tab\t,x\n", {"tab\t", "x"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    EXPECT_EQ(AllItems(c.data), c.items);
  }
}

// One value per tagged line: a comma cuts the value and the next read
// starts on the next line, never in the rest of the cut one.
TEST(TextReader, ReadsTheFirstItemOfEachLine) {
  struct Case {
    std::string data;
    Strings items;
  } cases[] = {
      {"Name:Northwind, Ltd\r\nNext:1\r\n", {"Name:Northwind", "Next:1"}},
      {"a,b,c\nd\re,f", {"a", "d", "e"}},
      {"Label:1,2:3\r\nx\r\n", {"Label:1", "x"}},
      {"\"a,b\r\nc\",d\r\ne\r\n", {"a,b\r\nc", "e"}},
      {"\"q\"x,y\nz\n", {"q", "z"}},
      {"\"q\"  \r\nz", {"q", "z"}},
      {"\r\n,\r\n,x\n", {"", "", ""}},
      {"a,", {"a"}},
      {"\"open", {"open"}},
      {std::string("a\0,b\0\nc", 7), {"a", "c"}},
      {"", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    EXPECT_EQ(AllFirstItems(c.data), c.items);
  }
}

// The view reads give what the copying reads give, also where a line or
// item ends on either side of a 16-byte block and at the end of the data.
TEST(TextReader, ViewReadsGiveWhatCopyingReadsGive) {
  const std::string a15(15, 'a'), a16(16, 'a'), a17(17, 'a'), a31(31, 'a');
  struct Case {
    std::string data;
    Strings lines;
    Strings first_items;
  } cases[] = {
      {a15 + "\r\n" + a16 + "\n" + a17 + "\r" + a31,
       {a15, a16, a17, a31},
       {a15, a16, a17, a31}},
      {a15 + "," + a16 + "\r\n" + a16 + ",x\n" + a17 + ",\r\n",
       {a15 + "," + a16, a16 + ",x", a17 + ","},
       {a15, a16, a17}},
      {a31 + "x\r\r\n" + a16 + "  ,y\n\n",
       {a31 + "x", "", a16 + "  ,y", ""},
       {a31 + "x", "", a16, ""}},
      {"Field1Name:Acme, Ltd" + a16 + "\r\nField1Value: 12 \r\n",
       {"Field1Name:Acme, Ltd" + a16, "Field1Value: 12 "},
       {"Field1Name:Acme", "Field1Value: 12"}},
      {std::string("n\0"
                   "a\0b,c\nd",
                   9),
       {std::string("n\0"
                    "a\0b,c",
                    7),
        "d"},
       {"nab", "d"}},
      {"\"" + a17 + ",q\"" + a16 + "\r\nz",
       {"\"" + a17 + ",q\"" + a16, "z"},
       {a17 + ",q", "z"}},
      {"", {}, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    TextReader r;
    r.OpenText(c.data);
    Strings lines;
    std::string_view view;
    while (r.ReadLineView(view)) lines.emplace_back(view);
    EXPECT_EQ(lines, c.lines);
    EXPECT_EQ(AllLines(c.data), c.lines);
    r.Rewind();
    Strings items;
    while (r.ReadFirstItemView(view)) items.emplace_back(view);
    EXPECT_EQ(items, c.first_items);
    EXPECT_EQ(AllFirstItems(c.data), c.first_items);
  }
}

// Readers hand their buffers on to the next reader of the thread: each
// reader still sees its own file only, whatever was read before it and
// whichever other reader is open at the same time.
TEST(TextReader, ReadsFileAfterFileEachWhole) {
  TempDir dir;
  const size_t sizes[] = {5000, 10, 0, 4096, 4097, 300000, 20, 8000};
  std::vector<std::string> contents;
  for (size_t i = 0; i < std::size(sizes); ++i) {
    std::string text(sizes[i], static_cast<char>('a' + i));
    if (!text.empty()) text.back() = '\n';
    WriteFile(dir.File(std::to_string(i)), text);
    contents.push_back(text);
  }
  TextReader kept;
  ASSERT_TRUE(kept.Open(dir.File("0")));
  for (size_t i = 0; i < std::size(sizes); ++i) {
    SCOPED_TRACE(sizes[i]);
    TextReader r;
    ASSERT_TRUE(r.Open(dir.File(std::to_string(i))));
    EXPECT_EQ(r.Data(), contents[i]);
    TextReader moved(std::move(r));
    EXPECT_EQ(moved.Data(), contents[i]);
    EXPECT_EQ(kept.Data(), contents[0]);
    if (i == 3) {
      kept.Close();
      ASSERT_TRUE(kept.Open(dir.File("1")));
      contents[0] = contents[1];
    }
  }
}

TEST(TextReader, MixesItemAndLineReading) {
  TextReader r;
  r.OpenText("ver0.946\r\n\"Name\",12\r\nrest of line\r\n");
  std::string s;
  ASSERT_TRUE(r.ReadLine(s));
  EXPECT_EQ(s, "ver0.946");
  bool quoted = false;
  ASSERT_TRUE(r.ReadItem(s, quoted));
  EXPECT_TRUE(quoted);
  int32_t n = 0;
  ASSERT_TRUE(r.ReadLong(n));
  EXPECT_EQ(n, 12);
  ASSERT_TRUE(r.ReadLine(s));
  EXPECT_EQ(s, "rest of line");
  EXPECT_TRUE(r.AtEnd());
  EXPECT_FALSE(r.ReadLine(s));
  EXPECT_FALSE(r.ReadItem(s));
  r.Rewind();
  ASSERT_TRUE(r.ReadLine(s));
  EXPECT_EQ(s, "ver0.946");
}

TEST(TextReader, ReadsTypedItems) {
  TextReader r;
  r.OpenText("#TRUE#,#false#,0,2.5,x,#TRUE#,1e3,70000,-1.5\r\n");
  bool b = false;
  EXPECT_TRUE(r.ReadBool(b) && b);
  EXPECT_TRUE(r.ReadBool(b) && !b);
  EXPECT_TRUE(r.ReadBool(b) && !b);
  int32_t l = 9;
  EXPECT_TRUE(r.ReadLong(l));
  EXPECT_EQ(l, 2);
  EXPECT_FALSE(r.ReadLong(l));  // "x" is consumed all the same
  EXPECT_EQ(l, 2);
  EXPECT_TRUE(r.ReadLong(l));
  EXPECT_EQ(l, -1);
  double d = 0;
  EXPECT_TRUE(r.ReadDouble(d));
  EXPECT_EQ(d, 1000);
  int16_t i = 0;
  EXPECT_FALSE(r.ReadInteger(i));
  float f = 0;
  EXPECT_TRUE(r.ReadSingle(f));
  EXPECT_EQ(f, -1.5f);
}

TEST(TextReader, HandlesLargeAndMissingFiles) {
  TempDir dir;
  TextReader r;
  EXPECT_FALSE(r.Open(dir.File("missing.txt")));
  EXPECT_FALSE(r.Open(dir.path()));  // a directory is not a text file
  std::string big(10000, 'x');
  WriteFile(dir.File("big.txt"), big + "\r\n" + big);
  ASSERT_TRUE(r.Open(dir.File("big.txt")));
  std::string line;
  ASSERT_TRUE(r.ReadLine(line));
  EXPECT_EQ(line, big);
  ASSERT_TRUE(r.ReadItem(line));
  EXPECT_EQ(line, big);
  EXPECT_FALSE(r.ReadItem(line));
}

TEST(TextWriter, WritesQuotedItemsAndLinesWithCrLf) {
  TempDir dir;
  std::string path = dir.File("out.txt");
  TextWriter w;
  ASSERT_TRUE(w.Create(path));
  w.WriteLine("ver0.946");
  w.WriteItems({"text", int32_t{-7}, true, false, 0.5, 2.0f, ""});
  w.Write("raw");
  ASSERT_TRUE(w.Commit());
  EXPECT_EQ(ReadFile(path),
            "ver0.946\r\n\"text\",-7,#TRUE#,#FALSE#,0.5,2,\"\"\r\nraw");

  TextReader r;
  ASSERT_TRUE(r.Open(path));
  std::string s;
  r.ReadLine(s);
  Strings items;
  while (r.ReadItem(s)) items.push_back(s);
  EXPECT_EQ(items, (Strings{"text", "-7", "#TRUE#", "#FALSE#", "0.5", "2", "",
                            "raw"}));
}

// A line written in parts is the line of their concatenation, numbers in
// their plain decimal form, also where the line outgrows the first buffer
// or crosses the size at which the buffer goes to disk, and for parts of
// every length up to 40 (short parts are copied by length class).
TEST(TextWriter, WritesLinesInParts) {
  const std::string big(70000, 'b');
  const std::string mid(9000, 'm');
  std::string every_length;
  for (size_t n = 0; n <= 40; ++n) {
    std::string part;
    for (size_t i = 0; i < n; ++i) part += static_cast<char>('a' + i % 26);
    every_length += part + "|" + part + ":" + std::to_string(n) + "\r\n";
  }
  struct Case {
    std::function<void(TextWriter&)> write;
    std::string file;
  } cases[] = {
      {[](TextWriter& w) {
         w.WriteLineParts({"Field", int32_t{12}, "Coords:", int32_t{-5}, ":",
                           int32_t{0}, ":", int32_t{9}, ":", int32_t{10}});
       },
       "Field12Coords:-5:0:9:10\r\n"},
      {[](TextWriter& w) {
         w.WriteLineParts({INT32_MIN, ",", INT32_MAX, ",", INT64_MIN, ",",
                           INT64_MAX, ",", int32_t{-1}});
       },
       "-2147483648,2147483647,-9223372036854775808,9223372036854775807,-1"
       "\r\n"},
      {[](TextWriter& w) {
         w.WriteLineParts({});
         w.WriteLineParts({"", std::string(), std::string_view()});
         w.Write("a");
         w.WriteLineParts({"b"});
       },
       "\r\n\r\nab\r\n"},
      {[&](TextWriter& w) {
         w.WriteLineParts({"x:", mid, int32_t{7}});
         w.WriteLineParts({big, ":", int32_t{42}});
         w.WriteLine("end");
       },
       "x:" + mid + "7\r\n" + big + ":42\r\nend\r\n"},
      {[](TextWriter& w) {
         for (size_t n = 0; n <= 40; ++n) {
           std::string part;
           for (size_t i = 0; i < n; ++i) {
             part += static_cast<char>('a' + i % 26);
           }
           w.WriteLineParts({part, "|", std::string_view(part), ":",
                             static_cast<int64_t>(n)});
         }
       },
       every_length},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file.substr(0, 40));
    const std::string path = dir.File("parts.txt");
    TextWriter w;
    ASSERT_TRUE(w.Create(path));
    c.write(w);
    ASSERT_TRUE(w.Commit());
    EXPECT_EQ(ReadFile(path), c.file);
  }
  TextWriter closed;
  closed.WriteLineParts({"x"});
  EXPECT_FALSE(closed.ok());
  EXPECT_EQ(closed.error(), EBADF);
}

TEST(TextWriter, NeverExposesAHalfWrittenFile) {
  TempDir dir;
  std::string path = dir.File("target.txt");
  WriteFile(path, "old\r\n");
  {
    TextWriter w;
    ASSERT_TRUE(w.Create(path));
    w.WriteLine(std::string(200000, 'n'));  // large enough to reach the disk
    EXPECT_EQ(ReadFile(path), "old\r\n");
    // Destroyed without Commit(): the target stays and the temporary goes.
  }
  EXPECT_EQ(ReadFile(path), "old\r\n");
  EXPECT_EQ(FileNames(dir.path()), std::vector<std::string>{"target.txt"});

  TextWriter w;
  EXPECT_FALSE(w.Create(dir.File("no/such/dir/file.txt")));
  w.WriteLine("ignored");
  EXPECT_FALSE(w.Commit());
}

// CommitIfChanged() leaves a target that holds the same bytes untouched
// (the same file, not a copy) and replaces any other, also where the new
// text went to the temporary file in part before the end, or differs only
// after the part that did.
TEST(TextWriter, LeavesATargetThatHoldsTheSameBytes) {
  const std::string big(200000, 'b');
  std::string other_end = big, other_start = big;
  other_end.back() = 'c';
  other_start.front() = 'c';
  struct Case {
    const char* name;
    std::string old_text;  // "\x01" for no target
    std::string new_text;
    bool unchanged;
  } cases[] = {
      {"same", "a\r\nb\r\n", "a\r\nb\r\n", true},
      {"same size, other bytes", "a\r\nb\r\n", "a\r\nc\r\n", false},
      {"longer", "a\r\n", "a\r\nb\r\n", false},
      {"shorter", "a\r\nb\r\n", "a\r\n", false},
      {"no target", "\x01", "a\r\n", false},
      {"empty, same", "", "", true},
      {"large, same", big, big, true},
      {"large, other end", big, other_end, false},
      {"large, other start", big, other_start, false},
  };
  // Each case with the temporary file made at once and when needed.
  for (const bool when_needed : {false, true})
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.name) + (when_needed ? ", when needed" : ""));
      TempDir dir;
      const std::string path = dir.File("t.txt");
      const bool had = c.old_text != "\x01";
      if (had) WriteFile(path, c.old_text);
      struct stat before {};
      if (had) {
        ASSERT_EQ(stat(path.c_str(), &before), 0);
      }
      TextWriter w;
      ASSERT_TRUE(when_needed ? w.CreateWhenNeeded(path) : w.Create(path));
      // In pieces, so that a large text is partly on disk and partly still
      // buffered when committed.
      for (size_t at = 0; at < c.new_text.size(); at += 150000) {
        w.Write(std::string_view(c.new_text).substr(at, 150000));
      }
      bool unchanged = !c.unchanged;
      ASSERT_TRUE(w.CommitIfChanged(unchanged));
      EXPECT_EQ(unchanged, c.unchanged);
      EXPECT_EQ(ReadFile(path), c.new_text);
      struct stat after {};
      ASSERT_EQ(stat(path.c_str(), &after), 0);
      if (had) {
        EXPECT_EQ(after.st_ino == before.st_ino, c.unchanged);
      }
      EXPECT_EQ(FileNames(dir.path()), std::vector<std::string>{"t.txt"});
    }
}

// A writer created when needed makes no temporary file for a target that
// holds its bytes already. Shown with a name whose temporary name is too
// long for the file system: a writer that needs one fails, as Create()
// does at once, and leaves the target as it was.
TEST(TextWriter, MakesTheTemporaryFileOnlyWhenNeeded) {
  TempDir dir;
  const std::string path = dir.File(std::string(250, 'n'));
  WriteFile(path, "a\r\n");
  TextWriter w;
  EXPECT_FALSE(w.Create(path));
  EXPECT_TRUE(w.temp_failed());

  struct Case {
    const char* name;
    const char* text;
    bool ok;
  } cases[] = {{"same bytes", "a", true}, {"other bytes", "b", false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_TRUE(w.CreateWhenNeeded(path));
    EXPECT_FALSE(w.temp_failed());
    w.WriteLine(c.text);
    bool unchanged = false;
    EXPECT_EQ(w.CommitIfChanged(unchanged), c.ok);
    EXPECT_EQ(unchanged, c.ok);
    EXPECT_EQ(w.temp_failed(), !c.ok);
    EXPECT_EQ(w.error(), c.ok ? 0 : ENAMETOOLONG);
    EXPECT_EQ(ReadFile(path), "a\r\n");
    EXPECT_EQ(FileNames(dir.path()),
              std::vector<std::string>{path.substr(path.rfind('/') + 1)});
  }
}

// Permissions and empty files, with the temporary file made at once and
// when needed (at the commit, for these short texts).
TEST(TextWriter, KeepsTheTargetsPermissions) {
  for (const bool when_needed : {false, true}) {
    SCOPED_TRACE(when_needed ? "when needed" : "at once");
    TempDir dir;
    std::string path = dir.File("perm.txt");
    WriteFile(path, "x");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    TextWriter w;
    ASSERT_TRUE(when_needed ? w.CreateWhenNeeded(path) : w.Create(path));
    w.WriteLine("y");
    ASSERT_TRUE(w.Commit());
    struct stat st;
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0640u);

    const std::string empty = dir.File("empty.txt");
    ASSERT_TRUE(when_needed ? w.CreateWhenNeeded(empty) : w.Create(empty));
    ASSERT_TRUE(w.Commit());
    ASSERT_EQ(stat(empty.c_str(), &st), 0);
    EXPECT_EQ(st.st_size, 0);
    EXPECT_EQ(st.st_mode & 0777, 0644u);
    EXPECT_EQ(FileNames(dir.path()),
              (std::vector<std::string>{"empty.txt", "perm.txt"}));
  }
}

TEST(TextWriter, ReplacesTheTargetOfASymbolicLink) {
  TempDir dir;
  std::filesystem::create_directory(dir.File("real"));
  WriteFile(dir.File("real/file.txt"), "old\r\n");
  struct Case {
    const char* link;
    std::string points_to;  // as stored in the link
  } cases[] = {
      {"relative.txt", "real/file.txt"},
      {"absolute.txt", dir.File("real/file.txt")},
      {"chain.txt", "relative.txt"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.link);
    std::filesystem::create_symlink(c.points_to, dir.File(c.link));
    TextWriter w;
    ASSERT_TRUE(w.Create(dir.File(c.link)));
    w.WriteLine(c.link);
    ASSERT_TRUE(w.Commit());
    EXPECT_TRUE(std::filesystem::is_symlink(dir.File(c.link)));
    EXPECT_EQ(ReadFile(dir.File("real/file.txt")),
              std::string(c.link) + "\r\n");
  }
  // A dangling link gets its target created.
  std::filesystem::create_symlink("real/new.txt", dir.File("dangling.txt"));
  TextWriter w;
  ASSERT_TRUE(w.Create(dir.File("dangling.txt")));
  w.WriteLine("new");
  ASSERT_TRUE(w.Commit());
  EXPECT_TRUE(std::filesystem::is_symlink(dir.File("dangling.txt")));
  EXPECT_EQ(ReadFile(dir.File("real/new.txt")), "new\r\n");
}

TEST(TextWriter, TellsTheSystemsReason) {
  TempDir dir;
  std::filesystem::create_directory(dir.File("directory"));
  struct Case {
    std::string path;
    int error;
  } cases[] = {
      {dir.File("no/such/file.txt"), ENOENT},
      {dir.File("directory"), EISDIR},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    ClearFileError();
    TextWriter w;
    EXPECT_FALSE(w.Create(c.path));
    EXPECT_EQ(w.error(), c.error);
    EXPECT_EQ(LastFileError(), c.error);
  }
  ClearFileError();
  TextReader r;
  EXPECT_FALSE(r.Open(dir.File("none.txt")));
  EXPECT_EQ(LastFileError(), ENOENT);
}

TEST(TextWriter, RemovesTemporaryFilesOfWritesInFlight) {
  TempDir dir;
  WriteFile(dir.File("a.txt"), "kept\r\n");
  TextWriter a, b;
  ASSERT_TRUE(a.Create(dir.File("a.txt")));
  ASSERT_TRUE(b.Create(dir.File("b.txt")));
  a.WriteLine(std::string(1 << 17, 'x'));
  RemoveTemporaryFiles();
  EXPECT_EQ(FileNames(dir.path()), std::vector<std::string>{"a.txt"});
  EXPECT_EQ(ReadFile(dir.File("a.txt")), "kept\r\n");
  // A finished write is no longer listed: its file stays.
  TextWriter c;
  ASSERT_TRUE(c.Create(dir.File("c.txt")));
  c.WriteLine("done");
  ASSERT_TRUE(c.Commit());
  RemoveTemporaryFiles();
  EXPECT_EQ(ReadFile(dir.File("c.txt")), "done\r\n");
}

}  // namespace
}  // namespace pelinor
