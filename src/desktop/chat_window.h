// frmChatroom, the serve-and-chat window: the room's chat mirrored line
// by line in txtChat, the people in lstPeople with their count in
// lblPeople (both read again on the form's timer), and txtSend, where
// Return says the line (queued behind the server's own output while it
// serves). Every control shows the core's model of it.
#pragma once

#include "desktop/form_window.h"

namespace quorvex::desktop {

class ChatroomWindow : public FormWindow {
 public:
  explicit ChatroomWindow(Desktop& desktop)
      : FormWindow(desktop, "frmChatroom.lblExit") {}
  // Shows the form the core has loaded (nothing when it has not).
  void Open() override;

  static constexpr int kWidth = 320;
  static constexpr int kHeight = 236;

 protected:
  void OnControl(int id, int code, HWND control) override;

 private:
  void txtSend_Return();

  // Set while the model's empty line is being shown, so that the change
  // is not handed back to the model.
  bool following_ = false;
};

}  // namespace quorvex::desktop
