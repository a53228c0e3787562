#include "ports/scripted_prompter.h"

#include "model/text_util.h"

namespace quorvex {

std::string ScriptedPrompter::InputBox(const std::string& prompt,
                                       const std::string& title,
                                       const std::string& default_text) {
  std::string answer;
  if (!answers_.empty()) {
    answer = std::move(answers_.front());
    answers_.pop_front();
  }
  Report({"input", title, prompt, default_text, answer});
  return answer;
}

bool ScriptedPrompter::YesNo(const std::string& prompt,
                             const std::string& title) {
  bool yes = false;
  if (!answers_.empty()) {
    yes = EqualsIgnoreCase(Trim(answers_.front()), "yes");
    answers_.pop_front();
  }
  Report({"yesno", title, prompt, "", yes ? "yes" : "no"});
  return yes;
}

void ScriptedPrompter::MsgBox(const std::string& prompt,
                              const std::string& title) {
  Report({"message", title, prompt, "", ""});
}

}  // namespace quorvex
