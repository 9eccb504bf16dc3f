// Processor faults under the seam's handler, on both legs: a fault ends the guarded routine and
// not the process, guards nest and come off again, and threads guard independently.
#include "platform/fault_guard.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/processor_fault.h"

namespace {

using Hostkit::platform::CallWithFaultHandler;

DWORD WINAPI Faults(void* parameter) {
  ++*static_cast<int*>(parameter);
  hostkit_test::RaiseProcessorFault();
  return 1;
}

DWORD WINAPI Returns(void* parameter) { return static_cast<DWORD>(*static_cast<int*>(parameter)); }

// An outer routine that runs a faulting one under a guard of its own, then carries on.
DWORD WINAPI GuardsAFault(void* parameter) {
  DWORD result = 0;
  const BOOL returned = CallWithFaultHandler(&Faults, parameter, &result);
  return returned == FALSE ? 40 : 0;
}

TEST(FaultHandler, AFaultEndsTheRoutineNotTheProcess) {
  int runs = 0;
  DWORD result = 99;
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(CallWithFaultHandler(&Faults, &runs, &result), FALSE);
  }
  EXPECT_EQ(runs, 3);
  EXPECT_EQ(result, 99U);  // left alone by a routine that faulted

  int value = 7;
  EXPECT_EQ(CallWithFaultHandler(&Returns, &value, &result), TRUE);
  EXPECT_EQ(result, 7U);

  // The inner guard takes the fault; the outer routine returns normally.
  EXPECT_EQ(CallWithFaultHandler(&GuardsAFault, &runs, &result), TRUE);
  EXPECT_EQ(result, 40U);
  EXPECT_EQ(runs, 4);
}

TEST(FaultHandler, ThreadsFaultIndependently) {
  constexpr int kThreads = 4;
  std::atomic<int> caught{0};
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&caught] {
      int runs = 0;
      for (int round = 0; round < 5; ++round) {
        DWORD result = 0;
        if (CallWithFaultHandler(&Faults, &runs, &result) == FALSE) {
          ++caught;
        }
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  EXPECT_EQ(caught.load(), kThreads * 5);
}

}  // namespace
