// The client's preferences: the "Preferences" window (keyword
// Preferences) and its pages, modal dialogs of check boxes. The boxes are
// remembered between openings; the mail page's confirm, close and spell
// check boxes change how mail is sent (sim_client_mail.cpp).
#include "ports/client_windows.h"
#include "sim/sim_client.h"

namespace quorvex {

namespace {

struct Default {
  const char* label;
  int checked;
};
const std::vector<Default> kMailPreferences = {
    {kPrefConfirm, 1},
    {kPrefClose, 1},
    {"Retain all mail I send in my Personal Filing Cabinet", 0},
    {"Retain all mail I read in my Personal Filing Cabinet", 0},
    {"Show addresses as hyperlinks", 1},
    {kPrefSpellCheck, 0},
};
const std::vector<Default> kGeneralPreferences = {
    {"Show AOL Channels at sign on", 1},
    {"Notify me before closing open windows", 0},
    {"Enable event sounds", 1},
};

}  // namespace

int SimClient::Preference(const std::string& label) const {
  auto it = preferences_.find(label);
  if (it != preferences_.end()) return it->second;
  for (const auto* list : {&kMailPreferences, &kGeneralPreferences})
    for (const Default& d : *list)
      if (label == d.label) return d.checked;
  return -1;
}

std::vector<std::pair<std::string, int>> SimClient::MailPreferences() const {
  std::vector<std::pair<std::string, int>> out;
  for (const Default& d : kMailPreferences)
    out.emplace_back(d.label, Preference(d.label));
  return out;
}

void SimClient::OpenPreferences() {
  if (!signed_on_) return;
  if (Doc* d = FindDoc(Kind::kPreferences)) {
    tree_.BringToTop(d->hwnd);
    return;
  }
  Hwnd doc = NewDoc(Kind::kPreferences, "Preferences");
  Add(doc, aol::kStaticClass, "AOL Preferences");
  AddIcons(doc,
           {"General", "Toolbar", "Mail", "Font", "Marketing", "Passwords"});
}

void SimClient::OpenPreferencePage(bool mail) {
  Hwnd page = NewTopLevel(Kind::kPreferencePage, aol::kModalClass,
                          mail ? "Mail Preferences" : "General Preferences");
  for (const Default& d : mail ? kMailPreferences : kGeneralPreferences) {
    Hwnd box = Add(page, aol::kCheckboxClass, d.label, kRoleCheck);
    tree_.Get(box)->check = Preference(d.label);
  }
  AddIcons(page, {"OK", "Cancel"});
}

void SimClient::SavePreferencePage(Hwnd page) {
  for (Hwnd h : tree_.Children(page)) {
    const SimWindow* w = tree_.Get(h);
    if (w->role == kRoleCheck) preferences_[w->text] = w->check;
  }
}

}  // namespace quorvex
