#include "requests/room_view.h"

namespace quorvex {

void RoomPeople::Load(const std::vector<std::string>& people,
                      const ListBox& lstBanned) {
  lstRoom.Clear();
  for (const auto& name : people) lstRoom.Add(name);
  for (int i = 0; i < lstBanned.Count(); ++i) {
    int found = lstRoom.FindExact(lstBanned.Item(i));
    if (found >= 0) lstRoom.Remove(found);
  }
}

std::string RoomPeople::DoubleClick(ListBox& lstBanned, Label& lblBanned,
                                    PendingQueue& pending, Label& lblPending) {
  int selected = lstRoom.selected();
  if (selected < 0) return "";
  std::string name = lstRoom.Item(selected);
  lstBanned.Add(name);
  lblBanned.Set(kBannedCount(lstBanned.Count()));
  pending.RemoveRequester(name, true);
  lstRoom.Remove(selected);
  pending.RefreshLabel(lblPending);
  return name;
}

}  // namespace quorvex
