#include "pelinor/queue_entry.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "pelinor/data_parser.h"
#include "pelinor/date_text.h"
#include "pelinor/file_system.h"
#include "pelinor/text_file.h"
#include "queue_fixtures.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::DataPath;
using testing::FullEntry;
using testing::kRecordItems;
using testing::ReadFile;
using testing::TempDir;
using testing::WithFileSizeLimit;
using testing::WriteFile;

std::vector<int> Items(int first, int last) {
  std::vector<int> v;
  for (int i = first; i <= last; ++i) v.push_back(i);
  return v;
}

std::vector<int> Join(std::vector<int> a, const std::vector<int>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

// The written form of each item of the golden full record.
std::vector<std::string> GoldenItems() {
  std::string data = ReadFile(DataPath("queue/full_entry.status"));
  TextReader r;
  r.OpenText(data);
  std::string item;
  bool quoted = false;
  r.ReadLine(item);
  std::vector<std::string> items;
  for (int i = 0; i < 41 && r.ReadItem(item, quoted); ++i) {
    items.push_back(quoted ? "\"" + item + "\"" : item);
  }
  return items;
}

TEST(QueueEntry, WritesStatusFilesByteForByte) {
  struct Case {
    cQueueEntry entry;
    const char* golden;
  } cases[] = {
      {cQueueEntry(), "queue/new_entry.status"},
      {FullEntry(), "queue/full_entry.status"},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.golden);
    std::string path = dir.File("entry.status");
    std::string err = "old";
    ASSERT_TRUE(c.entry.WriteSettings(path, err));
    EXPECT_EQ(err, "");
    EXPECT_EQ(ReadFile(path), ReadFile(DataPath(c.golden)));

    cQueueEntry back;
    back.Slot = 9;
    back.ID2Identifier = "kept";
    ASSERT_TRUE(back.ReadSettings(path, err)) << err;
    for (int i = 0; i < 41; ++i) {
      EXPECT_EQ(kRecordItems[i](back), kRecordItems[i](c.entry)) << i + 1;
    }
    EXPECT_EQ(back.Version, "0.946");
    EXPECT_EQ(back.Slot, 9);
    EXPECT_EQ(back.ID2Identifier, "kept");
  }
}

TEST(QueueEntry, ReadsEveryRecordLayout) {
  struct Case {
    const char* version;
    std::vector<int> items;  // one-based record items the layout holds
  } cases[] = {
      {"ver0.950", Items(1, 41)},
      {"ver0.946", Items(1, 41)},
      {"ver0.945", Items(1, 39)},
      {"ver0.941", Items(1, 39)},
      {"ver0.940", Items(1, 38)},
      {"ver0.939", Items(1, 36)},
      {"ver0.920", Items(1, 36)},
      {"ver0.919", Items(1, 37)},
      {"ver0.918", Items(1, 36)},
      {"ver0.916", Items(1, 36)},
      {"ver0.915", Items(1, 34)},
      {"ver0.914", Items(1, 34)},
      {"ver0.913", Join(Items(1, 21), Items(25, 30))},
      {"ver0.912", Join(Items(1, 21), Items(25, 30))},
      {"ver0.911", Items(1, 21)},
      {"ver0.9", Items(1, 21)},
      {"verx", Items(1, 21)},
  };
  const std::vector<std::string> written = GoldenItems();
  ASSERT_EQ(written.size(), 41u);
  const cQueueEntry full = FullEntry();
  const cQueueEntry blank;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.version);
    std::string line;
    for (int i : c.items) {
      line += (line.empty() ? "" : ",") + written[static_cast<size_t>(i - 1)];
    }
    float version = -1;
    ASSERT_TRUE(ParseVersionNumber(c.version, version));
    TextReader r;
    r.OpenText(line + "\r\n\"next\"\r\n");
    cQueueEntry e;
    std::string err = "old";
    ASSERT_TRUE(e.ReadEntry(r, version, err)) << err;
    EXPECT_EQ(err, "");
    const std::set<int> held(c.items.begin(), c.items.end());
    for (int i = 1; i <= 41; ++i) {
      const cQueueEntry& expected = held.count(i) ? full : blank;
      EXPECT_EQ(kRecordItems[i - 1](e), kRecordItems[i - 1](expected)) << i;
    }
    std::string rest;
    EXPECT_TRUE(r.ReadItem(rest));
    EXPECT_EQ(rest, "next");  // the record took exactly its own items
  }
}

