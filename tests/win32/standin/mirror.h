// Shows the simulated client as real windows of this process: every
// window of its tree becomes a real window with the same class name,
// caption, parent, sibling order and visibility; the people list's
// records are copied to the same addresses of this process's memory; the
// frame gets a real menu with the same command ids. Messages that another
// process sends or posts to a real window are handed to the simulated
// client as if sent or posted to its own window.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "sim/sim_client.h"

namespace quorvex::standin {

class Mirror {
 public:
  // Maps the address range for the people list's records and makes the
  // simulated client place them there; call before the client launches.
  explicit Mirror(SimClient& sim);
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
  };
  static LRESULT CALLBACK Proc(HWND hwnd, UINT msg, WPARAM wparam,
                               LPARAM lparam);
  LRESULT Handle(HWND hwnd, Hwnd sim, UINT msg, WPARAM wparam, LPARAM lparam,
                 bool* handled);
  HWND Create(const SimWindow& w, HWND parent);
  void SyncChildren(Hwnd parent, HWND real_parent);
  void SyncMenu(Hwnd frame, HWND real);
  void SyncMemory();

  SimClient& sim_;
  std::map<Hwnd, Real> reals_;
  std::map<HWND, Hwnd> sims_;
  std::map<HWND, WNDPROC> original_;
  HWND menu_owner_ = nullptr;
  bool syncing_ = false;
  bool own_destroy_ = false;
  void* memory_ = nullptr;
  std::uintptr_t heap_base_ = 0;
  std::map<std::uint32_t, std::size_t> written_;
};

}  // namespace quorvex::standin
