// Memory and drives of the simulated machine. Drives are the machine's listed volumes; a letter
// not listed whose host folder exists under the machine's drive root is a fixed disk reporting
// the host file system's space.
#include "platform/storage.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <limits>
#include <optional>
#include <system_error>

#include "hostkit/sim/machine.h"
#include "platform/sim/kernel/kernel32_module.h"
#include "platform/sim/shell/host_paths.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

constexpr DWORD kErrorNotReady = 21;  // ERROR_NOT_READY: a drive without a medium
constexpr DWORD kBytesPerSector = 512;
constexpr DWORD kSectorsPerCluster = 8;
constexpr std::uint64_t kClusterBytes = std::uint64_t{kBytesPerSector} * kSectorsPerCluster;

// The drive letter of a root path ("C:", "c:\", "C:\dir"); C: for a null path (the current
// directory's drive). Null for anything else.
std::optional<char> DriveLetter(const char* path) {
  if (path == nullptr) {
    return 'C';
  }
  if (std::isalpha(static_cast<unsigned char>(path[0])) == 0 || path[1] != ':') {
    return std::nullopt;
  }
  return static_cast<char>(std::toupper(static_cast<unsigned char>(path[0])));
}

std::optional<std::filesystem::path> HostDriveFolder(const MachineFacts& facts, char letter) {
  auto folder = DriveFolder(facts, static_cast<WCHAR>(letter));
  std::error_code ignored;
  if (!folder || !std::filesystem::is_directory(*folder, ignored)) {
    return std::nullopt;
  }
  return folder;
}

// The drive's volume: listed, or made from its host folder.
std::optional<SimVolume> FindVolume(const MachineFacts& facts, char letter) {
  const auto listed = facts.volumes.find(letter);
  if (listed != facts.volumes.end()) {
    return listed->second;
  }
  const auto folder = HostDriveFolder(facts, letter);
  if (!folder) {
    return std::nullopt;
  }
  std::error_code failed;
  const auto space = std::filesystem::space(*folder, failed);
  if (failed) {
    return SimVolume{};
  }
  return SimVolume{.type = DRIVE_FIXED, .totalBytes = space.capacity, .freeBytes = space.available};
}

// The size of a volume that holds a file system; null for an empty or absent drive.
std::optional<SimVolume> MountedVolume(const char* path) {
  const auto letter = DriveLetter(path);
  const auto volume = letter ? FindVolume(ActiveMachine()->facts(), *letter) : std::nullopt;
  if (!volume || volume->totalBytes == 0) {
    platform::SetLastError(letter && volume ? kErrorNotReady : ERROR_PATH_NOT_FOUND);
    return std::nullopt;
  }
  return volume;
}

BOOL WINAPI SimGetDiskFreeSpaceExA(const char* directory, ULARGE_INTEGER* freeBytesAvailable,
                                   ULARGE_INTEGER* totalBytes, ULARGE_INTEGER* totalFreeBytes) {
  const auto volume = MountedVolume(directory);
  if (!volume) {
    return FALSE;
  }
  if (freeBytesAvailable != nullptr) {
    freeBytesAvailable->QuadPart = volume->freeBytes;
  }
  if (totalBytes != nullptr) {
    totalBytes->QuadPart = volume->totalBytes;
  }
  if (totalFreeBytes != nullptr) {
    totalFreeBytes->QuadPart = volume->freeBytes;
  }
  return TRUE;
}

}  // namespace

void AddKernel32Module(Machine& machine) {
  SimModule& kernel32 = machine.modules()["kernel32.dll"];
  if (machine.release() != Release::Win95) {
    // Kept as FARPROC, as GetProcAddress hands entry points out, by way of the plain function
    // type that marks the cast as intended.
    kernel32.entryPoints["GetDiskFreeSpaceExA"] = reinterpret_cast<FARPROC>(  // NOLINT
        reinterpret_cast<void (*)()>(&SimGetDiskFreeSpaceExA));               // NOLINT
  }
}

}  // namespace Hostkit::sim

namespace Hostkit::platform {

void GlobalMemoryStatus(MEMORYSTATUS* status) {
  const std::uint64_t total = sim::ActiveMachine()->facts().totalPhysicalMemory;
  const auto bytes = static_cast<SIZE_T>(std::min<std::uint64_t>(total, SIZE_MAX));
  std::memset(status, 0, sizeof *status);
  status->dwLength = sizeof *status;
  status->dwMemoryLoad = 50;
  status->dwTotalPhys = bytes;
  status->dwAvailPhys = bytes / 2;
  status->dwTotalPageFile = bytes;
  status->dwAvailPageFile = bytes / 2;
  status->dwTotalVirtual = SIZE_T{0x7FFE0000};
  status->dwAvailVirtual = SIZE_T{0x7FFE0000} / 2;
}

DWORD GetLogicalDrives() {
  const sim::MachineFacts& facts = sim::ActiveMachine()->facts();
  DWORD drives = 0;
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (facts.volumes.contains(letter) || sim::HostDriveFolder(facts, letter)) {
      drives |= 1U << (letter - 'A');
    }
  }
  return drives;
}

UINT GetDriveTypeA(const char* rootPath) {
  const auto letter = sim::DriveLetter(rootPath);
  const auto volume =
      letter ? sim::FindVolume(sim::ActiveMachine()->facts(), *letter) : std::nullopt;
  return volume ? volume->type : DRIVE_NO_ROOT_DIR;
}

// Windows 9x reports at most just under 2 GiB here, for the sake of older programs; the NT
// family reports the full size while the cluster counts fit.
BOOL GetDiskFreeSpaceA(const char* rootPath, DWORD* sectorsPerCluster, DWORD* bytesPerSector,
                       DWORD* freeClusters, DWORD* totalClusters) {
  const auto volume = sim::MountedVolume(rootPath);
  if (!volume) {
    return FALSE;
  }
  const std::uint64_t cap = sim::ActiveMachine()->isWin9x()
                                ? std::numeric_limits<std::int32_t>::max() / sim::kClusterBytes
                                : std::numeric_limits<DWORD>::max();
  auto clusters = [cap](std::uint64_t bytes) {
    return static_cast<DWORD>(std::min(bytes / sim::kClusterBytes, cap));
  };
  *sectorsPerCluster = sim::kSectorsPerCluster;
  *bytesPerSector = sim::kBytesPerSector;
  *freeClusters = clusters(volume->freeBytes);
  *totalClusters = clusters(volume->totalBytes);
  return TRUE;
}

UINT GetWindowsDirectoryA(char* buffer, UINT size) {
  const std::string& directory = sim::ActiveMachine()->facts().windowsDirectory;
  const auto length = static_cast<UINT>(directory.size());
  if (buffer == nullptr || size <= length) {
    return length + 1;
  }
  std::memcpy(buffer, directory.c_str(), directory.size() + 1);
  return length;
}

}  // namespace Hostkit::platform
