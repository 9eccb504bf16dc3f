// Run-time bound modules of the simulated machine: LoadLibraryA finds a module in the machine's
// module table, GetProcAddress one of its entry points.
//
// Module names match without regard to case and to the folder they are named in; a name
// without an extension means ".dll", as on Windows. Loading a module twice answers the same
// handle and counts the loads; FreeLibrary releases one load.
#include "platform/modules.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "hostkit/sim/machine.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

std::string ModuleFileName(std::string name) {
  const std::size_t separator = name.find_last_of("\\/");
  if (separator != std::string::npos) {
    name.erase(0, separator + 1);
  }
  if (!name.empty() && name.back() == '.') {
    name.pop_back();  // a trailing dot means "no extension", and no ".dll" is added
  } else if (name.find('.') == std::string::npos) {
    name += ".dll";
  }
  return name;
}

struct LoadedModule {
  std::shared_ptr<Machine> machine;
  std::string name;  // the key in the machine's module table
  unsigned int loads = 0;
};

// Module handles stand for load addresses: 64 KiB apart, from 0x10000000 on.
class LoadedModules {
 public:
  HMODULE Load(const std::shared_ptr<Machine>& machine, const std::string& name) {
    std::lock_guard lock(mutex_);
    for (auto& [handle, module] : modules_) {
      if (module.machine == machine && !NoCaseLess()(module.name, name) &&
          !NoCaseLess()(name, module.name)) {
        ++module.loads;
        return handle;
      }
    }
    next_ += 0x10000;
    auto handle = reinterpret_cast<HMODULE>(next_);  // NOLINT(performance-no-int-to-ptr)
    modules_[handle] = {machine, name, 1};
    return handle;
  }

  // The entry for a loaded module on the machine now served; null when the handle is not loaded
  // or that machine does not offer the module. A handle kept across machines (the library binds
  // some modules once per process) thus answers as the module of the machine in use.
  const SimModule* Find(HMODULE handle) {
    std::lock_guard lock(mutex_);
    auto found = modules_.find(handle);
    if (found == modules_.end()) {
      return nullptr;
    }
    auto& table = ActiveMachine()->modules();
    auto module = table.find(found->second.name);
    return module != table.end() ? &module->second : nullptr;
  }

  bool Free(HMODULE handle) {
    std::lock_guard lock(mutex_);
    auto found = modules_.find(handle);
    if (found == modules_.end()) {
      return false;
    }
    if (--found->second.loads == 0) {
      modules_.erase(found);
    }
    return true;
  }

 private:
  std::mutex mutex_;
  std::uintptr_t next_ = 0x10000000 - 0x10000;
  std::map<HMODULE, LoadedModule> modules_;
};

LoadedModules& Loaded() {
  static LoadedModules loaded;
  return loaded;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

HMODULE LoadLibraryA(const char* fileName) {
  if (fileName == nullptr || *fileName == '\0') {
    SetLastError(ERROR_INVALID_PARAMETER);
    return nullptr;
  }
  try {
    auto machine = sim::ActiveMachine();
    DWORD fault = ERROR_SUCCESS;
    if (machine->faults().failNow(sim::FaultFamily::ModuleLoad, fault)) {
      SetLastError(fault);
      return nullptr;
    }
    auto module = machine->modules().find(sim::ModuleFileName(fileName));
    if (module == machine->modules().end()) {
      SetLastError(ERROR_MOD_NOT_FOUND);
      return nullptr;
    }
    return sim::Loaded().Load(machine, module->first);
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
}

// Entry points by name only: a name whose pointer value is below 0x10000 is an ordinal, which
// the simulated modules do not have.
FARPROC GetProcAddress(HMODULE module, const char* procName) {
  if (reinterpret_cast<std::uintptr_t>(procName) < 0x10000) {
    SetLastError(ERROR_PROC_NOT_FOUND);
    return nullptr;
  }
  try {
    const sim::SimModule* loaded = sim::Loaded().Find(module);
    if (loaded == nullptr) {
      SetLastError(ERROR_MOD_NOT_FOUND);
      return nullptr;
    }
    auto entry = loaded->entryPoints.find(procName);
    if (entry == loaded->entryPoints.end() || entry->second == nullptr) {
      SetLastError(ERROR_PROC_NOT_FOUND);
      return nullptr;
    }
    return entry->second;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
}

BOOL FreeLibrary(HMODULE module) {
  if (!sim::Loaded().Free(module)) {
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
  }
  return TRUE;
}

}  // namespace Hostkit::platform
