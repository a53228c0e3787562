// The room's people as the room people window (app/frm_room.h) lists
// them: those in the chat room who are not banned yet; a double click bans
// one silently.
#pragma once

#include <string>
#include <vector>

#include "model/label.h"
#include "model/list_box.h"
#include "requests/pending_queue.h"

namespace quorvex {

struct RoomPeople {
  ListBox lstRoom{"lstRoom"};

  // Fills lstRoom with the room's people as the reader gave them, then
  // takes out, for each banned name, the first item equal to it with case
  // ignored.
  void Load(const std::vector<std::string>& people, const ListBox& lstBanned);

  // Bans the selected person: adds the name as listed to lstBanned and
  // removes their pending lines, finds included, where the requester with
  // spaces removed equals the name exactly. Says nothing in the chat and
  // records no mistake. With nothing selected nothing happens. The name
  // banned, or "".
  std::string DoubleClick(ListBox& lstBanned, Label& lblBanned,
                          PendingQueue& pending, Label& lblPending);
};

}  // namespace quorvex
