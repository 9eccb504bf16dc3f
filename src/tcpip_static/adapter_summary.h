// Summary questions over adapter records and about the TCP/IP installation.
#pragma once

#include <functional>
#include <vector>

#include "hostkit/static_tcpip.h"

namespace Hostkit::tcpip {

using AdapterInfo = StaticTcpipInfo::AdapterInfo;
using AdapterTest = std::function<bool(const AdapterInfo&)>;

// Visits every record; never stops early.
int CountAdapters(const std::vector<AdapterInfo>& adapters, const AdapterTest& test);
// The index of the one Ethernet adapter that is bound, functional and enabled; -1 when there is
// none or more than one.
int PrimaryNicIndex(const std::vector<AdapterInfo>& adapters);

int NumMicrosoftDialupAdapters();
bool IsMicrosoftVpnInstalled();
bool SetTcpipAsDefaultProtocol();
// Windows 98 and Me only; false elsewhere, nothing written.
bool EnableIPAC(bool enable);
bool IsMsDun13Installad();

}  // namespace Hostkit::tcpip
