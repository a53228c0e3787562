#include "sim/faulty_ports.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ports/memory_registry.h"
#include "sim/folder_machine.h"
#include "testing/temp_folder.h"

namespace quorvex {
namespace {

struct Heard {
  std::vector<std::string> faults;
  FaultDice::Reporter Reporter() {
    return [this](const std::string& kind, const std::string& what) {
      faults.push_back(kind + " " + what);
    };
  }
};

TEST(FaultyPortsTest, WritesFailOnlyByTheirChanceAndAreReported) {
  Heard heard;
  MemoryRegistry registry;
  MemoryProfileFile profiles;
  {
    FaultDice never({}, 1, heard.Reporter());
    FaultyRegistry r(registry, never);
    FaultyProfileFile p(profiles, never);
    for (int i = 0; i < 50; ++i) {
      r.Save("Quorvex", "Settings", "TotalSent", std::to_string(i));
      p.WriteString("q.ini", "Quorvex", "TotalPending", std::to_string(i));
    }
    EXPECT_EQ(never.injected(), 0);
  }
  EXPECT_EQ(registry.Get("Quorvex", "Settings", "TotalSent"), "49");
  EXPECT_EQ(profiles.GetString("q.ini", "Quorvex", "TotalPending", ""), "49");

  FaultDice always({.registry_write = 1, .profile_write = 1}, 1,
                   heard.Reporter());
  FaultyRegistry r(registry, always);
  FaultyProfileFile p(profiles, always);
  r.Save("Quorvex", "Settings", "TotalSent", "50");
  r.DeleteKey("Quorvex", "Settings", "TotalSent");
  r.DeleteApp("Quorvex");
  // A batch fails as a whole: none of its changes is made.
  r.Write("Quorvex", {{"Settings", "TotalSent", std::nullopt},
                      {"Settings", "Handle", "x"}});
  r.Write("Quorvex", {});  // nothing to write: no fault
  p.WriteStrings("q.ini", "Quorvex", {{"TotalPending", "50"}});
  p.WriteStrings("q.ini", "Quorvex", {});  // nothing to write: no fault
  // Nothing changed; reads pass through.
  EXPECT_EQ(r.Get("Quorvex", "Settings", "TotalSent"), "49");
  EXPECT_EQ(p.GetString("q.ini", "Quorvex", "TotalPending", ""), "49");
  EXPECT_EQ(heard.faults, (std::vector<std::string>{
                              "registry-write Settings\\TotalSent",
                              "registry-write delete Settings\\TotalSent",
                              "registry-write delete Quorvex",
                              "registry-write Settings\\TotalSent and 1 more",
                              "profile-write q.ini"}));
  EXPECT_EQ(always.injected(), 5);
  EXPECT_EQ(r.Get("Quorvex", "Settings", "Handle"), std::nullopt);

  // Chances between: about that share of the writes fail.
  FaultDice some({.registry_write = 0.25}, 7, nullptr);
  FaultyRegistry s(registry, some);
  for (int i = 0; i < 4000; ++i) s.Save("Quorvex", "S", "k", "v");
  EXPECT_NEAR(some.injected(), 1000, 120);
}

// Every write fails while the disk is full: the save that filled it and
// the next kFullWrites - 1; then the dice roll again.
TEST(FaultyPortsTest, AFullDiskFailsThatSaveAndTheNextFewThenFreesUp) {
  Heard heard;
  MemoryProfileFile profiles;
  FaultDice dice({.disk_full = 0.0001}, 1, heard.Reporter());
  FaultyProfileFile p(profiles, dice);
  for (int i = 0; i < 100000 && dice.injected() == 0; ++i)
    p.WriteString("q.ini", "Quorvex", "k", "kept");
  ASSERT_EQ(dice.injected(), 1);
  for (int i = 1; i < FaultDice::kFullWrites; ++i)
    p.WriteString("q.ini", "Quorvex", "k", "lost");
  EXPECT_EQ(profiles.GetString("q.ini", "Quorvex", "k", ""), "kept");
  EXPECT_EQ(heard.faults, std::vector<std::string>(FaultDice::kFullWrites,
                                                   "disk-full q.ini"));
  EXPECT_FALSE(dice.SaveFails("q.ini"));
}

TEST(FaultyPortsTest, ProfileFilesVanishWhenLookedFor) {
  const TempFolder root("qv_faulty_machine_");
  FolderMachine folder(root);
  FaultDice dice({.vanish = 1}, 1, nullptr);
  FaultyMachine machine(folder, dice);
  const std::string ini = machine.AppPath() + "\\Quorvex.INI";
  const std::string exe = machine.AppPath() + "\\prog.exe";
  for (const std::string& f : {ini, exe})
    TempFolder::Write(machine.HostPath(f), "x");
  EXPECT_TRUE(machine.FileExists(exe));   // not a profile file: stays
  EXPECT_FALSE(machine.FileExists(ini));  // vanished
  EXPECT_FALSE(folder.FileExists(ini));
  EXPECT_FALSE(machine.FileExists(ini));  // a missing file is no fault
  EXPECT_EQ(dice.injected(), 1);
}

}  // namespace
}  // namespace quorvex
