// frmMessages: the message editor over the core's message texts (the
// chat and thank-you lists, the entry lines and the mail text).
#pragma once

#include "desktop/window.h"

namespace quorvex::desktop {

class Desktop;

class MessagesWindow : public SmallWindow {
 public:
  explicit MessagesWindow(Desktop& desktop) : desktop_(desktop) {}
  void Open();

 protected:
  LRESULT Handle(UINT msg, WPARAM wp, LPARAM lp) override;
  void OnControl(int id, int code, HWND control) override;
  // Escape leaves as exit does, without saving.
  void Escape() override;

 private:
  // Shows the model's page and texts (the core changes them on inserts,
  // Returns and tab clicks).
  void Refresh();
  void Close(const char* button);
  void Insert(int index);

  Desktop& desktop_;
  bool refreshing_ = false;
};

}  // namespace quorvex::desktop
