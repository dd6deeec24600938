#include "pelinor/collection.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace pelinor {
namespace {

TEST(Collection, IsOneBasedAndOrdered) {
  Collection<std::string> c;
  c.Add("a");
  c.Add("b", "KeyB");
  c.Add("c");
  EXPECT_EQ(c.Count(), 3);
  EXPECT_EQ(c.Item(1), "a");
  EXPECT_EQ(c.Item(3), "c");
  EXPECT_EQ(c.Item(0), "");
  EXPECT_EQ(c.Item(4), "");
  EXPECT_EQ(c.Item("keyb"), "b");
  EXPECT_EQ(c.Item("missing"), "");
  std::vector<std::string> seen(c.begin(), c.end());
  EXPECT_EQ(seen, (std::vector<std::string>{"a", "b", "c"}));
}

TEST(Collection, KeysAreUniqueIgnoringCaseAndSurviveRemoval) {
  Collection<std::string> c;
  EXPECT_TRUE(c.Add("1", "\xE9t\xE9"));
  EXPECT_FALSE(c.Add("2", "\xC9T\xC9"));
  EXPECT_TRUE(c.Add("3", "other"));
  EXPECT_TRUE(c.Add("4", "last"));
  EXPECT_TRUE(c.Remove(1));
  EXPECT_EQ(c.IndexOf("OTHER"), 1);
  EXPECT_EQ(c.Item("last"), "4");
  EXPECT_FALSE(c.Contains("\xE9t\xE9"));
  EXPECT_TRUE(c.Add("5", "\xE9t\xE9"));
  EXPECT_TRUE(c.Remove("other"));
  EXPECT_EQ(c.Key(1), "last");
  EXPECT_FALSE(c.Remove(9));
}

TEST(Collection, ClearReleasesFromLastToFirst) {
  std::vector<int> order;
  struct Tracker {
    std::vector<int>* order;
    int id;
    ~Tracker() { order->push_back(id); }
  };
  {
    Collection<std::shared_ptr<Tracker>> c;
    for (int i = 1; i <= 3; ++i) {
      c.Add(std::make_shared<Tracker>(Tracker{&order, i}));
    }
    order.clear();  // the temporaries above were moved-from copies
    ClearCollection(c);
    EXPECT_EQ(c.Count(), 0);
    EXPECT_EQ(c.Item(1), nullptr);
  }
  EXPECT_EQ(order, (std::vector<int>{3, 2, 1}));
}

TEST(Collection, CopyEachMakesNewItemsInOrderSkippingEmptyOnes) {
  Collection<std::shared_ptr<int>> from;
  from.Add(std::make_shared<int>(1), "one");
  from.Add(nullptr);
  from.Add(std::make_shared<int>(3));
  auto to = CopyEach(
      from, [](const int& v) { return std::make_shared<int>(v * 10); });
  ASSERT_EQ(to.Count(), 2);
  EXPECT_EQ(*to.Item(1), 10);
  EXPECT_EQ(*to.Item(2), 30);
  EXPECT_NE(to.Item(1), from.Item(1));
  EXPECT_FALSE(to.Contains("one"));
}

}  // namespace
}  // namespace pelinor
