// Network fixtures on the simulation: the release's machine profile, activated.
#include "hostkit/sim/profile.h"
#include "support/network_fixture.h"

namespace hostkit_test {

struct NetworkFixture::Undo {};

NetworkFixture::NetworkFixture() = default;
NetworkFixture::~NetworkFixture() = default;

bool NetworkFixture::Load(Release release, std::string& error) {
  auto machine = Hostkit::sim::LoadMachineProfile(
      std::string(HOSTKIT_TEST_MACHINES) + "/network/" + ReleaseTag(release) + ".json", error);
  if (machine == nullptr) {
    return false;
  }
  Hostkit::sim::ActivateMachine(machine);
  return true;
}

}  // namespace hostkit_test
