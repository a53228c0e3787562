// The jobs the serving loop runs by default: the forwarding job, the list
// and find serving and the forward-error sweep.
#include "server/error_sweep.h"
#include "server/forward_job.h"
#include "server/lists_finds.h"
#include "server/serve_engine.h"

namespace quorvex {

ServeJobs DefaultServeJobs() {
  ServeJobs jobs;
  jobs.mail = RunMailJob;
  jobs.list = RunListJob;
  jobs.find = RunFindJob;
  jobs.sweep = ForwardErrorSweep;
  jobs.collect_lists = CollectLists;
  jobs.build_lists = BuildLists;
  return jobs;
}

}  // namespace quorvex
