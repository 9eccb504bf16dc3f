// Tokens, privileges, SIDs, security descriptors and access checks forwarded to advapi32.
#include "platform/security.h"

namespace Hostkit::platform {

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token) {
  return ::OpenProcessToken(process, access, token);
}
BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL openAsSelf, HANDLE* token) {
  return ::OpenThreadToken(thread, access, openAsSelf, token);
}
BOOL LookupPrivilegeValueA(const char* system, const char* name, LUID* luid) {
  return ::LookupPrivilegeValueA(system, name, luid);
}
BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TOKEN_PRIVILEGES* newState,
                           DWORD bufferLength, TOKEN_PRIVILEGES* previousState,
                           DWORD* returnLength) {
  return ::AdjustTokenPrivileges(token, disableAll, newState, bufferLength, previousState,
                                 returnLength);
}
BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level) { return ::ImpersonateSelf(level); }
BOOL RevertToSelf() { return ::RevertToSelf(); }

BOOL AllocateAndInitializeSid(SID_IDENTIFIER_AUTHORITY* authority, BYTE subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4,
                              DWORD sub5, DWORD sub6, DWORD sub7, PSID* sid) {
  return ::AllocateAndInitializeSid(authority, subAuthorityCount, sub0, sub1, sub2, sub3, sub4,
                                    sub5, sub6, sub7, sid);
}
void* FreeSid(PSID sid) { return ::FreeSid(sid); }
DWORD GetLengthSid(PSID sid) { return ::GetLengthSid(sid); }

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
  return ::InitializeSecurityDescriptor(descriptor, revision);
}
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl,
                               BOOL defaulted) {
  return ::SetSecurityDescriptorDacl(descriptor, present, acl, defaulted);
}
BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner, BOOL defaulted) {
  return ::SetSecurityDescriptorOwner(descriptor, owner, defaulted);
}
BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group, BOOL defaulted) {
  return ::SetSecurityDescriptorGroup(descriptor, group, defaulted);
}
BOOL InitializeAcl(PACL acl, DWORD length, DWORD revision) {
  return ::InitializeAcl(acl, length, revision);
}
BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD accessMask, PSID sid) {
  return ::AddAccessAllowedAce(acl, revision, accessMask, sid);
}
BOOL AccessCheck(PSECURITY_DESCRIPTOR descriptor, HANDLE clientToken, DWORD desiredAccess,
                 GENERIC_MAPPING* mapping, PRIVILEGE_SET* privileges, DWORD* privilegesLength,
                 DWORD* grantedAccess, BOOL* accessStatus) {
  return ::AccessCheck(descriptor, clientToken, desiredAccess, mapping, privileges,
                       privilegesLength, grantedAccess, accessStatus);
}

}  // namespace Hostkit::platform
