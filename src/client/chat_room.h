// Speaking in the chat room through the client's chat input, as a person
// would, and reading the room's people out of the client's memory.
#pragma once

#include <string>
#include <string_view>

#include "client/client_context.h"
#include "model/list_box.h"

namespace quorvex {

// The line as typed: the font tag with the chat font, the decorations
// around the text, inserts expanded.
std::string ChatLine(const ClientContext& c, std::string_view text);
// Types one line into the room and sends it. Waits, without a limit, for
// the client to show the line and to take it; gives up only when the input
// window vanishes. Text the member had half-typed is put back.
void ChatSend(const ClientContext& c, std::string_view text);
// The pauses that frame a line said in the room: one before every line,
// and a shorter one after the last line of a reply.
inline constexpr float kBeforeLine = 0.55f;
inline constexpr float kAfterReply = 0.45f;
// What follows a framed line: nothing, kBeforeLine again, or kAfterReply.
enum class ThenPause { kNone, kLine, kReply };
// Pauses kBeforeLine, says `text` unless `ended` holds by then, and pauses
// as `then` says. The pauses are kept when nothing is said.
void SayFramed(const ClientContext& c, const bool& ended, std::string_view text,
               ThenPause then = ThenPause::kNone);
// What is in the chat input: on Windows 2000 its line 1 (the second line),
// elsewhere the whole text.
std::string GetChatInputText(WindowApi& api);
bool IsWindows2000(WindowApi& api);
// Appends the room's screen names (16 characters at most) to `list`:
// unique adds each name once as read, otherwise every name lower-cased.
void GetRoomPeople(WindowApi& api, ListBox& list, bool unique);

}  // namespace quorvex
