// Ports that fail now and then, for soak runs: they wrap the real ones and,
// by seeded chance, make a write fail (nothing is stored, as when the
// registry refuses a value), fill the disk in the middle of a save (that
// save and the next few fail, the old file staying whole, as an atomic
// save leaves it), or make a profile file vanish just before the program
// looks for it. Each fault is reported as it happens.
#pragma once

#include <cstdint>
#include <functional>
#include <random>
#include <string>

#include "ports/machine.h"
#include "ports/profile_file.h"
#include "ports/registry.h"

namespace quorvex {

struct FaultChances {
  double registry_write = 0;
  double profile_write = 0;
  double disk_full = 0;
  double vanish = 0;
};

// Shared by the faulty ports of one run: the dice, the disk's state and
// who hears of each fault (kind, what it hit).
class FaultDice {
 public:
  using Reporter =
      std::function<void(const std::string& kind, const std::string& what)>;
  FaultDice(FaultChances chances, std::uint64_t seed, Reporter report)
      : chances_(chances), rng_(seed), report_(std::move(report)) {}

  const FaultChances& chances() const { return chances_; }
  // True (and reported) when this one fails.
  bool Roll(double chance, const std::string& kind, const std::string& what);
  // A profile-file save: fails when the disk is full, and may fill it.
  bool SaveFails(const std::string& what);
  int injected() const { return injected_; }

  // Writes that still fail once the disk has filled up.
  static constexpr int kFullWrites = 3;

 private:
  FaultChances chances_;
  std::mt19937_64 rng_;
  Reporter report_;
  int full_left_ = 0;
  int injected_ = 0;
};

class FaultyRegistry : public Registry {
 public:
  FaultyRegistry(Registry& inner, FaultDice& dice)
      : inner_(inner), dice_(dice) {}
  std::optional<std::string> Get(const std::string& app,
                                 const std::string& section,
                                 const std::string& key) const override {
    return inner_.Get(app, section, key);
  }
  void Save(const std::string& app, const std::string& section,
            const std::string& key, const std::string& value) override;
  void DeleteKey(const std::string& app, const std::string& section,
                 const std::string& key) override;
  void DeleteApp(const std::string& app) override;
  Sections Dump(const std::string& app) const override {
    return inner_.Dump(app);
  }
  // A batch fails as a whole, as one write of the settings file.
  void Write(const std::string& app,
             const std::vector<RegistryChange>& changes) override;

 private:
  Registry& inner_;
  FaultDice& dice_;
};

class FaultyProfileFile : public ProfileFile {
 public:
  FaultyProfileFile(ProfileFile& inner, FaultDice& dice)
      : inner_(inner), dice_(dice) {}
  std::string GetString(const std::string& file, const std::string& section,
                        const std::string& key,
                        const std::string& default_value) const override {
    return inner_.GetString(file, section, key, default_value);
  }
  void WriteString(const std::string& file, const std::string& section,
                   const std::string& key,
                   const std::optional<std::string>& value) override;
  void WriteStrings(
      const std::string& file, const std::string& section,
      const std::vector<std::pair<std::string, std::string>>& values) override;
  Sections Dump(const std::string& file) const override {
    return inner_.Dump(file);
  }

 private:
  ProfileFile& inner_;
  FaultDice& dice_;
};

// Profile files (".ini", any case) may vanish when the program asks
// whether they exist; everything else passes through.
class FaultyMachine : public Machine {
 public:
  FaultyMachine(Machine& inner, FaultDice& dice) : inner_(inner), dice_(dice) {}
  std::string AppPath() const override { return inner_.AppPath(); }
  std::string ExeName() const override { return inner_.ExeName(); }
  std::string WindowsDirectory() const override {
    return inner_.WindowsDirectory();
  }
  std::string HostPath(std::string_view windows_path) const override {
    return inner_.HostPath(windows_path);
  }
  bool FileExists(std::string_view windows_path) const override;
  void RemoveFile(std::string_view windows_path) override {
    inner_.RemoveFile(windows_path);
  }
  std::int64_t FileLength(std::string_view windows_path) const override {
    return inner_.FileLength(windows_path);
  }
  bool CopyFileBytes(std::string_view from, std::string_view to,
                     const std::function<void(std::int64_t, std::int64_t)>&
                         progress) override {
    return inner_.CopyFileBytes(from, to, progress);
  }
  // The log's writes pass through without a roll of the dice: a run's
  // faults, and so its transcript, do not depend on what it logs.
  bool AppendToFile(std::string_view windows_path,
                    std::string_view text) override {
    return inner_.AppendToFile(windows_path, text);
  }
  bool MoveFileOver(std::string_view from, std::string_view to) override {
    return inner_.MoveFileOver(from, to);
  }
  void RunProgram(std::string_view windows_path) override {
    inner_.RunProgram(windows_path);
  }
  void Reboot() override { inner_.Reboot(); }

 private:
  Machine& inner_;
  FaultDice& dice_;
};

}  // namespace quorvex
