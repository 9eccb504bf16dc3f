// StaticTcpipInfo_impl: the stored TCP/IP operations behind the StaticTcpipInfo shell. Stateless:
// every call reads the registry again.
#pragma once

#include <vector>

#include "hostkit/static_tcpip.h"

namespace Hostkit {

class StaticTcpipInfo_impl {
 public:
  using AdapterInfo = StaticTcpipInfo::AdapterInfo;

  bool GetAdapterInfo(std::vector<AdapterInfo>& adapters);
  // The records to count: the caller's, or a fresh enumeration held in `own`.
  const std::vector<AdapterInfo>& Records(std::vector<AdapterInfo>* adapters,
                                          std::vector<AdapterInfo>& own);
};

}  // namespace Hostkit
