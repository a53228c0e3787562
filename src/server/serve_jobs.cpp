#include "server/serve_jobs.h"

#include <memory>

#include "server/error_sweep.h"
#include "server/lists_finds.h"

namespace quorvex {

ServeJobs DefaultServeJobs(const MailJobContext& mail,
                           const ReplyContext& replies, const BanContext& ban,
                           const RestartContext& restart,
                           const ClientContext& c) {
  ServeJobs jobs;
  const ClientContext* cc = &c;
  // The forward jobs and the sweep share what a forward leaves behind.
  auto f = std::make_shared<ForwardUnderWay>();
  jobs.mail = [mail, cc, f] { RunMailJob(mail, *cc, *f); };
  jobs.list = [mail, cc, f] { RunListJob(mail, *cc, *f); };
  jobs.find = [mail, cc] { RunFindJob(mail, *cc); };
  jobs.sweep = [mail, cc, f] { ForwardErrorSweep(mail, *cc, *f); };
  jobs.collect_lists = [mail] { return CollectLists(mail.mailbox); };
  jobs.build_lists = [mail, cc] { BuildLists(mail, *cc); };
  jobs.thank_you = [replies, cc](const std::string& sn) {
    ThankYouReply(replies, *cc, sn);
  };
  jobs.status = [replies, cc](const std::string& sn) {
    StatusReply(replies, *cc, sn);
  };
  jobs.advertise = [replies, cc] { Advertise(replies, *cc); };
  jobs.full_mailbox = [ban = BanContext(ban)](const std::string& sn) mutable {
    if (ban.banning.chkFullBox.value == 1) AddMistake(ban, sn);
  };
  jobs.cpu_restart = [restart, cc] { CPURestart(restart, *cc); };
  return jobs;
}

}  // namespace quorvex
