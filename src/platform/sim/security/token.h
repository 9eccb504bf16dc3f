// Access tokens of the simulated process, shared by the token calls and the access check.
#pragma once

#include <memory>
#include <set>
#include <string>

#include "hostkit/sim/machine.h"
#include "hostkit/win_types.h"
#include "platform/sim/kernel/handle_table.h"

namespace Hostkit::sim {

// An access token: it stands for the user of its machine (member of Everyone and Users, and of
// Administrators when the machine says the user is one) with the privileges enabled on it.
struct Token {
  std::shared_ptr<Machine> machine;
  bool impersonation = false;
  // An impersonation token's own privileges, copied from the process token when it was made.
  // The process token's privileges live on the machine, so that they last as long as it does.
  std::set<std::string, NoCaseLess> ownPrivileges;

  std::set<std::string, NoCaseLess>& enabledPrivileges() {
    return impersonation ? ownPrivileges : machine->enabledPrivileges();
  }
};

// An open handle to a token, with the access it was opened for.
struct TokenHandle : KernelObject {
  TokenHandle(std::shared_ptr<Token> t, DWORD a) : token(std::move(t)), access(a) {}
  std::shared_ptr<Token> token;
  DWORD access;
};

// Whether the machine has the security calls: the NT family does. Windows 9x (and a machine of
// unknown release) answers ERROR_CALL_NOT_IMPLEMENTED, which this sets as the last error.
bool SecurityAvailable(const Machine& machine);

}  // namespace Hostkit::sim
