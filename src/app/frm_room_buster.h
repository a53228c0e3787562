// frmRoomBuster, the room buster window: the room to enter, start and
// stop, and the count of busts. The bust itself, with the controls it
// reads and writes, is client/room_buster.h's; the client restart drives
// it too.
#pragma once

#include <functional>
#include <utility>

#include "client/room_buster.h"
#include "model/form.h"

namespace quorvex {

class FrmRoomBuster : public RoomBuster {
 public:
  // The buster only holds on to `form` until it is used, after this.
  FrmRoomBuster(const ClientContext& c, std::function<void()> aol_restart)
      : RoomBuster(form, c, std::move(aol_restart)) {}

  Form form{"frmRoomBuster"};
};

}  // namespace quorvex
