// The Prompter port: the runtime's input box, yes/no box and message box.
#pragma once

#include <functional>
#include <string>

namespace quorvex {

class Prompter {
 public:
  virtual ~Prompter() = default;
  // InputBox(prompt, title, default): the answer, or "" when cancelled.
  virtual std::string InputBox(const std::string& prompt,
                               const std::string& title,
                               const std::string& default_text) = 0;
  // A yes/no box: true for yes.
  virtual bool YesNo(const std::string& prompt, const std::string& title) = 0;
  virtual void MsgBox(const std::string& prompt, const std::string& title) = 0;
};

// What a prompt showed and how it was answered (for transcripts).
struct PromptRecord {
  std::string kind;  // "input", "yesno" or "message"
  std::string title;
  std::string prompt;
  std::string default_text;
  std::string answer;  // for yes/no: "yes" or "no"
};

}  // namespace quorvex
