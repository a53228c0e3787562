// A label or button caption, and the status strip: texts that views draw
// and the transcript follows. Observers hear of real changes only.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "model/draw_status.h"
#include "model/observers.h"

namespace quorvex {

class Label {
 public:
  using Observer = std::function<void(const Label&)>;

  Label(std::string name, std::string caption)
      : name_(std::move(name)), caption_(std::move(caption)) {}
  Label(const Label&) = delete;
  Label& operator=(const Label&) = delete;

  const std::string& name() const { return name_; }
  const std::string& caption() const { return caption_; }
  void Set(std::string caption) {
    if (caption == caption_) return;
    caption_ = std::move(caption);
    observers_.Notify(*this);
  }
  int Subscribe(Observer o) { return observers_.Add(std::move(o)); }
  void Unsubscribe(int id) { observers_.Remove(id); }

 private:
  std::string name_;
  std::string caption_;
  Observers<const Label&> observers_;
};

// The caption of a counter's label: its word, a colon and the count
// ("pending: 12").
struct CountCaption {
  const char* word;
  std::string operator()(long long n) const {
    return std::string(word) + ": " + std::to_string(n);
  }
};
inline constexpr CountCaption kSessionCount{"session"};
inline constexpr CountCaption kListsCount{"lists"};
inline constexpr CountCaption kMailsCount{"mails"};
inline constexpr CountCaption kTotalCount{"total"};
inline constexpr CountCaption kBannedCount{"banned"};
inline constexpr CountCaption kPendingCount{"pending"};
inline constexpr CountCaption kBustsCount{"busts"};
inline constexpr CountCaption kPeopleCount{"people"};

// The status strip (`picStatus`) painted by DrawStatus: a text and the
// colour of its band.
class StatusStrip {
 public:
  using Observer = std::function<void(const StatusStrip&)>;

  const std::string& text() const { return text_; }
  const std::string& colour() const { return colour_; }
  // DrawStatus(picStatus, colour, text).
  void Draw(std::string text, std::string colour = kBandColour) {
    bool changed = text != text_;
    text_ = std::move(text);
    colour_ = std::move(colour);
    if (changed) observers_.Notify(*this);
  }
  int Subscribe(Observer o) { return observers_.Add(std::move(o)); }
  void Unsubscribe(int id) { observers_.Remove(id); }

 private:
  std::string text_;
  std::string colour_ = kBandColour;
  Observers<const StatusStrip&> observers_;
};

}  // namespace quorvex
