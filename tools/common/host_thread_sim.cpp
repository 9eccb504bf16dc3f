// Host threads of the native build: std::thread, with a flag the waiter can wait for.
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "common/host_thread.h"

namespace hostkit_common {

namespace {
struct Finish {
  std::mutex mutex;
  std::condition_variable changed;
  bool done = false;
};
}  // namespace

struct HostThread::State {
  std::shared_ptr<Finish> finish = std::make_shared<Finish>();
  std::thread thread;
};

HostThread::HostThread(std::function<void()> body) : state_(std::make_unique<State>()) {
  state_->thread = std::thread([finish = state_->finish, body = std::move(body)] {
    body();
    const std::lock_guard lock(finish->mutex);
    finish->done = true;
    finish->changed.notify_all();
  });
}

HostThread::~HostThread() {
  if (state_ && state_->thread.joinable()) {
    if (WaitFor(0)) {
      state_->thread.join();
    } else {
      state_->thread.detach();
    }
  }
}

HostThread::HostThread(HostThread&&) noexcept = default;

bool HostThread::Started() const { return state_->thread.joinable(); }

bool HostThread::WaitFor(unsigned milliseconds) {
  Finish& finish = *state_->finish;
  std::unique_lock lock(finish.mutex);
  return finish.changed.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                 [&] { return finish.done; });
}

void HostThread::Join() {
  if (state_->thread.joinable()) {
    state_->thread.join();
  }
}

}  // namespace hostkit_common
