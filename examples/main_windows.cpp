// The example on Windows: the library works on the running system.
//
//   setup_dhcp.exe BACKUP                e.g. setup_dhcp.exe C:\tcpip.reg
#include <cstdio>

#include "setup_dhcp.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: setup_dhcp BACKUP\n");
    return 2;
  }
  return SwitchNetworkCardToDhcp(argv[1]) ? 0 : 1;
}
