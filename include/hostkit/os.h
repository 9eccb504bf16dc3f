// OS: which Windows release the library runs on, restart and shutdown, startup programs,
// administrator rights and the system's default language.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class OS_impl;

class HOSTKIT_API OS {
 public:
  enum TYPE {
    TYPE_WIN95,
    TYPE_WIN98,
    TYPE_WINME,
    TYPE_WINNT4,
    TYPE_WIN2000,
    TYPE_WINXP,
    TYPE_UNKNOWN
  };

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

  OS();
  OS(const OS& other);
  OS& operator=(const OS& other);
  ~OS();

  TYPE Type();
  EXACT_TYPE ExactType();
  bool IsWin9x();
  bool IsWin95();
  bool IsWin98();
  bool IsWinME();
  bool IsWinNT();
  bool IsWinNT4();
  bool IsWin2000();
  bool IsWinXP();

  int MajorVersion();
  int MinorVersion();
  double Version();
  int BuildNumber();
  int NTSP();

  bool Reboot(bool force);
  bool Shutdown(bool force);
  bool AddProgramToStartup(const char* path);
  bool RemoveProgramFromStartup(const char* path);
  bool IsUserAdministrator();
  // `name` must hold at least 6 bytes.
  bool SystemDefaultLanguage(unsigned int& langId, char* name);

 private:
  Pimpl<OS_impl> impl_;
};

}  // namespace Hostkit
