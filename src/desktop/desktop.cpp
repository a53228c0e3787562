#include "desktop/desktop.h"

#include <windows.h>
// windows.h first: commctrl.h needs its types.
#include <commctrl.h>

#include <algorithm>
#include <vector>

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
#include "model/text_util.h"
#include "model/window_place.h"

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
      about_(std::make_unique<InfoWindow>(
          [this] { Post([this] { app_.Press("frmAbout.lblExit"); }); })),
      credits_(std::make_unique<InfoWindow>(
          [this] { Post([this] { app_.Press("frmCredits.lblExit"); }); })) {
  main_->Create();
  FollowWindows();
  SetSmallWindowPlacer([this](HWND opening) { return Place(opening); });
  host_.SetMessageFilter(
      [this](void* m) { return Keyboard(*static_cast<MSG*>(m)); });
}

Desktop::~Desktop() {
  windows_.Clear();
  host_.SetMessageFilter(nullptr);
  SetSmallWindowPlacer(nullptr);
}

// Keys pressed in one of the program's windows (the dialogs have their
// own loop, which does the same for them).
bool Desktop::Keyboard(MSG& msg) {
  HWND root = GetAncestor(msg.hwnd, GA_ROOT);
  if (!root) return false;
  for (const Window* w : std::initializer_list<const Window*>{
           main_.get(), banning_.get(), room_.get(), messages_.get(),
           buster_.get(), chatroom_.get(), about_.get(), credits_.get()})
    if (w->hwnd() == root) return WindowKeyboard(root, msg);
  return false;
}

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

std::string Desktop::Title(const char* entry) const {
  return PlainCaption(app_.frm().menus.Caption(entry));
}

// Beside the main window, covering neither it nor another small window;
// the one on top counts as the last opened.
POINT Desktop::Place(HWND opening) const {
  auto box = [](HWND w) {
    RECT rc;
    GetWindowRect(w, &rc);
    return Box{rc.left, rc.top, rc.right, rc.bottom};
  };
  std::vector<HWND> ours;
  for (const Window* w : std::initializer_list<const Window*>{
           banning_.get(), room_.get(), messages_.get(), buster_.get(),
           chatroom_.get(), about_.get(), credits_.get()}) {
    if (w->open() && w->hwnd() != opening && IsWindowVisible(w->hwnd()))
      ours.push_back(w->hwnd());
  }
  // Top-level windows stand top first: the open ones, bottom first.
  std::vector<Box> open;
  for (HWND w = GetTopWindow(nullptr); w; w = GetWindow(w, GW_HWNDNEXT))
    if (std::find(ours.begin(), ours.end(), w) != ours.end())
      open.insert(open.begin(), box(w));
  RECT work;
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
  const Box size = box(opening);
  const Corner p = PlaceWindow(
      box(main_->hwnd()), open, size.Width(), size.Height(),
      {work.left, work.top, work.right, work.bottom}, Scaled(8), Scaled(24));
  return {p.x, p.y};
}

void Desktop::FollowWindows() {
  FrmMain& f = app_.frm();
  Follow(f.forms.frmBanning.form, *banning_, [this] { banning_->Open(); });
  Follow(f.forms.frmRoom.form, *room_, [this] { room_->Open(); });
  Follow(f.forms.frmMessages.form, *messages_, [this] { messages_->Open(); });
  Follow(f.forms.frmRoomBuster->form, *buster_, [this] { buster_->Open(); });
  Follow(app_.frmChatroom().form, *chatroom_, [this] { chatroom_->Open(); });
  Follow(app_.frmAbout().form, *about_, [this] { OpenAbout(); });
  Follow(app_.frmCredits().form, *credits_, [this] { OpenCredits(); });
}

void Desktop::Follow(Form& model, Window& view, std::function<void()> open) {
  windows_.Add(model, [&view, open = std::move(open)](const Form& form) {
    if (form.open())
      open();
    else
      view.Destroy();
  });
}

void Desktop::OpenAbout() {
  const FrmAbout& a = app_.frmAbout();
  about_->Open(kAboutClass, Title("mnuAbout"),
               a.lblName.caption() + "\r\n" + a.lblFor.caption() + "\r\n\r\n" +
                   a.lblAuthor.caption() + "\r\n" + a.lblArt.caption());
}

void Desktop::OpenCredits() {
  credits_->Open(kCreditsClass, Title("mnuCredits"),
                 app_.frmCredits().lblCredits.caption());
}

void Desktop::RunMenu(const std::string& name) {
  if (name.empty()) return;
  // A preset group's item comes as "mnuMSpeed(3)".
  auto [control, index] = SplitGroupItem(name);
  Post([this, control, index] {
    if (app_.CanPress(control, index)) app_.Press(control, index);
  });
}

void Desktop::OpenRoom() {
  Post([this] { app_.Press("lstBanned", 2); });
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
