/// \file
/// CabFiles: where Windows 95, 98 and Me look for their set-up cabinet files. Setting a folder
/// remembers the previous one so that it can be put back, and adds the folder to the list of
/// recent install locations. On the NT family both operations do nothing.
#pragma once

#include "hostkit/export.h"
#include "hostkit/shell.h"

namespace Hostkit {

class CabFiles_impl;

/// Points Windows 95, 98 and Me at another folder of set-up cabinet files, and back again.
/// On the NT family both operations do nothing.
class HOSTKIT_API CabFiles {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  CabFiles();
  CabFiles(const CabFiles& other);
  CabFiles& operator=(const CabFiles& other);
  ~CabFiles();
  ///@}

  /// Windows 9x: makes `folder` the set-up source folder, remembers the previous one (unless it
  /// was the same) and puts `folder` first in the list of recent install locations.
  void SetWinCabsLocation(const char* folder);

  /// Puts back the location remembered by SetWinCabsLocation and forgets it; without one,
  /// nothing changes.
  void RestoreWinCabsLocation();

 private:
  Pimpl<CabFiles_impl> impl_;
};

}  // namespace Hostkit