TEST(QueueEntry, EscapesTheIdentifierTexts) {
  struct Case {
    std::string text;
    std::string stored;
  } cases[] = {
      {"plain", "plain"},
      {"\"", "\\Q"},
      {"\\", "\\\\"},
      {"\\Q", "\\\\Q"},
      {"a\"b\\c\"", "a\\Qb\\\\c\\Q"},
      {"end\\", "end\\\\"},
      {"\\\\\"\"", "\\\\\\\\\\Q\\Q"},
      {"x,y \xE9\x80", "x,y \xE9\x80"},
      {"", ""},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    cQueueEntry e;
    e.TemplateIDText = c.text;
    e.ID2Text = c.text + "2";
    e.DocId = "D";
    std::string path = dir.File("e.status");
    std::string err;
    ASSERT_TRUE(e.WriteSettings(path, err));
    const std::string data = ReadFile(path);
    EXPECT_NE(data.find(",\"" + c.stored + "\",\"\",\"\",\"\","), data.npos);
    EXPECT_NE(data.find(",\"" + c.stored + "2\",#FALSE#,"), data.npos);
    cQueueEntry back;
    ASSERT_TRUE(back.ReadSettings(path, err)) << err;
    EXPECT_EQ(back.TemplateIDText, c.text);
    EXPECT_EQ(back.ID2Text, c.text + "2");
  }
}

TEST(QueueEntry, ConvertsTheTimesToDates) {
  double may2 = 0, may3 = 0;
  ASSERT_TRUE(DateSerial(2024, 5, 2, 9, 15, 0, may2));
  ASSERT_TRUE(DateSerial(2024, 5, 3, 14, 30, 0, may3));
  constexpr double kPreset = 12345.5;  // kept when the text is no date
  struct Case {
    const char* scanned;
    const char* modified;
    double dt_scanned;
    double dt_modified;
  } cases[] = {
      {"2024-05-02 09:15:00", "5/3/2024 2:30 PM", may2, may3},
      {"5/2/2024 9:15:00 AM", "2024-05-03 14:30", may2, may3},
      {"", "2024-05-03 14:30:00", kPreset, may3},
      {"yesterday", "", kPreset, kPreset},
      {"2024-02-30", "13/1/2024", kPreset, kPreset},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.scanned);
    TextReader r;
    r.OpenText(std::string("\"D\",\"\",\"\",#FALSE#,0,0,\"") + c.scanned +
               "\",\"" + c.modified + "\"" +
               ",#FALSE#,0,\"\",\"\",\"0\",\"0\",\"0\",\"\",\"\",\"\",\"\","
               "\"\",\"\"\r\n");
    cQueueEntry e;
    e.dtTimeScanned = e.dtTimeLastModified = kPreset;
    std::string err;
    ASSERT_TRUE(e.ReadEntry(r, 0.9f, err)) << err;
    EXPECT_DOUBLE_EQ(e.dtTimeScanned, c.dt_scanned);
    EXPECT_DOUBLE_EQ(e.dtTimeLastModified, c.dt_modified);
  }
}

TEST(QueueEntry, AnswersMalformedStatusFiles) {
  const std::string head = "\"D\",\"S\",\"P\",";
  struct Case {
    std::string data;
    std::string message;
    std::string doc_id;  // what was read before the failure stays
  } cases[] = {
      {"", kQueueInvalidVersion, ""},
      {"ver\r\n", kQueueInvalidVersion, ""},
      {"\"ab\",\"D\"\r\n", kQueueInvalidVersion, ""},
      {"ver0.946\r\n", kQueueEntryPastEnd, ""},
      {"ver0.946\r\n" + head + "#TRUE#,1\r\n", kQueueEntryPastEnd, "D"},
      {"ver0.946\r\n" + head + "maybe,1,2\r\n", kQueueEntryBadItem, "D"},
      {"ver0.946\r\n" + head + "#TRUE#,1x,2\r\n", kQueueEntryBadItem, "D"},
      {"ver0.946\r\n" + head + "#TRUE#,99999999999,2\r\n", kQueueEntryBadItem,
       "D"},
      {"ver0.946\r\n\"unclosed,\r\n", kQueueEntryPastEnd, "unclosed,\r\n"},
      {std::string("ver0.946\r\n\0\0\0", 13), kQueueEntryPastEnd, ""},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    std::string path = dir.File("bad.status");
    WriteFile(path, c.data);
    cQueueEntry e;
    std::string err;
    EXPECT_FALSE(e.ReadSettings(path, err));
    EXPECT_EQ(err, c.message);
    EXPECT_EQ(e.DocId, c.doc_id);
  }
  cQueueEntry e;
  std::string err;
  EXPECT_FALSE(e.ReadSettings(dir.File("missing.status"), err));
  EXPECT_EQ(err, kStatusFileOpenError);
}

