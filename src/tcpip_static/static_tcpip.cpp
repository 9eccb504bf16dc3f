// StaticTcpipInfo: the family dispatch, and the shell that forwards to StaticTcpipInfo_impl.
#include "hostkit/static_tcpip.h"

#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "tcpip_static/adapter_summary.h"
#include "tcpip_static/enumeration.h"
#include "tcpip_static/setters.h"
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

const std::vector<StaticTcpipInfo::AdapterInfo>& StaticTcpipInfo_impl::Records(
    std::vector<AdapterInfo>* adapters, std::vector<AdapterInfo>& own) {
  if (adapters != nullptr) {
    return *adapters;
  }
  GetAdapterInfo(own);
  return own;
}

namespace {

using Impl = Pimpl<StaticTcpipInfo_impl>;
using AdapterInfo = StaticTcpipInfo::AdapterInfo;

// Runs a setter on the running family's branch; false without one.
template <class Call>
bool WithSetters(const Impl& impl, Call call) {
  return Forward(impl, false, [&](StaticTcpipInfo_impl& /*unused*/) {
    auto branch = tcpip::SettersForRunningFamily();
    return branch != nullptr && call(*branch);
  });
}

bool SetAddress(const Impl& impl, const StaticTcpipInfo::Cookie& cookie, tcpip::AddressValue which,
                const char* text) {
  return text != nullptr && WithSetters(impl, [&](tcpip::SetterBranch& branch) {
           return branch.SetAddress(cookie, which, text);
         });
}

// Counts the records (the caller's, or a fresh enumeration) that pass `test`.
int Count(const Impl& impl, std::vector<AdapterInfo>* adapters, const tcpip::AdapterTest& test) {
  return Forward(impl, 0, [&](StaticTcpipInfo_impl& i) {
    std::vector<AdapterInfo> own;
    return tcpip::CountAdapters(i.Records(adapters, own), test);
  });
}

bool BoundNic(const AdapterInfo& a) { return a.IsEthernetAdapter() && a.IsBoundToTcpip(); }
bool BoundEnabledNic(const AdapterInfo& a) { return BoundNic(a) && a.IsAdapterEnabled(); }

}  // namespace

StaticTcpipInfo::StaticTcpipInfo() = default;
StaticTcpipInfo::StaticTcpipInfo(const StaticTcpipInfo& other) = default;
StaticTcpipInfo& StaticTcpipInfo::operator=(const StaticTcpipInfo& other) = default;
StaticTcpipInfo::~StaticTcpipInfo() = default;

bool StaticTcpipInfo::GetAdapterInfo(std::vector<AdapterInfo>& adapters) {
  return Forward(impl_, false,
                 [&](StaticTcpipInfo_impl& impl) { return impl.GetAdapterInfo(adapters); });
}

}  // namespace Hostkit

