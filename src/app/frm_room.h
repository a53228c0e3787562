// frmRoom, the room people window, opened by a right click on lstBanned:
// the room's people as read when it opens (requests/room_view.h), of whom
// a double click bans one.
#pragma once

#include "model/form.h"
#include "requests/room_view.h"

namespace quorvex {

struct FrmRoom : RoomPeople {
  Form form{"frmRoom"};
};

}  // namespace quorvex
