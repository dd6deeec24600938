#include "pelinor/file_system.h"

#include <gtest/gtest.h>

#include "test_util.h"

namespace pelinor {
namespace {

TEST(JoinPath, SeparatesOnce) {
  struct Case {
    const char* dir;
    const char* name;
    const char* joined;
  } cases[] = {
      {"examples/profiles", "CharMap.txt", "examples/profiles/CharMap.txt"},
      {"examples/profiles/", "CharMap.txt", "examples/profiles/CharMap.txt"},
      {"examples/profiles\\", "CharMap.txt", "examples/profiles/CharMap.txt"},
      {"", "CharMap.txt", "CharMap.txt"},
      {"/", "x", "/x"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.dir);
    EXPECT_EQ(JoinPath(c.dir, c.name), c.joined);
  }
}

TEST(FileNameOf, TakesTheLastPartAndItsStem) {
  struct Case {
    const char* path;
    const char* name;
    const char* stem;
  } cases[] = {
      {"examples/profiles/Invoices.ini", "Invoices.ini", "Invoices"},
      {"C:\\Pelinor\\Profiles\\Invoices.ini", "Invoices.ini", "Invoices"},
      {"a.b/Invoices", "Invoices", "Invoices"},
      {"dir/archive.tar.gz", "archive.tar.gz", "archive.tar"},
      {"dir/.profile", ".profile", ".profile"},
      {"dir/", "", ""},
      {"Plain", "Plain", "Plain"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.path);
    EXPECT_EQ(FileNameOf(c.path), c.name);
    EXPECT_EQ(FileStemOf(c.path), c.stem);
  }
}

TEST(FileHousekeeping, ExistsAndDeletesQuietly) {
  testing::TempDir dir;
  std::string path = dir.File("a.txt");
  EXPECT_FALSE(FileExists(path));
  EXPECT_FALSE(FileExists(""));
  testing::WriteFile(path, "x");
  EXPECT_TRUE(FileExists(path));
  EXPECT_TRUE(FileExists(dir.path()));
  DeleteFileQuietly(path);
  EXPECT_FALSE(FileExists(path));
  DeleteFileQuietly(path);  // a missing file is no error
  DeleteFileQuietly("");
}

}  // namespace
}  // namespace pelinor
