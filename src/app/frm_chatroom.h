// frmChatroom, the serve-and-chat window: follows the room while the
// server runs. It mirrors every chat line, shows who is in the room, and
// says what the user types: queued behind the server's own chat output
// while serving (so that it never cuts into a client operation), at once
// otherwise.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "client/chat_scanner.h"
#include "client/client_context.h"
#include "model/controls.h"
#include "model/form.h"
#include "model/label.h"
#include "model/list_box.h"

namespace quorvex {

// Timer1's interval: the people list is read again twice a second.
inline constexpr int kChatroomPeopleInterval = 500;
// The mirror is emptied when it holds this many characters.
inline constexpr std::size_t kChatroomMirrorLimit = 600;
// The people list shows each name once, as the room's list gives it.
inline constexpr bool kChatroomPeopleUnique = true;

class FrmChatroom {
 public:
  // `queue` puts a line in the main window's chat output for the serving
  // loop to say in its turn; `server_on` is the main window's serving
  // flag, which must outlive the window, as must `c`.
  FrmChatroom(const ClientContext& c,
              std::function<void(const std::string&)> queue,
              const bool& server_on);
  ~FrmChatroom();
  FrmChatroom(const FrmChatroom&) = delete;
  FrmChatroom& operator=(const FrmChatroom&) = delete;

  Form form{"frmChatroom"};
  TextBox txtChat;  // the mirrored chat, one "sn:text" line each
  TextBox txtSend;  // the line to say
  ListBox lstPeople{"frmChatroom.lstPeople"};
  Label lblPeople{"frmChatroom.lblPeople", kPeopleCount(0)};
  Label picTitle{"frmChatroom.picTitle", ""};
  std::unique_ptr<HostTimer> Timer1;

  // Opens the window and starts hearing the room from `scanner` (Chat1);
  // nothing when it is open already.
  void Form_Load(ChatScanner& scanner);
  // lblExit: closes the window; the main window stays.
  void Form_Unload();
  void lblExit_Click() { Form_Unload(); }

  // Chat1's event: one chat line appended to the mirror.
  void Chat1_ChatLine(const std::string& sn, const std::string& text);
  // Refreshes the people list and its count; empties a full mirror.
  void Timer1_Timer();
  // A key typed in txtSend; Return (13) says its text.
  void txtSend_KeyPress(int key);

  // The caret of txtChat, in characters: at the end after every change.
  std::size_t txtChat_SelStart() const { return chat_caret_; }

 private:
  const ClientContext& c_;
  std::function<void(const std::string&)> queue_;
  const bool& server_on_;
  ChatScanner* scanner_ = nullptr;
  int reader_ = 0;
  std::size_t chat_caret_ = 0;
  int chat_watch_ = 0;
};

}  // namespace quorvex
