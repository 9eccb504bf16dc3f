// The network fixture of a release (tests/machines/network/): a registry laid out as that
// release lays out its network adapters, with the devices and services behind them.
//
// On the simulation the whole machine profile becomes the active machine. Under Wine the
// release's registry file is imported into the real registry and every key it touched is put
// back when the fixture ends; what only the simulation can hold (the Windows 9x Config Manager
// in HKEY_DYN_DATA, NDIS devices, services, the present-device list) is not there.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "support/test_machine.h"

namespace hostkit_test {

class NetworkFixture {
 public:
  NetworkFixture();
  ~NetworkFixture();
  NetworkFixture(const NetworkFixture&) = delete;
  NetworkFixture& operator=(const NetworkFixture&) = delete;

  // False with the reason when the fixture cannot be loaded.
  bool Load(Release release, std::string& error);

 private:
  struct Undo;
  std::unique_ptr<Undo> undo_;
};

// The bytes of a file of the test fixtures, by its path below tests/machines; empty when it
// cannot be read.
std::string ReadFixtureFile(const std::string& relativePath);

}  // namespace hostkit_test
