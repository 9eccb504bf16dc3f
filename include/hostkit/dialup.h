/// \file
/// DialUp: the dial-up components of Windows 95, 98 and Me (Dial-Up Networking, its dial-up
/// adapters and the VPN adapter) and the automatic-dialling switches of every release.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class DialUp_impl;

/// The Windows 9x dial-up components (Dial-Up Networking, dial-up and VPN adapters) and the
/// automatic-dialling switches of every release.
class HOSTKIT_API DialUp {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  DialUp();
  DialUp(const DialUp& other);
  DialUp& operator=(const DialUp& other);
  ~DialUp();
  ///@}

  /// Windows 95 only: Dial-Up Networking 1.3, i.e. both the dial-up server ("RNASERV") and the
  /// VPN client ("VPN") are registered optional components.
  bool IsMsDun13Installed();
  /// Windows 9x: a root-enumerated network device uses the PPTP miniport's class entry.
  bool IsMicrosoftVpnInstalled();
  /// Windows 9x: the root-enumerated network devices driven by the PPP driver; 0 elsewhere.
  int NumMicrosoftDialupAdapters();
  /// Windows 9x: two passes over the root-enumerated network devices, each removing at most one.
  /// The first removes a dial-up adapter without a TCP/IP binding; the second removes the first
  /// device that is not a dial-up adapter at all, or else an unbound dial-up adapter.
  void RemoveDialupAdaptersNotBoundToTcpip();
  /// Windows 98 and Me: runs the VPN component's installer (which also brings a second dial-up
  /// adapter) and waits for it. The installer's outcome is not examined.
  bool InstallVpn();
  /// Windows 98 and Me: clears unbound dial-up adapters, installs Dial-Up Networking when no
  /// dial-up adapter is left, and the VPN component when fewer than `wanted` are there.
  bool InstallDialUpAdapters(int wanted);
  /// Every release: switches automatic dialling on in every Internet Settings key the system may
  /// consult; with a non-empty `entry`, also makes that phonebook entry the one dialled. True when
  /// at least one of the switches was written.
  bool EnableDialUp(const wstring& entry);

 private:
  Pimpl<DialUp_impl> impl_;
};

}  // namespace Hostkit
