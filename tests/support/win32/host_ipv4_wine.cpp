// Host addresses under Wine: what the test script found with `ip -4 -o addr`.
#include <cstdlib>
#include <sstream>

#include "support/host_ipv4.h"

namespace hostkit_test {

bool HostIpv4Addresses(std::vector<std::string>& addresses, std::string& whyNot) {
  const char* text = std::getenv("HOSTKIT_HOST_IPV4");
  if (text == nullptr) {
    whyNot = "HOSTKIT_HOST_IPV4 is not set (scripts/test-windows.sh sets it from `ip -4 -o addr`)";
    return false;
  }
  addresses.clear();
  std::istringstream words(text);
  for (std::string address; words >> address;) {
    addresses.push_back(address);
  }
  return true;
}

}  // namespace hostkit_test
