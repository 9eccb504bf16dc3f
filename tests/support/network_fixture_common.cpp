#include <fstream>
#include <sstream>

#include "support/network_fixture.h"

namespace hostkit_test {

std::string ReadFixtureFile(const std::string& relativePath) {
  std::ifstream in(std::string(HOSTKIT_TEST_MACHINES) + "/" + relativePath, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

}  // namespace hostkit_test
