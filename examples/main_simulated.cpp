// The example on Linux: the library runs on a simulated Windows machine, loaded from a machine
// profile, whose drives are a folder of the host (drive C: is its subfolder "c").
//
//   setup_dhcp PROFILE DRIVES BACKUP     e.g. setup_dhcp pc.json drives C:\tcpip.reg
#include <hostkit/sim/machine.h>
#include <hostkit/sim/profile.h>

#include <cstdio>
#include <string>

#include "setup_dhcp.h"

int main(int argc, char** argv) {
  if (argc != 4) {
    std::fprintf(stderr, "usage: setup_dhcp PROFILE DRIVES BACKUP\n");
    return 2;
  }
  std::string error;
  std::shared_ptr<Hostkit::sim::Machine> machine = Hostkit::sim::LoadMachineProfile(argv[1], error);
  if (!machine) {
    std::fprintf(stderr, "%s\n", error.c_str());
    return 1;
  }
  machine->facts().driveRoot = argv[2];
  Hostkit::sim::ActivateMachine(machine);
  return SwitchNetworkCardToDhcp(argv[3]) ? 0 : 1;
}
