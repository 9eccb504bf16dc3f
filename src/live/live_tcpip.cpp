// LiveTcpipInfo and its adapter records: the shells that forward to the implementation objects.
#include "hostkit/live_tcpip.h"

#include "foundation/shell_impl.h"
#include "live/live_tcpip_impl.h"

namespace Hostkit {

template class Pimpl<LiveAdapterInfo_impl>;
template class Pimpl<LiveTcpipInfo_impl>;

using AdapterInfo = LiveTcpipInfo::AdapterInfo;

AdapterInfo LiveTcpipInfo_impl::Record(const LiveAdapterInfo_impl& fields) {
  AdapterInfo record;
  if (record.impl_) {
    *record.impl_.get() = fields;
  }
  return record;
}

AdapterInfo::AdapterInfo() = default;
AdapterInfo::AdapterInfo(const AdapterInfo& other) = default;
AdapterInfo& AdapterInfo::operator=(const AdapterInfo& other) = default;
AdapterInfo::~AdapterInfo() = default;

wstring AdapterInfo::Description() {
  return Forward(impl_, wstring(), [](LiveAdapterInfo_impl& r) { return r.description; });
}
wstring AdapterInfo::ServiceName() {
  return Forward(impl_, wstring(), [](LiveAdapterInfo_impl& r) { return r.serviceName; });
}
std::string AdapterInfo::IpAddrress() {
  return Forward(impl_, std::string(), [](LiveAdapterInfo_impl& r) { return r.ipAddress; });
}
std::string AdapterInfo::SubnetMask() {
  return Forward(impl_, std::string(), [](LiveAdapterInfo_impl& r) { return r.subnetMask; });
}
std::string AdapterInfo::DefaultGateway() {
  return Forward(impl_, std::string(), [](LiveAdapterInfo_impl& r) { return r.defaultGateway; });
}
std::string AdapterInfo::HardwareAddress() {
  return Forward(impl_, std::string(), [](LiveAdapterInfo_impl& r) { return r.hardwareAddress; });
}
std::string AdapterInfo::DhcpServer() {
  return Forward(impl_, std::string(), [](LiveAdapterInfo_impl& r) { return r.dhcpServer; });
}
std::string AdapterInfo::Cookie() { return HardwareAddress(); }
bool AdapterInfo::IsDhcp() const {
  return Forward(impl_, false, [](LiveAdapterInfo_impl& r) { return r.dhcp; });
}
bool AdapterInfo::IsEthernetAdapter() const {
  return Forward(impl_, false, [](LiveAdapterInfo_impl& r) { return r.ethernet; });
}
bool AdapterInfo::IsPppAdapter() const {
  return Forward(impl_, false, [](LiveAdapterInfo_impl& r) { return !r.ethernet; });
}

LiveTcpipInfo::LiveTcpipInfo() = default;
LiveTcpipInfo::LiveTcpipInfo(const LiveTcpipInfo& other) = default;
LiveTcpipInfo& LiveTcpipInfo::operator=(const LiveTcpipInfo& other) = default;
LiveTcpipInfo::~LiveTcpipInfo() = default;

bool LiveTcpipInfo::GetAdapterInfo(std::vector<AdapterInfo>& adapters) {
  adapters.clear();
  return Forward(impl_, false,
                 [&](LiveTcpipInfo_impl& impl) { return impl.GetAdapterInfo(adapters); });
}

bool LiveTcpipInfo::GetDnsServers(std::vector<std::string>& servers) {
  return Forward(impl_, false,
                 [&](LiveTcpipInfo_impl& impl) { return impl.GetDnsServers(servers); });
}

bool LiveTcpipInfo::GetDomainName(wstring& domain) {
  domain.clear();
  return Forward(impl_, false,
                 [&](LiveTcpipInfo_impl& impl) { return impl.GetDomainName(domain); });
}

bool LiveTcpipInfo::GetDomainSearchList(std::vector<wstring>& domains) {
  return Forward(impl_, false,
                 [&](LiveTcpipInfo_impl& impl) { return impl.GetDomainSearchList(domains); });
}

}  // namespace Hostkit
