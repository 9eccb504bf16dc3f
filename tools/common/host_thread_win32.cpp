// Host threads of the Windows build: CreateThread, waited for through the thread's handle.
#include <windows.h>

#include "common/host_thread.h"

namespace hostkit_common {

struct HostThread::State {
  HANDLE thread = nullptr;
};

namespace {
DWORD WINAPI RunBody(void* parameter) {
  const std::unique_ptr<std::function<void()>> body(static_cast<std::function<void()>*>(parameter));
  (*body)();
  return 0;
}
}  // namespace

HostThread::HostThread(std::function<void()> body) : state_(std::make_unique<State>()) {
  auto* parameter = new std::function<void()>(std::move(body));
  state_->thread = CreateThread(nullptr, 0, RunBody, parameter, 0, nullptr);
  if (state_->thread == nullptr) {
    delete parameter;
  }
}

HostThread::~HostThread() {
  if (state_ && state_->thread != nullptr) {
    CloseHandle(state_->thread);
  }
}

HostThread::HostThread(HostThread&&) noexcept = default;

bool HostThread::Started() const { return state_->thread != nullptr; }

bool HostThread::WaitFor(unsigned milliseconds) {
  return state_->thread != nullptr &&
         WaitForSingleObject(state_->thread, milliseconds) == WAIT_OBJECT_0;
}

void HostThread::Join() { WaitFor(INFINITE); }

}  // namespace hostkit_common
