// frmMain: the drawn title bar with lblMinimize and lblExit, the status
// strip, the six counters, lstMails, lstPending and lstBanned, and the four
// buttons, each bound to the core's model of it.
#pragma once

#include <string>

#include "desktop/window.h"

namespace quorvex::desktop {

class Desktop;

// The main window's text (its task-bar button, Alt+Tab) once `lost` lines
// of Quorvex.log could not be written.
std::string LostLogLinesTitle(int lost);

class MainWindow : public Window {
 public:
  explicit MainWindow(Desktop& desktop) : desktop_(desktop) {}
  void Create();

  static constexpr int kWidth = 320;
  static constexpr int kHeight = 280;

 protected:
  LRESULT Handle(UINT msg, WPARAM wp, LPARAM lp) override;
  void OnCommand(int id, int code, HWND control) override;

 private:
  void CreateControls();
  void Bind();
  void PopUp(const std::string& menu, int button_id);
  void lstBanned_MouseDown(UINT msg);
  void lstPending_MouseDown(UINT msg);

  Desktop& desktop_;
};

}  // namespace quorvex::desktop
