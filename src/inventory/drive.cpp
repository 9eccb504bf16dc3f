// Drive: drive letters, their kinds and sizes, and the shell that forwards to Drive_impl.
#include <cctype>
#include <cstdio>

#include "foundation/shell_impl.h"
#include "inventory/inventory_impl.h"
#include "platform/modules.h"
#include "platform/storage.h"

namespace Hostkit {

template class Pimpl<Drive_impl>;

namespace {

constexpr char kNoLetter = 0;

// Kernel32 for the extended disk-space call: loaded once, kept loaded, released when the
// library unloads.
class Kernel32Binding {
 public:
  Kernel32Binding() : module_(platform::LoadLibraryA("Kernel32.dll")) {}
  ~Kernel32Binding() {
    if (module_ != nullptr) {
      platform::FreeLibrary(module_);
    }
  }
  Kernel32Binding(const Kernel32Binding&) = delete;
  Kernel32Binding& operator=(const Kernel32Binding&) = delete;

  // Looked up on every call: null where the release lacks it.
  platform::GetDiskFreeSpaceExAFunction DiskFreeSpaceEx() const {
    if (module_ == nullptr) {
      return nullptr;
    }
    // GetProcAddress hands out every entry point under one type; the plain function type in
    // between says the cast back to the real one is intended.
    FARPROC entry = platform::GetProcAddress(module_, "GetDiskFreeSpaceExA");
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast)
    return reinterpret_cast<platform::GetDiskFreeSpaceExAFunction>(reinterpret_cast<void (*)()>(
        entry));  // NOLINT(cppcoreguidelines-pro-type-reinterpret-cast)
  }

 private:
  HMODULE module_;
};

const Kernel32Binding& Kernel32() {
  static const Kernel32Binding binding;
  return binding;
}

struct RootPath {
  char text[8] = {};
};

// "X:\" for every query but the floppy and CD-ROM searches, which name the drive as "X:".
RootPath Root(char letter, bool withSeparator) {
  RootPath root;
  std::snprintf(root.text, sizeof root.text, withSeparator ? "%c:\\" : "%c:", letter);
  return root;
}

// The drive's capacity and the bytes free to the caller; false when neither call answers.
bool DiskSpace(char letter, std::uint64_t& capacity, std::uint64_t& free) {
  const RootPath root = Root(letter, true);
  if (auto extended = Kernel32().DiskFreeSpaceEx()) {
    ULARGE_INTEGER available{};
    ULARGE_INTEGER total{};
    ULARGE_INTEGER totalFree{};
    if (extended(root.text, &available, &total, &totalFree) == FALSE) {
      return false;
    }
    capacity = total.QuadPart;
    free = available.QuadPart;
    return true;
  }
  DWORD sectorsPerCluster = 0;
  DWORD bytesPerSector = 0;
  DWORD freeClusters = 0;
  DWORD totalClusters = 0;
  if (platform::GetDiskFreeSpaceA(root.text, &sectorsPerCluster, &bytesPerSector, &freeClusters,
                                  &totalClusters) == FALSE) {
    return false;
  }
  const std::uint64_t clusterBytes = std::uint64_t{sectorsPerCluster} * bytesPerSector;
  capacity = clusterBytes * totalClusters;
  free = clusterBytes * freeClusters;
  return true;
}

// The first letter whose type (asked as "X:") is `type`, when it is below Z:.
char FirstOfType(UINT type) {
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (platform::GetDriveTypeA(Root(letter, false).text) == type) {
      return letter < 'Z' ? letter : kNoLetter;
    }
  }
  return kNoLetter;
}

char Upper(char letter) {
  return static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
}

}  // namespace

DWORD ConvertSize(std::uint64_t bytes, Drive::SIZE unit) {
  const auto high = static_cast<DWORD>(bytes >> 32);
  const auto low = static_cast<DWORD>(bytes);
  DWORD divisor = 0;
  switch (unit) {
    case Drive::BYTES:
      return high != 0 ? 0xFFFFFFFFU : low;
    case Drive::KILOBYTES:
      divisor = 1024;
      break;
    case Drive::MEGABYTES:
      divisor = 1048576;
      break;
    case Drive::GIGABYTES:
      divisor = 1073741824;
      break;
    default:
      return 0;
  }
  // 4294967295 rather than 4294967296: sizes above 4 GiB come out slightly low, as they always
  // have for the library's callers.
  return low / divisor + high * (0xFFFFFFFFU / divisor);
}

Drive::TYPE Drive_impl::Type(char letter) {
  if (letter == Floppy()) {
    return Drive::TYPE_FLOPPY;
  }
  switch (platform::GetDriveTypeA(Root(letter, true).text)) {
    case DRIVE_NO_ROOT_DIR:
      return AvailableSpace(letter, Drive::MEGABYTES) > 0 ? Drive::TYPE_HARD : Drive::TYPE_UNKNOWN;
    case DRIVE_REMOVABLE:
      return Drive::TYPE_REMOVABLE;
    case DRIVE_FIXED:
      return Drive::TYPE_HARD;
    case DRIVE_REMOTE:
      return Drive::TYPE_NETWORK;
    case DRIVE_CDROM:
      return Drive::TYPE_CDROM;
    default:
      return Drive::TYPE_UNKNOWN;
  }
}

