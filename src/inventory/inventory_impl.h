// The implementation objects behind CPU, RAM and Drive.
#pragma once

#include <cstdint>
#include <string>

#include "hostkit/inventory.h"

namespace Hostkit {

class CPU_impl {
 public:
  CPU_impl() = default;
  CPU_impl(const CPU_impl&) = default;
  CPU_impl& operator=(const CPU_impl&) = default;
  virtual ~CPU_impl() = default;

  int Num();
  int Family();
  int Speed(int timeoutSeconds, bool terminate);
  wstring VendorUnicode();
  std::string ProductName();
  wstring ProductNameUnicode();

 private:
  int speed_ = -1;  // MHz of the last measurement, -1 while unknown
  std::string vendor_;
};

class RAM_impl {
 public:
  int NumMegs();
};

class Drive_impl {
 public:
  Drive::TYPE Type(char letter);
  char Floppy();
  char CDROM();
  char SystemDrive();
  char MaxLetter();
  char MaxFreeLetter();
  unsigned long AvailableSpace(char letter, Drive::SIZE unit);
  unsigned long FreeSpace(char letter, Drive::SIZE unit);
  unsigned long MaxSpace(Drive::SIZE unit);
  unsigned long MaxFreeSpace(Drive::SIZE unit);
};

// The processor speed measured on the calling thread, in MHz: the truncated figure, and the
// one rounded on the first decimal.
struct SpeedFigures {
  int truncated = 0;
  int rounded = 0;
};
SpeedFigures MeasureProcessorSpeed();

// A byte count in `unit`, as 32-bit sizes are reported: bytes saturate at 4294967295; the
// other units take floor(low / d) + high * floor(4294967295 / d), wrapping at 32 bits.
DWORD ConvertSize(std::uint64_t bytes, Drive::SIZE unit);

}  // namespace Hostkit
