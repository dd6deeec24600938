#include "pelinor/queue.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "queue_fixtures.h"
#include "test_util.h"

namespace pelinor {
namespace {

using testing::DataPath;
using testing::DocIds;
using testing::FullEntry;
using testing::kRecordItems;
using testing::ReadFile;
using testing::TempDir;
using testing::WriteFile;
using Ids = std::vector<std::string>;

std::shared_ptr<cQueueEntry> Entry(const std::string& id) {
  auto e = std::make_shared<cQueueEntry>();
  e->DocId = id;
  return e;
}

TEST(Queue, WritesAndReadsTheQueueFile) {
  struct Case {
    std::vector<cQueueEntry> entries;
    const char* golden;
  } cases[] = {
      {{FullEntry(), cQueueEntry()}, "queue/queue.txt"},
      {{}, "queue/empty_queue.txt"},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.golden);
    cQueue q;
    for (const cQueueEntry& e : c.entries) {
      q.QueueEntries.Add(std::make_shared<cQueueEntry>(e));
    }
    std::string path = dir.File("queue.txt");
    std::string err = "old";
    ASSERT_TRUE(q.WriteSettings(path, err));
    EXPECT_EQ(err, "");
    EXPECT_EQ(ReadFile(path), ReadFile(DataPath(c.golden)));

    cQueue back;
    ASSERT_TRUE(back.ReadSettings(path, err)) << err;
    EXPECT_EQ(back.Version, "0.946");
    ASSERT_EQ(back.QueueEntries.Count(), static_cast<int>(c.entries.size()));
    for (size_t n = 0; n < c.entries.size(); ++n) {
      const cQueueEntry& got = *back.QueueEntries.Item(static_cast<int>(n + 1));
      for (int i = 0; i < 41; ++i) {
        EXPECT_EQ(kRecordItems[i](got), kRecordItems[i](c.entries[n])) << i;
      }
    }
  }
}

TEST(Queue, AnswersMalformedQueueFiles) {
  const std::string entry = ReadFile(DataPath("queue/new_entry.status"))
                                .substr(sizeof("\"ver0.946\"\r\n") - 1);
  struct Case {
    std::string data;
    std::string message;
    int entries_kept;
  } cases[] = {
      {"", kQueueInvalidVersion, 0},
      {"\"v1\"\r\n1\r\n", kQueueInvalidVersion, 0},
      {"\"ver0.946\"\r\n", kQueueFileBadCount, 0},
      {"\"ver0.946\"\r\nmany\r\n", kQueueFileBadCount, 0},
      {"\"ver0.946\"\r\n2\r\n" + entry, kQueueEntryPastEnd, 1},
      {"\"ver0.946\"\r\n2147483647\r\n" + entry, kQueueEntryPastEnd, 1},
      {"\"ver0.946\"\r\n1\r\n\"D\",\"\",\"\",yes\r\n", kQueueEntryBadItem, 0},
      {"\"ver0.946\"\r\n1\r\n\"cut", kQueueEntryPastEnd, 0},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.data);
    std::string path = dir.File("q.txt");
    WriteFile(path, c.data);
    cQueue q;
    std::string err;
    EXPECT_FALSE(q.ReadSettings(path, err));
    EXPECT_EQ(err, c.message);
    EXPECT_EQ(q.QueueEntries.Count(), c.entries_kept);
  }
  cQueue q;
  std::string err;
  EXPECT_FALSE(q.ReadSettings(dir.File("missing"), err));
  EXPECT_EQ(err, kQueueFileOpenError);
  EXPECT_FALSE(q.WriteSettings(dir.File("no/dir/q"), err));
  EXPECT_EQ(err, kQueueFileCreateError);

  // A file of an older version holds records of that version's layout.
  WriteFile(dir.File("old.txt"),
            "ver0.9\r\n1\r\n\"OLD1\",\"S\",\"P\",#TRUE#,1,2,\"\",\"\",#FALSE#,"
            "4,\"\",\"\",\"T1\",\"0\",\"0\",\"\",\"\",\"\",\"\",\"\",\"a\\Qb\""
            "\r\n");
  ASSERT_TRUE(q.ReadSettings(dir.File("old.txt"), err)) << err;
  EXPECT_EQ(q.Version, "0.9");
  ASSERT_EQ(q.QueueEntries.Count(), 1);
  EXPECT_EQ(q.QueueEntries.Item(1)->TemplateIDText, "a\"b");
  EXPECT_EQ(q.QueueEntries.Item(1)->DepositType, 1);
}

// A negative count reads no entry, like a count of 0; only a count that is
// not a number is an error.
TEST(Queue, ReadsANegativeCountAsNoEntries) {
  struct Case {
    std::string count;
    bool ok;
  } cases[] = {
      {"-1", true},   {"-2147483648", true}, {"0", true},
      {" -7 ", true}, {"-1.5", true},        {"-", false},
      {"--1", false}, {"-1e99", false},      {"", false},
  };
  TempDir dir;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.count);
    const std::string path = dir.File("q.txt");
    WriteFile(path, "\"ver0.946\"\r\n" + c.count + "\r\n");
    cQueue q;
    std::string err = "old";
    EXPECT_EQ(q.ReadSettings(path, err), c.ok);
    EXPECT_EQ(err, c.ok ? "" : kQueueFileBadCount);
    EXPECT_EQ(q.QueueEntries.Count(), 0);
    EXPECT_EQ(q.Version, "0.946");
  }
}

