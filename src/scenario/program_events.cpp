#include "scenario/program_events.h"

#include <memory>
#include <utility>

#include "scenario/interrupt.h"

namespace quorvex::scenario {

using nlohmann::ordered_json;

namespace {

const char* kProfileFiles[] = {"Quorvex.INI", "RestartSettings.INI", "Win.INI"};

void WatchList(const ListBox& list, Transcript& t) {
  const_cast<ListBox&>(list).Subscribe(
      [&t](const ListBox& l, const ListChange& c) {
        ordered_json f{{"name", l.name()}};
        switch (c.op) {
          case ListChange::Op::kAdd:
            f["op"] = "add";
            f["item"] = c.item;
            break;
          case ListChange::Op::kRemove:
            f["op"] = "remove";
            f["item"] = c.item;
            break;
          case ListChange::Op::kClear:
            f["op"] = "clear";
            break;
        }
        t.Write("list", f);
      });
}

// A window's opening, closing and minimising. The main window is open
// from the start to the end, so only its minimising is written.
void WatchForm(Form& form, Transcript& t, bool open_events) {
  auto last =
      std::make_shared<std::pair<bool, bool>>(form.open(), form.minimized());
  form.Subscribe([&t, last, open_events](const Form& f) {
    const char* what = nullptr;
    if (open_events && f.open() != last->first)
      what = f.open() ? "opens" : "closes";
    else if (f.minimized() != last->second)
      what = f.minimized() ? "minimises" : "restores";
    *last = {f.open(), f.minimized()};
    if (what) t.Write("window", {{"name", f.name()}, {"what", what}});
  });
}

ordered_json Text(const std::string& value) { return value; }

}  // namespace

std::string ProfilePath(const Machine& machine, const std::string& file) {
  if (file == "Quorvex.INI") return machine.AppPath() + "\\Quorvex.INI";
  return machine.WindowsDirectory() + "\\" + file;
}

void WatchProgram(QuorvexApp& app, Transcript& t) {
  FrmMain& frm = app.frm();
  for (const Label* l : app.AllLabels())
    const_cast<Label*>(l)->Subscribe([&t](const Label& label) {
      t.Write("label", {{"name", label.name()}, {"text", label.caption()}});
    });
  frm.controls.status.Subscribe([&t](const StatusStrip& s) {
    t.Write("status", {{"text", s.text()}});
  });
  WatchList(frm.lstPending(), t);
  WatchList(frm.lists.lstBanned, t);
  WatchList(frm.lists.lstMails, t);
  WatchList(frm.lists.ReplyQueue, t);
  WatchList(frm.lists.MistakeList, t);
  WatchForm(app.frmMainForm(), t, false);
  WatchForm(app.frmChatroom().form, t, true);
  WatchForm(app.frmAbout().form, t, true);
  WatchForm(app.frmCredits().form, t, true);
}

ordered_json ProgramFinalState(QuorvexApp& app, const Registry& registry,
                               const ProfileFile& profiles,
                               const Machine& machine) {
  FrmMain& frm = app.frm();
  ordered_json lists = ordered_json::object();
  for (const ListBox* l : app.OpenLists()) lists[l->name()] = l->Items();
  ordered_json labels = ordered_json::object();
  for (const Label* l : app.Labels()) labels[l->name()] = l->caption();
  ordered_json menus = ordered_json::object();
  ordered_json checked = ordered_json::array();
  ordered_json disabled = ordered_json::array();
  for (const std::string& name : frm.menus.Order()) {
    const MenuEntry& e = frm.menus.Get(name);
    menus[name] = e.caption;
    if (e.checked) checked.push_back(name);
    if (!e.enabled) disabled.push_back(name);
  }
  auto keys_of = [](const auto& keys) {
    ThrowIfInterrupted();
    return ObjectOf(keys, Text);
  };
  ordered_json reg = ObjectOf(registry.Dump(kApp), keys_of);
  ordered_json files = ordered_json::object();
  for (const char* f : kProfileFiles) {
    ThrowIfInterrupted();
    std::string path = ProfilePath(machine, f);
    if (!machine.FileExists(path)) continue;
    files[f] = ObjectOf(profiles.Dump(machine.HostPath(path)), keys_of);
  }
  ordered_json state{{"lists", lists},
                     {"ReplyQueue", frm.lists.ReplyQueue.Items()},
                     {"MistakeList", frm.lists.MistakeList.Items()},
                     {"labels", labels}};
  // The text boxes of open windows that show the program's text.
  ordered_json texts = ordered_json::object();
  for (const auto& [name, box] : app.OpenTexts()) texts[name] = box->text;
  if (!texts.empty()) state["texts"] = texts;
  state["status"] = frm.controls.status.text();
  state["menus"] = menus;
  state["checked"] = checked;
  state["disabled"] = disabled;
  state["registry"] = reg;
  state["files"] = files;
  return state;
}

bool RunUserLine(const TimedLine& line, QuorvexApp& app,
                 ScriptedPrompter& prompter) {
  switch (line.verb) {
    case Verb::kAnswer:
      prompter.QueueAnswer(line.text);
      return false;
    case Verb::kPress: {
      const bool running = !app.ended();
      app.Press(line.name, line.index);
      return running && app.ended();
    }
    case Verb::kSelect:
      if (line.text.empty())
        app.Select(line.name, line.index);
      else
        app.SelectText(line.name, line.text);
      return false;
    case Verb::kSet:
      app.Set(line.name, line.text);
      return false;
    default:
      return false;
  }
}

void WatchPrompts(ScriptedPrompter& prompter, Transcript& t) {
  prompter.SetObserver([&t](const PromptRecord& r) {
    if (r.kind == "message") {
      t.Write("prompt",
              {{"kind", r.kind}, {"title", r.title}, {"prompt", r.prompt}});
      return;
    }
    t.Write("prompt", {{"kind", r.kind},
                       {"title", r.title},
                       {"prompt", r.prompt},
                       {"default", r.default_text},
                       {"answer", r.answer}});
  });
}

void AddClientMail(
    ordered_json& state,
    const std::map<std::string, std::vector<ReceivedMail>>& mailboxes,
    const std::vector<SimClient::WaitingMail>& waiting) {
  state["mailboxes"] =
      ObjectOf(mailboxes, [](const std::vector<ReceivedMail>& mails) {
        ordered_json box = ordered_json::array();
        for (const ReceivedMail& m : mails)
          box.push_back(
              {{"from", m.from}, {"subject", m.subject}, {"body", m.body}});
        return box;
      });
  if (waiting.empty()) return;
  ordered_json held = ordered_json::array();
  for (const SimClient::WaitingMail& m : waiting)
    held.push_back({{"to", m.to}, {"subject", m.subject}, {"body", m.body}});
  state["waiting"] = held;
}

}  // namespace quorvex::scenario
