// One line of the pending queue, as lstPending holds it: sn + "-" + mail
// number, sn + "-list", or sn + "~" + search text. Every part of the
// program builds and reads the lines through this type.
#pragma once

#include <string>
#include <string_view>

namespace quorvex {

struct PendingLine {
  static constexpr std::string_view kList = "list";

  static std::string Mail(std::string_view sn, std::string_view number) {
    return std::string(sn) + "-" + std::string(number);
  }
  static std::string List(std::string_view sn) { return Mail(sn, kList); }
  static std::string Find(std::string_view sn, std::string_view text) {
    return std::string(sn) + "~" + std::string(text);
  }

  // The requester of a mail or list line (the text before the first "-")
  // or of a find (before the first "~"); `separator` says which. Empty
  // when the line has no such separator: it is none of those.
  static std::string_view Requester(std::string_view line, char separator) {
    const auto at = line.find(separator);
    return at == std::string_view::npos ? std::string_view()
                                        : line.substr(0, at);
  }
  // What the line wants: the text after the first `separator`.
  static std::string_view Wanted(std::string_view line, char separator) {
    const auto at = line.find(separator);
    return at == std::string_view::npos ? std::string_view()
                                        : line.substr(at + 1);
  }
  static bool Has(std::string_view line, char separator) {
    return line.find(separator) != std::string_view::npos;
  }
};

}  // namespace quorvex