TEST(Queue, FindsTheFirstEntryIgnoringCase) {
  cQueue q;
  for (const char* id : {"DOC1", "doc2", "\xC9T\xC9", "Doc2", ""}) {
    q.QueueEntries.Add(Entry(id));
  }
  struct Case {
    const char* wanted;
    int32_t index;  // 0: not found
  } cases[] = {
      {"doc1", 1}, {"DOC1", 1}, {"DOC2", 2},  {"\xE9t\xE9", 3},
      {"", 5},     {"doc", 0},  {"doc1 ", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.wanted);
    int32_t index = -7;
    std::shared_ptr<cQueueEntry> found;
    EXPECT_EQ(q.Find(c.wanted, index, found), c.index != 0);
    EXPECT_EQ(index, c.index != 0 ? c.index : -7);
    EXPECT_EQ(found, c.index != 0 ? q.QueueEntries.Item(c.index) : nullptr);
  }
}

TEST(Queue, SelectsDocumentsToUnpackCaptureAndExport) {
  struct Case {
    int32_t deposit;
    bool unpacked, reject;
    int32_t state;
    bool unpack, capture, do_export;
  } cases[] = {
      {1, false, false, 0, false, true, false},
      {2, false, false, 0, true, false, false},
      {3, false, false, 0, true, false, false},
      {3, true, false, 0, false, true, false},
      {5, false, false, 0, false, true, false},
      {0, false, false, 0, false, true, false},
      {3, false, true, 0, false, false, false},
      {3, false, false, 1, false, false, false},
      {1, true, false, 101, false, false, false},
      {1, true, false, 3, false, false, true},
      {2, false, true, 3, false, false, true},
  };
  cQueue q;
  Ids unpack, capture, to_export;
  int n = 0;
  for (const Case& c : cases) {
    auto e = Entry("E" + std::to_string(++n));
    e->DepositType = c.deposit;
    e->Unpacked = c.unpacked;
    e->Reject = c.reject;
    e->PELINOR_State = c.state;
    q.QueueEntries.Add(e);
    if (c.unpack) unpack.push_back(e->DocId);
    if (c.capture) capture.push_back(e->DocId);
    if (c.do_export) to_export.push_back(e->DocId);
  }
  std::shared_ptr<cQueue> out;
  q.GetDocumentsToUnpack(out);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(DocIds(*out), unpack);
  out = nullptr;
  q.GetDocumentsToCapture(out);
  EXPECT_EQ(DocIds(*out), capture);
  out = nullptr;
  q.FilterToExport(out);
  EXPECT_EQ(DocIds(*out), to_export);
  // Entries are shared with the output, not copied.
  EXPECT_EQ(out->QueueEntries.Item(1), q.QueueEntries.Item(10));
}

TEST(Queue, PrioritisesRejectedRecords) {
  cQueue q;
  for (const char* id : {"A", "r1", "B", "r2", "C"}) {
    auto e = Entry(id);
    e->Reject = id[0] == 'r';
    q.QueueEntries.Add(e);
  }
  struct Case {
    int32_t mode;
    Ids expected;  // after the entry "pre" already in the output
  } cases[] = {
      {1, {"pre", "r1", "r2", "A", "B", "C"}},
      {2, {"pre", "r1", "r2"}},
      {3, {"pre", "A", "B", "C"}},
      {5, {"pre"}},
      {0, {"pre"}},
      {-1, {"pre"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mode);
    auto out = std::make_shared<cQueue>();
    out->QueueEntries.Add(Entry("pre"));
    q.PrioritiseRejectedRecords(c.mode, out);
    EXPECT_EQ(DocIds(*out), c.expected);
  }
  std::shared_ptr<cQueue> empty;
  q.PrioritiseRejectedRecords(5, empty);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(empty->QueueEntries.Count(), 0);
  cQueue none;
  none.PrioritiseRejectedRecords(1, empty);
  EXPECT_EQ(empty->QueueEntries.Count(), 0);
}

TEST(Queue, FiltersIntoTheQueueItself) {
  auto q = std::make_shared<cQueue>();
  for (const char* id : {"A", "B"}) q->QueueEntries.Add(Entry(id));
  q->QueueEntries.Item(2)->Reject = true;
  q->PrioritiseRejectedRecords(1, q);
  EXPECT_EQ(DocIds(*q), (Ids{"A", "B", "B", "A"}));
  q->GetDocumentsToCapture(q);
  EXPECT_EQ(DocIds(*q), (Ids{"A", "B", "B", "A", "A", "A"}));
}

}  // namespace
}  // namespace pelinor

namespace pelinor {
namespace {

TEST(QueueSlots, HoldFreshObjectsAndReleaseThemOnClear) {
  cQueueSlots slots;
  auto first = std::make_shared<cQueueSlot>();
  auto second = std::make_shared<cQueueSlot>();
  ASSERT_NE(first->DocumentData, nullptr);
  ASSERT_NE(first->QueueEntry, nullptr);
  EXPECT_NE(first->QueueEntry, second->QueueEntry);
  std::weak_ptr<cQueueEntry> entry = first->QueueEntry;
  std::weak_ptr<cDocumentData> document = first->DocumentData;
  slots.Slots.Add(first);
  slots.Slots.Add(second);
  first.reset();
  EXPECT_FALSE(entry.expired());
  slots.Clear();
  EXPECT_EQ(slots.Slots.Count(), 0);
  EXPECT_TRUE(entry.expired());
  EXPECT_TRUE(document.expired());
}

}  // namespace
}  // namespace pelinor
