/// \file
/// Text conversions between the ANSI code page, ASCII and UTF-16, the library version and
/// the file-existence test.
#pragma once

#include <string>

#include "hostkit/export.h"
#include "hostkit/win_types.h"

namespace Hostkit {

///@{
/// ANSI code page <-> UTF-16. Fail (false, `out` untouched) on bytes invalid in the code page
/// or on characters the code page cannot represent. An empty input clears `out`.
HOSTKIT_API bool ConvertANSIToUnicode(const std::string& in, wstring& out);
HOSTKIT_API bool ConvertUnicodeToANSI(const wstring& in, std::string& out);
///@}

///@{
/// Seven-bit ASCII <-> UTF-16, unit for byte, no code page involved.
HOSTKIT_API bool ConvertASCIIToUnicode(const std::string& in, wstring& out);
HOSTKIT_API bool ConvertUnicodeToASCII(const wstring& in, std::string& out);
///@}

/// The library version, "3.0.0".
HOSTKIT_API std::string GetVersion();

///@{
/// Whether the file can be opened for reading (a directory cannot).
HOSTKIT_API bool FileExists(const char* path);
HOSTKIT_API bool FileExists(const WCHAR* path);
///@}

}  // namespace Hostkit
