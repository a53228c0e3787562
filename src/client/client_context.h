// What every client operation works with: the window port, the host (for
// waits), the settings record (chat mark-up) and the insert expansion of
// chat lines and mail bodies.
#pragma once

#include <functional>
#include <string>

#include "ports/host.h"
#include "ports/window_api.h"
#include "settings/settings.h"

namespace quorvex {

struct ClientContext {
  WindowApi& api;
  Host& host;
  const Settings& settings;
  // ExpandInserts; texts go out unchanged when it is not set.
  std::function<std::string(const std::string&)> expand_inserts;

  std::string ExpandInserts(const std::string& text) const {
    return expand_inserts ? expand_inserts(text) : text;
  }
};

}  // namespace quorvex
