// A host folder standing for a simulated machine's drives, for tests that need files.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "hostkit/sim/machine.h"

namespace hostkit_test {

// Creates a fresh folder, makes it the machine's driveRoot and removes it at the end.
class SimDrives {
 public:
  explicit SimDrives(Hostkit::sim::Machine& machine) {
    std::random_device random;
    const auto base = std::filesystem::temp_directory_path();
    std::error_code error;
    do {
      root_ = base / ("hostkit-drives-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(root_, error) && !error);
    if (error) {
      ADD_FAILURE() << "cannot create " << root_ << ": " << error.message();
    }
    machine.facts().driveRoot = root_;
  }
  ~SimDrives() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
  }
  SimDrives(const SimDrives&) = delete;
  SimDrives& operator=(const SimDrives&) = delete;

  // Creates a file (and its folders) at a host path relative to the root, "c/Tools/agent.exe".
  std::filesystem::path AddFile(const std::string& relative, const std::string& content = "x") {
    std::filesystem::path path = root_ / relative;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << content;
    return path;
  }

  std::filesystem::path AddFolder(const std::string& relative) {
    std::filesystem::path path = root_ / relative;
    std::filesystem::create_directories(path);
    return path;
  }

  const std::filesystem::path& root() const { return root_; }

 private:
  std::filesystem::path root_;
};

}  // namespace hostkit_test
