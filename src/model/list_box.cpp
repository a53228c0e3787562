#include "model/list_box.h"

#include <algorithm>

#include "model/text_util.h"

namespace quorvex {

namespace {
const std::string kEmpty;
}

const std::string& ListBox::Item(int index) const {
  if (index < 0 || index >= Count()) return kEmpty;
  return items_[index].text;
}

int ListBox::IndexOfId(std::uint64_t id) const {
  auto it = std::lower_bound(
      items_.begin(), items_.end(), id,
      [](const Entry& e, std::uint64_t v) { return e.id < v; });
  if (it == items_.end() || it->id != id) return -1;
  return static_cast<int>(it - items_.begin());
}

std::vector<std::string> ListBox::Items() const {
  std::vector<std::string> out;
  out.reserve(items_.size());
  for (const auto& e : items_) out.push_back(e.text);
  return out;
}

std::uint64_t ListBox::Add(std::string item) {
  std::uint64_t id = next_id_++;
  IndexAdd(item);
  items_.push_back(Entry{id, std::move(item)});
  Notify(ListChange{ListChange::Op::kAdd, Count() - 1, id, items_.back().text});
  return id;
}

void ListBox::Remove(int index) {
  if (index < 0 || index >= Count()) return;
  Entry gone = std::move(items_[index]);
  items_.erase(items_.begin() + index);
  IndexRemove(gone.text);
  if (selected_ == index) {
    selected_ = -1;
  } else if (selected_ > index) {
    --selected_;
  }
  Notify(ListChange{ListChange::Op::kRemove, index, gone.id, gone.text});
}

bool ListBox::RemoveId(std::uint64_t id) {
  int index = IndexOfId(id);
  if (index < 0) return false;
  Remove(index);
  return true;
}

void ListBox::RemoveIds(const std::vector<std::uint64_t>& ids) {
  // Positions now, in the order given, without ids gone or repeated.
  std::vector<int> order;
  order.reserve(ids.size());
  std::vector<char> marked(items_.size(), 0);
  for (std::uint64_t id : ids) {
    int at = IndexOfId(id);
    if (at < 0 || marked[at]) continue;
    marked[at] = 1;
    order.push_back(at);
  }
  if (order.empty()) return;
  if (order.size() == 1) return Remove(order[0]);

  // The index each removal would have had one by one: its position less
  // the earlier removals above it (a Fenwick tree over the sorted positions).
  std::vector<int> sorted = order;
  std::sort(sorted.begin(), sorted.end());
  std::vector<int> tree(sorted.size() + 1, 0);
  std::vector<ListChange> changes;
  changes.reserve(order.size());
  for (int at : order) {
    int rank = static_cast<int>(
        std::lower_bound(sorted.begin(), sorted.end(), at) - sorted.begin());
    int above = 0;
    for (int i = rank; i > 0; i -= i & -i) above += tree[i];
    for (int i = rank + 1; i < static_cast<int>(tree.size()); i += i & -i)
      ++tree[i];
    changes.push_back(ListChange{ListChange::Op::kRemove, at - above,
                                 items_[at].id, items_[at].text});
  }

  int removed_below_selection = 0;
  bool selection_gone = selected_ >= 0 && marked[selected_];
  size_t out = 0;
  for (size_t i = 0; i < items_.size(); ++i) {
    if (marked[i]) {
      IndexRemove(items_[i].text);
      if (selected_ >= 0 && static_cast<int>(i) < selected_)
        ++removed_below_selection;
      continue;
    }
    if (out != i) items_[out] = std::move(items_[i]);
    ++out;
  }
  items_.resize(out);
  selected_ = selection_gone
                  ? -1
                  : (selected_ >= 0 ? selected_ - removed_below_selection : -1);
  for (const ListChange& c : changes) Notify(c);
}

void ListBox::Clear() {
  items_.clear();
  folded_.clear();
  selected_ = -1;
  Notify(ListChange{ListChange::Op::kClear, -1, 0, {}});
}

int ListBox::FindExact(std::string_view text) const {
  if (!Contains(text)) return -1;
  for (int i = 0; i < Count(); ++i) {
    if (EqualsIgnoreCase(items_[i].text, text)) return i;
  }
  return -1;
}

bool ListBox::Contains(std::string_view text) const {
  return folded_.count(LCase(text)) > 0;
}

void ListBox::Select(int index) {
  const int was = selected_;
  selected_ = (index >= 0 && index < Count()) ? index : -1;
  if (selected_ != was) selection_observers_.Notify(*this);
}

void ListBox::Notify(const ListChange& change) {
  observers_.Notify(*this, change);
}

void ListBox::IndexAdd(const std::string& text) { ++folded_[LCase(text)]; }

void ListBox::IndexRemove(const std::string& text) {
  auto it = folded_.find(LCase(text));
  if (it != folded_.end() && --it->second == 0) folded_.erase(it);
}

bool ListHasItem(const ListBox& list, std::string_view text) {
  if (text.empty()) return false;
  return list.Contains(text);
}

}  // namespace quorvex
