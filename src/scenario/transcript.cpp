#include "scenario/transcript.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace quorvex::scenario {

std::string JsonDump(const nlohmann::ordered_json& j, int indent) {
  return j.dump(indent, ' ', false,
                nlohmann::ordered_json::error_handler_t::replace);
}

namespace {
std::string Fixed3(double v) {
  char buf[48];
  std::snprintf(buf, sizeof buf, "%.3f", v);
  return buf;
}

std::string ClockText(double seconds) {
  long long ms = std::llround(seconds * 1000);
  ms %= 86400000LL;
  char buf[32];
  std::snprintf(buf, sizeof buf, "%02lld:%02lld:%02lld.%03lld", ms / 3600000,
                (ms / 60000) % 60, (ms / 1000) % 60, ms % 1000);
  return buf;
}

std::string Str(const nlohmann::ordered_json& f, const char* key) {
  auto it = f.find(key);
  if (it == f.end() || it->is_null()) return {};
  if (it->is_string()) return it->get<std::string>();
  return JsonDump(*it);
}
}  // namespace

std::string Transcript::TextLine(const std::string& ev,
                                 const nlohmann::ordered_json& f) const {
  if (ev == "chat") return Str(f, "sn") + ": " + Str(f, "text");
  if (ev == "status") return "[status] " + Str(f, "text");
  if (ev == "label") return "[" + Str(f, "name") + "] " + Str(f, "text");
  if (ev == "list") {
    std::string op = Str(f, "op");
    std::string sign = op == "add" ? "+ " : op == "remove" ? "- " : "cleared";
    return "[" + Str(f, "name") + "] " + sign + Str(f, "item");
  }
  if (ev == "mail")
    return "[mail " + Str(f, "send") + "] from " + Str(f, "from") + " to " +
           Str(f, "to") + ": " + Str(f, "subject");
  if (ev == "im") return "[im] to " + Str(f, "to") + ": " + Str(f, "text");
  if (ev == "prompt" && Str(f, "kind") == "message")
    return "[message] " + Str(f, "title") + " / " + Str(f, "prompt");
  if (ev == "window") return "[" + Str(f, "name") + "] " + Str(f, "what");
  if (ev == "prompt")
    return "[" + Str(f, "kind") + " box] " + Str(f, "title") + " / " +
           Str(f, "prompt") + " -> " + JsonDump(f.value("answer", ""));
  if (ev == "client") return "[client] " + Str(f, "what");
  if (ev == "machine") return "[machine] " + Str(f, "what");
  // The raw final state is for machines: --format jsonl has it.
  if (ev == "final") return "[final] the run is over";
  return "[" + ev + "] " + JsonDump(f);
}

void Transcript::Write(const std::string& ev,
                       const nlohmann::ordered_json& fields) {
  if (before_write_) before_write_();
  ++events_;
  if (format_ == TranscriptFormat::kText) {
    // One write a line: a file flushed on every write gets whole lines.
    out_ << ClockText(clock_()) + "  " + TextLine(ev, fields) + '\n';
    return;
  }
  nlohmann::ordered_json j;
  j["ev"] = ev;
  for (auto it = fields.begin(); it != fields.end(); ++it)
    j[it.key()] = it.value();
  std::string body = JsonDump(j);
  // "t" leads, with exactly three decimals.
  out_ << "{\"t\":" + Fixed3(elapsed_()) + "," + body.substr(1) + '\n';
}

void TranscriptObserver::OnChat(const std::string& sn,
                                const std::string& text) {
  t_.Write("chat", {{"sn", sn}, {"text", text}});
}

void TranscriptObserver::OnMail(const std::string& from, const std::string& to,
                                const std::string& subject,
                                const std::string& body, bool send_now) {
  t_.Write("mail", {{"from", from},
                    {"to", to},
                    {"subject", subject},
                    {"body", body},
                    {"send", send_now ? "now" : "later"}});
}

void TranscriptObserver::OnIm(const std::string& to, const std::string& text) {
  t_.Write("im", {{"to", to}, {"text", text}});
}

void TranscriptObserver::OnClient(const std::string& what) {
  t_.Write("client", {{"what", what}});
}

TranscriptFile::TranscriptFile(std::filesystem::path path, std::streamoff limit,
                               std::function<double()> clock)
    : path_(std::move(path)),
      transcript_(file_, TranscriptFormat::kText, clock, clock),
      lines_(transcript_) {
  Open();
  transcript_.SetBeforeWrite([this, limit] {
    if (file_.tellp() < limit) return;
    file_.close();
    Open();
  });
}

void TranscriptFile::Open() {
  file_.open(path_, std::ios::binary | std::ios::trunc);
  file_.setf(std::ios::unitbuf);
}

}  // namespace quorvex::scenario
