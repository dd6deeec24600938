// pelinor::Collection<T>: the one-based ordered collection that every
// object of the library uses for its children and lists.
//
// Items keep the order in which they were added. An item may carry a text
// key; keys are unique and compared case-insensitively (Windows-1252).
// Object collections hold std::shared_ptr<T>, string lists std::string.
//
// Thread safety: not synchronised; a collection is used by one thread at a
// time.

#ifndef PELINOR_COLLECTION_H_
#define PELINOR_COLLECTION_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "pelinor/text.h"

namespace pelinor {

template <typename T>
class Collection {
 public:
  using value_type = T;
  using const_iterator = typename std::vector<T>::const_iterator;
  using iterator = typename std::vector<T>::iterator;

  // Count()
  //
  // The number of items.
  int Count() const { return static_cast<int>(items_.size()); }

  // Item()
  //
  // The item at the one-based index `i`, or a default-constructed value
  // (an empty pointer or text) when `i` is out of range.
  const T& Item(int i) const {
    if (i < 1 || i > Count()) return Empty();
    return items_[static_cast<size_t>(i - 1)];
  }

  // Item()
  //
  // The item whose key equals `key` ignoring case, or a default value.
  const T& Item(std::string_view key) const {
    int i = IndexOf(key);
    return i == 0 ? Empty() : items_[static_cast<size_t>(i - 1)];
  }

  // IndexOf()
  //
  // The one-based index of the item keyed `key`, or 0.
  int IndexOf(std::string_view key) const {
    if (keys_.empty()) return 0;
    auto it = keys_.find(UCase(key));
    return it == keys_.end() ? 0 : static_cast<int>(it->second) + 1;
  }

  // Contains()
  //
  // True when an item is keyed `key`.
  bool Contains(std::string_view key) const { return IndexOf(key) != 0; }

  // Add()
  //
  // Appends `item`, keyed by `key` when it is not empty. Returns false and
  // adds nothing when another item already has that key.
  bool Add(T item, std::string_view key = {}) {
    if (!key.empty()) {
      std::string k = UCase(key);
      if (keys_.count(k) != 0) return false;
      keys_.emplace(std::move(k), items_.size());
      // Keys are recorded per item only once a collection uses them.
      if (item_keys_.empty()) item_keys_.resize(items_.size());
    }
    items_.push_back(std::move(item));
    if (!item_keys_.empty() || !key.empty()) item_keys_.emplace_back(key);
    return true;
  }

  // Reserve()
  //
  // Makes room for `n` items without changing the collection.
  void Reserve(int n) {
    if (n <= 0) return;
    items_.reserve(static_cast<size_t>(n));
  }

  // Remove()
  //
  // Removes the item at the one-based index `i`; false when out of range.
  bool Remove(int i) {
    if (i < 1 || i > Count()) return false;
    size_t at = static_cast<size_t>(i - 1);
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    if (!item_keys_.empty()) {
      item_keys_.erase(item_keys_.begin() + static_cast<std::ptrdiff_t>(at));
      Reindex();
    }
    return true;
  }

  // Remove()
  //
  // Removes the item keyed `key`; false when there is none.
  bool Remove(std::string_view key) { return Remove(IndexOf(key)); }

  // Clear()
  //
  // Removes every item, from the last to the first, so owned objects are
  // released in that order.
  void Clear() {
    while (!items_.empty()) items_.pop_back();
    item_keys_.clear();
    keys_.clear();
  }

  // Key()
  //
  // The key the item at index `i` was added with ("" when none).
  const std::string& Key(int i) const {
    static const std::string kNone;
    if (i < 1 || i > Count() || item_keys_.empty()) return kNone;
    return item_keys_[static_cast<size_t>(i - 1)];
  }

  const_iterator begin() const { return items_.begin(); }
  const_iterator end() const { return items_.end(); }
  iterator begin() { return items_.begin(); }
  iterator end() { return items_.end(); }

 private:
  static const T& Empty() {
    static const T kEmpty{};
    return kEmpty;
  }

  void Reindex() {
    keys_.clear();
    for (size_t j = 0; j < item_keys_.size(); ++j) {
      if (!item_keys_[j].empty()) keys_.emplace(UCase(item_keys_[j]), j);
    }
  }

  std::vector<T> items_;
  std::vector<std::string> item_keys_;  // empty while no item has a key
  std::unordered_map<std::string, size_t> keys_;
};

// CopyEach()
//
// A new collection holding `make(*item)` for each non-empty item of
// `items`, in order; keys are not carried over. The way owners copy their
// children deeply.
template <typename T, typename Make>
auto CopyEach(const Collection<std::shared_ptr<T>>& items, Make make) {
  Collection<decltype(make(std::declval<const T&>()))> out;
  out.Reserve(items.Count());
  for (const auto& item : items) {
    if (item != nullptr) out.Add(make(*item));
  }
  return out;
}

// FindNamed()
//
// The first non-empty item of `items` whose text member `name_of` equals
// `name` ignoring case, or null. The pointer is to the collection's own
// element: valid while the collection is not changed, and no reference
// count is touched to find it.
template <typename T>
const std::shared_ptr<T>* FindNamed(const Collection<std::shared_ptr<T>>& items,
                                    std::string_view name,
                                    std::string T::*name_of) {
  for (const auto& item : items) {
    if (item != nullptr && EqualsIgnoreCase((*item).*name_of, name)) {
      return &item;
    }
  }
  return nullptr;
}

// ClearCollection()
//
// Removes the items of `c` one by one from the last to the first.
template <typename T>
void ClearCollection(Collection<T>& c) {
  c.Clear();
}

}  // namespace pelinor

#endif  // PELINOR_COLLECTION_H_
