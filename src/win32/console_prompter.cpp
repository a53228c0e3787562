#include "win32/console_prompter.h"

namespace quorvex::win32 {

std::string ConsolePrompter::InputBox(const std::string& prompt,
                                      const std::string& title,
                                      const std::string& default_text) {
  out_ << "[" << title << "] " << prompt << " [" << default_text
       << "]: " << std::flush;
  std::string line;
  if (!std::getline(in_, line)) return "";
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line.empty() ? default_text : line;
}

bool ConsolePrompter::YesNo(const std::string& prompt,
                            const std::string& title) {
  out_ << "[" << title << "] " << prompt << " (y/n): " << std::flush;
  std::string line;
  if (!std::getline(in_, line)) return false;
  return !line.empty() && (line[0] == 'y' || line[0] == 'Y');
}

void ConsolePrompter::MsgBox(const std::string& prompt,
                             const std::string& title) {
  out_ << "[" << title << "] " << prompt << "\n" << std::flush;
}

}  // namespace quorvex::win32
