/// \file
/// The switch between the local network and automatic dialling: the LAN counts as enabled when
/// the browser's "EnableAutodial" is off.
#pragma once

#include "hostkit/export.h"

namespace Hostkit {

/// Writes "EnableAutodial" (0 to enable the LAN, 1 to dial) in every Internet Settings key the
/// system may read it from. True when at least one write succeeded.
HOSTKIT_API bool EnableLAN(bool enable);
/// The current user's "EnableAutodial", else the machine's, is 0 or present nowhere.
HOSTKIT_API bool IsLANEnabled();

}  // namespace Hostkit
