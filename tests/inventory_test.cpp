// CPU, RAM and Drive against the machine they run on: the simulated machine's defaults, and
// under Wine the host's own processors and memory as Linux reports them.
#include "hostkit/inventory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/test_machine.h"

namespace {

using Hostkit::CPU;
using Hostkit::Drive;
using Hostkit::RAM;
using hostkit_test::OnRealWindows;
using hostkit_test::PerRelease;

// Lines of a host file that start with `prefix`, read through Wine's Z: drive; -1 when the
// file cannot be read (not under Wine).
int CountHostLines(const char* file, const std::string& prefix, std::string* firstMatch) {
  std::ifstream in(file);
  if (!in) {
    return -1;
  }
  int count = 0;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind(prefix, 0) == 0) {
      if (count++ == 0 && firstMatch != nullptr) {
        *firstMatch = line;
      }
    }
  }
  return count;
}

class Inventory : public PerRelease {};

TEST_P(Inventory, ProcessorAnswersAreSane) {
  CPU cpu;
  EXPECT_GE(cpu.Num(), 1);
  EXPECT_GE(cpu.Family(), 3);
  EXPECT_LE(cpu.Family(), 99);
  EXPECT_GT(cpu.Speed(30, true), 0);
  const Hostkit::wstring vendor = cpu.VendorUnicode();
  EXPECT_FALSE(vendor.empty());
  EXPECT_NE(vendor, HK_WIDE("???"));
  if (OnRealWindows()) {
    const int hostProcessors = CountHostLines("Z:\\proc\\cpuinfo", "processor", nullptr);
    if (hostProcessors > 0) {
      EXPECT_EQ(cpu.Num(), hostProcessors);
    }
  }
}

TEST_P(Inventory, MemoryMatchesTheHost) {
  const int megs = RAM().NumMegs();
  EXPECT_GT(megs, 1);
  std::string line;
  if (OnRealWindows() && CountHostLines("Z:\\proc\\meminfo", "MemTotal:", &line) == 1) {
    const double hostMegs = std::stod(line.substr(line.find(':') + 1)) / 1024.0;
    EXPECT_NEAR(megs, hostMegs, hostMegs * 0.02);
  }
}

TEST_P(Inventory, DriveSizesAgreeAcrossUnits) {
  Drive drive;
  EXPECT_EQ(drive.SystemDrive(), 'C');
  if (OnRealWindows()) {
    EXPECT_TRUE(drive.IsHard('C'));
    EXPECT_GT(drive.FreeSpaceOnSystemDrive(), 0UL);
  }
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (!drive.IsHard(letter)) {
      continue;
    }
    SCOPED_TRACE(std::string(1, letter));
    const unsigned long megs = drive.AvailableSpace(letter, Drive::MEGABYTES);
    EXPECT_LE(drive.FreeSpace(letter, Drive::MEGABYTES), megs);
    EXPECT_LE(megs, drive.MaxSpace(Drive::MEGABYTES));
    // Below 4 GiB the units agree exactly; above it, the kilobyte figure wraps at 32 bits.
    if (megs < 4096) {
      EXPECT_EQ(drive.AvailableSpace(letter, Drive::KILOBYTES) / 1024, megs);
    }
  }
  const char largest = drive.MaxLetter();
  if (drive.IsHard(largest)) {
    EXPECT_EQ(drive.AvailableSpace(largest, Drive::MEGABYTES), drive.MaxSpace(Drive::MEGABYTES));
  }
}

INSTANTIATE_TEST_SUITE_P(Releases, Inventory, testing::ValuesIn(hostkit_test::AllReleases()),
                         hostkit_test::ReleaseParamName);

}  // namespace
