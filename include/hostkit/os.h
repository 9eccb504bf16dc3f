/// \file
/// OS: which Windows release the library runs on, restart and shutdown, startup programs,
/// administrator rights and the system's default language.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class OS_impl;

/// Which Windows release runs, and the operations that act on the whole system. Nothing is
/// cached: every call asks the system again.
class HOSTKIT_API OS {
 public:
  /// The coarse release, by which the library picks its Windows 9x or NT-family branch. A later
  /// NT release counts as TYPE_WIN2000 (minor version 0) or TYPE_WINXP (minor above 0).
  enum TYPE {
    TYPE_WIN95,
    TYPE_WIN98,
    TYPE_WINME,
    TYPE_WINNT4,
    TYPE_WIN2000,
    TYPE_WINXP,
    TYPE_UNKNOWN
  };

  /// The release with its edition and service pack (Windows 95 B and C, 98 SE as
  /// EXACT_WIN98_A, NT 4 service packs, 2000 Professional, Server, Advanced Server and
  /// Datacenter, XP Home and Professional); EXACT_UNKNOWN when the version query fails.
  enum EXACT_TYPE {
    EXACT_UNKNOWN,
    EXACT_WIN95,
    EXACT_WIN95_B,
    EXACT_WIN95_C,
    EXACT_WIN98,
    EXACT_WIN98_A,
    EXACT_WINME,
    EXACT_WINNT4_SP0,
    EXACT_WINNT4_SP1,
    EXACT_WINNT4_SP2,
    EXACT_WINNT4_SP3,
    EXACT_WINNT4_SP4,
    EXACT_WINNT4_SP5,
    EXACT_WINNT4_SP6,
    EXACT_WINNT4_SPX,
    EXACT_WIN2000_PRO_SP0,
    EXACT_WIN2000_PRO_SP1,
    EXACT_WIN2000_PRO_SP2,
    EXACT_WIN2000_PRO_SP3,
    EXACT_WIN2000_PRO_SPX,
    EXACT_WIN2000_SERVER_SP0,
    EXACT_WIN2000_SERVER_SP1,
    EXACT_WIN2000_SERVER_SP2,
    EXACT_WIN2000_SERVER_SP3,
    EXACT_WIN2000_SERVER_SPX,
    EXACT_WIN2000_ENTERPRISE_SP0,
    EXACT_WIN2000_ENTERPRISE_SP1,
    EXACT_WIN2000_ENTERPRISE_SP2,
    EXACT_WIN2000_ENTERPRISE_SP3,
    EXACT_WIN2000_ENTERPRISE_SPX,
    EXACT_WIN2000_DATACENTER_SP0,
    EXACT_WIN2000_DATACENTER_SP1,
    EXACT_WIN2000_DATACENTER_SP2,
    EXACT_WIN2000_DATACENTER_SP3,
    EXACT_WIN2000_DATACENTER_SPX,
    EXACT_WINXP_HOME,
    EXACT_WINXP_PRO
  };

  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  OS();
  OS(const OS& other);
  OS& operator=(const OS& other);
  ~OS();
  ///@}

  /// The coarse release; TYPE_UNKNOWN when the version query fails.
  TYPE Type();
  /// The release with edition and service pack; EXACT_UNKNOWN when the version query fails.
  EXACT_TYPE ExactType();
  /// Whether Type() is Windows 95, 98 or ME.
  bool IsWin9x();
  /// Whether Type() is TYPE_WIN95.
  bool IsWin95();
  /// Whether Type() is TYPE_WIN98.
  bool IsWin98();
  /// Whether Type() is TYPE_WINME.
  bool IsWinME();
  /// Whether Type() is NT 4, 2000 or XP.
  bool IsWinNT();
  /// Whether Type() is TYPE_WINNT4.
  bool IsWinNT4();
  /// Whether Type() is TYPE_WIN2000.
  bool IsWin2000();
  /// Whether Type() is TYPE_WINXP.
  bool IsWinXP();

  /// The major version number; -1 when the version query fails.
  int MajorVersion();
  /// The minor version number (Windows 98: 10, ME: 90); -1 when the version query fails.
  int MinorVersion();
  /// Major and minor as a decimal number (4.1 for Windows 98, 4.9 for ME, 5.1 for XP); -1.0
  /// when the version query fails.
  double Version();
  /// The NT build number from the registry; -1 on Windows 9x or when it cannot be read.
  int BuildNumber();
  /// The NT service pack number (0 when the system names none); -1 on Windows 9x or when the
  /// version query fails.
  int NTSP();

  /// Restarts Windows. On the NT family the shutdown privilege is enabled first, and on NT 4
  /// or with `force` applications are closed without asking. False when the system refused.
  bool Reboot(bool force);
  /// Shuts Windows down, as Reboot restarts it.
  bool Shutdown(bool force);
  /// Registers the program `path` (null or empty: the running program) under the machine's
  /// Run key, by its base name ("agent", or "agent(1)" when another program has that name). On
  /// Windows 9x the short path is registered. False only when the file does not exist.
  bool AddProgramToStartup(const char* path);
  /// Removes every Run entry of the program `path` (null or empty: the running program). False
  /// only when the file does not exist.
  bool RemoveProgramFromStartup(const char* path);
  /// Whether the user belongs to the local Administrators group; always true on Windows 9x.
  bool IsUserAdministrator();
  /// The system's default language identifier and its locale name ("en_US", "de_DE"; empty
  /// when the identifier is not in the library's table). `name` must hold at least 6 bytes.
  /// False when `name` is null or the system reports no language.

  bool SystemDefaultLanguage(unsigned int& langId, char* name);

 private:
  Pimpl<OS_impl> impl_;
};

}  // namespace Hostkit
