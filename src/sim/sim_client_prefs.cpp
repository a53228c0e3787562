#include "sim/sim_client_prefs.h"

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
// A page's OK is its first icon.
constexpr int kPageOkIcon = 1;

}  // namespace

int SimClientPreferences::Preference(const std::string& label) const {
  auto it = preferences_.find(label);
  if (it != preferences_.end()) return it->second;
  for (const auto* list : {&kMailPreferences, &kGeneralPreferences})
    for (const Default& d : *list)
      if (label == d.label) return d.checked;
  return -1;
}

std::vector<std::pair<std::string, int>> SimClientPreferences::MailPreferences()
    const {
  std::vector<std::pair<std::string, int>> out;
  for (const Default& d : kMailPreferences)
    out.emplace_back(d.label, Preference(d.label));
  return out;
}

void SimClientPreferences::OpenPreferences() {
  if (!session_.signed_on()) return;
  if (ClientWindow* w = shell_.FindWindowOfKind(SimWindowKind::kPreferences)) {
    tree_.BringToTop(w->hwnd);
    return;
  }
  Hwnd doc = shell_.NewDoc(SimWindowKind::kPreferences, "Preferences");
  Add(doc, aol::kStaticClass, "AOL Preferences");
  AddIcons(doc,
           {"General", "Toolbar", "Mail", "Font", "Marketing", "Passwords"});
}

void SimClientPreferences::ClickIcon(const ClientWindow& window,
                                     const SimWindow& icon) {
  if (window.kind == SimWindowKind::kPreferences) {
    MarkBusy();
    if (icon.text == "Mail" || icon.text == "General") {
      const bool mail = icon.text == "Mail";
      Later(knobs_.latency, [this, mail] { OpenPreferencePage(mail); });
    }
  } else if (window.kind == SimWindowKind::kPreferencePage) {
    const Hwnd page = window.hwnd;
    if (icon.tag == kPageOkIcon) SavePreferencePage(page);
    tree_.Destroy(page);
  }
}

void SimClientPreferences::OpenPreferencePage(bool mail) {
  Hwnd page =
      shell_.NewTopLevel(SimWindowKind::kPreferencePage, aol::kModalClass,
                         mail ? "Mail Preferences" : "General Preferences");
  for (const Default& d : mail ? kMailPreferences : kGeneralPreferences) {
    Hwnd box = Add(page, aol::kCheckboxClass, d.label, kRoleCheck);
    tree_.Get(box)->check = Preference(d.label);
  }
  AddIcons(page, {"OK", "Cancel"});
}

void SimClientPreferences::SavePreferencePage(Hwnd page) {
  for (Hwnd h : tree_.Children(page)) {
    const SimWindow* w = tree_.Get(h);
    if (w->role == kRoleCheck) preferences_[w->text] = w->check;
  }
}

void SimClientPreferences::SaveTo(nlohmann::json& j) const {
  j["preferences"] = preferences_;
}

void SimClientPreferences::RestoreFrom(const nlohmann::json& j) {
  preferences_.clear();
  const nlohmann::json saved = j.value("preferences", nlohmann::json::object());
  for (const auto& [label, checked] : saved.items())
    preferences_[label] = checked.get<int>();
}

}  // namespace quorvex
