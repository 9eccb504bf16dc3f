#include "support/test_machine.h"

namespace hostkit_test {

std::vector<Release> AllReleases() {
  return {Release::Win95,  Release::Win98,   Release::WinME,
          Release::WinNT4, Release::Win2000, Release::WinXP};
}

std::shared_ptr<Hostkit::sim::Machine> UseFreshMachine(Release release) {
  auto machine = std::make_shared<Hostkit::sim::Machine>(release);
  Hostkit::sim::ActivateMachine(machine);
  return machine;
}

std::string ReleaseParamName(const testing::TestParamInfo<Release>& info) {
  return Hostkit::sim::ReleaseName(info.param);
}

}  // namespace hostkit_test
