// Component Object Model services of ole32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

HRESULT CoCreateGuid(GUID* guid);

}  // namespace Hostkit::platform