char Drive_impl::Floppy() { return FirstOfType(DRIVE_REMOVABLE); }
char Drive_impl::CDROM() { return FirstOfType(DRIVE_CDROM); }

char Drive_impl::SystemDrive() {
  char directory[MAX_PATH] = {};
  platform::GetWindowsDirectoryA(directory, MAX_PATH);
  return directory[0];
}

unsigned long Drive_impl::AvailableSpace(char letter, Drive::SIZE unit) {
  std::uint64_t capacity = 0;
  std::uint64_t free = 0;
  return DiskSpace(letter, capacity, free) ? ConvertSize(capacity, unit) : 0;
}

unsigned long Drive_impl::FreeSpace(char letter, Drive::SIZE unit) {
  std::uint64_t capacity = 0;
  std::uint64_t free = 0;
  return DiskSpace(letter, capacity, free) ? ConvertSize(free, unit) : 0;
}

namespace {

// The hard drive for which `size` is greatest (the first wins ties) and that size; 'C' and 0
// when no hard drive has a size above 0.
template <class Size>
std::pair<char, unsigned long> LargestHardDrive(Drive_impl& drives, Size size) {
  std::pair<char, unsigned long> best{'C', 0};
  for (char letter = 'A'; letter <= 'Z'; ++letter) {
    if (drives.Type(letter) != Drive::TYPE_HARD) {
      continue;
    }
    const unsigned long value = size(letter);
    if (value > best.second) {
      best = {letter, value};
    }
  }
  return best;
}

}  // namespace

unsigned long Drive_impl::MaxSpace(Drive::SIZE unit) {
  return LargestHardDrive(*this, [&](char letter) { return AvailableSpace(letter, unit); }).second;
}

unsigned long Drive_impl::MaxFreeSpace(Drive::SIZE unit) {
  return LargestHardDrive(*this, [&](char letter) { return FreeSpace(letter, unit); }).second;
}

char Drive_impl::MaxLetter() {
  return LargestHardDrive(*this,
                          [&](char letter) { return AvailableSpace(letter, Drive::MEGABYTES); })
      .first;
}

char Drive_impl::MaxFreeLetter() {
  return LargestHardDrive(*this, [&](char letter) { return FreeSpace(letter, Drive::MEGABYTES); })
      .first;
}

Drive::Drive() = default;
Drive::Drive(const Drive& other) = default;
Drive& Drive::operator=(const Drive& other) = default;
Drive::~Drive() = default;

Drive::TYPE Drive::Type(char letter) {
  return Forward(impl_, TYPE_HARD, [&](Drive_impl& impl) { return impl.Type(letter); });
}
bool Drive::IsHard(char letter) { return impl_ && Type(letter) == TYPE_HARD; }
bool Drive::IsCDROM(char letter) { return impl_ && Type(letter) == TYPE_CDROM; }
bool Drive::IsRemovable(char letter) { return impl_ && Type(letter) == TYPE_REMOVABLE; }
bool Drive::IsNetwork(char letter) { return impl_ && Type(letter) == TYPE_NETWORK; }
bool Drive::IsFloppy(char letter) {
  return Forward(impl_, false,
                 [&](Drive_impl& impl) { return Upper(letter) == Upper(impl.Floppy()); });
}
char Drive::Floppy() {
  return Forward(impl_, '?', [&](Drive_impl& impl) { return impl.Floppy(); });
}
char Drive::CDROM() {
  return Forward(impl_, '?', [&](Drive_impl& impl) { return impl.CDROM(); });
}
char Drive::SystemDrive() {
  return Forward(impl_, '?', [&](Drive_impl& impl) { return impl.SystemDrive(); });
}
char Drive::MaxLetter() {
  return Forward(impl_, 'C', [&](Drive_impl& impl) { return impl.MaxLetter(); });
}
char Drive::MaxFreeLetter() {
  return Forward(impl_, '?', [&](Drive_impl& impl) { return impl.MaxFreeLetter(); });
}
unsigned long Drive::AvailableSpace(char letter, SIZE unit) {
  return Forward(impl_, 0UL, [&](Drive_impl& impl) { return impl.AvailableSpace(letter, unit); });
}
unsigned long Drive::FreeSpace(char letter, SIZE unit) {
  return Forward(impl_, 0UL, [&](Drive_impl& impl) { return impl.FreeSpace(letter, unit); });
}
unsigned long Drive::MaxSpace(SIZE unit) {
  return Forward(impl_, 0UL, [&](Drive_impl& impl) { return impl.MaxSpace(unit); });
}
unsigned long Drive::MaxFreeSpace(SIZE unit) {
  return Forward(impl_, 0UL, [&](Drive_impl& impl) { return impl.MaxFreeSpace(unit); });
}
unsigned long Drive::FreeSpaceOnSystemDrive() {
  return Forward(impl_, 0UL,
                 [&](Drive_impl& impl) { return impl.FreeSpace(impl.SystemDrive(), MEGABYTES); });
}

}  // namespace Hostkit
