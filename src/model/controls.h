// Small control models for the program's option windows: text boxes,
// check boxes and editable combo boxes. A combo box's value is its text.
#pragma once

#include <string>
#include <vector>

namespace quorvex {

struct TextBox {
  std::string text;
  bool enabled = true;
};

struct CheckBox {
  int value = 0;  // 1 when checked
};

struct ComboBox {
  std::string text;
  std::vector<std::string> choices;
};

}  // namespace quorvex
