// CabFiles: where Windows 95, 98 and Me look for their set-up cabinet files. Setting a folder
// remembers the previous one so that it can be put back, and adds the folder to the list of
// recent install locations. On the NT family both operations do nothing.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class CabFiles_impl;

class HOSTKIT_API CabFiles {
 public:
  CabFiles();
  CabFiles(const CabFiles& other);
  CabFiles& operator=(const CabFiles& other);
  ~CabFiles();

  void SetWinCabsLocation(const char* folder);
  // Puts back the location remembered by SetWinCabsLocation and forgets it; without one,
  // nothing changes.
  void RestoreWinCabsLocation();

 private:
  Pimpl<CabFiles_impl> impl_;
};

}  // namespace Hostkit
