#include "app/frm_chatroom.h"

#include <utility>

#include "client/chat_room.h"
#include "client/wait.h"
#include "model/draw_status.h"
#include "model/text_util.h"

namespace quorvex {

namespace {
constexpr int kReturn = 13;
}  // namespace

FrmChatroom::FrmChatroom(const ClientContext& c,
                         std::function<void(const std::string&)> queue,
                         const bool& server_on)
    : c_(c), queue_(std::move(queue)), server_on_(server_on) {
  Timer1 = c_.host.CreateTimer([this] { Timer1_Timer(); });
  Timer1->SetInterval(kChatroomPeopleInterval);
  // The change handler of txtChat keeps the newest line in view.
  chat_watch_ = txtChat.Subscribe(
      [this](const TextBox& box) { chat_caret_ = Len(box.text); });
}

FrmChatroom::~FrmChatroom() {
  if (scanner_) scanner_->Unsubscribe(reader_);
  txtChat.Unsubscribe(chat_watch_);
}

void FrmChatroom::Form_Load(ChatScanner& scanner) {
  if (form.open()) return;
  scanner_ = &scanner;
  reader_ =
      scanner.Subscribe([this](const std::string& sn, const std::string& text) {
        Chat1_ChatLine(sn, text);
      });
  scanner.SetEnabled(reader_, true);
  // Kept on top by the view; the title is painted in the program's blue.
  picTitle.Set(kWindowTitle);
  Timer1->SetEnabled(true);
  form.Open();
}

void FrmChatroom::Form_Unload() {
  if (!form.open()) return;
  Timer1->SetEnabled(false);
  if (scanner_) scanner_->Unsubscribe(reader_);
  scanner_ = nullptr;
  // A window opened again starts as a fresh one.
  txtChat.Set("");
  txtSend.Set("");
  lstPeople.Clear();
  lblPeople.Set(kPeopleCount(0));
  picTitle.Set("");
  form.Close();
}

void FrmChatroom::Chat1_ChatLine(const std::string& sn,
                                 const std::string& text) {
  txtChat.Set(txtChat.text + sn + ":" + text + "\r\n");
  chat_caret_ = Len(txtChat.text);
}

void FrmChatroom::Timer1_Timer() {
  lstPeople.Clear();
  GetRoomPeople(c_.api, lstPeople, kChatroomPeopleUnique);
  lblPeople.Set(kPeopleCount(lstPeople.Count()));
  if (Len(txtChat.text) >= kChatroomMirrorLimit) txtChat.Set("");
}

void FrmChatroom::txtSend_KeyPress(int key) {
  if (key != kReturn || txtSend.text.empty()) return;
  // Read before the pauses: a line typed meanwhile is a line of its own.
  const std::string text = txtSend.text;
  if (server_on_) {
    // The serving loop says it in its turn.
    queue_(text);
  } else {
    SayFramed(c_, /*ended=*/false, text, ThenPause::kReply);
  }
  txtSend.Set("");
}

}  // namespace quorvex
