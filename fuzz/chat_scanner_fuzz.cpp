// Any display text through the chat scanner: people say any lines, and the
// display is at times overwritten with any bytes. While every line said is
// a plain one (a name without ":" and tab, no line break), the scanner
// hears exactly the lines said, once each and in order. A line is said
// under the speaker's screen name as the room knows it: names that differ
// only in case or spaces are one person, shown as they first came in.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "client/chat_scanner.h"
#include "client/client_tree.h"
#include "client/window_ops.h"
#include "ports/virtual_host.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"

namespace {

bool Plain(const std::string& name, const std::string& text) {
  return !name.empty() && name.find(":\t") == std::string::npos &&
         (name + text).find_first_of("\r\n") == std::string::npos &&
         name.find('\0') == std::string::npos &&
         text.find('\0') == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  using namespace quorvex;
  FuzzedDataProvider in(data, size);
  VirtualHost host;
  host.SetEnd(3600);
  SimWorld world;
  SimClient sim(host, world, 1);
  sim.SetUserName("Joe Smith");
  sim.SetRoomName("Lobby");
  sim.knobs().display_lines = in.ConsumeIntegralInRange(1, 120);
  sim.Launch();
  ChatScanner scanner(sim, host);
  std::vector<std::string> heard, said;
  const int reader = scanner.Subscribe(
      [&heard](const std::string& sn, const std::string& text) {
        heard.push_back(sn + "\n" + text);
      });
  scanner.SetEnabled(reader, true);
  bool exact = true;
  int since_scan = 0;
  while (in.remaining_bytes() > 0) {
    switch (in.ConsumeIntegralInRange(0, 3)) {
      case 0:
      case 1: {
        const std::string name = in.ConsumeRandomLengthString(12);
        const std::string text = in.ConsumeRandomLengthString(40);
        exact = exact && Plain(name, text);
        sim.Say(name, text);
        const SimPerson* speaker = world.FindPerson(name);
        said.push_back((speaker ? speaker->name : name) + "\n" + text);
        if (++since_scan >= sim.knobs().display_lines) exact = false;
        break;
      }
      case 2: {
        const Hwnd display = FindChild(sim, FindChatRoom(sim), "RICHCNTL");
        SetText(sim, display, in.ConsumeRandomLengthString(200));
        exact = false;
        break;
      }
      default:
        host.RunUntil(host.Elapsed() + 0.3);
        since_scan = 0;
        break;
    }
  }
  host.RunUntil(host.Elapsed() + 1);
  if (exact && heard != said) {
    std::fprintf(stderr, "chat scanner: heard %zu lines of %zu said\n",
                 heard.size(), said.size());
    std::abort();
  }
  return 0;
}
