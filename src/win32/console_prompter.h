// A Prompter on a console: each box is written to `out` and answered by
// one line of `in`. An input box answered with an empty line keeps its
// default; end of input cancels it (""). A yes/no box is yes only for an
// answer beginning with "y" (any case).
#pragma once

#include <istream>
#include <ostream>
#include <string>

#include "ports/prompter.h"

namespace quorvex::win32 {

class ConsolePrompter : public Prompter {
 public:
  ConsolePrompter(std::istream& in, std::ostream& out) : in_(in), out_(out) {}

  std::string InputBox(const std::string& prompt, const std::string& title,
                       const std::string& default_text) override;
  bool YesNo(const std::string& prompt, const std::string& title) override;
  void MsgBox(const std::string& prompt, const std::string& title) override;

 private:
  std::istream& in_;
  std::ostream& out_;
};

}  // namespace quorvex::win32
