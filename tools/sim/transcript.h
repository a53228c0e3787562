// The transcript of a quorvex-sim run: one event a line, as JSON objects
// (jsonl) or as text for a person to read.
#pragma once

#include <functional>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>

namespace quorvex::sim {

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

  int events() const { return events_; }

 private:
  std::string TextLine(const std::string& ev,
                       const nlohmann::ordered_json& f) const;

  std::ostream& out_;
  TranscriptFormat format_;
  std::function<double()> elapsed_;
  std::function<double()> clock_;
  int events_ = 0;
};

// JSON text of any byte string: invalid UTF-8 is replaced, never thrown.
std::string JsonDump(const nlohmann::ordered_json& j, int indent = -1);

}  // namespace quorvex::sim
