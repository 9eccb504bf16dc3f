// The Configuration Manager call of "cfgmgr32.dll" (Windows 2000 and XP) that the library binds
// at run time: the state of a device node.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform::cfgmgr {

inline constexpr const char* kModule = "CFGMGR32.DLL";

constexpr DWORD kSuccess = 0;          // CR_SUCCESS
constexpr DWORD kNoSuchDevnode = 0xD;  // CR_NO_SUCH_DEVNODE

// CM_Get_DevNode_Status: the node's status flags (DN_*) and problem code (CM_PROB_*).
using GetDevNodeStatus = DWORD(WINAPI*)(ULONG* status, ULONG* problem, DWORD devInst, ULONG flags);

}  // namespace Hostkit::platform::cfgmgr
