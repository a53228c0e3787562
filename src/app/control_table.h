// Every control a person can press, select or set, declared once: its
// name as scenarios and views say it, its window, its kind and its
// handlers. QuorvexApp's Press, Select and Set dispatch through it, the
// scenario parser checks names against it, and a desktop view layer can
// build its windows' controls from it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvex {

class QuorvexApp;
class ListBox;

enum class ControlKind {
  kButton,    // cmd...: a click
  kLabel,     // lbl...: a click
  kMenu,      // mnu...: a click; a preset group takes its 1-based item
  kList,      // lst...: select an item; a press is its click
  kTab,       // a tab strip: the press names the 1-based tab
  kTextBox,   // txt...: set its text; a press is a key typed in it
              // (Return, or the key code the press names)
  kCheckBox,  // chk...: set 0 or 1
  kComboBox,  // cmb...: set its text
};

struct Control {
  // "cmdStart" on the main window, "frmBanning.lblExit" elsewhere; a
  // control array's member as "frmMessages.txtAdd(0)".
  std::string name;
  std::string window;  // "frmMain", "frmBanning", ...
  ControlKind kind;
  // The indexes a press takes: 0 is a plain click, a preset group's items
  // are 1 to N.
  int min_index = 0;
  int max_index = 0;
  std::function<void(QuorvexApp&, int index)> press{};
  // The list a select acts on.
  std::function<ListBox*(QuorvexApp&)> list{};
  std::function<void(QuorvexApp&, const std::string& value)> set{};

  bool Presses(int index) const {
    return press && index >= min_index && index <= max_index;
  }
};

// The whole table, in window order.
const std::vector<Control>& ControlTable();
// The control of that name, or null.
const Control* FindControl(std::string_view name);

}  // namespace quorvex
