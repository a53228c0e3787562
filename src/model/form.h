// One window of the program as a model: it is open or closed, and views
// hear when that changes. The controls of a window are models of their
// own (list boxes, labels, text boxes) held beside it.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "model/observers.h"

namespace quorvex {

class Form {
 public:
  using Observer = std::function<void(const Form&)>;

  explicit Form(std::string name) : name_(std::move(name)) {}
  Form(const Form&) = delete;
  Form& operator=(const Form&) = delete;

  const std::string& name() const { return name_; }
  bool open() const { return open_; }
  // Open and Close tell observers only of a real change.
  void Open() { Change(true); }
  void Close() { Change(false); }
  // A minimised window stays open; a view restores it.
  bool minimized() const { return minimized_; }
  void Minimize() { SetMinimized(true); }
  void Restore() { SetMinimized(false); }

  int Subscribe(Observer o) { return observers_.Add(std::move(o)); }
  void Unsubscribe(int id) { observers_.Remove(id); }

 private:
  void Change(bool open) {
    if (open == open_) return;
    open_ = open;
    observers_.Notify(*this);
  }

  void SetMinimized(bool on) {
    if (on == minimized_) return;
    minimized_ = on;
    observers_.Notify(*this);
  }

  std::string name_;
  bool open_ = false;
  bool minimized_ = false;
  Observers<const Form&> observers_;
};

}  // namespace quorvex
