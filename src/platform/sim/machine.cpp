// The simulated machine: release names, default version records and the active machine.
#include "hostkit/sim/machine.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <mutex>
#include <utility>

#include "platform/sim/kernel/kernel32_module.h"
#include "platform/sim/kernel/standard_modules.h"
#include "platform/sim/registry/store.h"

namespace Hostkit::sim {

namespace {

struct ReleaseNameEntry {
  Release release;
  const char* name;
};

constexpr ReleaseNameEntry kReleaseNames[] = {
    {Release::Win95, "win95"},     {Release::Win98, "win98"},   {Release::WinME, "winme"},
    {Release::WinNT4, "nt40"},     {Release::Win2000, "win2k"}, {Release::WinXP, "winxp"},
    {Release::Unknown, "unknown"},
};

int LowerChar(char c) { return std::tolower(static_cast<unsigned char>(c)); }

}  // namespace

const char* ReleaseName(Release release) {
  for (const auto& entry : kReleaseNames) {
    if (entry.release == release) {
      return entry.name;
    }
  }
  return "unknown";
}

std::optional<Release> ParseRelease(std::string_view name) {
  for (const auto& entry : kReleaseNames) {
    if (std::equal(name.begin(), name.end(), entry.name, entry.name + std::strlen(entry.name),
                   [](char a, char b) { return LowerChar(a) == LowerChar(b); })) {
      return entry.release;
    }
  }
  return std::nullopt;
}

bool IsWin9xFamily(Release release) {
  return release == Release::Win95 || release == Release::Win98 || release == Release::WinME;
}

bool NoCaseLess::operator()(const std::string& a, const std::string& b) const {
  return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                      [](char x, char y) { return LowerChar(x) < LowerChar(y); });
}

bool NoCaseEqual(const std::string& a, const std::string& b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return LowerChar(x) == LowerChar(y);
         });
}

namespace {

VersionRecord Win9xRecord(DWORD minor, DWORD build, const char* csd) {
  return {.major = 4,
          .minor = minor,
          .build = build,
          .platform = VER_PLATFORM_WIN32_WINDOWS,
          .csdVersion = csd,
          .answers = true,
          .acceptsExtended = false};
}

VersionRecord NtRecord(DWORD major, DWORD minor, DWORD build, WORD servicePack, WORD suiteMask) {
  return {.major = major,
          .minor = minor,
          .build = build,
          .platform = VER_PLATFORM_WIN32_NT,
          .csdVersion = "Service Pack " + std::to_string(servicePack) + (major == 4 ? "a" : ""),
          .servicePackMajor = servicePack,
          .suiteMask = suiteMask,
          .productType = VER_NT_WORKSTATION,
          .answers = true,
          .acceptsExtended = true};
}

}  // namespace

// Windows 95, 98 Second Edition, Me, NT 4 SP6a, 2000 SP4 and XP Professional SP3: the last
// service level of each release, as Wine also reports them.
VersionRecord DefaultVersionRecord(Release release) {
  switch (release) {
    case Release::Win95:
      return Win9xRecord(0, 0x040003B6, "");
    case Release::Win98:
      return Win9xRecord(10, 0x040A08AE, " A ");
    case Release::WinME:
      return Win9xRecord(90, 0x045A0BB8, " ");
    case Release::WinNT4:
      return NtRecord(4, 0, 1381, 6, 0);
    case Release::Win2000:
      return NtRecord(5, 0, 2195, 4, 0);
    case Release::WinXP:
      return NtRecord(5, 1, 2600, 3, 0x0100);
    case Release::Unknown:
      break;
  }
  return VersionRecord{};
}

Machine::Machine(Release release) : registry_(std::make_unique<RegistryStore>(*this)) {
  facts_.release = release;
  facts_.version = DefaultVersionRecord(release);
  AddStandardModules(*this);
  AddKernel32Module(*this);
}

Machine::~Machine() = default;

namespace {

std::mutex& ActiveMutex() {
  static std::mutex mutex;
  return mutex;
}

std::shared_ptr<Machine>& ActiveSlot() {
  static std::shared_ptr<Machine> active = std::make_shared<Machine>(Release::Unknown);
  return active;
}

// The machine a ScopedMachine put in place on this thread, if any.
thread_local std::shared_ptr<Machine> threadMachine;

}  // namespace

std::shared_ptr<Machine> ActiveMachine() {
  if (threadMachine) {
    return threadMachine;
  }
  std::lock_guard lock(ActiveMutex());
  return ActiveSlot();
}

void ActivateMachine(std::shared_ptr<Machine> machine) {
  std::lock_guard lock(ActiveMutex());
  ActiveSlot() = machine ? std::move(machine) : std::make_shared<Machine>(Release::Unknown);
}

ScopedMachine::ScopedMachine(std::shared_ptr<Machine> machine)
    : previous_(std::exchange(threadMachine, std::move(machine))) {}

ScopedMachine::~ScopedMachine() { threadMachine = std::move(previous_); }

void FaultInjection::arm(FaultFamily family, std::uint64_t n, DWORD error, bool forever) {
  std::lock_guard lock(mutex_);
  armed_ = true;
  family_ = family;
  n_ = n;
  error_ = error;
  forever_ = forever;
  calls_ = 0;
  fired_ = false;
}

void FaultInjection::disarm() {
  std::lock_guard lock(mutex_);
  armed_ = false;
}

bool FaultInjection::failNow(FaultFamily family, DWORD& error) {
  std::lock_guard lock(mutex_);
  if (!armed_ || family != family_) {
    return false;
  }
  ++calls_;
  if (calls_ == n_ || (forever_ && calls_ > n_)) {
    fired_ = true;
    error = error_;
    return true;
  }
  return false;
}

std::uint64_t FaultInjection::calls() const {
  std::lock_guard lock(mutex_);
  return calls_;
}

bool FaultInjection::fired() const {
  std::lock_guard lock(mutex_);
  return fired_;
}

}  // namespace Hostkit::sim
