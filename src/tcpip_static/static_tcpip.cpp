// StaticTcpipInfo: the family dispatch, and the shell that forwards to StaticTcpipInfo_impl.
#include "hostkit/static_tcpip.h"

#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "tcpip_static/enumeration.h"
#include "tcpip_static/static_tcpip_impl.h"

namespace Hostkit {

template class Pimpl<StaticTcpipInfo_impl>;

// The records are gathered apart and appended at the end, so a failure part-way leaves the
// caller's vector as it was.
bool StaticTcpipInfo_impl::GetAdapterInfo(std::vector<StaticTcpipInfo::AdapterInfo>& adapters) {
  OS os;
  std::vector<StaticTcpipInfo::AdapterInfo> found;
  if (os.IsWin9x()) {
    tcpip::EnumerateWin9x(found);
  } else if (os.IsWin2000() || os.IsWinXP()) {
    tcpip::EnumerateWin2000Xp(os.IsWinXP(), found);
  } else if (os.IsWinNT4()) {
    tcpip::EnumerateNt4(found);
  } else {
    return false;
  }
  adapters.insert(adapters.end(), found.begin(), found.end());
  return true;
}

StaticTcpipInfo::StaticTcpipInfo() = default;
StaticTcpipInfo::StaticTcpipInfo(const StaticTcpipInfo& other) = default;
StaticTcpipInfo& StaticTcpipInfo::operator=(const StaticTcpipInfo& other) = default;
StaticTcpipInfo::~StaticTcpipInfo() = default;

bool StaticTcpipInfo::GetAdapterInfo(std::vector<AdapterInfo>& adapters) {
  return Forward(impl_, false,
                 [&](StaticTcpipInfo_impl& impl) { return impl.GetAdapterInfo(adapters); });
}

}  // namespace Hostkit
