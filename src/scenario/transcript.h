// The transcript of a quorvex-sim run: one event a line, as JSON objects
// (jsonl) or as text for a person to read.
#pragma once

#include <filesystem>
#include <fstream>
#include <functional>
#include <ios>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

#include "sim/sim_observer.h"

namespace quorvex::scenario {

enum class TranscriptFormat { kJsonl, kText };

class Transcript {
 public:
  // `elapsed` gives virtual seconds since the start; `clock` the time of
  // day in seconds since midnight (for the text format).
  Transcript(std::ostream& out, TranscriptFormat format,
             std::function<double()> elapsed, std::function<double()> clock)
      : out_(out),
        format_(format),
        elapsed_(std::move(elapsed)),
        clock_(std::move(clock)) {}

  // Writes one event; `fields` holds everything but "t" and "ev", in the
  // order they should appear.
  void Write(const std::string& ev, const nlohmann::ordered_json& fields);
  // Runs before each event is written.
  void SetBeforeWrite(std::function<void()> fn) {
    before_write_ = std::move(fn);
  }

  int events() const { return events_; }

 private:
  std::string TextLine(const std::string& ev,
                       const nlohmann::ordered_json& f) const;

  std::ostream& out_;
  TranscriptFormat format_;
  std::function<double()> elapsed_;
  std::function<double()> clock_;
  std::function<void()> before_write_;
  int events_ = 0;
};

// Writes what the simulated client shows and sends: chat lines, mails,
// instant messages and the client's own events.
class TranscriptObserver : public SimObserver {
 public:
  explicit TranscriptObserver(Transcript& t) : t_(t) {}
  void OnChat(const std::string& sn, const std::string& text) override;
  void OnMail(const std::string& from, const std::string& to,
              const std::string& subject, const std::string& body,
              bool send_now) override;
  void OnIm(const std::string& to, const std::string& text) override;
  void OnClient(const std::string& what) override;

 private:
  Transcript& t_;
};

// What a simulated client shows and sends, as text lines in a file that a
// person or another process can follow: each line is on disk as soon as it
// is written, and the file starts afresh once it holds `limit` bytes or
// more, so that a room left talking for days cannot fill the disk.
class TranscriptFile {
 public:
  // `clock` gives the time of day in seconds since midnight.
  TranscriptFile(std::filesystem::path path, std::streamoff limit,
                 std::function<double()> clock);
  // What the simulated client is to tell.
  SimObserver& observer() { return lines_; }

 private:
  void Open();

  std::filesystem::path path_;
  std::ofstream file_;
  Transcript transcript_;
  TranscriptObserver lines_;
};

// JSON text of any byte string: invalid UTF-8 is replaced, never thrown.
std::string JsonDump(const nlohmann::ordered_json& j, int indent = -1);

}  // namespace quorvex::scenario
