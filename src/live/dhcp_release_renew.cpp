// DhcpReleaseRenew: releases and renewals through the running family's DHCP client, judged from
// the live state read after a fixed wait.
#include "hostkit/dhcp_release_renew.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "adapters/mac_address_lookup.h"
#include "foundation/shell_impl.h"
#include "hostkit/live_tcpip.h"
#include "hostkit/os.h"
#include "hostkit/static_tcpip.h"
#include "hostkit/strings.h"
#include "live/dhcp_client.h"
#include "live/hardware_address_text.h"
#include "live/ip_helper_binding.h"
#include "platform/time.h"

namespace Hostkit {

// Stateless; the DHCP client module stays bound for the life of the process once used.
class DhcpReleaseRenew_impl {
 public:
  bool Release(const std::string& adapter);
  bool Renew(const std::string& adapter);
  bool ReleaseAll();
  bool RenewAll();
};

template class Pimpl<DhcpReleaseRenew_impl>;

namespace {

constexpr DWORD kReleaseWait = 1000;
constexpr DWORD kBeforeRenewWait = 200;
constexpr DWORD kBetweenVxdRequestsWait = 200;
constexpr DWORD kRenewWait = 3500;

enum class Request { Release, Renew };

// Neither empty, nor "0.0.0.0", nor an automatic private address.
bool IsUsableAddress(const std::string& address) {
  return !address.empty() && address != "0.0.0.0" && address.compare(0, 7, "169.254") != 0;
}

// The NT family's request: through IP Helper for every adapter row with this hardware address,
// or, without IP Helper, through the DHCP client for every stored adapter whose driver reports
// it. The binding is released before the caller waits.
void SendNtRequest(const std::string& adapter, Request request) {
  {
    live::IpHelperBinding helper;
    if (helper.Usable()) {
      std::vector<live::IpHelperRow> rows;
      if (helper.AdapterRows(rows)) {
        for (const live::IpHelperRow& row : rows) {
          if (row.hardwareAddress != adapter) {
            continue;
          }
          // The row's description member holds the entry's adapter name.
          if (request == Request::Release) {
            helper.ReleaseAddress(row.description);
          } else {
            helper.RenewAddress(row.description);
          }
        }
      }
      return;
    }
  }
  std::vector<StaticTcpipInfo::AdapterInfo> stored;
  StaticTcpipInfo().GetAdapterInfo(stored);
  for (StaticTcpipInfo::AdapterInfo& record : stored) {
    std::string address;
    adapters::QueryAdapterMacAddress(record.ServiceName(), address);
    if (!live::SameHardwareAddress(address, adapter)) {
      continue;
    }
    std::string serviceName;
    ConvertUnicodeToANSI(record.ServiceName(), serviceName);
    if (request == Request::Release) {
      live::DhcpClientRelease(serviceName);
    } else {
      live::DhcpClientAcquire(serviceName);
    }
  }
}

// The verdict: true when the adapter is not listed, or is on DHCP and holds a usable address
// exactly when `wantUsable`.
bool Verdict(const std::string& adapter, bool wantUsable) {
  std::vector<LiveTcpipInfo::AdapterInfo> adapters;
  LiveTcpipInfo().GetAdapterInfo(adapters);
  for (LiveTcpipInfo::AdapterInfo& record : adapters) {
    if (record.HardwareAddress() == adapter) {
      return record.IsDhcp() && IsUsableAddress(record.IpAddrress()) == wantUsable;
    }
  }
  return true;
}

// Calls `each` with the hardware address of every live adapter on DHCP; true unless one call
// failed.
template <class Each>
bool ForEveryDhcpAdapter(Each each) {
  std::vector<LiveTcpipInfo::AdapterInfo> adapters;
  LiveTcpipInfo().GetAdapterInfo(adapters);
  bool allSucceeded = true;
  for (LiveTcpipInfo::AdapterInfo& record : adapters) {
    if (record.IsDhcp() && !each(record.HardwareAddress())) {
      allSucceeded = false;
    }
  }
  return allSucceeded;
}

// Windows 9x, 2000, XP or NT 4; on any other system every request fails at once, without
// waiting.
bool IsKnownFamily(OS& os) {
  return os.IsWin9x() || os.IsWin2000() || os.IsWinXP() || os.IsWinNT4();
}

}  // namespace

bool DhcpReleaseRenew_impl::Release(const std::string& adapter) {
  OS os;
  if (!IsKnownFamily(os)) {
    return false;
  }
  if (os.IsWin9x()) {
    live::VxdReleaseLease(adapter);
  } else {
    SendNtRequest(adapter, Request::Release);
  }
  platform::Sleep(kReleaseWait);
  return Verdict(adapter, false);
}

// On Windows 9x a renewal is always a release followed by a renewal.
bool DhcpReleaseRenew_impl::Renew(const std::string& adapter) {
  OS os;
  if (!IsKnownFamily(os)) {
    return false;
  }
  platform::Sleep(kBeforeRenewWait);
  if (os.IsWin9x()) {
    live::VxdReleaseLease(adapter);
    platform::Sleep(kBetweenVxdRequestsWait);
    live::VxdRenewLease(adapter);
  } else {
    SendNtRequest(adapter, Request::Renew);
  }
  platform::Sleep(kRenewWait);
  return Verdict(adapter, true);
}

bool DhcpReleaseRenew_impl::ReleaseAll() {
  OS os;
  return IsKnownFamily(os) &&
         ForEveryDhcpAdapter([this](const std::string& adapter) { return Release(adapter); });
}

bool DhcpReleaseRenew_impl::RenewAll() {
  OS os;
  return IsKnownFamily(os) &&
         ForEveryDhcpAdapter([this](const std::string& adapter) { return Renew(adapter); });
}

DhcpReleaseRenew::DhcpReleaseRenew() = default;
DhcpReleaseRenew::DhcpReleaseRenew(const DhcpReleaseRenew& other) = default;
DhcpReleaseRenew& DhcpReleaseRenew::operator=(const DhcpReleaseRenew& other) = default;
DhcpReleaseRenew::~DhcpReleaseRenew() = default;

bool DhcpReleaseRenew::Release(const std::string& adapter) {
  return Forward(impl_, false, [&](DhcpReleaseRenew_impl& impl) { return impl.Release(adapter); });
}
bool DhcpReleaseRenew::Renew(const std::string& adapter) {
  return Forward(impl_, false, [&](DhcpReleaseRenew_impl& impl) { return impl.Renew(adapter); });
}
bool DhcpReleaseRenew::ReleaseUsingCookie(const std::string& cookie) { return Release(cookie); }
bool DhcpReleaseRenew::RenewUsingCookie(const std::string& cookie) { return Renew(cookie); }
bool DhcpReleaseRenew::ReleaseAll() {
  return Forward(impl_, false, [](DhcpReleaseRenew_impl& impl) { return impl.ReleaseAll(); });
}
bool DhcpReleaseRenew::RenewAll() {
  return Forward(impl_, false, [](DhcpReleaseRenew_impl& impl) { return impl.RenewAll(); });
}

}  // namespace Hostkit
