// Critical sections forwarded to kernel32.
#include "platform/critical_section.h"

namespace Hostkit::platform {

void InitializeCriticalSection(CRITICAL_SECTION* section) { ::InitializeCriticalSection(section); }
void EnterCriticalSection(CRITICAL_SECTION* section) { ::EnterCriticalSection(section); }
void LeaveCriticalSection(CRITICAL_SECTION* section) { ::LeaveCriticalSection(section); }
void DeleteCriticalSection(CRITICAL_SECTION* section) { ::DeleteCriticalSection(section); }

}  // namespace Hostkit::platform
