// StaticTcpipInfo_impl: the stored TCP/IP operations behind the StaticTcpipInfo shell. Stateless:
// every call reads the registry again.
#pragma once

#include <vector>

#include "hostkit/static_tcpip.h"

namespace Hostkit {

class StaticTcpipInfo_impl {
 public:
  bool GetAdapterInfo(std::vector<StaticTcpipInfo::AdapterInfo>& adapters);
};

}  // namespace Hostkit
