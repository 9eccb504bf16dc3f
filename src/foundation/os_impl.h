// OS_impl: the operating-system facts and controls behind the OS shell. Stateless: every call
// asks the system again.
#pragma once

#include "hostkit/os.h"

namespace Hostkit {

class OS_impl {
 public:
  OS::TYPE Type();
  OS::EXACT_TYPE ExactType();

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
  bool SystemDefaultLanguage(unsigned int& langId, char* name);
};

inline bool IsWin9xType(OS::TYPE type) {
  return type == OS::TYPE_WIN95 || type == OS::TYPE_WIN98 || type == OS::TYPE_WINME;
}

inline bool IsWinNTType(OS::TYPE type) {
  return type == OS::TYPE_WINNT4 || type == OS::TYPE_WIN2000 || type == OS::TYPE_WINXP;
}

}  // namespace Hostkit
