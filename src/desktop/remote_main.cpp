// quorvex-remote: drives a running quorvex.exe from outside, for the
// screenshot script. Each argument pair is one step, run in order:
//   menu ENTRY      picks a menu entry of the main window
//   click NAME      clicks cmdStart, cmdPause, lblExit or lstBanned
//   rclick NAME     right-clicks lstBanned
//   yes TITLE       answers yes to the yes/no box of that title
//   show CLASS      waits until the window class is showing
//   close CLASS     clicks that window's lblExit
//   say TEXT        types TEXT in the serve-and-chat window's line, Return
//   wait SECONDS    lets the program run
//   where TITLE     prints where the dialog box of that title stands, as
//                   "X Y WIDTH HEIGHT"
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <map>
#include <string>
#include <thread>

#include "desktop/control_ids.h"
#include "desktop/remote.h"
#include "desktop/wide_text.h"

int main(int argc, char** argv) {
  using namespace quorvex::desktop;
  using namespace quorvex::desktop::remote;
  // Found when a step needs it: the splash window comes before it.
  HWND main_window = nullptr;
  auto main_needed = [&main_window] {
    if (!main_window) main_window = WaitWindow(kMainClass, nullptr, 60);
    return main_window != nullptr;
  };
  const std::map<std::string, int> controls = {{"cmdStart", kIdCmdStart},
                                               {"cmdPause", kIdCmdPause},
                                               {"lblExit", kIdLblExit},
                                               {"lstBanned", kIdLstBanned}};
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string verb = argv[i], arg = argv[i + 1];
    bool ok = true;
    if ((verb == "menu" || verb == "click" || verb == "rclick") &&
        !main_needed()) {
      std::fprintf(stderr, "quorvex-remote: the main window is not there\n");
      return 1;
    }
    if (verb == "menu") {
      PickMenu(main_window, arg);
    } else if (verb == "click" || verb == "rclick") {
      HWND c =
          GetDlgItem(main_window, controls.count(arg) ? controls.at(arg) : 0);
      ok = c != nullptr;
      if (ok) verb == "click" ? Click(c) : RightClick(c);
    } else if (verb == "yes") {
      HWND box = WaitDialog(arg, 60);
      ok = box != nullptr;
      if (ok) PressDialogButton(box, IDYES);
    } else if (verb == "show") {
      ok = WaitWindow(Wide(arg).c_str(), nullptr, 30) != nullptr;
    } else if (verb == "close") {
      HWND w = FindWindowW(Wide(arg).c_str(), nullptr);
      ok = w != nullptr;
      // The message editor closes with cmdExit; the others with lblExit.
      HWND exit = w ? GetDlgItem(w, kIdLblExit) : nullptr;
      if (ok) Click(exit ? exit : GetDlgItem(w, kIdCmdExit));
      WaitFor([&] { return !Showing(Wide(arg).c_str()); }, 10);
    } else if (verb == "say") {
      HWND w = WaitWindow(kChatroomClass, nullptr, 30);
      HWND line = w ? GetDlgItem(w, kIdTxtSend) : nullptr;
      ok = line != nullptr;
      if (ok) {
        SetText(line, arg);
        PressReturn(line);
      }
    } else if (verb == "where") {
      HWND box = WaitDialog(arg, 60);
      RECT rc{};
      ok = box != nullptr && GetWindowRect(box, &rc);
      if (ok)
        std::printf("%ld %ld %ld %ld\n", rc.left, rc.top, rc.right - rc.left,
                    rc.bottom - rc.top);
    } else if (verb == "wait") {
      std::this_thread::sleep_for(std::chrono::milliseconds(
          static_cast<int>(std::atof(arg.c_str()) * 1000)));
    }
    if (!ok) {
      std::fprintf(stderr, "quorvex-remote: %s %s failed\n", verb.c_str(),
                   arg.c_str());
      return 1;
    }
  }
  return 0;
}
