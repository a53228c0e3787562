// A Prompter answered from a script: answers are queued in advance and
// taken one per input or yes/no box, in order. An input box with nothing
// queued is cancelled (""); a yes/no box with nothing queued is answered
// no. Message boxes take no answer. Every box shown is reported to the
// observer, so that a transcript can show the dialogue.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <string>

#include "ports/prompter.h"

namespace quorvex {

class ScriptedPrompter : public Prompter {
 public:
  using Observer = std::function<void(const PromptRecord&)>;

  // The answer for the next input box, or for the next yes/no box: "yes"
  // (any case) means yes, anything else no.
  void QueueAnswer(std::string answer) {
    answers_.push_back(std::move(answer));
  }
  std::size_t QueuedAnswers() const { return answers_.size(); }
  void SetObserver(Observer observer) { observer_ = std::move(observer); }

  std::string InputBox(const std::string& prompt, const std::string& title,
                       const std::string& default_text) override;
  bool YesNo(const std::string& prompt, const std::string& title) override;
  void MsgBox(const std::string& prompt, const std::string& title) override;

 private:
  void Report(const PromptRecord& record) {
    if (observer_) observer_(record);
  }

  std::deque<std::string> answers_;
  Observer observer_;
};

}  // namespace quorvex