namespace Hostkit {

using tcpip::AddressValue;
using tcpip::SetterBranch;

bool StaticTcpipInfo::SetStaticIpAddress(const Cookie& cookie, const char* address) {
  return SetAddress(impl_, cookie, AddressValue::IpAddress, address);
}
bool StaticTcpipInfo::SetStaticSubnetMask(const Cookie& cookie, const char* mask) {
  return SetAddress(impl_, cookie, AddressValue::SubnetMask, mask);
}
bool StaticTcpipInfo::SetStaticDefaultGateway(const Cookie& cookie, const char* gateway) {
  return SetAddress(impl_, cookie, AddressValue::DefaultGateway, gateway);
}
bool StaticTcpipInfo::EnableDHCP(const Cookie& cookie, bool enable) {
  return WithSetters(impl_, [&](SetterBranch& b) { return b.EnableDhcp(cookie, enable); });
}
bool StaticTcpipInfo::MakeDnsStatic(const Cookie& cookie, bool isStatic) {
  return WithSetters(impl_, [&](SetterBranch& b) { return b.MakeDnsStatic(cookie, isStatic); });
}
bool StaticTcpipInfo::SetStaticNameServers(const Cookie& cookie,
                                           const std::vector<std::string>& servers) {
  return WithSetters(impl_, [&](SetterBranch& b) { return b.SetNameServers(cookie, servers); });
}
bool StaticTcpipInfo::SetDomainName(const Cookie& cookie, const char* domain) {
  return domain != nullptr &&
         WithSetters(impl_, [&](SetterBranch& b) { return b.SetDomainName(cookie, domain); });
}
bool StaticTcpipInfo::SetWinsState(const Cookie& cookie, WINS_STATE state) {
  return WithSetters(impl_, [&](SetterBranch& b) { return b.SetWinsState(cookie, state); });
}
bool StaticTcpipInfo::SetStaticWinsServers(const Cookie& cookie,
                                           const std::vector<std::string>& servers) {
  return WithSetters(impl_, [&](SetterBranch& b) { return b.SetWinsServers(cookie, servers); });
}

bool StaticTcpipInfo::SetStaticHostName(const char* name) {
  return name != nullptr && Forward(impl_, false, [&](StaticTcpipInfo_impl&) {
           return tcpip::SetStaticHostName(name);
         });
}
bool StaticTcpipInfo::GetStaticHostName(std::string& name) {
  return Forward(impl_, false,
                 [&](StaticTcpipInfo_impl&) { return tcpip::GetStaticHostName(name); });
}
bool StaticTcpipInfo::SetDhcpIdentification(const char* name) {
  return name != nullptr && Forward(impl_, false, [&](StaticTcpipInfo_impl&) {
           return tcpip::SetDhcpIdentification(name);
         });
}
bool StaticTcpipInfo::GetDhcpIdentification(std::string& name) {
  return Forward(impl_, false,
                 [&](StaticTcpipInfo_impl&) { return tcpip::GetDhcpIdentification(name); });
}

int StaticTcpipInfo::NumNICs(std::vector<AdapterInfo>* adapters) {
  return Count(impl_, adapters, [](const AdapterInfo& a) { return a.IsEthernetAdapter(); });
}
int StaticTcpipInfo::NumTcpipBoundNICs(std::vector<AdapterInfo>* adapters) {
  return Count(impl_, adapters, BoundNic);
}
int StaticTcpipInfo::NumTcpipBoundAndEnabledNICs(std::vector<AdapterInfo>* adapters) {
  return Count(impl_, adapters, BoundEnabledNic);
}
int StaticTcpipInfo::NumEnabledDhcpNics(std::vector<AdapterInfo>* adapters) {
  return Count(impl_, adapters, BoundEnabledNic);
}
bool StaticTcpipInfo::IsNonFunctionalNicPresent(std::vector<AdapterInfo>* adapters) {
  return Count(impl_, adapters, [](const AdapterInfo& a) { return !a.IsFunctional(); }) > 0;
}
std::string StaticTcpipInfo::BadNicDescription(std::vector<AdapterInfo>* /*adapters*/) {
  return {};
}
bool StaticTcpipInfo::IsUnknownNicPresent(std::vector<AdapterInfo>* /*adapters*/) { return false; }
std::string StaticTcpipInfo::UnknownNicDescription(std::vector<AdapterInfo>* /*adapters*/) {
  return {};
}
int StaticTcpipInfo::GetPrimaryNicIndex(std::vector<AdapterInfo> adapters) {
  return Forward(impl_, -1,
                 [&](StaticTcpipInfo_impl&) { return tcpip::PrimaryNicIndex(adapters); });
}

bool StaticTcpipInfo::IsTcpipInstalled() {
  return Forward(impl_, false, [](StaticTcpipInfo_impl&) { return tcpip::IsTcpipInstalled(); });
}
StaticTcpipInfo::FAILURE_REASON StaticTcpipInfo::GetLastError() { return FAILURE_UNKNOWN; }
int StaticTcpipInfo::NumMicrosoftDialupAdapters() {
  return Forward(impl_, 0,
                 [](StaticTcpipInfo_impl&) { return tcpip::NumMicrosoftDialupAdapters(); });
}
bool StaticTcpipInfo::IsMicrosoftVpnInstalled() {
  return Forward(impl_, false,
                 [](StaticTcpipInfo_impl&) { return tcpip::IsMicrosoftVpnInstalled(); });
}
bool StaticTcpipInfo::SetTcpipAsDefaultProtocol() {
  return Forward(impl_, false,
                 [](StaticTcpipInfo_impl&) { return tcpip::SetTcpipAsDefaultProtocol(); });
}
bool StaticTcpipInfo::EnableIPAC(bool enable) {
  return Forward(impl_, false, [&](StaticTcpipInfo_impl&) { return tcpip::EnableIPAC(enable); });
}
bool StaticTcpipInfo::IsMsDun13Installad() {
  return Forward(impl_, false, [](StaticTcpipInfo_impl&) { return tcpip::IsMsDun13Installad(); });
}
bool StaticTcpipInfo::InstallTcpip(const std::string& /*source*/) { return IsTcpipInstalled(); }

}  // namespace Hostkit
