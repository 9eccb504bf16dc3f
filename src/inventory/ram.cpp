// RAM: installed memory, and the shell that forwards to RAM_impl.
#include "foundation/shell_impl.h"
#include "inventory/inventory_impl.h"
#include "platform/storage.h"

namespace Hostkit {

template class Pimpl<RAM_impl>;

// The reported total is always a little below the installed size (the system keeps some for
// itself), hence the added megabyte.
int RAM_impl::NumMegs() {
  MEMORYSTATUS status{};
  status.dwLength = sizeof status;
  platform::GlobalMemoryStatus(&status);
  return static_cast<int>(static_cast<std::uint64_t>(status.dwTotalPhys) >> 20) + 1;
}

RAM::RAM() = default;
RAM::RAM(const RAM& other) = default;
RAM& RAM::operator=(const RAM& other) = default;
RAM::~RAM() = default;

int RAM::NumMegs() {
  return Forward(impl_, 0, [&](RAM_impl& impl) { return impl.NumMegs(); });
}

}  // namespace Hostkit
