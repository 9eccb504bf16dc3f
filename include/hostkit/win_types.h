/// \file
/// The Win32 scalar and record types the public headers and the platform seam use.
///
/// On Windows this is <windows.h>. Elsewhere it defines the same names with the same widths
/// (DWORD and LONG are 32 bits whatever `long` is), so that the code above the seam compiles
/// unchanged for the simulated machine. The names and values are those of the Win32 API and are
/// documented there; TRUE, FALSE and BOOL are guarded as <windows.h> guards them, so a header
/// of another library that defines them the same way may come first.
#pragma once

/// \cond WIN32_NAMES

#include <cstdint>
#include <string>

#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace Hostkit {
using WCHAR = wchar_t;
}  // namespace Hostkit

// Wide literal in the build's 16-bit character type.
#define HK_WIDE(s) L##s

#else  // !_WIN32

#include <cstddef>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = unsigned int;
// A consumer may have BOOL from another library first: as `typedef int BOOL` it repeats this
// declaration harmlessly, as a macro for int it stands in for it.
#ifndef BOOL
using BOOL = int;
#endif
using BOOLEAN = BYTE;
using CHAR = char;
using WCHAR = char16_t;
using LANGID = WORD;
using REGSAM = DWORD;
using ACCESS_MASK = DWORD;
using ULONG_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;

using HANDLE = void*;
struct HKEY__;
using HKEY = HKEY__*;
struct HWND__;
using HWND = HWND__*;
struct HINSTANCE__;
using HINSTANCE = HINSTANCE__*;
using HMODULE = HINSTANCE;
using FARPROC = LONG_PTR (*)();
using PSID = void*;

// Macros guarded as <windows.h> guards them, so that libraries defining them the same way
// (glib: FALSE as (0), TRUE as (!FALSE)) may be included before or after this header.
#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(LONG_PTR{-1});

// Predefined registry roots: the handle values Windows uses (sign-extended 32-bit constants).
#define HKEY_CLASSES_ROOT \
  (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000000))))
#define HKEY_CURRENT_USER \
  (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000001))))
#define HKEY_LOCAL_MACHINE \
  (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000002))))
#define HKEY_USERS (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000003))))
#define HKEY_PERFORMANCE_DATA \
  (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000004))))
#define HKEY_CURRENT_CONFIG \
  (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000005))))
#define HKEY_DYN_DATA \
  (reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(static_cast<LONG>(0x80000006))))

// System error codes.
constexpr LONG ERROR_SUCCESS = 0;
constexpr LONG ERROR_FILE_NOT_FOUND = 2;
constexpr LONG ERROR_PATH_NOT_FOUND = 3;
constexpr LONG ERROR_ACCESS_DENIED = 5;
constexpr LONG ERROR_INVALID_HANDLE = 6;
constexpr LONG ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr LONG ERROR_INVALID_DATA = 13;
constexpr LONG ERROR_OUTOFMEMORY = 14;
constexpr LONG ERROR_NOT_SUPPORTED = 50;
constexpr LONG ERROR_INVALID_PARAMETER = 87;
constexpr LONG ERROR_CALL_NOT_IMPLEMENTED = 120;
constexpr LONG ERROR_INSUFFICIENT_BUFFER = 122;
constexpr LONG ERROR_MOD_NOT_FOUND = 126;
constexpr LONG ERROR_PROC_NOT_FOUND = 127;
constexpr LONG ERROR_BAD_PATHNAME = 161;
constexpr LONG ERROR_ALREADY_EXISTS = 183;
constexpr LONG ERROR_MORE_DATA = 234;
constexpr LONG ERROR_NO_MORE_ITEMS = 259;
constexpr LONG ERROR_NO_UNICODE_TRANSLATION = 1113;
constexpr LONG ERROR_NO_TOKEN = 1008;
constexpr LONG ERROR_KEY_DELETED = 1018;
constexpr LONG ERROR_PRIVILEGE_NOT_HELD = 1314;
constexpr LONG ERROR_NOT_ALL_ASSIGNED = 1300;
constexpr LONG ERROR_NONE_MAPPED = 1332;
constexpr LONG ERROR_BAD_NETPATH = 53;
constexpr LONG ERROR_UNKNOWN_REVISION = 1305;
constexpr LONG ERROR_REVISION_MISMATCH = 1306;
constexpr LONG ERROR_NO_IMPERSONATION_TOKEN = 1309;
constexpr LONG ERROR_NO_SUCH_PRIVILEGE = 1313;
constexpr LONG ERROR_INVALID_ACL = 1336;
constexpr LONG ERROR_INVALID_SID = 1337;
constexpr LONG ERROR_INVALID_SECURITY_DESCR = 1338;
constexpr LONG ERROR_ALLOTTED_SPACE_EXCEEDED = 1344;
constexpr LONG ERROR_BAD_IMPERSONATION_LEVEL = 1346;
constexpr LONG ERROR_GENERIC_NOT_MAPPED = 1360;

