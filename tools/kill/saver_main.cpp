// quorvex-kill-saver FOLDER FIRST: saves steps FIRST, FIRST+1, ... in FOLDER
// for ever, printing each step number on stdout once all its files are
// saved. The kill test kills it at random moments.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "saved_state.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  const std::filesystem::path folder = argv[1];
  for (std::int64_t k = std::atoll(argv[2]);; ++k) {
    quorvex::kill::SaveStep(folder, k);
    const std::string done = std::to_string(k) + "\n";
    if (::write(1, done.data(), done.size()) < 0) return 1;
  }
}
