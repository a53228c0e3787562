// The subscriptions of one view to the models it shows. A view that goes
// away while its models live on ends them all at once, here, instead of
// leaving observers behind that would call into a dead view.
#pragma once

#include <functional>
#include <utility>
#include <vector>

namespace quorvex {

class Subscriptions {
 public:
  Subscriptions() = default;
  Subscriptions(const Subscriptions&) = delete;
  Subscriptions& operator=(const Subscriptions&) = delete;
  ~Subscriptions() { Clear(); }

  // Subscribes `observer` to `model` (anything with Subscribe returning
  // an id and Unsubscribe taking it). The model must outlive this holder
  // or its next Clear.
  template <typename Model, typename Observer>
  void Add(Model& model, Observer observer) {
    const int id = model.Subscribe(std::move(observer));
    ends_.push_back([&model, id] { model.Unsubscribe(id); });
  }

  // Unsubscribes every one, newest first. Safe from inside an observer
  // being told of a change (a view that closes on a model's change).
  void Clear() {
    std::vector<std::function<void()>> ends = std::move(ends_);
    ends_.clear();
    for (auto it = ends.rbegin(); it != ends.rend(); ++it) (*it)();
  }
  bool empty() const { return ends_.empty(); }

 private:
  std::vector<std::function<void()>> ends_;
};

}  // namespace quorvex