// Registry access rights, options and value types.
constexpr REGSAM KEY_QUERY_VALUE = 0x0001;
constexpr REGSAM KEY_SET_VALUE = 0x0002;
constexpr REGSAM KEY_CREATE_SUB_KEY = 0x0004;
constexpr REGSAM KEY_ENUMERATE_SUB_KEYS = 0x0008;
constexpr REGSAM KEY_NOTIFY = 0x0010;
constexpr REGSAM KEY_CREATE_LINK = 0x0020;
constexpr REGSAM KEY_WOW64_64KEY = 0x0100;
constexpr REGSAM KEY_WOW64_32KEY = 0x0200;
constexpr REGSAM KEY_READ = 0x20019;
constexpr REGSAM KEY_WRITE = 0x20006;
constexpr REGSAM KEY_ALL_ACCESS = 0xF003F;
constexpr DWORD REG_OPTION_NON_VOLATILE = 0;
constexpr DWORD REG_OPTION_VOLATILE = 1;
constexpr DWORD REG_CREATED_NEW_KEY = 1;
constexpr DWORD REG_OPENED_EXISTING_KEY = 2;

constexpr DWORD REG_NONE = 0;
constexpr DWORD REG_SZ = 1;
constexpr DWORD REG_EXPAND_SZ = 2;
constexpr DWORD REG_BINARY = 3;
constexpr DWORD REG_DWORD = 4;
constexpr DWORD REG_DWORD_LITTLE_ENDIAN = 4;
constexpr DWORD REG_DWORD_BIG_ENDIAN = 5;
constexpr DWORD REG_LINK = 6;
constexpr DWORD REG_MULTI_SZ = 7;
constexpr DWORD REG_RESOURCE_LIST = 8;
constexpr DWORD REG_FULL_RESOURCE_DESCRIPTOR = 9;
constexpr DWORD REG_RESOURCE_REQUIREMENTS_LIST = 10;
constexpr DWORD REG_QWORD = 11;

// Code pages and conversion flags.
constexpr UINT CP_ACP = 0;
constexpr UINT CP_OEMCP = 1;
constexpr UINT CP_UTF8 = 65001;
constexpr DWORD MB_PRECOMPOSED = 0x00000001;
constexpr DWORD MB_ERR_INVALID_CHARS = 0x00000008;
constexpr DWORD WC_NO_BEST_FIT_CHARS = 0x00000400;

// Version records.
constexpr DWORD VER_PLATFORM_WIN32s = 0;
constexpr DWORD VER_PLATFORM_WIN32_WINDOWS = 1;
constexpr DWORD VER_PLATFORM_WIN32_NT = 2;
constexpr BYTE VER_NT_WORKSTATION = 1;
constexpr BYTE VER_NT_DOMAIN_CONTROLLER = 2;
constexpr BYTE VER_NT_SERVER = 3;
constexpr WORD VER_SUITE_ENTERPRISE = 0x0002;
constexpr WORD VER_SUITE_DATACENTER = 0x0080;
constexpr WORD VER_SUITE_PERSONAL = 0x0200;

struct OSVERSIONINFOA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
};

struct OSVERSIONINFOEXA {
  DWORD dwOSVersionInfoSize;
  DWORD dwMajorVersion;
  DWORD dwMinorVersion;
  DWORD dwBuildNumber;
  DWORD dwPlatformId;
  CHAR szCSDVersion[128];
  WORD wServicePackMajor;
  WORD wServicePackMinor;
  WORD wSuiteMask;
  BYTE wProductType;
  BYTE wReserved;
};

struct FILETIME {
  DWORD dwLowDateTime;
  DWORD dwHighDateTime;
};

// Shutdown.
constexpr UINT EWX_LOGOFF = 0;
constexpr UINT EWX_SHUTDOWN = 1;
constexpr UINT EWX_REBOOT = 2;
constexpr UINT EWX_FORCE = 4;
constexpr UINT EWX_POWEROFF = 8;

