#include "client/room_buster.h"

#include "client/chat_room.h"
#include "client/client_menus.h"
#include "client/client_tree.h"
#include "client/error_boxes.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/draw_status.h"
#include "model/text_util.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

constexpr const char* kRoomAddress = "aol://2719:2-2-";

// The client's message box: here, the refusal of a full room.
Hwnd FindClientMessageBox(WindowApi& api) {
  return api.FindWindowA(aol::kDialogClass, kClientBoxCaption);
}

// Whether the client's current room is the wanted one. The client's
// caption and the name as typed may differ in spacing, never in case.
bool InRoom(WindowApi& api, const std::string& wanted) {
  return RemoveSpaces(GetCaption(api, FindChatRoom(api))) ==
         RemoveSpaces(wanted);
}

}  // namespace

RoomBuster::RoomBuster(Form& window, const ClientContext& c,
                       std::function<void()> aol_restart)
    : window_(window), c_(c), aol_restart_(std::move(aol_restart)) {
  Timer1 = c_.host.CreateTimer([this] { Timer1_Timer(); });
  Timer1->SetInterval(kRoomBusterInterval);
}

RoomBuster::~RoomBuster() = default;

void RoomBuster::Form_Load() {
  if (window_.open()) return;
  window_.Open();
  // Kept on top by the view; the title is painted in the program's blue.
  picTitle.Set(kWindowTitle);
}

void RoomBuster::Form_Unload() {
  Timer1->SetEnabled(false);
  busting_ = false;
  window_.Close();
  tries_ = 0;
  busts_ = 0;
  restart = BusterRestart::kNone;
  txtRoom.Set("");
  txtRoom.SetEnabled(true);
  cmdStart.Set("&start");
  lblBusts.Set(kBustsCount(0));
  picTitle.Set("");
}

void RoomBuster::cmdStart_Click() {
  if (busting_)
    Stop();
  else
    Start();
}

void RoomBuster::Start() {
  ChatSend(c_, "quorvex busting <B><U>" + txtRoom.text + "</B></U>");
  txtRoom.SetEnabled(false);
  busting_ = true;
  Timer1->SetEnabled(true);
  cmdStart.Set("&stop");
}

void RoomBuster::Stop() {
  WindowApi& api = c_.api;
  if (Hwnd box = FindClientMessageBox(api)) CloseWindow(api, box);
  ChatSend(c_, "quorvex stopped busting <B><U>" + txtRoom.text +
                   "</B></U> at <B><U>" + std::to_string(tries_) +
                   "</B></U> tries");
  Timer1->SetEnabled(false);
  busting_ = false;
  txtRoom.SetEnabled(true);
  // The next bust counts from nothing, as the label shows.
  tries_ = 0;
  busts_ = 0;
  if (restart == BusterRestart::kBust) restart = BusterRestart::kNone;
  lblBusts.Set(kBustsCount(0));
  cmdStart.Set("&start");
}

void RoomBuster::Timer1_Timer() {
  WindowApi& api = c_.api;
  in_tick_ = true;
  struct TickEnd {
    bool& flag;
    ~TickEnd() { flag = false; }
  } tick_end{in_tick_};

  const std::string room = txtRoom.text;
  if (InRoom(api, room)) {
    ChatSend(c_, "quorvex busted <B><U>" + room + "</B></U> in <B><U>" +
                     std::to_string(tries_) + "</B></U> tries");
    Stop();
    Timer1->SetEnabled(false);
    return;
  }

  Keyword(api, kRoomAddress + room);
  ++tries_;
  // Until the client refuses (full) or lets us in. A client signed off
  // answers neither, and a room whose caption differs from the name in
  // more than spacing never matches: a sign-off or a stop ends the wait.
  WaitUntil(c_.host,
            [&] { return FindClientMessageBox(api) != 0 || InRoom(api, room); },
            {.give_up = [&] { return !IsSignedOn(api) || !busting_; }});

  if (!IsSignedOn(api) && aol_restart_) aol_restart_();

  if (Hwnd box = FindClientMessageBox(api)) {
    CloseWindow(api, box);
    ++busts_;
    lblBusts.Set(kBustsCount(busts_));
  }
}

}  // namespace quorvex
