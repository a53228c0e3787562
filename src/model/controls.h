// Small control models for the program's windows: text boxes, check boxes
// and editable combo boxes. A combo box's value is its text. Changes made
// through Set tell the observers, so that a view can follow any control.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "model/observers.h"

namespace quorvex {

struct TextBox {
  std::string text;
  bool enabled = true;

  void Set(std::string t) {
    if (t == text) return;
    text = std::move(t);
    observers.Notify(*this);
  }
  void SetEnabled(bool on) {
    if (on == enabled) return;
    enabled = on;
    observers.Notify(*this);
  }
  int Subscribe(std::function<void(const TextBox&)> o) {
    return observers.Add(std::move(o));
  }
  void Unsubscribe(int id) { observers.Remove(id); }
  Observers<const TextBox&> observers{};
};

struct CheckBox {
  int value = 0;  // 1 when checked

  void Set(int v) {
    if (v == value) return;
    value = v;
    observers.Notify(*this);
  }
  int Subscribe(std::function<void(const CheckBox&)> o) {
    return observers.Add(std::move(o));
  }
  void Unsubscribe(int id) { observers.Remove(id); }
  Observers<const CheckBox&> observers{};
};

struct ComboBox {
  std::string text;
  std::vector<std::string> choices;

  void Set(std::string t) {
    if (t == text) return;
    text = std::move(t);
    observers.Notify(*this);
  }
  int Subscribe(std::function<void(const ComboBox&)> o) {
    return observers.Add(std::move(o));
  }
  void Unsubscribe(int id) { observers.Remove(id); }
  Observers<const ComboBox&> observers{};
};

}  // namespace quorvex