// Security: tokens, privileges, SIDs, ACLs and access checks, laid out as on Windows.
constexpr DWORD TOKEN_ADJUST_PRIVILEGES = 0x0020;
constexpr DWORD TOKEN_QUERY = 0x0008;
constexpr DWORD TOKEN_DUPLICATE = 0x0002;
constexpr DWORD TOKEN_IMPERSONATE = 0x0004;
constexpr DWORD SE_PRIVILEGE_ENABLED = 0x00000002;
constexpr DWORD SECURITY_DESCRIPTOR_REVISION = 1;
constexpr DWORD ACL_REVISION = 2;
constexpr DWORD SECURITY_BUILTIN_DOMAIN_RID = 32;
constexpr DWORD DOMAIN_ALIAS_RID_ADMINS = 544;
constexpr DWORD DOMAIN_ALIAS_RID_USERS = 545;
constexpr DWORD SECURITY_WORLD_RID = 0;
constexpr DWORD ACL_REVISION_DS = 4;
constexpr DWORD SE_PRIVILEGE_ENABLED_BY_DEFAULT = 0x00000001;
constexpr DWORD SE_PRIVILEGE_REMOVED = 0x00000004;
constexpr WORD SE_OWNER_DEFAULTED = 0x0001;
constexpr WORD SE_GROUP_DEFAULTED = 0x0002;
constexpr WORD SE_DACL_PRESENT = 0x0004;
constexpr WORD SE_DACL_DEFAULTED = 0x0008;
constexpr WORD SE_SELF_RELATIVE = 0x8000;
constexpr BYTE INHERIT_ONLY_ACE = 0x08;
constexpr DWORD GENERIC_READ = 0x80000000;
constexpr DWORD GENERIC_WRITE = 0x40000000;
constexpr DWORD GENERIC_EXECUTE = 0x20000000;
constexpr DWORD GENERIC_ALL = 0x10000000;
constexpr DWORD MAXIMUM_ALLOWED = 0x02000000;

enum SECURITY_IMPERSONATION_LEVEL {
  SecurityAnonymous,
  SecurityIdentification,
  SecurityImpersonation,
  SecurityDelegation
};

struct LUID {
  DWORD LowPart;
  LONG HighPart;
};

struct LUID_AND_ATTRIBUTES {
  LUID Luid;
  DWORD Attributes;
};

struct TOKEN_PRIVILEGES {
  DWORD PrivilegeCount;
  LUID_AND_ATTRIBUTES Privileges[1];
};

struct SID_IDENTIFIER_AUTHORITY {
  BYTE Value[6];
};

#define SECURITY_NT_AUTHORITY \
  {                           \
    { 0, 0, 0, 0, 0, 5 }      \
  }
#define SECURITY_WORLD_SID_AUTHORITY \
  {                                  \
    { 0, 0, 0, 0, 0, 1 }             \
  }

struct ACL {
  BYTE AclRevision;
  BYTE Sbz1;
  WORD AclSize;
  WORD AceCount;
  WORD Sbz2;
};
using PACL = ACL*;

struct ACE_HEADER {
  BYTE AceType;
  BYTE AceFlags;
  WORD AceSize;
};

constexpr BYTE ACCESS_ALLOWED_ACE_TYPE = 0;
constexpr BYTE ACCESS_DENIED_ACE_TYPE = 1;

struct ACCESS_ALLOWED_ACE {
  ACE_HEADER Header;
  ACCESS_MASK Mask;
  DWORD SidStart;
};

using SECURITY_DESCRIPTOR_CONTROL = WORD;

// Absolute-format security descriptor, as InitializeSecurityDescriptor lays it out.
struct SECURITY_DESCRIPTOR {
  BYTE Revision;
  BYTE Sbz1;
  SECURITY_DESCRIPTOR_CONTROL Control;
  PSID Owner;
  PSID Group;
  PACL Sacl;
  PACL Dacl;
};
using PSECURITY_DESCRIPTOR = void*;
constexpr DWORD SECURITY_DESCRIPTOR_MIN_LENGTH = sizeof(SECURITY_DESCRIPTOR);

struct GENERIC_MAPPING {
  ACCESS_MASK GenericRead;
  ACCESS_MASK GenericWrite;
  ACCESS_MASK GenericExecute;
  ACCESS_MASK GenericAll;
};

struct PRIVILEGE_SET {
  DWORD PrivilegeCount;
  DWORD Control;
  LUID_AND_ATTRIBUTES Privilege[1];
};

// Synchronisation.
constexpr DWORD INFINITE = 0xFFFFFFFF;
constexpr DWORD WAIT_OBJECT_0 = 0;
constexpr DWORD WAIT_TIMEOUT = 258;
constexpr DWORD WAIT_FAILED = 0xFFFFFFFF;

