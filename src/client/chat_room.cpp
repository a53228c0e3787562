#include "client/chat_room.h"

#include <algorithm>
#include <cstring>

#include "client/client_tree.h"
#include "client/wait.h"
#include "client/window_ops.h"
#include "model/text_util.h"
#include "ports/client_windows.h"

namespace quorvex {

namespace {

// The room's second "RICHCNTL": the chat input (the first is the display).
Hwnd FindChatInput(WindowApi& api) {
  const Hwnd room = FindChatRoom(api);
  const Hwnd display = FindChild(api, room, aol::kRichTextClass);
  return api.FindWindowExA(room, display, aol::kRichTextClass, nullptr);
}

}  // namespace

std::string ChatLine(const ClientContext& c, std::string_view text) {
  std::string line = "<font color=#003377 face=\"" + c.settings.ChatFont +
                     "\">" + c.settings.LAscii + std::string(text) +
                     c.settings.RAscii;
  return c.ExpandInserts(line);
}

void ChatSend(const ClientContext& c, std::string_view text) {
  WindowApi& api = c.api;
  const Hwnd input = FindChatInput(api);
  const std::string line = ChatLine(c, text);
  auto input_text = [&] { return GetText(api, input); };
  // Each wait ends only when the client reacts, or when the input is gone.
  const WaitOptions while_input_exists{.give_up = Gone(api, input)};
  WaitOptions clearing = while_input_exists;
  clearing.every = 1;
  clearing.repeat = [&] { SetText(api, input, ""); };

  // Hidden, so the member's own typing cannot mix with the line.
  HideWindow(api, input);
  const std::string saved = GetChatInputText(api);
  if (WaitUntil(
          c.host, [&] { return input_text().empty(); }, clearing) !=
      WaitEnd::kMet)
    return;

  SetText(api, input, line);
  if (WaitUntil(
          c.host, [&] { return StartsWith(input_text(), line); },
          while_input_exists) != WaitEnd::kMet)
    return;

  // The client empties the input when it has taken the line.
  SendChar(api, input, win::kVkReturn);
  if (WaitUntil(
          c.host, [&] { return input_text().empty(); }, while_input_exists) !=
      WaitEnd::kMet)
    return;

  if (!saved.empty()) SetText(api, input, saved);
  ShowWindowNormal(api, input);
}

std::string GetChatInputText(WindowApi& api) {
  const Hwnd input = FindChatInput(api);
  if (!IsWindows2000(api)) return GetText(api, input);
  const auto index = api.SendMessageA(input, win::kEmLineIndex, 1, 0);
  const auto length = api.SendMessageA(input, win::kEmLineLength,
                                       static_cast<std::uintptr_t>(index), 0);
  std::string text;
  const auto copied = api.SendMessageGetText(
      input, win::kEmGetLine, 1, &text,
      static_cast<std::size_t>(std::max<std::intptr_t>(length, 0)));
  text.resize(std::min(text.size(), static_cast<std::size_t>(
                                        std::max<std::intptr_t>(copied, 0))));
  return text;
}

bool IsWindows2000(WindowApi& api) {
  const OsVersion version = api.GetVersionExA();
  return version.platform_id == 2 && version.major == 5;
}

void GetRoomPeople(WindowApi& api, ListBox& list, bool unique) {
  const Hwnd people = FindChildByClass(api, FindChatRoom(api), aol::kListClass);
  std::uint32_t process_id = 0;
  api.GetWindowThreadProcessId(people, &process_id);
  const ProcessHandle process =
      api.OpenProcess(win::kProcessVmReadStd, false, process_id);
  if (process == 0) return;

  const auto count = api.SendMessageA(people, win::kLbGetCount, 0, 0);
  for (std::intptr_t i = 0; i < count; ++i) {
    const auto item = static_cast<std::uint32_t>(api.SendMessageA(
        people, win::kLbGetItemData, static_cast<std::uintptr_t>(i), 0));
    // A failed read leaves zeros: at worst an empty name, never added.
    unsigned char pointer[4] = {0, 0, 0, 0};
    std::size_t read = 0;
    api.ReadProcessMemory(process, item + 24, pointer, sizeof pointer, &read);
    const std::uint32_t at = (pointer[0] | pointer[1] << 8 | pointer[2] << 16 |
                              static_cast<std::uint32_t>(pointer[3]) << 24) +
                             6;
    char bytes[16] = {};
    api.ReadProcessMemory(process, at, bytes, sizeof bytes, &read);
    const std::string name(bytes, strnlen(bytes, sizeof bytes));

    if (name.empty()) continue;
    if (!unique) {
      list.Add(LCase(name));
    } else if (!ListHasItem(list, name)) {
      list.Add(name);
    }
  }
  api.CloseHandle(process);
}

void SayFramed(const ClientContext& c, const bool& ended, std::string_view text,
               ThenPause then) {
  PauseSeconds(c.host, kBeforeLine);
  if (!ended) ChatSend(c, text);
  if (then == ThenPause::kLine) PauseSeconds(c.host, kBeforeLine);
  if (then == ThenPause::kReply) PauseSeconds(c.host, kAfterReply);
}

}  // namespace quorvex