TEST(QueueEntry, RoundTripsRejectMessages) {
  struct Case {
    std::string message;
    std::string read_back;
  } cases[] = {
      {"Page 2 is missing, \"rescan\"", "Page 2 is missing, \"rescan\""},
      {"", ""},
      {"first\r\nsecond", "first"},
      {"first\nsecond", "first"},
      {"  padded, \xE9t\xE9  ", "  padded, \xE9t\xE9  "},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.message);
    std::string path = dir.File("r.reject");
    cQueueEntry e;
    std::string err = "old";
    ASSERT_TRUE(e.WriteRejectMessage(c.message, path, err));
    EXPECT_EQ(err, "");
    EXPECT_EQ(ReadFile(path), "ver0.946\r\n" + c.message + "\r\n");
    std::string msg = "old";
    ASSERT_TRUE(e.ReadRejectMessage(msg, path, err)) << err;
    EXPECT_EQ(msg, c.read_back);
    EXPECT_EQ(e.Version, "0.946");
  }
  std::string msg;
  std::string err;
  cQueueEntry e;
  struct Bad {
    std::string data;
    std::string message;
  } bad[] = {
      {"", kQueueInvalidVersion},
      {"ver0.946\r\n", kRejectFilePastEnd},
  };
  for (const Bad& b : bad) {
    SCOPED_TRACE(b.data);
    std::string path = dir.File("bad.reject");
    WriteFile(path, b.data);
    msg = "untouched";
    EXPECT_FALSE(e.ReadRejectMessage(msg, path, err));
    EXPECT_EQ(err, b.message);
    EXPECT_EQ(msg, "untouched");
  }
  EXPECT_FALSE(e.ReadRejectMessage(msg, dir.File("none"), err));
  EXPECT_EQ(err, kRejectFileOpenError);
  EXPECT_FALSE(e.WriteRejectMessage("m", dir.File("no/dir/r"), err));
  EXPECT_EQ(err, kRejectFileCreateError);
}

TEST(QueueEntry, CopiesEveryProperty) {
  cQueueEntry source = FullEntry();
  source.Slot = 4;
  source.ID2Identifier = "ID2";
  source.dtTimeScanned = 45414.25;
  std::shared_ptr<cQueueEntry> fresh;
  auto existing = std::make_shared<cQueueEntry>();
  for (std::shared_ptr<cQueueEntry>* target : {&fresh, &existing}) {
    source.Copy(*target);
    ASSERT_NE(*target, nullptr);
    for (int i = 0; i < 41; ++i) {
      EXPECT_EQ(kRecordItems[i](**target), kRecordItems[i](source)) << i + 1;
    }
    EXPECT_EQ((*target)->Slot, 4);
    EXPECT_EQ((*target)->ID2Identifier, "ID2");
    EXPECT_EQ((*target)->dtTimeScanned, 45414.25);
  }
}

TEST(QueueEntry, LeavesNoStatusFileWhenTheRecordFails) {
  TempDir dir;
  std::string err;
  TextWriter closed;
  EXPECT_FALSE(cQueueEntry().WriteEntry(closed, err));
  EXPECT_EQ(err, kQueueEntryWriteError);

  EXPECT_FALSE(cQueueEntry().WriteSettings(dir.File("no/dir/e"), err));
  EXPECT_EQ(err, kStatusFileCreateError);

  // A record longer than the writer's buffer reaches the disk at once and
  // fails there; the status file is removed and the answer is still true.
  std::string path = dir.File("e.status");
  WriteFile(path, "old contents");
  cQueueEntry big;
  big.DocId.assign(200000, 'x');
  bool ok = false;
  WithFileSizeLimit(1000, [&] { ok = big.WriteSettings(path, err); });
  EXPECT_TRUE(ok);
  EXPECT_EQ(err, kQueueEntryWriteError);
  EXPECT_FALSE(FileExists(path));
  EXPECT_TRUE(std::filesystem::is_empty(dir.path()));  // no temporary left
}

}  // namespace
}  // namespace pelinor
