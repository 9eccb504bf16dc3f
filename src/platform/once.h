// One-time initialisation. Windows releases before Vista have no such call (and Windows 95 not
// even InterlockedCompareExchange), so the record is a lock word of its own beside the "done"
// flag, taken with InterlockedExchange, which every release has.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// Zero-initialised: not run yet. Assigning {} again makes the routine run on the next call;
// that is allowed only while no thread uses the record.
struct INIT_ONCE_RECORD {
  LONG lock;
  LONG done;
};

using PINIT_ONCE_ROUTINE = BOOL (*)(void* parameter);

// The first caller runs `routine(parameter)` while every other caller waits for it; once the
// routine has succeeded, every later call returns TRUE at once. A routine that returns FALSE
// leaves the record not run, so the next call tries again; its FALSE is the call's result.
BOOL ExecuteOnce(INIT_ONCE_RECORD* once, PINIT_ONCE_ROUTINE routine, void* parameter);

}  // namespace Hostkit::platform
