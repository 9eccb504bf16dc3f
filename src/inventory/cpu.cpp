// CPU: processor count, family, speed, vendor and product name, and the shell that forwards to
// CPU_impl.
//
// The speed measurement and the vendor query run on worker threads that the caller's thread
// waits for with a time-out. A worker that runs over may still be running after the call
// returns, so what it fills lives in a job both hold, never in the CPU_impl.
#include <atomic>
#include <bit>
#include <memory>
#include <string>
#include <utility>

#include "foundation/shell_impl.h"
#include "hostkit/regwiz.h"
#include "hostkit/strings.h"
#include "inventory/inventory_impl.h"
#include "platform/fault_guard.h"
#include "platform/handles.h"
#include "platform/processor.h"
#include "platform/registry.h"
#include "platform/sync.h"
#include "platform/threads.h"

namespace Hostkit {

template class Pimpl<CPU_impl>;

namespace {

constexpr const char* kProcessorKey = "HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0";
constexpr const char* kVendorKey = "Hardware\\Description\\System\\CentralProcessor\\0";
constexpr DWORD kVendorTimeoutMs = 5000;
constexpr std::size_t kMaxVendorLength = 79;
constexpr DWORD kIdFlag = 1U << 21;

struct SpeedJob {
  std::atomic<int> mhz{-1};
};

struct VendorJob {
  std::string text;
};

// Runs `routine` on a new thread with a share of `job`; null when the thread cannot start.
template <class Job>
HANDLE StartWorker(const std::shared_ptr<Job>& job, LPTHREAD_START_ROUTINE routine) {
  auto* share = new (std::nothrow) std::shared_ptr<Job>(job);
  if (share == nullptr) {
    return nullptr;
  }
  HANDLE thread = platform::CreateThread(nullptr, 0, routine, share, 0, nullptr);
  if (thread == nullptr) {
    delete share;
  }
  return thread;
}

// The worker's share of its job, released when the worker returns.
template <class Job>
std::shared_ptr<Job> TakeShare(void* parameter) {
  std::unique_ptr<std::shared_ptr<Job>> share(static_cast<std::shared_ptr<Job>*>(parameter));
  return std::move(*share);
}

// The measurement proper, run under the processor-fault handler: it holds nothing that needs
// releasing, since a fault abandons its frames as they stand.
DWORD WINAPI Measure(void* parameter) {
  static_cast<SpeedJob*>(parameter)->mhz = MeasureProcessorSpeed().truncated;
  return 0;
}

// A processor fault during the measurement (a time-stamp counter the system keeps to itself,
// say) stores 0, as does any other failure.
DWORD WINAPI SpeedWorker(void* parameter) {
  auto job = TakeShare<SpeedJob>(parameter);
  try {
    DWORD ignored = 0;
    if (platform::CallWithFaultHandler(&Measure, job.get(), &ignored) == FALSE) {
      job->mhz = 0;
    }
  } catch (...) {
    job->mhz = 0;
  }
  return 0;
}

std::string ReadVendor() {
  std::string text;
  if (RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, kVendorKey, "VendorIdentifier", text)) {
    text.resize(std::min(text.size(), kMaxVendorLength));
    return text;
  }
  if (platform::ToggleableProcessorFlags(kIdFlag) != 0) {
    DWORD registers[4] = {};
    platform::Cpuid(0, registers);
    const DWORD inOrder[3] = {registers[1], registers[3], registers[2]};  // EBX, EDX, ECX
    text.assign(reinterpret_cast<const char*>(inOrder), sizeof inOrder);
    return text;
  }
  return "???";
}

DWORD WINAPI VendorWorker(void* parameter) {
  auto job = TakeShare<VendorJob>(parameter);
  try {
    job->text = ReadVendor();
  } catch (...) {
    job->text = "???";
  }
  return 0;
}

// The 4-byte "~MHz" figure the system stored, tried in the spellings Windows releases use.
bool RegistrySpeed(int& mhz) {
  HKEY key = nullptr;
  if (platform::RegOpenKeyExA(HKEY_LOCAL_MACHINE, kProcessorKey, 0, KEY_READ, &key) !=
      ERROR_SUCCESS) {
    return false;
  }
  bool found = false;
  for (const char* name : {"~MHz", "~Mhz", "~mhz"}) {
    DWORD value = 0;
    DWORD size = sizeof value;
    if (platform::RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(&value),
                                   &size) == ERROR_SUCCESS &&
        size == sizeof value) {
      mhz = static_cast<int>(value);
      found = true;
      break;
    }
  }
  platform::RegCloseKey(key);
  return found;
}

