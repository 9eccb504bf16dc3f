// SIDs, access control lists, security descriptors and the access check of the simulated
// machine, in Windows' own binary layouts.
//
// A SID is: revision (1), sub-authority count, six bytes of identifier authority, then the
// sub-authorities as 32-bit little-endian numbers. An ACL is its 8-byte header followed by its
// entries; an access-allowed or access-denied entry is a 4-byte header, the access mask and the
// SID. Security descriptors are the absolute form only.
#include <cstddef>
#include <cstring>
#include <new>
#include <optional>
#include <vector>

#include "platform/security.h"
#include "platform/sim/security/token.h"
#include "platform/system_info.h"

namespace Hostkit::sim {

namespace {

constexpr BYTE kSidRevision = 1;
constexpr BYTE kMaxSubAuthorities = 15;
constexpr std::size_t kSidHeaderSize = 8;
// Header and mask of an allowed or denied entry; the SID follows.
constexpr std::size_t kAceSidOffset = offsetof(ACCESS_ALLOWED_ACE, SidStart);

DWORD SidLength(const BYTE* sid) {
  return static_cast<DWORD>(kSidHeaderSize + std::size_t{4} * sid[1]);
}

bool IsValidSid(const void* sid) {
  const auto* bytes = static_cast<const BYTE*>(sid);
  return bytes != nullptr && bytes[0] == kSidRevision && bytes[1] <= kMaxSubAuthorities;
}

std::vector<BYTE> MakeSid(const SID_IDENTIFIER_AUTHORITY& authority,
                          const std::vector<DWORD>& subAuthorities) {
  std::vector<BYTE> sid;
  sid.reserve(kSidHeaderSize + 4 * subAuthorities.size());
  sid.push_back(kSidRevision);
  sid.push_back(static_cast<BYTE>(subAuthorities.size()));
  for (BYTE value : authority.Value) {
    sid.push_back(value);
  }
  for (DWORD sub : subAuthorities) {
    for (int shift = 0; shift < 32; shift += 8) {
      sid.push_back(static_cast<BYTE>(sub >> shift));
    }
  }
  return sid;
}

bool SameSid(const BYTE* a, const std::vector<BYTE>& b) {
  return SidLength(a) == b.size() && std::memcmp(a, b.data(), b.size()) == 0;
}

// The groups a token's user belongs to.
std::vector<std::vector<BYTE>> TokenGroups(const Token& token) {
  const SID_IDENTIFIER_AUTHORITY world = SECURITY_WORLD_SID_AUTHORITY;
  const SID_IDENTIFIER_AUTHORITY nt = SECURITY_NT_AUTHORITY;
  std::vector<std::vector<BYTE>> groups{
      MakeSid(world, {SECURITY_WORLD_RID}),
      MakeSid(nt, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_USERS})};
  if (token.machine->facts().administrator) {
    groups.push_back(MakeSid(nt, {SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS}));
  }
  return groups;
}

bool InGroups(const BYTE* sid, const std::vector<std::vector<BYTE>>& groups) {
  for (const auto& group : groups) {
    if (SameSid(sid, group)) {
      return true;
    }
  }
  return false;
}

struct AceView {
  BYTE type;
  BYTE flags;
  ACCESS_MASK mask;
  const BYTE* sid;
};

// The entries of a well-formed ACL and the bytes they take with the header.
struct AclContents {
  std::vector<AceView> aces;
  std::size_t used = sizeof(ACL);
};

// Null when an entry runs past the list's size or holds a malformed SID.
std::optional<AclContents> ReadAcl(const ACL& acl) {
  const auto* base = reinterpret_cast<const BYTE*>(&acl);
  AclContents contents;
  for (WORD i = 0; i < acl.AceCount; ++i) {
    const std::size_t offset = contents.used;
    ACE_HEADER header;
    if (offset + sizeof header > acl.AclSize) {
      return std::nullopt;
    }
    std::memcpy(&header, base + offset, sizeof header);
    if (header.AceSize < sizeof header || offset + header.AceSize > acl.AclSize) {
      return std::nullopt;
    }
    AceView ace{header.AceType, header.AceFlags, 0, nullptr};
    if (header.AceSize >= kAceSidOffset + kSidHeaderSize) {
      std::memcpy(&ace.mask, base + offset + sizeof header, sizeof ace.mask);
      ace.sid = base + offset + kAceSidOffset;
      if (!IsValidSid(ace.sid) || kAceSidOffset + SidLength(ace.sid) > header.AceSize) {
        return std::nullopt;
      }
    }
    contents.aces.push_back(ace);
    contents.used += header.AceSize;
  }
  return contents;
}

ACCESS_MASK MapGeneric(ACCESS_MASK mask, const GENERIC_MAPPING& mapping) {
  const struct {
    ACCESS_MASK generic;
    ACCESS_MASK specific;
  } kinds[] = {{GENERIC_READ, mapping.GenericRead},
               {GENERIC_WRITE, mapping.GenericWrite},
               {GENERIC_EXECUTE, mapping.GenericExecute},
               {GENERIC_ALL, mapping.GenericAll}};
  for (const auto& kind : kinds) {
    if ((mask & kind.generic) != 0) {
      mask = (mask & ~kind.generic) | kind.specific;
    }
  }
  return mask;
}

constexpr ACCESS_MASK kGenericRights = GENERIC_READ | GENERIC_WRITE | GENERIC_EXECUTE | GENERIC_ALL;

// The rights the DACL grants the groups out of `desired`, walking the entries in order: a
// denied entry removes rights not yet granted, an allowed entry grants its (mapped) rights.
// MAXIMUM_ALLOWED asks for every right the list grants.
ACCESS_MASK GrantedRights(const std::vector<AceView>& aces, ACCESS_MASK desired,
                          const GENERIC_MAPPING& mapping,
                          const std::vector<std::vector<BYTE>>& groups) {
  const bool maximum = (desired & MAXIMUM_ALLOWED) != 0;
  desired &= ~MAXIMUM_ALLOWED;
  ACCESS_MASK granted = 0;
  ACCESS_MASK denied = 0;
  for (const auto& ace : aces) {
    if (ace.sid == nullptr || (ace.flags & INHERIT_ONLY_ACE) != 0 || !InGroups(ace.sid, groups)) {
      continue;
    }
    const ACCESS_MASK rights = MapGeneric(ace.mask, mapping);
    if (ace.type == ACCESS_ALLOWED_ACE_TYPE) {
      granted |= rights & ~denied;
    } else if (ace.type == ACCESS_DENIED_ACE_TYPE) {
      denied |= rights & ~granted;
    }
    if (!maximum && (granted & desired) == desired) {
      break;
    }
  }
  if (maximum) {
    return granted;
  }
  return (granted & desired) == desired ? desired : 0;
}

bool CheckRevision(const SECURITY_DESCRIPTOR* descriptor) {
  if (descriptor == nullptr || descriptor->Revision != SECURITY_DESCRIPTOR_REVISION) {
    platform::SetLastError(ERROR_UNKNOWN_REVISION);
    return false;
  }
  if ((descriptor->Control & SE_SELF_RELATIVE) != 0) {
    platform::SetLastError(ERROR_INVALID_SECURITY_DESCR);
    return false;
  }
  return true;
}

void SetControl(SECURITY_DESCRIPTOR& descriptor, WORD flag, bool on) {
  descriptor.Control =
      static_cast<WORD>(on ? descriptor.Control | flag : descriptor.Control & ~flag);
}

BOOL Fail(DWORD error) {
  platform::SetLastError(error);
  return FALSE;
}

}  // namespace

}  // namespace Hostkit::sim

