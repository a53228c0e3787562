// The observers of one model: views and transcripts subscribe, get an id
// back, and unsubscribe with it when they go. An observer may unsubscribe
// itself (or another) while it is being told of a change.
#pragma once

#include <functional>
#include <map>
#include <utility>
#include <vector>

namespace quorvex {

template <typename... Args>
class Observers {
 public:
  using Observer = std::function<void(Args...)>;

  int Add(Observer o) {
    observers_.emplace(next_id_, std::move(o));
    return next_id_++;
  }
  void Remove(int id) { observers_.erase(id); }
  int size() const { return static_cast<int>(observers_.size()); }

  void Notify(Args... args) const {
    // Ids first: an observer that unsubscribes during the call is not
    // called afterwards, and the map is never walked while it changes.
    std::vector<int> ids;
    ids.reserve(observers_.size());
    for (const auto& [id, o] : observers_) ids.push_back(id);
    for (int id : ids) {
      auto it = observers_.find(id);
      if (it == observers_.end()) continue;
      Observer o = it->second;
      o(args...);
    }
  }

 private:
  std::map<int, Observer> observers_;
  int next_id_ = 1;
};

}  // namespace quorvex
