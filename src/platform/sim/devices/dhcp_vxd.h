// The Windows 95/98/Me DHCP client VxD of the simulated machine ("\\.\vdhcp.386"), serving the
// requests of platform/dhcp_vxd.h over the machine's live network.
#pragma once

#include <memory>
#include <string>

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/handle_table.h"

namespace Hostkit::sim {

// An open handle to the VxD.
class DhcpVxdObject : public KernelObject {
 public:
  explicit DhcpVxdObject(std::shared_ptr<Machine> machine) : machine_(std::move(machine)) {}
  Machine& machine() const { return *machine_; }

 private:
  std::shared_ptr<Machine> machine_;
};

// Whether "\\.\`name`" opens the DHCP VxD on `machine`: Windows 9x opens a loaded VxD by its
// file name, without a DOS device name for it. The VxD is loaded when the machine's module table
// holds "vdhcp.386" (with no entry points), so that a profile can leave it out like a module
// ("absent": [ "vdhcp.386" ]).
bool IsDhcpVxdName(Machine& machine, const std::string& name);

// One DeviceIoControl request to the VxD (the error is set on failure).
BOOL DhcpVxdRequest(const DhcpVxdObject& device, DWORD controlCode, const void* in, DWORD inSize,
                    void* out, DWORD outSize, DWORD& returned);

}  // namespace Hostkit::sim
