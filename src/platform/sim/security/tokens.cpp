// Tokens, privileges and impersonation of the simulated process.
#include <cstddef>
#include <cstring>
#include <vector>

#include "platform/handles.h"
#include "platform/security.h"
#include "platform/sim/security/token.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

// The privileges Windows NT knows, with their LUIDs. Every user holds the first three;
// administrators hold all of them.
struct PrivilegeInfo {
  const char* name;
  DWORD luid;
  bool heldByEveryone;
};

constexpr PrivilegeInfo kPrivileges[] = {
    {"SeChangeNotifyPrivilege", 23, true},
    {"SeShutdownPrivilege", 19, true},
    {"SeUndockPrivilege", 25, true},
    {"SeCreateTokenPrivilege", 2, false},
    {"SeAssignPrimaryTokenPrivilege", 3, false},
    {"SeLockMemoryPrivilege", 4, false},
    {"SeIncreaseQuotaPrivilege", 5, false},
    {"SeMachineAccountPrivilege", 6, false},
    {"SeTcbPrivilege", 7, false},
    {"SeSecurityPrivilege", 8, false},
    {"SeTakeOwnershipPrivilege", 9, false},
    {"SeLoadDriverPrivilege", 10, false},
    {"SeSystemProfilePrivilege", 11, false},
    {"SeSystemtimePrivilege", 12, false},
    {"SeProfileSingleProcessPrivilege", 13, false},
    {"SeIncreaseBasePriorityPrivilege", 14, false},
    {"SeCreatePagefilePrivilege", 15, false},
    {"SeCreatePermanentPrivilege", 16, false},
    {"SeBackupPrivilege", 17, false},
    {"SeRestorePrivilege", 18, false},
    {"SeDebugPrivilege", 20, false},
    {"SeAuditPrivilege", 21, false},
    {"SeSystemEnvironmentPrivilege", 22, false},
    {"SeRemoteShutdownPrivilege", 24, false},
};

const PrivilegeInfo* FindPrivilege(const char* name) {
  for (const auto& privilege : kPrivileges) {
    if (!NoCaseLess()(name, privilege.name) && !NoCaseLess()(privilege.name, name)) {
      return &privilege;
    }
  }
  return nullptr;
}

const PrivilegeInfo* FindPrivilege(const LUID& luid) {
  for (const auto& privilege : kPrivileges) {
    if (luid.HighPart == 0 && luid.LowPart == privilege.luid) {
      return &privilege;
    }
  }
  return nullptr;
}

bool Holds(const Token& token, const PrivilegeInfo& privilege) {
  return privilege.heldByEveryone || token.machine->facts().administrator;
}

// The thread's impersonation token, set by ImpersonateSelf and dropped by RevertToSelf.
thread_local std::shared_ptr<Token> threadToken;

HANDLE OpenToken(std::shared_ptr<Token> token, DWORD access, HANDLE* result) {
  HANDLE handle = AddHandle(std::make_shared<TokenHandle>(std::move(token), access));
  if (handle == nullptr) {
    platform::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
  }
  *result = handle;
  return handle;
}

constexpr std::size_t kPrivilegesOffset = offsetof(TOKEN_PRIVILEGES, Privileges);

DWORD PrivilegesSize(std::size_t count) {
  return static_cast<DWORD>(kPrivilegesOffset + count * sizeof(LUID_AND_ATTRIBUTES));
}

LUID_AND_ATTRIBUTES Entry(const PrivilegeInfo& privilege, bool enabled) {
  return {{privilege.luid, 0}, enabled ? SE_PRIVILEGE_ENABLED : 0};
}

// Writes `entries` as a TOKEN_PRIVILEGES record; the caller has checked the room.
void WritePrivileges(const std::vector<LUID_AND_ATTRIBUTES>& entries, TOKEN_PRIVILEGES* out) {
  out->PrivilegeCount = static_cast<DWORD>(entries.size());
  if (!entries.empty()) {
    std::memcpy(reinterpret_cast<BYTE*>(out) + kPrivilegesOffset, entries.data(),
                entries.size() * sizeof(LUID_AND_ATTRIBUTES));
  }
}

}  // namespace

