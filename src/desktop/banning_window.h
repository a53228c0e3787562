// frmBanning: the banning options. The controls show the options' model,
// every edit and every choice from a list goes to the model, and lblExit
// saves the options and closes the window. A combo box shows the stored
// value whenever its list closes: a list merely opened, browsed or
// escaped changes nothing.
#pragma once

#include "desktop/form_window.h"
#include "model/controls.h"

namespace quorvex::desktop {

class BanningWindow : public FormWindow {
 public:
  explicit BanningWindow(Desktop& desktop)
      : FormWindow(desktop, "frmBanning.lblExit") {}
  void Open() override;

 protected:
  void OnControl(int id, int code, HWND control) override;

 private:
  void OnCombo(int id, int code, HWND combo);
  // Shows the model's text in the combo box, unless it shows it already.
  void ShowStored(HWND combo, const ComboBox& model);
  ComboBox& Model(int id);

  // Set while a stored value is being shown, so that it is not handed
  // back to the model as an edit.
  bool following_ = false;
};

}  // namespace quorvex::desktop
