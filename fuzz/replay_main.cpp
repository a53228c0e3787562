// Runs a fuzz target's entry point once on each file named (or each file
// of each folder named): the seed corpus and the inputs that once failed
// become plain regression tests, built with any compiler.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data,
                                      std::size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!fs::exists(argv[i])) continue;  // e.g. no regressions yet
    if (fs::is_directory(argv[i])) {
      for (const auto& e : fs::directory_iterator(argv[i]))
        if (e.is_regular_file()) files.push_back(e.path());
    } else {
      files.emplace_back(argv[i]);
    }
  }
  if (files.empty()) {
    std::fprintf(stderr, "replay: no input files\n");
    return 2;
  }
  for (const fs::path& f : files) {
    std::ifstream in(f, std::ios::binary);
    std::string bytes((std::istreambuf_iterator<char>(in)),
                      std::istreambuf_iterator<char>());
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()),
                           bytes.size());
  }
  std::printf("replayed %zu inputs\n", files.size());
  return 0;
}
