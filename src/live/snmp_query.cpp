// CSNMPQuery: the MIB-II reader over the SNMP extension agent, bound at run time.
#include "hostkit/snmp_query.h"

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "foundation/shell_impl.h"
#include "hostkit/os.h"
#include "hostkit/static_tcpip.h"
#include "live/snmp_values.h"
#include "platform/critical_section.h"
#include "platform/modules.h"
#include "platform/snmp.h"

namespace Hostkit {

namespace snmp = platform::snmp;

class CSNMPQuery_impl {
 public:
  CSNMPQuery_impl() {
    platform::InitializeCriticalSection(&lock_);
    Initialise();
  }
  CSNMPQuery_impl(const CSNMPQuery_impl& other) : CSNMPQuery_impl() { cache_ = other.Cache(); }
  CSNMPQuery_impl& operator=(const CSNMPQuery_impl&) = delete;
  ~CSNMPQuery_impl() {
    platform::EnterCriticalSection(&lock_);
    platform::LeaveCriticalSection(&lock_);
    platform::DeleteCriticalSection(&lock_);
    FreeModules();
  }

  bool IsUsable() const { return status_ == 0; }
  bool Walk(const std::string& start, const std::string& end);
  bool Lookup(const std::string& column, const std::string& index, std::string& value) const;
  std::vector<CSNMPQuery::Entry> Column(const std::string& column) const;
  std::vector<CSNMPQuery::Entry> Cache() const {
    const platform::CriticalSectionLock hold(lock_);
    return cache_;
  }

 private:
  void Initialise();
  bool InitialiseAgent();
  void FreeModules();
  void FreeValue(snmp::AsnAny& value) const;

