/// @file
/// RasInterface: the dial-up phonebook, dialling and hanging up, the dial-up devices, the active
/// connections and the text of Remote Access error codes.
///
/// Everything goes through the Remote Access API of "rasapi32.dll", bound at run time: it comes
/// with Dial-Up Networking on Windows 95, with Windows 98 and Me, with Remote Access Service on
/// NT 4, and with Windows 2000 and XP. Where it or an entry point is missing every operation
/// answers its failure value and GetLastRasError reports 0.
///
/// The records the API exchanges grew from release to release and each release refuses a size
/// newer than its own (error 632). Every call therefore tries the record sizes from the newest
/// (Windows XP) to the oldest (Windows 95) and keeps the first one the release accepts; an older
/// record reads as the leading part of the newer one.
///
/// Entries live in the system's default phonebook. Dial is synchronous for the caller: it starts
/// the call, then asks the connection's state every 100 ms until it is connected, has failed,
/// or the time-out has passed, in which case the call is hung up. The narrow forms take text in
/// the system's ANSI code page; the wide forms convert to it and take the narrow path, since
/// the Remote Access API of Windows 9x has only narrow calls.
///
/// Unlike the other classes, the object remembers the Remote Access error code of its last
/// failed call (GetLastRasError), because the reason a dial failed is what a set-up program
/// shows its user.
#pragma once

#include <string>
#include <vector>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class RasInterface_impl;

/// Dial-up phonebook entries, dialling, devices, connections and error texts over the Remote
/// Access API (see the file comment).
class HOSTKIT_API RasInterface {
 public:
  /// The kind of a dial-up device, from the type Remote Access gives it.
  enum DEVICE_TYPE {
    DEVICE_TYPE_MODEM,  ///< "modem"
    DEVICE_TYPE_ISDN,   ///< "isdn"
    DEVICE_TYPE_VPN,    ///< "vpn"
    DEVICE_TYPE_OTHER,  ///< anything else ("pad", "x25", "serial", ...)
  };

  /// A dial-up device.
  struct DeviceInfo {
    std::string name;                      ///< e.g. "Standard 56000 bps Modem"
    std::string typeName;                  ///< the type as Remote Access names it, e.g. "modem"
    DEVICE_TYPE type = DEVICE_TYPE_OTHER;  ///< the kind, from `typeName`
  };

  /// The main properties of a phonebook entry.
  struct EntryInfo {
    std::string name;               ///< the entry's name in the phonebook
    std::string areaCode;           ///< the area code, empty when none is used
    std::string phoneNumber;        ///< the local number
    unsigned long countryCode = 0;  ///< the country code, e.g. 1 or 49
    std::string deviceType;         ///< the type of the device it dials with, e.g. "modem"
    std::string deviceName;         ///< the name of the device it dials with
  };

  /// An active connection (connected or still connecting).
  struct ConnectionInfo {
    std::string entry;        ///< the phonebook entry dialled
    std::string deviceName;   ///< the device the call uses
    bool connected = false;   ///< the connection's state is "connected"
    unsigned long error = 0;  ///< the Remote Access error that ended the attempt, 0 if none
  };

  ///@{
  /// Creating, copying and destroying: the object keeps only its last Remote Access error.
  RasInterface();
  RasInterface(const RasInterface& other);
  RasInterface& operator=(const RasInterface& other);
  ~RasInterface();
  ///@}

  /// Names of the phonebook entries; empty when there are none or they cannot be read.
  std::vector<std::string> GetEntries();
  ///@{
  /// The entry's main properties; false when it does not exist or cannot be read.
  bool GetEntry(const std::string& name, EntryInfo& info);
  bool GetEntry(const wstring& name, EntryInfo& info);
  ///@}
  ///@{
  /// Creates the entry `name` as a copy of the entry `templateName`, with `phoneNumber` as its
  /// local number unless that is empty. False when `name` exists already, the template cannot
  /// be read or the new entry cannot be written.
  bool CreateEntry(const std::string& name, const std::string& templateName,
                   const std::string& phoneNumber);
  bool CreateEntry(const wstring& name, const wstring& templateName, const wstring& phoneNumber);
  ///@}
  ///@{
  /// Deletes the entry; false when it does not exist or cannot be deleted.
  bool DeleteEntry(const std::string& name);
  bool DeleteEntry(const wstring& name);
  ///@}

  ///@{
  /// Dials the entry with its saved credentials and waits up to `timeoutMilliseconds` for the
  /// connection; true once connected. On failure or time-out the call is hung up.
  bool Dial(const std::string& name, unsigned long timeoutMilliseconds);
  bool Dial(const wstring& name, unsigned long timeoutMilliseconds);
  ///@}
  ///@{
  /// Hangs up every connection of the entry and waits up to three seconds for each to end;
  /// false when the entry has no connection or a hang-up is refused.
  bool HangUp(const std::string& name);
  bool HangUp(const wstring& name);
  ///@}

  /// The dial-up devices Remote Access can use.
  std::vector<DeviceInfo> GetDevices();
  /// The active connections.
  std::vector<ConnectionInfo> GetConnections();

  /// The system's text for a Remote Access error code; empty when it has none.
  std::string GetErrorText(unsigned long code);
  /// The Remote Access error code of this object's last failed operation, 0 when it succeeded
  /// or failed before reaching the API (no module, an argument without an ANSI form).
  unsigned long GetLastRasError() const;

 private:
  Pimpl<RasInterface_impl> impl_;
};

}  // namespace Hostkit
