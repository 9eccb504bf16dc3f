// The parts of ScratchFolder that are the same on both legs.
#include <fstream>
#include <iterator>
#include <random>

#include "support/scratch_folder.h"

namespace hostkit_test {

namespace {

std::filesystem::path NewFolder() {
  std::random_device random;
  const auto base = std::filesystem::temp_directory_path();
  for (;;) {
    auto folder = base / ("hostkit-scratch-" + std::to_string(random()));
    if (std::filesystem::create_directory(folder)) {
      return folder;
    }
  }
}

}  // namespace

ScratchFolder::ScratchFolder() : root_(NewFolder()), files_(root_) { Place(); }

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(root_, ignored);
}

std::string ScratchFolder::Read(const std::string& name) const {
  std::ifstream in(files_ / name, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace hostkit_test
