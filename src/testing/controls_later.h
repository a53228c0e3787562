// For tests: the window port of a simulated client whose new windows get
// their controls a while after they come, as the real client makes a
// window first and its controls one by one after it. A document or modal
// made after this port was (one not there yet when it was made) shows its
// controls to FindWindowExA one after another, in their order, the last
// `delay` seconds of virtual time after it was first looked into.
#pragma once

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "ports/client_windows.h"
#include "ports/virtual_host.h"
#include "testing/recording_api.h"

namespace quorvex {

class ControlsLater : public RecordingApi {
 public:
  ControlsLater(SimClient& sim, VirtualHost& host, double delay = 1)
      : RecordingApi(sim), sim_(sim), host_(host), delay_(delay) {
    Remember(0);
  }
  Hwnd FindWindowExA(Hwnd p, Hwnd a, const char* c, const char* t) override {
    const Hwnd found = RecordingApi::FindWindowExA(p, a, c, t);
    if (!found || !p || made_.count(p)) return found;
    const std::string parent = sim_.GetClassNameA(p, 64);
    if (parent != aol::kChildClass && parent != aol::kModalClass) return found;
    const double first = seen_.emplace(p, host_.Elapsed()).first->second;
    const auto& children = sim_.tree().Children(p);
    const auto at = std::find(children.begin(), children.end(), found);
    const double made =
        first + delay_ * static_cast<double>(at - children.begin() + 1) /
                    static_cast<double>(children.size());
    return host_.Elapsed() >= made ? found : 0;
  }

 private:
  void Remember(Hwnd parent) {
    for (Hwnd child : sim_.tree().Children(parent)) {
      made_.insert(child);
      Remember(child);
    }
  }

  SimClient& sim_;
  VirtualHost& host_;
  double delay_;
  std::set<Hwnd> made_;  // windows whole when this port was made
  std::map<Hwnd, double> seen_;
};

}  // namespace quorvex