namespace Hostkit::platform {

BOOL AllocateAndInitializeSid(SID_IDENTIFIER_AUTHORITY* authority, BYTE subAuthorityCount,
                              DWORD sub0, DWORD sub1, DWORD sub2, DWORD sub3, DWORD sub4,
                              DWORD sub5, DWORD sub6, DWORD sub7, PSID* sid) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  if (authority == nullptr || sid == nullptr || subAuthorityCount > 8) {
    return sim::Fail(ERROR_INVALID_PARAMETER);
  }
  try {
    const std::vector<DWORD> all{sub0, sub1, sub2, sub3, sub4, sub5, sub6, sub7};
    const std::vector<BYTE> bytes =
        sim::MakeSid(*authority, std::vector<DWORD>(all.begin(), all.begin() + subAuthorityCount));
    auto* copy = new (std::nothrow) BYTE[bytes.size()];
    if (copy == nullptr) {
      return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
    }
    std::memcpy(copy, bytes.data(), bytes.size());
    *sid = copy;
    return TRUE;
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

void* FreeSid(PSID sid) {
  delete[] static_cast<BYTE*>(sid);
  return nullptr;
}

DWORD GetLengthSid(PSID sid) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return 0;
  }
  if (!sim::IsValidSid(sid)) {
    sim::Fail(ERROR_INVALID_SID);
    return 0;
  }
  return sim::SidLength(static_cast<const BYTE*>(sid));
}

BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  if (descriptor == nullptr) {
    return sim::Fail(ERROR_INVALID_PARAMETER);
  }
  if (revision != SECURITY_DESCRIPTOR_REVISION) {
    return sim::Fail(ERROR_UNKNOWN_REVISION);
  }
  auto* sd = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
  *sd = SECURITY_DESCRIPTOR{};
  sd->Revision = static_cast<BYTE>(revision);
  return TRUE;
}

BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL acl,
                               BOOL defaulted) {
  auto* sd = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
  if (!sim::SecurityAvailable(*sim::ActiveMachine()) || !sim::CheckRevision(sd)) {
    return FALSE;
  }
  sim::SetControl(*sd, SE_DACL_PRESENT, present != FALSE);
  sim::SetControl(*sd, SE_DACL_DEFAULTED, present != FALSE && defaulted != FALSE);
  sd->Dacl = present != FALSE ? acl : nullptr;
  return TRUE;
}

BOOL SetSecurityDescriptorOwner(PSECURITY_DESCRIPTOR descriptor, PSID owner, BOOL defaulted) {
  auto* sd = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
  if (!sim::SecurityAvailable(*sim::ActiveMachine()) || !sim::CheckRevision(sd)) {
    return FALSE;
  }
  sd->Owner = owner;
  sim::SetControl(*sd, SE_OWNER_DEFAULTED, defaulted != FALSE);
  return TRUE;
}

BOOL SetSecurityDescriptorGroup(PSECURITY_DESCRIPTOR descriptor, PSID group, BOOL defaulted) {
  auto* sd = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
  if (!sim::SecurityAvailable(*sim::ActiveMachine()) || !sim::CheckRevision(sd)) {
    return FALSE;
  }
  sd->Group = group;
  sim::SetControl(*sd, SE_GROUP_DEFAULTED, defaulted != FALSE);
  return TRUE;
}

BOOL InitializeAcl(PACL acl, DWORD length, DWORD revision) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  if (acl == nullptr || length > 0xFFFF || revision < ACL_REVISION || revision > ACL_REVISION_DS) {
    return sim::Fail(ERROR_INVALID_PARAMETER);
  }
  if (length < sizeof(ACL)) {
    return sim::Fail(ERROR_INSUFFICIENT_BUFFER);
  }
  *acl = ACL{static_cast<BYTE>(revision), 0, static_cast<WORD>(length), 0, 0};
  return TRUE;
}

