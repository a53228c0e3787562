// The jobs the serving loop runs by default: the forwarding job, the list
// and find serving and the forward-error sweep.
#include <memory>

#include "server/error_sweep.h"
#include "server/forward_job.h"
#include "server/lists_finds.h"
#include "server/serve_engine.h"

namespace quorvex {

ServeJobs DefaultServeJobs() {
  ServeJobs jobs;
  // The forward jobs and the sweep share what a forward leaves behind.
  auto f = std::make_shared<ForwardScratch>();
  jobs.mail = [f](FrmMain& frm, const ClientContext& c) {
    RunMailJob(frm, c, *f);
  };
  jobs.list = [f](FrmMain& frm, const ClientContext& c) {
    RunListJob(frm, c, *f);
  };
  jobs.find = RunFindJob;
  jobs.sweep = [f](FrmMain& frm, const ClientContext& c) {
    ForwardErrorSweep(frm, c, *f);
  };
  jobs.collect_lists = CollectLists;
  jobs.build_lists = BuildLists;
  return jobs;
}

}  // namespace quorvex
