/// \file
/// Regular-expression matching and the address and name validators.
#pragma once

#include "hostkit/export.h"
#include "hostkit/win_types.h"

namespace Hostkit {

/// Case-sensitive match of the whole text; a pattern holding neither "^" nor "$" matches
/// anywhere in the text. Calls are serialised process-wide. An invalid pattern never matches.
///@{
HOSTKIT_API bool RegExpMatch(const char* pattern, const char* text);
HOSTKIT_API bool RegExpMatch(const WCHAR* pattern, const WCHAR* text);
///@}

/// Whether the text is four decimal numbers of 0 to 255 joined by dots (white space around it,
/// a sign and leading zeros are accepted, as the C runtime's decimal conversion reads them).

HOSTKIT_API bool IsValidIPAddress(const char* text);
///@{
/// Whether every character is a letter or a digit (the hyphen, underscore and dot are not
/// allowed); the empty text is valid.
HOSTKIT_API bool IsValidHostName(const char* text);
HOSTKIT_API bool IsValidHostName(const WCHAR* text);
///@}
///@{
/// Whether every label between dots is a valid host name (IsValidHostName); empty labels are
/// skipped, so the empty text and "example..com" are valid.

HOSTKIT_API bool IsValidDomainName(const char* text);
HOSTKIT_API bool IsValidDomainName(const WCHAR* text);
///@}

}  // namespace Hostkit
