/// \file
/// Classification of network adapters: whether a description names a network card or an adapter
/// to refuse, whether a device-driver name belongs to a network card, and whether a hardware
/// address belongs to a physical adapter rather than to a software or dial-up interface.
///
/// The four lists behind these answers are process-wide and start empty; the description accept
/// list, the driver list and the software-adapter list are filled with their built-in contents
/// whenever a query (or an appending setter) finds them empty. They are not guarded: set them
/// before querying from several threads.
#pragma once

#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/win_types.h"

namespace Hostkit {

/// A block of hardware addresses: an address matches when, byte for byte, address AND mask
/// equals `address` AND mask. Both texts are six two-digit hexadecimal bytes joined by single
/// separators, as "00-20-EA-09-EB-DF" and "FF-FF-FF-FF-FF-00".
struct MacAddressRange {
  std::string address;  ///< the block's address, as "00-20-EA-09-EB-DF"
  std::string mask;     ///< the bytes that count, as "FF-FF-FF-FF-FF-00"
};

///@{
/// Sets one of the process-wide classification lists: the description patterns of network
/// cards, the driver-name patterns of network cards, or the hardware-address blocks of software
/// adapters. Append true keeps the list (filled with the built-in contents first if it is
/// empty) and adds the given entries after it; append false replaces the list, and an empty
/// vector brings the built-in contents back at the next query. The lists are not guarded: set
/// them before other threads classify adapters. Patterns are RegExpMatch patterns in lower case.
HOSTKIT_API void SetNicDescriptionAcceptList(const std::vector<wstring>& patterns, bool append);
HOSTKIT_API void SetNicDeviceDriverAcceptList(const std::vector<std::string>& patterns,
                                              bool append);
HOSTKIT_API void SetSoftwareAdapterList(const std::vector<MacAddressRange>& ranges, bool append);
///@}

/// Always replaces the decline list, whatever `flag` says; it has no built-in contents.
HOSTKIT_API void SetNicDescriptionDeclineList(const std::vector<wstring>& patterns, bool flag);

///@{
/// Some accept pattern matches the lower-cased description and no decline pattern does.
HOSTKIT_API bool IsNicDescription(const char* description);
HOSTKIT_API bool IsNicDescription(const WCHAR* description);
///@}

///@{
/// Some decline pattern matches the lower-cased description.
HOSTKIT_API bool IsNicDenialDescription(const char* description);
HOSTKIT_API bool IsNicDenialDescription(const WCHAR* description);
///@}

/// Some driver pattern matches the lower-cased driver name.
HOSTKIT_API bool IsNicDeviceDriver(const char* driver);

/// The address text is a hardware address outside every software-adapter range.
HOSTKIT_API bool DoesMacAddressBelongToPhysicalAdapter(const char* address);

/// As DoesMacAddressBelongToPhysicalAdapter, but an adapter whose description names a USB cable
/// modem counts as physical whatever its address.
HOSTKIT_API bool DoesMacOrDescBelongToPhysicalAdapter(const char* address, const char* description);

}  // namespace Hostkit
