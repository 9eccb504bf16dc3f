// Tokens, privileges, SIDs, security descriptors and access checks of advapi32. Only the NT
// family implements them, and Windows 95 does not export them all, so each is looked up when
// called. (OpenThreadToken must come from advapi32: newer import libraries also offer it from
// kernel32, where releases before Windows 7 lack it.)
#include "platform/security.h"

#include "platform/win32/late_binding.h"

namespace Hostkit::platform {

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token) {
  return win32::CallEntry<decltype(&::OpenProcessToken)>(win32::kAdvapi32, "OpenProcessToken",
                                                         BOOL{FALSE}, process, access, token);
}
BOOL OpenThreadToken(HANDLE thread, DWORD access, BOOL openAsSelf, HANDLE* token) {
  return win32::CallEntry<decltype(&::OpenThreadToken)>(
      win32::kAdvapi32, "OpenThreadToken", BOOL{FALSE}, thread, access, openAsSelf, token);
}
BOOL LookupPrivilegeValueA(const char* system, const char* name, LUID* luid) {
  return win32::CallEntry<decltype(&::LookupPrivilegeValueA)>(
      win32::kAdvapi32, "LookupPrivilegeValueA", BOOL{FALSE}, system, name, luid);
}
BOOL AdjustTokenPrivileges(HANDLE token, BOOL disableAll, TOKEN_PRIVILEGES* newState,
                           DWORD bufferLength, TOKEN_PRIVILEGES* previousState,
                           DWORD* returnLength) {
  return win32::CallEntry<decltype(&::AdjustTokenPrivileges)>(
      win32::kAdvapi32, "AdjustTokenPrivileges", BOOL{FALSE}, token, disableAll, newState,
      bufferLength, previousState, returnLength);
}
BOOL ImpersonateSelf(SECURITY_IMPERSONATION_LEVEL level) {
  return win32::CallEntry<decltype(&::ImpersonateSelf)>(win32::kAdvapi32, "ImpersonateSelf",
                                                        BOOL{FALSE}, level);
}
BOOL RevertToSelf() {
  return win32::CallEntry<decltype(&::RevertToSelf)>(win32::kAdvapi32, "RevertToSelf", BOOL{FALSE});
}

BOOL AllocateAndInitializeSid(SID_IDENTIFIER_AUTHORITY* authority, BYTE subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4,
                              DWORD sub5, DWORD sub6, DWORD sub7, PSID* sid) {
  return win32::CallEntry<decltype(&::AllocateAndInitializeSid)>(
      win32::kAdvapi32, "AllocateAndInitializeSid", BOOL{FALSE}, authority, subAuthorityCount, sub0,
      sub1, sub2, sub3, sub4, sub5, sub6, sub7, sid);
}
void* FreeSid(PSID sid) {
  return win32::CallEntry<decltype(&::FreeSid)>(win32::kAdvapi32, "FreeSid", sid, sid);
}
DWORD GetLengthSid(PSID sid) {
  return win32::CallEntry<decltype(&::GetLengthSid)>(win32::kAdvapi32, "GetLengthSid", DWORD{0},
                                                     sid);
}

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
  return win32::CallEntry<decltype(&::InitializeSecurityDescriptor)>(
      win32::kAdvapi32, "InitializeSecurityDescriptor", BOOL{FALSE}, descriptor, revision);
}
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl,
                               BOOL defaulted) {
  return win32::CallEntry<decltype(&::SetSecurityDescriptorDacl)>(
      win32::kAdvapi32, "SetSecurityDescriptorDacl", BOOL{FALSE}, descriptor, present, acl,
      defaulted);
}
BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner, BOOL defaulted) {
  return win32::CallEntry<decltype(&::SetSecurityDescriptorOwner)>(
      win32::kAdvapi32, "SetSecurityDescriptorOwner", BOOL{FALSE}, descriptor, owner, defaulted);
}
BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group, BOOL defaulted) {
  return win32::CallEntry<decltype(&::SetSecurityDescriptorGroup)>(
      win32::kAdvapi32, "SetSecurityDescriptorGroup", BOOL{FALSE}, descriptor, group, defaulted);
}
BOOL InitializeAcl(PACL acl, DWORD length, DWORD revision) {
  return win32::CallEntry<decltype(&::InitializeAcl)>(win32::kAdvapi32, "InitializeAcl",
                                                      BOOL{FALSE}, acl, length, revision);
}
BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD accessMask, PSID sid) {
  return win32::CallEntry<decltype(&::AddAccessAllowedAce)>(
      win32::kAdvapi32, "AddAccessAllowedAce", BOOL{FALSE}, acl, revision, accessMask, sid);
}
BOOL AccessCheck(PSECURITY_DESCRIPTOR descriptor, HANDLE clientToken, DWORD desiredAccess,
                 GENERIC_MAPPING* mapping, PRIVILEGE_SET* privileges, DWORD* privilegesLength,
                 DWORD* grantedAccess, BOOL* accessStatus) {
  return win32::CallEntry<decltype(&::AccessCheck)>(
      win32::kAdvapi32, "AccessCheck", BOOL{FALSE}, descriptor, clientToken, desiredAccess, mapping,
      privileges, privilegesLength, grantedAccess, accessStatus);
}

}  // namespace Hostkit::platform
