// The Prompter as real dialogs: the input box (title, prompt, the current
// value as default; Cancel answers ""), the yes/no box and the message box,
// each in front of the program's windows.
#pragma once

#include <windows.h>

#include "ports/prompter.h"

namespace quorvex::desktop {

class DialogPrompter : public Prompter {
 public:
  void SetOwner(HWND owner) { owner_ = owner; }

  std::string InputBox(const std::string& prompt, const std::string& title,
                       const std::string& default_text) override;
  bool YesNo(const std::string& prompt, const std::string& title) override;
  void MsgBox(const std::string& prompt, const std::string& title) override;

 private:
  HWND owner_ = nullptr;
};

// The input box's controls, for the tests that answer it.
inline constexpr int kIdInputPrompt = 10;
inline constexpr int kIdInputText = 11;

}  // namespace quorvex::desktop
