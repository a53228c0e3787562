#include "sim/recipients.h"

#include "model/text_util.h"

namespace quorvex {

std::vector<std::string> Recipients::All() const {
  std::vector<std::string> all = to;
  all.insert(all.end(), blind.begin(), blind.end());
  return all;
}

Recipients ParseRecipients(std::string_view field) {
  Recipients r;
  std::string current;
  auto flush = [&] {
    std::string name = Trim(current);
    if (!name.empty()) r.to.push_back(name);
    current.clear();
  };
  for (std::size_t i = 0; i < field.size(); ++i) {
    char c = field[i];
    if (c == ',') {
      flush();
    } else if (c == '(') {
      flush();
      std::size_t close = field.find(')', i + 1);
      std::string_view inside = field.substr(
          i + 1, close == std::string_view::npos ? std::string_view::npos
                                                 : close - i - 1);
      std::string name = Trim(inside);
      if (!name.empty()) r.blind.push_back(name);
      if (close == std::string_view::npos) return r;
      i = close;
    } else {
      current += c;
    }
  }
  flush();
  return r;
}

std::string ScreenNameKey(std::string_view name) {
  return LCase(RemoveSpaces(name));
}

}  // namespace quorvex
