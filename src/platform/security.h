// Tokens, privileges, SIDs, security descriptors and the access check of advapi32.
#pragma once

#include "hostkit/win_types.h"

namespace Hostkit::platform {

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token);
BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL openAsSelf, HANDLE* token);
BOOL LookupPrivilegeValueA(const char* system, const char* name, LUID* luid);
BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TOKEN_PRIVILEGES* newState,
                           DWORD bufferLength, TOKEN_PRIVILEGES* previousState,
                           DWORD* returnLength);
BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level);
BOOL RevertToSelf();

BOOL AllocateAndInitializeSid(SID_IDENTIFIER_AUTHORITY* authority, BYTE subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4,
                              DWORD sub5, DWORD sub6, DWORD sub7, PSID* sid);
void* FreeSid(PSID sid);
DWORD GetLengthSid(PSID sid);

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl,
                               BOOL defaulted);
BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner, BOOL defaulted);
BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group, BOOL defaulted);
BOOL InitializeAcl(PACL acl, DWORD length, DWORD revision);
BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD accessMask, PSID sid);
BOOL AccessCheck(PSECURITY_DESCRIPTOR descriptor, HANDLE clientToken, DWORD desiredAccess,
                 GENERIC_MAPPING* mapping, PRIVILEGE_SET* privileges, DWORD* privilegesLength,
                 DWORD* grantedAccess, BOOL* accessStatus);

}  // namespace Hostkit::platform
