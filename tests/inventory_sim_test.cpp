// CPU, RAM and Drive on simulated machines with known processors, memory and drives, and the
// virtual clock and threads the speed and vendor queries run on.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <thread>

#include "hostkit/inventory.h"
#include "hostkit/regwiz.h"
#include "hostkit/sim/machine.h"
#include "hostkit/sim/profile.h"
#include "inventory/inventory_impl.h"
#include "platform/handles.h"
#include "platform/sync.h"
#include "platform/threads.h"
#include "platform/time.h"
#include "support/sim_machine.h"

namespace {

using Hostkit::CPU;
using Hostkit::Drive;
using Hostkit::sim::Machine;
using Hostkit::sim::Release;
using Hostkit::sim::SimVolume;
using hostkit_test::UseFreshMachine;
namespace platform = Hostkit::platform;

constexpr const char* kProcessorKey = "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
constexpr std::uint64_t kGiB = 1ULL << 30;

std::shared_ptr<Machine> MachineWith(std::uint32_t mhz, std::uint64_t counterRate,
                                     Release release = Release::WinXP) {
  auto machine = UseFreshMachine(release);
  machine->facts().processor.mhz = mhz;
  machine->facts().performanceFrequency = counterRate;
  return machine;
}

TEST(CpuSpeedSim, MeasuresTheConfiguredClockOnVirtualTime) {
  // A counter rate that divides into whole microseconds gives the exact figure; another one is
  // off by the rounding of the microseconds only.
  for (std::uint32_t mhz : {233U, 1400U}) {
    auto machine = MachineWith(mhz, 10000000);
    EXPECT_EQ(CPU().Speed(-1, false), static_cast<int>(mhz));
    // Three agreeing passes of 1000 counter ticks each, and no more.
    EXPECT_GE(machine->clock().now(), 3 * 100000U);
    EXPECT_LT(machine->clock().now(), 4 * 100000U);

    MachineWith(mhz, 3579545);
    EXPECT_NEAR(CPU().Speed(5, true), static_cast<int>(mhz), 2);
  }
  // Without a time-stamp counter, the timed bit-scan loop of a Pentium-class processor.
  auto noCounter = MachineWith(90, 10000000, Release::Win95);
  noCounter->facts().processor.hasTimeStampCounter = false;
  noCounter->facts().processor.family = 5;
  EXPECT_EQ(CPU().Speed(-1, false), 90);
  // No performance counter: the measurement gives 0.
  MachineWith(500, 0);
  EXPECT_EQ(CPU().Speed(-1, false), 0);
}

// A processor fault during the measurement stores 0, on every release, and the caller carries
// on; a processor without a time-stamp counter is timed without reading one.
TEST(CpuSpeedSim, ProcessorFaultDuringMeasurementGivesZero) {
  for (Release release : hostkit_test::AllReleases()) {
    auto machine = MachineWith(500, 10000000, release);
    machine->facts().processor.timeStampCounterFaults = true;
    EXPECT_EQ(CPU().Speed(-1, false), 0) << Hostkit::sim::ReleaseName(release);
    EXPECT_EQ(CPU().Speed(5, true), 0) << Hostkit::sim::ReleaseName(release);
    machine->facts().processor.hasTimeStampCounter = false;
    machine->facts().processor.family = 5;
    EXPECT_EQ(CPU().Speed(-1, false), 500) << Hostkit::sim::ReleaseName(release);
  }
}

// The registry's figure comes first, without a measuring thread; otherwise a zero timeout
// gives -1, whether or not the worker is terminated.
TEST(CpuSpeedSim, RegistryFigureFirstAndTimeOutGivesMinusOne) {
  for (bool terminate : {true, false}) {
    auto machine = MachineWith(500, 10000000);
    EXPECT_EQ(CPU().Speed(0, terminate), -1);
    if (terminate) {
      // Held at its first counter read and then ended. A worker that is not terminated is let
      // run free once the caller gives it up, so the clock may move after the call returns.
      EXPECT_EQ(machine->clock().now(), 0U);
    }
  }
  auto machine = MachineWith(700, 10000000);
  Hostkit::RegWiz wiz;
  ASSERT_TRUE(wiz.CreateKey(HKEY_LOCAL_MACHINE, kProcessorKey));
  ASSERT_TRUE(wiz.SetDwordKeyVal(HKEY_LOCAL_MACHINE, kProcessorKey, "~Mhz", 451));
  EXPECT_EQ(CPU().Speed(0, true), 451);
  EXPECT_EQ(machine->clock().now(), 0U);  // nothing was measured
}

DWORD WINAPI SleepTenSeconds(void* done) {
  platform::Sleep(10000);
  static_cast<std::atomic<bool>*>(done)->store(true);
  return 3;
}

TEST(ThreadsSim, TimedWaitsRunOnVirtualTime) {
  auto machine = UseFreshMachine(Release::WinXP);
  std::atomic<bool> done{false};
  // Terminated: the wait then succeeds at once with the given code, and the worker never ends.
  HANDLE thread = platform::CreateThread(nullptr, 0, &SleepTenSeconds, &done, 0, nullptr);
  ASSERT_NE(thread, nullptr);
  EXPECT_EQ(platform::WaitForSingleObject(thread, 1000), WAIT_TIMEOUT);
  EXPECT_EQ(platform::GetTickCount(), 1000U);
  DWORD code = 0;
  ASSERT_TRUE(platform::GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, STILL_ACTIVE);
  ASSERT_TRUE(platform::TerminateThread(thread, 7));
  EXPECT_EQ(platform::WaitForSingleObject(thread, 0), WAIT_OBJECT_0);
  ASSERT_TRUE(platform::GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 7U);
  platform::CloseHandle(thread);
  EXPECT_FALSE(done.load());

  // Waited for long enough: it ends at its own virtual time, with its own code.
  thread = platform::CreateThread(nullptr, 0, &SleepTenSeconds, &done, 0, nullptr);
  EXPECT_EQ(platform::WaitForSingleObject(thread, 20000), WAIT_OBJECT_0);
  EXPECT_EQ(platform::GetTickCount(), 11000U);
  ASSERT_TRUE(platform::GetExitCodeThread(thread, &code));
  EXPECT_EQ(code, 3U);
  platform::CloseHandle(thread);

  // Timed out and let go: closing the handle lets it run to the end by itself.
  done = false;
  thread = platform::CreateThread(nullptr, 0, &SleepTenSeconds, &done, 0, nullptr);
  EXPECT_EQ(platform::WaitForSingleObject(thread, 0), WAIT_TIMEOUT);
  platform::CloseHandle(thread);
  for (int i = 0; i < 500 && !done; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  EXPECT_TRUE(done.load());
}

TEST(CpuSim, CountFamilyVendorAndName) {
  auto machine = UseFreshMachine(Release::Win2000);
  auto& cpu = machine->facts().processor;
  cpu.affinityMask = 0b1011;
  cpu.family = 6;
  cpu.vendor = "AuthenticAMD";
  EXPECT_EQ(CPU().Num(), 3);
  EXPECT_EQ(CPU().Family(), 6);
  EXPECT_EQ(CPU().VendorUnicode(), HK_WIDE("AuthenticAMD"));
  EXPECT_EQ(CPU().ProductName(), "");
  // The registry's texts win over CPUID.
  Hostkit::RegWiz wiz;
  ASSERT_TRUE(wiz.CreateKey(HKEY_LOCAL_MACHINE, kProcessorKey));
  ASSERT_TRUE(wiz.SetKeyVal(HKEY_LOCAL_MACHINE, kProcessorKey, "VendorIdentifier",
                            std::string(90, 'V').c_str()));
  ASSERT_TRUE(wiz.SetKeyVal(HKEY_LOCAL_MACHINE, kProcessorKey, "Identifier",
                            "x86 Family 6 Model 8 Stepping 3"));
  EXPECT_EQ(CPU().VendorUnicode(), Hostkit::wstring(79, u'V'));
  EXPECT_EQ(CPU().ProductNameUnicode(), HK_WIDE("x86 Family 6 Model 8 Stepping 3"));

  // Windows 9x leaves the level out, so the family reads 5; without CPUID the vendor is unknown.
  auto old = UseFreshMachine(Release::Win95);
  old->facts().processor.hasCpuid = false;
  old->facts().processor.family = 4;
  EXPECT_EQ(CPU().Family(), 5);
  EXPECT_EQ(CPU().VendorUnicode(), HK_WIDE("???"));
}

TEST(RamSim, MegabytesPlusOne) {
  auto machine = UseFreshMachine(Release::Win98);
  machine->facts().totalPhysicalMemory = (64ULL << 20) - (384ULL << 10);
  EXPECT_EQ(Hostkit::RAM().NumMegs(), 64);
}

TEST(DriveSizeSim, ConversionKeepsTheDeliberateUndercount) {
  using Hostkit::ConvertSize;
  EXPECT_EQ(ConvertSize(6 * kGiB, Drive::GIGABYTES), 5U);  // 2 + 1 * 3
  EXPECT_EQ(ConvertSize(6 * kGiB, Drive::MEGABYTES), 6143U);
  EXPECT_EQ(ConvertSize(6 * kGiB, Drive::BYTES), 4294967295U);
  EXPECT_EQ(ConvertSize(3 * kGiB, Drive::BYTES), 3 * kGiB);
  EXPECT_EQ(ConvertSize(3 * kGiB, Drive::KILOBYTES), 3U << 20);
  EXPECT_EQ(ConvertSize(6 * kGiB, static_cast<Drive::SIZE>(4)), 0U);
}

std::shared_ptr<Machine> MachineWithDrives(Release release) {
  auto machine = UseFreshMachine(release);
  auto& volumes = machine->facts().volumes;
  volumes['A'] = SimVolume{.type = 2};
  volumes['C'] = SimVolume{.type = 3, .totalBytes = 6 * kGiB, .freeBytes = 2 * kGiB};
  volumes['D'] = SimVolume{.type = 3, .totalBytes = 6 * kGiB, .freeBytes = 3 * kGiB};
  volumes['E'] = SimVolume{.type = 5, .totalBytes = 650ULL << 20};
  volumes['F'] = SimVolume{.type = 4, .totalBytes = kGiB, .freeBytes = kGiB};
  volumes['Z'] = SimVolume{.type = 5};
  return machine;
}

TEST(DriveSim, LettersTypesAndLargestDrives) {
  MachineWithDrives(Release::WinXP);
  Drive drive;
  EXPECT_EQ(drive.Floppy(), 'A');
  EXPECT_EQ(drive.CDROM(), 'E');
  EXPECT_EQ(drive.Type('A'), Drive::TYPE_FLOPPY);
  EXPECT_TRUE(drive.IsFloppy('a'));
  EXPECT_TRUE(drive.IsHard('C'));
  EXPECT_TRUE(drive.IsCDROM('E'));
  EXPECT_TRUE(drive.IsNetwork('F'));
  EXPECT_EQ(drive.Type('Q'), Drive::TYPE_UNKNOWN);
  EXPECT_EQ(drive.MaxLetter(), 'C');      // a tie: the first letter wins
  EXPECT_EQ(drive.MaxFreeLetter(), 'D');  // the network drive does not count
  EXPECT_EQ(drive.MaxFreeSpace(Drive::MEGABYTES), 3072UL);
  EXPECT_EQ(drive.FreeSpaceOnSystemDrive(), 2048UL);

  // Z: as the only CD-ROM drive is not reported; no hard drives leaves C as the answer.
  auto machine = UseFreshMachine(Release::WinXP);
  machine->facts().volumes['Z'] = SimVolume{.type = 5};
  EXPECT_EQ(drive.CDROM(), 0);
  EXPECT_EQ(drive.MaxLetter(), 'C');
  EXPECT_EQ(drive.MaxFreeLetter(), 'C');
  EXPECT_EQ(drive.MaxSpace(Drive::BYTES), 0UL);
}

TEST(DriveSim, FallsBackWithoutTheExtendedCall) {
  // Windows 95 lacks GetDiskFreeSpaceExA, and its GetDiskFreeSpaceA stops short of 2 GiB.
  MachineWithDrives(Release::Win95);
  Drive drive;
  EXPECT_EQ(drive.AvailableSpace('C', Drive::MEGABYTES), 2047UL);
  MachineWithDrives(Release::Win98);
  EXPECT_EQ(drive.AvailableSpace('C', Drive::MEGABYTES), 6143UL);

  // The NT family's GetDiskFreeSpaceA answers in full: the same sizes either way.
  auto machine = MachineWithDrives(Release::WinXP);
  const unsigned long extended = drive.FreeSpace('D', Drive::KILOBYTES);
  machine->modules()["kernel32.dll"].entryPoints.erase("GetDiskFreeSpaceExA");
  EXPECT_EQ(drive.FreeSpace('D', Drive::KILOBYTES), extended);
  EXPECT_EQ(drive.AvailableSpace('C', Drive::GIGABYTES), 5UL);
  EXPECT_EQ(drive.AvailableSpace('Q', Drive::BYTES), 0UL);
}

TEST(HardwareProfileSim, LoadsSavesAndReportsTheLineAtFault) {
  const std::string profile = R"({
  "release": "win98",
  "processor": { "affinityMask": 1, "vendor": "CyrixInstead", "family": 5, "mhz": 200 },
  "memory": 33554432,
  "volumes": { "c": { "type": "fixed", "total": 2000000000, "free": 1000000000 },
               "D": { "type": "cdrom" } },
  "windowsDirectory": "D:\\WIN98",
  "registry": [ "cpu.reg" ]
})";
  const std::map<std::string, std::string> files{
      {"cpu.reg",
       "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0]"
       "\r\n\"~MHz\"=dword:000000c7\r\n"}};
  std::string error;
  auto machine = Hostkit::sim::LoadMachineProfileText(profile, "p.json", files, {}, error);
  ASSERT_NE(machine, nullptr) << error;
  Hostkit::sim::ActivateMachine(machine);
  EXPECT_EQ(CPU().Speed(0, true), 199);  // the registry's figure, not the clock's
  EXPECT_EQ(CPU().VendorUnicode(), HK_WIDE("CyrixInstead"));
  EXPECT_EQ(Hostkit::RAM().NumMegs(), 33);
  EXPECT_EQ(Drive().SystemDrive(), 'D');
  EXPECT_EQ(Drive().CDROM(), 'D');
  EXPECT_EQ(Drive().AvailableSpace('C', Drive::MEGABYTES), 1907UL);

  // Saved and loaded again, the facts come back.
  const auto folder = std::filesystem::temp_directory_path() / "hostkit-hardware-profile";
  std::filesystem::create_directories(folder);
  ASSERT_TRUE(Hostkit::sim::SaveMachineProfile(*machine, folder / "m.json", error)) << error;
  auto again = Hostkit::sim::LoadMachineProfile(folder / "m.json", error);
  std::filesystem::remove_all(folder);
  ASSERT_NE(again, nullptr) << error;
  EXPECT_EQ(again->facts().processor.vendor, "CyrixInstead");
  EXPECT_EQ(again->facts().volumes.at('C').freeBytes, 1000000000U);
  EXPECT_EQ(again->facts().volumes.at('D').type, 5U);
  EXPECT_EQ(again->facts().windowsDirectory, "D:\\WIN98");

  const std::string bad = "{\n  \"release\": \"winxp\",\n  \"volumes\": {\n    \"CD\": {}\n  }\n}";
  EXPECT_EQ(Hostkit::sim::LoadMachineProfileText(bad, "bad.json", {}, {}, error), nullptr);
  EXPECT_EQ(error.rfind("bad.json:4: ", 0), 0U) << error;
}

}  // namespace
