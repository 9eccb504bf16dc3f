// One-time initialisation over kernel32's InterlockedExchange and Sleep, both of which Windows
// 95 exports: the record's lock word is a spin lock held while the routine runs.
#include "platform/once.h"

namespace Hostkit::platform {

namespace {

// Sleep(0) yields only to threads of the same priority; a waiter of higher priority than the
// thread running the routine would starve it, so waiters sleep for real after a few turns.
constexpr int kYieldingTurns = 64;

}  // namespace

BOOL ExecuteOnce(INIT_ONCE_RECORD* once, PINIT_ONCE_ROUTINE routine, void* parameter) {
  for (int turn = 0; ::InterlockedExchange(&once->lock, 1) != 0; ++turn) {
    ::Sleep(turn < kYieldingTurns ? 0 : 1);
  }
  BOOL result = TRUE;
  if (once->done == 0) {
    result = routine(parameter);
    once->done = result != FALSE ? 1 : 0;
  }
  ::InterlockedExchange(&once->lock, 0);
  return result;
}

}  // namespace Hostkit::platform
