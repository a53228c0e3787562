#include "app/small_windows.h"

#include "settings/inserts.h"
#include "settings/settings.h"

namespace quorvex {

void FrmAbout::Form_Load() {
  picTitle.Set(kWindowTitle);
  lblName.Set(std::string("quorvex mail server v") + kVersion);
  form.Open();
}

void FrmCredits::Form_Load() {
  picTitle.Set(kWindowTitle);
  form.Open();
}

void mnuContactInfo_Click(Prompter& prompter) {
  prompter.MsgBox(kContactInfoText, kContactInfoTitle);
}

void mnuWeb_Click(Prompter& prompter) {
  prompter.MsgBox(kWebAddress, kWebTitle);
}

}  // namespace quorvex
