// A scenario's room on the simulated client: who is there, what the
// mailbox holds, which mailboxes are full and which mails dead, and the
// stored settings it starts with. Shared by the scenario runner and by the
// desktop program's simulated room, which also replays the room's talk.
#pragma once

#include "ports/host.h"
#include "ports/profile_file.h"
#include "ports/registry.h"
#include "scenario/scenario.h"
#include "sim/folder_machine.h"
#include "sim/sim_client.h"

namespace quorvex::scenario {

// The registry values of the set-up.
void StageRegistry(const Scenario& sc, Registry& registry);
// Puts the simulated client's program in its folder and the folder in
// Win.INI's "WAOL" "AppPath", where the program looks for it. A scenario
// that sets up "WAOL" itself gets nothing; a kept machine keeps what it
// has.
void InstallClient(const FolderMachine& machine, ProfileFile& profiles,
                   const Scenario& sc);
// The client as it stands at time 0 (not launched yet).
void StageClient(const Scenario& sc, SimClient& client);
// Schedules the room's own lines (people saying, joining and leaving) on
// the host, `offset` seconds later than the scenario has them. Presses,
// selections and answers are left to the person at the keyboard. Returns
// the time of the last line.
double ScheduleRoomTalk(const Scenario& sc, Host& host, SimClient& client,
                        double offset = 0);

}  // namespace quorvex::scenario
