// The USB driver stack of the simulated machine: host controllers and hubs answering the
// requests of the USB device interface from their SimUsb description.
#pragma once

#include "hostkit/sim/machine.h"

namespace Hostkit::sim {

// Whether `device` has a USB role whose driver takes `controlCode`.
bool IsUsbRequest(const SimDevice& device, DWORD controlCode);

// Answers one such request as the Windows USB stack does (METHOD_BUFFERED: the input and output
// may share one buffer). Fails with the last error set.
BOOL UsbRequest(const SimDevice& device, DWORD controlCode, const void* in, DWORD inSize, void* out,
                DWORD outSize, DWORD* returned);

}  // namespace Hostkit::sim
