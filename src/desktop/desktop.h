// The desktop program's windows around one QuorvexApp: the main window and
// the small windows it opens. A person's actions are handed to the core
// through the host, so they run from the core's loop (or from inside one
// of its waits), never in the middle of a client operation.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <string>

#include "app/quorvex_app.h"
#include "model/form.h"
#include "model/subscriptions.h"
#include "ports/prompter.h"
#include "win32/win32_host.h"

namespace quorvex::desktop {

class MainWindow;
class BanningWindow;
class RoomWindow;
class MessagesWindow;
class BusterWindow;
class InfoWindow;
class ChatroomWindow;
class Window;

class Desktop {
 public:
  Desktop(QuorvexApp& app, win32::Win32Host& host, Prompter& prompter);
  ~Desktop();

  static void RegisterClasses();

  QuorvexApp& app() { return app_; }
  Prompter& prompter() { return prompter_; }
  // Runs `fn` from the core's loop.
  void Post(std::function<void()> fn) { host_.Schedule(0, std::move(fn)); }

  MainWindow& main() { return *main_; }
  // A pick from one of the main window's menus, by entry name: pressed in
  // the core, where a window's entry opens its model (and so its view).
  void RunMenu(const std::string& name);
  // The right click on lstBanned: the core reads the room and opens the
  // room people window.
  void OpenRoom();
  // The program has ended: every window goes, and so does the process.
  void Close();
  // A small window's title: the caption of the menu entry that opens it,
  // as a person reads it.
  std::string Title(const char* entry) const;

 private:
  POINT Place(HWND opening) const;
  bool Keyboard(MSG& msg);
  // Every small window opens and closes with its model, whoever opened or
  // closed it (a menu entry, a key, a scenario or the core itself).
  void FollowWindows();
  void Follow(Form& model, Window& view, std::function<void()> open);
  void OpenAbout();
  void OpenCredits();

  QuorvexApp& app_;
  win32::Win32Host& host_;
  Prompter& prompter_;
  std::unique_ptr<MainWindow> main_;
  std::unique_ptr<BanningWindow> banning_;
  std::unique_ptr<RoomWindow> room_;
  std::unique_ptr<MessagesWindow> messages_;
  std::unique_ptr<BusterWindow> buster_;
  std::unique_ptr<ChatroomWindow> chatroom_;
  std::unique_ptr<InfoWindow> about_;
  std::unique_ptr<InfoWindow> credits_;
  // The views' subscriptions to their models; ended before the views go.
  Subscriptions windows_;
};

}  // namespace quorvex::desktop
