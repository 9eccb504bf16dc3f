// Regular-expression matching and the address and name validators.
#pragma once

#include "hostkit/export.h"
#include "hostkit/win_types.h"

namespace Hostkit {

// Case-sensitive match of the whole text; a pattern holding neither "^" nor "$" matches
// anywhere in the text. Calls are serialised process-wide. An invalid pattern never matches.
HOSTKIT_API bool RegExpMatch(const char* pattern, const char* text);
HOSTKIT_API bool RegExpMatch(const WCHAR* pattern, const WCHAR* text);

HOSTKIT_API bool IsValidIPAddress(const char* text);
HOSTKIT_API bool IsValidHostName(const char* text);
HOSTKIT_API bool IsValidHostName(const WCHAR* text);
HOSTKIT_API bool IsValidDomainName(const char* text);
HOSTKIT_API bool IsValidDomainName(const WCHAR* text);

}  // namespace Hostkit