constexpr int MAX_PATH = 260;

// Calling convention of Win32 entry points reached through GetProcAddress (none on the host).
#define WINAPI

// Files and directory searches.
constexpr DWORD FILE_ATTRIBUTE_READONLY = 0x00000001;
constexpr DWORD FILE_ATTRIBUTE_DIRECTORY = 0x00000010;
constexpr DWORD FILE_ATTRIBUTE_ARCHIVE = 0x00000020;
constexpr DWORD FILE_ATTRIBUTE_NORMAL = 0x00000080;
constexpr LONG ERROR_NO_MORE_FILES = 18;

struct WIN32_FIND_DATAA {
  DWORD dwFileAttributes;
  FILETIME ftCreationTime;
  FILETIME ftLastAccessTime;
  FILETIME ftLastWriteTime;
  DWORD nFileSizeHigh;
  DWORD nFileSizeLow;
  DWORD dwReserved0;
  DWORD dwReserved1;
  CHAR cFileName[MAX_PATH];
  CHAR cAlternateFileName[14];
};

// COM results and identifiers.
using HRESULT = LONG;
constexpr HRESULT S_OK = 0;
constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);

struct GUID {
  DWORD Data1;
  WORD Data2;
  WORD Data3;
  BYTE Data4[8];
};

// Files and devices.
struct SECURITY_ATTRIBUTES {
  DWORD nLength;
  void* lpSecurityDescriptor;
  BOOL bInheritHandle;
};
struct OVERLAPPED {
  ULONG_PTR Internal;
  ULONG_PTR InternalHigh;
  DWORD Offset;
  DWORD OffsetHigh;
  HANDLE hEvent;
};
constexpr DWORD FILE_SHARE_READ = 0x00000001;
constexpr DWORD FILE_SHARE_WRITE = 0x00000002;
constexpr DWORD CREATE_NEW = 1;
constexpr DWORD CREATE_ALWAYS = 2;
constexpr DWORD OPEN_EXISTING = 3;
constexpr DWORD DDD_RAW_TARGET_PATH = 0x00000001;
constexpr DWORD DDD_REMOVE_DEFINITION = 0x00000002;
constexpr DWORD DDD_EXACT_MATCH_ON_REMOVE = 0x00000004;
constexpr LONG ERROR_INVALID_FUNCTION = 1;
constexpr LONG ERROR_GEN_FAILURE = 31;

// Service control manager.
struct SC_HANDLE__;
using SC_HANDLE = SC_HANDLE__*;
struct SERVICE_STATUS {
  DWORD dwServiceType;
  DWORD dwCurrentState;
  DWORD dwControlsAccepted;
  DWORD dwWin32ExitCode;
  DWORD dwServiceSpecificExitCode;
  DWORD dwCheckPoint;
  DWORD dwWaitHint;
};
constexpr DWORD SC_MANAGER_CONNECT = 0x0001;
constexpr DWORD SC_MANAGER_ALL_ACCESS = 0xF003F;
constexpr DWORD SERVICE_ALL_ACCESS = 0xF01FF;
constexpr DWORD SERVICE_QUERY_STATUS = 0x0004;
constexpr DWORD SERVICE_STOPPED = 1;
constexpr DWORD SERVICE_START_PENDING = 2;
constexpr DWORD SERVICE_STOP_PENDING = 3;
constexpr DWORD SERVICE_RUNNING = 4;
constexpr DWORD SERVICE_KERNEL_DRIVER = 0x00000001;
constexpr LONG ERROR_INVALID_SERVICE_CONTROL = 1052;
constexpr LONG ERROR_SERVICE_DOES_NOT_EXIST = 1060;

// Windows and messages (user32).
#define CALLBACK
using WNDENUMPROC = BOOL(CALLBACK*)(HWND, LPARAM);
constexpr UINT GW_HWNDNEXT = 2;
constexpr UINT GW_CHILD = 5;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT BM_SETCHECK = 0x00F1;
constexpr LONG ERROR_INVALID_WINDOW_HANDLE = 1400;

namespace Hostkit {
using WCHAR = ::WCHAR;
}  // namespace Hostkit

// Wide literal in the build's 16-bit character type.
#define HK_WIDE(s) u##s

#endif  // _WIN32

/// \endcond

namespace Hostkit {
/// Wide text at the library's boundary: UTF-16 code units in both builds (`wchar_t` on
/// Windows, `char16_t` elsewhere).
using wstring = std::basic_string<WCHAR>;
}  // namespace Hostkit
