// The browser's proxy getters and setters over arbitrary registry text: the input is the
// value lines of the Internet Settings key. Whatever was there, reading never fails hard, and a
// server set for one protocol reads back as it was set.
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_machine.h"
#include "hostkit/configure_ie.h"
#include "platform/sim/profile/support.h"

namespace {

using Hostkit::ConfigureIE;
using Hostkit::wstring;

using Getter = bool (ConfigureIE::*)(wstring&, int&);
using Setter = bool (ConfigureIE::*)(wstring, int);

struct Protocol {
  Getter get;
  Setter set;
};

constexpr Protocol kProtocols[] = {
    {&ConfigureIE::GetHTTPProxyServer, &ConfigureIE::UseHTTPProxyServer},
    {&ConfigureIE::GetHTTPSProxyServer, &ConfigureIE::UseHTTPSProxyServer},
    {&ConfigureIE::GetFTPProxyServer, &ConfigureIE::UseFTPProxyServer},
    {&ConfigureIE::GetGopherProxyServer, &ConfigureIE::UseGopherProxyServer},
    {&ConfigureIE::GetSocksProxyServer, &ConfigureIE::UseSocksProxyServer},
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string lines(reinterpret_cast<const char*>(data), size);
  auto machine = hostkit_fuzz::FreshMachine(size % 2 == 0 ? Hostkit::sim::Release::WinXP
                                                          : Hostkit::sim::Release::Win98);
  std::string error;
  if (!Hostkit::sim::ApplyRegistryBytes(
          *machine,
          "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\"
          "Internet Settings]\r\n" +
              lines,
          "fuzz.reg", error)) {
    return 0;
  }
  ConfigureIE ie;
  wstring server;
  int port = 0;
  for (const Protocol& protocol : kProtocols) {
    (ie.*protocol.get)(server, port);
  }
  ie.GetAutoConfigurationScript(server);
  const size_t which = size % std::size(kProtocols);
  const wstring proxy = HK_WIDE("proxy.example");
  if ((ie.*kProtocols[which].set)(proxy, 8080)) {
    if (!(ie.*kProtocols[which].get)(server, port) || server != proxy || port != 8080) {
      hostkit_fuzz::Broken("a proxy server set does not read back");
    }
  }
  Hostkit::sim::ActivateMachine(nullptr);
  return 0;
}