bool SecurityAvailable(const Machine& machine) {
  if (machine.isWin9x() || machine.release() == Release::Unknown) {
    platform::SetLastError(ERROR_CALL_NOT_IMPLEMENTED);
    return false;
  }
  return true;
}

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token) {
  try {
    auto machine = sim::ActiveMachine();
    if (!sim::SecurityAvailable(*machine)) {
      return FALSE;
    }
    if (process != GetCurrentProcess() || token == nullptr) {
      SetLastError(process != GetCurrentProcess() ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
      return FALSE;
    }
    auto processToken = std::make_shared<sim::Token>();
    processToken->machine = machine;
    return sim::OpenToken(processToken, access, token) != nullptr ? TRUE : FALSE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL /*openAsSelf*/, HANDLE* token) {
  auto machine = sim::ActiveMachine();
  if (!sim::SecurityAvailable(*machine)) {
    return FALSE;
  }
  if (thread != GetCurrentThread() || token == nullptr) {
    SetLastError(thread != GetCurrentThread() ? ERROR_INVALID_HANDLE : ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  // An impersonation belongs to the machine it was made on.
  if (!sim::threadToken || sim::threadToken->machine != machine) {
    SetLastError(ERROR_NO_TOKEN);
    return FALSE;
  }
  return sim::OpenToken(sim::threadToken, access, token) != nullptr ? TRUE : FALSE;
}

BOOL LookupPrivilegeValueA(const char* /*system*/, const char* name, LUID* luid) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  if (name == nullptr || luid == nullptr) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
  }
  const sim::PrivilegeInfo* privilege = sim::FindPrivilege(name);
  if (privilege == nullptr) {
    SetLastError(ERROR_NO_SUCH_PRIVILEGE);
    return FALSE;
  }
  *luid = {privilege->luid, 0};
  return TRUE;
}

// Changes the privileges the token holds; a privilege it does not hold is skipped and the call
// still succeeds, with ERROR_NOT_ALL_ASSIGNED as the last error.
BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TOKEN_PRIVILEGES* newState,
                           DWORD bufferLength, TOKEN_PRIVILEGES* previousState,
                           DWORD* returnLength) {
  try {
    if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
      return FALSE;
    }
    auto handle = sim::FindHandleAs<sim::TokenHandle>(token);
    if (!handle) {
      SetLastError(ERROR_INVALID_HANDLE);
      return FALSE;
    }
    if ((handle->access & TOKEN_ADJUST_PRIVILEGES) == 0) {
      SetLastError(ERROR_ACCESS_DENIED);
      return FALSE;
    }
    if (disableAll == FALSE && newState == nullptr) {
      SetLastError(ERROR_INVALID_PARAMETER);
      return FALSE;
    }
    sim::Token& target = *handle->token;
    auto& enabled = target.enabledPrivileges();

    // What the call changes: every enabled privilege, or the requested ones the token holds.
    struct Change {
      const sim::PrivilegeInfo* privilege;
      bool enable;
    };
    std::vector<Change> changes;
    bool allAssigned = true;
    if (disableAll != FALSE) {
      for (const auto& privilege : sim::kPrivileges) {
        if (enabled.count(privilege.name) != 0) {
          changes.push_back({&privilege, false});
        }
      }
    } else {
      const LUID_AND_ATTRIBUTES* requested = newState->Privileges;
      for (DWORD i = 0; i < newState->PrivilegeCount; ++i) {
        const sim::PrivilegeInfo* privilege = sim::FindPrivilege(requested[i].Luid);
        if (privilege == nullptr || !sim::Holds(target, *privilege)) {
          allAssigned = false;
          continue;
        }
        const DWORD attributes = requested[i].Attributes;
        changes.push_back({privilege, (attributes & SE_PRIVILEGE_ENABLED) != 0 &&
                                          (attributes & SE_PRIVILEGE_REMOVED) == 0});
      }
    }

    std::vector<LUID_AND_ATTRIBUTES> previous;
    previous.reserve(changes.size());
    for (const auto& change : changes) {
      previous.push_back(sim::Entry(*change.privilege, enabled.count(change.privilege->name) != 0));
    }
    if (previousState != nullptr) {
      const DWORD needed = sim::PrivilegesSize(previous.size());
      if (returnLength != nullptr) {
        *returnLength = needed;
      }
      if (bufferLength < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
      }
    }
    for (const auto& change : changes) {
      if (change.enable) {
        enabled.insert(change.privilege->name);
      } else {
        enabled.erase(change.privilege->name);
      }
    }
    if (previousState != nullptr) {
      sim::WritePrivileges(previous, previousState);
    }
    SetLastError(allAssigned ? ERROR_SUCCESS : ERROR_NOT_ALL_ASSIGNED);
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

// The thread takes a copy of the process token as its impersonation token.
BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level) {
  try {
    auto machine = sim::ActiveMachine();
    if (!sim::SecurityAvailable(*machine)) {
      return FALSE;
    }
    if (level < SecurityAnonymous || level > SecurityDelegation) {
      SetLastError(ERROR_BAD_IMPERSONATION_LEVEL);
      return FALSE;
    }
    auto token = std::make_shared<sim::Token>();
    token->machine = machine;
    token->impersonation = true;
    token->ownPrivileges = machine->enabledPrivileges();
    sim::threadToken = std::move(token);
    return TRUE;
  } catch (...) {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return FALSE;
  }
}

BOOL RevertToSelf() {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  sim::threadToken.reset();
  return TRUE;
}

}  // namespace Hostkit::platform
