// The ordering filters: which entries each admits and in what order.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "pelinor/date_text.h"
#include "pelinor/queue.h"
#include "queue_fixtures.h"

namespace pelinor {
namespace {

using testing::DocIds;
using Ids = std::vector<std::string>;

struct Row {
  const char* id;
  const char* progress;  // "I" template identified, "E" fields extracted
  const char* scanned;
  const char* modified = "";
  int32_t state = 0;
  bool reject = false;
  int32_t deposit = 1;
  bool unpacked = false;
};

cQueue MakeQueue(const std::vector<Row>& rows) {
  cQueue q;
  for (const Row& s : rows) {
    auto e = std::make_shared<cQueueEntry>();
    e->DocId = s.id;
    e->TemplateIdentified = std::strchr(s.progress, 'I') != nullptr;
    e->FieldsOCRExtracted = std::strchr(s.progress, 'E') != nullptr;
    e->TimeScanned = s.scanned;
    e->TimeLastModified = s.modified;
    e->PELINOR_State = s.state;
    e->Reject = s.reject;
    e->DepositType = s.deposit;
    e->Unpacked = s.unpacked;
    q.QueueEntries.Add(e);
  }
  return q;
}

TEST(QueueOrder, OrdersByProcessingAndAge) {
  const cQueue q = MakeQueue({
      {"A", "", "2024-05-03 10:00", "2024-05-01"},
      {"B", "E", "2024-05-01 08:00", ""},
      {"C", "I", "", "2024-05-02"},
      {"D", "", "5/2/2024 9:00 AM", "2024-05-04"},
      {"E", "I", "2024-05-02 12:00", "garbage"},
      {"F", "", "", ""},
      {"G", "", "2024-05-03 10:00", "2024-05-01"},
      {"H", "IE", "2024-04-30", "2024-05-05"},
      {"I", "I", "not a date", ""},
  });
  struct Case {
    bool most;
    int32_t time_mode;
    Ids expected;
  } cases[] = {
      {false, kQueueTimeScanned, {"D", "A", "G", "F", "E", "C", "I", "H", "B"}},
      {false, 7, {"D", "A", "G", "F", "E", "C", "I", "H", "B"}},
      {false,
       kQueueTimeLastModified,
       {"A", "G", "D", "F", "C", "E", "I", "H", "B"}},
      {true, kQueueTimeScanned, {"H", "B", "E", "C", "I", "D", "A", "G", "F"}},
      {true,
       kQueueTimeLastModified,
       {"H", "B", "C", "E", "I", "A", "G", "D", "F"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Show(c.most) + " " + std::to_string(c.time_mode));
    auto out = std::make_shared<cQueue>();
    out->QueueEntries.Add(q.QueueEntries.Item(6));  // kept in front
    if (c.most) {
      q.PrioritiseOldestMostProcessed(out, c.time_mode);
    } else {
      q.PrioritiseOldestLeastProcessed(out, c.time_mode);
    }
    Ids expected = c.expected;
    expected.insert(expected.begin(), "F");
    EXPECT_EQ(DocIds(*out), expected);
  }
  std::shared_ptr<cQueue> out;
  cQueue().PrioritiseOldestLeastProcessed(out, 0);
  ASSERT_NE(out, nullptr);
  EXPECT_EQ(out->QueueEntries.Count(), 0);
}

TEST(QueueOrder, PrioritisesViewableDocuments) {
  const cQueue q = MakeQueue({
      {"V1", "", "2024-05-01", "2024-05-09"},
      {"V2", "IE", "2024-04-01", "", 0, false, 3, false},  // still packed
      {"V3", "IE", "2024-05-03", "2024-05-01", 0, false, 3, true},
      {"V4", "I", "2024-05-02", "", 0, true},
      {"V5", "IE", "2024-04-01", "", 3},
      {"V6", "IE", "2024-05-02", "2024-05-02"},
      {"V7", "", "", "", 0, true},
      {"V8", "IE", "2024-04-01", "", 101},
  });
  struct Case {
    int32_t mode;
    int32_t time_mode;
    Ids expected;
  } cases[] = {
      {kRejectedFirst, kQueueTimeScanned, {"V4", "V7", "V6", "V3", "V1"}},
      {kRejectedOnly, kQueueTimeScanned, {"V4", "V7"}},
      {kNotRejectedOnly, kQueueTimeScanned, {"V6", "V3", "V1"}},
      {kNotRejectedOnly, kQueueTimeLastModified, {"V3", "V6", "V1"}},
      {4, kQueueTimeScanned, {}},
      {0, kQueueTimeScanned, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mode);
    std::shared_ptr<cQueue> out;
    q.PrioritiseViewableDocuments(c.mode, out, c.time_mode);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(DocIds(*out), c.expected);
  }
}

TEST(QueueOrder, PrioritisesViewableDeferredDocuments) {
  const cQueue q = MakeQueue({
      {"D1", "", "2024-05-03", "", 102},
      {"D2", "", "2024-05-04", "", 101},
      {"D3", "IE", "2024-05-01", "", 102},
      {"D4", "", "2024-05-01", "", 99},
      {"D5", "", "2024-05-01", "", 200},
      {"D6", "", "", "", 100, true},
      {"D7", "", "2024-05-01", "", 199, false, 2, false},  // still packed
      {"D8", "", "2024-05-04", "2024-01-01", 101},
      {"D9", "", "", "", 199, false, 2, true},
      {"D10", "", "2024-05-01", "", 0},
  });
  struct Case {
    int32_t mode;
    Ids expected;
  } cases[] = {
      {kRejectedFirst, {"D6", "D2", "D8", "D3", "D1", "D9"}},
      {kRejectedOnly, {"D6"}},
      {kNotRejectedOnly, {"D2", "D8", "D3", "D1", "D9"}},
      {0, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.mode);
    std::shared_ptr<cQueue> out;
    q.PrioritiseViewableDeferredDocuments(c.mode, out);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(DocIds(*out), c.expected);
  }
}

TEST(QueueOrder, PrioritisesOneState) {
  const cQueue q = MakeQueue({
      {"S1", "IE", "2024-05-01", "", 3},
      {"S2", "", "2024-05-01", "", 0},
      {"S3", "", "2024-05-05", "", 3},
      {"S4", "", "2024-05-02", "2024-06-01", 3},
      {"S5", "", "2024-05-01", "", 101},
      {"S6", "I", "", "", 3},
  });
  struct Case {
    int32_t state;
    Ids expected;
  } cases[] = {
      {3, {"S4", "S3", "S6", "S1"}},
      {101, {"S5"}},
      {0, {"S2"}},
      {7, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.state);
    std::shared_ptr<cQueue> out;
    q.PrioritisePELINORStates(c.state, out);
    ASSERT_NE(out, nullptr);
    EXPECT_EQ(DocIds(*out), c.expected);
  }
}

// On a large random queue the least-processed order is sorted by its key
// and keeps queue order among equal keys; entries are shared.
TEST(QueueOrder, IsStableOnLargeQueues) {
  const char* dates[] = {
      "",           "2024-05-01", "2024-05-02 10:00", "5/2/2024 10:00 AM",
      "2023-12-31", "x"};
  double serial[6] = {0, 0, 0, 0, 0, 0};
  ParseDateText(dates[1], serial[1]);
  ParseDateText(dates[2], serial[2]);
  ParseDateText(dates[3], serial[3]);
  ParseDateText(dates[4], serial[4]);
  std::mt19937 rng(7);
  cQueue q;
  std::vector<std::tuple<int, bool, double, int>> keys;  // by DocId
  for (int i = 0; i < 20000; ++i) {
    auto e = std::make_shared<cQueueEntry>();
    e->DocId = std::to_string(i);
    e->TemplateIdentified = rng() % 2;
    e->FieldsOCRExtracted = rng() % 3 == 0;
    const size_t d = rng() % 6;
    e->TimeScanned = dates[d];
    const bool undated = d == 0 || d == 5;
    keys.emplace_back(e->FieldsOCRExtracted ? 2 : e->TemplateIdentified,
                      undated, serial[d], i);
    q.QueueEntries.Add(e);
  }
  std::shared_ptr<cQueue> out;
  q.PrioritiseOldestLeastProcessed(out, kQueueTimeScanned);
  ASSERT_EQ(out->QueueEntries.Count(), q.QueueEntries.Count());
  for (int i = 1; i < out->QueueEntries.Count(); ++i) {
    const auto& a = keys[std::stoul(out->QueueEntries.Item(i)->DocId)];
    const auto& b = keys[std::stoul(out->QueueEntries.Item(i + 1)->DocId)];
    ASSERT_LT(a, b) << i;  // the index breaks every tie
  }
  const int first = std::stoi(out->QueueEntries.Item(1)->DocId);
  EXPECT_EQ(out->QueueEntries.Item(1), q.QueueEntries.Item(first + 1));
}

}  // namespace
}  // namespace pelinor
