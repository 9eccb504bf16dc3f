// A thread of the program itself (the tool or the tests), outside any simulated process: the
// Windows builds' runtime (Win32 thread model) has no std::thread, so each build starts it its
// own way.
#pragma once

#include <functional>
#include <memory>

namespace hostkit_common {

class HostThread {
 public:
  // Starts `body` at once; Started() tells whether that worked.
  explicit HostThread(std::function<void()> body);
  // Does not wait: a thread still running goes on alone.
  ~HostThread();
  HostThread(HostThread&&) noexcept;
  HostThread(const HostThread&) = delete;
  HostThread& operator=(const HostThread&) = delete;

  bool Started() const;
  // True when the thread has ended within `milliseconds`.
  bool WaitFor(unsigned milliseconds);
  // Waits as long as the thread runs.
  void Join();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace hostkit_common