// Appends an access-allowed entry; ERROR_ALLOTTED_SPACE_EXCEEDED when the list's size (as
// InitializeAcl set it) has no room for it.
BOOL AddAccessAllowedAce(PACL acl, DWORD revision, DWORD accessMask, PSID sid) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  if (acl == nullptr || acl->AclRevision < ACL_REVISION || acl->AclRevision > ACL_REVISION_DS) {
    return sim::Fail(ERROR_INVALID_ACL);
  }
  if (revision < ACL_REVISION || revision > ACL_REVISION_DS) {
    return sim::Fail(ERROR_REVISION_MISMATCH);
  }
  if (!sim::IsValidSid(sid)) {
    return sim::Fail(ERROR_INVALID_SID);
  }
  try {
    auto contents = sim::ReadAcl(*acl);
    if (!contents) {
      return sim::Fail(ERROR_INVALID_ACL);
    }
    const std::size_t used = contents->used;
    const DWORD sidLength = sim::SidLength(static_cast<const BYTE*>(sid));
    const std::size_t aceSize = sim::kAceSidOffset + sidLength;
    if (used + aceSize > acl->AclSize) {
      return sim::Fail(ERROR_ALLOTTED_SPACE_EXCEEDED);
    }
    auto* entry = reinterpret_cast<BYTE*>(acl) + used;
    const ACE_HEADER header{ACCESS_ALLOWED_ACE_TYPE, 0, static_cast<WORD>(aceSize)};
    std::memcpy(entry, &header, sizeof header);
    std::memcpy(entry + sizeof header, &accessMask, sizeof accessMask);
    std::memcpy(entry + sim::kAceSidOffset, sid, sidLength);
    ++acl->AceCount;
    return TRUE;
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

// Succeeds when the check could be made; `accessStatus` then says whether access is granted.
// The token must be an impersonation token opened for query, the descriptor must name its
// owner and group, and the desired access must hold no generic rights (they are mapped in the
// entries, not in the request).
BOOL AccessCheck(PSECURITY_DESCRIPTOR descriptor, HANDLE clientToken, DWORD desiredAccess,
                 GENERIC_MAPPING* mapping, PRIVILEGE_SET* privileges, DWORD* privilegesLength,
                 DWORD* grantedAccess, BOOL* accessStatus) {
  if (!sim::SecurityAvailable(*sim::ActiveMachine())) {
    return FALSE;
  }
  try {
    auto* sd = static_cast<SECURITY_DESCRIPTOR*>(descriptor);
    if (sd == nullptr || sd->Revision != SECURITY_DESCRIPTOR_REVISION ||
        (sd->Control & SE_SELF_RELATIVE) != 0 || !sim::IsValidSid(sd->Owner) ||
        !sim::IsValidSid(sd->Group)) {
      return sim::Fail(ERROR_INVALID_SECURITY_DESCR);
    }
    auto handle = sim::FindHandleAs<sim::TokenHandle>(clientToken);
    if (!handle) {
      return sim::Fail(ERROR_INVALID_HANDLE);
    }
    if (!handle->token->impersonation) {
      return sim::Fail(ERROR_NO_IMPERSONATION_TOKEN);
    }
    if ((handle->access & TOKEN_QUERY) == 0) {
      return sim::Fail(ERROR_ACCESS_DENIED);
    }
    if (mapping == nullptr || privileges == nullptr || privilegesLength == nullptr ||
        grantedAccess == nullptr || accessStatus == nullptr) {
      return sim::Fail(ERROR_INVALID_PARAMETER);
    }
    if ((desiredAccess & sim::kGenericRights) != 0) {
      return sim::Fail(ERROR_GENERIC_NOT_MAPPED);
    }
    // No privilege is ever used, but the record must have room for one entry.
    constexpr DWORD kPrivilegeSetSize = sizeof(PRIVILEGE_SET);
    if (*privilegesLength < kPrivilegeSetSize) {
      *privilegesLength = kPrivilegeSetSize;
      return sim::Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    privileges->PrivilegeCount = 0;
    privileges->Control = 0;

    ACCESS_MASK granted = desiredAccess & ~MAXIMUM_ALLOWED;
    const bool hasDacl = (sd->Control & SE_DACL_PRESENT) != 0 && sd->Dacl != nullptr;
    if (hasDacl) {
      auto contents = sim::ReadAcl(*sd->Dacl);
      if (!contents) {
        return sim::Fail(ERROR_INVALID_ACL);
      }
      granted = sim::GrantedRights(contents->aces, desiredAccess, *mapping,
                                   sim::TokenGroups(*handle->token));
    } else if ((desiredAccess & MAXIMUM_ALLOWED) != 0) {
      granted |= mapping->GenericAll;
    }
    *grantedAccess = granted;
    *accessStatus = granted != 0;
    if (granted == 0) {
      SetLastError(ERROR_ACCESS_DENIED);
    }
    return TRUE;
  } catch (...) {
    return sim::Fail(ERROR_NOT_ENOUGH_MEMORY);
  }
}

}  // namespace Hostkit::platform