wstring Widen(const std::string& text) {
  wstring wide;
  return ConvertANSIToUnicode(text, wide) ? wide : wstring();
}

}  // namespace

int CPU_impl::Num() {
  DWORD_PTR processMask = 0;
  DWORD_PTR systemMask = 0;
  if (platform::GetProcessAffinityMask(platform::GetCurrentProcess(), &processMask, &systemMask) ==
      FALSE) {
    return 0;
  }
  return std::popcount(static_cast<std::uint64_t>(processMask));
}

int CPU_impl::Family() {
  SYSTEM_INFO info{};
  platform::GetSystemInfo(&info);
  if (info.dwOemId != 0) {
    switch (info.dwProcessorType) {
      case PROCESSOR_INTEL_386:
        return 3;
      case PROCESSOR_INTEL_486:
        return 4;
      default:
        return 5;
    }
  }
  return info.wProcessorLevel >= 3 && info.wProcessorLevel <= 99 ? info.wProcessorLevel : 5;
}

int CPU_impl::Speed(int timeoutSeconds, bool terminate) {
  int mhz = 0;
  if (RegistrySpeed(mhz)) {
    return mhz;
  }
  speed_ = -1;
  auto job = std::make_shared<SpeedJob>();
  HANDLE thread = StartWorker(job, &SpeedWorker);
  if (thread == nullptr) {
    return -1;
  }
  const DWORD wait = timeoutSeconds == -1 ? INFINITE : static_cast<DWORD>(timeoutSeconds) * 1000;
  if (platform::WaitForSingleObject(thread, wait) == WAIT_OBJECT_0) {
    speed_ = job->mhz;
  } else {
    speed_ = -1;
    if (terminate) {
      platform::TerminateThread(thread, 0);
    }
  }
  platform::CloseHandle(thread);
  return speed_;
}

wstring CPU_impl::VendorUnicode() {
  auto job = std::make_shared<VendorJob>();
  HANDLE thread = StartWorker(job, &VendorWorker);
  vendor_ = "???";
  if (thread != nullptr) {
    if (platform::WaitForSingleObject(thread, kVendorTimeoutMs) == WAIT_OBJECT_0) {
      vendor_ = job->text;
    } else {
      platform::TerminateThread(thread, 0);
    }
    platform::CloseHandle(thread);
  }
  return Widen(vendor_);
}

std::string CPU_impl::ProductName() {
  std::string name;
  return RegWiz().GetKeyVal(HKEY_LOCAL_MACHINE, kVendorKey, "Identifier", name) ? name
                                                                                : std::string();
}

wstring CPU_impl::ProductNameUnicode() { return Widen(ProductName()); }

CPU::CPU() = default;
CPU::CPU(const CPU& other) = default;
CPU& CPU::operator=(const CPU& other) = default;
CPU::~CPU() = default;

int CPU::Num() {
  return Forward(impl_, 0, [&](CPU_impl& impl) { return impl.Num(); });
}
int CPU::Family() {
  return Forward(impl_, 0, [&](CPU_impl& impl) { return impl.Family(); });
}
int CPU::Speed(int timeoutSeconds, bool terminate) {
  return Forward(impl_, -1, [&](CPU_impl& impl) { return impl.Speed(timeoutSeconds, terminate); });
}
wstring CPU::VendorUnicode() {
  return Forward(impl_, wstring(), [&](CPU_impl& impl) { return impl.VendorUnicode(); });
}
std::string CPU::ProductName() {
  return Forward(impl_, std::string(), [&](CPU_impl& impl) { return impl.ProductName(); });
}
wstring CPU::ProductNameUnicode() {
  return Forward(impl_, wstring(), [&](CPU_impl& impl) { return impl.ProductNameUnicode(); });
}

}  // namespace Hostkit
