// The simulated process's kernel-object handle table: what a HANDLE value stands for.
//
// The table is process-wide, as on Windows, and outlives every machine: the pattern lock is an
// event created during static initialisation, before any machine is active. Objects are shared:
// a handle keeps its object alive, and so does a caller that found it (a wait in progress on an
// event that another thread closes finishes normally).
#pragma once

#include <memory>

#include "hostkit/win_types.h"

namespace Hostkit::sim {

// Anything a handle can refer to: events and tokens now; threads, files and devices later.
class KernelObject {
 public:
  KernelObject() = default;
  KernelObject(const KernelObject&) = delete;
  KernelObject& operator=(const KernelObject&) = delete;
  virtual ~KernelObject() = default;
};

// A kernel object WaitForSingleObject can wait on.
class Waitable {
 public:
  virtual ~Waitable() = default;
  // Waits up to `milliseconds` (INFINITE: without limit) for the object to be signalled and
  // takes the signal where the object's kind requires it; false on time-out.
  virtual bool Wait(DWORD milliseconds) = 0;
};

// The pseudo handles of the running process and thread: valid without being in the table, and
// closing them does nothing.
HANDLE CurrentProcessPseudoHandle();
HANDLE CurrentThreadPseudoHandle();

// A new handle to `object`; null when the table cannot take it.
HANDLE AddHandle(std::shared_ptr<KernelObject> object);
// The object `handle` refers to; null for an unknown or closed handle.
std::shared_ptr<KernelObject> FindHandle(HANDLE handle);
// Closes `handle`; false when it was not open.
bool RemoveHandle(HANDLE handle);

template <class T>
std::shared_ptr<T> FindHandleAs(HANDLE handle) {
  return std::dynamic_pointer_cast<T>(FindHandle(handle));
}

}  // namespace Hostkit::sim
