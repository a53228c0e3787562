// The simulated client's preferences: the "Preferences" window (keyword
// Preferences) and its pages, modal dialogs of check boxes. The boxes are
// remembered between openings; the mail page's confirm, close and spell
// check boxes change how mail is sent (sim_client_mail.cpp).
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

#include "sim/sim_client_session.h"
#include "sim/sim_client_shell.h"

namespace quorvex {

class SimClientPreferences : public SimClientPart {
 public:
  SimClientPreferences(SimClientShell& shell, const SimClientSession& session)
      : SimClientPart(shell), session_(session) {}

  // A check box's saved state, by its label (-1: unknown).
  int Preference(const std::string& label) const;
  void SetPreference(const std::string& label, int checked) {
    preferences_[label] = checked ? 1 : 0;
  }
  // The "Mail Preferences" page's boxes as saved, in the page's order.
  std::vector<std::pair<std::string, int>> MailPreferences() const;

  void OpenPreferences();
  void ClickIcon(const ClientWindow& window, const SimWindow& icon);

  void SaveTo(nlohmann::json& j) const;
  void RestoreFrom(const nlohmann::json& j);

 private:
  void OpenPreferencePage(bool mail);
  void SavePreferencePage(Hwnd page);

  const SimClientSession& session_;
  // Check boxes by label: saved with the page's OK.
  std::map<std::string, int> preferences_;
};

}  // namespace quorvex
