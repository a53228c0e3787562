// Any speaker and any line through the chat request parser, with the
// settings and banning options drawn from the input too. Beyond not
// crashing: a line only ever adds entries of its own speaker at the end of
// the queue, never removes one, and every reply order is the speaker's.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "model/text_util.h"
#include "requests/request_parser.h"

namespace {

void Check(bool ok, const char* what) {
  if (!ok) {
    std::fprintf(stderr, "request parser: %s\n", what);
    std::abort();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size) {
  using namespace quorvex;
  FuzzedDataProvider in(data, size);
  Settings settings;
  settings.Handle = in.ConsumeRandomLengthString(8);
  settings.BlocksXYEnable = in.ConsumeBool();
  settings.BlockMax = in.ConsumeIntegral<std::int16_t>();
  settings.FindsEnable = in.ConsumeBool();
  settings.FindsXYEnable = in.ConsumeBool();
  settings.FindMin = in.ConsumeIntegral<std::int16_t>();
  settings.FindMax = in.ConsumeIntegral<std::int16_t>();
  settings.ScrollThankyou = in.ConsumeBool();
  settings.ScrollStatus = in.ConsumeBool();
  BanningOptions banning;
  banning.chkPending.value = in.ConsumeBool();
  banning.chkDupReqs.value = in.ConsumeBool();
  banning.cmbMails.text = in.ConsumeRandomLengthString(6);
  PendingQueue pending;
  ListBox lstBanned{"lstBanned"}, lstMails{"lstMails"};
  ListBox ReplyQueue{"ReplyQueue"};
  Label lblPending{"lblPending", "pending: 0"};
  const int mails = in.ConsumeIntegralInRange(0, 300);
  for (int i = 1; i <= mails; ++i) lstMails.Add("mail " + std::to_string(i));
  for (int i = in.ConsumeIntegralInRange(0, 3); i > 0; --i)
    lstBanned.Add(in.ConsumeRandomLengthString(10));
  RequestContext ctx{settings, banning,    pending,   lstBanned,
                     lstMails, ReplyQueue, lblPending};

  while (in.remaining_bytes() > 0) {
    const std::string speaker = in.ConsumeRandomLengthString(16);
    const std::string line = in.ConsumeRandomLengthString(64);
    const std::vector<std::string> before = pending.list().Items();
    const int replies = ReplyQueue.Count();
    HandleChatLine(ctx, speaker, line);
    const std::vector<std::string> after = pending.list().Items();
    Check(after.size() >= before.size(), "a line removed an entry");
    const std::string sn = LCase(speaker);
    for (std::size_t i = 0; i < after.size(); ++i) {
      if (i < before.size()) {
        Check(after[i] == before[i], "a line changed an earlier entry");
        continue;
      }
      const std::string& e = after[i];
      Check(e.size() > sn.size() && e.compare(0, sn.size(), sn) == 0 &&
                (e[sn.size()] == '-' || e[sn.size()] == '~'),
            "an entry that is not the speaker's");
    }
    for (int i = replies; i < ReplyQueue.Count(); ++i)
      Check(ReplyQueue.Item(i).compare(0, sn.size() + 1, sn + "-") == 0,
            "a reply order that is not the speaker's");
    if (after.size() > before.size())
      Check(lblPending.caption() == "pending: " + std::to_string(after.size()),
            "the label does not show the count");
    if (pending.Count() > 5000) break;  // a long range: enough for one input
  }
  return 0;
}
