/// \file
/// CPU, RAM and Drive: the processor, installed memory and drives of the machine.
#pragma once

#include <string>

#include "hostkit/export.h"
#include "hostkit/shell.h"
#include "hostkit/win_types.h"

namespace Hostkit {

class CPU_impl;
class RAM_impl;
class Drive_impl;

/// The processors: how many, their family, speed, vendor and product name.
class HOSTKIT_API CPU {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  CPU();
  CPU(const CPU& other);
  CPU& operator=(const CPU& other);
  virtual ~CPU();
  ///@}

  /// Processors the process may run on.
  int Num();
  /// 3, 4, 5 or the processor level.
  int Family();
  /// Clock speed in MHz: the registry's figure when it has one, else a measurement on a worker
  /// thread waited for `timeoutSeconds` (-1: without limit); -1 on failure or time-out. A worker
  /// that runs over is ended when `terminate` is true and left to finish otherwise.
  int Speed(int timeoutSeconds, bool terminate);
  /// The processor's vendor text ("GenuineIntel"), "???" when it cannot be told in 5 seconds.
  wstring VendorUnicode();
  ///@{
  /// The processor's identifier text from the registry; empty when there is none.
  std::string ProductName();
  wstring ProductNameUnicode();
  ///@}

 private:
  Pimpl<CPU_impl> impl_;
};

/// The installed memory.
class HOSTKIT_API RAM {
 public:
  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  RAM();
  RAM(const RAM& other);
  RAM& operator=(const RAM& other);
  ~RAM();
  ///@}

  /// Installed memory in megabytes.
  int NumMegs();

 private:
  Pimpl<RAM_impl> impl_;
};

/// The drives A: to Z:: their kind, capacity and free space.
class HOSTKIT_API Drive {
 public:
  /// A drive's kind; the drive Floppy() names counts as TYPE_FLOPPY.
  enum TYPE { TYPE_HARD, TYPE_CDROM, TYPE_REMOVABLE, TYPE_FLOPPY, TYPE_NETWORK, TYPE_UNKNOWN };
  /// The unit of a size.
  enum SIZE { BYTES, KILOBYTES, MEGABYTES, GIGABYTES };

  ///@{
  /// Creates, copies (each copy owns its own implementation object) and destroys
  /// the object.
  Drive();
  Drive(const Drive& other);
  Drive& operator=(const Drive& other);
  ~Drive();
  ///@}

  /// The drive's kind; TYPE_UNKNOWN for a letter that names no drive.
  TYPE Type(char letter);
  ///@{
  /// Whether Type(letter) is that kind (IsFloppy: whether the letter is Floppy()'s).
  bool IsHard(char letter);
  bool IsFloppy(char letter);
  bool IsCDROM(char letter);
  bool IsRemovable(char letter);
  bool IsNetwork(char letter);
  ///@}
  ///@{
  /// The first removable drive, respectively CD-ROM drive, below Z:; 0 when there is none.
  char Floppy();
  char CDROM();
  ///@}
  /// The drive of the Windows directory.
  char SystemDrive();
  ///@{
  /// The hard drive with the most capacity, respectively free space; 'C' when there is none.
  char MaxLetter();
  char MaxFreeLetter();
  ///@}
  ///@{
  /// Sizes in `unit`: a drive's capacity and its space free to the caller, and the greatest of
  /// each over the hard drives; 0 on failure or for an unknown unit.

  unsigned long AvailableSpace(char letter, SIZE unit);
  unsigned long FreeSpace(char letter, SIZE unit);
  unsigned long MaxSpace(SIZE unit);
  unsigned long MaxFreeSpace(SIZE unit);
  ///@}
  /// Free space on the system drive in megabytes.
  unsigned long FreeSpaceOnSystemDrive();

 private:
  Pimpl<Drive_impl> impl_;
};

}  // namespace Hostkit
