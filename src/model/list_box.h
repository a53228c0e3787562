// A list box as the program's windows hold it: ordered text items, a
// selection, the list box's own exact case-insensitive search, and change
// notification so that views and the transcript follow it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/observers.h"

namespace quorvex {

struct ListChange {
  enum class Op { kAdd, kRemove, kClear };
  Op op;
  int index = -1;        // position of the item (add: where it went)
  std::uint64_t id = 0;  // the item's stable id (see ListBox::IdAt)
  std::string item;      // the item's text (empty for kClear)
};

class ListBox {
 public:
  using Observer = std::function<void(const ListBox&, const ListChange&)>;

  explicit ListBox(std::string name) : name_(std::move(name)) {}
  ListBox(const ListBox&) = delete;
  ListBox& operator=(const ListBox&) = delete;

  const std::string& name() const { return name_; }
  int Count() const { return static_cast<int>(items_.size()); }
  bool Empty() const { return items_.empty(); }
  // The item at `index`, or an empty text when out of range.
  const std::string& Item(int index) const;
  // Every item gets an id when added; ids grow in list order, so an item's
  // position can be found by binary search (IndexOfId).
  std::uint64_t IdAt(int index) const { return items_[index].id; }
  int IndexOfId(std::uint64_t id) const;  // -1 when gone
  std::vector<std::string> Items() const;

  // AddItem at the end; returns the new item's id.
  std::uint64_t Add(std::string item);
  void Remove(int index);  // out of range does nothing
  bool RemoveId(std::uint64_t id);
  // Removes many items in one pass; observers hear of each removal in the
  // order of `ids`, with the index it would have had removed one by one.
  // Ids no longer in the list are passed over.
  void RemoveIds(const std::vector<std::uint64_t>& ids);
  void Clear();

  // LB_FINDSTRINGEXACT from the start: exact match ignoring case.
  int FindExact(std::string_view text) const;
  bool Contains(std::string_view text) const;

  // ListIndex: -1 when nothing is selected.
  int selected() const { return selected_; }
  void Select(int index);

  int Subscribe(Observer observer) {
    return observers_.Add(std::move(observer));
  }
  void Unsubscribe(int id) { observers_.Remove(id); }
  // Selection changes (ListIndex), told apart from item changes.
  int SubscribeSelection(std::function<void(const ListBox&)> observer) {
    return selection_observers_.Add(std::move(observer));
  }
  void UnsubscribeSelection(int id) { selection_observers_.Remove(id); }

 private:
  struct Entry {
    std::uint64_t id;
    std::string text;
  };
  void Notify(const ListChange& change);
  void IndexAdd(const std::string& text);
  void IndexRemove(const std::string& text);

  std::string name_;
  std::vector<Entry> items_;
  std::uint64_t next_id_ = 1;
  int selected_ = -1;
  // Lower-cased text -> number of items with it, for O(1) exact searches.
  std::unordered_map<std::string, int> folded_;
  Observers<const ListBox&, const ListChange&> observers_;
  Observers<const ListBox&> selection_observers_;
};

// "ListHasItem": false for an empty text, otherwise the exact search.
bool ListHasItem(const ListBox& list, std::string_view text);

}  // namespace quorvex