  DWORD status_ = 1;
  HANDLE trapEvent_ = nullptr;
  snmp::ExtensionInit init_ = nullptr;
  snmp::ExtensionQuery query_ = nullptr;
  snmp::MemAlloc alloc_ = nullptr;
  snmp::MemFree free_ = nullptr;
  HMODULE agent_ = nullptr;
  HMODULE utility_ = nullptr;
  mutable platform::CRITICAL_SECTION lock_{};
  std::vector<CSNMPQuery::Entry> cache_;
};

template class Pimpl<CSNMPQuery_impl>;

void CSNMPQuery_impl::Initialise() {
  const platform::CriticalSectionLock hold(lock_);
  // NT 4 may run without TCP/IP, and then its agent has nothing to report.
  if (OS().IsWinNT4() && !StaticTcpipInfo().IsTcpipInstalled()) {
    return;
  }
  utility_ = platform::LoadLibraryA(snmp::kUtilityModule);
  if (utility_ != nullptr) {
    alloc_ = platform::ProcAs<snmp::MemAlloc>(platform::GetProcAddress(utility_, snmp::kMemAlloc));
    free_ = platform::ProcAs<snmp::MemFree>(platform::GetProcAddress(utility_, snmp::kMemFree));
  }
  if (alloc_ != nullptr && free_ != nullptr) {
    agent_ = platform::LoadLibraryA(snmp::kAgentModule);
  }
  if (agent_ != nullptr) {
    init_ = platform::ProcAs<snmp::ExtensionInit>(
        platform::GetProcAddress(agent_, snmp::kExtensionInit));
    query_ = platform::ProcAs<snmp::ExtensionQuery>(
        platform::GetProcAddress(agent_, snmp::kExtensionQuery));
  }
  if (init_ != nullptr && query_ != nullptr && InitialiseAgent()) {
    status_ = 0;
  } else {
    FreeModules();
  }
}

// Hands the agent a supported-view identifier to fill (a holder and a component array of
// the agent's memory) and frees both afterwards, before the modules may be released.
bool CSNMPQuery_impl::InitialiseAgent() {
  if (alloc_ == nullptr || free_ == nullptr || init_ == nullptr) {
    return false;
  }
  auto* view = static_cast<snmp::AsnObjectIdentifier*>(alloc_(24));
  UINT* components = static_cast<UINT*>(alloc_(512));
  bool initialised = false;
  if (view != nullptr && components != nullptr) {
    view->idLength = 0;
    view->ids = components;
    initialised = init_(0, &trapEvent_, view) != FALSE;
    // An agent may answer its view in an array of its own instead of the one it was given.
    if (view->ids != components && view->ids != nullptr) {
      free_(view->ids);
    }
  }
  if (components != nullptr) {
    free_(components);
  }
  if (view != nullptr) {
    free_(view);
  }
  return initialised;
}

void CSNMPQuery_impl::FreeModules() {
  if (agent_ != nullptr) {
    platform::FreeLibrary(agent_);
  }
  if (utility_ != nullptr) {
    platform::FreeLibrary(utility_);
  }
  agent_ = utility_ = nullptr;
  init_ = nullptr;
  query_ = nullptr;
  alloc_ = nullptr;
  free_ = nullptr;
}

void CSNMPQuery_impl::FreeValue(snmp::AsnAny& value) const {
  const bool hasStream = value.asnType == snmp::kOctetString || value.asnType == snmp::kIpAddress;
  if (hasStream && value.asnValue.string.dynamic != FALSE && value.asnValue.string.stream) {
    free_(value.asnValue.string.stream);
  }
  std::memset(&value, 0, sizeof value);
  value.asnType = snmp::kNull;
}

bool CSNMPQuery_impl::Walk(const std::string& start, const std::string& end) {
  const platform::CriticalSectionLock hold(lock_);
  cache_.clear();
  if (!IsUsable()) {
    return false;
  }
  const std::vector<UINT> limit = live::OidComponents(end);
  auto* bindings = static_cast<snmp::SnmpVarBind*>(alloc_(sizeof(snmp::SnmpVarBind)));
  if (bindings == nullptr) {
    return false;
  }
  std::memset(bindings, 0, sizeof *bindings);
  snmp::SnmpVarBind& binding = *bindings;
  binding.value.asnType = snmp::kNull;
  snmp::SnmpVarBindList request{bindings, 1};
  // The binding and whatever the agent put into it go back to the agent's memory on every
  // way out, an exception of the cache included.
  struct Release {
    const CSNMPQuery_impl& query;
    snmp::SnmpVarBind* bindings;
    ~Release() {
      query.FreeValue(bindings->value);
      if (bindings->name.ids != nullptr) {
        query.free_(bindings->name.ids);
      }
      query.free_(bindings);
    }
  } release{*this, bindings};

  if (!live::ToAgentOid(start, alloc_, binding.name)) {
    return false;
  }
  std::string previous = start;
  for (;;) {
    LONG errorStatus = snmp::kNoError;
    LONG errorIndex = 0;
    if (query_(snmp::kGetNext, &request, &errorStatus, &errorIndex) == FALSE ||
        errorStatus != snmp::kNoError) {
      break;
    }
    std::string name;
    if (!live::OidText(binding.name, name) || live::OidBeyond(binding.name, limit)) {
      break;
    }
    // An agent that does not move on would keep the walk going forever.
    if (name == previous) {
      break;
    }
    std::string value;
    live::ValueText(binding.value, value);
    FreeValue(binding.value);
    cache_.emplace_back(name, std::move(value));
    previous = std::move(name);
  }
  return true;
}

bool CSNMPQuery_impl::Lookup(const std::string& column, const std::string& index,
                             std::string& value) const {
  const platform::CriticalSectionLock hold(lock_);
  return live::FindInCache(cache_, column, index, value);
}

std::vector<CSNMPQuery::Entry> CSNMPQuery_impl::Column(const std::string& column) const {
  const platform::CriticalSectionLock hold(lock_);
  return live::CacheColumn(cache_, column);
}

CSNMPQuery::CSNMPQuery() = default;
CSNMPQuery::CSNMPQuery(const CSNMPQuery& other) = default;
CSNMPQuery& CSNMPQuery::operator=(const CSNMPQuery& other) = default;
CSNMPQuery::~CSNMPQuery() = default;

bool CSNMPQuery::IsUsable() const {
  return Forward(impl_, false, [](CSNMPQuery_impl& impl) { return impl.IsUsable(); });
}

bool CSNMPQuery::Walk(const std::string& start, const std::string& end) {
  return Forward(impl_, false, [&](CSNMPQuery_impl& impl) { return impl.Walk(start, end); });
}

bool CSNMPQuery::Lookup(const std::string& column, const std::string& index,
                        std::string& value) const {
  return Forward(impl_, false,
                 [&](CSNMPQuery_impl& impl) { return impl.Lookup(column, index, value); });
}

std::vector<CSNMPQuery::Entry> CSNMPQuery::Column(const std::string& column) const {
  return Forward(impl_, std::vector<Entry>(),
                 [&](CSNMPQuery_impl& impl) { return impl.Column(column); });
}

std::vector<CSNMPQuery::Entry> CSNMPQuery::Cache() const {
  return Forward(impl_, std::vector<Entry>(), [](CSNMPQuery_impl& impl) { return impl.Cache(); });
}

}  // namespace Hostkit
