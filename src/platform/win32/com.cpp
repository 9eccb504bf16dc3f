// COM services forwarded to ole32.
#include "platform/com.h"

#include <objbase.h>

namespace Hostkit::platform {

HRESULT CoCreateGuid(GUID* guid) { return ::CoCreateGuid(guid); }

}  // namespace Hostkit::platform
