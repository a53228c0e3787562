#include "requests/ban_policy.h"

#include <cstdint>
#include <optional>

#include "model/text_util.h"
#include "settings/settings.h"

namespace quorvex {

namespace {

constexpr double kDefaultMistakes = 3;
constexpr double kDefaultMails = 500;
constexpr const char* kSection = "Banning";

double ComboNumber(const ComboBox& combo, double default_value) {
  return IsNumeric(combo.text) ? Val(combo.text) : default_value;
}

// A stored text as the runtime's 16-bit integer, or nothing when it is no
// number or out of range.
std::optional<int> SmallInteger(const std::string& text) {
  if (!IsNumeric(text)) return std::nullopt;
  double v = RoundHalfEven(Val(text));
  if (v < INT16_MIN || v > INT16_MAX) return std::nullopt;
  return static_cast<int>(v);
}

int ReadCheck(const Registry& registry, const char* key, int default_value) {
  auto v = SmallInteger(registry.GetSetting(kApp, kSection, key, ""));
  // A check box holds 0, 1 or 2 (greyed).
  if (!v || *v < 0 || *v > 2) return default_value;
  return *v;
}

std::string ReadCombo(const Registry& registry, const char* key,
                      int default_value) {
  auto v = SmallInteger(registry.GetSetting(kApp, kSection, key, ""));
  return std::to_string(v ? *v : default_value);
}

void Ban(BanContext& ctx, const std::string& sn) {
  ctx.MistakeList.Add(sn + "-banned");
  ctx.lstBanned.Add(sn);
  ctx.lblBanned.Set(kBannedCount(ctx.lstBanned.Count()));
  ctx.pending.RemovePerson(sn);
  ctx.say("(" + sn + ") you are now banned");
  Emit(ctx.events, JobOutcome::kBanned, sn, "too many mistakes");
}

void SayLeft(BanContext& ctx, const std::string& sn, double left) {
  ctx.say("(" + sn + ") you now have <U>" + NumberText(left) +
          "</U> mistakes left");
}

}  // namespace

BanningOptions::BanningOptions()
    : cmbMistakes{"3", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}},
      chkPending{1},
      cmbMails{"500",
               {"100", "200", "300", "400", "500", "600", "700", "800", "900",
                "1000", "1250", "1500", "1750", "2000"}},
      chkDupReqs{1},
      chkFullBox{1} {}

double BanningOptions::Mistakes() const {
  return ComboNumber(cmbMistakes, kDefaultMistakes);
}

double BanningOptions::Mails() const {
  return ComboNumber(cmbMails, kDefaultMails);
}

std::string BanningOptions::MistakesText() const {
  return IsNumeric(cmbMistakes.text) ? cmbMistakes.text
                                     : NumberText(kDefaultMistakes);
}

void LoadBanning(const Registry& registry, BanningOptions& options) {
  options.chkFullBox.Set(ReadCheck(registry, "FullBox", 1));
  options.chkDupReqs.Set(ReadCheck(registry, "DupeRequests", 1));
  options.chkPending.Set(ReadCheck(registry, "MailsPending", 1));
  options.cmbMails.Set(ReadCombo(registry, "Mails", 500));
  options.cmbMistakes.Set(ReadCombo(registry, "Mistakes", 3));
}

void SaveBanning(Registry& registry, const BanningOptions& options) {
  registry.Save(kApp, kSection, "FullBox",
                std::to_string(options.chkFullBox.value));
  registry.Save(kApp, kSection, "DupeRequests",
                std::to_string(options.chkDupReqs.value));
  registry.Save(kApp, kSection, "MailsPending",
                std::to_string(options.chkPending.value));
  registry.Save(kApp, kSection, "Mails", options.cmbMails.text);
  registry.Save(kApp, kSection, "Mistakes", options.cmbMistakes.text);
}

void AddMistake(BanContext& ctx, const std::string& sn) {
  double allowed = ctx.banning.Mistakes();
  for (int i = 0; i < ctx.MistakeList.Count(); ++i) {
    const std::string& element = ctx.MistakeList.Item(i);
    if (element.empty()) break;
    size_t dash = element.find('-');
    if (dash == std::string::npos) continue;
    std::string_view count = std::string_view(element).substr(dash + 1);
    if (count == "banned") return;
    if (std::string_view(element).substr(0, dash) != sn) continue;

    double now = Val(count) + 1;
    ctx.MistakeList.Remove(i);
    // The limit is compared as text, as the window holds it.
    if (ctx.banning.MistakesText() == NumberText(now)) {
      Ban(ctx, sn);
    } else {
      ctx.MistakeList.Add(sn + "-" + NumberText(now));
      SayLeft(ctx, sn, allowed - now);
    }
    return;
  }

  if (allowed > 1) {
    ctx.MistakeList.Add(sn + "-1");
    SayLeft(ctx, sn, allowed - 1);
  } else if (allowed < 1) {
    Ban(ctx, sn);
  }
}

void BannedLeftClick(ListBox& lstBanned, Label& lblBanned) {
  if (lstBanned.Empty()) return;
  lstBanned.Remove(lstBanned.selected());
  lblBanned.Set(kBannedCount(lstBanned.Count()));
}

}  // namespace quorvex
