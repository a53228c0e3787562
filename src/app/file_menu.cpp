#include "app/file_menu.h"

#include "settings/inserts.h"

namespace quorvex {

void mnuContactInfo_Click(Prompter& prompter) {
  prompter.MsgBox(kContactInfoText, kContactInfoTitle);
}

void mnuWeb_Click(Prompter& prompter) {
  prompter.MsgBox(kWebAddress, kWebTitle);
}

}  // namespace quorvex
