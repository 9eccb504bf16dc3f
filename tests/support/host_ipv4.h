// The IPv4 addresses the running system's interfaces hold, loopback aside, as the live-network
// tests expect the library to find them. On the simulation the helper first gives the active
// machine a network of its own (and TCP/IP on Windows NT 4); under Wine they are this host's
// addresses, which the test script passes in HOSTKIT_HOST_IPV4 (separated by blanks).
#pragma once

#include <string>
#include <vector>

namespace hostkit_test {

// False, with the reason, when the addresses are not known here.
bool HostIpv4Addresses(std::vector<std::string>& addresses, std::string& whyNot);

}  // namespace hostkit_test
