// quorvex-expect TRANSCRIPT EXPECT: checks a jsonl transcript against an
// expectation file, for the scenario tests.
//
// Each line of EXPECT is one of
//   {json}    an event with at least these fields must come next in order
//             (objects match as subsets, arrays element by element);
//   !{json}   no such event may come before the next positive line (or
//             the end, when none follows);
//   # ...     a comment; blank lines are skipped.
// Exit status 0 when every line holds; otherwise the first failure is
// printed with its line number.
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

using nlohmann::json;

namespace {

bool Matches(const json& want, const json& got) {
  if (want.is_object()) {
    if (!got.is_object()) return false;
    for (auto it = want.begin(); it != want.end(); ++it) {
      auto g = got.find(it.key());
      if (g == got.end() || !Matches(it.value(), *g)) return false;
    }
    return true;
  }
  if (want.is_array()) {
    if (!got.is_array() || got.size() != want.size()) return false;
    for (size_t i = 0; i < want.size(); ++i)
      if (!Matches(want[i], got[i])) return false;
    return true;
  }
  if (want.is_number() && got.is_number())
    return want.get<double>() == got.get<double>();
  return want == got;
}

struct Expectation {
  int line;
  bool negative;
  json pattern;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: quorvex-expect TRANSCRIPT EXPECT\n";
    return 2;
  }
  std::vector<json> events;
  {
    std::ifstream in(argv[1]);
    if (!in) {
      std::cerr << argv[1] << ": cannot read\n";
      return 2;
    }
    std::string line;
    int n = 0;
    while (std::getline(in, line)) {
      ++n;
      if (line.empty()) continue;
      try {
        events.push_back(json::parse(line));
      } catch (const std::exception& e) {
        std::cerr << argv[1] << ":" << n << ": not JSON: " << e.what() << "\n";
        return 2;
      }
    }
  }
  std::vector<Expectation> wants;
  {
    std::ifstream in(argv[2]);
    if (!in) {
      std::cerr << argv[2] << ": cannot read\n";
      return 2;
    }
    std::string line;
    int n = 0;
    while (std::getline(in, line)) {
      ++n;
      size_t b = line.find_first_not_of(" \t\r");
      if (b == std::string::npos || line[b] == '#') continue;
      bool neg = line[b] == '!';
      try {
        wants.push_back({n, neg, json::parse(line.substr(b + (neg ? 1 : 0)))});
      } catch (const std::exception& e) {
        std::cerr << argv[2] << ":" << n << ": not JSON: " << e.what() << "\n";
        return 2;
      }
    }
  }
  size_t pos = 0;
  std::vector<const Expectation*> pending_negatives;
  auto check_negatives = [&](size_t from, size_t to) -> bool {
    for (const Expectation* x : pending_negatives)
      for (size_t i = from; i < to; ++i)
        if (Matches(x->pattern, events[i])) {
          std::cerr << argv[2] << ":" << x->line
                    << ": unwanted event found: " << events[i].dump() << "\n";
          return false;
        }
    pending_negatives.clear();
    return true;
  };
  for (const Expectation& w : wants) {
    if (w.negative) {
      pending_negatives.push_back(&w);
      continue;
    }
    size_t i = pos;
    while (i < events.size() && !Matches(w.pattern, events[i])) ++i;
    if (i == events.size()) {
      std::cerr << argv[2] << ":" << w.line << ": not found after event " << pos
                << ": " << w.pattern.dump() << "\n";
      return 1;
    }
    if (!check_negatives(pos, i)) return 1;
    pos = i + 1;
  }
  if (!check_negatives(pos, events.size())) return 1;
  std::cout << wants.size() << " expectations hold over " << events.size()
            << " events\n";
  return 0;
}
