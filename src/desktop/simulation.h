// quorvex.exe --simulate: the simulated client in this process, with the
// demo's room talking in real time, and a folder that stands for drive C:
// (settings, queue and restart files included), so that anyone without
// the client can watch the server work. What the simulated client shows
// and sends (the room's lines, mails, instant messages) is written as it
// happens to room.txt in that folder, for a person or a test to follow;
// the file starts afresh once it holds kRoomLogLimit bytes.
#pragma once

#include <filesystem>
#include <ios>
#include <memory>

#include "ports/host.h"
#include "scenario/scenario.h"
#include "scenario/transcript.h"
#include "sim/file_registry.h"
#include "sim/folder_machine.h"
#include "sim/ini_profile_file.h"
#include "sim/sim_client.h"
#include "sim/sim_world.h"

namespace quorvex::desktop {

inline constexpr std::streamoff kRoomLogLimit = 8 << 20;

class Simulation {
 public:
  // `root` holds the simulated drive and registry; a first run there
  // stores the demo room's settings (the handle the room uses, ...).
  Simulation(Host& host, const std::filesystem::path& root);

  // Starts the room's talk, and again each time it has run its course.
  void StartTalk();

  Registry& registry() { return registry_; }
  ProfileFile& profiles() { return profiles_; }
  FolderMachine& machine() { return machine_; }
  WindowApi& api() { return client_; }

 private:
  Host& host_;
  scenario::Scenario room_;
  FileRegistry registry_;
  IniProfileFile profiles_;
  FolderMachine machine_;
  SimWorld world_;
  SimClient client_;
  scenario::TranscriptFile log_;
};

}  // namespace quorvex::desktop
