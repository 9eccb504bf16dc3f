// Initialisation files ("[section]" lines and "key=value" lines) through kernel32's
// profile-string calls.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

// Sets `key` = `value` in `section` of `file`, creating the file, the section and the key as
// needed and keeping the rest of the file. A null `value` deletes the key, a null `key` the
// whole section. Sections and keys match without regard to case.
BOOL WritePrivateProfileStringA(const char* section, const char* key, const char* value,
                                const char* file);

// Copies the value of `key` in `section` (blanks around it and one pair of enclosing quotes
// removed), or `defaultValue` when there is none, into `buffer`. A null `key` lists the
// section's keys, a null `section` the file's sections, each name terminated and the list
// ending in an extra terminator. Returns the characters copied without the terminator; a cut
// value answers size - 1, a cut list size - 2.
DWORD GetPrivateProfileStringA(const char* section, const char* key, const char* defaultValue,
                               char* buffer, DWORD size, const char* file);

}  // namespace Hostkit::platform
