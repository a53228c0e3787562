// Shows the simulated client as real windows of this process: every
// window of its tree becomes a real window with the same class name,
// caption, parent, sibling order and visibility; the people list's
// records are copied to the same addresses of this process's memory; the
// frame gets a real menu with the same command ids. Messages that another
// process sends or posts to a real window are handed to the simulated
// client as if sent or posted to its own window.
//
// The client's message boxes ("#32770") and its pop-up menu ("#32768")
// are the platform's own: a real message box (MessageBox) and a real
// pop-up menu (TrackPopupMenu), each in its own modal loop, one at a time.
// What the user does in them (the button pressed, the item chosen, the
// menu cancelled) is then done to the simulated client's box or menu.
#pragma once

#include <windows.h>

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ports/host.h"
#include "sim/sim_client.h"

namespace quorvex::standin {

class Mirror {
 public:
  // Maps the address range for the people list's records and makes the
  // simulated client place them there; call before the client launches.
  // Modal loops are entered from calls scheduled on `host`, never from
  // inside a message another process sent (it would wait for the box).
  Mirror(SimClient& sim, Host& host);
  ~Mirror();
  Mirror(const Mirror&) = delete;
  Mirror& operator=(const Mirror&) = delete;

  // False when the people list's address range could not be mapped.
  bool memory_ok() const { return memory_ != nullptr; }

  // Brings the real windows and memory in line with the simulated client.
  void Sync();

  HWND RealOf(Hwnd sim) const;

 private:
  struct Real {
    HWND hwnd = nullptr;
    std::string text;
    bool visible = true;
    HWND above = nullptr;  // the sibling it was last put or found after
  };
  static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wparam,
                               LPARAM lparam);
  LRESULT Handle(HWND hwnd, Hwnd sim, UINT msg, WPARAM wparam, LPARAM lparam,
                 bool* handled);
  HWND Create(const SimWindow& w, HWND parent);
  void SyncChildren(Hwnd parent, HWND real_parent);
  void SyncMenu(Hwnd frame, HWND real);
  void OrderChanged() { order_known_ = false; }
  void SyncMemory();
  // Queues the client's new boxes and shows the next box or the menu.
  void SyncModals();
  void ShowBox(Hwnd sim_box);
  void TrackMenu();
  // Chooses the item at `path` (positions per level) in the simulated
  // client's menu, or closes it when `path` is empty.
  void ChooseInSimMenu(const std::vector<int>& path);

  SimClient& sim_;
  Host& host_;
  std::deque<Hwnd> boxes_;     // the client's boxes waiting for their turn
  std::set<Hwnd> seen_boxes_;  // every box queued so far
  Hwnd box_ = 0;               // the client's box shown now
  bool menu_ = false;          // the real pop-up menu is tracking
  bool modal_ = false;         // a box or the menu is up or about to be
  std::map<Hwnd, Real> reals_;
  std::map<HWND, Hwnd> sims_;
  std::map<HWND, WNDPROC> original_;
  HWND menu_owner_ = nullptr;
  bool syncing_ = false;
  // The real windows stand in the order last put or found (every `above`
  // holds) since a sync checked them all; a window made, destroyed or
  // moved makes the next sync check them all again (`checking_`).
  bool order_known_ = false;
  bool checking_ = false;
  bool own_destroy_ = false;
  void* memory_ = nullptr;
  std::uintptr_t heap_base_ = 0;
  std::map<std::uint32_t, std::size_t> written_;
};

}  // namespace quorvex::standin
