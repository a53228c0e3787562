#include "desktop/desktop.h"

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include "desktop/band.h"
#include "desktop/banning_window.h"
#include "desktop/buster_window.h"
#include "desktop/chat_window.h"
#include "desktop/control_ids.h"
#include "desktop/info_windows.h"
#include "desktop/main_window.h"
#include "desktop/menu_popup.h"
#include "desktop/messages_window.h"
#include "desktop/room_window.h"

namespace quorvex::desktop {

Desktop::Desktop(QuorvexApp& app, win32::Win32Host& host, Prompter& prompter)
    : app_(app),
      host_(host),
      prompter_(prompter),
      main_(std::make_unique<MainWindow>(*this)),
      banning_(std::make_unique<BanningWindow>(*this)),
      room_(std::make_unique<RoomWindow>(*this)),
      messages_(std::make_unique<MessagesWindow>(*this)),
      buster_(std::make_unique<BusterWindow>(*this)),
      chatroom_(std::make_unique<ChatroomWindow>(*this)),
      about_(std::make_unique<InfoWindow>()),
      credits_(std::make_unique<InfoWindow>()) {
  main_->Create();
}

Desktop::~Desktop() = default;

void Desktop::RegisterClasses() {
  INITCOMMONCONTROLSEX icc{sizeof(icc), ICC_TAB_CLASSES | ICC_WIN95_CLASSES};
  InitCommonControlsEx(&icc);
  HINSTANCE instance = GetModuleHandleW(nullptr);
  RegisterBandClass(instance);
  for (const wchar_t* c :
       {kMainClass, kSplashClass, kBanningClass, kRoomClass, kMessagesClass,
        kBusterClass, kAboutClass, kCreditsClass, kChatroomClass})
    Window::Register(instance, c);
}

POINT BesideMain(const Desktop& desktop) {
  RECT rc{80, 60, 0, 0};
  HWND main = const_cast<Desktop&>(desktop).main().hwnd();
  if (main) GetWindowRect(main, &rc);
  return {rc.right + 8, rc.top};
}

void Desktop::RunMenu(const std::string& name) {
  const POINT at = BesideMain(*this);
  if (name == "mnuBanOpts") {
    Post([this] { app_.Press("mnuBanOpts"); });
    banning_->Open(at);
  } else if (name == "mnuMessages") {
    Post([this, at] {
      app_.Press("mnuMessages");
      messages_->Open(at);
    });
  } else if (name == "mnuRoomBuster") {
    Post([this, at] {
      app_.Press("mnuRoomBuster");
      buster_->Open(at);
    });
  } else if (name == "mnuServeNChat") {
    Post([this, at] {
      app_.Press("mnuServeNChat");
      chatroom_->Open(at);
    });
  } else if (name == "mnuAbout") {
    Post([this, at] {
      app_.Press("mnuAbout");
      const FrmAbout& a = app_.frmAbout();
      about_->Open(kAboutClass, "about",
                   a.lblName.caption() + "\r\n" + a.lblFor.caption() +
                       "\r\n\r\n" + a.lblAuthor.caption() + "\r\n" +
                       a.lblArt.caption(),
                   at);
    });
  } else if (name == "mnuCredits") {
    Post([this, at] {
      app_.Press("mnuCredits");
      credits_->Open(kCreditsClass, "credits",
                     app_.frmCredits().lblCredits.caption(), at);
    });
  } else if (!name.empty()) {
    // Settings entries, preset items and the pending menu.
    auto [control, index] = SplitGroupItem(name);
    Post([this, control, index] {
      if (app_.CanPress(control, index)) app_.Press(control, index);
    });
  }
}

void Desktop::OpenRoom() {
  const POINT at = BesideMain(*this);
  Post([this, at] {
    app_.Press("lstBanned", 2);
    room_->Open(at);
  });
}

void Desktop::Close() {
  for (Window* w : std::initializer_list<Window*>{
           banning_.get(), room_.get(), messages_.get(), buster_.get(),
           chatroom_.get(), about_.get(), credits_.get(), main_.get()})
    w->Destroy();
  // The program ends where it stands, as the runtime's End does: a wait
  // it is inside (a client restart waits without end for a client that
  // never comes) must not keep the process alive with no window.
  host_.Quit();
  ExitProcess(0);
}

}  // namespace quorvex::desktop
