// The binary resource lists the two families record for their devices, parsed apart from the
// registry reads that fetch them. Every number is little-endian; the layouts are those of the
// 32-bit releases, read byte by byte so that they hold in any build.
//
// Windows 9x, "Allocation" of a Configuration Manager devnode (a logical configuration):
//   DWORD version (0x400), DWORD flags, then resource descriptors, each
//     DWORD length   (of the whole descriptor, these 8 bytes included; 0 ends the list)
//     DWORD type     (1 memory, 2 I/O, 3 DMA, 4 interrupt; others are skipped)
//     data:
//       memory:    DWORD count, DWORD type, DWORD base, DWORD end, WORD flags, WORD reserved
//       I/O:       WORD count, WORD type, WORD base, WORD end, WORD flags, BYTE alias,
//                  BYTE decode
//       DMA:       BYTE flags, BYTE channel
//       interrupt: BYTE flags, BYTE line, WORD request mask, DWORD reserved
//   The list also ends where the data ends.
//
// The NT family, REG_RESOURCE_LIST (CM_RESOURCE_LIST) of a resource map:
//   DWORD count of full descriptors, each
//     DWORD interface type, DWORD bus number, WORD version, WORD revision,
//     DWORD count of partial descriptors, each 16 bytes:
//       BYTE type, BYTE share disposition, WORD flags, then 12 bytes by type:
//         1 port:      QWORD start, DWORD length
//         2 interrupt: DWORD level, DWORD vector, DWORD affinity
//         3 memory:    QWORD start, DWORD length
//         4 DMA:       DWORD channel, DWORD port, DWORD reserved
//         5 device-specific: DWORD data size, DWORD, DWORD, then that many bytes of data
//       other types are skipped.
//   In the ".Raw" lists the interrupt level is the interrupt request line.
#pragma once

#include <vector>

#include "hostkit/device_manager.h"
#include "hostkit/win_types.h"

namespace Hostkit::inventory {

using Resources = DeviceManager::Resources;

// Adds what the 9x allocation lists to `resources`; false when the data is shorter than its
// header or a descriptor runs past the end (what was read before stays added).
bool ParseConfigManagerAllocation(const std::vector<BYTE>& data, Resources& resources);

// Adds what the NT resource list holds to `resources`; false when the data ends inside a
// descriptor (what was read before stays added).
bool ParseResourceList(const std::vector<BYTE>& data, Resources& resources);

// Appends `more` to `resources`.
void AddResources(Resources& resources, const Resources& more);

}  // namespace Hostkit::inventory
